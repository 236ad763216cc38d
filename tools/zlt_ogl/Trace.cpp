#include "Trace.h"

#include "Output.h"
#include "ProgramFile.h"
#include "Run.h"
#include "Sites.h"
#include "Summary.h"

#include <cstring>
#include <iostream>
#include <memory>

namespace ZLT::Interception {

namespace {

class Tracer : public RecordHandler {
public:
    explicit Tracer(std::ostream& out) : out_(out) {}

    void record(std::size_t process, RecordKind kind, std::string_view bytes) override {
        if (kind == RecordKind::Module)
            sites_.addModule(bytes);
        else if (kind == RecordKind::Site)
            sites_.add(process, bytes);
        else if (kind == RecordKind::Note)
            std::cerr << "zlt_ogl: " << bytes << '\n';
        else if (kind == RecordKind::Text || kind == RecordKind::Line)
            line(process, kind, bytes);
    }

private:
    void line(std::size_t process, RecordKind kind, std::string_view bytes) {
        std::uint32_t site = 0;
        if (bytes.size() < sizeof site)
            return;
        std::memcpy(&site, bytes.data(), sizeof site);
        bytes.remove_prefix(sizeof site);
        if (process != process_ && startsLine_) {
            process_ = process;
            if (hasLines_)
                out_ << "// program " << process + 1 << '\n';
        }
        hasLines_ = true;
        if (startsLine_ && site != 0)
            out_ << prefix(process, site, bytes.substr(0, bytes.find('(')));
        out_ << bytes;
        startsLine_ = kind == RecordKind::Line;
    }

    const std::string& prefix(std::size_t process, std::uint32_t site, std::string_view function) {
        if (prefixes_.size() <= process)
            prefixes_.resize(process + 1);
        std::vector<Prefix>& known = prefixes_[process];
        if (known.size() <= site)
            known.resize(site + 1);
        Prefix& prefix = known[site];
        if (prefix.function != function) {
            const Place& place = sites_.place(process, site, function);
            prefix.function = function;
            prefix.text = place.file + ':' + std::to_string(place.line) + ": ";
        }
        return prefix.text;
    }

    struct Prefix {
        std::string function, text;
    };

    std::ostream& out_;
    KnownSites sites_;
    std::vector<std::vector<Prefix>> prefixes_;
    std::size_t process_ = 0;
    bool startsLine_ = true;
    bool hasLines_ = false;
};

} // namespace

void trace(const TraceOptions& options, const std::vector<std::string>& program) {
    ChannelReader channel(options.channel);
    std::unique_ptr<std::ostream> file;
    if (!options.output.empty())
        file = openOutput(options.output);
    std::ostream& out = file ? *file : std::cerr;
    Tracer tracer(out);
    const bool isScript = findProgram(program.front()).isScript; // before it runs: it may remove itself
    const Ending ending = run(program, channel, tracer);
    out.flush();
    if (file)
        closeOutput(*file, options.output);
    std::cerr << "zlt_ogl: " << summaryOf(channel, program.front(), isScript) << std::flush;
    endAs(ending);
}

} // namespace ZLT::Interception
