#pragma once

#include "DwarfForms.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

/// @file
/// Debug information in the forms of DWARF 2 to 5, as far as GCC writes them for Windows: uncompressed, and
/// all in one file. Everything throws std::runtime_error where it is damaged, or in another form.

namespace ZLT::Interception::Dwarf {

enum Tag : unsigned int { // DW_TAG_...
    inlinedSubroutine = 0x1D,
    subprogram = 0x2E,
    callSite = 0x48,
    gnuCallSite = 0x4109
};

enum Name : unsigned int { // DW_AT_...
    name = 0x03,
    stmtList = 0x10,
    lowPc = 0x11,
    highPc = 0x12,
    compDir = 0x1B,
    abstractOrigin = 0x31,
    declared = 0x47, // where the member function is declared
    ranges = 0x55,
    callFile = 0x58,
    callLine = 0x59,
    linkageName = 0x6E,
    callReturnPc = 0x7D,
    callOrigin = 0x7F,
    callTailCall = 0x82,
    mipsLinkageName = 0x2007,
    gnuTailCall = 0x2115
};

struct Range {
    std::uint64_t low = 0, high = 0;
    bool has(std::uint64_t address) const { return low <= address && address < high; }
};

struct Abbreviation {
    unsigned int tag = 0;
    bool hasChildren = false;
    std::vector<AttributeForm> attributes;
};
using Abbreviations = std::unordered_map<std::uint64_t, Abbreviation>;

struct Unit;

/// An entry of the debug information.
struct Die {
    const Unit* unit = nullptr;
    const Abbreviation* abbreviation = nullptr;
    std::uint64_t values = 0; ///< where they are, of its attributes

    unsigned int tag() const { return abbreviation->tag; }
};

struct Unit {
    Format format;
    std::uint64_t offset = 0, end = 0;
    const Abbreviations* abbreviations = nullptr;
    Die root;
    std::string_view name, folder; ///< as the compiler was given it, and the one that it ran in
    std::optional<std::uint64_t> lines;
    std::uint64_t base = 0; ///< from which its ranges are counted
};

struct File {
    std::string_view folder; ///< as the compiler was given it; empty for the one that it ran in
    std::string_view name;
};

struct Line {
    std::uint64_t address = 0; ///< where it begins; it ends with the next one
    std::uint32_t file = 0, line = 0;
};

struct LineTable {
    /// The linker places a sequence as a whole.
    struct Sequence {
        Range range;
        std::size_t first = 0, count = 0;
    };
    std::vector<File> files;
    std::vector<Line> lines;
    std::vector<Sequence> sequences; ///< by their addresses

    const Line* find(std::uint64_t address) const;
};

class Reader {
public:
    /// @param lowest  the lowest address of the program: what the linker has left out is below it
    Reader(const Sections& sections, std::uint64_t lowest);
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    const std::deque<Unit>& units() const { return units_; }
    const Unit* unitAt(std::uint64_t address) const;
    const LineTable& lines(const Unit& unit);

    std::optional<Value> ownValue(const Die& die, unsigned int name) const;
    /// Also one of the entries that this one is another view of.
    std::optional<Value> value(const Die& die, unsigned int name) const;
    std::string_view text(const Value& value) const { return textOf(value, sections_); }
    std::optional<Die> referred(const Value& value) const;
    /// Where its code lies.
    std::vector<Range> rangesOf(const Die& die) const;
    /// Visits what lies in an entry, at any depth, what contains others before them.
    void visit(const Die& parent, const std::function<void(const Die&)>& visitor) const;

private:
    struct UnitRange {
        Range range;
        const Unit* unit = nullptr;
    };

    bool readUnit(Unit& unit, Bytes& head);
    const Abbreviations& abbreviationsAt(std::uint64_t offset);
    std::optional<Die> readDie(const Unit& unit, Bytes& bytes) const;
    Bytes valuesOf(const Die& die) const;
    void addRanges(const Unit& unit, std::uint64_t offset, std::vector<Range>& ranges) const;
    void addOldRanges(const Unit& unit, std::uint64_t offset, std::vector<Range>& ranges) const;
    LineTable readLines(std::uint64_t offset) const;
    std::vector<File> readFiles(Bytes& head, const Format& format) const;
    std::vector<File> readOldFiles(Bytes& head) const;

    Sections sections_;
    std::uint64_t lowest_ = 0;
    std::map<std::uint64_t, Abbreviations> abbreviations_;
    std::deque<Unit> units_;        // which are referred to
    std::vector<UnitRange> ranges_; // by their addresses
    std::map<std::uint64_t, LineTable> lines_;
};

} // namespace ZLT::Interception::Dwarf
