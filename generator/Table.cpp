#include "Table.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <map>
#include <set>

namespace generator {

namespace {

std::vector<std::string> split(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts;
    std::string::size_type begin = 0;
    for (;;) {
        const std::string::size_type end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end - begin));
        if (end == std::string::npos)
            return parts;
        begin = end + separator.size();
    }
}

bool isIdentifier(const std::string& text) {
    const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    return !text.empty() && letter(text.front()) &&
           std::ranges::all_of(text, [&](char c) { return letter(c) || digit(c); });
}

// The rows below a fixed heading, each with the number of columns of the heading.
class Rows {
public:
    Rows(std::istream& in, std::string table, const std::string& heading)
        : in_(in), table_(std::move(table)), columns_(split(heading, "\t").size()) {
        std::string line;
        if (!readLine(line) || line != heading)
            fail("the heading is not '" + heading + "'");
    }

    bool next() {
        std::string line;
        if (!readLine(line))
            return false;
        cells_ = split(line, "\t");
        if (cells_.size() != columns_)
            fail(std::to_string(cells_.size()) + " columns instead of " + std::to_string(columns_));
        return true;
    }

    const std::string& cell(std::size_t column) const { return cells_[column]; }

    unsigned long number(std::size_t column, int base = 10) const {
        std::string digits = cell(column);
        if (base == 16 && digits.starts_with("0x"))
            digits.erase(0, 2);
        unsigned long value = 0;
        const char* end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
        if (error != std::errc() || stop != end || digits.empty() || value > 0xFFFFFFFFul)
            fail("'" + cell(column) + "' is not a 32-bit number");
        return value;
    }

    [[noreturn]] void fail(const std::string& what) const { throw TableError(table_, row_, what); }

private:
    bool readLine(std::string& line) {
        ++row_;
        if (!std::getline(in_, line))
            return false;
        if (line.ends_with('\r'))
            line.pop_back();
        return true;
    }

    std::istream& in_;
    std::string table_;
    std::size_t columns_;
    std::size_t row_ = 0;
    std::vector<std::string> cells_;
};

void addName(std::set<std::string>& names, const std::string& name, const Rows& rows) {
    if (!isIdentifier(name))
        rows.fail("'" + name + "' is not a name");
    if (!names.insert(name).second)
        rows.fail("the name '" + name + "' stands twice");
}

// A number that is part of the library's interface, and what it stands for. The last of each kind is enough:
// a row that is put in or taken out anywhere before moves it.
struct Fixed {
    std::size_t number;
    const char* name;
};
constexpr Fixed lastVersion = {6, "GL_VERSION_3_0"};
constexpr Fixed lastValueOfGL = {328, "GL_WIN_swap_hint"};
constexpr Fixed lastValueOfWGL = {367, "WGL_OML_sync_control"};
constexpr Fixed lastSlot = {1832, "AddSwapHintRectWIN"};

void checkFixed(const Fixed& fixed, const char* what, std::size_t number, const std::string& name,
                const Rows& rows) {
    if (number == fixed.number && name != fixed.name)
        rows.fail(what + (" " + std::to_string(number)) + " is '" + name + "' instead of '" + fixed.name +
                  "': rows were put in or taken out above, but new ones belong at the end");
}

using TypeReader = Type (*)(const std::string& text);

Type readType(TypeReader read, const std::string& text, const Rows& rows) {
    try {
        return read(text);
    } catch (const std::invalid_argument& error) {
        rows.fail(error.what());
    }
}

