#include "extensionator/win/wglInterceptor.h"

namespace ZLT::OGL {

wglInterceptor::wglInterceptor() = default;
wglInterceptor::~wglInterceptor() = default;

} // namespace ZLT::OGL
