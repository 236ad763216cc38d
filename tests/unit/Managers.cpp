#include "StartedLibrary.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/TextureState.h"
#include "extensionator/win/WglFunctions.h"
#include "ogl/ContextWrapped.h"

#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <optional>
#include <thread>

using namespace ZLT::OGL;
using EM = ExtensionManager;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

template <class T>
T at(std::intptr_t address) {
    return reinterpret_cast<T>(address); // NOLINT(performance-no-int-to-ptr)
}

// In the order of their values.
std::vector<std::string> extensionNames() {
    std::ifstream in(ZLT_TABLES "/extensions.tsv");
    std::vector<std::string> names;
    std::string line;
    for (std::getline(in, line); std::getline(in, line);)
        names.push_back(line.substr(line.find('\t') + 1, line.rfind('\t') - line.find('\t') - 1));
    return names;
}

TEST(ManagerTest, theVersionDecidesOnWhatIsLoaded) {
    const struct {
        const char* version;
        unsigned int major, minor;
        int release, loaded; // from OPEN_GL_1_2
        const char* text;
    } rows[] = {
        {"1.1", 1, 1, -1, 0, ""},
        {"1.2", 1, 2, -1, 1, ""},
        {"1.3", 1, 3, -1, 2, ""},
        {"1.4", 1, 4, -1, 3, ""},
        {"1.5 Mesa 7.1", 1, 5, -1, 4, "Mesa 7.1"},
        {"2.0", 2, 0, -1, 5, ""},
        {"2.1.2 NVIDIA 169.12", 2, 1, 2, 6, "NVIDIA 169.12"},
        {"2.2", 2, 2, -1, 0, ""},
        {"3.0 Build 7", 3, 0, -1, 7, "Build 7"},
        {"4.5.0", 3, 0, 0, 7, ""},
        {"4.6 (Core Profile) Mesa 22.3.6", 3, 0, -1, 7, "(Core Profile) Mesa 22.3.6"},
        {"10.11.12.13 14", 3, 0, 12, 7, "14"},
        {"2", 2, 2, -1, 0, ""},
        {"2 beta", 2, 2, -1, 0, "beta"},
        {"GL", 0, 0, -1, 0, ""},
        {"", 0, 0, -1, 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.version);
        OnDriver world(driverOf(row.version));
        EM& manager = world.manager();
        EXPECT_EQ(row.major, manager.majorVersion());
        EXPECT_EQ(row.minor, manager.minorVersion());
        EXPECT_EQ(row.release != -1, manager.hasReleaseVersion());
        EXPECT_EQ(row.text, manager.additionalVersionInfo());
        if (row.release == -1)
            EXPECT_EQ("!nReleaseVersion_ != -1", failureOf([&] { manager.releaseVersion(); }));
        else
            EXPECT_EQ(static_cast<unsigned int>(row.release), manager.releaseVersion());
        for (int version = OPEN_GL_1_2; version <= OPEN_GL_3_0; ++version)
            EXPECT_EQ(version < row.loaded, manager.isSupported(teExtension(version))) << version;
        EXPECT_EQ(row.loaded > 0, manager.table().glTexImage3D != nullptr);
    }
}

