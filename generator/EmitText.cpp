#include "Emit.h"

#include <algorithm>
#include <stdexcept>

namespace generator {

namespace {

// The name of the inserter in ValueForms.h.
std::string inserted(const EntryPoint& entry, const Parameter& parameter, const std::string& with) {
    const std::string after = with + ")";
    const std::string& name = parameter.name;
    switch (parameter.type.form) {
    case ValueForm::enumerant:
        return "Enumerant(" + name + after;
    case ValueForm::boolean:
        return "Boolean(" + name + after;
    case ValueForm::number:
        return "Number(" + name + after;
    case ValueForm::handle:
        return "Handle(" + name + after;
    case ValueForm::low32:
        return "Low32(" + name + after;
    case ValueForm::character:
        return "Character(" + name + after;
    case ValueForm::floating:
        return (showsPlainFloats(entry) ? "Number(" : "Float(") + name + after;
    case ValueForm::text:
        return "Text(" + name + after;
    case ValueForm::pointer:
        return "Pointer(" + name + after;
    }
    throw std::logic_error("a value form without an inserter");
}

} // namespace

bool showsPlainFloats(const EntryPoint& entry) {
    // Readers of traces know these four so.
    static const std::vector<std::string> names = {"FragmentMaterialfEXT", "FragmentMaterialfSGIX",
                                                   "ImageTransformParameterfHP",
                                                   "PixelTransformParameterfEXT"};
    return std::ranges::count(names, entry.name) != 0;
}

std::string insertions(const std::vector<std::string>& parts) {
    std::string text = "    out";
    std::size_t column = text.size();
    for (const std::string& part : parts) {
        if (column + 4 + part.size() + 1 > columnLimit) {
            text += "\n       ";
            column = 7;
        }
        text += " << " + part;
        column += 4 + part.size();
    }
    return text + ";\n";
}

void addArguments(std::vector<std::string>& parts, const EntryPoint& entry, const std::string& last) {
    for (const Parameter& parameter : entry.parameters)
        parts.push_back(
            inserted(entry, parameter, &parameter == &entry.parameters.back() ? last : ", comma"));
}

std::string layerHead(const EntryPoint& entry, const std::string& layer) {
    return list(0, entry.plainResult + " " + layer + "::cgm" + entry.name + "(", chainParameters(entry),
                ") {\n");
}

std::string forwarding(const EntryPoint& entry) {
    const std::string keep = entry.hasResult() ? "return " : "";
    return list(4, keep + "interceptor()->cgm" + entry.name + "(", chainArguments(entry), ");\n}\n");
}

void emitTracer(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    for (const Topic& topic : topics) {
        std::string text = generatedNotice;
        text += "#include \"extensionator/OpenGLTracer.h\"\n\n"
                "#include \"extensionator/ValueForms.h\"\n\n"
                "namespace ZLT::OGL {\n\n"
                "using namespace ValueForms;\n";
        for (const EntryPoint* entry : topic.entries) {
            text += '\n' + layerHead(*entry, "OpenGLTracer");
            std::vector<std::string> parts = {"CallSite(file, line, \"gl" + entry->name +
                                              (entry->parameters.empty() ? "()\\n" : "(") + "\")"};
            addArguments(parts, *entry, ", closing");
            text += "    std::ostream& out = *outputStream_;\n" + insertions(parts);
            text += forwarding(*entry);
        }
        text += "\n} // namespace ZLT::OGL\n";
        writeFile(directory / ("OpenGLTracer_" + topic.name + ".cpp"), text);
    }
}

void emitTokenHeader(const std::vector<Token>& tokens, const std::filesystem::path& directory) {
    std::string text =
        "// Generated from tables/gl_tokens.tsv.\n"
        "#pragma once\n\n"
        "/// @file\n"
        "/// Every name that TokenName gives, with the value that it has there, for sources that are\n"
        "/// recordings: include it after the GL headers. Some names are missing in later GL headers, and\n"
        "/// a few have another value.\n";
    for (const Token& token : tokens)
        text +=
            "\n#undef " + token.name + "\n#define " + token.name + ' ' + std::to_string(token.value) + "u\n";
    writeFile(directory / "gl_tokens.h", text);
}

void emitTokens(const std::vector<Token>& tokens, const std::filesystem::path& directory) {
    std::string text = "// Generated from tables/gl_tokens.tsv.\n";
    for (const Token& token : tokens)
        text += "ZLT_GL_TOKEN(" + std::to_string(token.value) + "u, \"" + token.name + "\")\n";
    writeFile(directory / "TokenRows.inl", text);
}

void emitEntryRows(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory) {
    std::string text = generatedNotice;
    text +=
        "// ZLT_GL_ENTRY(slot, group, name, result, (parameters), (arguments)); ZLT_GL_CORE_ENTRY for the\n"
        "// functions of GL 1.1, which are linked by name.\n";
    for (const EntryPoint& entry : entries) {
        std::vector<std::string> names;
        for (const Parameter& parameter : entry.parameters)
            names.push_back(parameter.name);
        text += (entry.isCore11() ? "ZLT_GL_CORE_ENTRY(" : "ZLT_GL_ENTRY(") + std::to_string(entry.slot) +
                ", " + entry.group + ", " + entry.name + ", " + entry.result + ", " +
                list(0, "(", glParameters(entry), ")") + ", " + list(0, "(", names, ")") + ")\n";
    }
    writeFile(directory / "EntryPoints.inl", text);
}

} // namespace generator
