// The library beside other users of X in one process: their error handlers, displays and contexts, and a
// server that ends.

// In front of Xlib, whose macros have GoogleTest's names.
#include "StartedDriver.h"

#include "ForeignContext.h"
#include "PlainWindow.h"
#include "ogl/ContextWrapped.h"

#include <EGL/egl.h>
#include <GL/glx.h>
#include <X11/Xlib.h>
#include <dlfcn.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

using namespace ZLT::OGL;
using namespace std::chrono_literals;

static std::atomic<bool> swapsWait = false, swapWaits = false;

// Stands in front of GLX's own: waits as for a vertical retrace, if told to.
extern "C" __attribute__((visibility("default"))) void glXSwapBuffers(Display* display,
                                                                      GLXDrawable drawable) {
    swapWaits = swapsWait.load();
    for (int left = 3000; swapsWait && left > 0; --left)
        std::this_thread::sleep_for(1ms);
    swapWaits = false;
    reinterpret_cast<decltype(&glXSwapBuffers)>(dlsym(RTLD_NEXT, "glXSwapBuffers"))(display, drawable);
}

namespace {

// The program's own connection, with a current context of GLX.
struct Program {
    Display* display = XOpenDisplay(nullptr);
    GLXContext context = nullptr;

    Program() {
        XVisualInfo visual = {};
        XMatchVisualInfo(display, DefaultScreen(display), 24, TrueColor, &visual);
        const auto window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 64, 48, 0, 0, 0);
        XMapWindow(display, window);
        context = glXCreateContext(display, &visual, nullptr, True);
        EXPECT_TRUE(glXMakeCurrent(display, window, context));
    }
    ~Program() {
        if (!display)
            return;
        glXMakeCurrent(display, None, nullptr);
        glXDestroyContext(display, context);
        XCloseDisplay(display);
    }
    void makeError() const { XMapWindow(display, 1), XSync(display, False); }
};

std::unique_ptr<ContextWindowed> contextShownOn(const PlainWindow& window, const Context* share) {
    ShowWindow(window.handle(), SW_SHOWNORMAL);
    return contextOn(window.handle(), share, BufferFormat(BufferFormat::RGB8_D24));
}

void expectDrawing(const Context& context) {
    context.makeCurrent();
    clear(0, 1, 0);
    EXPECT_EQ(pixelAt(1, 1), green);
    releaseOGLContext();
}

// From here on: what runs in a process of its own.
void killServer(Display* display) {
    kill(std::atoi(std::getenv("SERVER")), SIGKILL);
    pollfd connection = {ConnectionNumber(display), POLLRDHUP, 0};
    EXPECT_EQ(poll(&connection, 1, 10000), 1);
}

void serverEnds() {
    Display* observer = XOpenDisplay(nullptr);
    const PlainWindow window(64, 48);
    auto own = contextShownOn(window, nullptr);
    own->makeCurrent();
    killServer(observer);
    for (int frame = 0; frame < 3; ++frame) { // the first one may be what notices it
        clear(0, 1, 0);
        messageOf<std::exception>([&] { own->swapBuffers(); });
    }
    messageOf<std::exception>([&] { own->makeCurrent(); });
    messageOf<std::exception>([] { ContextOffscreen().makeCurrent(); });
    messageOf<std::exception>([&] { own.reset(); });
}

template <bool insideOfGlx>
void handlerExits() {
    XSetErrorHandler([](Display*, XErrorEvent*) -> int { std::exit(7); });
    XSetIOErrorHandler([](Display*) -> int { std::exit(8); });
    const Program program;
    const ContextWrapped wrapped;
    const auto own =
        insideOfGlx ? std::make_unique<ContextOffscreen>(&wrapped) : std::make_unique<ContextOffscreen>();
    own->makeCurrent();
    if (!insideOfGlx)
        program.makeError();
    killServer(program.display);
    wrapped.makeCurrent();
}

// Twice: the second display may get the address of the first.
template <bool windowFirst>
void ownerClosesDisplay() {
    for (int owners = 0; owners < 2; ++owners) {
        Program owner;
        auto wrapped = std::make_unique<ContextWrapped>();
        auto window = std::make_unique<PlainWindow>(64, 48);
        std::unique_ptr<Context> own[] = {std::make_unique<ContextOffscreen>(wrapped.get()),
                                          contextShownOn(*window, wrapped.get())};
        for (const auto& context : own)
            expectDrawing(*context);
        XCloseDisplay(std::exchange(owner.display, nullptr));
        if (windowFirst)
            window.reset();
        for (auto& context : own)
            context.reset();
    }
    expectDrawing(ContextOffscreen());
}

