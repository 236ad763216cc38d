#pragma once

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

/// @file
/// Runs programs, and looks at what they say.

using namespace std::chrono_literals;

using Words = std::vector<std::string>;

struct Result {
    std::string out, err;
    int status = 0, signal = 0;
    bool hung = false;
};

inline std::string contentOf(const std::string& file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// Files of this process, in a folder that goes with it.
inline std::string scratch(const std::string& name) {
    static const struct Folder {
        Folder() { path = mkdtemp(path.data()); }
        ~Folder() { static_cast<void>(std::system(("rm -r " + path).c_str())); }
        std::string path = "/tmp/programs-XXXXXX";
    } folder;
    return folder.path + '/' + name;
}

// With `end`, the program is one that goes on for ever, and is ended so after that time.
inline Result run(Words words, std::chrono::milliseconds end = 0ms, const std::string& preload = "") {
    const std::string out = scratch("out"), err = scratch("err");
    const pid_t process = fork();
    if (process == 0) {
        for (const auto& [file, target] : {std::pair(out, 1), std::pair(err, 2)})
            dup2(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600), target);
        dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), 0);
        if (!preload.empty())
            setenv("LD_PRELOAD", preload.c_str(), 1);
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        _exit(126);
    }
    Result result;
    int status = 0;
    const auto start = std::chrono::steady_clock::now();
    for (bool told = false; waitpid(process, &status, WNOHANG) == 0; std::this_thread::sleep_for(5ms)) {
        const auto time = std::chrono::steady_clock::now() - start;
        if (end > 0ms && time > end && !told)
            told = kill(process, SIGTERM) == 0;
        if (time > end + 20s)
            result.hung = kill(process, SIGKILL) == 0;
    }
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.out = contentOf(out);
    result.err = contentOf(err);
    return result;
}

inline Words operator+(Words first, const Words& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// A name that a test may have.
inline std::string testName(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char letter) { return !std::isalnum(letter); }, '_');
    return text;
}
inline std::string fileOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// Of a saver, the name is enough.
inline Words wordsOf(const std::string& program) {
    if (program[0] == '/')
        return {program};
    return {"/usr/libexec/xscreensaver/" + program, "-window"};
}
inline std::string nameOfProgram(const testing::TestParamInfo<const char*>& info) {
    return testName(fileOf(info.param));
}
