// What the driver of each display device offers: oglinfo [--json].

#include "Report.h"
#include "Run.h"
#include "ogl/Context.h"

#include <iostream>
#include <string>

int main(int argc, char** argv) {
    const std::string option = argc > 1 ? argv[1] : "";
    if (argc > 2 || (argc == 2 && option != "--json")) {
        std::cerr << "usage: oglinfo [--json]\n";
        return 2;
    }
    if (ZLT::OGL::Context::numDisplayDevice() == 0) {
        std::cerr << "oglinfo: no display device with an OpenGL driver was found.\n";
#if !defined(_WIN32)
        std::cerr
            << "On Linux it needs EGL with a driver (Debian: libegl1 and libegl-mesa0). DISPLAY names the X\n"
               "server to use, and ZLT_OGL_PLATFORM, if set, must be x11 or headless.\n";
#endif
        return 1;
    }
    return runExample([&] {
        const std::vector<DeviceReport> devices = reportDevices();
        if (option == "--json")
            writeJson(std::cout, devices);
        else
            writeText(std::cout, devices);
        return 0;
    });
}
