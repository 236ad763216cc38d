# Runs PROGRAM on a virtual X server and looks at the trace that it leaves in TRACE.
unset(ENV{WAYLAND_DISPLAY})
set(ENV{ZLT_OGL_TRACE} ${TRACE})
execute_process(COMMAND ${XVFB_RUN} -a ${PROGRAM} COMMAND_ERROR_IS_FATAL ANY)
file(READ ${TRACE} text)
foreach(line
    "rings\\.c:[0-9]+: glNewList\\([0-9]+, GL_COMPILE\\)\n"
    "rings\\.c:[0-9]+: glTexImage2D\\(GL_PROXY_TEXTURE_2D, 0, 6407, 64, 64, 0, GL_RGB, GL_UNSIGNED_BYTE, 0000000000000000\\)\n"
    "rings\\.c:[0-9]+: glClear\\(16640\\)\n")
  if(NOT text MATCHES "${line}")
    message(FATAL_ERROR "the trace ${TRACE} has no line like ${line}")
  endif()
endforeach()
