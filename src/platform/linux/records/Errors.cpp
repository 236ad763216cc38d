#include "platform/linux/records/Errors.h"

#include "platform/WglTokens.h"

#include <cstdio>

namespace ZLT::Platform {

namespace {

// Without destructors: a static object's destructor may still fail, when those of the thread have run.
constinit thread_local DWORD lastError = ERROR_SUCCESS;
constinit thread_local char lastText[256] = "";

const char* sentenceOf(DWORD error) {
    switch (error) {
    case ERROR_SUCCESS:
        return "";
    case ERROR_INVALID_HANDLE:
        return "The handle was never given out, or what it stood for is gone.";
    case ERROR_NOT_ENOUGH_MEMORY:
        return "The driver is out of memory.";
    case ERROR_NOT_SUPPORTED:
        return "EGL and GLX have no counterpart for this function.";
    case ERROR_INVALID_PARAMETER:
        return "A parameter is out of its range.";
    case ERROR_MOD_NOT_FOUND:
        return "There is no module of this name.";
    case ERROR_PROC_NOT_FOUND:
        return "There is no function of this name.";
    case ERROR_BUSY:
        return "The context is current on another thread.";
    case ERROR_INVALID_WINDOW_HANDLE:
        return "The window does not exist, or does not exist any more.";
    case ERROR_CANNOT_FIND_WND_CLASS:
    case ERROR_CLASS_DOES_NOT_EXIST:
        return "There is no window class of this name.";
    case ERROR_CLASS_ALREADY_EXISTS:
        return "There is a window class of this name already.";
    case ERROR_CLASS_HAS_WINDOWS:
        return "The window class still has windows.";
    case ERROR_INVALID_MONITOR_HANDLE:
        return "The monitor does not exist, or does not exist any more.";
    case ERROR_RESOURCE_NAME_NOT_FOUND:
        return "There is no cursor of this name.";
    case ERROR_INVALID_PIXEL_FORMAT:
        return "The pixel format does not exist, or does not fit the drawable or the context.";
    case ERROR_INVALID_OPERATION:
        return "The operation is not allowed for this context or drawable now.";
    case static_cast<DWORD>(ERROR_INVALID_VERSION_ARB):
        return "The driver has no context of this version, profile or flags.";
    case static_cast<DWORD>(ERROR_INVALID_PROFILE_ARB):
        return "There is no such profile: core or compatibility, one of the two.";
    default:
        return "The window system or the driver refused.";
    }
}

} // namespace

Failure fail(DWORD error, const char* sentence) {
    lastError = error;
    std::snprintf(lastText, sizeof(lastText), "%s", sentence ? sentence : sentenceOf(error));
    return {};
}

DWORD GetLastError() { return lastError; }
void SetLastError(DWORD error) { fail(error); }
const char* lastErrorText() { return lastText; }

} // namespace ZLT::Platform
