# zlt_source_file_text(SOURCE...): gives each source the text by which its exceptions name it: its path below
# src/, without its ending, as seen from a build folder two levels down ("..\..\extensionator\OpenGLInterceptor").
# A source with the property ZLT_NAMED_AS goes by that path.
function(zlt_source_file_text)
  foreach(source IN LISTS ARGN)
    get_property(path SOURCE ${source} PROPERTY ZLT_NAMED_AS)
    if(NOT path)
      set(path ${source})
    endif()
    cmake_path(REMOVE_EXTENSION path LAST_ONLY OUTPUT_VARIABLE text)
    string(REPLACE "/" "\\\\" text "${text}")
    set_property(SOURCE ${source} APPEND PROPERTY COMPILE_DEFINITIONS
      "ZLT_SOURCE_FILE=\"..\\\\..\\\\${text}\"")
  endforeach()
endfunction()
