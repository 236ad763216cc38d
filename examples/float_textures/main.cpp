// What textures keep of bright, dark and negative colours, whether the driver filters them linearly, and
// what the library's probe says about that.

#include "Run.h"
#include "extensionator/ExtensionManager.h"
#include "extensionator/OpenGLInterceptor.h"
#include "ogl/ContextOffscreen.h"
#include "ogl/Framebuffer.h"
#include "ogl/Program.h"
#include "ogl/Texture2D.h"
#include "ogl/TextureUnit.h"

#include <GL/gl.h>

#include <array>
#include <iomanip>
#include <iostream>
#include <stdexcept>
#include <vector>

using namespace ZLT::OGL;
using Internal = Texture::InternalFormat;

namespace {

struct Kind {
    const char* name;
    Internal format;
};
constexpr std::array kinds = {Kind{"RGBA8", Internal::RGBA8}, Kind{"RGBA16F", Internal::RGBA16F},
                              Kind{"RGBA32F", Internal::RGBA32F}};

const char* copyText =
    "uniform sampler2D image;\n"
    "uniform float width;\n"
    "void main() { gl_FragColor = texture2D(image, vec2(gl_FragCoord.x / width, 0.5)); }\n";

// Uploads one row of grey values, draws it across `width` pixels of a texture of the same format, and
// gives what is there then.
std::vector<float> drawAcross(Program& program, Internal format, const std::vector<float>& row, int width,
                              Texture::Filter filter) {
    const TextureUnit* unit = TextureUnit::Unit(0);
    Texture2D source(format, row.size(), 1, false, nullptr);
    unit->bind(&source);
    source.subImage(0, 0, 0, row.size(), 1, Texture::Format::LUMINANCE, Texture::Type::FLOAT, row.data(),
                    PixelUnpackParameters());
    source.setFilter(filter, filter);

    Texture2D target(format, static_cast<unsigned>(width), 1, false, nullptr);
    Framebuffer framebuffer;
    framebuffer.bind();
    framebuffer.attach(&target, 0, 0);
    if (!framebuffer.statusOkay(nullptr))
        throw std::runtime_error("the driver can't draw to a texture of this format");
    program.setUniform("width", static_cast<float>(width));
    CGM(Viewport, 0, 0, width, 1);
    CGM(Rectf, -1.0f, -1.0f, 1.0f, 1.0f);
    framebuffer.unbind();

    std::vector<float> drawn(static_cast<std::size_t>(width));
    unit->bind(&target);
    target.getPixelData(drawn.data(), 0, Texture::Format::RED, Texture::Type::FLOAT, 4);
    unit->bind2DDefault();
    return drawn;
}

void print(const char* title, const std::vector<float>& values) {
    std::cout << std::setw(12) << title;
    for (const float value : values)
        std::cout << std::setw(12) << value;
    std::cout << '\n';
}

const char* yesOrNo(bool answer) { return answer ? "yes" : "no"; }

int run() {
    const ContextOffscreen context;
    context.makeCurrent();
    ExtensionManager& driver = *ExtensionManager::Instance();
    if (!driver.supportsFloatingPointTextures())
        throw std::runtime_error("the driver has no textures of floats");
    std::cout << "supportsFloatingPointTextures(): yes\n";
    Program program;
    program.loadFragmentShader(1, &copyText, nullptr); // the fixed pipeline does the rest
    program.link(true);
    program.enable();
    program.setUniformSampler2D("image", 0);

    std::cout << "\nUploaded as floats, drawn, and read back as floats:\n";
    const std::vector<float> greys = {1000.5f, 0.25f, 0.0001f, -2.5f, 123456.0f};
    print("uploaded", greys);
    for (const auto& [name, format] : kinds)
        print(name, drawAcross(program, format, greys, int(greys.size()), Texture::Filter::NEAREST));

    std::cout << "\nAn edge from 0 to 1000, magnified to eight pixels by linear filters:\n";
    bool filtered[kinds.size()] = {};
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const std::vector<float> edge =
            drawAcross(program, kinds[i].format, {0.0f, 1000.0f}, 8, Texture::Filter::LINEAR);
        print(kinds[i].name, edge);
        filtered[i] = edge[3] > edge.front() && edge[3] < edge.back();
    }
    std::cout << "\n16-bit floats are filtered: " << yesOrNo(filtered[1])
              << ". supportsHalfFiltering(): " << yesOrNo(driver.supportsHalfFiltering())
              << "\n32-bit floats are filtered: " << yesOrNo(filtered[2])
              << ". supportsFloatFiltering(): " << yesOrNo(driver.supportsFloatFiltering())
              << "\nWhere the vendor doesn't tell, an experiment does, by WGL_ARB_render_texture (here: "
              << yesOrNo(driver.supportsRenderToTexture())
              << ").\nWithout it the answer is no, whatever the driver does.\n";
    program.disable();
    return 0;
}

} // namespace

int main() { return runExample(run); }
