#include "FakeObjects.h"
#include "StartedLibrary.h"
#include "ogl/Framebuffer.h"
#include "ogl/Renderbuffer.h"
#include "ogl/StateObject.h"
#include "ogl/Texture2D.h"
#include "ogl/Texture2DArray.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <optional>

using namespace ZLT::OGL;
using testing::ElementsAre;

namespace {

struct FramebufferTest : testing::Test {
    FramebufferTest() { objects.integers = {{GL_MAX_COLOR_ATTACHMENTS, 4}, {GL_MAX_RENDERBUFFER_SIZE, 100}}; }
    LibraryWithAllOfGL library;
    FakeObjects objects;
};
const std::string attachTexture = "glFramebufferTexture2DEXT(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT",
                  attachBuffer = "glFramebufferRenderbufferEXT(GL_FRAMEBUFFER, GL_";

TEST_F(FramebufferTest, eachAttachmentRefusesInItsOrderAndPasses) {
    Framebuffer framebuffer;                                                 // 5
    Texture2D texture(Texture::InternalFormat::RGBA8, 4, 4, false, nullptr); // 6
    Texture2DArray array(Texture::InternalFormat::RGBA8, 4, 4, 3, false);    // 7
    Renderbuffer color(GL_RGBA8, 4, 4);                                      // 8
    // What is refused, in this order, and the call that is made at last.
    const auto run = [&](auto* object, GLenum binding, const char* text, const auto& operation) {
        const auto failure = [&](auto* of, int index) { return failureOf([&] { operation(of, index); }); };
        objects.takeCalls();
        const bool ofBuffer = std::is_same_v<decltype(object), Renderbuffer*>;
        EXPECT_EQ(ofBuffer ? "!Enforce poBuffer != NULL" : "!Enforce poTex != NULL",
                  failure(static_cast<decltype(object)>(nullptr), 4));
        objects.integers[binding] = static_cast<int>(object->objectID());
        EXPECT_EQ(binding != 0 ? "!Texture cannot be bound during attachment to framebuffer object" : text,
                  failure(object, 4));
        objects.integers[binding] = 0;
        EXPECT_EQ(text, failure(object, 4));
        framebuffer.bind();
        EXPECT_EQ("!Invalid color buffer attachment only 4 attachments supported with 4 requested",
                  failure(object, 4));
        EXPECT_THAT(objects.takeCalls(), ElementsAre("glBindFramebufferEXT(GL_FRAMEBUFFER, 5)"));
        EXPECT_EQ("", failure(object, 3));
        framebuffer.unbind();
        return objects.takeCalls().front();
    };
    const char* const toAttach = "!Framebuffer Objects must be bound to attach objects";
    const char* const toDetach = "!Framebuffer Object must be bound before detaching objects";
    EXPECT_EQ(attachTexture + "3, GL_TEXTURE_2D, 6, 2)",
              run(&texture, GL_TEXTURE_BINDING_2D, toAttach,
                  [&](Texture2* of, int index) { framebuffer.attach(of, 2, index); }));
    EXPECT_EQ("glFramebufferTextureLayer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT3, 7, 1, 2)",
              run(&array, GL_TEXTURE_BINDING_2D_ARRAY, toAttach,
                  [&](Texture2DArray* of, int index) { framebuffer.attach(of, 2, 1, index); }));
    EXPECT_EQ(attachBuffer + "COLOR_ATTACHMENT3, GL_RENDERBUFFER, 8)",
              run(&color, 0, toAttach, [&](auto* of, int index) { framebuffer.attach(of, index); }));
    objects.integers[GL_TEXTURE_BINDING_2D] = 6; // which is no reason to refuse here
    const auto detach = [&](auto* of, int index) { framebuffer.detach(of, index); };
    EXPECT_EQ(attachTexture + "3, GL_TEXTURE_2D, 0, 0)", run(&texture, 0, toDetach, detach));
    EXPECT_EQ(attachBuffer + "COLOR_ATTACHMENT3, GL_RENDERBUFFER, 0)", run(&color, 0, toDetach, detach));
    framebuffer.bind();
    EXPECT_EQ("!Array Index too large", failureOf([&] { framebuffer.attach(&array, 3, 0, 0); }));
    Renderbuffer depth(GL_DEPTH_COMPONENT24, 4, 4), both(GL_DEPTH_STENCIL, 4, 4); // 9, 10
    const std::string noIndex = "!Color buffer index is not supported with attachment:GL_DEPTH_ATTACHMENT";
    objects.takeCalls();
    EXPECT_EQ(noIndex, failureOf([&] { framebuffer.attach(&depth, 1); }));
    EXPECT_EQ(noIndex, failureOf([&] { framebuffer.detach(&both, 3); }));
    framebuffer.attach(&depth, 0);
    framebuffer.attach(&both, 0);
    framebuffer.detach(&both, 0); // and the stencil stays
    const std::string atDepth = attachBuffer + "DEPTH_ATTACHMENT, GL_RENDERBUFFER, ";
    EXPECT_THAT(objects.takeCalls(),
                ElementsAre(atDepth + "9)", atDepth + "10)",
                            attachBuffer + "STENCIL_ATTACHMENT, GL_RENDERBUFFER, 10)", atDepth + "0)"));
}

TEST_F(FramebufferTest, theStatusIsKnownWhileBound) {
    const auto make = [] { const Framebuffer made; };
    std::optional<Framebuffer> framebuffer(std::in_place);
    unsigned int status = 0;
    EXPECT_EQ("!Framebuffer object must be bound before calling statusOkay()",
              failureOf([&] { framebuffer->statusOkay(&status); }));
    EXPECT_EQ("!Framebuffer object must be bound before calling unbind()",
              failureOf([&] { framebuffer->unbind(); }));
    framebuffer->bind();
    FakeGL::setResult("glCheckFramebufferStatusEXT", GLenum(GL_FRAMEBUFFER_COMPLETE));
    EXPECT_TRUE(framebuffer->statusOkay(nullptr));
    FakeGL::setResult("glCheckFramebufferStatusEXT", GLenum(GL_FRAMEBUFFER_UNSUPPORTED));
    EXPECT_FALSE(framebuffer->statusOkay(&status));
    EXPECT_EQ(GLenum(GL_FRAMEBUFFER_UNSUPPORTED), status);
    objects.takeCalls();
    framebuffer.reset();
    EXPECT_THAT(objects.takeCalls(), ElementsAre("glDeleteFramebuffersEXT(1, p)")) << "and no unbind";
    objects.nextName = 0;
    EXPECT_EQ("!n_ObjectID != 0", failureOf(make));
    EXPECT_TRUE(Framebuffer::isSupported() && Renderbuffer::isSupported());
    releaseOGLContext();
    EXPECT_FALSE(Framebuffer::isSupported() || Renderbuffer::isSupported());
    for (const auto& failure : {failureOf(make), failureOf([] { const Renderbuffer made(0, 101, 1); })})
        EXPECT_EQ("!ExtensionManager::Instance()->isSupported(GL_EXT_FRAMEBUFFER_OBJECT)", failure);
}

TEST_F(FramebufferTest, aRenderbufferIsMadeAndTheOneBeforeStaysBound) {
    objects.integers[GL_RENDERBUFFER_BINDING] = 99;
    {
        Renderbuffer made(GL_RGBA8, 100, 100);
        EXPECT_EQ("!Framebuffer object must be bound before calling unbind()",
                  failureOf([&] { made.unbind(); }));
    }
    const std::string size = "glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, p)",
                      ask = "glGetIntegerv(GL_RENDERBUFFER_BINDING, p)",
                      bind = "glBindRenderbufferEXT(GL_RENDERBUFFER, ",
                      storage = "glRenderbufferStorageEXT(GL_RENDERBUFFER, GL_RGBA8, ";
    EXPECT_THAT(objects.takeAllCalls(), ElementsAre(size, size, "glGenRenderbuffersEXT(1, p)", ask,
                                                    bind + "5)", storage + "100, 100)", ask, bind + "0)",
                                                    bind + "99)", ask, "glDeleteRenderbuffersEXT(1, p)"));
    EXPECT_EQ("!Can't create renderbuffer of width 101, a max width of 100 is supported",
              failureOf([] { const Renderbuffer made(GL_RGBA8, 101, 102); }));
    EXPECT_EQ("!Can't create renderbuffer of width 102, a max height of 100 is supported",
              failureOf([] { const Renderbuffer made(GL_RGBA8, -1, 102); }));
    struct Exposed : Renderbuffer {
        using Renderbuffer::attachment;
        using Renderbuffer::Renderbuffer;
    };
    const std::pair<GLenum, std::vector<unsigned int>> attachments[] = {
        {GL_DEPTH_ATTACHMENT, {0x84F9, 0x1902, 0x81A5, 0x81A6, 0x81A7}},
        {GL_STENCIL_ATTACHMENT, {0x8D45, 0x8D46, 0x8D47, 0x8D48, 0x8D49}},
        {GL_COLOR_ATTACHMENT0, {0x84F8, 0x84FA, 0x1901, 0x1903, 0x81A4, 0x81A8, 0x8D44, 0x8D4A}}};
    for (const auto& [attachment, formats] : attachments)
        for (const unsigned int format : formats)
            EXPECT_EQ(attachment, Exposed(format, 1, 1).attachment()) << format;
    objects.takeCalls();
    objects.nextName = 0;
    EXPECT_EQ("!n_ObjectID != 0", failureOf([] { const Renderbuffer made(GL_RGBA8, 1, 1); }));
    EXPECT_THAT(objects.takeCalls(),
                ElementsAre("glGenRenderbuffersEXT(1, p)", bind + "0)", storage + "1, 1)"));
}

TEST_F(FramebufferTest, theStateIsThatOfANewContextButForTheColor) {
    objects.integers[GL_MAX_TEXTURE_COORDS] = 3;
    objects.more = [](const FakeGL::Call& call) {
        const float color[] = {0.5f, 0.25f, 0.75f, 1};
        if (call.function == "glGetFloatv" && call.arguments[0] == FakeGL::Value(GLenum(GL_CURRENT_COLOR)))
            std::ranges::copy(color, call.arguments[1].as<float*>());
    };
    std::optional<StateObject_2_0> current(StateObject_2_0::CurrentState());
    StateObject_2_0 one;
    EXPECT_EQ(1.0f, one.currentColor()[0]);
    one = StateObject_2_0(*current);
    current.reset();
    const struct {
        const char* name;
        ZLT::float4 value, expected;
    } vectors[] = {{"color", one.currentColor(), {0.5f, 0.25f, 0.75f, 1}},
                   {"secondary color", one.currentSecondaryColor(), {0, 0, 0, 1}},
                   {"texture coordinates", one.currentTextureCoords(2), {0, 0, 0, 1}},
                   {"raster position", one.currentRasterPosition(), {0, 0, 0, 1}},
                   {"raster color", one.currentRasterColor(), {1, 1, 1, 1}},
                   {"raster texture coordinates", one.currentRasterTextureCoords(2), {0, 0, 0, 1}}};
    for (const auto& [name, value, expected] : vectors)
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(expected[i], value[i]) << name << ' ' << i;
    const ZLT::float3 normal = one.currentNormal();
    EXPECT_THAT((std::array{normal[0], normal[1], normal[2]}), ElementsAre(0, 0, 1));
    EXPECT_EQ(1, one.currentIndex());
    EXPECT_EQ(0, one.currentFogCoord());
    EXPECT_EQ(0, one.currentRasterDistance());
    EXPECT_EQ(1, one.currentRasterIndex());
    EXPECT_EQ(0u, one.activeTexture());
    EXPECT_EQ(3u, one.maxTextureCoords());
    EXPECT_TRUE(one.currentRasterPositionValid());
    EXPECT_TRUE(one.edgeFlag());
    EXPECT_EQ("!iTexture < maxTextureCoords()", failureOf([&] { one.currentTextureCoords(3); }));
    EXPECT_EQ("!iTexture < maxTextureCoords()", failureOf([&] { one.currentRasterTextureCoords(3); }));
}

const std::string formats = " GL_ARB_half_float_pixel GL_ARB_texture_float", gpu4 = " GL_EXT_gpu_shader4";

// Whether halves and floats filter, and the contexts made to find out; one byte of what is read isn't 0.
struct Filtering {
    std::string name, answers, vendor = "Vendor", version = "3.0", extensions = formats + gpu4,
                               wgl = "WGL_ARB_render_texture";
    std::size_t at = 93;
    unsigned int value = 128, firstName = 5;

