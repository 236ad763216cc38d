// The head of the chain: the functions of wglInterceptor that know its first and last links.

#include "extensionator/win/wglErrorChecker.h"
#include "extensionator/win/wglInterceptorDecorator.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/Memory.h"

namespace ZLT::OGL {

namespace {
wglInterceptor* gInterceptor = nullptr;
}

wglInterceptor* wglInterceptor::Instance() {
    if (!gInterceptor) [[unlikely]]
        gInterceptor = new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) wglErrorChecker;
    return gInterceptor;
}

void wglInterceptor::destroy() {
    if (!gInterceptor)
        return;
    // The rule's text is known to clients; keep its spelling.
    // clang-format off
    ZLT_ENFORCE(dynamic_cast<wglErrorChecker *>(gInterceptor) != NULL); // NOLINT(modernize-use-nullptr)
    // clang-format on
    auto* checker = static_cast<wglErrorChecker*>(gInterceptor);
    checker->~wglErrorChecker();
    ::operator delete(checker, MemoryType(0), ZLT_SOURCE_FILE, __LINE__);
    gInterceptor = nullptr;
}

void wglInterceptor::addInterceptor(wglInterceptorDecorator* layer) {
    layer->setInterceptor(gInterceptor);
    gInterceptor = layer;
}

wglInterceptorDecorator* wglInterceptor::popInterceptor() {
    auto* layer = dynamic_cast<wglInterceptorDecorator*>(gInterceptor);
    if (layer)
        gInterceptor = layer->interceptor();
    return layer;
}

} // namespace ZLT::OGL
