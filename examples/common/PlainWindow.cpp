#include "PlainWindow.h"

#include <stdexcept>
#include <string>

namespace {

void require(bool succeeded, const char* step) {
    if (!succeeded)
        throw std::runtime_error(std::string(step) + " failed, error " + std::to_string(GetLastError()));
}

} // namespace

PlainWindow::PlainWindow(int width, int height)
    : window_(CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, width, height, nullptr, nullptr, nullptr,
                              nullptr)),
      device_(GetDC(window_)) {
    require(window_ && device_, "CreateWindowExA");
}

void PlainWindow::setPixelFormat() {
    PIXELFORMATDESCRIPTOR wanted = {};
    wanted.nSize = sizeof(wanted);
    wanted.nVersion = 1;
    wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    wanted.iPixelType = PFD_TYPE_RGBA;
    wanted.cColorBits = 24;
    wanted.cDepthBits = 24;
    const int format = ChoosePixelFormat(device_, &wanted);
    require(format != 0, "ChoosePixelFormat");
    require(SetPixelFormat(device_, format, &wanted), "SetPixelFormat");
}

PlainWindow::~PlainWindow() {
    ReleaseDC(window_, device_);
    DestroyWindow(window_);
}
