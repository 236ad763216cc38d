// The whole road: the core and the library start, a textured and shaded scene is drawn into a framebuffer by
// the object layer on an off-screen context, the client's own calls go through a recorder and a tracer, the
// picture is read back, everything is destroyed and stopped, and nothing is left allocated: object_scene
// [FOLDER] writes frame.png, trace.txt, recording.inl and recording.bin there.

#include "AutoInitializer.h"
#include "Mesh.h"
#include "Png.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/OpenGLRekorder.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/TextureState.h"
#include "ogl/Buffer.h"
#include "ogl/ContextOffscreen.h"
#include "ogl/Framebuffer.h"
#include "ogl/Program.h"
#include "ogl/Renderbuffer.h"
#include "ogl/Texture2D.h"
#include "ogl/TextureUnit.h"
#include "zlt/core/Core.h"
#include "zlt/core/Exceptions.h"
#include "zlt/core/Memory.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

using namespace ZLT::OGL;

namespace {

// The scene is drawn at twice the size, and drawn once more at half of that: smooth edges on every driver.
constexpr int width = 960;
constexpr int height = 640;
constexpr int fineWidth = 2 * width;
constexpr int fineHeight = 2 * height;

constexpr const char* vertexText = R"(
    uniform mat4 view;
    attribute vec3 position;
    attribute vec3 normal;
    attribute vec2 around;
    varying vec3 place;
    varying vec3 facing;
    varying vec2 texel;
    void main() {
        place = position;
        facing = normal;
        texel = around;
        gl_Position = view * vec4(position, 1.0);
    })";

constexpr const char* fragmentText = R"(
    uniform sampler2D surface;
    uniform vec3 lamp;
    uniform vec3 eye;
    uniform float gloss;
    varying vec3 place;
    varying vec3 facing;
    varying vec2 texel;
    void main() {
        vec3 n = normalize(facing);
        vec3 toLamp = normalize(lamp - place);
        vec3 toEye = normalize(eye - place);
        float diffuse = max(dot(n, toLamp), 0.0);
        float shine = pow(max(dot(n, normalize(toLamp + toEye)), 0.0), gloss);
        float rim = pow(1.0 - max(dot(n, toEye), 0.0), 3.0);
        vec3 colour = texture2D(surface, texel).rgb;
        gl_FragColor = vec4(colour * (0.25 + 0.8 * diffuse) + 0.5 * shine + vec3(0.1, 0.2, 0.4) * rim, 1.0);
    })";

std::ofstream create(const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
    return file;
}

void require(const Framebuffer& framebuffer) {
    unsigned int status = 0;
    if (!framebuffer.statusOkay(&status))
        throw std::runtime_error("a framebuffer that can't be drawn to, status " + std::to_string(status));
}

// Recorder and tracer in front of the checker, as long as it lives.
class Layers {
public:
    explicit Layers(const std::filesystem::path& folder)
        : text_(create(folder / "recording.inl")), data_(create(folder / "recording.bin")),
          trace_(create(folder / "trace.txt")), recorder_(text_, data_, nullptr, true), tracer_(trace_) {
        OpenGLInterceptor::Instance()->addInterceptor(&recorder_);
        OpenGLInterceptor::Instance()->addInterceptor(&tracer_);
    }
    ~Layers() {
        OpenGLInterceptor::Instance()->popInterceptor();
        OpenGLInterceptor::Instance()->popInterceptor();
    }
    Layers(const Layers&) = delete;
    Layers& operator=(const Layers&) = delete;

private:
    std::ofstream text_, data_, trace_;
    OpenGLRekorder recorder_;
    OpenGLTracer tracer_;
};

