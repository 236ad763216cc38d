#include "Capture.h"

#include "Output.h"
#include "ProgramFile.h"
#include "Progress.h"
#include "Run.h"
#include "Sites.h"
#include "Summary.h"
#include "capture/Bytes.h"
#include "capture/CaptureFileWriter.h"
#include "capture/Functions.h"
#include "capture/Records.h"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <system_error>

namespace ZLT::Interception {

namespace {

namespace fs = std::filesystem;
using Capture::CaptureFileWriter;
using Capture::Event;

// The capture of one process.
class ProcessCapture {
public:
    ProcessCapture(const std::string& path, const std::string& info)
        : path_(path), file_(path, {false, info}) {}

    void call(std::uint32_t thread, std::string_view bytes, KnownSites& sites, std::size_t process) {
        Capture::ByteReader record(bytes);
        const auto number = record.numberOf<std::uint32_t>();
        if (number >= Capture::firstEntry)
            tellSite(record.numberOf<std::uint32_t>(), number, sites, process);
        else if (number == static_cast<std::uint32_t>(Event::End))
            hasEnd_ = true;
        else if (number == static_cast<std::uint32_t>(Event::Incomplete))
            std::cerr << "zlt_ogl: not captured: " << record.text() << ".\n";
        file_.record(thread, bytes);
    }

    void data(std::string_view bytes) {
        DataRecord head;
        if (bytes.size() < sizeof head)
            return;
        std::memcpy(&head, bytes.data(), sizeof head);
        bytes.remove_prefix(sizeof head);
        std::string& parts = parts_[head.number];
        if (parts.empty())
            parts.reserve(head.size);
        if (bytes.size() == head.size)
            file_.addData(head.number, bytes);
        else if ((parts += bytes).size() >= head.size)
            file_.addData(head.number, parts);
        else
            return;
        parts_.erase(head.number);
    }

    void incomplete(const std::string& what) {
        std::string record;
        Capture::appendValue(record, static_cast<std::uint32_t>(Event::Incomplete));
        Capture::appendValue(record, what.size());
        file_.record(1, record + what);
    }

    bool hasEnd() const { return hasEnd_; }
    void end() {
        std::string record;
        Capture::appendValue(record, static_cast<std::uint32_t>(Event::End));
        if (!hasEnd_)
            file_.record(1, record);
    }
    CaptureFileWriter& file() { return file_; }
    const std::string& path() const { return path_; }

private:
    // A place is looked up with the first call from there, since the function helps to find it.
    void tellSite(std::uint32_t site, std::uint32_t number, KnownSites& sites, std::size_t process) {
        if (site == 0 || (site < told_.size() && told_[site]))
            return;
        told_.resize(std::max<std::size_t>(told_.size(), site + 1));
        told_[site] = true;
        const Capture::Function* const function = Capture::functionOf(number);
        const Place& place = sites.place(process, site, function ? function->name : "");
        file_.addSite(site, place.file, place.line);
    }

    std::string path_;
    CaptureFileWriter file_;
    std::map<std::uint32_t, std::string> parts_;
    std::vector<bool> told_;
    bool hasEnd_ = false;
};

class Capturer : public RecordHandler {
public:
    Capturer(std::string path, std::string info, bool goesOn)
        : path_(std::move(path)), info_(std::move(info)), goesOn_(goesOn) {}

    void record(std::size_t process, RecordKind kind, std::string_view bytes) override {
        switch (kindOf(kind)) {
        case RecordKind::Module:
            return sites_.addModule(bytes);
        case RecordKind::Site:
            return sites_.add(process, bytes);
        case RecordKind::Note:
            std::cerr << "zlt_ogl: " << bytes << '\n';
            return;
        case RecordKind::Call:
            captureOf(process).call(threadOf(kind), bytes, sites_, process);
            if ((++records_ & 0xFFF) == 0)
                lookAtClock();
            return;
        case RecordKind::Data:
            return captureOf(process).data(bytes);
        default:
            return;
        }
    }

    bool isDone() const override {
        return !goesOn_ && !captures_.empty() && captures_.begin()->second->hasEnd();
    }

    std::map<std::size_t, std::unique_ptr<ProcessCapture>>& captures() { return captures_; }
    Progress& progress() { return progress_; }

private:
    // The first process that draws gets the file, and others get ones beside it.
    ProcessCapture& captureOf(std::size_t process) {
        std::unique_ptr<ProcessCapture>& capture = captures_[process];
        if (!capture) {
            fs::path path = path_;
            if (captures_.size() > 1)
                path.replace_filename(path.stem().string() + '-' + std::to_string(captures_.size()) +
                                      path.extension().string());
            capture = std::make_unique<ProcessCapture>(path.string(), info_);
        }
        return *capture;
    }

    // Now and then, what is there goes to the file: this process may be killed too.
    void lookAtClock() {
        showProgress();
        const auto now = std::chrono::steady_clock::now();
        if (now - flushed_ < std::chrono::seconds(1))
            return;
        flushed_ = now;
        for (const auto& [process, one] : captures_)
            one->file().flush();
    }

    void showProgress() {
        const CaptureFileWriter& file = captures_.begin()->second->file();
        progress_.show(counted(file.frameCount(), "frame") + ", " + counted(file.callCount(), "call") + ", " +
                       sizeText(file.size()));
    }

    std::string path_, info_;
    bool goesOn_;
    KnownSites sites_;
    std::map<std::size_t, std::unique_ptr<ProcessCapture>> captures_;
    std::uint64_t records_ = 0;
    std::chrono::steady_clock::time_point flushed_ = std::chrono::steady_clock::now();
    Progress progress_;
};

// Before anything runs: where nothing can be written, nothing has to be run.
void checkWritable(const std::string& path) {
    const bool exists = fs::exists(path);
    CaptureFileWriter file(path);
    file.close();
    if (!exists)
        fs::remove(path);
}

} // namespace

void capture(const CaptureOptions& options, const std::vector<std::string>& program) {
    const bool isScript = findProgram(program.front()).isScript;
    const std::string path = options.output.empty() ? freeName(program.front(), ".zlt") : options.output;
    try {
        checkWritable(path);
    } catch (const std::system_error& error) {
        throw Refusal(path + " can't be written: " + error.code().message(), Refusal::usage);
    }
    std::string info = "program:";
    for (const std::string& word : program)
        info += ' ' + word;
    info += "\nwritten by: zlt_ogl " ZLT_OGL_VERSION "\n";
    ChannelReader channel(options.channel);
    Capturer capturer(path, info, options.channel.goOn);
    Ending ending = run(program, channel, capturer);
    capturer.progress().clear();
    if (capturer.isDone())
        ending = {};
    const std::string later = laterCallsOf(channel);
    for (const auto& [process, one] : capturer.captures()) {
        if (!later.empty())
            one->incomplete("calls of functions that came after OpenGL 3.0: " + later);
        // A program that was killed may have had more to say.
        if (ending.signal == 0)
            one->end();
        try {
            one->file().close();
        } catch (const std::system_error& error) {
            throw Refusal(std::string(error.what()), Refusal::usage);
        }
        std::cerr << "zlt_ogl: " << one->path() << ": " << counted(one->file().frameCount(), "frame") << ", "
                  << counted(one->file().callCount(), "call") << ", " << sizeText(one->file().size())
                  << ".\n";
    }
    std::cerr << "zlt_ogl: " << summaryOf(channel, program.front(), isScript) << std::flush;
    endAs(ending);
}

} // namespace ZLT::Interception
