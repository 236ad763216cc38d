// Bytes and texts in the trace of a foreign program. A pointer to bytes may be an offset into a buffer, or
// point at memory that ends without a zero byte; and what isn't text would make the line no line.

#include "extensionator/ValueForms.h"
#include "intercept/Memory.h"

#include <algorithm>

namespace ZLT::OGL::ValueForms::Detail {

namespace {

constexpr std::size_t longestText = 4096, mostBytes = 64;

bool isText(char byte) { return static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F; }

void writeEscaped(std::ostream& out, char byte) {
    constexpr const char* digits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    out << "\\x" << digits[value >> 4] << digits[value & 15];
}

} // namespace

void writeByte(std::ostream& out, char value) {
    if (isText(value) && static_cast<unsigned char>(value) < 0x80)
        out << value;
    else
        writeEscaped(out, value);
}

void writeText(std::ostream& out, const char* text) {
    char bytes[longestText];
    const std::size_t readable = Interception::readMemory(text, bytes, sizeof bytes);
    if (readable == 0) {
        out << Pointer(text);
        return;
    }
    const char* const end = std::find(bytes, bytes + readable, '\0');
    if (std::all_of(static_cast<const char*>(bytes), end, isText)) {
        out.write(bytes, end - bytes);
        return;
    }
    const char* const shown = std::min(end, static_cast<const char*>(bytes) + mostBytes);
    for (const char* byte = bytes; byte != shown; ++byte)
        writeByte(out, *byte);
    if (shown != end)
        out << "...";
}

} // namespace ZLT::OGL::ValueForms::Detail