// "const GLfloat m[16]": the array form counts as a pointer and keeps its brackets.
Parameter parseParameter(TypeReader read, const std::string& text, const Rows& rows) {
    Parameter parameter;
    const std::string::size_type blank = text.rfind(' ');
    if (blank == std::string::npos)
        rows.fail("'" + text + "' is not a type and a name");
    std::string type = text.substr(0, blank);
    parameter.name = text.substr(blank + 1);
    const std::string::size_type bracket = parameter.name.find('[');
    if (bracket != std::string::npos) {
        parameter.array = parameter.name.substr(bracket);
        parameter.name.erase(bracket);
        type += "*";
    }
    if (!isIdentifier(parameter.name))
        rows.fail("'" + parameter.name + "' is not a parameter name");
    // The first two are the chain's own, the next three stand in the generated functions, and the last two
    // are macros on Windows.
    static const std::set<std::string> taken = {"file", "line", "out", "comma", "closing", "near", "far"};
    if (taken.contains(parameter.name))
        rows.fail("the parameter name '" + parameter.name + "' is taken");
    parameter.type = readType(read, type, rows);
    if (parameter.type.plain == "void")
        rows.fail("a parameter of type void");
    return parameter;
}

std::vector<Parameter> parseParameters(TypeReader read, const std::string& text, const Rows& rows) {
    std::vector<Parameter> parameters;
    if (text.empty())
        return parameters;
    std::set<std::string> names;
    for (const std::string& part : split(text, ", ")) {
        parameters.push_back(parseParameter(read, part, rows));
        if (!names.insert(parameters.back().name).second)
            rows.fail("two parameters are named '" + parameters.back().name + "'");
    }
    return parameters;
}

// Checks that the groups follow each other as the extensions do, each whole and once.
class GroupOrder {
public:
    explicit GroupOrder(const std::vector<Extension>& extensions) {
        groups_.push_back({"GL_VERSION_1_1", core11Count});
        for (const Extension& extension : extensions)
            if (extension.entryPoints > 0 && extension.name.starts_with("GL_"))
                groups_.push_back({extension.name, extension.entryPoints});
    }

    void enter(const std::string& group, const Rows& rows) {
        if (current_ < groups_.size() && seen_ == groups_[current_].count) {
            ++current_;
            seen_ = 0;
        }
        if (current_ == groups_.size())
            rows.fail("more entries than extensions.tsv gives the groups");
        const Group& expected = groups_[current_];
        if (seen_ == 0 && current_ > 0 && group == groups_[current_ - 1].name)
            rows.fail("'" + group + "' has more entries than the " +
                      std::to_string(groups_[current_ - 1].count) + " that extensions.tsv gives it");
        if (group != expected.name)
            rows.fail("group '" + group + "' where entry " + std::to_string(seen_ + 1) + " of " +
                      std::to_string(expected.count) + " of '" + expected.name + "' is due");
        ++seen_;
    }

    void finish(const Rows& rows) const {
        if (current_ + 1 != groups_.size() || seen_ != groups_.back().count)
            rows.fail("the table ends at entry " + std::to_string(seen_) + " of '" + groups_[current_].name +
                      "'");
    }

private:
    struct Group {
        std::string name;
        std::size_t count;
    };
    std::vector<Group> groups_;
    std::size_t current_ = 0;
    std::size_t seen_ = 0;
};

} // namespace

std::string Extension::enumerator() const {
    const std::string version = "GL_VERSION_";
    if (name.starts_with(version))
        return "OPEN_GL_" + name.substr(version.size());
    std::string text = name;
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; });
    return text;
}

std::vector<Extension> readExtensions(std::istream& in) {
    Rows rows(in, "extensions.tsv", "value\tname\tentry_points");
    std::vector<Extension> extensions;
    std::set<std::string> names;
    while (rows.next()) {
        Extension extension;
        extension.value = static_cast<unsigned>(rows.number(0));
        extension.name = rows.cell(1);
        extension.entryPoints = rows.number(2);
        if (extension.value != extensions.size())
            rows.fail("value " + rows.cell(0) + " instead of " + std::to_string(extensions.size()));
        if (extension.value >= extensionNotFound)
            rows.fail("value " + rows.cell(0) + " is not below " + std::to_string(extensionNotFound) +
                      ", which stands for names that aren't known");
        addName(names, extension.name, rows);
        if (!extension.name.starts_with("GL_") && !extension.isWgl())
            rows.fail("'" + extension.name + "' begins neither with GL_ nor with WGL_");
        for (const Fixed& fixed : {lastVersion, lastValueOfGL, lastValueOfWGL})
            checkFixed(fixed, "value", extension.value, extension.name, rows);
        if (extension.name.starts_with("GL_VERSION_") && extension.value > lastVersion.number)
            rows.fail("'" + extension.name +
                      "' is a version that ExtensionManager::loadVersions() never loads");
        // The GL headers define the names of extensions as macros, and the enumerators are in capitals.
        if (extension.enumerator() == extension.name)
            rows.fail("'" + extension.name + "' has no small letter");
        addName(names, extension.enumerator(), rows);
        extensions.push_back(std::move(extension));
    }
    if (extensions.size() <= lastValueOfWGL.number)
        rows.fail("the table ends in front of '" + std::string(lastValueOfWGL.name) + "'");
    return extensions;
}

