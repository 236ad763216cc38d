// Captures and replays beside apitrace: a call, frames of client arrays, whole programs, each from file to
// file and with the places of the calls. And the same texture over and over, beside the hash of its bytes.

#include "Comparison.h"
#include "TemporaryFolder.h"
#include "capture/CaptureFileWriter.h"
#include "capture/OpenGLCapture.h"
#include "extensionator/ScopedInterceptor.h"

#define XXH_INLINE_ALL
#include <GL/gl.h>
#include <benchmark/benchmark.h>
#include <xxhash.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr const char* calls = "2000000";
constexpr const char* frames = "300";
constexpr const char* savers[] = {"antspotlight", "circuit", "engine"};
const Bench::TemporaryFolder temporary;
const std::string folder = temporary.path() + "/";
const std::string command = "'" ZLT_OGL_COMMAND "' ";

void runShell(const std::string& line) {
    if (std::system((line + " >/dev/null 2>&1 </dev/null").c_str()) != 0)
        throw std::runtime_error("failed: " + line);
}

void program(benchmark::State& state, const std::string& line) {
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        runShell(line);
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
}

void add(const std::string& name, const std::string& line) {
    benchmark::RegisterBenchmark(name.c_str(), program, line)->Iterations(1)->UseManualTime();
}

constexpr int side = 1024;
const std::vector<char>& pixels() {
    static const std::vector<char> pixels = [] {
        std::vector<char> bytes(std::size_t(side) * side * 4);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<char>(i * 2654435761u >> 13);
        return bytes;
    }();
    return pixels;
}

void sameTexture(benchmark::State& state) {
    for (auto _ : state) {
        ZLT::Capture::CaptureFileWriter file(folder + "texture.zlt");
        ZLT::Capture::OpenGLCapture capture(file);
        const ZLT::OGL::ScopedInterceptor installed(capture);
        // The first one is stored, and those that follow are known.
        for (int i = 0; i < 100; ++i) {
            if (i == 1)
                state.ResumeTiming();
            else if (i == 0)
                state.PauseTiming();
            CGM(TexImage2D, GL_TEXTURE_2D, 0, GL_RGBA8, side, side, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                pixels().data());
        }
        state.PauseTiming();
        capture.end();
        file.close();
        state.ResumeTiming();
    }
    if (fs::file_size(folder + "texture.zlt") > 2 * pixels().size())
        state.SkipWithError("the same data was stored more than once");
}
BENCHMARK(sameTexture)->Name("4 MiB texture, 99 times: captured")->Unit(benchmark::kMillisecond);

void sameHash(benchmark::State& state) {
    for (auto _ : state)
        for (int i = 1; i < 100; ++i)
            benchmark::DoNotOptimize(XXH3_128bits(pixels().data(), pixels().size()));
}
BENCHMARK(sameHash)->Name("4 MiB texture, 99 times: hash alone")->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    using Bench::Comparison;
    setenv("EGL_PLATFORM", "surfaceless", 1);
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    std::vector<Comparison> comparisons = {
        {"4 MiB texture, 99 times: captured", "4 MiB texture, 99 times: hash alone", 1.3}};
    const std::string loop = "'" FRAME_LOOP "' ";
    const bool hasApitrace = std::system("command -v apitrace eglretrace >/dev/null") == 0;
    for (const auto& [name, arguments, aim] :
         {std::tuple{"call", std::string("parameters ") + calls, 0.3},
          std::tuple{"1 MiB of arrays a frame", std::string("arrays ") + frames, 0.7}}) {
        const std::string ours = name + std::string(": zlt_ogl capture"),
                          theirs = name + std::string(": apitrace trace");
        add(name + std::string(": bare"), loop + arguments);
        add(ours, command + "capture -o '" + folder + "calls.zlt' " + loop + arguments);
        if (!hasApitrace)
            continue;
        add(theirs, "apitrace trace --api egl --output '" + folder + "calls.trace' " + loop + arguments);
        comparisons.push_back({ours, theirs, aim});
    }
    // Both play the same calls: the other trace is made of our replay. Only with X, since the savers need it.
    for (const std::string saver : savers) {
        const std::string path = "/usr/libexec/xscreensaver/" + saver;
        if (!hasApitrace || !std::getenv("DISPLAY") || !fs::exists(path))
            continue;
        const std::string ours = folder + saver + ".zlt", theirs = folder + saver + ".trace";
        runShell(command + "capture --frames 200 -o '" + ours + "' " + path);
        runShell("apitrace trace --api egl --output '" + theirs + "' " + command + "replay '" + ours + "'");
        std::printf("%s, 200 frames: %ju bytes, apitrace %ju, ratio %.3f (aim at most 1)\n", saver.c_str(),
                    static_cast<std::uintmax_t>(fs::file_size(ours)),
                    static_cast<std::uintmax_t>(fs::file_size(theirs)),
                    static_cast<double>(fs::file_size(ours)) / static_cast<double>(fs::file_size(theirs)));
        add(saver + ": zlt_ogl replay", command + "replay '" + ours + "'");
        add(saver + ": apitrace replay", "eglretrace -b --headless '" + theirs + "'");
        comparisons.push_back({saver + ": zlt_ogl replay", saver + ": apitrace replay", 1.0});
    }
    return Bench::run(argc, argv, comparisons);
}
