// The command: what OpenGL a machine has, and what a program does with it.

#include "Capture.h"
#include "Check.h"
#include "Frames.h"
#include "Guarded.h"
#include "ProgramFile.h"
#include "Run.h"
#include "Trace.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace ZLT::Interception;

constexpr const char* description =
    R"(Looks at the OpenGL calls of any program, without compiling it again.

  zlt_ogl check ./game           each wrong call, with its line and its arguments
  zlt_ogl trace -o t.txt ./game  each call
  zlt_ogl capture ./game         everything that it draws, into a file
  zlt_ogl replay game.zlt        the same again
  zlt_ogl dump game.zlt          the calls of a capture
  zlt_ogl report game.zlt        a page about it: frames, errors, costs, objects
  zlt_ogl info                   what OpenGL this machine has)";

constexpr const char* checkDescription =
    R"(Runs PROGRAM and reports each OpenGL call that raised an error, on standard error:

  scene.cpp:105: error: GL_INVALID_ENUM in glEnable(0xDEAD)

Equal errors of one line are told once, and counted. The lines come from the program's debug information: compile it
with -g. Where there is none, the module and the offset stand there. PROGRAM sees nothing of this: it has its input,
output, exit status and signals as without it.)";

constexpr const char* traceDescription =
    R"(Runs PROGRAM and writes a line for each of its OpenGL calls:

  scene.cpp:168: glBindTexture(GL_TEXTURE_2D, 1)

The lines come from the program's debug information, see `zlt_ogl check --help`. A comment tells the thread and the
context where another one goes on.)";

constexpr const char* captureDescription =
    R"(Runs PROGRAM and writes all of its OpenGL calls, with all that they point at, to a file that `zlt_ogl replay`
plays without the program. A frame ends with a swap; in a program that never swaps, with glFlush
or glFinish.)";

constexpr std::pair<const char*, const char*> playerCommands[] = {
    {"replay", "Draw again what a capture has"},
    {"dump", "Write down the calls of a capture"},
    {"report", "Write a page about a capture, to look at in a browser"},
    {"export", "Write a capture as a C++ project that needs nothing of this"}};

// What stands after the options, or after `--`: the program and all that is its own, dashes of its own too.
std::vector<std::string> programOf(const CLI::App& command, std::span<char*> fromDashes) {
    std::vector<std::string> words = command.remaining();
    if (!words.empty() && words.front().starts_with('-'))
        throw Refusal("unknown option " + words.front() + "; see zlt_ogl " + command.get_name() + " --help",
                      Refusal::usage);
    if (words.empty() && !fromDashes.empty())
        fromDashes = fromDashes.subspan(1);
    words.insert(words.end(), fromDashes.begin(), fromDashes.end());
    if (words.empty())
        throw Refusal("which program? See zlt_ogl " + command.get_name() + " --help", Refusal::usage);
    return words;
}

// Help that says where the program stands.
class Help : public CLI::Formatter {
public:
    Help() { column_width(28); }
    std::string make_usage(const CLI::App* app, std::string name) const override {
        if (!app->get_prefix_command())
            return CLI::Formatter::make_usage(app, name);
        return "Usage: zlt_ogl " + app->get_name() + " [OPTIONS] [--] PROGRAM [ARGUMENTS...]\n";
    }
};

CLI::App& addProgramCommand(CLI::App& app, const std::string& name, const std::string& text,
                            const char* description, [[maybe_unused]] Options& channel) {
    CLI::App& command = *app.add_subcommand(name, text);
    command.description(description);
    command.prefix_command();
#if !defined(_WIN32)
    command.add_flag("--children", channel.children, "look at the programs that PROGRAM starts as well");
#endif
    return command;
}

