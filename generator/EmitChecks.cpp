// What the checks of a foreign program know of the entries' arguments.

#include "Emit.h"

#include <map>
#include <set>
#include <string_view>

namespace generator {

namespace {

// What a draw reads is looked at as a whole, and texts have no length.
bool isCounted(const std::string& length) {
    for (const std::string_view other : {"text", "texts(", "indices(", "indexLists("})
        if (length.starts_with(other))
            return false;
    return true;
}

std::set<std::string> wordsOf(const std::string& text) {
    std::set<std::string> words;
    std::string word;
    for (const char letter : text + ' ') {
        if (std::isalnum(static_cast<unsigned char>(letter)) || letter == '_') {
            word += letter;
        } else {
            words.insert(word);
            word.clear();
        }
    }
    return words;
}

// The objects of which GL takes any name. Names of the others are given out by GL alone, which checks them.
const std::map<std::string_view, std::string> kinds = {{"texture", "Texture"},
                                                       {"buffer", "Buffer"},
                                                       {"framebuffer", "Framebuffer"},
                                                       {"renderbuffer", "Renderbuffer"},
                                                       {"query", "Query"},
                                                       {"occlusion query", "OcclusionQuery"},
                                                       {"assembly program", "AssemblyProgram"},
                                                       {"vertex array", "VertexArray"}};

std::string roleOf(const EntryPoint& entry, const Argument& argument) {
    const std::string_view name = entry.name;
    if (name.ends_with("ATI")) // whose buffers are others
        return "";
    if (name.starts_with("Gen") && argument.pointer == "out")
        return "Made";
    if (name.starts_with("Delete") && argument.pointer == "in")
        return "Deleted";
    const bool asks = name.starts_with("Is") || name.starts_with("Get") || name.starts_with("Check");
    return asks || !argument.pointer.empty() ? "" : "Used";
}

} // namespace

void emitChecks(const std::vector<EntryPoint>& entries, const std::vector<Arguments>& arguments,
                const std::filesystem::path& directory) {
    const std::string notice = "// Generated from tables/gl_entry_points.tsv and tables/gl_arguments.tsv.\n";
    std::string names = notice + "constexpr NamedObject namedObjects[] = {\n";
    std::string pointers = notice, reading = notice + "constexpr unsigned int readingEntries[] = {\n";
    for (const EntryPoint& entry : entries) {
        const Arguments& meanings = arguments[entry.slot];
        std::string reads;
        std::set<std::string> used;
        for (std::size_t index = 0; index < entry.parameters.size(); ++index) {
            const Parameter& parameter = entry.parameters[index];
            const Argument& argument = meanings[index];
            const auto kind = kinds.find(argument.object);
            if (const std::string role = roleOf(entry, argument); kind != kinds.end() && !role.empty())
                names += "    {" + std::to_string(entry.slot) + ", " + std::to_string(index) +
                         ", ObjectKind::" + kind->second + ", NameRole::" + role + "}, // " + entry.name +
                         '\n';
            if (argument.pointer != "in" || !isCounted(argument.length))
                continue;
            reads += "    reads(\"" + parameter.name + "\", " + parameter.name + ", " +
                     qualified(argument.length) + ");\n";
            used.merge(wordsOf(argument.length));
            used.insert(parameter.name);
        }
        if (reads.empty())
            continue;
        pointers += "case " + std::to_string(entry.slot) + ": { // " + entry.name + '\n';
        for (std::size_t index = 0; index < entry.parameters.size(); ++index) {
            const Parameter& parameter = entry.parameters[index];
            if (used.contains(parameter.name))
                pointers += "    const auto " + parameter.name + " = argument<" + parameter.type.plain +
                            ">(passed[" + std::to_string(index) + "]);\n";
        }
        pointers += reads + "    break;\n}\n";
        reading += "    " + std::to_string(entry.slot) + ", // " + entry.name + '\n';
    }
    writeFile(directory / "NamedObjects.inl", names + "};\n");
    // Lengths are written as the table has them.
    constexpr const char* widening = "(bugprone-implicit-widening-of-multiplication-result)\n";
    writeFile(directory / "ReadPointers.inl",
              std::string("// NOLINTBEGIN") + widening + pointers + "// NOLINTEND" + widening);
    writeFile(directory / "ReadingEntries.inl", reading + "};\n");
}

} // namespace generator
