// A program with shims and the library each keep their own. Compiled with ZLT_OGL_NO_GLOBAL_NAMES, behind all
// headers that are installed (AllHeaders.h, which the test writes).

#include "Shims.h"

#include "AllHeaders.h"

#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>

namespace {

bool failed = false;
void expect(bool holds, const char* what) {
    if (!holds)
        std::cout << "Not so: " << what << '\n';
    failed = failed || !holds;
}

// On a thread of its own, since the context is current on this one.
std::string refusal(const ZLT::OGL::ContextOffscreen& context, ZLT::Platform::DWORD& number) {
    std::string text;
    std::thread([&] {
        try {
            context.makeCurrent();
        } catch (const ZLT::LogicalException& error) {
            text = error.what();
            number = ZLT::Platform::GetLastError();
        }
    }).join();
    return text;
}

} // namespace

int main() {
    SetLastError(4242);
    ZLT::Core::Library::initialize();
    {
        const ZLT::OGL::AutoInitializer library;
        const ZLT::OGL::ContextOffscreen context;
        context.makeCurrent();
        expect(ZLT::Platform::wglGetCurrentContext() == context.renderContext(), "the library's context");
        std::ostringstream trace;
        ZLT::OGL::OpenGLTracer tracer(trace);
        ZLT::OGL::OpenGLInterceptor::Instance()->addInterceptor(&tracer);
        CGM(DepthMask, GL_TRUE);
        ZLT::OGL::OpenGLInterceptor::Instance()->popInterceptor();
        expect(trace.str().find("glDepthMask(GL_TRUE)") != std::string::npos, "the library's boolToString");

        ZLT::Platform::DWORD number = 0;
        const std::string text = refusal(context, number);
        std::cout << text << '\n';
        expect(number != 0 && text.ends_with("context current" + std::to_string(number)), "its error number");
        ZLT::Platform::SetLastError(7);
        expect(ZLT::Platform::GetLastError() == 7, "its SetLastError");
    }
    ZLT::Core::Library::terminate(nullptr);
    expect(GetLastError() == 4242, "the program's error number");
    expect(wglGetCurrentContext() != nullptr, "the program's context, behind the library's end");
    expect(GetModuleHandleA(nullptr) == std::string_view("shim's module"), "the program's module");
    expect(wglGetProcAddress("glClear") == std::string_view("shim's function"), "the program's function");
    return failed ? 1 : 0;
}