TEST(ManagerTest, everyNameHasItsValueAndIsSupportedWhenNamed) {
    FakeDriver driver = driverOf("1.1", "");
    std::string wglNames;
    std::ifstream functions(ZLT_TABLES "/wgl_extension_functions.tsv");
    std::string name;
    while (functions >> name)
        // Those two are called, and the driver has them.
        if (name.starts_with("wgl") && name != "wglGetExtensionsStringARB" &&
            name != "wglCreateContextAttribsARB")
            driver.functions[name] = at<PROC>(static_cast<std::intptr_t>(0x1000 + driver.functions.size()));
    const std::vector<std::string> names = extensionNames();
    ASSERT_EQ(368u, names.size());
    for (const std::string& extension : names)
        (extension.starts_with("WGL_") ? wglNames : *driver.extensions) += ' ' + extension + ' ';
    driver.wglExtensions = wglNames;
    OnDriver world(driver);
    EM& manager = world.manager();
    for (std::size_t value = 0; value < names.size(); ++value) {
        const bool ofWgl = names[value].starts_with("WGL_");
        EXPECT_EQ(ofWgl ? EXTENSION_NOT_FOUND : teExtension(value),
                  manager.nameToEnumGL(names[value].c_str()));
        EXPECT_TRUE(manager.isSupported(teExtension(value))) << names[value];
        EXPECT_TRUE(manager.isSupported(names[value].c_str()));
        EXPECT_EQ(names[value], EM::extensionName(teExtension(value)));
        EXPECT_THAT(manager.missingEntryPoints(teExtension(value)), IsEmpty()) << names[value];
        EXPECT_EQ(!ofWgl, manager.initializeGL(teExtension(value)));
        EXPECT_TRUE(manager.initialize(teExtension(value)));
    }
    for (const char* unknown :
         {"GL_ARB_multitextur", "GL_ARB_multitextures", "gl_arb_multitexture", "OPEN_GL_1_2", ""})
        EXPECT_EQ(EXTENSION_NOT_FOUND, manager.nameToEnumGL(unknown)) << unknown;
    for (const int value : {368, 415, 416, 417, -1}) {
        EXPECT_FALSE(manager.isSupported(teExtension(value)));
        EXPECT_FALSE(manager.initialize(teExtension(value)));
        EXPECT_EQ(nullptr, EM::extensionName(teExtension(value)));
        EXPECT_THAT(manager.missingEntryPoints(teExtension(value)), IsEmpty());
    }
    EXPECT_EQ(EM::knownExtensions(), manager.supportedExtensions());
    EXPECT_EQ(EXTENSION_NOT_FOUND, EM::extensionByName(nullptr));
    // The pointers, by the values that the driver gave.
    EXPECT_EQ(driver.functions.at("wglSetStereoEmitterState3DL"),
              at<PROC>(std::intptr_t(_wcgmSetStereoEmitterState3DL)));
    EXPECT_EQ(driver.functions.at("wglMakeContextCurrentARB"),
              at<PROC>(std::intptr_t(_wcgmMakeContextCurrentARB)));
    EXPECT_EQ(driver.functions.at("wglDeleteDCNV"), at<PROC>(std::intptr_t(_wcgmDeleteDCNV)));
    EXPECT_EQ(driver.functions.at("wglWaitForSbcOML"), at<PROC>(std::intptr_t(_wcgmWaitForSbcOML)));
}

