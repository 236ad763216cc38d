// Framebuffers, buffers, programs, and the library's life with them on the real driver.

#include "DriverObjects.h"
#include "ogl/FragmentShader.h"
#include "ogl/Program.h"
#include "ogl/Renderbuffer.h"

using namespace ZLT::OGL;

namespace {

class ObjectDriverTest : public StartedWithContext {};

const FunctionTable& gl() { return ExtensionManager::Instance()->table(); }

struct Linked : Program {
    explicit Linked(const std::string& fragment) {
        const char* text = fragment.c_str();
        loadFragmentShader(1, &text, nullptr);
        link(true);
        enable();
    }
    ~Linked() override { disable(); }
};

// One object of each kind, all of them in use.
struct Client {
    Canvas canvas;
    Texture3D block{Internal::RGBA8, 2, 2, 2, true};
    Buffer buffer{8, Buffer::Type::ARRAY_BUFFER, Buffer::Usage::STATIC_DRAW, nullptr};
    Renderbuffer depth{GL_DEPTH_COMPONENT24, Canvas::size, Canvas::size};
    Linked program{"void main() { gl_FragColor = vec4(0, 1, 0, 1); }"};

    Client() {
        canvas.framebuffer.attach(&depth, 0);
        draw(red);
        EXPECT_EQ(pixelAt(1, 1), green);
    }
};

constexpr int ints[] = {5, -6, 7, -8};
constexpr float reals[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

// What the driver makes of a value of each kind, a matrix by rows and by columns, and an array.
const struct {
    std::string type, value; // of u, and what it is to equal
    void (*set)(Program& p);
} uniforms[] = {
    {"bvec4", "true, true, false, true", [](Program& p) { p.setUniform("u", true, true, false, true); }},
    {"vec4", ".5, -2, 3, 4", [](Program& p) { p.setUniform("u", .5f, -2.f, 3.f, 4.f); }},
    {"sampler2D", "texture2D(u, vec2(0.5))", [](Program& p) { p.setUniformSampler2D("u", 1); }},
    {"sampler2DRect", "texture2DRect(u, vec2(0.5))", [](Program& p) { p.setUniformSampler2DRECT("u", 1); }},
    {"mat2[2]", "mat2(1, 2, 3, 4), mat2(5, 6, 7, 8)",
     [](Program& p) { p.setUniformMatrices2("u", 2, reals, 0); }},
    {"mat3", "1, 4, 7, 2, 5, 8, 3, 6, 9", [](Program& p) { p.setUniformMatrix3("u", reals, 1); }},
    {"mat4", "1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16",
     [](Program& p) { p.setUniformMatrix4("u", reals, 1); }},
    {"ivec2[2]", "ivec2(5, -6), ivec2(7, -8)", [](Program& p) { p.setUniform2("u", 2, ints); }},
    {"vec3[2]", "vec3(1, 2, 3), vec3(4, 5, 6)", [](Program& p) { p.setUniform3("u", 2, reals); }},
};

} // namespace

TEST_F(ObjectDriverTest, coloursOfEachKindAreDrawnTo) {
    Framebuffer framebuffer;
    framebuffer.bind();
    unsigned status = 0;
    EXPECT_FALSE(framebuffer.statusOkay(&status));
    EXPECT_EQ(status, unsigned(GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT));
    glViewport(0, 0, 2, 2);
    Texture2D levels(Internal::RGBA8, 4, 4, true, nullptr);
    TextureRECT rectangle(Internal::RGBA8, 3, 1, nullptr);
    Texture2DArray layers(Internal::RGBA8, 1, 2, 3, false);
    framebuffer.attach(&levels, 1, 0);
    draw(green);
    Texels level(4);
    bind(levels);
    levels.getPixelData(level.data(), 1, Format::RGBA, Type::UNSIGNED_BYTE, 4);
    EXPECT_EQ(level, Texels(4, 0xFF00FF00));
    framebuffer.detach(&levels, 0);
    EXPECT_FALSE(framebuffer.statusOkay(nullptr));
    framebuffer.attach(&rectangle, 0, 0);
    clear(0, 0, 1);
    EXPECT_EQ(texelsOf(rectangle), Texels(3, 0xFFFF0000));
    for (const auto& [layer, colour] : {std::pair(2u, red), {0u, blue}, {1u, green}}) {
        framebuffer.attach(&layers, layer, 0, 0);
        EXPECT_TRUE(framebuffer.statusOkay(nullptr));
        draw(colour);
    }
    EXPECT_EQ(texelsOf(layers),
              (Texels{0xFFFF0000, 0xFFFF0000, 0xFF00FF00, 0xFF00FF00, 0xFF0000FF, 0xFF0000FF}));
}

TEST_F(ObjectDriverTest, depthAndStencilBuffersAreAttached) {
    int tested = 0;
    for (const GLenum format :
         {GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT16, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT32,
          GL_DEPTH_STENCIL, GL_STENCIL_INDEX1, GL_STENCIL_INDEX4, GL_STENCIL_INDEX8, GL_STENCIL_INDEX16}) {
        SCOPED_TRACE(TokenName(format));
        const bool both = format == GL_DEPTH_STENCIL, stencil = both || format >= GL_STENCIL_INDEX1;
        Canvas canvas;
        Renderbuffer buffer(format, Canvas::size, Canvas::size);
        canvas.framebuffer.attach(&buffer, 0);
        unsigned status = 0;
        canvas.framebuffer.statusOkay(&status);
        if (glGetError() || status == GL_FRAMEBUFFER_UNSUPPORTED) {
            refused(TokenName(format), TokenName(status));
            continue;
        }
        ++tested;
        EXPECT_EQ(integerOf(GL_DEPTH_BITS) > 0, both || !stencil);
        EXPECT_EQ(integerOf(GL_STENCIL_BITS) > 0, stencil);
        canvas.framebuffer.detach(&buffer, 0);
        EXPECT_EQ(integerOf(GL_DEPTH_BITS), 0);
        EXPECT_EQ(integerOf(GL_STENCIL_BITS) > 0, both) << "what is both stays attached as the stencil";
    }
    EXPECT_GE(tested, 5);
}

TEST_F(ObjectDriverTest, whatDoesNotCompileOrLinkIsToldInTheDriversWords) {
    const char* undeclared = "void main() { gl_FragColor = vec4(undeclaredName); }";
    const char* unresolved = "vec4 missingFunction(); void main() { gl_FragColor = missingFunction(); }";
    FragmentShader shader;
    shader.load(1, &undeclared, nullptr);
    std::string told = messageOf([&] { shader.compile(true); });
    EXPECT_TRUE(told.starts_with("Program Compile Error: \n")) << told;
    EXPECT_NE(told.find("undeclaredName"), std::string::npos) << told;
    EXPECT_FALSE(shader.isCompiled());
    Program program;
    program.loadFragmentShader(1, &unresolved, nullptr);
    told = messageOf([&] { program.link(true); });
    EXPECT_TRUE(told.starts_with("Program Link Error: \n")) << told;
    EXPECT_NE(told.find("missingFunction"), std::string::npos) << told;
    program.link(false);
    EXPECT_EQ(messageOf([&] { program.enable(); }), "Program must be linked before being enabled");
}

TEST_F(ObjectDriverTest, uniformsOfEachKindArrive) {
    // For the samplers, green is in the second unit alone.
    TextureState::setActiveTextureUnit(1);
    Texture2D image(Internal::RGBA8, 1, 1, false, nullptr);
    TextureRECT rectangle(Internal::RGBA8, 1, 1, nullptr);
    fill(image, {0xFF00FF00});
    fill(rectangle, {0xFF00FF00});
    TextureState::setActiveTextureUnit(0);
    const Canvas canvas;
    for (const auto& [type, value, set] : uniforms) {
        const std::string isThere =
            type[0] == 's' ? value + " == vec4(0, 1, 0, 1)" : "u == " + type + "(" + value + ")";
        Linked program("#version 120\n#extension GL_ARB_texture_rectangle : enable\nuniform " + type +
                       " u; void main() { bool is = " + isThere + "; gl_FragColor = vec4(!is, is, 0, 1); }");
        draw(black);
        EXPECT_EQ(pixelAt(1, 1), red) << type << ", before";
        set(program);
        draw(black);
        EXPECT_EQ(pixelAt(1, 1), green) << type;
    }
}

TEST_F(ObjectDriverTest, startUseAndStopAHundredTimes) {
    for (int i = 0; i < repeated(100); ++i) {
        { const Client client; }
        TearDown(); // expects that no allocation, handle or context is left
        SetUp();
    }
}

TEST_F(ObjectDriverTest, aClientThatFailsMidwayLeavesNothing) {
    std::array<GLuint, 4> names = {};
    const auto live = [&] {
        return glIsTexture(names[0]) + gl().glIsBuffer(names[1]) + gl().glIsRenderbufferEXT(names[2]) +
               gl().glIsProgram(names[3]);
    };
    const std::string failure = messageOf([&] {
        const ContextOffscreen sharing(context_.get());
        sharing.makeCurrent();
        Client client;
        names = {client.block.objectID(), client.buffer.objectID(), client.depth.objectID(),
                 client.program.objectID()};
        EXPECT_EQ(live(), 4);
        client.buffer.bind();
        client.buffer.map(GL_WRITE_ONLY);
        client.canvas.framebuffer.attach(static_cast<Renderbuffer*>(nullptr), 0);
    });
    EXPECT_EQ(failure, "Enforce poBuffer != NULL");
    EXPECT_EQ(Context::currentContext(), nullptr);
    context_->makeCurrent();
    EXPECT_EQ(live(), 0);
    const Client next;
}

TEST_F(ObjectDriverTest, theProbeOfFilteringAgreesWithAnExperiment) {
    ExtensionManager* manager = ExtensionManager::Instance();
    if (manager->vendor() == ExtensionManager::VENDOR_NVIDIA ||
        manager->vendor() == ExtensionManager::VENDOR_ATI)
        GTEST_SKIP() << "the vendor's name can be the answer";
    const bool float32 = manager->supportsFloatFiltering(), float16 = manager->supportsHalfFiltering();
    EXPECT_EQ(Context::currentContext(), context_->renderContext());
    EXPECT_EQ(ExtensionManager::Instance(), manager);
    const bool probes = manager->supportsRenderToTexture();
    if (!probes)
        refused("a probe of filtering", "WGL_ARB_render_texture is not named");
    const auto filters = [](Internal format) {
        const Canvas canvas;
        Texture2D edge(format, 2, 1, false, nullptr);
        fill(edge, {0xFF000000, 0xFFFFFFFF});
        edge.setFilter(Texture::Filter::LINEAR, Texture::Filter::LINEAR);
        TextureUnit::Unit(0)->enable2D();
        draw(white);
        return pixelAt(3, 1)[0] > 0 && pixelAt(3, 1)[0] < 255;
    };
    const bool shader4 = manager->isSupported(GL_EXT_GPU_SHADER4), half = manager->supports16BitFloat();
    EXPECT_EQ(float32, probes && manager->supportsFloatingPointTextures() && filters(Internal::RGBA32F));
    EXPECT_EQ(float16, probes && shader4 && half && filters(Internal::RGBA16F));
}