int runCommand(int argc, char** argv) {
    CLI::App app(description, "zlt_ogl");
    app.set_version_flag("--version", ZLT_OGL_VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // "/tmp/game" is a program
    app.formatter(std::make_shared<Help>());

    bool json = false;
    CLI::App& infoCommand =
        *app.add_subcommand("info", "What the OpenGL driver of each display device offers");
    infoCommand.add_flag("--json", json, "for programs, as JSON");

    CheckOptions checkOptions;
    checkOptions.channel.mode = Mode::Check;
    CLI::App& checkCommand = addProgramCommand(app, "check", "Find the wrong OpenGL calls of a program",
                                               checkDescription, checkOptions.channel);
    checkCommand
        .add_option("--sarif", checkOptions.sarif, "write the errors to this file too, in SARIF 2.1.0")
        ->type_name("FILE");
    checkCommand.add_flag("--more", checkOptions.channel.more,
                          "also what GL does not report: indices, pointers, names, textures, framebuffers");
    checkCommand.add_flag("--stack", checkOptions.stack, "with the callers of each wrong call");
    checkCommand.add_flag("--break", checkOptions.channel.trap,
                          "stop in the debugger that is attached to PROGRAM");
    checkCommand.add_flag("--exit-code", checkOptions.exitCode,
                          "exit with 1 if there were errors and PROGRAM had 0");

    TraceOptions traceOptions;
    traceOptions.channel.mode = Mode::Trace;
    CLI::App& traceCommand = addProgramCommand(app, "trace", "Write down the OpenGL calls of a program",
                                               traceDescription, traceOptions.channel);
    std::string frames;
    traceCommand.add_option("-o,--output", traceOptions.output, "write to this file; else to standard error")
        ->type_name("FILE");
    traceCommand.add_option("--frames", frames, "only these frames, counted by swaps from 1: 3, 3-7, 3-")
        ->type_name("A-B");
    traceCommand.add_flag("--mark-frames", traceOptions.channel.markFrames, "a comment where a frame begins");

    CaptureOptions captureOptions;
    captureOptions.channel.mode = Mode::Capture;
    CLI::App& captureCommand =
        addProgramCommand(app, "capture", "Write everything that a program draws to a file, to have it again",
                          captureDescription, captureOptions.channel);
    std::uint64_t captureFrames = 0;
    captureCommand.add_option("-o,--output", captureOptions.output, "the file; else PROGRAM's name and .zlt")
        ->type_name("FILE");
    captureCommand.add_option("--frames", captureFrames, "so many frames, then PROGRAM is ended")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    captureCommand.add_flag("--go-on", captureOptions.channel.goOn, "let PROGRAM run on after these frames");
    captureCommand.add_flag("--verify", captureOptions.channel.hashPictures,
                            "with a hash of each picture, which a replay compares");

    // The program behind it knows their options.
    for (const auto& [name, text] : playerCommands) {
        if (argc > 1 && std::string_view(argv[1]) == name)
            becomeOwn("zlt_ogl_player", std::vector<std::string>(argv + 1, argv + argc));
        app.add_subcommand(name, text);
    }

    // In the order in which the parser takes them, from the back.
    char** const dashes = std::find(argv, argv + argc, std::string_view("--"));
    std::vector<std::string> words(std::make_reverse_iterator(dashes), std::make_reverse_iterator(argv + 1));
    const std::span<char*> fromDashes(dashes, argv + argc);
    try {
        app.parse(words);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error);
        throw Refusal(std::string(error.what()) + "; see zlt_ogl --help", Refusal::usage);
    }
    if (infoCommand.parsed())
        becomeOwn("zlt_ogl_info", json ? std::vector<std::string>{"--json"} : std::vector<std::string>());
    if (captureCommand.parsed()) {
        if (captureFrames > 0)
            captureOptions.channel.lastFrame = captureFrames;
        capture(captureOptions, programOf(captureCommand, fromDashes));
    }
    if (checkCommand.parsed())
        check(checkOptions, programOf(checkCommand, fromDashes));
    if (!frames.empty()) {
        Frames range;
        if (const std::string wrong = Frames::parse(frames, range); !wrong.empty())
            throw Refusal(wrong, Refusal::usage);
        traceOptions.channel.firstFrame = range.first;
        traceOptions.channel.lastFrame = range.last;
    }
    trace(traceOptions, programOf(traceCommand, fromDashes));
}

} // namespace

int main(int argc, char** argv) { return ZLT::Interception::guarded(runCommand, argc, argv); }
