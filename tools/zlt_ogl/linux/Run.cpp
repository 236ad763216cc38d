#include "Run.h"

#include "Own.h"
#include "ProgramFile.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace ZLT::Interception {

namespace fs = std::filesystem;

std::string findOwn(const char* name) {
    const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
    for (const char* place : ZLT_INTERCEPT_PLACES) {
        const fs::path file = (folder / place / name).lexically_normal();
        if (fs::exists(file))
            return file.string();
    }
    throw Refusal(std::string(name) + ", which belongs to this command, is not beside it",
                  Refusal::unsuitable);
}

namespace {

// The loader divides its list at blanks and colons. A path that has some gets another name.
std::string preloadName(const std::string& object) {
    if (object.find_first_of(" :") == std::string::npos)
        return object;
    const int file = open(object.c_str(), O_RDONLY | O_CLOEXEC);
    return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file);
}

std::string preloadList(const ProgramFile& program) {
    std::string list;
    for (const std::string& object : program.first)
        list += object + ':';
    list += preloadName(findOwn("libzlt_intercept.so"));
    if (const char* others = std::getenv("LD_PRELOAD"); others && *others)
        (list += ':') += others;
    return list;
}

volatile std::sig_atomic_t programProcess = 0;
void handOn(int signal) {
    if (programProcess > 0)
        kill(static_cast<pid_t>(programProcess), signal);
}

// The terminal sends its signals to the program as well; what is sent to us alone is handed on. Signals that
// were ignored before stay so, for the program too.
class Signals {
public:
    Signals() {
        sigemptyset(&ignoredHere_);
        for (std::size_t i = 0; i < std::size(watched); ++i) {
            sigaction(watched[i].signal, nullptr, &before_[i]);
            if (before_[i].sa_handler == SIG_IGN)
                continue;
            struct sigaction action = {};
            action.sa_handler = watched[i].fromTerminal ? SIG_IGN : handOn;
            sigaction(watched[i].signal, &action, nullptr);
            if (watched[i].fromTerminal)
                sigaddset(&ignoredHere_, watched[i].signal);
        }
    }
    ~Signals() {
        for (std::size_t i = 0; i < std::size(watched); ++i)
            sigaction(watched[i].signal, &before_[i], nullptr);
    }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    // What the program has to have at its default.
    const sigset_t& ignoredHere() const { return ignoredHere_; }

private:
    struct Watched {
        int signal;
        bool fromTerminal;
    };
    static constexpr Watched watched[] = {{SIGINT, true},  {SIGQUIT, true},  {SIGTERM, false},
                                          {SIGHUP, false}, {SIGUSR1, false}, {SIGUSR2, false}};
    struct sigaction before_[std::size(watched)] = {};
    sigset_t ignoredHere_ = {};
};

std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

// The environment, with the two variables that put our object into the program.
std::vector<std::string> environmentWith(const std::string& preload, const std::string& channel) {
    const std::string set[] = {"LD_PRELOAD=" + preload, channelVariable + ('=' + channel)};
    std::vector<std::string> variables(std::begin(set), std::end(set));
    for (char** variable = environ; *variable; ++variable) {
        const std::string_view text = *variable;
        if (!text.starts_with("LD_PRELOAD=") && !text.starts_with(channelVariable + std::string("=")))
            variables.emplace_back(text);
    }
    return variables;
}

pid_t start(const ProgramFile& program, std::vector<std::string> words, const std::string& channel,
            const Signals& signals) {
    std::vector<std::string> variables = environmentWith(preloadList(program), channel);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &signals.ignoredHere());
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t process = 0;
    const int error = posix_spawn(&process, program.path.c_str(), nullptr, &attributes,
                                  pointersTo(words).data(), pointersTo(variables).data());
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw Refusal(program.path + " can't be run: " + std::strerror(error), Refusal::unsuitable);
    return process;
}

// A millisecond, or until the process ends. A negative descriptor is none to the kernel too.
void pause(int process) {
    pollfd wanted = {process, POLLIN, 0};
    poll(&wanted, 1, 1);
}

// Ends a program: asks it first.
class Ender {
public:
    void ask(pid_t process) {
        if (!asked_)
            kill(process, SIGTERM);
        else if (Clock::now() - since_ < patience)
            return;
        else
            kill(process, SIGKILL);
        if (!asked_)
            since_ = Clock::now();
        asked_ = true;
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds patience{2};
    bool asked_ = false;
    Clock::time_point since_;
};

bool isRunning(const ChannelReader& channel, std::size_t number) {
    const auto process = static_cast<pid_t>(channel.process(number).process.load());
    return process > 0 && (kill(process, 0) == 0 || errno == EPERM);
}

// With the programs that the program started, where these are watched.
bool anyIsRunning(const ChannelReader& channel) {
    if (channel.channel().options.children)
        for (std::size_t number = 0; number < channel.processCount(); ++number)
            if (isRunning(channel, number))
                return true;
    return false;
}

} // namespace

void becomeOwn(const char* name, const std::vector<std::string>& arguments) {
    const std::string program = findOwn(name);
    std::vector<std::string> words = {program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    execv(program.c_str(), pointersTo(words).data());
    throw Refusal(program + " can't be run: " + std::strerror(errno), Refusal::unsuitable);
}

Ending run(const std::vector<std::string>& words, ChannelReader& channel, RecordHandler& handler) {
    const ProgramFile program = findProgram(words.front());
    const Signals signals;
    const pid_t process = start(program, words, channel.name(), signals);
    programProcess = process;

    // By it the end is seen at once; -1 where the kernel has no such thing.
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    int status = 0;
    bool ended = false;
    Ender end;
    while (!ended || anyIsRunning(channel)) {
        if (!ended) {
            const pid_t found = waitpid(process, &status, WNOHANG);
            ended = found == process || (found < 0 && errno != EINTR);
        }
        if (!channel.read(handler))
            pause(ended ? -1 : descriptor);
        if (handler.isDone() && !ended)
            end.ask(process);
    }
    programProcess = 0;
    if (descriptor >= 0)
        close(descriptor);
    while (channel.read(handler))
        continue;
    if (WIFSIGNALED(status))
        return {0, WTERMSIG(status)};
    return {WEXITSTATUS(status), 0};
}

void endAs(const Ending& ending) {
    std::fflush(nullptr);
    if (ending.signal != 0) {
        // The program has left its own image of memory, if any.
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_CORE, &none);
        std::signal(ending.signal, SIG_DFL);
        std::raise(ending.signal);
        std::exit(128 + ending.signal);
    }
    std::exit(ending.status);
}

} // namespace ZLT::Interception
