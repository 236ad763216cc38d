#include "MakeReport.h"

#include "Output.h"
#include "Pictures.h"
#include "ProgramFile.h"
#include "Progress.h"
#include "ReportJson.h"
#include "capture/CaptureFile.h"
#include "capture/DriverCalls.h"
#include "capture/PlatformPlaySystem.h"
#include "capture/reporting/CaptureReporter.h"

#include <filesystem>
#include <iostream>
#include <optional>
#include <string_view>

#if defined(_WIN32)
#include <windows.h>

#include <shellapi.h> // which needs the other
#else
#include <spawn.h>
#include <unistd.h>
#endif

namespace ZLT::Interception {

namespace {

namespace fs = std::filesystem;

struct EmbeddedFile {
    const char* name;
    const char* text;
    bool isFilled;
};
#include "ReportPage.inl"

std::string_view embedded(std::string_view name) {
    for (const EmbeddedFile& file : embeddedFiles)
        if (file.name == name)
            return file.text;
    throw std::logic_error("the page lacks " + std::string(name));
}

// A page of this size is still opened at once.
constexpr std::size_t mostJson = 29 << 20;

std::string base64(std::string_view bytes) {
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = 0; j < 3; ++j)
            group = group << 8 | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0u);
        for (std::size_t j = 0; j < 4; ++j)
            text += i + j <= bytes.size() ? digits[group >> (18 - 6 * j) & 63] : '=';
    }
    return text;
}

// Names of the program may end the script that they are in: JSON can write the sign in another way.
std::string inScript(const std::string& json) {
    std::string text;
    text.reserve(json.size() + json.size() / 16);
    for (const char letter : json)
        if (letter == '<')
            text += "\\u003c";
        else
            text += letter;
    return text;
}

// Minified scripts name a file for debuggers, which there is not.
void writeEmbedded(std::ostream& to, std::string_view name) {
    std::string_view text = embedded(name);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n') + 1, text.size());
        if (text.substr(0, end).find("# sourceMappingURL=") == std::string_view::npos)
            to << text.substr(0, end);
        text.remove_prefix(end);
    }
}

void writePage(std::ostream& to, const std::string& json) {
    std::string_view page = embedded("report.html");
    while (!page.empty()) {
        const std::size_t end = std::min(page.find('\n') + 1, page.size());
        const std::string_view line = page.substr(0, end);
        page.remove_prefix(end);
        const auto named = [&](std::string_view mark) -> std::string_view {
            if (!line.starts_with(mark))
                return {};
            const std::size_t from = mark.size();
            return line.substr(from, line.find(" -->") - from);
        };
        const auto writeIn = [&](const char* tag, std::string_view name) {
            to << '<' << tag << ">\n";
            writeEmbedded(to, name);
            to << "</" << tag << ">\n";
        };
        if (const std::string_view style = named("<!-- style "); !style.empty())
            writeIn("style", style);
        else if (const std::string_view script = named("<!-- script "); !script.empty())
            writeIn("script", script);
        else if (line.starts_with("<!-- data -->"))
            to << "<script type=\"application/json\" id=\"report\">" << inScript(json) << "</script>\n";
        else
            to << line;
    }
}

void open(const std::string& page) {
    const std::string path = fs::absolute(page).string();
#if defined(_WIN32)
    const bool isOpen = reinterpret_cast<std::intptr_t>(
                            ShellExecuteA(nullptr, "open", path.c_str(), nullptr, nullptr, SW_SHOW)) > 32;
#else
    std::string command = "xdg-open", argument = path;
    char* words[] = {command.data(), argument.data(), nullptr};
    pid_t child = 0;
    const bool isOpen = posix_spawnp(&child, command.c_str(), nullptr, nullptr, words, environ) == 0;
#endif
    if (!isOpen)
        throw Refusal(path + " is written, but nothing here opens it: xdg-open is missing", 1);
}

} // namespace

int makeReport(const PageOptions& options) {
    Capture::CaptureFile file(options.file);
    const std::string page = options.page.empty() ? freeName(options.file, ".html") : options.page;
    // Where nothing can be written, nothing has to be played.
    LateOutput to(page, options.file);
    std::optional<LateOutput> trace;
    if (!options.chrome.empty()) {
        trace.emplace(options.chrome, options.file);
        if (fs::equivalent(page, options.chrome))
            throw Refusal(page + " can't be the page and the trace", Refusal::usage);
    }
    Capture::ReportOptions how;
    how.encode = [](const Capture::Picture& picture, bool hasAlpha) -> std::string {
        const std::string bytes = hasAlpha ? pngOf(picture) : jpegOf(picture);
        return (hasAlpha ? "data:image/png;base64," : "data:image/jpeg;base64,") + base64(bytes);
    };
    Capture::DriverCalls driver;
    Capture::PlatformPlaySystem system(false, driver);
    Progress progress;
    Capture::Report report;
    {
        Capture::CaptureReporter reporter(file, system, driver, how);
        while (reporter.playFrame())
            progress.show("frame " + std::to_string(reporter.frameCount()) +
                          (file.frameCount() > 0 ? " of " + std::to_string(file.frameCount()) : ""));
        report = reporter.finish();
    }
    if (const char* const missing = driver.missing())
        report.leftOut.push_back("The driver of the replay has no " + std::string(missing) + ".");
    progress.clear();
    const std::string name = fs::path(options.file).filename().string();
    writePage(to.begin(), reportJson(report, name, mostJson));
    to.finish();
    if (trace) {
        trace->begin() << chromeTrace(report, name) << '\n';
        trace->finish();
    }
    std::cout << page << ": " << counted(report.frames.size() - (report.isLastUnfinished ? 1 : 0), "frame")
              << ", " << counted(report.calls, "call") << ", " << counted(report.errorCount, "error") << '\n';
    if (!file.damage().empty())
        std::cerr << "zlt_ogl: " << file.damage() << ".\n";
    if (options.opens)
        open(page);
    return file.damage().empty() ? 0 : 1;
}

} // namespace ZLT::Interception
