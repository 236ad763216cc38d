// A client as a stranger writes it: a context, a layer in front, calls, and the trace they left.

#include <LibraryOGL.h>
#include <extensionator/OpenGLInterceptor.h>
#include <extensionator/OpenGLTracer.h>
#include <extensionator/TextureState.h>
#include <extensionator/TokenName.h>
#include <extensionator/win/WglFunctions.h>
#include <ogl/BufferFormat.h>
#include <ogl/ContextOffscreen.h>
#include <ogl/ContextWindowed.h>
#include <ogl/ContextWrapped.h>
#include <zlt/core/Core.h>
#include <zlt/core/Exceptions.h>

#if defined(_WIN32)
#include <windows.h>
#endif

#include <GL/gl.h>

#include <iostream>
#include <sstream>

int main() {
    using namespace ZLT::OGL;
    std::ostringstream trace;
    try {
        ZLT::Core::Library::initialize();
        Library::initialize(Library::InitOptions());
        {
            const ContextOffscreen context;
            context.makeCurrent();
            OpenGLTracer tracer(trace);
            OpenGLInterceptor::Instance()->addInterceptor(&tracer);
            CGM(BindTexture, GL_TEXTURE_2D, 5);
            CGM(ActiveTexture, 0x84C1);
            OpenGLInterceptor::Instance()->popInterceptor();
            std::cout << "unit " << TextureState::activeTextureUnit() << " of "
                      << ExtensionManager::Instance()->numberOfTextureUnits() << " on "
                      << context.deviceName() << '\n';
        }
        Library::terminate();
        ZLT::Core::Library::terminate(&std::cout);
    } catch (const ZLT::LogicalException& error) {
        error.write(std::cout);
        std::cout << '\n';
        return 1;
    }
    std::cout << trace.str();
    const bool bound = trace.str().find(": glBindTexture(GL_TEXTURE_2D, 5)\n") != std::string::npos;
    const bool activated = trace.str().find(": glActiveTexture(GL_TEXTURE1)\n") != std::string::npos;
    return bound && activated ? 0 : 1;
}
