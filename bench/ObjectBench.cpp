// What the object layer costs: each family's call beside the same GL calls written by hand through the same
// table, on Mesa.

#include "Comparison.h"
#include "LibraryContext.h"
#include "extensionator/ExtensionManager.h"
#include "ogl/Buffer.h"
#include "ogl/Framebuffer.h"
#include "ogl/Program.h"
#include "ogl/Texture2D.h"
#include "ogl/TextureUnit.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace ZLT::OGL;

const FunctionTable& table() { return ExtensionManager::Instance()->table(); }

std::vector<Bench::Comparison> comparisons;

// Ours and what it is compared with, and how much longer it may take; 0 where there is no aim.
template <class Ours, class Other>
void compare(const std::string& ours, Ours callOurs, const std::string& other, Other callOther, double aim) {
    const auto add = [](const std::string& name, auto call) {
        benchmark::RegisterBenchmark(name.c_str(), [call](benchmark::State& state) {
            unsigned int round = 0;
            for (auto _ : state)
                call(round++);
            if (glGetError() != GL_NO_ERROR)
                state.SkipWithError("GL reports an error");
        });
    };
    add(ours, callOurs);
    add(other, callOther);
    comparisons.push_back({ours, other, aim});
}

void subImageByHand(GLsizei size, const void* pixels) {
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    for (const auto& [parameter, value] : {std::pair(GL_UNPACK_SWAP_BYTES, 0),
                                           {GL_UNPACK_LSB_FIRST, 0},
                                           {GL_UNPACK_ROW_LENGTH, 0},
                                           {GL_UNPACK_SKIP_PIXELS, 0},
                                           {GL_UNPACK_SKIP_ROWS, 0},
                                           {GL_UNPACK_IMAGE_HEIGHT, 0},
                                           {GL_UNPACK_SKIP_IMAGES, 0},
                                           {GL_UNPACK_ALIGNMENT, 1}})
        glPixelStorei(parameter, value);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, size, size, GL_BGRA, GL_UNSIGNED_BYTE, pixels);
    glPopClientAttrib();
}

void readByHand(void* pixels) {
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_BGRA, GL_UNSIGNED_BYTE, pixels);
    glPopClientAttrib();
}

// Transfers, with the texture bound.
void addImages(Texture2D& texture, int size, std::vector<unsigned char>& pixels, const std::string& kind,
               double aim, bool withRead) {
    const PixelUnpackParameters packed;
    const auto bound = [&texture](auto call) {
        return [&texture, call](unsigned int) {
            TextureUnit::Unit(0)->bind(&texture);
            call();
        };
    };
    compare("Texture2D::subImage, " + kind, bound([&texture, &pixels, size, packed] {
                texture.subImage(0, 0, 0, size, size, Texture::Format::BGRA, Texture::Type::UNSIGNED_BYTE,
                                 pixels.data(), packed);
            }),
            "glTexSubImage2D with its pixel store, " + kind,
            bound([&pixels, size] { subImageByHand(size, pixels.data()); }), aim);
    if (withRead)
        compare("Texture2D::getPixelData, " + kind, bound([&texture, &pixels] {
                    texture.getPixelData(pixels.data(), 0, Texture::Format::BGRA,
                                         Texture::Type::UNSIGNED_BYTE, 1);
                }),
                "glGetTexImage with its pixel store, " + kind,
                bound([&pixels] { readByHand(pixels.data()); }), aim);
}

void addUniforms(Program& program, int location) {
    compare(
        "Program::setUniform_Unsafe",
        [&program, location](unsigned int i) {
            program.setUniform_Unsafe(location, static_cast<float>(i), 1.0f, 2.0f, 3.0f);
        },
        "glUniform4f by the table",
        [location](unsigned int i) { table().glUniform4f(location, static_cast<float>(i), 1, 2, 3); }, 1.1);
    // The checked form: one question, and no more.
    compare(
        "Program::setUniform",
        [&program, location](unsigned int i) {
            program.setUniform(location, static_cast<float>(i), 1.0f, 2.0f, 3.0f);
        },
        "glGetIntegerv, and glUniform4f by the table",
        [&program, location](unsigned int i) {
            GLint current = 0;
            glGetIntegerv(GL_CURRENT_PROGRAM, &current);
            if (static_cast<unsigned int>(current) == program.objectID())
                table().glUniform4f(location, static_cast<float>(i), 1, 2, 3);
        },
        1.1);
}

