// How programs live and end, one way for each argument. Each draws, and says what it sees.

#include "Headless.h"
#include "Scene.h"

#include <dirent.h>
#include <dlfcn.h>
#include <setjmp.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <map>
#include <string>
#include <thread>

namespace {

EGLContext context;
sigjmp_buf before;
volatile sig_atomic_t ticks = 0;
volatile sig_atomic_t jumps = 0;

void draw(const char* name) {
    drawScene(1);
    printScene(name);
}

// The driver's threads are not there in a child: it may draw only where it is the first one.
void forks(bool draws) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        if (draws && makeContext())
            draw("child");
        glEnable(0xDEAD); /* WRONG child */
        _exit(5);
    }
    int status = 0;
    waitpid(child, &status, 0);
    std::printf("child ended with %d\n", WEXITSTATUS(status));
}

void execs() {
    std::fflush(stdout);
    execl("/proc/self/exe", "ways", "plain", nullptr);
}

void draws(int) {
    ticks = ticks + 1;
    if (jumps)
        siglongjmp(before, 1);
    glFlush(); // as programs do, though nothing allows it
}

void alarms(bool jump) {
    jumps = jump;
    struct sigaction action = {};
    action.sa_handler = draws;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often = {{0, 300}, {0, 300}};
    while (ticks < 100) {
        sigsetjmp(before, 1);
        setitimer(ITIMER_REAL, &often, nullptr);
        while (ticks < 100)
            glIsEnabled(GL_LIGHTING);
    }
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    glEnable(0xDEAD); /* WRONG alarm */
    std::printf("%x\n", glGetError());
}

// Memory that ends where the driver stops to read or write, without a zero byte, and bytes that are no
// letters.
void bytes() {
    const long page = sysconf(_SC_PAGESIZE);
    void* memory = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    auto* end = static_cast<GLubyte*>(memory) + page;
    mprotect(end, page, PROT_NONE);
    std::memset(memory, 0xAA, page);
    glBitmap(8, 8, 0, 0, 0, 0, end - 32);
    glPolygonStipple(end - 128);
    glColor4ubv(end - 4);
    glColor3bv(reinterpret_cast<GLbyte*>(end - 3));
    glEdgeFlagv(end - 1);
    glGetBooleanv(GL_LIGHTING, end - 1);
    glGetPolygonStipple(end - 128);
    glColor3ub('\n', '\n', 0);
    std::printf("%d\n", end[-1]);
}

void threads() {
    std::string pictures[4];
    std::vector<std::thread> all;
    for (std::string& picture : pictures)
        all.emplace_back([&] {
            makeContext(context);
            for (int frame = 0; frame < 200; ++frame)
                drawScene(frame);
            std::vector<GLubyte> pixels(std::size_t(64) * 64 * 4);
            glReadPixels(0, 0, 64, 64, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
            picture.assign(pixels.begin(), pixels.end());
        });
    for (std::thread& thread : all)
        thread.join();
    for (const std::string& picture : pictures)
        std::printf("%zx\n", std::hash<std::string>()(picture));
}

void looksAround() {
    for (char** variable = environ; *variable; ++variable)
        if (std::strncmp(*variable, "LD_", 3) == 0 || std::strncmp(*variable, "ZLT_", 4) == 0)
            std::puts(*variable);
    std::printf("own %s\n", getenv("PROGRAMS_OWN"));
    int files = 0;
    DIR* folder = opendir("/proc/self/fd");
    while (readdir(folder))
        ++files;
    closedir(folder);
    sigset_t blocked;
    sigprocmask(SIG_BLOCK, nullptr, &blocked);
    struct sigaction interrupt = {};
    sigaction(SIGINT, nullptr, &interrupt);
    std::printf("%d files, %d blocked, %d ignored\n", files, sigismember(&blocked, SIGINT),
                interrupt.sa_handler == SIG_IGN);
}

void asksTheLoader() {
    dlerror();
    void* none = dlsym(RTLD_DEFAULT, "glNoSuchFunction");
    draw("between");
    const char* error = dlerror();
    std::printf("%d %s\n", none != nullptr, error ? error : "no error");
    std::printf("%d\n", dlopen("libNoSuchLibrary.so", RTLD_NOW) != nullptr);
    glFlush();
    glIsEnabled(GL_LIGHTING);
    error = dlerror();
    std::printf("%s\n", error ? error : "no error");
    std::printf("%d\n", dlerror() != nullptr);
    std::printf("%d\n", dlsym(RTLD_DEFAULT, "glBegin") == reinterpret_cast<void*>(glBegin));
}

} // namespace

int main(int count, char** arguments) {
    const std::string way = count > 1 ? arguments[1] : "plain";
    if (way == "fork first")
        forks(true);
    context = makeContext();
    if (!context)
        return 77;
    std::printf("%s\n", way.c_str());
    draw("start");
    const std::map<std::string, void (*)()> ways = {{"fork", [] { forks(false); }},
                                                    {"exec", execs},
                                                    {"kill", [] { raise(SIGKILL); }},
                                                    {"abort", abort},
                                                    {"_exit", [] { _exit(6); }},
                                                    {"alarm", [] { alarms(false); }},
                                                    {"jump", [] { alarms(true); }},
                                                    {"bytes", bytes},
                                                    {"threads", threads},
                                                    {"environment", looksAround},
                                                    {"loader", asksTheLoader}};
    if (const auto found = ways.find(way); found != ways.end())
        found->second();
    return way == "plain" ? 7 : 0;
}
