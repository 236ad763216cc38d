#include "DwarfReader.h"

#include <algorithm>
#include <array>
#include <span>
#include <stdexcept>

namespace ZLT::Interception::Dwarf {

namespace {

[[noreturn]] void fail(const char* sentence) { throw std::runtime_error(sentence); }

// A table of lines is kept as a program that writes it.
struct LineProgram {
    unsigned int instructionSize = 0;
    int lineBase = 0;
    unsigned int lineRange = 0;
    unsigned int firstSpecial = 0;
    std::array<std::uint8_t, 256> operands = {};

    void run(Bytes bytes, LineTable& table) const;
};

void LineProgram::run(Bytes bytes, LineTable& table) const {
    enum Standard : unsigned int { // DW_LNS_...
        copy = 1,
        advancePc,
        advanceLine,
        setFile,
        constAddPc = 8,
        fixedAdvancePc
    };
    enum Extended : unsigned int { endSequence = 1, setAddress }; // DW_LNE_...
    const Line start = {0, 1, 1};
    Line line = start;
    std::size_t first = 0;
    while (!bytes.atEnd()) {
        const unsigned int code = bytes.byte();
        if (code >= firstSpecial) {
            const unsigned int advance = code - firstSpecial;
            line.address += std::uint64_t{advance / lineRange} * instructionSize;
            line.line += static_cast<std::uint32_t>(lineBase + static_cast<int>(advance % lineRange));
            table.lines.push_back(line);
        } else if (code == 0) {
            Bytes extended(bytes.take(bytes.grouped()));
            const unsigned int kind = extended.byte();
            if (kind == setAddress) {
                line.address = extended.number(Format::addressSize);
            } else if (kind == endSequence) {
                if (table.lines.size() > first)
                    table.sequences.push_back(
                        {{table.lines[first].address, line.address}, first, table.lines.size() - first});
                first = table.lines.size();
                line = start;
            }
        } else if (code == copy) {
            table.lines.push_back(line);
        } else if (code == advancePc) {
            line.address += bytes.grouped() * instructionSize;
        } else if (code == advanceLine) {
            line.line += static_cast<std::uint32_t>(bytes.groupedSigned());
        } else if (code == setFile) {
            line.file = static_cast<std::uint32_t>(bytes.grouped());
        } else if (code == constAddPc) {
            line.address += std::uint64_t{(255 - firstSpecial) / lineRange} * instructionSize;
        } else if (code == fixedAdvancePc) {
            line.address += bytes.half();
        } else {
            for (unsigned int i = 0; i < operands[code]; ++i)
                bytes.grouped();
        }
    }
}

// How long a unit or a table is, which also says how long its offsets are. The result ends where it ends.
Bytes readLength(std::string_view section, Bytes& bytes, Format& format) {
    std::uint64_t size = bytes.word();
    format.offsetSize = size == 0xFFFFFFFF ? 8 : 4;
    if (format.offsetSize == 8)
        size = bytes.number(8);
    const std::uint64_t start = bytes.offset();
    bytes.skip(size);
    return Bytes(section.substr(0, bytes.offset()), start);
}

// Of those that begin at an address or below it, the last one.
template <class Items, class AddressOf>
auto lastAt(const Items& items, std::uint64_t address, AddressOf addressOf) -> decltype(&*items.begin()) {
    const auto next =
        std::upper_bound(items.begin(), items.end(), address,
                         [&](std::uint64_t at, const auto& item) { return at < addressOf(item); });
    return next == items.begin() ? nullptr : &*std::prev(next);
}

} // namespace

const Line* LineTable::find(std::uint64_t address) const {
    const Sequence* sequence =
        lastAt(std::span(sequences), address, [](const Sequence& one) { return one.range.low; });
    if (!sequence || !sequence->range.has(address))
        return nullptr;
    return lastAt(std::span(lines).subspan(sequence->first, sequence->count), address,
                  [](const Line& line) { return line.address; });
}

Reader::Reader(const Sections& sections, std::uint64_t lowest) : sections_(sections), lowest_(lowest) {
    for (Bytes bytes(sections_.info); !bytes.atEnd();) {
        Unit& unit = units_.emplace_back();
        unit.offset = bytes.offset();
        Bytes head = readLength(sections_.info, bytes, unit.format);
        unit.end = bytes.offset();
        bool isRead = false;
        try {
            isRead = readUnit(unit, head);
        } catch (const std::runtime_error&) {
            // The other units may serve.
        }
        if (!isRead)
            units_.pop_back();
    }
    std::stable_sort(ranges_.begin(), ranges_.end(),
                     [](const UnitRange& a, const UnitRange& b) { return a.range.low < b.range.low; });
}

bool Reader::readUnit(Unit& unit, Bytes& head) {
    constexpr unsigned int compiled = 1, partial = 3;
    unit.format.version = head.half();
    if (unit.format.version < 2 || unit.format.version > 5)
        return false;
    const bool isNew = unit.format.version == 5;
    const unsigned int type = isNew ? head.byte() : compiled;
    unsigned int addressSize = isNew ? head.byte() : 0;
    unit.abbreviations = &abbreviationsAt(head.number(unit.format.offsetSize));
    if (!isNew)
        addressSize = head.byte();
    if ((type != compiled && type != partial) || addressSize != Format::addressSize)
        return false;

    const std::optional<Die> root = readDie(unit, head);
    if (!root)
        return false;
    unit.root = *root;
    if (const std::optional<Value> value = ownValue(*root, Name::name))
        unit.name = text(*value);
    if (const std::optional<Value> value = ownValue(*root, compDir))
        unit.folder = text(*value);
    if (const std::optional<Value> value = ownValue(*root, stmtList))
        unit.lines = value->number;
    if (const std::optional<Value> value = ownValue(*root, lowPc))
        unit.base = value->number;
    for (const Range& range : rangesOf(*root))
        ranges_.push_back({range, &unit});
    return true;
}

const Abbreviations& Reader::abbreviationsAt(std::uint64_t offset) {
    const auto [place, isNew] = abbreviations_.try_emplace(offset);
    Abbreviations& table = place->second;
    if (!isNew)
        return table;
    Bytes bytes(sections_.abbrev, offset);
    while (const std::uint64_t code = bytes.grouped()) {
        Abbreviation& one = table[code];
        one.tag = static_cast<unsigned int>(bytes.grouped());
        one.hasChildren = bytes.byte();
        for (;;) {
            AttributeForm attribute;
            attribute.name = static_cast<unsigned int>(bytes.grouped());
            attribute.form = static_cast<unsigned int>(bytes.grouped());
            if (attribute.isConstant())
                attribute.constant = bytes.groupedSigned();
            if (attribute.name == 0 && attribute.form == 0)
                break;
            one.attributes.push_back(attribute);
        }
    }
    return table;
}

const Unit* Reader::unitAt(std::uint64_t address) const {
    const UnitRange* found =
        lastAt(std::span(ranges_), address, [](const UnitRange& one) { return one.range.low; });
    return found && found->range.has(address) ? found->unit : nullptr;
}

// Nothing where it is the end of its siblings.
std::optional<Die> Reader::readDie(const Unit& unit, Bytes& bytes) const {
    const std::uint64_t code = bytes.grouped();
    if (code == 0)
        return {};
    const auto abbreviation = unit.abbreviations->find(code);
    if (abbreviation == unit.abbreviations->end())
        fail("its debug information has an unknown abbreviation");
    return Die{&unit, &abbreviation->second, bytes.offset()};
}

Bytes Reader::valuesOf(const Die& die) const {
    return Bytes(sections_.info.substr(0, die.unit->end), die.values);
}

std::optional<Value> Reader::ownValue(const Die& die, unsigned int name) const {
    Bytes bytes = valuesOf(die);
    for (const AttributeForm& attribute : die.abbreviation->attributes) {
        const Value value = readValue(bytes, die.unit->format, attribute, die.unit->offset);
        if (attribute.name == name)
            return value;
    }
    return {};
}

std::optional<Value> Reader::value(const Die& die, unsigned int name) const {
    constexpr int longest = 8; // a damaged one may lead to itself
    std::optional<Die> view = die;
    for (int i = 0; view && i < longest; ++i) {
        if (const std::optional<Value> own = ownValue(*view, name))
            return own;
        std::optional<Value> next = ownValue(*view, abstractOrigin);
        if (!next)
            next = ownValue(*view, declared);
        view = next ? referred(*next) : std::nullopt;
    }
    return {};
}

std::optional<Die> Reader::referred(const Value& value) const {
    if (!value.isReference())
        return {};
    const Unit* unit = lastAt(units_, value.number, [](const Unit& one) { return one.offset; });
    if (!unit || value.number >= unit->end)
        return {};
    Bytes bytes(sections_.info.substr(0, unit->end), value.number);
    return readDie(*unit, bytes);
}

void Reader::visit(const Die& parent, const std::function<void(const Die&)>& visitor) const {
    Bytes bytes = valuesOf(parent);
    std::optional<Die> die = parent;
    for (std::uint64_t depth = 0;;) {
        if (die) {
            for (const AttributeForm& attribute : die->abbreviation->attributes)
                readValue(bytes, die->unit->format, attribute, die->unit->offset);
            depth += die->abbreviation->hasChildren;
        } else {
            --depth;
        }
        if (depth == 0 || bytes.atEnd())
            return;
        die = readDie(*parent.unit, bytes);
        if (die)
            visitor(*die);
    }
}

std::vector<Range> Reader::rangesOf(const Die& die) const {
    std::vector<Range> found;
    if (const std::optional<Value> list = ownValue(die, ranges)) {
        if (die.unit->format.version == 5)
            addRanges(*die.unit, list->number, found);
        else
            addOldRanges(*die.unit, list->number, found);
    } else if (const std::optional<Value> low = ownValue(die, lowPc)) {
        // Later forms have a length in place of an address.
        if (const std::optional<Value> high = ownValue(die, highPc))
            found.push_back({low->number, high->number + (high->isAddress() ? 0 : low->number)});
    }
    std::erase_if(found, [this](const Range& range) { return range.low < lowest_; });
    return found;
}

void Reader::addOldRanges(const Unit& unit, std::uint64_t offset, std::vector<Range>& ranges) const {
    std::uint64_t base = unit.base;
    for (Bytes bytes(sections_.ranges, offset);;) {
        const std::uint64_t low = bytes.number(Format::addressSize);
        const std::uint64_t high = bytes.number(Format::addressSize);
        if (low == 0 && high == 0)
            return;
        if (low == ~std::uint64_t{0})
            base = high;
        else
            ranges.push_back({base + low, base + high});
    }
}

void Reader::addRanges(const Unit& unit, std::uint64_t offset, std::vector<Range>& ranges) const {
    enum Kind : unsigned int { end = 0, offsetPair = 4, baseAddress, startEnd, startLength }; // DW_RLE_...
    std::uint64_t base = unit.base;
    for (Bytes bytes(sections_.rnglists, offset);;) {
        const unsigned int kind = bytes.byte();
        if (kind == end)
            return;
        std::uint64_t low = kind == offsetPair ? base + bytes.grouped() : bytes.number(Format::addressSize);
        switch (kind) {
        case offsetPair:
            ranges.push_back({low, base + bytes.grouped()});
            break;
        case baseAddress:
            base = low;
            break;
        case startEnd:
            ranges.push_back({low, bytes.number(Format::addressSize)});
            break;
        case startLength:
            ranges.push_back({low, low + bytes.grouped()});
            break;
        default:
            fail("its debug information has an unknown list of ranges");
        }
    }
}

const LineTable& Reader::lines(const Unit& unit) {
    static const LineTable none;
    if (!unit.lines)
        return none;
    const auto [table, isNew] = lines_.try_emplace(*unit.lines);
    if (isNew)
        table->second = readLines(*unit.lines);
    return table->second;
}

LineTable Reader::readLines(std::uint64_t offset) const {
    Bytes whole(sections_.line, offset);
    Format format;
    Bytes head = readLength(sections_.line, whole, format);
    format.version = head.half();
    if (format.version < 2 || format.version > 5)
        fail("its table of lines is of an unknown version");
    if (format.version == 5)
        head.skip(2);
    Bytes program = head;
    program.skip(program.number(format.offsetSize));
    head.skip(format.offsetSize);
    LineProgram is;
    is.instructionSize = head.byte();
    if (format.version >= 4)
        head.skip(1);
    head.skip(1);
    is.lineBase = (head.byte() ^ 0x80) - 0x80; // which has a sign
    is.lineRange = head.byte();
    is.firstSpecial = head.byte();
    for (unsigned int i = 1; i < is.firstSpecial; ++i)
        is.operands[i] = head.byte();
    if (is.lineRange == 0 || is.firstSpecial == 0)
        fail("its table of lines is damaged");
    LineTable table;
    table.files = format.version == 5 ? readFiles(head, format) : readOldFiles(head);
    is.run(program, table);
    std::stable_sort(table.sequences.begin(), table.sequences.end(),
                     [](const auto& a, const auto& b) { return a.range.low < b.range.low; });
    return table;
}

// Folder 0 is the one that the compiler ran in.
std::vector<File> Reader::readOldFiles(Bytes& head) const {
    std::vector<std::string_view> folders(1);
    while (!(folders.emplace_back(head.text()).empty())) {
    }
    std::vector<File> files(1); // they are counted from 1 on
    for (std::string_view name; !(name = head.text()).empty();) {
        const std::uint64_t folder = head.grouped();
        head.grouped();
        head.grouped();
        files.push_back({folder < folders.size() ? folders[folder] : "", name});
    }
    return files;
}

std::vector<File> Reader::readFiles(Bytes& head, const Format& format) const {
    enum Content : unsigned int { path = 1, directory = 2 }; // DW_LNCT_...
    std::vector<File> folders, files;
    for (std::vector<File>* list : {&folders, &files}) {
        std::vector<AttributeForm> contents(head.byte());
        for (AttributeForm& content : contents) {
            content.name = static_cast<unsigned int>(head.grouped());
            content.form = static_cast<unsigned int>(head.grouped());
        }
        const std::uint64_t count = head.grouped();
        if (count > head.rest())
            fail("its table of lines is damaged");
        for (std::uint64_t i = 0; i < count; ++i) {
            File file;
            for (const AttributeForm& content : contents) {
                const Value value = readValue(head, format, content, 0);
                if (content.name == path)
                    file.name = text(value);
                else if (content.name == directory && value.number > 0 && value.number < folders.size())
                    file.folder = folders[value.number].name;
            }
            list->push_back(file);
        }
    }
    return files;
}

} // namespace ZLT::Interception::Dwarf
