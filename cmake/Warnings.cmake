# What every source of the project is compiled with.
add_library(zlt_warnings INTERFACE)
if(MSVC)
  # The standard's preprocessor, for the variadic macros.
  target_compile_options(zlt_warnings INTERFACE /W4 /permissive- /Zc:preprocessor /utf-8)
else()
  target_compile_options(zlt_warnings INTERFACE -Wall -Wextra -Wpedantic)
endif()
if(ZLT_OGL_WARNINGS_AS_ERRORS)
  target_compile_options(zlt_warnings INTERFACE $<IF:$<BOOL:${MSVC}>,/WX,-Werror>)
endif()
