// Records a scene with its context, and traces it in the same run: record_scene SCENE FOLDER writes
// recording.inl (statements), recording.bin (data), trace.txt and frame.png there. examples/replay shows what
// to do with the recording.

#include "PlainWindow.h"
#include "Png.h"
#include "Run.h"
#include "Scene.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/OpenGLRekorder.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/win/wglInterceptor.h"
#include "extensionator/win/wglRekorder.h"
#include "ogl/ContextWrapped.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

using namespace ZLT::OGL;

namespace {

constexpr int width = 960;
constexpr int height = 640;

std::ofstream create(const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
    return file;
}

// The layers, in their chains for as long as this lives.
class Layers {
public:
    Layers(wglRekorder& contextRecorder, OpenGLRekorder& recorder, OpenGLTracer& tracer) {
        wglInterceptor::Instance()->addInterceptor(&contextRecorder);
        OpenGLInterceptor::Instance()->addInterceptor(&recorder);
        OpenGLInterceptor::Instance()->addInterceptor(&tracer);
    }
    ~Layers() {
        OpenGLInterceptor::Instance()->popInterceptor();
        OpenGLInterceptor::Instance()->popInterceptor();
        OpenGLInterceptor::destroy();
        wglInterceptor::Instance()->popInterceptor();
        wglInterceptor::destroy();
    }
    Layers(const Layers&) = delete;
    Layers& operator=(const Layers&) = delete;
};

void record(const std::string& name, const std::filesystem::path& folder) {
    std::ofstream text = create(folder / "recording.inl");
    text.precision(17); // the digits that a double needs to come back as it was
    std::ofstream data = create(folder / "recording.bin");
    std::ofstream trace = create(folder / "trace.txt");
    PlainWindow window(width, height);
    window.setPixelFormat();

    // One recording from two recorders over the same text.
    wglRekorder contextRecorder(text, data, window.device(), nullptr, true);
    OpenGLRekorder recorder(text, data, nullptr, true);
    OpenGLTracer tracer(trace);
    const Layers layers(contextRecorder, recorder, tracer);

    const HGLRC context = CWGM(CreateContext, window.device());
    if (!context || !CWGM(MakeCurrent, window.device(), context))
        throw std::runtime_error("no context, error " + std::to_string(GetLastError()));
    {
        // The library knows the context by this, and its calls past GL 1.1 find their functions.
        const ContextWrapped wrapped;
        const auto scene = Scene::make(name, width, height);
        scene->draw();
        writePng((folder / "frame.png").string(), readFrame(width, height));
        CWGM(SwapBuffers, window.device());
    }
    CWGM(MakeCurrent, nullptr, nullptr);
    CWGM(DeleteContext, context);

    std::cout << "Recording: " << (folder / "recording.inl").string() << ", " << text.tellp()
              << " bytes, and " << (folder / "recording.bin").string() << ", " << data.tellp() << " bytes\n"
              << "Trace:     " << (folder / "trace.txt").string() << '\n'
              << "Picture:   " << (folder / "frame.png").string() << '\n';
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: record_scene objects|matrices|shaders|layers FOLDER\n";
        return 2;
    }
    return runExample([&] {
        const std::filesystem::path folder = std::filesystem::absolute(argv[2]);
        std::filesystem::create_directories(folder);
        record(argv[1], folder);
        return 0;
    });
}
