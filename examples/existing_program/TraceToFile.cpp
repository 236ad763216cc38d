// What is added to an existing program, beside the option `-include extensionator/gl_intercept.h`: a tracer
// for the time that the program runs, and a last word when a GL error is not caught. The trace goes to the
// file that ZLT_OGL_TRACE names.

#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/OpenGLTracer.h"
#include "zlt/core/Exceptions.h"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>

using namespace ZLT::OGL;

namespace {

const char* traceFile() {
    const char* name = std::getenv("ZLT_OGL_TRACE");
    return name ? name : "gl_trace.txt";
}

void reportAndAbort() {
    try {
        if (const std::exception_ptr error = std::current_exception())
            std::rethrow_exception(error);
    } catch (const ZLT::LogicalException& error) {
        error.write(std::cerr);
        std::cerr << '\n';
    } catch (...) {
    }
    std::abort();
}

class TraceToFile {
public:
    TraceToFile() : file_(traceFile()), tracer_(file_) {
        std::set_terminate(reportAndAbort);
        if (!file_)
            std::cerr << "cannot write " << traceFile() << '\n';
        OpenGLInterceptor::Instance()->addInterceptor(&tracer_);
    }
    ~TraceToFile() {
        OpenGLInterceptor::Instance()->popInterceptor();
        OpenGLInterceptor::destroy();
    }

private:
    std::ofstream file_;
    OpenGLTracer tracer_;
};

TraceToFile traceToFile;

} // namespace
