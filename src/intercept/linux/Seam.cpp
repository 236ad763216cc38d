// What the library's layers call by name, in a foreign program. Nothing of the platform layer is here.

#include "extensionator/Managers.h"
#include "extensionator/OpenGLEntry.h"
#include "intercept/Contexts.h"
#include "intercept/Intercepted.h"
#include "intercept/linux/Libraries.h"
#include "platform/GL.h"
#include "platform/Platform.h"

#include <memory>

namespace ZLT::Interception {

unsigned int realGetError() {
    return reinterpret_cast<unsigned int (*)()>(requireReal(OGL::OpenGLEntry::GetError))();
}

} // namespace ZLT::Interception

namespace ZLT::Platform {

HGLRC wglGetCurrentContext() { return reinterpret_cast<HGLRC>(Interception::thread.context); }

PROC wglGetProcAddress(LPCSTR name) {
    const Interception::Replacement known = Interception::replacementOf(name);
    return reinterpret_cast<PROC>(known.real && *known.real ? *known.real
                                                            : Interception::findFunctionOfDriver(name));
}

} // namespace ZLT::Platform

namespace ZLT::OGL {

// The addresses are the same for all contexts here, so one manager has them all.
ExtensionManager* ExtensionManager::Instance() {
    constexpr std::size_t core = 336;
    static ExtensionManager* const all = internal::Managers::makeOf(std::shared_ptr<FunctionTable>(
        reinterpret_cast<FunctionTable*>(&Interception::realFunctions[core]), [](FunctionTable*) {}));
    return all;
}

} // namespace ZLT::OGL
