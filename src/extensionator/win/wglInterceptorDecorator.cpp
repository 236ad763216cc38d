#include "extensionator/win/wglInterceptorDecorator.h"

namespace ZLT::OGL {

wglInterceptorDecorator::wglInterceptorDecorator(wglInterceptor* next) : interceptor_(next) {}
wglInterceptorDecorator::~wglInterceptorDecorator() = default;

wglInterceptor* wglInterceptorDecorator::interceptor() { return interceptor_; }
const wglInterceptor* wglInterceptorDecorator::interceptor() const { return interceptor_; }
void wglInterceptorDecorator::setInterceptor(wglInterceptor* next) { interceptor_ = next; }

} // namespace ZLT::OGL
