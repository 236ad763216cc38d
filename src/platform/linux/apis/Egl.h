#pragma once

#include "platform/linux/apis/Api.h"

#include <string>

namespace ZLT::Platform {

/// What is to be known of a display before it is opened.
struct EglDisplayPlace {
    unsigned platform = 0;         // EGL_PLATFORM_…; 0: EGL's default display
    void* native = nullptr;        // the display or device of that platform
    void* nativeDisplay = nullptr; // for Connection::nativeDisplay
    bool toolkits = false;
    bool shows = false;
    std::string adapter; // "": EGL's vendor
    std::string key;
};

/// Opens the display and enters it among the connections, with its formats.
/// @param why  gets a sentence when it can't be opened, or has no format for desktop GL
/// @return null then
Connection* openEglDisplay(const EglDisplayPlace& place, std::string& why);

/// Asks whether the display is still open, and opens it again when somebody else in the process terminated
/// it, which takes all of its contexts and surfaces along. False, with the error, when it can't be.
bool keepOpen(Connection& connection);

/// Nobody has terminated it.
bool isEglDisplayOpen(void* display);
void sizeOfEglSurface(void* display, std::uintptr_t surface, int& width, int& height);

} // namespace ZLT::Platform
