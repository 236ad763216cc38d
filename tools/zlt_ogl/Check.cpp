#include "Check.h"

#include "Output.h"
#include "ProgramFile.h"
#include "Run.h"
#include "Sites.h"
#include "Summary.h"
#include "intercept/ReportRecord.h"

#include <cstring>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <tuple>

namespace ZLT::Interception {

namespace {

using OGL::OpenGLErrorReport;

// What calls main() has debug information on some systems, and is nobody's own source.
bool isOfRuntime(std::string_view function) {
    return function.starts_with("__libc_start") || function.find("CRTStartup") != std::string_view::npos;
}

class Checker : public RecordHandler {
public:
    Checker(bool stack, std::ostream* sarif) : stack_(stack) {
        sinks_.push_back(std::make_unique<OGL::OpenGLTextSink>(std::cerr));
        if (sarif)
            sinks_.push_back(std::make_unique<OGL::OpenGLSarifSink>(*sarif));
    }

    void record(std::size_t process, RecordKind kind, std::string_view bytes) override {
        switch (kind) {
        case RecordKind::Module:
            sites_.addModule(bytes);
            break;
        case RecordKind::Site:
            sites_.add(process, bytes);
            break;
        case RecordKind::Report:
            // A program that writes where it should not may have damaged it; what follows is read all the
            // same.
            try {
                report(process, decodeReport(bytes));
            } catch (const std::runtime_error& error) {
                std::cerr << "zlt_ogl: an error is not told: " << error.what() << '\n';
            }
            break;
        case RecordKind::Again:
            again(process, bytes);
            break;
        case RecordKind::Note:
            std::cerr << "zlt_ogl: " << bytes << '\n';
            break;
        default:
            break;
        }
    }

    void finish() {
        for (const auto& sink : sinks_)
            sink->finish(totals_);
    }

    unsigned long long errorCount() const {
        unsigned long long count = 0;
        for (const OGL::OpenGLErrorTotal& total : totals_)
            if (total.first.kind != OpenGLErrorReport::Kind::DriverMessage)
                count += total.count;
        return count;
    }

private:
    // What tells two reports of a line apart.
    static String whatOf(const OpenGLErrorReport& report) {
        if (report.kind == OpenGLErrorReport::Kind::FoundByCheck)
            return report.check; // the reason has numbers that change
        return report.kind == OpenGLErrorReport::Kind::DriverMessage && !report.messages.empty()
                   ? report.messages.front().text
                   : report.reason;
    }

    void report(std::size_t process, ReportRecord record) {
        OpenGLErrorReport report = std::move(record.report);
        const Place& place = sites_.place(process, record.site, report.function);
        report.file = place.file;
        report.line = place.line;
        // Two calls of one line are two places to the program.
        const String what = whatOf(report);
        const auto [known, isNew] = known_.try_emplace(
            {report.file, report.line, report.function, int(report.kind), what}, totals_.size());
        byNumber_[{process, record.number}] = known->second;
        if (!isNew) {
            ++totals_[known->second].count;
            return;
        }
        addStack(process, record, place, report);
        totals_.push_back({report, 1});
        for (const auto& sink : sinks_)
            sink->report(report);
    }

    // All callers where they are asked for. Where the call itself stands in no source that is known, of a
    // toolkit for example, the nearest caller that does.
    void addStack(std::size_t process, const ReportRecord& record, const Place& place,
                  OpenGLErrorReport& report) {
        if (!stack_ && place.isKnown())
            return;
        for (const std::uint32_t site : record.stack)
            for (const Place& frame : sites_.inlined(process, site)) {
                if (!stack_ && (!frame.isKnown() || isOfRuntime(frame.function)))
                    continue;
                report.stack.push_back({String(frame.function), String(frame.file), frame.line});
                if (!stack_)
                    return;
            }
    }

    void again(std::size_t process, std::string_view bytes) {
        std::uint32_t number = 0;
        if (bytes.size() != sizeof number)
            return;
        std::memcpy(&number, bytes.data(), sizeof number);
        if (const auto found = byNumber_.find({process, number}); found != byNumber_.end())
            ++totals_[found->second].count;
    }

    bool stack_;
    KnownSites sites_;
    std::vector<std::unique_ptr<OGL::OpenGLErrorSink>> sinks_;
    std::vector<OGL::OpenGLErrorTotal> totals_;
    std::map<std::tuple<String, unsigned, std::string, int, String>, std::size_t> known_;
    std::map<std::pair<std::size_t, std::uint32_t>, std::size_t> byNumber_;
};

} // namespace

void check(const CheckOptions& options, const std::vector<std::string>& program) {
    ChannelReader channel(options.channel);
    std::unique_ptr<std::ostream> sarif;
    if (!options.sarif.empty())
        sarif = openOutput(options.sarif);
    Checker checker(options.stack, sarif.get());
    const bool isScript = findProgram(program.front()).isScript; // before it runs: it may remove itself
    Ending ending = run(program, channel, checker);
    checker.finish();
    std::cerr << "zlt_ogl: " << counted(checker.errorCount(), "error") << "; "
              << summaryOf(channel, program.front(), isScript) << std::flush;
    if (sarif)
        closeOutput(*sarif, options.sarif);
    if (options.exitCode && checker.errorCount() > 0 && ending.signal == 0 && ending.status == 0)
        ending.status = 1;
    endAs(ending);
}

} // namespace ZLT::Interception
