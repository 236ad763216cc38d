# Installs the build in BUILD to a fresh prefix, then builds and runs consumer/ against it, once by find_package
# and once by pkg-config, and compiles the program in README. COMPILER, TOOLCHAIN and EMULATOR are those of the build.
set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY COMMAND_ECHO STDOUT)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

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
set(sources ${CMAKE_CURRENT_LIST_DIR}/consumer/main.cpp ${CMAKE_CURRENT_LIST_DIR}/consumer/intercepted.cpp)
run(${COMPILER} -std=c++20 ${sources} -o ${WORK}/by-pkg-config${SUFFIX} ${options})

# The program in the README, as it stands there.
file(READ ${README} text)
string(REGEX MATCH "```cpp\n.*\n}\n```" text "${text}")
string(REGEX REPLACE "```cpp|```" "" text "${text}")
file(WRITE ${WORK}/readme.cpp "${text}")
run(${COMPILER} -std=c++20 -c ${WORK}/readme.cpp -o ${WORK}/readme.o ${options})

# Where a system looks for shared libraries is its installer's business; here the prefix is a temporary one.
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
set(ENV{WINEPATH} "${prefix}/bin")
run(${EMULATOR} ${WORK}/by-cmake/consumer${SUFFIX})
run(${EMULATOR} ${WORK}/by-pkg-config${SUFFIX})