TEST(ManagerTest, oneMissingFunctionLeavesOutItsExtensionAlone) {
    // Some drivers answer with a small number for what they don't know.
    for (const int address : {0, 1, 2, 3, -1}) {
        SCOPED_TRACE(address);
        FakeDriver driver =
            driverOf("1.3", " GL_EXT_fog_coord  GL_ARB_multitexture GL_SGIX_sprite_ GL_EXT_abgr ");
        driver.wglExtensions = "WGL_EXT_swap_control WGL_EXT_multisample";
        for (const char* name : {"glActiveTextureARB", "glTexImage3D", "wglSwapIntervalEXT"})
            driver.functions[name] = at<PROC>(address);
        OnDriver world(driver);
        EM& manager = world.manager();
        const FunctionTable& table = manager.table();
        for (const teExtension there : {OPEN_GL_1_3, GL_EXT_FOG_COORD, GL_EXT_ABGR, WGL_EXT_MULTISAMPLE})
            EXPECT_TRUE(manager.isSupported(there)) << there;
        for (const teExtension left :
             {OPEN_GL_1_2, GL_ARB_MULTITEXTURE, WGL_EXT_SWAP_CONTROL, GL_SGIX_SPRITE})
            EXPECT_FALSE(manager.isSupported(left)) << left;
        EXPECT_EQ(nullptr, table.glActiveTextureARB);
        EXPECT_THAT(manager.missingEntryPoints(GL_ARB_MULTITEXTURE), ElementsAre("glActiveTextureARB"));
        EXPECT_THAT(manager.missingEntryPoints(OPEN_GL_1_2), ElementsAre("glTexImage3D"));
        EXPECT_THAT(manager.missingEntryPoints(WGL_EXT_SWAP_CONTROL), ElementsAre("wglSwapIntervalEXT"));
        EXPECT_TRUE(manager.isVersionSupported(1, 1) && manager.isVersionSupported(1, 3));
        EXPECT_FALSE(manager.isVersionSupported(1, 2) || manager.isVersionSupported(3, 1));
        EXPECT_EQ("1.3", manager.driverVersion());
        EXPECT_EQ("", manager.driverShadingLanguageVersion());
        EXPECT_THAT(manager.driverExtensions(),
                    ElementsAre("GL_EXT_fog_coord", "GL_ARB_multitexture", "GL_SGIX_sprite_", "GL_EXT_abgr",
                                "WGL_EXT_swap_control", "WGL_EXT_multisample"));
        EXPECT_NE(nullptr, table.glMultiTexCoord4svARB)
            << "loading goes on behind a function that is missing";
        EXPECT_EQ(nullptr, _wcgmSwapIntervalEXT);
        EXPECT_NE(nullptr, _wcgmGetSwapIntervalEXT);
        // What isn't named isn't loaded until it is asked for, and isn't supported even then.
        EXPECT_EQ(nullptr, table.glSpriteParameterfSGIX);
        EXPECT_TRUE(manager.initialize(GL_SGIX_SPRITE));
        EXPECT_NE(nullptr, table.glSpriteParameterfSGIX);
        EXPECT_FALSE(manager.isSupported(GL_SGIX_SPRITE));
        EXPECT_FALSE(manager.initialize(GL_ARB_MULTITEXTURE));
        EXPECT_FALSE(manager.initialize(WGL_EXT_SWAP_CONTROL));
        EXPECT_TRUE(manager.init_GL_EXT_abgr());
        EXPECT_FALSE(manager.init_GL_VERSION_1_2());
    }
}

TEST(ManagerTest, wglExtensionsAreKnownByTheArbStringAlone) {
    FakeDriver driver = driverOf("3.0");
    for (const std::optional<std::string>& names :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        SCOPED_TRACE(names ? "an empty string" : "no function");
        driver.wglExtensions = names;
        driver.functions["wglGetExtensionsStringEXT"] = at<PROC>(0x1000);
        OnDriver world(driver);
        for (int value = WGL_3DFX_MULTISAMPLE; value <= WGL_OML_SYNC_CONTROL; ++value)
            EXPECT_FALSE(world.manager().isSupported(teExtension(value)));
    }
    OnDriver world(driverOf("3.0"));
    world.system.fail("wglGetExtensionsStringARB", 3); // null, behind the two bootstraps
    EXPECT_FALSE(world.manager().isSupported(WGL_EXT_SWAP_CONTROL));
}

TEST(ManagerTest, vendorsAndTheirRuleForOddTextureSizes) {
    const struct {
        const char* vendor;
        EM::teVendor value;
        bool byVersion;
    } rows[] = {
        {"ATI Technologies Inc.", EM::VENDOR_ATI, true}, {"NVIDIA Corporation", EM::VENDOR_NVIDIA, false},
        {"NVIDIA or ATI", EM::VENDOR_ATI, true},         {"The Intel NVIDIA", EM::VENDOR_NVIDIA, false},
        {"Mesa/X.org, Intel", EM::VENDOR_INTEL, true},   {"nvidia", EM::VENDOR_UNKNOWN, true}};
    const char* const byName = "GL_ARB_texture_non_power_of_two";
    for (const auto& row : rows)
        for (const char* version : {"1.5", "2.0"})
            for (const char* extensions : {"", byName}) {
                SCOPED_TRACE(row.vendor + std::string(", ") + version + ' ' + extensions);
                FakeDriver driver = driverOf(version, extensions);
                driver.vendor = row.vendor;
                OnDriver world(driver);
                EXPECT_EQ(row.value, world.manager().vendor());
                const bool supported =
                    extensions == byName || (row.byVersion && version == std::string("2.0"));
                EXPECT_EQ(supported, world.manager().supportsNonPowerOfTwoTextures());
                EXPECT_EQ(supported, TextureState::supportsNonPowerOfTwo());
            }
}