std::vector<EntryPoint> readEntryPoints(std::istream& in, const std::vector<Extension>& extensions) {
    Rows rows(in, "gl_entry_points.tsv", "virtual_slot\ttable_slot\tgroup\tname\tresult\tparameters");
    GroupOrder groups(extensions);
    std::vector<EntryPoint> entries;
    std::set<std::string> names;
    while (rows.next()) {
        EntryPoint entry;
        entry.slot = rows.number(0);
        if (entry.slot != entries.size())
            rows.fail("virtual slot " + rows.cell(0) + " instead of " + std::to_string(entries.size()));
        entry.group = rows.cell(2);
        groups.enter(entry.group, rows);
        const std::string tableSlot = entry.isCore11() ? "-" : std::to_string(entry.slot - core11Count);
        if (rows.cell(1) != tableSlot)
            rows.fail("table slot " + rows.cell(1) + " instead of " + tableSlot);
        entry.name = rows.cell(3);
        addName(names, entry.name, rows);
        if (entry.name.starts_with("gl"))
            rows.fail("'" + entry.name + "' is not a name without gl in front");
        checkFixed(lastSlot, "virtual slot", entry.slot, entry.name, rows);
        if (entry.isCore11() && !entries.empty() && entry.name < entries.back().name)
            rows.fail("'" + entry.name + "' stands after '" + entries.back().name + "'");
        entry.result = rows.cell(4);
        entry.plainResult = readType(typeOf, entry.result, rows).plain;
        entry.parameters = parseParameters(typeOf, rows.cell(5), rows);
        // The checker keeps it under this name.
        if (entry.hasResult() && std::ranges::count(entry.parameters, "result", &Parameter::name))
            rows.fail("the parameter name 'result' is taken");
        entries.push_back(std::move(entry));
    }
    groups.finish(rows);
    return entries;
}

std::vector<WglFunction> readWglFunctions(std::istream& in, const std::vector<Extension>& extensions) {
    Rows rows(in, "wgl_extension_functions.tsv",
              "index\textension_value\textension\tname\tresult\tparameters");
    std::vector<WglFunction> functions;
    std::set<std::string> names;
    std::map<std::string, std::size_t> counts;
    unsigned long lastValue = 0;
    while (rows.next()) {
        if (rows.number(0) != functions.size())
            rows.fail("index " + rows.cell(0) + " instead of " + std::to_string(functions.size()));
        const unsigned long value = rows.number(1);
        WglFunction function = {rows.cell(2), rows.cell(3), rows.cell(4), rows.cell(5)};
        if (value >= extensions.size() || extensions[value].name != function.extension ||
            !extensions[value].isWgl())
            rows.fail("'" + function.extension + "' is not the WGL extension of value " + rows.cell(1));
        if (value < lastValue)
            rows.fail("'" + function.extension + "' stands too late");
        lastValue = value;
        addName(names, function.name, rows);
        if (!function.name.starts_with("wgl"))
            rows.fail("'" + function.name + "' does not begin with wgl");
        function.name.erase(0, 3);
        readType(wglTypeOf, function.result, rows);
        parseParameters(wglTypeOf, function.parameters, rows);
        ++counts[function.extension];
        functions.push_back(std::move(function));
    }
    for (const Extension& extension : extensions)
        if (extension.isWgl() && counts[extension.name] != extension.entryPoints)
            rows.fail("'" + extension.name + "' has " + std::to_string(counts[extension.name]) +
                      " functions instead of " + std::to_string(extension.entryPoints));
    return functions;
}

