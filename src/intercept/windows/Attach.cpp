// The start inside of a program: the command put this library in front of all others.

#include "intercept/Program.h"
#include "intercept/Sites.h"
#include "intercept/Stack.h"
#include "intercept/Thread.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <string>

extern "C" std::atomic<std::uint64_t>* zlt_later_counts;

namespace ZLT::Interception {

namespace {

// From the system's loader, of a name in UTF-16.
std::string narrow(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string narrowed(static_cast<std::size_t>(size > 0 ? size - 1 : 0), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, narrowed.data(), size, nullptr, nullptr);
    return narrowed;
}

void attach() {
    char name[64] = "";
    const DWORD length = GetEnvironmentVariableA(channelVariable, name, sizeof name);
    if (length == 0 || length >= sizeof name)
        return;
    SetEnvironmentVariableA(channelVariable, nullptr);
    const HANDLE mapping = OpenFileMappingA(FILE_MAP_ALL_ACCESS, FALSE, name);
    if (!mapping)
        return;
    void* memory = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Channel));
    CloseHandle(mapping);
    if (!memory)
        return;
    program().attach(*static_cast<Channel*>(memory));
    if (program().isActive())
        zlt_later_counts = program().writer().slot().later;
}

} // namespace

bool findModule(const void* address, const char*& path, std::uint64_t& offset) {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<const wchar_t*>(address), &module))
        return false;
    static std::mutex lock;
    static auto& paths = *new std::map<HMODULE, std::string>;
    const std::lock_guard guard(lock);
    const auto [known, isNew] = paths.try_emplace(module);
    if (isNew) {
        wchar_t wide[MAX_PATH] = L"";
        GetModuleFileNameW(module, wide, MAX_PATH - 1);
        known->second = narrow(wide);
    }
    path = known->second.c_str();
    offset = reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(module);
    return true;
}

std::vector<std::string> newModules() { return {}; }

std::string filePath(const char* module) { return module; }

std::vector<const void*> callersOf(const void* first) {
    void* frames[62];
    USHORT count = CaptureStackBackTrace(0, 62, frames, nullptr);
    count =
        static_cast<USHORT>(std::find(frames, frames + count, nullptr) - frames); // behind the first function
    for (USHORT i = 0; i < count; ++i)
        if (frames[i] == first)
            return std::vector<const void*>(frames + i, frames + count);
    return {first};
}

} // namespace ZLT::Interception

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        ZLT::Interception::attach();
    return TRUE;
}