TEST(ManagerTest, aCoreProfileNamesItsExtensionsOneByOne) {
    const struct {
        const char* version;
        bool hasGetStringi;
        bool supported;
    } rows[] = {{"3.2", true, true}, {"3.2", false, false}, {"2.1", true, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.version + std::string(row.hasGetStringi ? "" : " without glGetStringi"));
        FakeDriver driver = driverOf(row.version);
        driver.extensions.reset();
        driver.indexedExtensions = {"GL_EXT_abgr", "GL_ARB_multitexture"};
        driver.integers[GL_NUM_EXTENSIONS] = 3; // one more than there are
        if (!row.hasGetStringi)
            driver.functions["glGetStringi"] = nullptr;
        OnDriver world(driver);
        FakeGL::pushError(GL_INVALID_ENUM); // as the question for the whole string raises it
        EXPECT_EQ(row.supported, world.manager().isSupported(GL_EXT_ABGR));
        EXPECT_EQ(row.supported, world.manager().isSupported(GL_ARB_MULTITEXTURE));
        EXPECT_EQ(row.version[0] == '3' ? 0u : 0x0500u, glGetError()) << "not left for a client's call";
    }
    FakeDriver silent;
    for (std::optional<std::string>* text : {&silent.vendor, &silent.version, &silent.extensions})
        text->reset();
    OnDriver world(silent);
    EXPECT_EQ(0u, world.manager().majorVersion());
    EXPECT_EQ(EM::VENDOR_UNKNOWN, world.manager().vendor());
}

const char* const unknownContext = "!currentContext either not created with ZLT::OGL";

TEST(ManagerTest, theCurrentContextDecidesWhichManagerAnswers) {
    OnDriver world(driverOf("3.0"));
    const DISPLAY_DEVICEA device = world.add(driverOf("1.5"));
    const HWND window = world.system.makeWindow();
    const HGLRC foreign = world.system.makeContext(window);
    const auto current = [&](HGLRC context) {
        wglMakeCurrent(GetDC(window), context);
        return EM::Instance();
    };
    for (const HGLRC context : {HGLRC(), foreign})
        EXPECT_EQ(unknownContext, failureOf([&] { current(context); })) << "the library isn't started";
    EM* const first = &world.manager();
    const ContextOffscreen alike(&*world.context), other(device);
    EXPECT_EQ(first, current(alike.renderContext()));
    EM* const second = current(other.renderContext());
    EXPECT_NE(first, second);
    EXPECT_EQ(1u, second->majorVersion());
    EXPECT_EQ(first, current(world.context->renderContext()));

    EM* const none = current(nullptr);
    EXPECT_EQ(none, EM::Instance());
    EXPECT_EQ(0u, none->majorVersion() + none->minorVersion());
    EXPECT_EQ(EM::VENDOR_UNKNOWN, none->vendor());
    EXPECT_FALSE(none->hasReleaseVersion() || none->supports16BitFloat());
    for (int value = 0; value <= EXTENSION_NOT_FOUND; ++value)
        EXPECT_FALSE(none->isSupported(teExtension(value)));
    const FunctionTable empty = {};
    EXPECT_EQ(0, std::memcmp(&empty, &none->table(), sizeof(empty)));

    // Somebody else's context is known while it is wrapped. The first registration counts, and the first
    // destruction.
    EXPECT_EQ(unknownContext, failureOf([&] { current(foreign); }));
    const Context* wrapped = new ContextWrapped(GetDC(window), foreign, nullptr);
    const Context* again = new ContextWrapped(GetDC(window), foreign, world.system.makeWindow(1500, 0));
    EXPECT_EQ(first, current(foreign));
    delete wrapped;
    EXPECT_EQ(unknownContext, failureOf([&] { current(foreign); }));
    EXPECT_EQ("!found", failureOf([&] { delete again; }));
    try {
        EM::Instance();
        ADD_FAILURE() << "no exception";
    } catch (const ZLT::InternalException& exception) {
        EXPECT_STREQ("..\\..\\extensionator\\ExtensionManager", exception.file());
    }
    wglMakeCurrent(nullptr, nullptr);
}

