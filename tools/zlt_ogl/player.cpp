// What is behind the commands of captures: `zlt_ogl replay`, `dump`, `export` and `report`.

#include "Dump.h"
#include "ExportProject.h"
#include "Guarded.h"
#include "MakeReport.h"
#include "ProgramFile.h"
#include "Replay.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

using namespace ZLT::Interception;

constexpr const char* replayDescription =
    R"(Makes the contexts of a capture and makes its calls again: off screen, unless --window is given. Then it says how
many frames and calls there were, and how long it took.)";

constexpr const char* dumpDescription =
    R"(Writes the calls of a capture, a line each:

  17 scene.cpp:168: glBindTexture(GL_TEXTURE_2D, texture 1)

with the number of the call, what pointers point at (-> for what came back), and comments where frames and threads
begin. What is large has its size in place of it.)";

constexpr const char* exportDescription =
    R"(Writes a capture as a C++ project that makes the same calls: a statement for each, with where the program made it.
The project needs a compiler, CMake and GLFW 3.3, and nothing of zlt_ogl.)";

constexpr const char* reportDescription =
    R"(Plays a capture and writes a page about it, one file that any browser opens: frames as pictures with what they
took and what they did, errors by the line that made them, calls that changed nothing, calls that wait, costly habits,
all objects, and what was left.)";

void readRange(const std::string& text, Frames& range, const std::string& what) {
    if (text.empty())
        return;
    if (const std::string wrong = Frames::parse(text, range, what); !wrong.empty())
        throw Refusal(wrong, Refusal::usage);
}

int run(int argc, char** argv) {
    CLI::App app("Plays what zlt_ogl captured.", "zlt_ogl");
    app.set_version_flag("--version", ZLT_OGL_VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // "/tmp/a.zlt" is a file
    std::string frames, calls;

    ReplayOptions replayOptions;
    CLI::App& replayCommand = *app.add_subcommand("replay", replayDescription);
    replayCommand.add_option("FILE", replayOptions.file, "the capture")->required();
    replayCommand.add_flag("--verify", replayOptions.verifies,
                           "compare pictures, and what the program read back");
    replayCommand.add_option("--png", replayOptions.pictures, "write a picture of each frame to this folder")
        ->type_name("FOLDER");
    replayCommand
        .add_option("--frames", frames, "of which there are pictures: 3, 3-7, 3-; the last one is the last")
        ->type_name("A-B");
    replayCommand.add_option("--loop", replayOptions.times, "play it so many times")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    replayCommand.add_flag("--window", replayOptions.isShown, "show the windows");

    DumpOptions dumpOptions;
    CLI::App& dumpCommand = *app.add_subcommand("dump", dumpDescription);
    dumpCommand.add_option("FILE", dumpOptions.file, "the capture")->required();
    dumpCommand.add_option("--frames", frames, "only these: 3, 3-7, 3-")->type_name("A-B");
    dumpCommand.add_option("--calls", calls, "only these, by their numbers")->type_name("A-B");
    dumpCommand.add_flag("--json", dumpOptions.isJson, "for programs: an object a line");

    ExportOptions exportOptions;
    CLI::App& exportCommand = *app.add_subcommand("export", exportDescription);
    exportCommand.add_option("FILE", exportOptions.file, "the capture")->required();
    exportCommand.add_option("FOLDER", exportOptions.folder, "the project's, which is new or empty")
        ->required();
    exportCommand.add_option("--frames", frames, "only these: 3, 3-7, 3-")->type_name("A-B");
    exportCommand.add_option("--name", exportOptions.name, "the program's name; else that of FOLDER")
        ->type_name("NAME");

    PageOptions pageOptions;
    CLI::App& reportCommand = *app.add_subcommand("report", reportDescription);
    reportCommand.add_option("FILE", pageOptions.file, "the capture")->required();
    reportCommand.add_option("-o,--output", pageOptions.page, "the page; else FILE's name and .html")
        ->type_name("PAGE");
    reportCommand
        .add_option("--chrome", pageOptions.chrome, "write the times for the viewers of Chrome's traces")
        ->type_name("TRACE");
    reportCommand.add_flag("--open", pageOptions.opens, "show the page in the browser");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error);
        throw Refusal(std::string(error.what()) + "; see zlt_ogl " + (argc > 1 ? argv[1] : "") + " --help",
                      Refusal::usage);
    }
    if (dumpCommand.parsed()) {
        readRange(frames, dumpOptions.frames, "frame");
        readRange(calls, dumpOptions.calls, "call");
        return dump(dumpOptions);
    }
#if !defined(_WIN32)
    if (!replayOptions.isShown)
        setenv("ZLT_OGL_PLATFORM", "headless", 1);
#endif
    if (exportCommand.parsed()) {
        readRange(frames, exportOptions.frames, "frame");
        return exportProject(exportOptions);
    }
    if (reportCommand.parsed())
        return makeReport(pageOptions);
    readRange(frames, replayOptions.frames, "frame");
    return replay(replayOptions);
}

} // namespace

int main(int argc, char** argv) { return ZLT::Interception::guarded(run, argc, argv); }