    // Asks twice. All that is called on GL.
    std::vector<std::string> run() {
        auto driver = driverOf(version, "GL_EXT_framebuffer_object GL_ARB_multitexture" + extensions);
        driver.vendor = vendor;
        driver.wglExtensions = wgl;
        driver.integers[GL_MAX_COLOR_ATTACHMENTS] = 1;
        for (const char* name : {"wglBindTexImageARB", "wglReleaseTexImageARB", "wglSetPbufferAttribARB"})
            driver.functions[name] = reinterpret_cast<PROC>(FakeGL::addressOf("glActiveTexture"));
        OnDriver world(driver);
        ExtensionManager& manager = world.manager();
        FakeObjects objects;
        objects.nextName = firstName;
        objects.more = [this](const FakeGL::Call& call) {
            if (call.function == "glGetTexImage")
                call.arguments[4].as<unsigned char*>()[at] = static_cast<unsigned char>(value);
        };
        for (int times = 0; times < 2; ++times) {
            std::string found;
            for (const auto question :
                 {&ExtensionManager::supportsHalfFiltering, &ExtensionManager::supportsFloatFiltering}) {
                world.system.takeCalls();
                found += (manager.*question)() ? "yes " : "no ";
                const auto made = std::ranges::count(world.system.takeCalls(), "wglShareLists(c1, c2)");
                found += std::to_string(made) + ' ';
                EXPECT_EQ(world.context->renderContext(), wglGetCurrentContext());
                EXPECT_EQ("", failureOf([&] { EXPECT_EQ(&manager, ExtensionManager::Instance()); }));
                EXPECT_EQ(1u, world.system.contexts());
            }
            EXPECT_EQ(answers, found) << name;
            std::ranges::replace(answers, '1', '0');
            value ^= 128; // which nobody looks at any more
        }
        return objects.takeCalls();
    }
};

TEST(FilteringProbeTest, vendorsAreKnownAndOthersAreTriedOnce) {
    Filtering rows[] = {{"NVIDIA", "no 0 no 0 ", "NVIDIA", "3.0", formats},
                        {"NVIDIA, shader 4", "yes 0 yes 0 ", "NVIDIA", "2.1", gpu4},
                        {"ATI", "no 0 yes 0 ", "ATI", "3.0", formats},
                        {"ATI, shader 4", "yes 0 yes 0 ", "ATI", "3.0", gpu4},
                        {"ATI below 3.0", "yes 1 yes 1 ", "ATI", "2.1"},
                        {"Intel", "no 0 yes 1 ", "Intel", "3.0", formats},
                        {"no half", "no 0 yes 1 ", "Vendor", "3.0", gpu4 + " GL_ARB_texture_float"},
                        {.name = "no render texture", .answers = "no 0 no 0 ", .wgl = ""},
                        {.name = "grey in the first red", .answers = "yes 1 yes 1 ", .at = 0, .value = 1},
                        {.name = "white", .answers = "no 1 no 1 ", .at = 93, .value = 255},
                        {.name = "grey in a green", .answers = "no 1 no 1 ", .at = 94},
                        {.name = "grey in the second row", .answers = "no 1 no 1 ", .at = 96},
                        {.name = "a probe that fails", .answers = "no 1 no 1 ", .firstName = 0}};
    for (Filtering& row : rows)
        row.run();
}

TEST(FilteringProbeTest, itDrawsAnEdgeAndMagnifiesIt) {
    const std::vector<std::string> calls =
        Filtering{"half alone", "yes 1 no 0 ", "Vendor", "3.0", gpu4 + " GL_ARB_half_float_pixel"}.run();
    std::string drawn;
    for (const std::string& call : calls)
        for (const char* part : {"TexImage", "Viewport(", "LINEAR", "TexCoord2f(", "Vertex2f("})
            if (call.find(part) < call.size())
                drawn += call.substr(2) + ' ';
    const std::string setting = "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_";
    EXPECT_EQ("TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA16F, 16, 16, 0, GL_BGRA, GL_UNSIGNED_BYTE, null) "
              "Viewport(0, 0, 16, 16) Vertex2f(0, 0) Vertex2f(0, 1) Vertex2f(0.5, 1) Vertex2f(0.5, 0) "
              "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 32, 32, 0, GL_BGRA, GL_UNSIGNED_BYTE, null) "
              "Viewport(0, 0, 32, 32) " +
                  setting + "MIN_FILTER, GL_LINEAR) " + setting +
                  "MAG_FILTER, GL_LINEAR) TexCoord2f(0, 0) Vertex2f(0, 0) TexCoord2f(0, 1) Vertex2f(0, 1) "
                  "TexCoord2f(1, 1) Vertex2f(1, 1) TexCoord2f(1, 0) Vertex2f(1, 0) "
                  "GetTexImage(GL_TEXTURE_2D, 0, GL_RGB, GL_UNSIGNED_BYTE, p) ",
              drawn);
}

} // namespace
