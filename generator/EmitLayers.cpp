// The layers that treat all entries alike: forwarder, watcher, error reporter, and the table of entries that
// the latter two look up.

#include "Emit.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string_view>

namespace generator {

std::string signatureOf(const EntryPoint& entry) {
    std::string text = entry.plainResult;
    for (const Parameter& parameter : entry.parameters)
        text += ", " + parameter.type.plain;
    return text;
}

EntriesByType::EntriesByType(const std::vector<Topic>& topics) {
    for (const Topic& topic : topics)
        for (const EntryPoint* entry : topic.entries) {
            std::vector<const EntryPoint*>& same = groups_[signatureOf(*entry)];
            places_[entry] = same.size();
            same.push_back(entry);
        }
}

void emitSharedLayer(const std::vector<Topic>& topics, const std::filesystem::path& directory,
                     const SharedLayer& layer) {
    const EntriesByType byType(topics);
    for (const Topic& topic : topics) {
        std::string text = std::string(generatedNotice) + "#include \"" + layer.header + "\"\n\nnamespace " +
                           layer.space + " {\n";
        for (const EntryPoint* entry : topic.entries) {
            if (std::ranges::count(layer.byHand, entry->name))
                continue;
            std::vector<std::string> parts = {"CallPlace{file, line, " +
                                              std::to_string(byType.placeOf(*entry)) + "}"};
            for (const Parameter& parameter : entry->parameters)
                parts.push_back(parameter.name);
            text += '\n' + layerHead(*entry, layer.name);
            text += list(4,
                         std::string(entry->hasResult() ? "return " : "") + layer.work + "<" +
                             signatureOf(*entry) + ">(",
                         parts, ");\n}\n");
        }
        text += "\n} // namespace " + layer.space + "\n";
        writeFile(directory / (layer.name + "_" + topic.name + ".cpp"), text);
    }
}

namespace {

// How the argument is written, as CallArguments.cpp reads it.
char formLetter(const EntryPoint& entry, const Parameter& parameter) {
    const Type& type = parameter.type;
    static const std::map<std::string_view, char> numbers = {{"int", 'i'},
                                                             {"unsigned int", 'u'},
                                                             {"short", 's'},
                                                             {"unsigned short", 'S'},
                                                             {"long long", 'l'},
                                                             {"double", 'd'},
                                                             {"unsigned long long", 'L'}};
    switch (type.form) {
    case ValueForm::enumerant:
        return 'e';
    case ValueForm::boolean:
        return 'b';
    case ValueForm::number:
        return numbers.at(type.plain);
    case ValueForm::handle:
        return 'h';
    case ValueForm::low32:
        return 'w';
    case ValueForm::character:
        return type.plain == "signed char" ? 'c' : 'C';
    case ValueForm::floating:
        return showsPlainFloats(entry) ? 'g' : 'f';
    case ValueForm::text:
        // Only these are meant as text with a zero byte: names, and the like.
        return type.plain == "const char*" ? 'q' : 't';
    case ValueForm::pointer:
        return 'p';
    }
    throw std::logic_error("a value form without a letter");
}

/// Texts one after the other, each with its zero byte and each once; a row names a text by its position.
class TextPool {
public:
    std::size_t positionOf(const std::string& text) {
        const auto [place, isNew] = positions_.try_emplace(text, size_);
        if (isNew) {
            literals_ += "    \"" + text + "\\0\"\n";
            size_ += text.size() + 1;
        }
        return place->second;
    }
    std::string definition(const std::string& name) const {
        return "constexpr char " + name + "[] =\n" + literals_ + "    ;\n";
    }

private:
    std::map<std::string, std::size_t> positions_;
    std::string literals_;
    std::size_t size_ = 0;
};

} // namespace

void emitEntryTable(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory) {
    TextPool names, groups, forms;
    std::string rows;
    for (const EntryPoint& entry : entries) {
        std::string letters;
        for (const Parameter& parameter : entry.parameters)
            letters += formLetter(entry, parameter);
        rows += "    {" + std::to_string(names.positionOf("gl" + entry.name)) + ", " +
                std::to_string(groups.positionOf(entry.group)) + ", " +
                std::to_string(forms.positionOf(letters)) + "}, // " + entry.name + '\n';
    }
    writeFile(directory / "EntryTable.inl",
              std::string(generatedNotice) +
                  "// In the order of the virtual slots: where the name, the group "
                  "and the forms of the arguments begin.\n\n" +
                  names.definition("entryNames") + groups.definition("entryGroups") +
                  forms.definition("entryForms") + "constexpr EntryRow entryRows[] = {\n" + rows + "};\n");
}

void emitEntryNumbers(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory) {
    std::string text =
        std::string(generatedNotice) +
        "#pragma once\n\n"
        "namespace ZLT::OGL::OpenGLEntry {\n\n"
        "/// The numbers of the chain's entries, which are their virtual slots: what OpenGLCall::number() "
        "gives.\n"
        "///\n"
        "///     if (call.number() == OpenGLEntry::DrawArrays)\n"
        "enum Number : unsigned int {\n";
    for (const EntryPoint& entry : entries)
        text += "    " + entry.name + " = " + std::to_string(entry.slot) + ",\n";
    text += "};\n\n} // namespace ZLT::OGL::OpenGLEntry\n";
    writeFile(directory / "OpenGLEntry.h", text);
}

void emitEntriesByType(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    std::string text =
        std::string(generatedNotice) + "// The entries that share their types, each with its number.\n";
    const EntriesByType byType(topics);
    for (const auto& [types, entries] : byType.groups()) {
        text.append("\ntemplate <>\ninline constexpr TypedEntry<").append(types);
        text.append("> entriesOf<").append(types).append(">[] = {\n");
        for (const EntryPoint* entry : entries)
            text.append("    {&OpenGLInterceptor::cgm" + entry->name + ", ")
                .append(std::to_string(entry->slot) + "},\n");
        text += "};\n";
    }
    writeFile(directory / "EntriesByType.inl", text);
}

void emitForwarder(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    for (const Topic& topic : topics) {
        std::string text = std::string(generatedNotice) + "#include \"extensionator/OpenGLForwarder.h\"\n\n"
                                                          "#include \"extensionator/NextLayer.h\"\n\n"
                                                          "namespace ZLT::OGL {\n";
        for (const EntryPoint* entry : topic.entries) {
            text += '\n' + layerHead(*entry, "OpenGLForwarder");
            text += list(4,
                         std::string(entry->hasResult() ? "return " : "") + "NextLayer::of(*this)->cgm" +
                             entry->name + "(",
                         chainArguments(*entry), ");\n}\n");
        }
        text += "\n} // namespace ZLT::OGL\n";
        writeFile(directory / ("OpenGLForwarder_" + topic.name + ".cpp"), text);
    }
}

void emitWatchLayer(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    emitSharedLayer(topics, directory,
                    {"OpenGLWatchLayer", "extensionator/OpenGLWatcher.inl", "watched", {}});
}

void emitErrorReporter(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    // These three are in OpenGLErrorReporter.cpp: the balance, and the errors that a program asks for itself.
    emitSharedLayer(topics, directory,
                    {"OpenGLErrorReporter",
                     "extensionator/OpenGLErrorReporter.inl",
                     "reported",
                     {"Begin", "End", "GetError"}});
}

} // namespace generator
