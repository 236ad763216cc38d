// The head of the chain: the functions of OpenGLInterceptor that know its first and last links.

#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLInterceptorDecorator.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/Memory.h"

namespace ZLT::OGL {

namespace {
OpenGLInterceptor* gInterceptor = nullptr;

// Out of line, so that Instance(), which is part of each call, saves no registers for it.
[[gnu::noinline]] void makeChecker() {
    gInterceptor = new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) OpenGLErrorChecker;
}
} // namespace

OpenGLInterceptor* OpenGLInterceptor::Instance() {
    if (!gInterceptor) [[unlikely]]
        makeChecker();
    return gInterceptor;
}

void OpenGLInterceptor::destroy() {
    if (!gInterceptor)
        return;
    // The rule's text is known to clients; keep its spelling.
    // clang-format off
    ZLT_ENFORCE(dynamic_cast<OpenGLErrorChecker *>(gInterceptor) != NULL); // NOLINT(modernize-use-nullptr)
    // clang-format on
    auto* checker = static_cast<OpenGLErrorChecker*>(gInterceptor);
    checker->~OpenGLErrorChecker();
    ::operator delete(checker, MemoryType(0), ZLT_SOURCE_FILE, __LINE__);
    gInterceptor = nullptr;
}

void OpenGLInterceptor::addInterceptor(OpenGLInterceptorDecorator* layer) {
    layer->setInterceptor(gInterceptor);
    gInterceptor = layer;
}

OpenGLInterceptorDecorator* OpenGLInterceptor::popInterceptor() {
    auto* layer = dynamic_cast<OpenGLInterceptorDecorator*>(gInterceptor);
    if (layer)
        gInterceptor = layer->interceptor();
    return layer;
}

} // namespace ZLT::OGL
