#include "intercept/linux/Libraries.h"

#include "extensionator/OpenGLCall.h"
#include "intercept/Annotations.h"
#include "intercept/Calls.h"
#include "intercept/Lock.h"
#include "intercept/Program.h"
#include "intercept/Sites.h"
#include "intercept/linux/RealLoader.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

extern "C" {
// LaterStubs.S
[[gnu::visibility("hidden")]] extern ZLT::Interception::RealFunction zlt_later_functions[];
[[gnu::visibility("hidden")]] ZLT::Interception::RealFunction zlt_find_later(unsigned int place);
#define X(place, name) void name();
#include "intercept/LaterFunctions.inl"
#undef X
}

namespace ZLT::Interception {

namespace {

#include "intercept/ExportedFunctions.inl"

const RealFunction laterStubs[] = {
#define X(place, name) name,
#include "intercept/LaterFunctions.inl"
#undef X
};
// The driver's, as far as they are known. What a stub jumps to may be a function of ours that calls it.
RealFunction laterFunctions[std::size(laterStubs)];

// Those of GLX and EGL, by name.
struct WindowFunction {
    const char* name;
    RealFunction ours;
    RealFunction real;
};
#include "intercept/linux/WindowFunctions.inl"

WindowFunction* windowFunction(const char* name) {
    auto* const found = std::ranges::find_if(windowFunctions, [&](const WindowFunction& function) {
        return std::strcmp(function.name, name) == 0;
    });
    return found == std::end(windowFunctions) ? nullptr : found;
}

// The libraries that may have the functions. A program that opened one for itself has it under one of these
// names.
constexpr const char* libraries[] = {"libGL.so.1",  "libOpenGL.so.0", "libGLX.so.0",
                                     "libEGL.so.1", "libGLESv2.so.2", "libGL.so"};

RealFunction function(void* address) { return reinterpret_cast<RealFunction>(address); }

// The way by which the program would get what no library has by name.
RealFunction fromDriver(const char* name) {
    for (const char* getter : {"glXGetProcAddressARB", "glXGetProcAddress", "eglGetProcAddress"})
        if (const RealFunction get = realOf(getter))
            if (const RealFunction real = reinterpret_cast<RealFunction (*)(const char*)>(get)(name))
                return real;
    return nullptr;
}

// A program that asks the driver for its messages gets all of them: ours give way.
template <auto& name, class... Parameters>
auto givingWay(Parameters... parameters) {
    giveUpDriverMessages();
    using Real = unsigned int (*)(Parameters...);
    return reinterpret_cast<Real>(laterFunctions[laterNumber(name)])(parameters...);
}
constexpr char callbackKhr[] = "glDebugMessageCallback", callbackArb[] = "glDebugMessageCallbackARB",
               logKhr[] = "glGetDebugMessageLog", logArb[] = "glGetDebugMessageLogARB";

RealFunction specialOfLater(std::string_view name) {
    using Callback = unsigned int(void*, const void*);
    using Log = unsigned int(unsigned int, int, void*, void*, void*, void*, void*, char*);
    const auto plain = [](auto* function) { return reinterpret_cast<RealFunction>(function); };
    if (name == callbackKhr)
        return plain(static_cast<Callback*>(givingWay<callbackKhr>));
    if (name == callbackArb)
        return plain(static_cast<Callback*>(givingWay<callbackArb>));
    if (name == logKhr)
        return plain(static_cast<Log*>(givingWay<logKhr>));
    if (name == logArb)
        return plain(static_cast<Log*>(givingWay<logArb>));
    return nullptr;
}

[[noreturn]] void endProgram(const char* name) {
    std::fprintf(stderr, "symbol lookup error: undefined symbol: %s\n", name);
    std::fflush(stderr);
    _exit(127);
}

} // namespace

RealFunction realFunctions[std::size(exportedFunctions)];

bool isOurs(const void* address) {
    static const char anchor = 0;
    const char *path = nullptr, *own = nullptr;
    std::uint64_t offset = 0;
    static const char* const ownPath = findModule(&anchor, own, offset) ? own : nullptr;
    return findModule(address, path, offset) && path == ownPath;
}

RealFunction findFunction(const char* name) {
    const KeepError keep;
    if (const RealFunction next = nextFunction(name))
        return next;
    for (const char* library : libraries)
        if (void* handle = realDlopen(library, RTLD_NOLOAD | RTLD_LAZY)) {
            void* address = realDlsym(handle, name);
            realDlclose(handle);
            if (address && !isOurs(address))
                return function(address);
        }
    return nullptr;
}

RealFunction findFunctionOfDriver(const char* name) {
    const RealFunction found = findFunction(name);
    return found ? found : fromDriver(name);
}

RealFunction nextFunction(const char* name) { return function(realDlsym(RTLD_NEXT, name)); }

RealFunction requireReal(unsigned int number) {
    RealFunction& real = realFunction(number);
    if (real)
        return real;
    const NoSignals calm;
    const char* name = OGL::openGLEntryName(number);
    real = findFunctionOfDriver(name);
    if (!real)
        endProgram(name);
    return real;
}

Replacement replacementOf(const char* name) {
    if (const unsigned int number = entryNumber(name); number < std::size(exportedFunctions))
        return {exportedFunctions[number], &realFunctions[number]};
    if (const std::size_t place = laterNumber(name); place < laterCount())
        return {laterStubs[place], &laterFunctions[place]};
    if (WindowFunction* found = windowFunction(name))
        return {found->ours, &found->real};
    return {};
}

RealFunction handOut(const char* name, RealFunction real) {
    const Replacement replacement = replacementOf(name);
    if (!replacement.ours || !real)
        return real;
    // One of its own, or ours already, from the loader.
    if (real == replacement.ours)
        return real;
    if (!*replacement.real)
        *replacement.real = real;
    return replacement.ours;
}

RealFunction realOf(const char* name) {
    WindowFunction* found = windowFunction(name);
    if (!found->real)
        found->real = findFunction(name);
    return found->real;
}

} // namespace ZLT::Interception

// The first call of such a function: where it goes from now on.
ZLT::Interception::RealFunction zlt_find_later(unsigned int place) {
    using namespace ZLT::Interception;
    const NoSignals calm;
    RealFunction& real = laterFunctions[place];
    const char* name = laterName(place);
    if (!real)
        real = findFunctionOfDriver(name);
    if (!real)
        endProgram(name);
    RealFunction special = specialOfLater(name);
    if (Annotation* const annotation = annotationNamed(name)) {
        annotation->real = real;
        special = annotation->ours;
    }
    zlt_later_functions[place] = special ? special : real;
    return zlt_later_functions[place];
}