std::vector<WglEntryPoint> readWglEntryPoints(std::istream& in) {
    Rows rows(in, "wgl_entry_points.tsv", "virtual_slot\tfunction\tresult\tparameters");
    std::vector<WglEntryPoint> entries;
    std::set<std::string> names;
    while (rows.next()) {
        if (entries.size() == wglEntryPointCount)
            rows.fail("more than " + std::to_string(wglEntryPointCount) +
                      " entries: a new one needs its form in wglRekorder.cpp, and the number in Table.h");
        WglEntryPoint entry;
        entry.slot = rows.number(0);
        if (entry.slot != entries.size())
            rows.fail("virtual slot " + rows.cell(0) + " instead of " + std::to_string(entries.size()));
        entry.function = rows.cell(1);
        entry.name = entry.function.starts_with("wgl") ? entry.function.substr(3) : entry.function;
        addName(names, entry.name, rows);
        entry.result = rows.cell(2);
        entry.plainResult = readType(wglTypeOf, entry.result, rows).plain;
        entry.parameters = parseParameters(wglTypeOf, rows.cell(3), rows);
        entries.push_back(std::move(entry));
    }
    if (entries.size() != wglEntryPointCount)
        rows.fail("the table ends at entry " + std::to_string(entries.size()) + " of " +
                  std::to_string(wglEntryPointCount));
    return entries;
}

std::vector<Token> readTokens(std::istream& in) {
    Rows rows(in, "gl_tokens.tsv", "value\tname");
    std::vector<Token> tokens;
    std::set<std::string> names;
    while (rows.next()) {
        Token token;
        token.value = rows.number(0, 16);
        token.name = rows.cell(1);
        if (!tokens.empty() && token.value <= tokens.back().value)
            rows.fail("value " + rows.cell(0) + " does not follow the row before it");
        addName(names, token.name, rows);
        tokens.push_back(std::move(token));
    }
    return tokens;
}

std::vector<std::string> readLaterFunctions(std::istream& in, const std::vector<EntryPoint>& entries) {
    Rows rows(in, "gl_later_functions.tsv", "name");
    std::set<std::string> known;
    for (const EntryPoint& entry : entries)
        known.insert(entry.name);
    std::vector<std::string> names;
    while (rows.next()) {
        const std::string& name = rows.cell(0);
        if (!names.empty() && name <= names.back())
            rows.fail(name + " does not follow the row before it");
        addName(known, name, rows);
        names.push_back(name);
    }
    return names;
}

std::vector<SystemFunction> readSystemFunctions(std::istream& in) {
    Rows rows(in, "opengl32_functions.tsv", "name\tway");
    std::vector<SystemFunction> functions;
    while (rows.next()) {
        const SystemFunction function = {rows.cell(0), rows.cell(1) == "own"};
        if (!functions.empty() && function.name <= functions.back().name)
            rows.fail(function.name + " does not follow the row before it");
        if (!function.isOwn && rows.cell(1) != "through")
            rows.fail("the way " + rows.cell(1) + " is neither own nor through");
        functions.push_back(function);
    }
    return functions;
}

