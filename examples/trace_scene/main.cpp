// Draws a scene through the chain, with a tracer in front of the checker, and shows what a wrong call looks
// like: trace_scene [FOLDER] writes trace.txt and frame.png there.

#include "ExceptionOGL.h"
#include "PlainWindow.h"
#include "Png.h"
#include "Run.h"
#include "Scene.h"
#include "WindowContext.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/TokenName.h"

#include <GL/gl.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

using namespace ZLT::OGL;

namespace {

constexpr int width = 960;
constexpr int height = 640;

void makeMistake() {
    try {
        CGM(Enable, GL_TEXTURE_MAG_FILTER); // a parameter of textures, nothing that can be enabled
        std::cout << "The driver took a wrong call without an error.\n";
    } catch (const ExceptionOGL& error) {
        std::cout << "A wrong call, on purpose:\n"
                  << "  file:   " << error.file() << '\n'
                  << "  line:   " << error.line() << '\n'
                  << "  error:  " << TokenName(error.errorNumber()) << ", " << error.errorNumber() << '\n'
                  << "  text:   " << error.what() << '\n';
    }
}

void run(const std::filesystem::path& folder) {
    const PlainWindow window(width, height);
    const auto context = makeContext(window.handle());
    context->makeCurrent();
    std::cout << "Renderer: " << CGM(GetString, GL_RENDERER) << '\n';

    std::ofstream trace(folder / "trace.txt", std::ios::binary);
    if (!trace)
        throw std::runtime_error("cannot write " + (folder / "trace.txt").string());
    OpenGLTracer tracer(trace);
    OpenGLInterceptor::Instance()->addInterceptor(&tracer);

    {
        const auto scene = Scene::make("objects", width, height);
        scene->draw();
        writePng((folder / "frame.png").string(), readFrame(width, height));
        makeMistake();
    }

    OpenGLInterceptor::Instance()->popInterceptor();
    OpenGLInterceptor::destroy();
    std::cout << "Picture:  " << (folder / "frame.png").string() << '\n'
              << "Trace:    " << (folder / "trace.txt").string() << '\n';
}

} // namespace

int main(int argc, char** argv) {
    return runExample([&] {
        const std::filesystem::path folder = argc > 1 ? argv[1] : ".";
        std::filesystem::create_directories(folder);
        run(std::filesystem::absolute(folder));
        return 0;
    });
}
