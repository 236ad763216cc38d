#include "extensionator/OpenGLCall.h"

#include "extensionator/ConstantNames.h"
#include "extensionator/ValueForms.h"
#include "zlt/core/Enforce.h"

#include <cstring>
#include <sstream>
#include <type_traits>

namespace ZLT::OGL {

namespace {

struct EntryRow {
    std::uint16_t name, group, forms;
};

#include "extensionator/EntryTable.inl"

static_assert(sizeof(entryNames) <= 0x10000 && sizeof(entryGroups) <= 0x10000 &&
              sizeof(entryForms) <= 0x10000);

const EntryRow& rowOf(unsigned int number) {
    ZLT_RANGE(number < openGLEntryCount());
    return entryRows[number];
}

template <class T>
T as(CallValue value) {
    if constexpr (std::is_same_v<T, float>)
        return std::bit_cast<float>(static_cast<std::uint32_t>(value.bits));
    else if constexpr (std::is_same_v<T, double>)
        return std::bit_cast<double>(value.bits);
    else if constexpr (std::is_pointer_v<T>)
        // It was one. NOLINTNEXTLINE(performance-no-int-to-ptr)
        return reinterpret_cast<T>(std::uintptr_t(value.bits));
    else
        return static_cast<T>(value.bits);
}

// One argument as the trace has it; the letters are the generator's.
void writeTraced(std::ostream& out, char form, CallValue value) {
    using namespace ValueForms;
    switch (form) {
    case 'e':
        out << Enumerant(as<unsigned int>(value));
        break;
    case 'b':
        out << Boolean(as<unsigned char>(value));
        break;
    case 'h':
        out << Handle(as<unsigned int>(value));
        break;
    case 'w':
        out << Low32(as<long long>(value));
        break;
    case 'c':
        out << Character(as<signed char>(value));
        break;
    case 'C':
        out << Character(as<unsigned char>(value));
        break;
    case 'f':
        out << Float(as<float>(value));
        break;
    case 'g':
        out << Number(as<float>(value));
        break;
    case 'd':
        out << Number(as<double>(value));
        break;
    case 'i':
        out << Number(as<int>(value));
        break;
    case 'u':
        out << Number(as<unsigned int>(value));
        break;
    case 's':
        out << Number(as<short>(value));
        break;
    case 'S':
        out << Number(as<unsigned short>(value));
        break;
    case 'l':
        out << Number(as<long long>(value));
        break;
    case 'L':
        out << Number(as<unsigned long long>(value));
        break;
    case 'q':
    case 't':
        out << Text(as<const char*>(value));
        break;
    case 'p':
        out << Pointer(as<const void*>(value));
        break;
    default:
        ZLT_UNREACHABLE("A form without a text.");
    }
}

// A name in quotation marks, cut where it is long.
void writeQuoted(std::ostream& out, const char* text) {
    constexpr std::size_t longest = 60;
    if (!text) {
        out << "null";
        return;
    }
    const void* end = std::memchr(text, 0, longest + 1);
    const auto size = end ? static_cast<const char*>(end) - text : std::ptrdiff_t(longest);
    out << '"' << std::string_view(text, static_cast<std::size_t>(size)) << (end ? "\"" : "...\"");
}

void writeHexadecimal(std::ostream& out, std::uint64_t number) {
    char text[16];
    std::size_t at = sizeof(text);
    do
        text[--at] = "0123456789ABCDEF"[number & 15];
    while (number >>= 4);
    out << "0x" << std::string_view(text + at, sizeof(text) - at);
}

// A name, or a number that has none.
void writeConstant(std::ostream& out, const char* name, std::uint32_t value) {
    if (name)
        out << name;
    else
        writeHexadecimal(out, value);
}

// A number that is one by the function alone: a set of bits, and what glTexParameteri sets.
bool writeNamed(std::ostream& out, std::string_view function, unsigned int parameter, char form,
                const CallValue* values) {
    const CallValue value = values[parameter];
    if (form == 'u') {
        const auto names = bitNames(function, parameter);
        const char* separator = "";
        if (names.empty() || as<std::uint32_t>(value) == 0)
            return false;
        eachBit(names, as<std::uint32_t>(value), [&](const char* name, std::uint32_t bits) {
            out << separator;
            writeConstant(out, name, bits);
            separator = " | ";
        });
        return true;
    }
    const std::uint32_t before = parameter > 0 ? as<std::uint32_t>(values[parameter - 1]) : 0;
    if (form != 'i' || !isConstant(function, parameter, before, as<std::uint32_t>(value)))
        return false;
    writeConstant(out, constantName(function, parameter, as<std::uint32_t>(value)), as<std::uint32_t>(value));
    return true;
}

void writeReadable(std::ostream& out, std::string_view function, unsigned int parameter, char form,
                   const CallValue* values) {
    using namespace ValueForms;
    const CallValue value = values[parameter];
    if (writeNamed(out, function, parameter, form, values))
        return;
    switch (form) {
    case 'e':
        writeConstant(out, constantName(function, parameter, as<std::uint32_t>(value)),
                      as<std::uint32_t>(value));
        break;
    case 'h':
        out << Number(as<unsigned int>(value));
        break;
    case 'w':
        out << Number(as<long long>(value));
        break;
    case 'c':
        out << Number(int{as<signed char>(value)});
        break;
    case 'C':
        out << Number(int{as<unsigned char>(value)});
        break;
    case 'f':
        out << Number(as<float>(value));
        break;
    case 'q':
        writeQuoted(out, as<const char*>(value));
        break;
    case 't':
    case 'p':
        if (value.bits == 0)
            out << "null";
        else
            writeHexadecimal(out, value.bits);
        break;
    default:
        writeTraced(out, form, value);
    }
}

template <class Write>
void writeList(std::ostream& out, unsigned int number, const Write& write) {
    const char* forms = entryForms + rowOf(number).forms;
    for (unsigned int i = 0; forms[i]; ++i) {
        if (i > 0)
            out << ValueForms::comma;
        write(i, forms[i]);
    }
}

} // namespace

unsigned int openGLEntryCount() noexcept { return static_cast<unsigned int>(std::size(entryRows)); }
const char* openGLEntryName(unsigned int number) { return entryNames + rowOf(number).name; }
const char* openGLEntryGroup(unsigned int number) { return entryGroups + rowOf(number).group; }

void OpenGLCall::writeArguments(std::ostream& out) const {
    writeList(out, number_, [&](unsigned int i, char form) { writeTraced(out, form, values_[i]); });
}

String OpenGLCall::arguments() const {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    writeArguments(out);
    return String(out.view());
}

void OpenGLCall::writeReadableArguments(std::ostream& out) const {
    writeList(out, number_, [&](unsigned int i, char form) { writeReadable(out, name(), i, form, values_); });
}

} // namespace ZLT::OGL
