#include "Screenshot.h"

#include "platform/Platform.h"

Picture screenshot(const void* window) {
    const HWND handle = static_cast<HWND>(const_cast<void*>(window));
    POINT corner = {};
    RECT area = {};
    if (!IsWindowVisible(handle) || !ClientToScreen(handle, &corner) || !GetClientRect(handle, &area))
        return {};
    Picture picture = {area.right, area.bottom, {}};
    const HDC screen = GetDC(nullptr);
    const HDC copy = CreateCompatibleDC(screen);
    BITMAPINFO format = {};
    format.bmiHeader = {sizeof(format.bmiHeader), area.right, area.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr; // rows from below, as GL has them
    const HBITMAP bitmap = CreateDIBSection(screen, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ previous = SelectObject(copy, bitmap);
    if (bits && BitBlt(copy, 0, 0, area.right, area.bottom, screen, corner.x, corner.y, SRCCOPY)) {
        const auto* color = static_cast<const RGBQUAD*>(bits);
        for (const auto* end = color + area.right * area.bottom; color != end; ++color)
            for (const BYTE channel : {color->rgbRed, color->rgbGreen, color->rgbBlue})
                picture.pixels.push_back(channel);
    }
    SelectObject(copy, previous);
    DeleteObject(bitmap);
    DeleteDC(copy);
    ReleaseDC(nullptr, screen);
    return picture;
}
