# Runs the generator over tables/ and lists what it writes.
#   zlt_generated_headers   for clients, below ${zlt_generated}/include
#   zlt_generated_sources   of the library, below ${zlt_generated}/src
#   zlt_generated_tests     rows for the fake driver and the sweeps, below ${zlt_generated}/tests
set(zlt_generated ${PROJECT_BINARY_DIR}/generated)
set(zlt_tables ${PROJECT_SOURCE_DIR}/tables)

# The generator runs while the project is built, so it is always a program of the host.
if(CMAKE_CROSSCOMPILING)
  include(ExternalProject)
  set(zlt_generator ${PROJECT_BINARY_DIR}/host/zlt_generator)
  ExternalProject_Add(host_generator
    SOURCE_DIR ${PROJECT_SOURCE_DIR}/generator
    BINARY_DIR ${PROJECT_BINARY_DIR}/host
    CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release
    BUILD_BYPRODUCTS ${zlt_generator}
    BUILD_ALWAYS ON
    INSTALL_COMMAND "")
  set(zlt_generator_target host_generator)
else()
  add_subdirectory(generator)
  set(zlt_generator zlt_generator)
  set(zlt_generator_target zlt_generator)
endif()

set(zlt_generated_headers)
foreach(name InterceptorEntries.inl LayerEntries.inl FunctionTable.h OpenGLEntry.h Extension.h ExtensionLoaders.inl
        gl_intercept.h gl_tokens.h win/WglFunctions.h win/wglInterceptorEntries.inl win/wglLayerEntries.inl)
  list(APPEND zlt_generated_headers ${zlt_generated}/include/extensionator/${name})
endforeach()
set(zlt_generated_sources)
foreach(topic GL11 GL12to30 ARB EXT NV Vendors)
  foreach(family OpenGLErrorChecker OpenGLErrorReporter OpenGLForwarder OpenGLRekorder OpenGLTracer OpenGLWatchLayer)
    list(APPEND zlt_generated_sources ${zlt_generated}/src/extensionator/${family}_${topic}.cpp)
  endforeach()
endforeach()
foreach(topic GL12to30 ARB EXT NV Vendors)
  list(APPEND zlt_generated_sources ${zlt_generated}/src/extensionator/ExtensionLoading_${topic}.cpp)
endforeach()
list(APPEND zlt_generated_sources ${zlt_generated}/src/extensionator/win/wglErrorCheckerEntries.cpp)
set(zlt_generated_rows)
foreach(name TokenRows EntryTable EntriesByType ExtensionNames ExtensionCases WglFunctions WglCases WglEntryPoints)
  list(APPEND zlt_generated_rows ${zlt_generated}/src/extensionator/${name}.inl)
endforeach()
# What src/intercept puts in place of the driver's functions.
set(zlt_generated_exports)
foreach(topic GL11 GL12to30 ARB EXT NV Vendors)
  list(APPEND zlt_generated_exports ${zlt_generated}/src/intercept/Exports_${topic}.cpp)
endforeach()
foreach(name EntriesByName.inl ExportedFunctions.inl LaterFunctions.inl SystemFunctions.inl ImportedFunctions.inl opengl32.def)
  list(APPEND zlt_generated_rows ${zlt_generated}/src/intercept/${name})
endforeach()
foreach(name NamedObjects ReadPointers ReadingEntries)
  list(APPEND zlt_generated_rows ${zlt_generated}/src/intercept/checks/${name}.inl)
endforeach()
# src/capture.
set(zlt_generated_capture)
foreach(topic GL11 GL12to30 ARB EXT NV Vendors)
  list(APPEND zlt_generated_capture ${zlt_generated}/src/capture/OpenGLCapture_${topic}.cpp)
  list(APPEND zlt_generated_player ${zlt_generated}/src/capture/DriverCalls_${topic}.cpp)
endforeach()
foreach(name CapturedEntries PlayedEntries)
  list(APPEND zlt_generated_rows ${zlt_generated}/src/capture/${name}.inl)
endforeach()
set(zlt_generated_tests ${zlt_generated}/tests/EntryPoints.inl)

add_custom_command(
  OUTPUT ${zlt_generated_headers} ${zlt_generated_sources} ${zlt_generated_rows} ${zlt_generated_exports}
    ${zlt_generated_capture} ${zlt_generated_player} ${zlt_generated_tests}
  COMMAND ${zlt_generator} ${zlt_tables} ${zlt_generated}
  DEPENDS ${zlt_generator_target} ${zlt_tables}/gl_entry_points.tsv ${zlt_tables}/gl_tokens.tsv
          ${zlt_tables}/extensions.tsv ${zlt_tables}/wgl_extension_functions.tsv
          ${zlt_tables}/wgl_entry_points.tsv ${zlt_tables}/gl_later_functions.tsv
          ${zlt_tables}/opengl32_functions.tsv ${zlt_tables}/gl_arguments.tsv
  COMMENT "Generating the call families"
  VERBATIM)
add_custom_target(zlt_generate DEPENDS ${zlt_generated_headers} ${zlt_generated_sources} ${zlt_generated_rows}
  ${zlt_generated_exports} ${zlt_generated_capture} ${zlt_generated_player} ${zlt_generated_tests})
