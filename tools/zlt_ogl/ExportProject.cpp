#include "ExportProject.h"

#include "ProgramFile.h"
#include "Progress.h"
#include "capture/CaptureFile.h"
#include "capture/DriverCalls.h"
#include "capture/PlatformPlaySystem.h"
#include "capture/ProjectExporter.h"

#include <filesystem>
#include <iostream>

namespace ZLT::Interception {

namespace fs = std::filesystem;

namespace {

// What may be a program's name, and a target's of CMake: letters, digits, - and _.
std::string nameOf(const ExportOptions& options) {
    const bool isGiven = !options.name.empty();
    std::string name =
        isGiven ? options.name : fs::path(options.folder).lexically_normal().filename().string();
    if (name.empty())
        name = fs::path(options.folder).lexically_normal().parent_path().filename().string();
    for (char& letter : name) {
        const bool isGood = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                            (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
        if (!isGood && isGiven)
            throw Refusal(options.name + " can't be the name of a program here: letters, digits, - and _ can",
                          Refusal::usage);
        if (!isGood)
            letter = '_';
    }
    // CMake has targets of these names.
    return name.empty() || name == "." || name == ".." || name == "test" || name == "all" ? "capture" : name;
}

} // namespace

int exportProject(const ExportOptions& options) {
    Capture::CaptureFile file(options.file);
    const std::string name = nameOf(options);
    // It is known in front, unless the capture is damaged.
    if (file.frameCount() > 0 && options.frames.first > file.frameCount())
        throw Refusal(options.file + " has " + counted(file.frameCount(), "frame"), Refusal::usage);
    Capture::ProjectExporter exporter(
        file, {options.folder, name, fs::path(options.file).filename().string(), options.frames.last});
    Progress progress;
    if (options.frames.first > 1) {
        Capture::DriverCalls driver;
        Capture::PlatformPlaySystem system(false, driver);
        exporter.startAt(options.frames.first, options.file, system, driver, [&](std::uint64_t frame) {
            progress.show("frame " + std::to_string(frame) + " is played");
        });
    }
    while (exporter.exportFrame())
        progress.show("frame " + std::to_string(exporter.frameCount()));
    exporter.finish();
    progress.clear();
    std::cout << options.folder << ": " << counted(exporter.frameCount(), "frame") << ", "
              << counted(exporter.callCount(), "call")
              << "\ncmake -B build && cmake --build build there, then build/" << name << " --verify\n";
    for (const std::string& sentence : exporter.missing())
        std::cerr << "zlt_ogl: " << sentence << '\n';
    if (file.damage().empty())
        return 0;
    std::cerr << "zlt_ogl: " << file.damage() << ".\n";
    return 1;
}

} // namespace ZLT::Interception
