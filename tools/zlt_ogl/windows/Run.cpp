// A program is started with its main thread stopped. Before the system's loader has looked at its imports,
// our opengl32.dll is made the first of them, by its path: what the program and its libraries import or load
// by that name afterwards is the one that is there. Nothing is written to the program's file or its folder.

#include "Run.h"

#include "Own.h"
#include "ProgramFile.h"

#include <windows.h>

#include <winternl.h>

#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <system_error>

namespace ZLT::Interception {

namespace fs = std::filesystem;

namespace {

fs::path ownFile() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH - 1);
    return path;
}

[[noreturn]] void raise(const std::string& what) {
    throw Refusal(what + ": " + std::system_category().message(static_cast<int>(GetLastError())),
                  Refusal::unsuitable);
}

std::wstring widened(const std::string& text) {
    const int size = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size > 0 ? size - 1 : 0), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), size);
    return wide;
}

// A word of a command line, as programs take it apart again.
std::wstring quoted(const std::string& word) {
    if (!word.empty() && word.find_first_of(" \t\"") == std::string::npos)
        return widened(word);
    std::string text = "\"";
    std::size_t slashes = 0;
    for (const char letter : word) {
        if (letter == '\\') {
            ++slashes;
            continue;
        }
        text.append(letter == '"' ? 2 * slashes + 1 : slashes, '\\');
        slashes = 0;
        text += letter;
    }
    text.append(2 * slashes, '\\');
    return widened(text + '"');
}

// A process of which the memory is read and written.
class Process {
public:
    explicit Process(const PROCESS_INFORMATION& information) : information_(information) {}
    ~Process() {
        CloseHandle(information_.hThread);
        CloseHandle(information_.hProcess);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    HANDLE handle() const { return information_.hProcess; }
    HANDLE thread() const { return information_.hThread; }

    template <class Value>
    Value read(std::uintptr_t address) const {
        Value value = {};
        if (!ReadProcessMemory(handle(), reinterpret_cast<const void*>(address), &value, sizeof value,
                               nullptr))
            raise("The program's memory can't be read");
        return value;
    }
    void write(std::uintptr_t address, const void* bytes, std::size_t size) const {
        auto* to = reinterpret_cast<void*>(address);
        DWORD before = 0;
        const bool opened = VirtualProtectEx(handle(), to, size, PAGE_READWRITE, &before);
        if (!opened || !WriteProcessMemory(handle(), to, bytes, size, nullptr) ||
            !VirtualProtectEx(handle(), to, size, before, &before))
            raise("The program's memory can't be written");
    }
    // Room behind `address`, near enough for the 32 bits that an image's tables have.
    std::uintptr_t allocateBehind(std::uintptr_t address, std::size_t size) const {
        constexpr std::uintptr_t step = 0x10000, reach = 0x7FFF0000;
        for (std::uintptr_t at = (address / step + 1) * step; at < address + reach; at += step)
            if (void* room = VirtualAllocEx(handle(), reinterpret_cast<void*>(at), size,
                                            MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE))
                return reinterpret_cast<std::uintptr_t>(room);
        raise("The program has no memory for another import");
    }

private:
    PROCESS_INFORMATION information_;
};

std::uintptr_t imageOf(const Process& process) {
    using Query = NTSTATUS(NTAPI*)(HANDLE, PROCESSINFOCLASS, void*, ULONG, ULONG*);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
    PROCESS_BASIC_INFORMATION basic = {};
    if (!query || query(process.handle(), ProcessBasicInformation, &basic, sizeof basic, nullptr) != 0)
        raise("The program can't be looked into");
    constexpr std::uintptr_t imageInBlock = 0x10; // of the process environment block
    return process.read<std::uintptr_t>(reinterpret_cast<std::uintptr_t>(basic.PebBaseAddress) +
                                        imageInBlock);
}

// Makes `library` the first import of the program, by its first ordinal.
void importFirst(const Process& process, const std::string& library) {
    const std::uintptr_t image = imageOf(process);
    const auto dos = process.read<IMAGE_DOS_HEADER>(image);
    const std::uintptr_t headers = image + static_cast<std::uintptr_t>(dos.e_lfanew);
    auto nt = process.read<IMAGE_NT_HEADERS64>(headers);
    IMAGE_DATA_DIRECTORY& imports = nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];

    std::vector<IMAGE_IMPORT_DESCRIPTOR> table(1);
    for (std::uintptr_t at = image + imports.VirtualAddress; imports.VirtualAddress != 0;
         at += sizeof table[0]) {
        table.push_back(process.read<IMAGE_IMPORT_DESCRIPTOR>(at));
        if (table.back().Name == 0)
            break;
    }
    if (table.back().Name != 0 || table.size() == 1)
        table.emplace_back();

