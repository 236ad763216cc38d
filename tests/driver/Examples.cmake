# The examples, on the real driver. How they are run: by the variable with the runner's name. `off_screen` is for
# those that need no window, `runners` are all ways to have windows and displays, or none.
if(WIN32)
  set(runners wgl)
  set(wgl ${CMAKE_CROSSCOMPILING_EMULATOR})
  set(off_screen ${wgl})
else()
  set(runners headless x11)
  set(off_screen ${headless})
endif()

# Each checks its own picture, says so, and succeeds: with a regular expression alone the result wouldn't count.
function(zlt_example_test name runner expected)
  string(REGEX REPLACE "\\..*" "" program ${name})
  add_test(NAME driver.${name} COMMAND sh -c "\"$0\" \"$@\" && echo succeeded"
    ${${runner}} $<TARGET_FILE:${program}> ${CMAKE_CURRENT_BINARY_DIR}/${name})
  set_tests_properties(driver.${name} PROPERTIES PASS_REGULAR_EXPRESSION "${expected}.*\nsucceeded\n")
endfunction()

set(headless_window "No screen shows the window")
set(x11_window "The screen shows the last frame, each pixel as it was drawn")
set(wgl_window ${x11_window})
set(floats "RGBA16F +1000.5 +0.25 +0.000100[0-9]* +-2.5 +inf\n +RGBA32F +1000.5 +0.25 +0.0001 +-2.5 +123456\n")
zlt_example_test(trace_scene off_screen "main\\.cpp\n.*GL_INVALID_ENUM, 1280\n.*invalid enumerant\n.*frame\\.png")
zlt_example_test(count_calls off_screen
  "main\\.cpp:[0-9]+: error: GL_INVALID_ENUM in glEnable\\(GL_TEXTURE_MAG_FILTER\\)\n.*\n[0-9]+\tgl.*\n1\tglClear")
zlt_example_test(object_scene off_screen "Left allocated when all was stopped: 0")
zlt_example_test(render_to_texture off_screen "shows 180224 of the scene's 180224 pixels")
zlt_example_test(float_textures off_screen
  "${floats}.*RGBA32F +0 +0 +125 +375 +625 +875 +1000 +1000\n.*32-bit floats are filtered: yes")
foreach(runner IN LISTS runners)
  zlt_example_test(window.${runner} ${runner} "frames of a knot.*${${runner}_window}")
  zlt_example_test(displays.${runner} ${runner}
    "texture units: [1-9].*reads the same ball, from black to 2[0-9][0-9].*Display devices: [1-9]")
endforeach()

# Each recording shows the picture that was recorded, pixel for pixel.
foreach(scene objects matrices shaders layers)
  set(folder ${PROJECT_BINARY_DIR}/examples/recordings/${scene})
  add_test(NAME driver.replay.${scene} COMMAND replay_${scene}
    ${folder}/recording.inl ${folder}/recording.bin ${folder}/frame.png ${CMAKE_CURRENT_BINARY_DIR}/${scene}.png)
endforeach()

if(WIN32)
  return()
endif()
zlt_example_test(adopt_glfw x11 "main\\.cpp:[0-9]+: GL_INVALID_ENUM, invalid enumerant.*shows a planet")
# An unchanged program, on a context that GLX made.
add_test(NAME driver.existing_program COMMAND ${CMAKE_COMMAND}
  -DXVFB_RUN=${XVFB_RUN} -DPROGRAM=$<TARGET_FILE:rings> -DTRACE=${CMAKE_CURRENT_BINARY_DIR}/rings.txt
  -P ${CMAKE_CURRENT_SOURCE_DIR}/ExistingProgram.cmake)
# A program that records itself, on a context that GLX made.
add_test(NAME driver.record_glut COMMAND ${CMAKE_COMMAND}
  -DXVFB_RUN=${XVFB_RUN} -DPROGRAM=$<TARGET_FILE:record_glut> -DFOLDER=${CMAKE_CURRENT_BINARY_DIR}/record_glut
  -P ${CMAKE_CURRENT_SOURCE_DIR}/RecordGlut.cmake)
