#include "capture/exporting/ProjectFiles.h"

#include "capture/exporting/ProjectTemplates.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace ZLT::Capture {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestFunction = 5000, longestSource = 380'000;
constexpr const char* sourceHead = "#include \"frames.h\"\n";
// In front of what a project has, so that the folder of one is known again.
constexpr const char* listName = "frames.h";

std::string keyOf(std::string_view bytes) {
    const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
    std::string key(sizeof hash + sizeof(std::size_t), '\0');
    const std::size_t size = bytes.size();
    std::memcpy(key.data(), &hash, sizeof hash);
    std::memcpy(key.data() + sizeof hash, &size, sizeof size);
    return key;
}

std::string hexOf(std::uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(value));
    return text;
}

// The type of a value with this form.
std::string typeOf(char form) {
    switch (form) {
    case 'e':
        return "GLenum";
    case 'u':
        return "GLuint";
    case 'i':
        return "GLint";
    case 's':
        return "GLshort";
    case 'S':
    case 'h':
        return "GLushort";
    case 'c':
        return "GLbyte";
    case 'C':
        return "GLubyte";
    case 'b':
        return "GLboolean";
    case 'l':
        return "GLint64";
    case 'L':
        return "GLuint64";
    case 'f':
        return "GLfloat";
    case 'd':
        return "GLdouble";
    case 'y':
        return "GLsync";
    default:
        return "void";
    }
}

std::string typeOf(const Parameter& parameter) {
    switch (parameter.form) {
    case 'p':
        return "const " + (parameter.element == 'a' ? "void" : typeOf(parameter.element)) + "*";
    case 'o':
        return (parameter.element == 'a' ? "void*" : typeOf(parameter.element)) + "*";
    case 't':
        return "const GLchar*";
    case 'x':
        return "const GLchar* const*";
    case 'n':
        return "const void* const*";
    case 'a':
        return "const void*";
    default:
        return typeOf(parameter.form);
    }
}

std::string resultOf(const Function& function) {
    switch (function.result.form) {
    case 0:
        return "void";
    case 't':
        return "const GLubyte*";
    case 'a':
        return "void*";
    default:
        return typeOf(function.result);
    }
}

std::string declarationsOf(const UsedFunctions& functions) {
    std::string text =
        "// The functions that the frames call: result, name, parameters. Those of OpenGL 1.1 are linked, "
        "the others are\n// loaded by address. For another function add its line.\n";
    for (const auto& [name, function] : functions) {
        text += function->group == "GL_VERSION_1_1" ? "GL_1_1_FUNCTION(" : "GL_FUNCTION(";
        text += resultOf(*function) + ", " + name + ", (";
        const char* separator = "";
        for (const Parameter& parameter : function->parameters) {
            text += separator + typeOf(parameter);
            separator = ", ";
        }
        text += "))\n";
    }
    return text;
}

std::string replaced(std::string text, std::initializer_list<std::pair<const char*, std::string>> words) {
    for (const auto& [word, by] : words)
        for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += by.size())
            text.replace(at, std::string_view(word).size(), by);
    return text;
}

} // namespace

ProjectFiles::ProjectFiles(std::string folder, std::string name)
    : folder_(std::move(folder)), name_(std::move(name)) {
    std::error_code failure;
    isNew_ = !fs::exists(folder_, failure);
    fs::create_directories(folder_, failure);
    if (!fs::is_directory(folder_))
        throw std::runtime_error(folder_ + " can't be made: " + failure.message());
    const bool isProject =
        fs::exists(fs::path(folder_) / listName) && fs::exists(fs::path(folder_) / "data.bin");
    if (!isProject && !fs::is_empty(folder_))
        throw std::runtime_error(folder_ + " has files in it, and they are no exported project");
    fs::create_directory(fs::path(folder_) / "others");
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_))
        if (const std::string file = entry.path().filename().string();
            file.starts_with("frames_") && file.ends_with(".cpp"))
            fs::remove(entry.path());
    data_.open(fs::path(folder_) / "data.bin", std::ios::binary);
    if (!data_)
        throw std::runtime_error(folder_ + "/data.bin can't be written");
}

