// A client as a stranger writes it: a layer in front, a call, and the trace it left.

#include <extensionator/OpenGLInterceptor.h>
#include <extensionator/OpenGLTracer.h>
#include <extensionator/TokenName.h>
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
    ZLT::Core::Library::initialize();
    std::ostringstream trace;
    OpenGLTracer tracer(trace);
    OpenGLInterceptor::Instance()->addInterceptor(&tracer);
    try {
        CGM(BindTexture, GL_TEXTURE_2D, 5);
    } catch (const ZLT::LogicalException& error) {
        // Without a context some drivers report an error; the trace has the call all the same.
        error.write(std::cout);
        std::cout << '\n';
    }
    OpenGLInterceptor::Instance()->popInterceptor();
    OpenGLInterceptor::destroy();
    ZLT::Core::Library::terminate(&std::cout);
    std::cout << trace.str();
    return trace.str().find(": glBindTexture(GL_TEXTURE_2D, 5)\n") != std::string::npos ? 0 : 1;
}
