# What `cmake --install` puts where: headers below include/zlt_ogl with the paths that the sources use, the
# libraries, a CMake configuration and a pkg-config file. And what `cpack` makes of that: a ZIP, or a
# .deb.
include(CMakePackageConfigHelpers)

install(TARGETS zlt_core zlt_ogl zlt_capture EXPORT zlt_oglTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# The command, and what belongs to it: it looks for these from its own folder.
if(TARGET zlt_ogl_command)
  install(TARGETS zlt_ogl_command RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(WIN32)
    install(TARGETS zlt_intercept LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/zlt_ogl)
    install(TARGETS zlt_ogl_info zlt_ogl_player RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  else()
    install(TARGETS zlt_intercept zlt_places LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/zlt_ogl)
    install(TARGETS zlt_ogl_info zlt_ogl_player RUNTIME DESTINATION ${CMAKE_INSTALL_LIBDIR}/zlt_ogl)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/zlt_ogl/completion.bash
      DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME zlt_ogl)
  endif()
endif()

if(MINGW)
  # The compiler's run-time libraries. Ours share them with the program, to which their exceptions pass.
  cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH compiler_folder)
  foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(NOT IS_ABSOLUTE "${file}")
      set(file ${compiler_folder}/${name}) # where a compiler that runs on Windows has them
    endif()
    install(FILES ${file} DESTINATION ${CMAKE_INSTALL_BINDIR})
  endforeach()
endif()

set(public_headers
  AutoInitializer.h
  Export.h
  ExceptionOGL.h
  InternalWindow.h
  LibraryOGL.h
  capture/Bytes.h
  capture/CallText.h
  capture/CaptureFile.h
  capture/CaptureFileWriter.h
  capture/CaptureFormat.h
  capture/CaptureOutput.h
  capture/CapturePlayer.h
  capture/CaptureSurroundings.h
  capture/DriverCalls.h
  capture/Export.h
  capture/ExportOptions.h
  capture/Functions.h
  capture/OpenGLCapture.h
  capture/Picture.h
  capture/PlatformPlaySystem.h
  capture/PlaySystem.h
  capture/ProjectExporter.h
  capture/Records.h
  capture/reporting/CaptureReporter.h
  capture/reporting/Report.h
  capture/reporting/ReportOptions.h
  capture/wglCapture.h
  extensionator/ConstantNames.h
  extensionator/ExtensionManager.h
  extensionator/InterceptCall.h
  extensionator/OpenGLCall.h
  extensionator/OpenGLErrorChecker.h
  extensionator/OpenGLErrorReporter.h
  extensionator/OpenGLErrorSinks.h
  extensionator/OpenGLForwarder.h
  extensionator/OpenGLInterceptor.h
  extensionator/OpenGLInterceptorDecorator.h
  extensionator/OpenGLRekorder.h
  extensionator/OpenGLTracer.h
  extensionator/OpenGLWatcher.h
  extensionator/ScopedInterceptor.h
  extensionator/TextureState.h
  extensionator/TokenName.h
  extensionator/win/wglErrorChecker.h
  extensionator/win/wglInterceptor.h
  extensionator/win/wglInterceptorDecorator.h
  extensionator/win/wglRekorder.h
  ogl/AutoVector.h
  ogl/Buffer.h
  ogl/BufferFormat.h
  ogl/Context.h
  ogl/ContextOffscreen.h
  ogl/ContextWindowed.h
  ogl/ContextWrapped.h
  ogl/FragmentShader.h
  ogl/Framebuffer.h
  ogl/GLSLObject.h
  ogl/Object.h
  ogl/PixelUnpackParameters.h
  ogl/Program.h
  ogl/Renderbuffer.h
  ogl/ScopedContextWrapper.h
  ogl/Shader.h
  ogl/StateObject.h
  ogl/Texture.h
  ogl/Texture1.h
  ogl/Texture1D.h
  ogl/Texture1DArray.h
  ogl/Texture2.h
  ogl/Texture2D.h
  ogl/Texture2DArray.h
  ogl/Texture3.h
  ogl/Texture3D.h
  ogl/TextureRECT.h
  ogl/TextureUnit.h
  ogl/VertexShader.h
  platform/GL.h
  platform/Platform.h
  platform/Wayland.h
  platform/WglTokens.h
  zlt/core/Core.h
  zlt/core/Enforce.h
  zlt/core/Exceptions.h
  zlt/core/Export.h
  zlt/core/Math.h
  zlt/core/Memory.h
  zlt/core/memory/ZLTAllocator.h
  zlt/core/memory/ZLTDeleter.h)
foreach(header IN LISTS public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zlt_ogl/${folder}
    COMPONENT headers)
endforeach()
foreach(header IN LISTS zlt_generated_headers)
  cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${zlt_generated}/include OUTPUT_VARIABLE name)
  cmake_path(GET name PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zlt_ogl/${folder}
    COMPONENT headers)
endforeach()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zlt_ogl)
install(EXPORT zlt_oglTargets NAMESPACE zlt_ogl:: DESTINATION ${package_folder})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/zlt_oglConfig.cmake.in
  ${PROJECT_BINARY_DIR}/zlt_oglConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zlt_oglConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zlt_oglConfig.cmake ${PROJECT_BINARY_DIR}/zlt_oglConfigVersion.cmake
  DESTINATION ${package_folder})

# The prefix is found from where the file lies, so that an installed tree can be moved.
file(RELATIVE_PATH zlt_pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" zlt_pc_prefix "${zlt_pc_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/zlt_ogl.pc.in ${PROJECT_BINARY_DIR}/zlt_ogl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zlt_ogl.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(NOT PROJECT_IS_TOP_LEVEL)
  return() # the package is the whole project's
endif()
if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR DEB)
endif()
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_CONTACT "The developers of zlt_ogl")
set(CPACK_PACKAGE_DESCRIPTION "The command zlt_ogl finds the wrong OpenGL calls of any program, writes its calls down, and captures what it draws to
have it again.
The library calls OpenGL with each call checked, traced and recorded, and has classes for contexts, textures, buffers,
framebuffers and programs. With the headers.")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_NAME libzlt-ogl-dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS libgl-dev) # for the headers; what the libraries need is found
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
include(CPack)
