// What each kind of context asks of the platform, in which order, and what is left when the platform refuses.

#include "StartedLibrary.h"
#include "ogl/BufferFormat.h"
#include "ogl/ContextWindowed.h"
#include "ogl/ContextWrapped.h"
#include "ogl/ScopedContextWrapper.h"
#include "ogl/internal/ContextBootstrap.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <optional>

using namespace ZLT::OGL;
using testing::ElementsAre;

namespace {

using Format = BufferFormat;
const auto twoSided = Context::eDoubleBuffered;

// A call and what becomes of the operation when that call fails: the message as failureOf() gives it, or
constexpr const char* goesOn = "";               // as if nothing had happened
constexpr const char* losesCurrent = "(silent)"; // well, but what was current is not current again
struct Step {
    std::string call;
    std::string outcome;
    std::string left{}; // behind a failure, beside what was there before: w(indow), k(class), c(ontext)
};
using Steps = std::vector<Step>;
Steps operator+(Steps first, const Steps& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

const std::string noFormat = "Cannot create OpenGL Context. Can't find suitable format. Windows error 77";
const std::string notSet =
    "Context::setPixelFormat Unable to set pixel format %i on device context. Window Error: 77";
const std::string noDevice = "!ContextWindowed::ctor invalid DC on window";
const std::string notCurrent = "Context::can't make this context current77";

// A hidden window, made at the place and destroyed. Inside a guard the exceptions lose their kind.
Steps windowMade(const std::string& k, const std::string& place, const char* kind) {
    return {{"LoadCursorA(7f00)", goesOn},
            {"RegisterClassExA(" + k + ", 40)", kind + std::string("Unable to register window class")},
            {"AdjustWindowRectEx(cf0000 0 40100)", goesOn},
            {"CreateWindowExA(" + k + ", 6cf0000 40100, " + place + ")",
             kind + std::string("Unable to create window")}};
}
Steps windowGone(const std::string& k, const std::string& w, const std::string& d, const char* kind) {
    return {
        {"GetDC(" + w + ")", kind + std::string("hDC != 0"), "wk"},
        {"ReleaseDC(" + w + ", " + d + ")", kind + std::string("Unable to release the device context"), "wk"},
        {"DestroyWindow(" + w + ")", kind + std::string("Unable to unregister window class"), "wk"},
        {"UnregisterClassA(" + k + ")", kind + std::string("Unable to unregister window class"), "k"}};
}
Steps formatSet(const std::string& d, const std::string& wanted) {
    return {{"ChoosePixelFormat(" + d + ", 28 1 " + wanted + ")", noFormat},
            {"SetPixelFormat(" + d + ", 7 28)", notSet}};
}
Steps hiddenOn(const std::string& display, const std::string& place) {
    return Steps{{"EnumDisplaySettingsA(" + display + ", ffffffff)", "!error != 0"}} +
           windowMade("k1", place, "!") + Steps{{"GetDC(w1)", noDevice}} + formatSet("d1", "24 18 0 0 0");
}
Step attribsTried(const std::string& d) {
    return {"wglCreateContextAttribsARB(" + d + ", 0, 2091 3 2092 0 0)", goesOn};
}
Steps madeCurrent(const std::string& pair, const std::string& before = "0, 0") {
    return {{"wglMakeCurrent(" + pair + ")", notCurrent}, {"wglMakeCurrent(" + before + ")", losesCurrent}};
}
Steps onMonitor() {
    return {{"MonitorFromWindow(w1, 2)", goesOn},
            {"GetMonitorInfoA()", "!Context::can't get monitor info77"},
            {"EnumDisplayDevicesA(0)", "!error != 0", "c"}, // once the context is there
            {"GetDC(w1)", noDevice}};
}
const std::string rgba16f =
    "2010 1 2003 2027 2013 202b 2014 40 2015 10 2017 10 2019 10 201b 10 2022 18 2023 8 2011 1 "
    "2001 1 21a0 1 2041 1 2042 4 0";
const Steps extended = {
    {"wglGetProcAddress(wglChoosePixelFormatARB)", "wglChoosePixelFormatARB extension not supported"},
    {"wglChoosePixelFormatARB(d1, " + rgba16f + ", 0 0, 1)", "Can't find suitable pixel format."}};

// The context goes; the hidden window that it may have stays behind a failure.
Step deleted(const std::string& window) {
    return {"wglDeleteContext(c1)",
            "!ContextOffscreen::~ContextWindowed failed to delete rendering context: fatal exception",
            window + 'c'};
}
Steps goneUnderAnother(const std::string& window) {
    return {{"wglMakeCurrent(0, 0)",
             "!ContextWindowed::~ContextWindowed failed to release context: fatal exception!", window + 'c'},
            deleted(window),
            {"wglMakeCurrent(d1, c2)", "!!\"ContextOffscreen::~ContextOffscreen failed to restore context\"",
             window}};
}
Step lists(const std::string& pair) {
    return {"wglShareLists(" + pair + ")", "Context::createRenderingContext cannot share lists.", "c"};
}

// A new window system with two displays, and the library on it. A context of the client's may be current, and
// wrapped.
struct World {
    // "library", "current" and "wrapped", as the context is.
    explicit World(const std::string& with = "library") {
        const auto has = [&](const char* word) { return with.find(word) != std::string::npos; };
        system.devices.push_back({"second", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, -1600, 40020});
        if (has("library"))
            started.emplace();
        const HWND other = system.makeWindow();
        const HGLRC foreign = system.makeContext(other);
        if (has("current"))
            wglMakeCurrent(GetDC(other), foreign);
        if (has("wrapped"))
            wrapped.emplace(GetDC(other), foreign, nullptr);
        for (std::size_t i = 0; i < std::size(displays); ++i)
            Context::displayDevice(i, displays[i]);
        system.takeCalls();
    }
    // What there is beside what the client made.
    std::string left() const {
        return std::string(system.windows() - 2, 'w') + std::string(system.classes(), 'k') +
               std::string(system.contexts() - 1, 'c');
    }

    FakeWindowSystem system;
    std::optional<StartedLibrary> started;
    std::optional<ContextWrapped> wrapped;
    const HWND window = system.makeWindow();
    DISPLAY_DEVICEA displays[2] = {};
};

ContextWindowed* windowed(const World& world, const Format& format, unsigned int samples = 1,
                          const Context* share = nullptr) {
    return new ContextWindowed(world.window, format, twoSided, Context::teMultisample(samples), share);
}

struct Kind {
    const char* world;
    std::function<Context*(World& world)> make;
    Steps making, going;
};

const Kind kinds[] = {
    // Plain formats need no context beforehand.
    {"library wrapped",
     [](World& world) { return windowed(world, Format(Format::RGBA8_D24S8), 1, &*world.wrapped); },
     onMonitor() + formatSet("d1", "25 20 8 18 8") + Steps{attribsTried("d1"), lists("c1, c2")} +
         madeCurrent("d1, c2"),
     {deleted("")}},
    // Others need one, which is made for the purpose,
    {"library",
     [](World& world) { return windowed(world, Format(Format::RGBA16F_D24S8), 4); },
     onMonitor() + windowMade("k1", "0 0 14 32", "") +
         Steps{{"GetDC(w2)", "Context:choosePixelFormat invalid device context"}} +
         formatSet("d1", "24 18 0 0 0") +
         Steps{attribsTried("d1"),
               {"wglMakeCurrent(d1, c1)", "wglChoosePixelFormatARB extension not supported"}} +
         extended + Steps{{"wglMakeCurrent(0, 0)", goesOn}, {"wglDeleteContext(c1)", goesOn, "c"}} +
         windowGone("k1", "w2", "d1", "") + Steps{{"SetPixelFormat(d2, 9 28)", notSet}, attribsTried("d2")} +
         madeCurrent("d2, c2"),
     {deleted("")}},
    // or is there.
    {"library current", [](World& world) { return windowed(world, Format(Format::RGBA16F_D24S8), 4); },
     onMonitor() + extended + Steps{{"SetPixelFormat(d2, 9 28)", notSet}, attribsTried("d2")} +
         madeCurrent("d2, c1", "d1, c2"),
     goneUnderAnother("")},
    // The hidden window stands at the origin of the display, in 16 bits.
    {"library", [](World& world) { return new ContextOffscreen(world.displays[1]); },
     hiddenOn("second", "-1600 -25516 14 32") + Steps{attribsTried("d1")} + madeCurrent("d1, c1"),
     Steps{deleted("wk")} + windowGone("k1", "w1", "d1", "!")},
    {"library current wrapped", [](World& world) { return new ContextOffscreen(&*world.wrapped); },
     hiddenOn("first", "0 0 14 32") + Steps{attribsTried("d1"), lists("c1, c2")} +
         madeCurrent("d1, c2", "d2, c1"),
     goneUnderAnother("wk") + windowGone("k1", "w1", "d2", "!")},
    // Wrapped ones make nothing.
    {"library current",
     [](World&) { return new ContextWrapped; },
     {{"EnumDisplayDevicesA(0)", goesOn}, {"EnumDisplayDevicesA(0)", "!error != 0"}},
     {}},
    // Before the library is started, each context looks for wglCreateContextAttribsARB by itself.
    {"current", [](World& world) { return new internal::ContextBootstrap(world.displays[0]); },
     hiddenOn("first", "0 0 14 32") + windowMade("k2", "0 0 14 32", "") +
         Steps{{"GetDC(w2)", "Context::haveWglCreateContextAttribs invalid device context"}} +
         formatSet("d2", "25 18 0 0 0") +
         Steps{
             {"wglCreateContext(d2)", "Context::haveWglCreateContextAttribs Can't create rendering context"},
             {"wglMakeCurrent(d2, c1)", goesOn},
             {"wglGetProcAddress(wglGetExtensionsStringARB)", goesOn},
             {"wglGetExtensionsStringARB(d2)", goesOn},
             {"wglGetProcAddress(wglCreateContextAttribsARB)", goesOn},
             {"wglMakeCurrent(0, 0)", goesOn},
             {"wglDeleteContext(c1)", goesOn, "c"},
             {"wglMakeCurrent(d3, c2)", goesOn}} +
         windowGone("k2", "w2", "d2", "") + Steps{attribsTried("d1")} + madeCurrent("d1, c3", "d3, c2"),
     goneUnderAnother("wk") + windowGone("k1", "w1", "d2", "!")},
};

std::vector<std::string> callsOf(const Steps& steps) {
    std::vector<std::string> calls;
    for (const Step& step : steps)
        calls.push_back(step.call);
    return calls;
}

TEST(ContextTest, eachKindAsksThePlatformForTheseStepsAndLeavesNothingCurrentThatWasNot) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.making[0].call);
        World world(kind.world);
        const HGLRC current = wglGetCurrentContext();
        const Context* made = kind.make(world);
        EXPECT_EQ(callsOf(kind.making), world.system.takeCalls());
        EXPECT_EQ(current, wglGetCurrentContext());
        delete made;
        EXPECT_EQ(callsOf(kind.going), world.system.takeCalls());
        EXPECT_EQ(current, wglGetCurrentContext());
        EXPECT_EQ("", world.left());
    }
}

