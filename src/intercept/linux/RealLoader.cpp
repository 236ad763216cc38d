#include "intercept/linux/RealLoader.h"

#include <dlfcn.h>

#include <string>

namespace ZLT::Interception {

namespace {

using Dlsym = void*(void*, const char*);
using Dlopen = void*(const char*, int);
using Dlclose = int(void*);
using Dlerror = char*();

// By a version, since a lookup of "dlsym" by dlsym would find ours.
Dlsym* findDlsym() {
    void* found = dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34");
    if (!found)
        found = dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.2.5");
    return reinterpret_cast<Dlsym*>(found);
}

// Another object behind us may have functions of these names too.
template <class Function>
Function* real(const char* name) {
    static Function* const found = reinterpret_cast<Function*>(realDlsym(RTLD_NEXT, name));
    return found;
}

// What dlerror would say, kept while we asked something else.
thread_local std::string keptError;
thread_local bool hasKeptError = false;

} // namespace

void* realDlsym(void* handle, const char* name) {
    static Dlsym* const found = findDlsym();
    return found(handle, name);
}
void* realDlopen(const char* file, int flags) { return real<Dlopen>("dlopen")(file, flags); }
int realDlclose(void* handle) { return real<Dlclose>("dlclose")(handle); }

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