namespace {

// What a length may call: the functions of src/capture/Sizes.h and of the writer.
constexpr std::string_view lengthFunctions[] = {"clearValues",
                                                "colorTable",
                                                "compressedImage",
                                                "compressedMultiImage",
                                                "compressedTextureImage",
                                                "controlPoints",
                                                "convolution",
                                                "counted",
                                                "filterWeights",
                                                "functionPoints",
                                                "histogram",
                                                "image",
                                                "indexLists",
                                                "indexedValues",
                                                "indices",
                                                "lists",
                                                "mapParameterValues",
                                                "mapPoints",
                                                "mapValues",
                                                "modes",
                                                "multiTextureImage",
                                                "namedProgramString",
                                                "namedTextureImage",
                                                "packed",
                                                "pixelMap",
                                                "programString",
                                                "programStringNV",
                                                "separableColumn",
                                                "separableRow",
                                                "symbolBytes",
                                                "symbolValues",
                                                "text",
                                                "textureImage",
                                                "texturePoints",
                                                "texts",
                                                "uniformValues",
                                                "unpacked",
                                                "values",
                                                "volume",
                                                "written"};

constexpr std::string_view objectKinds[] = {"",
                                            "assembly program",
                                            "async marker",
                                            "buffer",
                                            "buffer region",
                                            "display list",
                                            "fence",
                                            "fragment shader",
                                            "framebuffer",
                                            "occlusion query",
                                            "program",
                                            "query",
                                            "symbol",
                                            "renderbuffer",
                                            "shader",
                                            "sync",
                                            "texture",
                                            "uniform location",
                                            "vertex array",
                                            "vertex shader"};

void checkLength(const std::string& length, const EntryPoint& entry, const Rows& rows) {
    std::string word;
    for (std::size_t at = 0; at <= length.size(); ++at) {
        const char letter = at < length.size() ? length[at] : ' ';
        if (isIdentifier(std::string(1, letter)) || (letter >= '0' && letter <= '9')) {
            word += letter;
            continue;
        }
        const bool isParameter =
            std::ranges::any_of(entry.parameters, [&](const Parameter& p) { return p.name == word; });
        const bool isKnown = letter == '(' || word == "text" ? std::ranges::count(lengthFunctions, word) > 0
                                                             : isParameter || word.starts_with("GL_");
        if (isIdentifier(word) && !isKnown)
            rows.fail(word.append(" in the length '").append(length).append("' means nothing"));
        word.clear();
    }
}

Argument readArgument(const EntryPoint& entry, const Rows& rows) {
    Argument argument = {rows.cell(3), rows.cell(4), rows.cell(6)};
    constexpr std::string_view directions[] = {"", "in", "out", "array", "address", "kept", "text"};
    if (std::ranges::count(directions, argument.pointer) == 0)
        rows.fail("unknown pointer '" + argument.pointer + "'");
    if ((argument.pointer == "in" || argument.pointer == "out") == argument.length.empty())
        rows.fail("what goes in or out has a length, and nothing else has");
    if (std::ranges::count(objectKinds, argument.object) == 0)
        rows.fail("unknown object '" + argument.object + "'");
    checkLength(argument.length, entry, rows);
    return argument;
}

} // namespace

std::vector<Arguments> readArguments(std::istream& in, const std::vector<EntryPoint>& entries) {
    Rows rows(in, "gl_arguments.tsv", "name\tindex\tparameter\tpointer\tlength\tgroup\tobject");
    bool isRow = rows.next();
    std::vector<Arguments> all;
    for (const EntryPoint& entry : entries) {
        Arguments arguments;
        for (std::size_t index = 0; index < entry.parameters.size(); ++index) {
            const Parameter& parameter = entry.parameters[index];
            Argument argument;
            if (isRow && rows.cell(0) == entry.name && rows.cell(1) == std::to_string(index)) {
                if (rows.cell(2) != parameter.name)
                    rows.fail("the parameter is called " + parameter.name);
                argument = readArgument(entry, rows);
                isRow = rows.next();
            }
            if (parameter.type.pointer == argument.pointer.empty())
                rows.fail("before this row: a meaning for " + entry.name + "'s " + parameter.name +
                          " is missing, or it has one and is no pointer");
            arguments.push_back(std::move(argument));
        }
        Argument result;
        if (isRow && rows.cell(0) == entry.name && rows.cell(1) == "result") {
            result = readArgument(entry, rows);
            isRow = rows.next();
        }
        if ((entry.result.find('*') != std::string::npos) == result.pointer.empty())
            rows.fail("before this row: what " + entry.name + " returns needs a meaning");
        arguments.push_back(std::move(result));
        all.push_back(std::move(arguments));
    }
    if (isRow)
        rows.fail("no entry is called " + rows.cell(0) + ", or the row is not in the order of the entries");
    return all;
}

} // namespace generator