TEST(ContextTest, aStepThatFailsIsReportedAndUndoneAndInTheDestructionTheRestIsLeftOut) {
    for (const Kind& kind : kinds)
        for (const bool going : {false, true}) {
            int nth = 0;
            for (const Step& step : going ? kind.going : kind.making) {
                SCOPED_TRACE(kind.making[0].call + (going ? ", going: " : ": ") + step.call);
                World world(kind.world);
                const std::size_t allocated = ZLT::Core::allocationCount();
                const HGLRC current = wglGetCurrentContext();
                const Context* made = going ? kind.make(world) : nullptr;
                world.system.failCall(++nth);
                std::string outcome = failureOf([&] { going ? delete made : void(made = kind.make(world)); });
                if (!going && current != wglGetCurrentContext())
                    outcome += losesCurrent;
                EXPECT_EQ(step.outcome, outcome);
                world.system.failNothing();
                if (!going) {
                    delete made;
                    EXPECT_EQ(allocated, ZLT::Core::allocationCount());
                }
                EXPECT_EQ(step.left, world.left());
            }
        }
}

TEST(ContextTest, aFailureWhileCleaningUpReplacesTheFirst) {
    const std::string failedTo = "!ContextWindowed::ContextWindowed failed to ",
                      fatal = " context: fatal exception!";
    const struct {
        Format::tePredefined format;
        int nth; // of the second
        const char *first, *second;
        std::string message;
    } rows[] = {
        {Format::RGBA16F, 2, "wglChoosePixelFormatARB", "wglMakeCurrent", failedTo + "release" + fatal},
        {Format::RGBA16F, 1, "wglChoosePixelFormatARB", "wglDeleteContext", failedTo + "destroy" + fatal},
        {Format::RGBA16F, 1, "wglChoosePixelFormatARB", "ReleaseDC", "!Unable to release the device context"},
        {Format::RGB8, 1, "wglMakeCurrent", "wglDeleteContext", failedTo + "destroy" + fatal},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.first) + ", " + row.second);
        World world;
        world.system.fail(row.first);
        world.system.fail(row.second, row.nth);
        EXPECT_EQ(row.message, failureOf([&] { windowed(world, Format(row.format)); }));
    }
}

