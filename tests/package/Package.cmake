# Brings the build in BUILD to a fresh prefix, as FORM says: by installing it, or by making its zip or deb
# and unpacking that. Then builds and runs consumer/ against the prefix alone, by find_package and by
# pkg-config, and compiles the program in README. On Linux also a program that names zlt_ogl alone (names/) and
# one with shims for a port from Windows (shims/). COMPILER, TOOLCHAIN and EMULATOR are those of the build.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY COMMAND_ECHO STDOUT)
endfunction()

if(FORM STREQUAL install)
  set(prefix ${WORK}/prefix)
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
else()
  run(${CPACK} --config ${BUILD}/CPackConfig.cmake -B ${WORK})
  file(GLOB package ${WORK}/*.${FORM})
endif()
if(FORM STREQUAL zip)
  file(ARCHIVE_EXTRACT INPUT ${package} DESTINATION ${WORK})
  string(REPLACE .zip "" prefix ${package})
elseif(FORM STREQUAL deb)
  # A system of its own, whose ldconfig only notes that it was called.
  set(root ${WORK}/root)
  set(prefix ${root}/usr)
  file(MAKE_DIRECTORY ${root}/var/lib/dpkg/updates ${root}/var/lib/dpkg/info)
  file(TOUCH ${root}/var/lib/dpkg/status)
  file(WRITE ${WORK}/bin/ldconfig "#!/bin/sh\necho $DPKG_MAINTSCRIPT_NAME >>${WORK}/ldconfig\n")
  file(CHMOD ${WORK}/bin/ldconfig PERMISSIONS OWNER_READ OWNER_EXECUTE)
  set(ENV{PATH} ${WORK}/bin:$ENV{PATH})
  set(dpkg ${DPKG} --root=${root} --log=${WORK}/log
    --force-not-root --force-depends --force-script-chrootless)
  run(${dpkg} --install ${package})
endif()

# It can be moved: nothing says where it was built.
cmake_path(GET README PARENT_PATH source)
file(GLOB_RECURSE texts ${prefix}/*.cmake ${prefix}/*.pc)
foreach(text IN LISTS texts)
  file(READ ${text} content)
  string(FIND "${content}" ${source} at)
  if(NOT at EQUAL -1)
    message(FATAL_ERROR "${text} names ${source}")
  endif()
endforeach()

set(configure -G Ninja -S ${CMAKE_CURRENT_LIST_DIR}/consumer -B ${WORK}/by-cmake -Dzlt_ogl_ROOT=${prefix}
  "-DCMAKE_CXX_FLAGS=${FLAGS}")
if(TOOLCHAIN)
  # A cross build looks for packages below the root of its system alone.
  list(APPEND configure -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -Dzlt_ogl_DIR=${prefix}/${LIBDIR}/cmake/zlt_ogl)
endif()
run(${CMAKE_COMMAND} ${configure})
run(${CMAKE_COMMAND} --build ${WORK}/by-cmake)

set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs zlt_ogl
  OUTPUT_VARIABLE options OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(options UNIX_COMMAND "${options} ${FLAGS}")
separate_arguments(flags UNIX_COMMAND "${FLAGS}")
set(sources ${CMAKE_CURRENT_LIST_DIR}/consumer/main.cpp ${CMAKE_CURRENT_LIST_DIR}/consumer/intercepted.cpp)
run(${COMPILER} -std=c++20 ${sources} -o ${WORK}/by-pkg-config${SUFFIX} ${options})

# The program in the README, as it stands there.
file(READ ${README} text)
string(REGEX MATCH "```cpp\n.*\n}\n```" text "${text}")
string(REGEX REPLACE "```cpp|```" "" text "${text}")
file(WRITE ${WORK}/readme.cpp "${text}")
run(${COMPILER} -std=c++20 -c ${WORK}/readme.cpp -o ${WORK}/readme.o ${options})

if(NOT SUFFIX)
  # Found by the program's path, the one library finds the other beside itself.
  run(${COMPILER} -std=c++20 ${CMAKE_CURRENT_LIST_DIR}/names/main.cpp -o ${WORK}/names -I${prefix}/${INCLUDEDIR}/zlt_ogl
    -L${prefix}/${LIBDIR} -lzlt_ogl -Wl,--enable-new-dtags,-rpath,${prefix}/${LIBDIR} ${flags})
  run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${WORK}/names)

  # Behind gl_intercept.h, GL's names are macros.
  file(GLOB_RECURSE headers RELATIVE ${prefix}/${INCLUDEDIR}/zlt_ogl ${prefix}/${INCLUDEDIR}/zlt_ogl/*.h)
  list(REMOVE_ITEM headers extensionator/gl_intercept.h)
  list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n")
  string(JOIN "" text ${headers} "#include <extensionator/gl_intercept.h>\n")
  file(WRITE ${WORK}/AllHeaders.h "${text}")
  # Exported, as those of a program with plug-ins are: the libraries could reach the shims.
  run(${COMPILER} -std=c++20 -DZLT_OGL_NO_GLOBAL_NAMES -I${WORK} ${CMAKE_CURRENT_LIST_DIR}/shims/main.cpp
    ${CMAKE_CURRENT_LIST_DIR}/shims/Shims.cpp -o ${WORK}/shims -rdynamic ${options})
endif()

# Where a system looks for shared libraries is its installer's business; this prefix is a temporary one. On
# Windows it has all that the program needs, the compiler's run-time libraries too.
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
set(ENV{WINEPATH} "${prefix}/bin")
run(${EMULATOR} ${WORK}/by-cmake/consumer${SUFFIX})
run(${EMULATOR} ${WORK}/by-pkg-config${SUFFIX})
if(NOT SUFFIX)
  run(${WORK}/shims)
endif()

# The command finds what belongs to it in the prefix. A sanitizer's build has none.
if(EXISTS ${prefix}/bin/zlt_ogl${SUFFIX})
  unset(ENV{LD_LIBRARY_PATH})
  run(${EMULATOR} ${prefix}/bin/zlt_ogl${SUFFIX} info --json)
  set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
  run(${EMULATOR} ${prefix}/bin/zlt_ogl${SUFFIX} trace -o ${WORK}/trace.txt ${WORK}/by-pkg-config${SUFFIX})
  file(READ ${WORK}/trace.txt text)
  if(NOT text MATCHES "\n[^\n]+:[0-9]+: gl[A-Za-z]+\\([^\n]*\\)\n")
    message(FATAL_ERROR "The trace of a program is: ${text}")
  endif()
elseif(NOT FLAGS MATCHES "fsanitize")
  message(FATAL_ERROR "The command is not in ${prefix}/bin")
endif()

if(FORM STREQUAL deb)
  run(${dpkg} --purge libzlt-ogl-dev)
  file(GLOB left ${root}/*)
  file(STRINGS ${WORK}/ldconfig calls)
  if(NOT "${left};${calls}" STREQUAL "${root}/var;postinst;postrm")
    message(FATAL_ERROR "Left behind, or ldconfig not called: ${left} ${calls}")
  endif()
endif()
