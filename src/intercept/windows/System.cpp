#include "intercept/windows/System.h"

#include "extensionator/Managers.h"
#include "extensionator/OpenGLCall.h"
#include "extensionator/OpenGLEntry.h"
#include "intercept/Annotations.h"
#include "intercept/Contexts.h"
#include "intercept/Program.h"

#include <windows.h>

#include <cstring>
#include <iterator>
#include <string>

namespace ZLT::Interception {

extern std::atomic<std::uint64_t> countsOfNobody[laterCapacity];
std::atomic<std::uint64_t> countsOfNobody[laterCapacity];

} // namespace ZLT::Interception

extern "C" {
// Stubs.S
extern ZLT::Interception::RealFunction zlt_system_functions[];
ZLT::Interception::RealFunction zlt_find_system(unsigned int place);
std::atomic<std::uint64_t>* zlt_later_counts = ZLT::Interception::countsOfNobody;
ZLT::Interception::RealFunction zlt_later_functions[ZLT::Interception::laterCapacity];
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
constexpr const char* throughNames[] = {
#define X(place, name) #name,
#include "intercept/SystemFunctions.inl"
#undef X
};

// By its path: by its name alone the loader would give us ourselves.
HMODULE systemLibrary() {
    static const HMODULE library = [] {
        wchar_t path[MAX_PATH] = L"";
        const UINT length = GetSystemDirectoryW(path, MAX_PATH);
        if (length == 0 || length + std::size(L"\\opengl32.dll") > MAX_PATH)
            return HMODULE(nullptr);
        return LoadLibraryW((std::wstring(path) + L"\\opengl32.dll").c_str());
    }();
    return library;
}

// In place of one that is nowhere. The caller takes its arguments away itself, whatever they are.
std::uintptr_t doNothing() { return 0; }

} // namespace

RealFunction functionsWithoutContext[std::size(exportedFunctions)];

RealFunction systemFunction(const char* name) {
    return reinterpret_cast<RealFunction>(GetProcAddress(systemLibrary(), name));
}

RealFunction driverFunction(const char* name) {
    using Get = RealFunction(WINAPI*)(const char*);
    static const auto get = reinterpret_cast<Get>(systemFunction("wglGetProcAddress"));
    const RealFunction found = get ? get(name) : nullptr;
    const auto value = reinterpret_cast<std::intptr_t>(found);
    return value >= -1 && value <= 3 ? nullptr : found;
}

RealFunction requireReal(unsigned int number) {
    RealFunction& real = realFunction(number);
    if (real)
        return real;
    const char* name = OGL::openGLEntryName(number);
    real = systemFunction(name);
    if (!real)
        real = driverFunction(name);
    if (!real) {
        program().note(std::string(name) + " is called, but the current context has no such function.");
        real = reinterpret_cast<RealFunction>(doNothing);
    }
    return real;
}

RealFunction handOut(const char* name, RealFunction real) {
    if (!real)
        return nullptr;
    if (const unsigned int number = entryNumber(name); number < std::size(exportedFunctions)) {
        realFunction(number) = real;
        return exportedFunctions[number];
    }
    const std::size_t place = laterNumber(name);
    if (place >= laterCount())
        return real;
    // Another driver's is another function, which no stub stands for.
    Annotation* const annotation = annotationNamed(name);
    RealFunction& known = annotation ? annotation->real : zlt_later_functions[place];
    if (known && known != real)
        return real;
    known = real;
    if (annotation)
        zlt_later_functions[place] = annotation->ours;
    return laterStubs[place];
}

unsigned int realGetError() {
    return reinterpret_cast<unsigned int(WINAPI*)()>(requireReal(OGL::OpenGLEntry::GetError))();
}

} // namespace ZLT::Interception

ZLT::Interception::RealFunction zlt_find_system(unsigned int place) {
    using namespace ZLT::Interception;
    const RealFunction real = systemFunction(throughNames[place]);
    zlt_system_functions[place] = real ? real : reinterpret_cast<RealFunction>(doNothing);
    return zlt_system_functions[place];
}

namespace ZLT::OGL {

// Each context has the addresses of its own driver.
ExtensionManager* ExtensionManager::Instance() {
    constexpr std::size_t core = 336;
    using namespace Interception;
    static ExtensionManager* withoutContext = nullptr;
    ExtensionManager*& manager = thread.context ? thread.context->manager : withoutContext;
    if (!manager)
        manager = internal::Managers::makeOf(std::shared_ptr<FunctionTable>(
            reinterpret_cast<FunctionTable*>(thread.functions + core), [](FunctionTable*) {}));
    return manager;
}

} // namespace ZLT::OGL
