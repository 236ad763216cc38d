#pragma once

// What a program that was ported from Windows brings along: the window system's names, with meanings of its
// own, in C++ and in C.

enum class HWND { none };
struct BOOL {
    bool value;
};
using DWORD = unsigned long long;

DWORD GetLastError();
void SetLastError(DWORD error);
void* wglGetCurrentContext();
extern "C" {
const char* GetModuleHandleA(const char* module);
const char* wglGetProcAddress(const char* name);
}
