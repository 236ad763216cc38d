// What the driver of each display device offers: oglinfo [--json].

#include "Report.h"
#include "Run.h"
#include "ogl/Context.h"

#include <iostream>
#include <string>

namespace {

std::string startupNotes() {
#if defined(_WIN32)
    return "";
#else
    return ZLT::Platform::startupNotes();
#endif
}

} // namespace

int main(int argc, char** argv) {
    const std::string option = argc > 1 ? argv[1] : "";
    if (argc > 2 || (argc == 2 && option != "--json")) {
        std::cerr << "usage: oglinfo [--json]\n";
        return 2;
    }
    if (ZLT::OGL::Context::numDisplayDevice() == 0) {
        std::cerr << "oglinfo: no display device with an OpenGL driver was found.\n" << startupNotes();
        return 1;
    }
    // On the error stream: a server that isn't there made another window system be used.
    std::cerr << startupNotes();
    return runExample([&] {
        const std::vector<DeviceReport> devices = reportDevices();
        if (option == "--json")
            writeJson(std::cout, devices);
        else
            writeText(std::cout, devices);
        return 0;
    });
}
