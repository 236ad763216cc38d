// The functions of GLX and EGL that are ours, in Glx.cpp and Egl.cpp.
#define ZLT_WINDOW_FUNCTIONS(X)                                                                              \
    X(glXGetProcAddress)                                                                                     \
    X(glXGetProcAddressARB)                                                                                  \
    X(glXCreateContext)                                                                                      \
    X(glXCreateNewContext)                                                                                   \
    X(glXCreateContextAttribsARB)                                                                            \
    X(glXCreateContextWithConfigSGIX)                                                                        \
    X(glXImportContextEXT)                                                                                   \
    X(glXDestroyContext)                                                                                     \
    X(glXFreeContextEXT)                                                                                     \
    X(glXMakeCurrent)                                                                                        \
    X(glXMakeContextCurrent)                                                                                 \
    X(glXMakeCurrentReadSGI)                                                                                 \
    X(glXSwapBuffers)                                                                                        \
    X(glXSwapBuffersMscOML)                                                                                  \
    X(glXCopyContext)                                                                                        \
    X(glXUseXFont)                                                                                           \
    X(glXBindTexImageEXT)                                                                                    \
    X(eglGetProcAddress)                                                                                     \
    X(eglCreateContext)                                                                                      \
    X(eglDestroyContext)                                                                                     \
    X(eglMakeCurrent)                                                                                        \
    X(eglReleaseThread)                                                                                      \
    X(eglSwapBuffers)                                                                                        \
    X(eglBindTexImage)                                                                                       \
    X(eglSwapBuffersWithDamageKHR)                                                                           \
    X(eglSwapBuffersWithDamageEXT)

#define X(name) extern "C" void name();
ZLT_WINDOW_FUNCTIONS(X)
#undef X
WindowFunction windowFunctions[] = {
#define X(name) {#name, name, nullptr},
    ZLT_WINDOW_FUNCTIONS(X)
#undef X
};
