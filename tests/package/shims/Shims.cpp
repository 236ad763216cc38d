#include "Shims.h"

namespace {
DWORD lastError = 0;
}

DWORD GetLastError() { return lastError; }
void SetLastError(DWORD error) { lastError = error; }
void* wglGetCurrentContext() { return &lastError; }
extern "C" {
const char* GetModuleHandleA(const char*) { return "shim's module"; }
const char* wglGetProcAddress(const char*) { return "shim's function"; }
// Exported by the library too, which writes its traces by its own one.
const char* boolToString(unsigned char) { return "shim's truth"; }
}