// On the library's display, so that a context of ours may get the address of the one that went.
void ownerDestroysContext() {
    const ContextOffscreen first;
    first.makeCurrent();
    std::optional<ForeignContext> owner(eglGetCurrentDisplay());
    const EGLContext foreign = owner->context;
    const ContextWrapped wrapped;
    owner.reset();
    const auto expectGone = [&] {
        EXPECT_EQ(messageOf<std::exception>([&] { wrapped.makeCurrent(); }), "ContextWrapped Object leaked");
        int red = -1, rest = 0;
        wrapped.getBitDepths(&red, &rest, &rest, &rest, &rest, &rest);
        EXPECT_GE(red, 0);
        SwapBuffers(wrapped.deviceContext());
    };
    expectGone();
    std::vector<std::unique_ptr<ContextOffscreen>> own;
    do {
        own.push_back(std::make_unique<ContextOffscreen>());
        own.back()->makeCurrent();
        EXPECT_NE(Context::currentContext(), wrapped.renderContext());
    } while (eglGetCurrentContext() != foreign && own.size() < 50);
    expectGone();
    expectDrawing(*own.back());
}

struct Case {
    const char* name;
    void (*run)();
    int firstStatus, lastStatus;
    bool killsServer = false, onAThread = false;
};

struct NeighbourXDriverTest : StartedDriver {};
struct NeighbourProcessDriverTest : StartedDriver, ::testing::WithParamInterface<Case> {};

std::atomic<int> errors = 0;
int base(Display*, XErrorEvent*) { return ++errors; }
int mine(Display*, XErrorEvent*) { return 0; }

} // namespace

TEST_P(NeighbourProcessDriverTest, DISABLED_itself) {
    GetParam().onAThread ? std::thread(GetParam().run).join() : GetParam().run();
}

TEST_P(NeighbourProcessDriverTest, endsByItselfAsItShould) {
    FILE* server = popen("echo $$; exec setpriv --pdeathsig KILL Xvfb -noreset -displayfd 1", "r");
    int process = 0, display = 0;
    ASSERT_EQ(std::fscanf(server, "%d %d", &process, &display), 2) << "no X server";
    const std::string command = "DISPLAY=:" + std::to_string(display) + " SERVER=" + std::to_string(process) +
                                " timeout -s KILL 20 /proc/" + std::to_string(getpid()) +
                                "/exe --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_itself/" +
                                GetParam().name;
    const int status = WEXITSTATUS(std::system(command.c_str()));
    EXPECT_GE(status, GetParam().firstStatus);
    EXPECT_LE(status, GetParam().lastStatus);
    kill(process, SIGTERM);
    EXPECT_EQ(WIFSIGNALED(pclose(server)), GetParam().killsServer);
}

constexpr int anyExit = 123; // above are the end of the time and the signals
const Case cases[] = {{"ServerEnds", serverEnds, 0, anyExit, true},
                      {"ServerEndsOnAThread", serverEnds, 0, anyExit, true, true},
                      {"HandlerExits", handlerExits<false>, 7, 7},
                      {"HandlerExitsOnAThread", handlerExits<false>, 7, 7, false, true},
                      {"HandlerExitsInsideOfGlx", handlerExits<true>, 8, 8, true},
                      {"HandlerExitsInsideOfGlxOnAThread", handlerExits<true>, 8, 8, true, true},
                      {"OwnerClosesDisplayThenWindowGoes", ownerClosesDisplay<true>, 0, 0},
                      {"OwnerClosesDisplayThenContextGoes", ownerClosesDisplay<false>, 0, 0},
                      {"OwnerDestroysContext", ownerDestroysContext, 0, 0}};
INSTANTIATE_TEST_SUITE_P(X11, NeighbourProcessDriverTest, ::testing::ValuesIn(cases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(NeighbourXDriverTest, theProgramsErrorHandlersAreItsOwnWhileTheLibraryWorks) {
    XSetErrorHandler(base);
    std::atomic<int> made = 0, lost = 0;
    std::atomic<bool> done = false;
    std::thread library([&] {
        const Program program;
        const ContextWrapped wrapped;
        for (; !done; ++made) {
            const ContextOffscreen own(&wrapped);
            own.makeCurrent();
            wrapped.makeCurrent();
        }
    });
    for (int pair = 0; pair < 20000 || made < 30; ++pair) {
        lost += XSetErrorHandler(mine) != base;
        lost += XSetErrorHandler(base) != mine;
    }
    done = true;
    library.join();
    EXPECT_EQ(lost, 0);
    Program().makeError();
    EXPECT_EQ(errors, 1);
}

TEST_F(NeighbourXDriverTest, aSwapThatWaitsKeepsNoOtherThreadWaiting) {
    const Program program;
    const ContextWrapped wrapped;
    const ContextOffscreen own;
    swapsWait = true;
    std::thread other([&] {
        while (!swapWaits)
            std::this_thread::sleep_for(1ms);
        own.makeCurrent();
        EXPECT_TRUE(swapWaits) << "until the swap was done";
        releaseOGLContext();
        swapsWait = false;
    });
    wrapped.makeCurrent();
    EXPECT_TRUE(SwapBuffers(wrapped.deviceContext()));
    other.join();
}
