// The WGL extensions that EGL can stand for: their names, and their functions by name.

#include "platform/linux/calls/Calls.h"
#include "platform/linux/records/Current.h"

#include <EGL/egl.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace ZLT::Platform {

namespace {

std::string namesFor(const Connection& connection) {
    std::string list = "WGL_ARB_extensions_string WGL_EXT_extensions_string WGL_ARB_pixel_format "
                       "WGL_ARB_make_current_read";
    if (connection.createsByVersion)
        list += " WGL_ARB_create_context WGL_ARB_create_context_profile";
    const auto& formats = connection.formats;
    if (std::ranges::any_of(formats, &Format::pbuffer))
        list += " WGL_ARB_pbuffer";
    if (std::ranges::any_of(formats, [](const Format& format) { return format.samples > 0; }))
        list += " WGL_ARB_multisample";
    if (std::ranges::any_of(formats, &Format::floatingPoint))
        list += " WGL_ARB_pixel_format_float";
    // Only where the interval can be both 0 and 1; a pbuffer has no retrace to wait for.
    const auto controls = [](const Format& format) {
        return format.minSwapInterval == 0 && format.maxSwapInterval >= 1;
    };
    if (connection.shows && std::ranges::any_of(formats, controls))
        list += " WGL_EXT_swap_control";
    return list;
}

// The connection that stands for a drawable, and for none any more when it is gone and not current. A
// drawable of somebody else's stands for the first display. The caller holds the lock.
Connection* connectionOf(Records& all, HDC device) {
    std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    if (!drawable && device && device == here.device)
        drawable = pinned()->draw; // its window is gone
    if (!drawable)
        return nullptr;
    return drawable->connection      ? drawable->connection
           : all.connections.empty() ? nullptr
                                     : &all.connections.front();
}

const char* WINAPI getExtensionsStringARB(HDC device) {
    Records& all = opened();
    const std::lock_guard guard(all.lock);
    Connection* connection = connectionOf(all, device);
    if (!connection && all.drawables.contains(device))
        return "";
    if (!connection)
        return fail(ERROR_INVALID_HANDLE);
    if (connection->extensions.empty())
        connection->extensions = namesFor(*connection);
    return connection->extensions.c_str();
}

const char* WINAPI getExtensionsStringEXT() { return getExtensionsStringARB(wglGetCurrentDC()); }

struct Function {
    const char* extension;
    const char* name;
    PROC address;
};

template <class Address>
Function function(const char* extension, const char* name, Address* address) {
    return {extension, name, reinterpret_cast<PROC>(address)};
}

const Function functions[] = {
    function("WGL_ARB_extensions_string", "wglGetExtensionsStringARB", getExtensionsStringARB),
    function("WGL_EXT_extensions_string", "wglGetExtensionsStringEXT", getExtensionsStringEXT),
    function("WGL_ARB_pixel_format", "wglChoosePixelFormatARB", choosePixelFormatARB),
    function("WGL_ARB_pixel_format", "wglGetPixelFormatAttribivARB", getPixelFormatAttribivARB),
    function("WGL_ARB_pixel_format", "wglGetPixelFormatAttribfvARB", getPixelFormatAttribfvARB),
    function("WGL_ARB_create_context", "wglCreateContextAttribsARB", createContextAttribsARB),
    function("WGL_ARB_make_current_read", "wglMakeContextCurrentARB", makeContextCurrentARB),
    function("WGL_ARB_make_current_read", "wglGetCurrentReadDCARB", getCurrentReadDCARB),
    function("WGL_ARB_pbuffer", "wglCreatePbufferARB", createPbufferARB),
    function("WGL_ARB_pbuffer", "wglGetPbufferDCARB", getPbufferDCARB),
    function("WGL_ARB_pbuffer", "wglReleasePbufferDCARB", releasePbufferDCARB),
    function("WGL_ARB_pbuffer", "wglDestroyPbufferARB", destroyPbufferARB),
    function("WGL_ARB_pbuffer", "wglQueryPbufferARB", queryPbufferARB),
    function("WGL_EXT_swap_control", "wglSwapIntervalEXT", swapIntervalEXT),
    function("WGL_EXT_swap_control", "wglGetSwapIntervalEXT", getSwapIntervalEXT),
};

bool names(std::string_view list, std::string_view name) {
    return (' ' + std::string(list) + ' ').find(' ' + std::string(name) + ' ') != std::string::npos;
}

} // namespace

PROC wglGetProcAddress(LPCSTR name) {
    const HDC device = wglGetCurrentDC();
    if (!device)
        return fail(ERROR_INVALID_HANDLE, "No context is current.");
    if (!name)
        return fail(ERROR_PROC_NOT_FOUND);
    if (std::strncmp(name, "gl", 2) == 0)
        if (const PROC address = eglGetProcAddress(name))
            return address;
    const auto* const known = std::ranges::find_if(
        functions, [&](const Function& function) { return std::strcmp(name, function.name) == 0; });
    const char* offered = getExtensionsStringARB(device);
    return known != std::end(functions) && offered && names(offered, known->extension)
               ? known->address
               : fail(ERROR_PROC_NOT_FOUND);
}

} // namespace ZLT::Platform