ProjectFiles::~ProjectFiles() {
    data_.close();
    std::error_code ignored;
    if (isNew_ && !isFinished_)
        fs::remove_all(folder_, ignored);
}

std::uint64_t ProjectFiles::data(std::string_view bytes) {
    const auto [piece, isNew] = pieces_.try_emplace(keyOf(bytes), dataSize_);
    if (isNew) {
        constexpr std::size_t alignment = 16;
        constexpr char zeros[alignment] = {};
        data_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        const std::size_t gap = (alignment - bytes.size() % alignment) % alignment;
        data_.write(zeros, static_cast<std::streamsize>(gap));
        dataSize_ += bytes.size() + gap;
    }
    return piece->second;
}

void ProjectFiles::add(std::string_view statements, std::size_t count) {
    frame_ += statements;
    count_ += count;
    if (count_ >= longestFunction - 8 || frame_.size() > longestSource - 1000)
        writePart();
}

void ProjectFiles::writePart() {
    parts_.push_back(
        writeFunction("part_" + std::to_string(started_ + 1) + '_' + std::to_string(parts_.size() + 1)));
}

std::string ProjectFiles::writeFunction(const std::string& name) {
    const auto [known, isNew] = functions_.try_emplace(keyOf(frame_), name);
    if (isNew) {
        if (source_.size() + frame_.size() > longestSource && source_.size() > 1000)
            writeSource();
        ((source_ += "\nvoid ") += name) += "() {\n";
        (source_ += frame_) += "}\n";
    }
    frame_.clear();
    count_ = 0;
    return known->second;
}

std::string ProjectFiles::endFunction(const std::string& name) {
    // One that is too large calls its parts.
    if (!parts_.empty()) {
        if (!frame_.empty())
            writePart();
        for (const std::string& part : parts_)
            (((frame_ += "    { void ") += part) += "(); ") += part + "(); }\n";
        parts_.clear();
    }
    ++started_;
    return writeFunction(name);
}

void ProjectFiles::endStart(std::uint64_t number) {
    const std::string name = endFunction("before_frame_" + std::to_string(number));
    frame_ = "    { void " + name + "(); " + name + "(); }\n";
}

void ProjectFiles::endFrame(std::uint64_t number, bool hasHash, std::uint64_t hash) {
    const std::string function = endFunction("frame_" + std::to_string(number));
    frames_.push_back({function, hasHash, hash});
}

void ProjectFiles::writeSource() {
    if (source_.empty())
        return;
    char name[32];
    std::snprintf(name, sizeof name, "frames_%04zu.cpp", sources_.size() + 1);
    source_.insert(0, sourceHead);
    write(name, source_);
    sources_.emplace_back(name);
    source_.clear();
}

void ProjectFiles::write(const std::string& file, std::string_view text) const {
    std::ofstream to(fs::path(folder_) / file, std::ios::binary);
    to.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!to.flush())
        throw std::runtime_error((fs::path(folder_) / file).string() + " can't be written");
}

namespace {

std::string variablesOf(const ProjectFacts& facts, bool isDefinition) {
    const auto typeOf = [](const std::string& variable) -> std::string {
        if (variable == "program")
            return "Table<Program>";
        if (variable == "sync")
            return "Table<GLsync>";
        return variable == "mapped" ? "Table<void*>" : "Names";
    };
    std::string text, prefix;
    for (const auto& [its, variable] : facts.variables) {
        if (its != prefix) {
            // What one prefix has is a struct: group2.texture.
            if (!prefix.empty() && !isDefinition)
                text += "};\nextern " + replaced(prefix, {{".", ""}, {"g", "G"}, {"c", "C"}}) + ' ' +
                        prefix.substr(0, prefix.size() - 1) + ";\n";
            prefix = its;
            const std::string type = replaced(prefix, {{".", ""}, {"g", "G"}, {"c", "C"}});
            text += isDefinition ? type + ' ' + prefix.substr(0, prefix.size() - 1) + ";\n"
                                 : "struct " + type + " {\n";
        }
        if (prefix.empty())
            text += (isDefinition ? "" : "extern ") + typeOf(variable) + ' ' + variable + ";\n";
        else if (!isDefinition)
            text += "    " + typeOf(variable) + ' ' + variable + ";\n";
    }
    if (!prefix.empty() && !isDefinition)
        text += "};\nextern " + replaced(prefix, {{".", ""}, {"g", "G"}, {"c", "C"}}) + ' ' +
                prefix.substr(0, prefix.size() - 1) + ";\n";
    return text;
}

} // namespace