    // The table, two lists of one function each (what is wanted, and where the address comes), and the name.
    const ULONGLONG wanted[] = {IMAGE_ORDINAL_FLAG64 | 1, 0};
    const std::size_t tableSize = table.size() * sizeof table[0];
    const std::size_t size = tableSize + 2 * sizeof wanted + library.size() + 1;
    const std::uintptr_t room = process.allocateBehind(image + nt.OptionalHeader.SizeOfImage, size);
    const auto offset = static_cast<DWORD>(room - image);
    table[0].OriginalFirstThunk = offset + static_cast<DWORD>(tableSize);
    table[0].FirstThunk = table[0].OriginalFirstThunk + sizeof wanted;
    table[0].Name = table[0].FirstThunk + sizeof wanted;
    process.write(room, table.data(), tableSize);
    process.write(room + tableSize, wanted, sizeof wanted);
    process.write(room + tableSize + sizeof wanted, wanted, sizeof wanted);
    process.write(room + tableSize + 2 * sizeof wanted, library.c_str(), library.size() + 1);

    imports = {offset, static_cast<DWORD>(tableSize)};
    nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_BOUND_IMPORT] = {};
    process.write(headers, &nt, sizeof nt);
}

// Wine takes its own library of this name, wherever another one lies, unless its settings for the program say
// something else. They say so while the program starts.
class WineSetting {
public:
    explicit WineSetting(const std::string& program) {
        if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version"))
            return;
        folder_ = "Software\\Wine\\AppDefaults\\" + fs::path(program).filename().string();
        RegCreateKeyExA(HKEY_CURRENT_USER, (folder_ + "\\DllOverrides").c_str(), 0, nullptr, 0,
                        KEY_ALL_ACCESS, nullptr, &key_, &disposition_);
        isSet_ = key_ && RegQueryValueExA(key_, name, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS &&
                 RegSetValueExA(key_, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value), sizeof value) ==
                     ERROR_SUCCESS;
    }
    ~WineSetting() {
        if (!key_)
            return;
        if (isSet_)
            RegDeleteValueA(key_, name);
        RegCloseKey(key_);
        if (disposition_ == REG_CREATED_NEW_KEY) {
            RegDeleteKeyA(HKEY_CURRENT_USER, (folder_ + "\\DllOverrides").c_str());
            RegDeleteKeyA(HKEY_CURRENT_USER, folder_.c_str()); // fails where there are settings of others
        }
    }
    WineSetting(const WineSetting&) = delete;
    WineSetting& operator=(const WineSetting&) = delete;

private:
    static constexpr const char* name = "opengl32";
    static constexpr char value[] = "native,builtin";
    std::string folder_;
    HKEY key_ = nullptr;
    DWORD disposition_ = 0;
    bool isSet_ = false;
};

} // namespace

std::string findOwn(const char* name) {
    const fs::path folder = ownFile().parent_path();
    for (const char* place : ZLT_INTERCEPT_PLACES) {
        const fs::path file = (folder / place / name).lexically_normal();
        if (fs::exists(file))
            return file.string();
    }
    throw Refusal(std::string(name) + ", which belongs to this command, is not beside it",
                  Refusal::unsuitable);
}

void becomeOwn(const char* name, const std::vector<std::string>& arguments) {
    const std::string program = findOwn((name + std::string(".exe")).c_str());
    std::wstring line = quoted(program);
    for (const std::string& word : arguments)
        (line += L' ') += quoted(word);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION information = {};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &information))
        raise(program + " can't be run");
    WaitForSingleObject(information.hProcess, INFINITE);
    DWORD status = 1;
    GetExitCodeProcess(information.hProcess, &status);
    ExitProcess(status);
}

Ending run(const std::vector<std::string>& words, ChannelReader& channel, RecordHandler& handler) {
    const ProgramFile program = findProgram(words.front());
    if (program.isScript)
        throw Refusal(program.path + " is a script; name the program that it starts", Refusal::unsuitable);
    std::wstring line;
    for (const std::string& word : words)
        (line += line.empty() ? L"" : L" ") += quoted(word);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION information = {};
    SetEnvironmentVariableA(channelVariable, channel.name().c_str());
    std::optional<WineSetting> setting(std::in_place, program.path);
    const bool started = CreateProcessW(widened(program.path).c_str(), line.data(), nullptr, nullptr, TRUE,
                                        CREATE_SUSPENDED, nullptr, nullptr, &startup, &information);
    SetEnvironmentVariableA(channelVariable, nullptr);
    if (!started)
        raise(program.path + " can't be run");
    const Process process(information);
    try {
        importFirst(process, findOwn("opengl32.dll"));
    } catch (...) {
        TerminateProcess(process.handle(), 1);
        throw;
    }
    SetConsoleCtrlHandler(nullptr, TRUE); // the console's signals are the program's
    ResumeThread(process.thread());
    bool ended = false;
    while (!ended) {
        ended = WaitForSingleObject(process.handle(), 0) == WAIT_OBJECT_0;
        if (ended || channel.process(0).process.load() != 0)
            setting.reset();
        if (!channel.read(handler) && !ended)
            Sleep(1);
        if (handler.isDone() && !ended)
            TerminateProcess(process.handle(), 0);
    }
    while (channel.read(handler))
        continue;
    DWORD status = 1;
    GetExitCodeProcess(process.handle(), &status);
    return {static_cast<int>(status), 0};
}

void endAs(const Ending& ending) {
    std::cout.flush();
    std::fflush(nullptr);
    ExitProcess(static_cast<UINT>(ending.status));
}

} // namespace ZLT::Interception
