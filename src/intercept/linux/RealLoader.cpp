#include "intercept/linux/RealLoader.h"

#include <dlfcn.h>

#include <string>

namespace ZLT::Interception {

namespace {

using Dlsym = void*(void*, const char*);
using Dlopen = void*(const char*, int);
using Dlclose = int(void*);
using Dlerror = char*();

// The loader's own, by their versions. A lookup of "dlsym" by dlsym would find ours, and another object
// behind us may have functions of these names, which give it the place of a library of GL.
template <class Function>
Function* real(const char* name) {
    static Function* const found = [&] {
        void* address = dlvsym(RTLD_NEXT, name, "GLIBC_2.34");
        return reinterpret_cast<Function*>(address ? address : dlvsym(RTLD_NEXT, name, "GLIBC_2.2.5"));
    }();
    return found;
}

// What dlerror would say, kept while we asked something else.
thread_local std::string keptError;
thread_local bool hasKeptError = false;

} // namespace

void* realDlsym(void* handle, const char* name) { return real<Dlsym>("dlsym")(handle, name); }
void* realDlopen(const char* file, int flags) { return real<Dlopen>("dlopen")(file, flags); }
int realDlclose(void* handle) { return real<Dlclose>("dlclose")(handle); }

void* functionOfLoaded(const char* library, const char* name) {
    const KeepError kept;
    void* const loaded = realDlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    return loaded ? realDlsym(loaded, name) : nullptr;
}

KeepError::KeepError() {
    if (hasKeptError)
        return;
    if (const char* pending = real<Dlerror>("dlerror")()) {
        keptError = pending;
        hasKeptError = true;
    }
}
KeepError::~KeepError() { real<Dlerror>("dlerror")(); }

char* KeepError::error() {
    if (!hasKeptError)
        return real<Dlerror>("dlerror")();
    hasKeptError = false;
    return keptError.data();
}
void KeepError::forget() { hasKeptError = false; }

} // namespace ZLT::Interception