// The client's own calls, each with its file and line.
void drawMesh(const Mesh& mesh) {
    CGM(Viewport, 0, 0, fineWidth, fineHeight);
    CGM(ClearColor, 0.04f, 0.05f, 0.09f, 1);
    CGM(Clear, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    CGM(Enable, GL_DEPTH_TEST);
    const std::size_t offsets[] = {offsetof(Vertex, position), offsetof(Vertex, normal),
                                   offsetof(Vertex, around)};
    const int components[] = {3, 3, 2};
    for (unsigned int i = 0; i < 3; ++i) {
        CGM(VertexAttribPointer, i, components[i], GL_FLOAT, GL_FALSE, sizeof(Vertex),
            reinterpret_cast<const void*>(offsets[i])); // NOLINT(performance-no-int-to-ptr)
        CGM(EnableVertexAttribArray, i);
    }
    CGM(DrawArrays, GL_TRIANGLES, 0, static_cast<int>(mesh.vertices.size()));
    for (unsigned int i = 0; i < 3; ++i)
        CGM(DisableVertexAttribArray, i);
    CGM(Disable, GL_DEPTH_TEST);
}

void drawWhole() {
    CGM(Viewport, 0, 0, width, height);
    CGM(Begin, GL_QUADS);
    for (const auto& [x, y] : {std::pair(0.0f, 0.0f), {1.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 1.0f}}) {
        CGM(TexCoord2f, x, y);
        CGM(Vertex2f, 2 * x - 1, 2 * y - 1);
    }
    CGM(End);
}

Picture draw(const std::filesystem::path& folder) {
    const TextureUnit* unit = TextureUnit::Unit(0);
    TextureState::setActiveTextureUnit(0);

    const Mesh mesh = makeKnot();
    Buffer vertices(static_cast<std::int64_t>(mesh.vertices.size() * sizeof(Vertex)),
                    Buffer::Type::ARRAY_BUFFER, Buffer::Usage::STATIC_DRAW, mesh.vertices.data());

    const Picture pattern = makePattern();
    Texture2D surface(Texture::InternalFormat::RGB8, pattern.width, pattern.height, false, nullptr);
    unit->bind(&surface);
    surface.subImage(0, 0, 0, pattern.width, pattern.height, Texture::Format::RGB,
                     Texture::Type::UNSIGNED_BYTE, pattern.pixels.data(), PixelUnpackParameters());
    surface.setWrap(Texture::WrapMode::REPEAT, Texture::WrapMode::REPEAT);
    surface.setFilter(Texture::Filter::LINEAR, Texture::Filter::LINEAR);

    Program program;
    program.setAttributeLocation(0, "position");
    program.setAttributeLocation(1, "normal");
    program.setAttributeLocation(2, "around");
    const char* vertex = vertexText;
    const char* fragment = fragmentText;
    program.loadVertexShader(1, &vertex, nullptr);
    program.loadFragmentShader(1, &fragment, nullptr);
    program.link(true);
    program.enable();
    program.setUniformSampler2D("surface", 0);
    program.setUniformMatrix4("view", viewOf(mesh, width, height).data(), GL_FALSE);
    program.setUniform("lamp", 4.0f, -5.0f, 8.0f);
    program.setUniform("eye", mesh.eye[0], mesh.eye[1], mesh.eye[2]);
    program.setUniform("gloss", 60.0f);

    unit->bind2DDefault();
    Texture2D picture(Texture::InternalFormat::RGB8, fineWidth, fineHeight, false, nullptr);
    Renderbuffer depth(GL_DEPTH_COMPONENT24, fineWidth, fineHeight);
    Texture2D half(Texture::InternalFormat::RGB8, width, height, false, nullptr);
    Framebuffer framebuffer;
    framebuffer.bind();
    framebuffer.attach(&picture, 0, 0);
    framebuffer.attach(&depth, 0);
    require(framebuffer);
    Framebuffer smaller;
    smaller.bind();
    smaller.attach(&half, 0, 0);
    require(smaller);

    const Layers layers(folder);
    framebuffer.bind();
    unit->bind(&surface);
    vertices.bind();
    drawMesh(mesh);
    program.disable();
    Buffer::bindDefaultArrayBuffer();

    smaller.bind();
    unit->bind(&picture);
    picture.setFilter(Texture::Filter::LINEAR, Texture::Filter::LINEAR);
    unit->setEnv(TextureUnit::Environment::REPLACE);
    unit->enable2D();
    drawWhole();
    unit->disable2D();
    smaller.unbind();

    Picture result{width, height, {}};
    unit->bind(&half);
    result.pixels.resize(half.pixelDataSize(0, Texture::Format::RGB, Texture::Type::UNSIGNED_BYTE));
    half.getPixelData(result.pixels.data(), 0, Texture::Format::RGB, Texture::Type::UNSIGNED_BYTE, 1);
    return result;
}

void run(const std::filesystem::path& folder) {
    const AutoInitializer library;
    const ContextOffscreen context;
    context.makeCurrent();
    std::cout << "Renderer:  " << CGM(GetString, GL_RENDERER) << '\n';
    writePng((folder / "frame.png").string(), draw(folder));
    std::cout << "Picture:   " << (folder / "frame.png").string() << '\n'
              << "Trace:     " << (folder / "trace.txt").string() << '\n'
              << "Recording: " << (folder / "recording.inl").string() << '\n';
}

} // namespace

int main(int argc, char** argv) {
    try {
        const std::filesystem::path folder = std::filesystem::absolute(argc > 1 ? argv[1] : ".");
        std::filesystem::create_directories(folder);
        ZLT::Core::Library::initialize();
        run(folder);
        const std::size_t left = ZLT::Core::allocationCount();
        ZLT::Core::Library::terminate(&std::cout); // lists them by file and line
        std::cout << "Left allocated when all was stopped: " << left << '\n';
        return left == 0 ? 0 : 1;
    } catch (const ZLT::LogicalException& error) {
        error.write(std::cerr);
        std::cerr << '\n';
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
    }
    return 1;
}