// The operations for derived classes.
struct Bare : Context {
    using Context::choosePixelFormat;
    using Context::createRenderingContext;
    using Context::initialize;
    using Context::initializeExtensions;
    using Context::setPixelFormat;
    using Context::setupRenderingContext;
    using Context::shareLists;
    void adopt(HGLRC context) { renderContext_ = context; }
    int pixelFormat() const { return pixelFormat_; }
};

TEST(ContextTest, theExtendedListHasTheseValuesInThisOrder) {
    World world("library current");
    const HDC device = GetDC(world.window);
    world.system.takeCalls();
    const Format rgb8(Format::RGB8), odd(9, 10, 11, 12, 13, 14, false), real(Format::R32F);
    const auto one = Context::eSingleBuffered;
    const struct {
        const char* name;
        const Format& format;
        Context::teBuffering buffering;
        unsigned int samples;
        int target;
        const char* outcome;
    } rows[] = {
        {"RGB8", rgb8, one, 1, 1, "2014 18 2015 8 2017 8 2019 8 201b 0 2022 0 2023 0 2011 0 2001 1 0"},
        {"odd bits, double buffered", odd, twoSided, 0, 1,
         "2014 2a 2015 9 2017 a 2019 b 201b c 2022 e 2023 d 2011 1 2001 1 0"},
        {"odd bits, unknown buffering", odd, Context::teBuffering(2), 1, 2,
         "2014 2a 2015 9 2017 a 2019 b 201b c 2022 e 2023 d 2011 0 2001 1 0"},
        {"R32F, all samples", real, twoSided, 0xFFFFFFFF, 0,
         "2014 20 2015 20 2017 0 2019 0 201b 0 2022 0 2023 0 2011 1 202d 1 2001 0 21a0 1 2041 1 2042 "
         "ffffffff 0"},
        {"4 samples, single buffered", rgb8, one, 4, 1, "!Double buffering required with multisampling."},
        {"2 samples, unknown buffering", rgb8, Context::teBuffering(2), 2, 0,
         "!Double buffering required with multisampling."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::string list = failureOf([&] {
            EXPECT_EQ(9, Bare::choosePixelFormat(device, row.format, row.buffering,
                                                 Context::teMultisample(row.samples),
                                                 Context::teWindowed(row.target)));
        });
        for (const std::string& call : world.system.takeCalls())
            if (call.starts_with("wglChoosePixelFormatARB"))
                list += call;
        const bool refused = row.outcome[0] == '!';
        EXPECT_EQ(refused ? row.outcome
                          : std::string("wglChoosePixelFormatARB(d1, 2010 1 2003 2027 2013 202b ") +
                                row.outcome + ", 0 0, 1)",
                  list);
    }
    const auto chooseOnNothing = [&] {
        Bare::choosePixelFormat(nullptr, rgb8, one, Context::eNoMultisample, Context::eWindowedTarget);
    };
    EXPECT_EQ("!Context:choosePixelFormat invalid device context", failureOf(chooseOnNothing));
    wglMakeCurrent(nullptr, nullptr);
    EXPECT_EQ("!wglChoosePixelFormatARB extension not supported", failureOf(chooseOnNothing))
        << "the function is looked for first";
}

TEST(ContextTest, eightBitsOfEachChannelAreTheLastThatNeedNoExtension) {
    for (int channel = 0; channel < 6; ++channel) {
        unsigned int bits[6] = {8, 8, 8, 8, 0, 1}; // the last: the samples
        bits[channel] += channel == 4 ? 0 : 1;
        World world;
        const std::unique_ptr<Context> made(
            windowed(world, Format(bits[0], bits[1], bits[2], bits[3], 8, 24, false), bits[5]));
        const auto asked = testing::Contains(testing::StartsWith("wglChoosePixelFormatARB"));
        EXPECT_EQ(channel != 4, testing::Matches(asked)(world.system.takeCalls())) << channel;
    }
}

TEST(ContextTest, aRefusedVersionAndADriverWithoutTheFunctionGetTheClassicContext) {
    World world("library wrapped");
    Bare bare;
    const HDC device = GetDC(world.window);
    bare.setPixelFormat(device, 3);
    world.system.takeCalls();
    const std::string attribs = attribsTried("d1").call;
    world.system.fail("wglCreateContextAttribsARB");
    EXPECT_NE(nullptr, bare.createRenderingContext(device, &*world.wrapped));
    EXPECT_THAT(world.system.takeCalls(),
                ElementsAre(attribs, "wglCreateContext(d1)", "wglShareLists(c1, c2)"));
    Bare without;
    EXPECT_NE(nullptr, bare.createRenderingContext(device, &without));
    EXPECT_THAT(world.system.takeCalls(), ElementsAre(attribs)) << "nothing to share with";

    const auto refuseBoth = [&] {
        world.system.fail("wglCreateContextAttribsARB");
        world.system.fail("wglCreateContext");
    };
    refuseBoth();
    EXPECT_EQ("!Context::createRenderingContext Can't create rendering context",
              failureOf([&] { bare.createRenderingContext(device, nullptr); }));
    world.system.takeCalls();
    refuseBoth();
    EXPECT_EQ("!Context::createRenderingContext cannot share lists.",
              failureOf([&] { bare.createRenderingContext(device, &*world.wrapped); }));
    EXPECT_THAT(world.system.takeCalls(),
                ElementsAre(attribs, "wglCreateContext(d1)", "wglShareLists(c1, 0)"));
    EXPECT_EQ("!Context::createRenderingContext invalid device context",
              failureOf([&] { bare.createRenderingContext(nullptr, nullptr); }));

    // Where the string doesn't name it, the function isn't asked for.
    world.wrapped.reset();
    world.started.reset();
    for (const std::optional<std::string>& names : {std::optional<std::string>("WGL_ARB_pixel_format"), {}}) {
        world.system.devices[0].driver.wglExtensions = names;
        world.system.takeCalls();
        bare.createRenderingContext(device, nullptr);
        const std::vector<std::string> calls = world.system.takeCalls();
        EXPECT_EQ("wglCreateContext(d2)", calls.back());
        EXPECT_THAT(calls, testing::Not(testing::Contains("wglGetProcAddress(wglCreateContextAttribsARB)")));
    }
}

TEST(ContextTest, thePartsOfAContextRefuseAndFailOneByOne) {
    World world;
    Bare bare;
    const HDC device = GetDC(world.window);
    const Format rgb8(Format::RGB8);
    for (const int format : {0, -3})
        EXPECT_EQ("!Context::setPixelFormat invalid pixel format " + std::to_string(format),
                  failureOf([&] { bare.setPixelFormat(device, format); }));
    EXPECT_EQ(0, bare.pixelFormat());
    EXPECT_NE(nullptr, bare.setupRenderingContext(device, rgb8, true, nullptr));
    EXPECT_EQ(7, bare.pixelFormat());
    EXPECT_EQ("!Context::setPixelFormat Unable to set pixel format %i on device context. Window Error: 2000",
              failureOf([&] { bare.setPixelFormat(device, 8); }));
    EXPECT_EQ(8, bare.pixelFormat()) << "noted before the platform is asked";
    EXPECT_EQ("!Context:choosePixelFormat invalid device context",
              failureOf([&] { Bare::choosePixelFormat(nullptr, rgb8, true); }));
    EXPECT_EQ(noDevice,
              failureOf([&] { bare.initialize(nullptr, rgb8, twoSided, Context::eNoMultisample, nullptr); }));
    world.system.fail("wglMakeCurrent");
    EXPECT_EQ(notCurrent, failureOf([&] {
                  bare.initialize(GetDC(world.system.makeWindow()), rgb8, twoSided, Context::eNoMultisample,
                                  nullptr);
              }));
    EXPECT_EQ(nullptr, bare.renderContext()) << "a failure leaves no handle of what is gone";
    EXPECT_EQ("!We can't initialize Extensions automatically any more with the new Singleton scheme",
              failureOf([&] { bare.initializeExtensions(); }));

    world.system.takeCalls();
    Bare::choosePixelFormat(device, Format(100, 100, 50, 10, 8, 24, true), true); // 260 bits in 8
    EXPECT_THAT(world.system.takeCalls(), ElementsAre("ChoosePixelFormat(d1, 28 1 25 4 a 18 8)"));
    const HGLRC one = world.system.makeContext(world.window), other = world.system.makeContext(world.window);
    bare.adopt(one);
    bare.shareLists(other);
    EXPECT_THAT(world.system.takeCalls(), ElementsAre("wglShareLists(c1, c2)"));
    wglDeleteContext(other);
    EXPECT_EQ("!Context::shareLists cannot share lists.", failureOf([&] { bare.shareLists(other); }));
}

TEST(ContextTest, aWindowedOneShowsItsBitsSwapsAndWaitsForTheRetrace) {
    World world;
    ContextWindowed context(world.window, Format(Format::RGBA8), twoSided, Context::eNoMultisample, nullptr);
    int bits[6] = {};
    world.system.takeCalls();
    context.getBitDepths(bits, bits + 1, bits + 2, bits + 3, bits + 4, bits + 5);
    EXPECT_THAT(bits, ElementsAre(255, 2, 3, 4, 5, 6));
    context.swapBuffers();
    EXPECT_FALSE(Context::supportsVerticalRetraceControl()) << "nothing is current";
    context.makeCurrent();
    EXPECT_EQ(context.renderContext(), Context::currentContext());
    EXPECT_TRUE(Context::supportsVerticalRetraceControl());
    context.enableSyncToVerticalRetrace(true);
    context.enableSyncToVerticalRetrace(false);
    EXPECT_THAT(world.system.takeCalls(),
                ElementsAre("GetPixelFormat(d1)", "DescribePixelFormat(d1, 7 28)", "SwapBuffers(d1)",
                            "wglMakeCurrent(d1, c1)", "wglSwapIntervalEXT(1)", "wglSwapIntervalEXT(0)"));
    releaseOGLContext();
    EXPECT_EQ(nullptr, Context::currentContext());
    releaseOGLContext();
    EXPECT_THAT(world.system.takeCalls(), ElementsAre("wglMakeCurrent(0, 0)"));
    for (const bool enable : {true, false})
        EXPECT_EQ("!ContextWindowed::enableSyncToVerticalRetrace unsupported feature",
                  failureOf([&] { context.enableSyncToVerticalRetrace(enable); }));
}

TEST(ContextTest, aWindowedOneWaitsForTheRetraceWhateverALaterDeviceLacks) {
    World world;
    ContextWindowed context(world.window, Format(Format::RGBA8), twoSided, Context::eNoMultisample, nullptr);
    FakeDevice later{"later", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, 2000, 0};
    later.driver.functions["wglSwapIntervalEXT"] = nullptr;
    world.system.devices.push_back(later);
    DISPLAY_DEVICEA device = {};
    Context::displayDevice(2, device);
    const ContextOffscreen onLater(device);
    context.makeCurrent();
    world.system.takeCalls();
    context.enableSyncToVerticalRetrace(true);
    EXPECT_THAT(world.system.takeCalls(),
                ElementsAre("wglGetProcAddress(wglSwapIntervalEXT)", "wglSwapIntervalEXT(1)"));
    onLater.makeCurrent();
    EXPECT_EQ("!ContextWindowed::enableSyncToVerticalRetrace unsupported feature",
              failureOf([&] { context.enableSyncToVerticalRetrace(true); }));
}

TEST(ContextTest, anOffscreenOneThatIsCurrentLeavesNothingCurrent) {
    World world;
    {
        const ContextOffscreen context;
        context.makeCurrent();
        world.system.takeCalls();
    }
    EXPECT_EQ(nullptr, wglGetCurrentContext());
    EXPECT_THAT(world.system.takeCalls(),
                ElementsAre("wglMakeCurrent(0, 0)", "wglDeleteContext(c1)", "GetDC(w1)", "ReleaseDC(w1, d1)",
                            "DestroyWindow(w1)", "UnregisterClassA(k1)"));
    EXPECT_EQ("!pContext != NULL",
              failureOf([] { const ContextOffscreen context(static_cast<Context*>(nullptr)); }));
}

TEST(ContextTest, aWrappedOneStaysItsMakers) {
    World world("library current");
    const HDC device = wglGetCurrentDC();
    const HGLRC context = wglGetCurrentContext();
    {
        ContextWrapped wrapped,
            onSecond(device, world.system.makeContext(world.window), world.system.makeWindow(-1600, 40020));
        EXPECT_EQ(device, wrapped.deviceContext());
        EXPECT_EQ(context, wrapped.renderContext());
        EXPECT_EQ("first", wrapped.deviceName());
        EXPECT_STREQ("second", onSecond.displayDevice().DeviceName);
        wglMakeCurrent(nullptr, nullptr);
        wrapped.makeCurrent();
        world.system.fail("wglMakeCurrent");
        EXPECT_EQ("!ContextWrapped Object leaked", failureOf([&] { wrapped.makeCurrent(); }));
        wrapped.makeCurrent();
        world.system.takeCalls();
    }
    EXPECT_THAT(world.system.takeCalls(), testing::IsEmpty());
    EXPECT_EQ(context, wglGetCurrentContext());
    wglDeleteContext(context);
    EXPECT_EQ("!ContextWrapped::ctor invalid device", failureOf([] { const ContextWrapped none; }));
    EXPECT_EQ("!ContextWrapped::ctor invalid device",
              failureOf([&] { const ContextWrapped none(nullptr, context, nullptr); }));
    EXPECT_EQ("!ContextWrapped::ctor invalid rendering context",
              failureOf([&] { const ContextWrapped none(device, nullptr, world.window); }));
    const Context* lost = new ContextOffscreen;
    wglDeleteContext(lost->renderContext());
    EXPECT_EQ("!Context::can't make this context current6", failureOf([&] { lost->makeCurrent(); }));
    EXPECT_EQ(deleted("").outcome, failureOf([&] { delete lost; }));
}

TEST(ScopedContextWrapperTest, thePairIsPutBackWhateverItWas) {
    FakeWindowSystem system;
    const HDC devices[] = {GetDC(system.makeWindow()), GetDC(system.makeWindow())};
    const HGLRC context = system.makeContext(system.makeWindow());
    const struct {
        const char* name;
        HDC before, inside;
        bool fails;
        HDC after;
        std::vector<std::string> calls;
    } rows[] = {
        {"made current inside", nullptr, devices[0], false, nullptr, {"wglMakeCurrent(0, 0)"}},
        {"released inside", devices[0], nullptr, false, devices[0], {"wglMakeCurrent(d1, c1)"}},
        {"the same context elsewhere", devices[0], devices[1], false, devices[0], {"wglMakeCurrent(d1, c1)"}},
        {"nothing changed", devices[0], devices[0], false, devices[0], {}},
        {"nothing at all", nullptr, nullptr, false, nullptr, {}},
        {"a failure", devices[0], devices[1], true, nullptr, {"wglMakeCurrent(d1, c1)"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        wglMakeCurrent(row.before, row.before ? context : nullptr);
        {
            const ScopedContextWrapper scope;
            wglMakeCurrent(row.inside, row.inside ? context : nullptr);
            system.takeCalls();
            if (row.fails)
                system.fail("wglMakeCurrent");
        }
        EXPECT_EQ(row.after, wglGetCurrentDC());
        EXPECT_EQ(row.calls, system.takeCalls());
    }
}

} // namespace