TEST(ManagerTest, aDeviceThatTurnsUpLaterGetsItsOwnWithTheFirstContextOnIt) {
    OnDriver world(driverOf("3.0"));
    EM* const first = &world.manager();
    const HGLRC before = wglGetCurrentContext();
    const DISPLAY_DEVICEA device = world.add(driverOf("1.4"));
    // Each context makes a window; the manager's bootstrap is the second.
    world.system.fail("CreateWindowExA", 2);
    EXPECT_EQ("!Unable to create window", failureOf([&] { const ContextOffscreen made(device); }));
    EXPECT_EQ(before, wglGetCurrentContext());
    const ContextOffscreen made(device), second(device);
    EXPECT_EQ(before, wglGetCurrentContext());
    made.makeCurrent();
    EM* const late = EM::Instance();
    EXPECT_NE(first, late);
    EXPECT_EQ(4u, late->minorVersion());
    second.makeCurrent();
    EXPECT_EQ(late, EM::Instance());
    wglMakeCurrent(nullptr, nullptr);
}

std::atomic<int> calledOn[2];
template <int number>
void APIENTRY countingActiveTexture(GLenum) {
    ++calledOn[number];
}

TEST(ManagerTest, threadsOnTwoDevicesReachTheirOwnDrivers) {
    const auto proc = [](auto function) {
        return reinterpret_cast<PROC>(reinterpret_cast<void (*)()>(function));
    };
    OnDriver world(driverOf("1.3"));
    const DISPLAY_DEVICEA device = world.add(driverOf("1.3"));
    world.system.devices[0].driver.functions["glActiveTexture"] = proc(countingActiveTexture<0>);
    world.system.devices[1].driver.functions["glActiveTexture"] = proc(countingActiveTexture<1>);
    world.manager();
    const ContextOffscreen other(device), alike(&*world.context);
    OpenGLErrorChecker checker;
    const auto draw = [&](const Context& a, const Context& b, int calls) {
        for (int i = 0; i < calls; ++i) {
            (i % 2 == 0 ? a : b).makeCurrent();
            checker.cgmActiveTexture("a.cpp", 1, GL_TEXTURE0);
        }
        releaseOGLContext();
    };
    releaseOGLContext();
    std::thread first([&] { draw(*world.context, alike, 500); }), second([&] { draw(other, other, 300); });
    first.join();
    second.join();
    EXPECT_EQ(500, calledOn[0]);
    EXPECT_EQ(300, calledOn[1]);
}

