#include "Emit.h"

#include <algorithm>
#include <stdexcept>

namespace generator {

namespace {

// The name of the inserter in ValueForms.h.
std::string inserted(const EntryPoint& entry, const Parameter& parameter, bool last) {
    const std::string after = last ? ", closing)" : ", comma)";
    // These four show a float by the stream's own inserter. On purpose: readers of traces know them so.
    static const std::vector<std::string> plainFloats = {"FragmentMaterialfEXT", "FragmentMaterialfSGIX",
                                                         "ImageTransformParameterfHP",
                                                         "PixelTransformParameterfEXT"};
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
        return (std::ranges::count(plainFloats, entry.name) ? "Number(" : "Float(") + name + after;
    case ValueForm::text:
        return "Text(" + name + after;
    case ValueForm::pointer:
        return "Pointer(" + name + after;
    }
    throw std::logic_error("a value form without an inserter");
}

// "    out << a << b << c;" broken in front of "<<".
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

} // namespace

void emitTracer(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    for (const Topic& topic : topics) {
        std::string text = generatedNotice;
        text += "#include \"extensionator/OpenGLTracer.h\"\n\n"
                "#include \"extensionator/ValueForms.h\"\n\n"
                "namespace ZLT::OGL {\n\n"
                "using namespace ValueForms;\n";
        for (const EntryPoint* entry : topic.entries) {
            text += '\n' + list(0, entry->plainResult + " OpenGLTracer::cgm" + entry->name + "(",
                                chainParameters(*entry), ") {\n");
            std::vector<std::string> parts = {"CallSite(file, line, \"gl" + entry->name +
                                              (entry->parameters.empty() ? "()\\n" : "(") + "\")"};
            for (const Parameter& parameter : entry->parameters)
                parts.push_back(inserted(*entry, parameter, &parameter == &entry->parameters.back()));
            text += "    std::ostream& out = *outputStream_;\n" + insertions(parts);
            text += list(4,
                         (entry->hasResult() ? "return interceptor()->cgm" : "interceptor()->cgm") +
                             entry->name + "(",
                         chainArguments(*entry), ");\n}\n");
        }
        text += "\n} // namespace ZLT::OGL\n";
        writeFile(directory / ("OpenGLTracer_" + topic.name + ".cpp"), text);
    }
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
