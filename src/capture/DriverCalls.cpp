#include "capture/DriverCalls.h"

#include "extensionator/OpenGLCall.h"
#include "platform/GL.h"
#include "platform/Platform.h"

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

#include <map>
#include <mutex>
#include <vector>

namespace ZLT::Capture {

namespace {

using Function = void (*)();

// Of the functions that are linked by name. A driver gives these by their names too, but for WGL.
Function linkedFunction(const char* name) {
#if defined(_WIN32)
    static const HMODULE library = GetModuleHandleA("opengl32.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
#else
    return reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
#endif
}

using Table = std::vector<Function>;

// What the thread's calls go through.
struct CurrentTable {
    const void* owner = nullptr;
    Table* table = nullptr;
};
thread_local CurrentTable current;

} // namespace

struct DriverCalls::Functions {
    std::mutex lock;
    std::map<HGLRC, Table> tables; // on Windows each context has functions of its own
    const char* missing = nullptr;
};

DriverCalls::DriverCalls() : functions_(std::make_unique<Functions>()) {}
DriverCalls::~DriverCalls() = default;

void DriverCalls::contextChanged() { current = {}; }

const char* DriverCalls::missing() const { return functions_->missing; }

void (*DriverCalls::functionOf(unsigned int number))() {
    if (current.owner != this) {
        const std::lock_guard guard(functions_->lock);
        Table& table = functions_->tables[wglGetCurrentContext()];
        table.resize(OGL::openGLEntryCount());
        current = {this, &table};
    }
    Function& known = (*current.table)[number];
    if (!known) [[unlikely]] {
        const char* const name = OGL::openGLEntryName(number);
        known = reinterpret_cast<Function>(reinterpret_cast<void*>(wglGetProcAddress(name)));
        if (!known)
            known = linkedFunction(name);
        if (!known && !functions_->missing)
            functions_->missing = name;
    }
    return known;
}

} // namespace ZLT::Capture