// With the framebuffer bound; the texture isn't.
void addAttachments(Framebuffer& framebuffer, Texture2D& texture) {
    compare(
        "Framebuffer::attach",
        [&framebuffer, &texture](unsigned int i) { framebuffer.attach(&texture, 0, i % 2); },
        "its three questions, and glFramebufferTexture2DEXT by the table",
        [&framebuffer, &texture](unsigned int i) {
            GLint bound = 0, framebufferBound = 0, maximum = 0;
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
            glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebufferBound);
            glGetIntegerv(GL_MAX_COLOR_ATTACHMENTS, &maximum);
            if (static_cast<unsigned int>(bound) != texture.objectID() &&
                static_cast<unsigned int>(framebufferBound) == framebuffer.objectID() &&
                static_cast<int>(i % 2) < maximum)
                table().glFramebufferTexture2DEXT(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0 + i % 2, GL_TEXTURE_2D,
                                                  texture.objectID(), 0);
        },
        1.1);
}

void addBuffers(Buffer& buffer, std::vector<unsigned char>& bytes, GLsizeiptr size) {
    compare(
        "Buffer::subData, " + std::to_string(size) + " bytes",
        [&buffer, &bytes, size](unsigned int) { buffer.subData(0, size, bytes.data()); },
        "glBufferSubData by the table, " + std::to_string(size) + " bytes",
        [&bytes, size](unsigned int) { table().glBufferSubData(GL_ARRAY_BUFFER, 0, size, bytes.data()); },
        1.1);
}

int measure(int argc, char** argv) {
    constexpr int small = 64;
    constexpr int large = 2048; // 16 MiB
    std::vector<unsigned char> pixels(std::size_t(large) * large * 4, 0x55);
    Texture2D image(Texture::InternalFormat::RGBA8, small, small, false, nullptr);
    Texture2D largeImage(Texture::InternalFormat::RGBA8, large, large, false, nullptr);
    addImages(image, small, pixels, "64 x 64", 1.1, false);
    // At least 0.95 of the speed of the bare calls.
    addImages(largeImage, large, pixels, "16 MiB", 1 / 0.95, true);

    Buffer buffer(1024, Buffer::Type::ARRAY_BUFFER, Buffer::Usage::DYNAMIC_DRAW, nullptr);
    buffer.bind();
    addBuffers(buffer, pixels, 64);
    addBuffers(buffer, pixels, 1024);

    Program program;
    const char* source = "uniform vec4 color;\n"
                         "void main() { gl_FrontColor = color; gl_Position = gl_Vertex; }\n";
    program.loadVertexShader(1, &source, nullptr);
    program.link(true);
    program.enable();
    addUniforms(program, program.getUniformLocation("color"));

    Texture2D target(Texture::InternalFormat::RGBA8, small, small, false, nullptr);
    Framebuffer framebuffer;
    framebuffer.bind();
    addAttachments(framebuffer, target);

    const TextureUnit* unit = TextureUnit::Unit(0);
    compare(
        "TextureUnit::bind", [&, unit](unsigned int i) { unit->bind(i % 2 ? &image : &largeImage); },
        "glBindTexture",
        [&](unsigned int i) { glBindTexture(GL_TEXTURE_2D, (i % 2 ? &image : &largeImage)->objectID()); },
        1.1);
    return Bench::run(argc, argv, comparisons);
}

} // namespace

int main(int argc, char** argv) {
    const Bench::LibraryContext library;
    return measure(argc, argv);
}
