# What the command reads of programs for Windows, on programs of that system's compiler.
add_executable(unit_PePlaces PePlaces.cpp)
target_link_libraries(unit_PePlaces PRIVATE zlt_pe zlt_warnings GTest::gmock GTest::gtest_main)
add_test(NAME unit.PePlaces COMMAND unit_PePlaces)
find_program(ZLT_MINGW_COMPILER NAMES x86_64-w64-mingw32-g++-posix x86_64-w64-mingw32-g++)
find_program(ZLT_MINGW_OBJDUMP x86_64-w64-mingw32-objdump)
find_program(ZLT_MINGW_ADDR2LINE x86_64-w64-mingw32-addr2line)
set(places ${CMAKE_CURRENT_SOURCE_DIR}/places)
set(pe_programs)
set(pe_outputs)
# zlt_pe_program(NAME FOLDER SOURCE FLAG...): compiled in the folder, with what objdump says about it.
function(zlt_pe_program name folder source)
  set(program ${CMAKE_CURRENT_BINARY_DIR}/places/${name}.exe)
  cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${folder} NORMALIZE OUTPUT_VARIABLE file)
  add_custom_command(
    OUTPUT ${program} ${program}.listing
    COMMAND ${ZLT_MINGW_COMPILER} -std=c++20 ${ARGN} ${source} -static -o ${program}
    COMMAND ${ZLT_MINGW_OBJDUMP} -d --no-show-raw-insn ${program} > ${program}.listing
    DEPENDS ${file} ${places}/Inlined.h
    WORKING_DIRECTORY ${folder}
    VERBATIM)
  set(pe_outputs ${pe_outputs} ${program} ${program}.listing PARENT_SCOPE)
endfunction()
if(ZLT_MINGW_COMPILER AND ZLT_MINGW_OBJDUMP AND ZLT_MINGW_ADDR2LINE)
  set(pe_programs ${CMAKE_CURRENT_BINARY_DIR}/places)
  file(MAKE_DIRECTORY ${pe_programs})
  set(here ${CMAKE_CURRENT_SOURCE_DIR})
  zlt_pe_program(O0 ${here} places/Program.cpp -O0 -g)
  zlt_pe_program(O2 ${here} places/Program.cpp -O2 -g -gdwarf-5)
  zlt_pe_program(dwarf2 ${here} places/Program.cpp -O2 -gdwarf-2)
  zlt_pe_program(dwarf4 ${here} places/Program.cpp -O2 -gdwarf-4)
  zlt_pe_program(here ${places} Program.cpp -O2 -g)
  zlt_pe_program(dwarf4here ${places} Program.cpp -O2 -gdwarf-4)
  zlt_pe_program(absolute ${here} ${places}/Program.cpp -O2 -g)
  zlt_pe_program(absoluteHere ${places} ${places}/Program.cpp -O2 -g)
  zlt_pe_program(dotted ${here} ./places/../places/Program.cpp -O2 -g)
  zlt_pe_program(plain ${here} places/Program.cpp -O2)
  zlt_pe_program(library ${here} places/Library.cpp -O1 -g -ffunction-sections -Wl,--gc-sections)
  add_custom_command(
    OUTPUT ${pe_programs}/library.exe.lines
    COMMAND sed -nE "s/^ *([0-9a-f]+):[[:space:]]*call .*/\\1/p" library.exe.listing > library.exe.calls
    COMMAND ${ZLT_MINGW_ADDR2LINE} -a -e library.exe < library.exe.calls > library.exe.lines
    DEPENDS ${pe_programs}/library.exe.listing
    WORKING_DIRECTORY ${pe_programs}
    VERBATIM)
  add_custom_target(zlt_pe_programs DEPENDS ${pe_outputs} ${pe_programs}/library.exe.lines)
  add_dependencies(unit_PePlaces zlt_pe_programs)
endif()
target_compile_definitions(unit_PePlaces PRIVATE ZLT_PE_PROGRAMS="${pe_programs}" ZLT_PE_SOURCES="${places}")
