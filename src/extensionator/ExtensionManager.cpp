#include "extensionator/ExtensionManager.h"

#if !defined(_WIN32)
#include <EGL/egl.h>
#endif

#include <array>
#include <cstdint>
#include <cstring>

namespace ZLT::OGL {

namespace {

using Function = void (*)();

constexpr const char* functionNames[] = {
#include "extensionator/FunctionNames.inl"
};
constexpr std::size_t functionCount = std::size(functionNames);
static_assert(sizeof(FunctionTable) == functionCount * sizeof(Function), "one pointer for each name");

#if defined(_WIN32)
bool hasCurrentContext() { return wglGetCurrentContext() != nullptr; }

Function addressOf(const char* name) {
    const auto address = reinterpret_cast<Function>(wglGetProcAddress(name));
    // Some drivers answer 1, 2, 3 or -1 for a name that they don't know.
    const auto value = reinterpret_cast<std::intptr_t>(address);
    return value >= -1 && value <= 3 ? nullptr : address;
}
#else
// The entry points are the dispatch functions of the system's GL library, the same for every context.
bool hasCurrentContext() { return true; }

Function addressOf(const char* name) { return eglGetProcAddress(name); }
#endif

} // namespace

ExtensionManager* ExtensionManager::Instance() {
    if (!hasCurrentContext()) {
        static ExtensionManager none(Source::none);
        return &none;
    }
    static ExtensionManager loaded(Source::driver);
    return &loaded;
}

ExtensionManager::ExtensionManager(Source source) {
    if (source == Source::none)
        return;
    std::array<Function, functionCount> functions;
    for (std::size_t i = 0; i < functionCount; ++i)
        functions[i] = addressOf(functionNames[i]);
    std::memcpy(&table_, functions.data(), sizeof(table_));
}

} // namespace ZLT::OGL
