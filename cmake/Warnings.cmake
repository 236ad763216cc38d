# What every source of the project is compiled with.
add_library(zlt_warnings INTERFACE)
if(MSVC)
  # The standard's preprocessor, for the variadic macros.
  target_compile_options(zlt_warnings INTERFACE /W4 /permissive- /Zc:preprocessor /utf-8)
else()
  target_compile_options(zlt_warnings INTERFACE -Wall -Wextra -Wpedantic)
  # GCC's flow analysis errs in code that a sanitizer has changed: it calls std::regex uninitialised.
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(zlt_warnings INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(ZLT_OGL_WARNINGS_AS_ERRORS)
  target_compile_options(zlt_warnings INTERFACE $<IF:$<BOOL:${MSVC}>,/WX,-Werror>)
endif()
