#include "intercept/ReportRecord.h"

#include <cstring>
#include <set>
#include <stdexcept>

namespace ZLT::Interception {

namespace {

using OGL::OpenGLDriverMessage;
using OGL::OpenGLErrorReport;

class Encoder {
public:
    Encoder& operator<<(std::uint32_t number) {
        bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
        return *this;
    }
    Encoder& operator<<(std::string_view text) {
        *this << static_cast<std::uint32_t>(text.size());
        bytes += text;
        return *this;
    }
    std::string bytes;
};

class Decoder {
public:
    explicit Decoder(std::string_view bytes) : rest_(bytes) {}
    std::uint32_t number() {
        std::uint32_t value = 0;
        std::memcpy(&value, take(sizeof value).data(), sizeof value);
        return value;
    }
    std::string_view text() { return take(number()); }
    /// How many of something that takes at least `size` bytes follow.
    std::uint32_t count(std::size_t size) {
        const std::uint32_t value = number();
        if (value > rest_.size() / size)
            throw std::runtime_error("a record is damaged");
        return value;
    }

private:
    std::string_view take(std::size_t size) {
        if (size > rest_.size())
            throw std::runtime_error("a record is damaged");
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }
    std::string_view rest_;
};

// A report keeps a function's name by its address.
const char* kept(std::string_view name) {
    static std::set<std::string, std::less<>> names;
    return names.emplace(name).first->c_str();
}

} // namespace

std::string encode(const ReportRecord& record) {
    const OpenGLErrorReport& report = record.report;
    Encoder out;
    out << record.number << static_cast<std::uint32_t>(report.kind) << record.site << report.code
        << report.function << report.arguments << report.reason << report.check
        << static_cast<std::uint32_t>(report.messages.size());
    for (const OpenGLDriverMessage& message : report.messages)
        out << message.source << message.type << message.id << message.severity
            << std::uint32_t(message.insideCall) << message.text;
    out << static_cast<std::uint32_t>(record.stack.size());
    for (const std::uint32_t site : record.stack)
        out << site;
    return std::move(out.bytes);
}

ReportRecord decodeReport(std::string_view bytes) {
    Decoder in(bytes);
    ReportRecord record;
    OpenGLErrorReport& report = record.report;
    record.number = in.number();
    const std::uint32_t kind = in.number();
    if (kind > static_cast<std::uint32_t>(OpenGLErrorReport::Kind::FoundByCheck))
        throw std::runtime_error("a record is damaged");
    report.kind = static_cast<OpenGLErrorReport::Kind>(kind);
    record.site = in.number();
    report.code = in.number();
    report.function = kept(in.text());
    report.arguments = in.text();
    report.reason = in.text();
    report.check = in.text();
    for (std::uint32_t left = in.count(6 * sizeof(std::uint32_t)); left > 0; --left) {
        OpenGLDriverMessage message;
        message.source = in.number();
        message.type = in.number();
        message.id = in.number();
        message.severity = in.number();
        message.insideCall = in.number() != 0;
        message.text = in.text();
        report.messages.push_back(std::move(message));
    }
    for (std::uint32_t left = in.count(sizeof(std::uint32_t)); left > 0; --left)
        record.stack.push_back(in.number());
    return record;
}

} // namespace ZLT::Interception
