# Runs PROGRAM on a virtual X server and looks at the recording that it leaves in FOLDER.
unset(ENV{WAYLAND_DISPLAY})
execute_process(COMMAND ${XVFB_RUN} -a ${PROGRAM} ${FOLDER} COMMAND_ERROR_IS_FATAL ANY)
file(READ ${FOLDER}/recording.inl text)
# In this order: the context, the data at its place, a double with all of its digits, the swap.
set(rest "${text}")
foreach(statement
    "^addCurrentAppDC\\(\\(HDC\\)0x0*[1-9A-F]"
    "wglCreateContext\\(hDC_Ours\\)"
    "GLRekorderMakeCurrent\\(\\(HDC\\)0x0*[1-9A-F][0-9A-F]*, \\(HGLRC\\)0x0*[1-9A-F]"
    "seekg\\(0\\)"
    "glTexImage2D\\(GL_TEXTURE_2D, 0, 6407, 16, 16, 0, GL_RGB, GL_UNSIGNED_BYTE, &data\\[0\\]\\)"
    "glViewport\\(0, 0, 320, 320\\)[^\n]*main\\.cpp, line [0-9]+\n"
    "glColor3d\\(1, 0\\.40000000000000002, 0\\.29999999999999999\\)"
    "GLRekorderSwapBuffers\\(\\(HDC\\)0x0*[1-9A-F]")
  if(NOT rest MATCHES "${statement}")
    message(FATAL_ERROR "the recording in ${FOLDER} has no ${statement}, or not in its place")
  endif()
  string(FIND "${rest}" "${CMAKE_MATCH_0}" at)
  string(SUBSTRING "${rest}" ${at} -1 rest)
endforeach()
string(REGEX MATCHALL "\nGLRekorderSwapBuffers" swaps "${text}")
list(LENGTH swaps count)
file(SIZE ${FOLDER}/recording.bin bytes) # a length and 16 x 16 pixels
if(NOT count EQUAL 3 OR NOT bytes EQUAL 772 OR text MATCHES "Unsupported|WARNING|Unknown Token")
  message(FATAL_ERROR "the recording in ${FOLDER} has ${count} swaps, ${bytes} bytes of data, or calls that it lost")
endif()
