#include "PeFile.h"

#include <charconv>
#include <fstream>

namespace ZLT::Interception {

namespace {

constexpr unsigned int symbolSize = 18;

// A name of eight letters has no zero behind it.
std::string_view shortName(std::string_view field) { return field.substr(0, field.find('\0')); }

} // namespace

template <class Reading>
auto PeFile::orDamaged(Reading reading) const {
    try {
        return reading();
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path_ + " is damaged: " + error.what());
    }
}

PeFile::PeFile(const std::string& path) : path_(path) {
    if (!isOne(path))
        throw std::runtime_error(path + " is no program of Windows");
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    size_ = static_cast<std::size_t>(std::max<std::streamoff>(file.tellg(), 0));
    bytes_ = std::make_unique_for_overwrite<char[]>(size_);
    if (!file.seekg(0).read(bytes_.get(), static_cast<std::streamsize>(size_)))
        throw std::runtime_error(path + " can't be read");
    orDamaged([this] { readHeads(); });
}

bool PeFile::isOne(const std::string& path) {
    char start[2] = {};
    return std::ifstream(path, std::ios::binary).read(start, sizeof start) && start[0] == 'M' &&
           start[1] == 'Z';
}

void PeFile::readHeads() {
    Bytes head = at(at(0x3C).word());
    if (head.word() != 0x4550) // "PE"
        throw std::runtime_error("it has no head of a program of Windows");
    machine_ = head.half();
    const unsigned int sectionCount = head.half();
    head.skip(4);
    symbols_ = head.word();
    symbolCount_ = head.word();
    const unsigned int optionalSize = head.half();
    const unsigned int properties = head.half();
    isLinked_ = properties & 0x0002;
    isDll_ = properties & 0x2000;

    Bytes sections = at(head.offset() + optionalSize);
    Bytes optional(head.take(optionalSize));
    const unsigned int kind = optional.half();
    if (kind != 0x10B && kind != 0x20B)
        throw std::runtime_error("it has no head of a program of Windows");
    is64_ = kind == 0x20B;
    optional.skip(is64_ ? 22 : 26);
    imageBase_ = optional.number(is64_ ? 8 : 4);
    optional.skip(is64_ ? 76 : 60);
    if (const std::uint32_t tables = optional.word(); tables >= 2) {
        optional.skip(8);
        importAddress_ = optional.word();
    }

    for (unsigned int i = 0; i < sectionCount; ++i) {
        Section section;
        std::string_view name = shortName(sections.take(8));
        std::uint64_t offset = 0;
        if (name.starts_with('/') &&
            std::from_chars(name.data() + 1, name.data() + name.size(), offset).ec == std::errc())
            name = longName(offset);
        section.name = name;
        section.size = sections.word();
        section.address = sections.word();
        section.fileSize = sections.word();
        section.fileOffset = sections.word();
        sections.skip(16);
        sections_.push_back(section);
    }
}

// The names stand behind the symbols.
std::string_view PeFile::longName(std::uint64_t offset) const {
    return at(symbols_ + symbolCount_ * symbolSize + offset).text();
}

// The file has it filled up to its alignment, or has less of it than there will be in memory.
std::string_view PeFile::content(const Section& section) const {
    const std::uint32_t size = section.size ? std::min(section.size, section.fileSize) : section.fileSize;
    return size ? at(section.fileOffset).take(size) : std::string_view();
}

std::string_view PeFile::content(std::string_view section) const {
    return orDamaged([&] {
        for (const Section& one : sections_)
            if (one.name == section)
                return content(one);
        return std::string_view();
    });
}

const PeFile::Section* PeFile::sectionAt(std::uint64_t address) const {
    for (const Section& section : sections_)
        if (section.address <= address && address - section.address < section.size)
            return &section;
    return nullptr;
}

Bytes PeFile::atAddress(std::uint64_t address) const {
    const Section* section = sectionAt(address);
    if (!section)
        throw std::runtime_error("it refers to what is not there");
    return Bytes(content(*section), address - section->address);
}

std::vector<std::string> PeFile::imports() const {
    return orDamaged([this] {
        std::vector<std::string> names;
        if (importAddress_ == 0)
            return names;
        for (Bytes table = atAddress(importAddress_);;) {
            table.skip(12);
            const std::uint32_t name = table.word();
            if (name == 0)
                return names;
            names.emplace_back(atAddress(name).text());
            table.skip(4);
        }
    });
}

void PeFile::readFunctions() {
    constexpr unsigned int function = 0x20;
    Bytes table = at(symbols_);
    for (std::uint64_t i = 0; symbols_ != 0 && i < symbolCount_; ++i) {
        Bytes symbol(table.take(symbolSize));
        std::string_view name = shortName(symbol.take(8));
        const std::uint32_t value = symbol.word();
        const unsigned int section = symbol.half(); // from 1 on; of others it has none
        const unsigned int type = symbol.half();
        symbol.skip(1);
        const unsigned int more = symbol.byte();
        if (type == function && section >= 1 && section <= sections_.size()) {
            if (name.empty())
                name = longName(at(table.offset() - symbolSize + 4).word());
            functions_.try_emplace(std::uint64_t{sections_[section - 1].address} + value, name);
        }
        table.skip(std::uint64_t{more} * symbolSize);
        i += more;
    }
}

std::string PeFile::functionAt(std::uint64_t address) {
    if (!functionsAreRead_) {
        functionsAreRead_ = true;
        orDamaged([this] { readFunctions(); });
    }
    const auto next = functions_.upper_bound(address);
    if (next == functions_.begin() || sectionAt(address) != sectionAt(std::prev(next)->first))
        return "";
    return std::string(std::prev(next)->second);
}

} // namespace ZLT::Interception
