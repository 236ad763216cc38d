# What every source of the project is compiled with.
add_library(zlt_warnings INTERFACE)
target_compile_options(zlt_warnings INTERFACE -Wall -Wextra -Wpedantic)
if(ZLT_OGL_WARNINGS_AS_ERRORS)
  target_compile_options(zlt_warnings INTERFACE -Werror)
endif()
