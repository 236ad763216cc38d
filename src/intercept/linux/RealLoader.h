#pragma once

/// @file
/// The loader's functions behind ours.

namespace ZLT::Interception {

void* realDlsym(void* handle, const char* name);
void* realDlopen(const char* file, int flags);
int realDlclose(void* handle);

/// A function of a library, if the program has that loaded already; null else. dlerror says nothing of it.
void* functionOfLoaded(const char* library, const char* name);
template <class Function>
bool findLoaded(Function& function, const char* library, const char* name) {
    function = reinterpret_cast<Function>(functionOfLoaded(library, name));
    return function != nullptr;
}

/// While we ask the loader something in the midst of the program's work: what `dlerror` has to say afterwards
/// is what it had to say before.
class KeepError {
public:
    KeepError();
    ~KeepError();
    KeepError(const KeepError&) = delete;
    KeepError& operator=(const KeepError&) = delete;

    /// What `dlerror` says to the program: what was kept, else the loader's.
    static char* error();
    /// The program asks the loader something new.
    static void forget();
};

} // namespace ZLT::Interception
