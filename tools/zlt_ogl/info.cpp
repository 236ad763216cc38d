// What the OpenGL driver of each display device offers: `zlt_ogl info [--json]`, which starts this program.

#include "Devices.h"
#include "LibraryOGL.h"
#include "ogl/Context.h"
#include "zlt/core/Core.h"
#include "zlt/core/Exceptions.h"

#include <iostream>
#include <string_view>

namespace {

// Starts the library, and stops it on every way out.
struct Started {
    Started() {
        ZLT::Core::Library::initialize();
        ZLT::OGL::Library::initialize(ZLT::OGL::Library::InitOptions());
    }
    ~Started() {
        ZLT::OGL::Library::terminate();
        ZLT::Core::Library::terminate();
    }
    Started(const Started&) = delete;
    Started& operator=(const Started&) = delete;
};

std::string startupNotes() {
#if defined(_WIN32)
    return "";
#else
    return ZLT::Platform::startupNotes();
#endif
}

int report(bool json) {
    if (ZLT::OGL::Context::numDisplayDevice() == 0) {
        std::cerr << "zlt_ogl: no display device with an OpenGL driver was found.\n" << startupNotes();
        return 1;
    }
    // On the error stream: a server that isn't there made another window system be used.
    std::cerr << startupNotes();
    const Started started;
    const std::vector<DeviceReport> devices = reportDevices();
    if (json)
        writeJson(std::cout, devices);
    else
        writeText(std::cout, devices);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return report(argc > 1 && argv[1] == std::string_view("--json"));
    } catch (const ZLT::LogicalException& error) {
        error.write(std::cerr);
    } catch (const std::exception& error) {
        std::cerr << error.what();
    }
    std::cerr << '\n';
    return 1;
}
