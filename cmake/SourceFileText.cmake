# zlt_source_file_text(SOURCE...): gives each source the text by which its exceptions name it: its path below
# src/, without its ending, as seen from a build folder two levels down ("..\..\extensionator\OpenGLInterceptor").
function(zlt_source_file_text)
  foreach(source IN LISTS ARGN)
    cmake_path(REMOVE_EXTENSION source LAST_ONLY OUTPUT_VARIABLE text)
    string(REPLACE "/" "\\\\" text "${text}")
    set_property(SOURCE ${source} APPEND PROPERTY COMPILE_DEFINITIONS
      "ZLT_SOURCE_FILE=\"..\\\\..\\\\${text}\"")
  endforeach()
endfunction()