TEST(ManagerTest, capabilitiesFoldVersionAndExtensions) {
    const struct {
        const char* name;
        bool (EM::*query)() const;
        bool ofCurrent;
    } queries[] = {{"float", &EM::supportsFloatingPointTextures, false},
                   {"half", &EM::supports16BitFloat, true},
                   {"multi", &EM::supportsMultiTexture, false},
                   {"buffers", &EM::supportsDrawBuffers, false},
                   {"clamp", &EM::supportsClampToEdge, false},
                   {"3d", &EM::supportsTexture3D, false},
                   {"rtt", &EM::supportsRenderToTexture, true},
                   {"rect", &EM::supportsRenderToTextureRectangle, true},
                   {"pixel", &EM::supportsPixelBuffers, true},
                   {"npot", &EM::supportsNonPowerOfTwoTextures, false}};
    const struct {
        const char *version, *extensions, *supported;
    } rows[] = {{"1.1", "", ""},
                {"1.1", "GL_ARB_texture_float", "float "},
                {"1.1", "GL_ATI_texture_float", "float "},
                {"1.1", "GL_APPLE_float_pixels", "float half "},
                {"1.1", "GL_ARB_half_float_pixel", "half "},
                {"1.1", "GL_ARB_multitexture", "multi "},
                {"1.1", "GL_ARB_draw_buffers", "buffers "},
                {"1.1", "GL_ATI_draw_buffers GL_SGIS_texture_edge_clamp", ""},
                {"1.1", "GL_EXT_texture3D", "3d "},
                {"1.1", "WGL_ARB_render_texture", "rtt "},
                {"1.1", "WGL_NV_render_texture_rectangle", "rect "},
                {"1.1", "WGL_ARB_pixel_format", ""},
                {"1.1", "WGL_ARB_pbuffer", ""},
                {"1.1", "WGL_ARB_pbuffer WGL_ARB_pixel_format", "pixel "},
                {"1.1", "GL_ARB_texture_non_power_of_two", "npot "},
                {"1.2", "", "clamp 3d "},
                {"1.3", "", "multi clamp 3d "},
                {"2.0", "", "multi buffers clamp 3d npot "}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.version + std::string(" ") + row.extensions);
        FakeDriver driver = driverOf(row.version, row.extensions);
        driver.wglExtensions = row.extensions;
        for (const char* name :
             {"wglBindTexImageARB", "wglReleaseTexImageARB", "wglSetPbufferAttribARB", "wglCreatePbufferARB",
              "wglDestroyPbufferARB", "wglGetPbufferDCARB", "wglQueryPbufferARB", "wglReleasePbufferDCARB",
              "wglGetPixelFormatAttribfvARB", "wglGetPixelFormatAttribivARB"})
            driver.functions[name] = at<PROC>(0x1000);
        OnDriver world(driver);
        EM& manager = world.manager();
        std::string supported, withoutContext, expected;
        for (const auto& query : queries)
            supported += (manager.*query.query)() ? query.name + std::string(" ") : "";
        EXPECT_EQ(row.supported, supported);
        releaseOGLContext();
        for (const auto& query : queries) {
            const std::string name = query.name + std::string(" ");
            withoutContext += (manager.*query.query)() ? name : "";
            expected += !query.ofCurrent && supported.find(name) != std::string::npos ? name : "";
        }
        EXPECT_EQ(expected, withoutContext) << "the rest is asked of the current context's manager";
    }
}

TEST(ManagerTest, unitsAndTargetsFollowTheDriver) {
    const struct {
        const char *version, *extensions;
        unsigned int units;
        bool rectangles, arrays;
    } rows[] = {{"1.1", "", 1, false, false},
                {"2.1", "GL_ARB_fragment_program GL_EXT_texture_array", 16, false, true},
                {"1.3", "GL_NV_fragment_program", 4, false, false},
                {"1.1", "GL_ARB_multitexture GL_ARB_texture_rectangle", 4, true, false},
                {"1.1", "GL_NV_fragment_program GL_NV_texture_rectangle", 1, false, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.version + std::string(" ") + row.extensions);
        FakeDriver driver = driverOf(row.version, row.extensions);
        driver.integers = {{GL_MAX_TEXTURE_IMAGE_UNITS, 16}, {GL_MAX_TEXTURE_UNITS, 4}};
        OnDriver world(driver);
        EXPECT_EQ(row.units, world.manager().numberOfTextureUnits());
        for (const unsigned int target : {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D})
            EXPECT_TRUE(TextureState::IsTargetSupported(target));
        EXPECT_EQ(row.rectangles, TextureState::IsTargetSupported(GL_TEXTURE_RECTANGLE_ARB));
        for (const unsigned int target : {GL_TEXTURE_1D_ARRAY, GL_TEXTURE_2D_ARRAY})
            EXPECT_EQ(row.arrays, TextureState::IsTargetSupported(target));
        for (const unsigned int target : {0, GL_TEXTURE_CUBE_MAP, GL_TEXTURE_BINDING_2D})
            EXPECT_FALSE(TextureState::IsTargetSupported(target));
    }
    OnDriver world(driverOf("1.1", "GL_ARB_multitexture"));
    world.manager();
    FakeGL::reset();
    FakeGL::setHook([&](const FakeGL::Call& call) {
        if (call.function == "glActiveTextureARB")
            world.system.devices[0].driver.integers[GL_ACTIVE_TEXTURE] =
                static_cast<int>(call.arguments[0].as<GLenum>());
    });
    TextureState::setActiveTextureUnit(3);
    EXPECT_EQ(3u, TextureState::activeTextureUnit());
    EXPECT_THAT(FakeGL::calls(), testing::Contains(FakeGL::Call{"glActiveTextureARB", {0x84C3u}}));
}

} // namespace
