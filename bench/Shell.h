#pragma once

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <string>

namespace Bench {

/// What a command took.
struct Usage {
    double seconds = 0;   ///< real ones
    double processor = 0; ///< seconds of the processor, of all processes
    double mebibytes = 0; ///< the largest process of the run
};

/// Runs a line of the shell, of which nothing is shown.
/// @throws std::runtime_error when it fails
inline Usage runShell(const std::string& line) {
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", (line + " >/dev/null 2>&1").c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0)
        throw std::runtime_error("failed: " + line);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    double processor = 0;
    for (const timeval& its : {usage.ru_utime, usage.ru_stime})
        processor += static_cast<double>(its.tv_sec) + static_cast<double>(its.tv_usec) / 1e6;
    return {time.count(), processor, static_cast<double>(usage.ru_maxrss) / 1024};
}

} // namespace Bench
