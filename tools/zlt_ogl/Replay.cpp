#include "Replay.h"

#include "Pictures.h"
#include "ProgramFile.h"
#include "Progress.h"
#include "capture/CaptureFile.h"
#include "capture/CapturePlayer.h"
#include "capture/DriverCalls.h"
#include "capture/PlatformPlaySystem.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <set>

namespace ZLT::Interception {

namespace {

namespace fs = std::filesystem;
using namespace Capture;

class Listener : public PlayListener {
public:
    explicit Listener(const ReplayOptions& options) : options_(options) {}

    void frameEnding(std::uint64_t frame, const std::function<bool(Picture&)>& read) override {
        if (options_.pictures.empty() || frame < options_.frames.first || frame > options_.frames.last)
            return;
        Picture picture;
        char name[32];
        std::snprintf(name, sizeof name, "frame-%06llu.png", static_cast<unsigned long long>(frame));
        if (read(picture))
            writePng((fs::path(options_.pictures) / name).string(), picture);
    }
    void differs(const CapturedCall& call, const std::string& what) override {
        if (first_.empty())
            first_ = "frame " + std::to_string(call.frame) + ": " + what + " differs" +
                     (call.function->isCall()
                          ? " in call " + std::to_string(call.number) + ", " + call.function->name
                          : "");
    }
    void incomplete(const std::string& what) override {
        if (told_.insert(what).second)
            std::cerr << "zlt_ogl: the capture is incomplete: " << what << ".\n";
    }

    const std::string& firstDifference() const { return first_; }

private:
    const ReplayOptions& options_;
    std::string first_;
    std::set<std::string> told_;
};

} // namespace

int replay(const ReplayOptions& options) {
    if (!options.pictures.empty())
        fs::create_directories(options.pictures);
    CaptureFile file(options.file);
    Listener listener(options);
    DriverCalls driver;
    Progress progress;
    std::uint64_t calls = 0, frames = 0, compared = 0;
    const auto begin = std::chrono::steady_clock::now();
    for (unsigned int time = 0; time < options.times; ++time) {
        file.rewind();
        PlatformPlaySystem system(options.isShown, driver);
        CapturePlayer player(file, system, driver, listener, {options.verifies});
        while (player.frameCount() < options.frames.last && player.playFrame())
            progress.show("frame " + std::to_string(player.frameCount()) +
                          (file.frameCount() > 0 ? " of " + std::to_string(file.frameCount()) : ""));
        calls += player.callCount();
        frames += player.frameCount();
        compared += player.comparedCount();
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    progress.clear();
    char time[96];
    std::snprintf(time, sizeof time, "%.3f s, %.0f calls a second", seconds,
                  static_cast<double>(calls) / (seconds > 0 ? seconds : 1e-9));
    if (options.verifies) {
        if (compared == 0)
            std::cout << counted(frames, "frame")
                      << ": nothing to compare; `zlt_ogl capture --verify` keeps what can be\n";
        else if (listener.firstDifference().empty())
            std::cout << counted(frames, "frame") << ": equal\n";
        else
            std::cout << listener.firstDifference() << '\n';
    }
    std::cout << counted(frames, "frame") << ", " << counted(calls, "call") << ", " << time << '\n';
    if (const char* const missing = driver.missing())
        std::cerr << "zlt_ogl: this driver has no " << missing << ", which was left out.\n";
    if (!file.damage().empty())
        std::cerr << "zlt_ogl: " << file.damage() << ".\n";
    return !listener.firstDifference().empty() || !file.damage().empty() ||
                   (options.verifies && compared == 0)
               ? 1
               : 0;
}

} // namespace ZLT::Interception
