#include "Emit.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace generator {

std::string topicNameOf(const std::string& group) {
    if (group == "GL_VERSION_1_1")
        return "GL11";
    if (group.starts_with("GL_VERSION_"))
        return "GL12to30";
    for (const char* vendor : {"ARB", "EXT", "NV"})
        if (group.starts_with(std::string("GL_") + vendor + "_"))
            return vendor;
    return "Vendors";
}

std::vector<Topic> topicsOf(const std::vector<EntryPoint>& entries) {
    std::vector<Topic> topics;
    for (const char* name : {"GL11", "GL12to30", "ARB", "EXT", "NV", "Vendors"})
        topics.push_back({name, {}});
    for (const EntryPoint& entry : entries)
        std::ranges::find(topics, topicNameOf(entry.group), &Topic::name)->entries.push_back(&entry);
    return topics;
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    {
        std::ifstream old(path, std::ios::binary);
        const std::string present{std::istreambuf_iterator<char>(old), std::istreambuf_iterator<char>()};
        if (old.is_open() && present == text)
            return;
    }
    std::ofstream out(path, std::ios::binary);
    out << text;
    out.close();
    if (!out)
        throw std::runtime_error("cannot write " + path.string());
}

std::string list(std::size_t indent, const std::string& head, const std::vector<std::string>& parts,
                 const std::string& tail) {
    std::string text = std::string(indent, ' ') + head;
    std::size_t column = text.size();
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::string part = parts[i] + (i + 1 < parts.size() ? "," : tail);
        if (i > 0 && column + 1 + part.size() > columnLimit) {
            text += '\n' + std::string(indent + 4, ' ');
            column = indent + 4;
        } else if (i > 0) {
            text += ' ';
            ++column;
        }
        text += part;
        column += part.size();
    }
    return parts.empty() ? text + tail : text;
}

std::vector<std::string> chainParameters(const EntryPoint& entry) {
    std::vector<std::string> parts = {"const char* file", "unsigned int line"};
    for (const Parameter& parameter : entry.parameters)
        parts.push_back(parameter.type.plain + " " + parameter.name);
    return parts;
}

std::vector<std::string> chainArguments(const EntryPoint& entry) {
    std::vector<std::string> parts = {"file", "line"};
    for (const Parameter& parameter : entry.parameters)
        parts.push_back(parameter.name);
    return parts;
}

std::vector<std::string> glParameters(const EntryPoint& entry) {
    std::vector<std::string> parts;
    for (const Parameter& parameter : entry.parameters) {
        std::string type = parameter.type.gl;
        if (!parameter.array.empty())
            type.pop_back(); // the star that stands for the brackets
        parts.push_back(type + " " + parameter.name + parameter.array);
    }
    return parts;
}

std::string loading(const std::vector<std::string>& loads) {
    std::string text;
    for (const std::string& load : loads)
        text += (text.empty() ? "    bool complete = " : "    complete &= ") + load + ";\n";
    return text + "    return complete;\n";
}

} // namespace generator