void ProjectFiles::finish(const ProjectFacts& facts) {
    const std::string last = endFunction("after_last_frame");
    if (last != "after_last_frame") // nothing is left, as in an empty frame
        source_ += "\nvoid after_last_frame() { " + last + "(); }\n";
    writeSource();
    data_.flush();
    if (!data_)
        throw std::runtime_error(folder_ + "/data.bin can't be written");
    data_.close();

    std::string constants = "// The constants of GL that the frames use.\n#pragma once\n\n";
    for (const auto& [name, value] : facts.constants) {
        char number[16];
        std::snprintf(number, sizeof number, "0x%04X", value);
        constants += "#define " + name + ' ' + number + '\n';
    }
    write("gl_constants.h", constants);
    write("gl_functions.inl", declarationsOf(facts.functions));
    write(listName, "// What the frames are made of.\n#pragma once\n\n#include \"project.h\"\n\n" +
                        variablesOf(facts, false));
    std::string list = "#include \"frames.h\"\n\n" + variablesOf(facts, true) + "\nvoid forget_objects() {\n";
    for (const auto& [prefix, variable] : facts.variables)
        ((list += "    " + prefix) += variable) += ".clear();\n";
    list += "}\n\nvoid after_last_frame();\n";
    std::set<std::string> declared;
    for (const ShownFrame& frame : frames_)
        if (declared.insert(frame.function).second)
            list += "void " + frame.function + "();\n";
    list += "\n// What is played, with the hash of what each frame showed.\nconst Frame frames[] = {\n";
    for (const ShownFrame& frame : frames_)
        list += "    {" + frame.function + ", " +
                (frame.hasHash ? "true, " + hexOf(frame.hash) : "false, 0") + "},\n";
    list += "    {after_last_frame, false, 0},\n};\nconst std::size_t frame_count = " +
            std::to_string(frames_.size()) +
            ";\nconst std::uint64_t first_frame = " + std::to_string(facts.firstFrame) + ";\n";
    write("frames.cpp", list);

    std::string sources, missing, info;
    for (const std::string& source : sources_)
        sources += "  " + source + '\n';
    for (const std::string& sentence : facts.missing)
        missing += "- " + sentence + '\n';
    if (!missing.empty())
        missing = "\n## What is missing\n\n" + missing;
    for (std::size_t at = 0; at < facts.info.size();) {
        const std::size_t end = std::min(facts.info.find('\n', at), facts.info.size());
        info += "    " + facts.info.substr(at, end - at) + '\n';
        at = end + 1;
    }
    for (const ProjectTemplate& part : projectTemplates())
        write(part.name, part.isFilled
                             ? replaced(std::string(part.text),
                                        {{"@NAME@", name_},
                                         {"@SOURCES@", sources},
                                         {"@FRAMES@", std::to_string(frames_.size())},
                                         {"@FIRST@", std::to_string(facts.firstFrame)},
                                         {"@LAST@", std::to_string(facts.firstFrame + frames_.size() - 1)},
                                         {"@CALLS@", std::to_string(facts.calls)},
                                         {"@CAPTURE@", facts.capture},
                                         {"@INFO@", info},
                                         {"@MISSING@", missing}})
                             : std::string(part.text));
    isFinished_ = true;
}

} // namespace ZLT::Capture
