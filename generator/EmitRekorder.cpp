#include "Emit.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace generator {

namespace {

// What has a form of its own and belongs to no family stands in OpenGLRekorderData.cpp and
// OpenGLRekorderNames.cpp.
constexpr std::string_view byHand[] = {
    // data
    "TexImage2D", "TexSubImage2D", "ReadPixels", "LoadMatrixf", "MultMatrixf", "MultMatrixd",
    "DrawBuffersARB", "Vertex2fv", "TexParameterfv",
    // queries, names, shaders
    "GenTextures", "GenQueries", "GenFramebuffersEXT", "GetBooleanv", "GetFloatv", "GetIntegerv",
    "GetObjectParameterfvARB", "GetObjectParameterivARB", "GetTexLevelParameterfv", "GetTexLevelParameteriv",
    "GetProgramiv", "GetShaderiv", "GetProgramInfoLog", "GetInfoLogARB", "GetActiveUniformARB",
    "GetAttachedShaders", "GetAttachedObjectsARB", "DeleteTextures", "DeleteQueries", "DeleteFramebuffersEXT",
    "GetUniformLocation", "GetUniformLocationARB", "ShaderSource", "ShaderSourceARB"};

// How the functions divide. Readers of the documentation are told these numbers, and a function that changes
// its form changes the format.
struct Split {
    std::size_t plain, markers, ownForms;
};
constexpr Split documentedSplit = {856, 910, 67};

// "Uniform3ivARB" of "Uniform": a member of a family whose members differ in a digit, a type and a suffix.
struct Vector {
    std::string family;
    unsigned int components;
    bool floats;
};
std::optional<Vector> vectorOf(std::string_view name) {
    if (name.ends_with("ARB"))
        name.remove_suffix(3);
    for (const char* family : {"Uniform", "MultiTexCoord"}) {
        if (!name.starts_with(family))
            continue;
        const std::string_view rest = name.substr(std::string_view(family).size());
        if (rest.size() == 3 && rest[0] >= '1' && rest[0] <= '4' && (rest[1] == 'f' || rest[1] == 'i') &&
            rest[2] == 'v')
            return Vector{family, static_cast<unsigned int>(rest[0] - '0'), rest[1] == 'f'};
    }
    return std::nullopt;
}

// The larger matrices are markers. The format is so.
bool isUniformMatrix(const EntryPoint& entry) {
    return entry.name == "UniformMatrix2fv" || entry.name == "UniformMatrix2fvARB";
}

bool isByHand(const EntryPoint& entry) { return std::ranges::count(byHand, entry.name) > 0; }

bool hasOwnForm(const EntryPoint& entry) {
    return isByHand(entry) || vectorOf(entry.name) || isUniformMatrix(entry);
}

// A parameter in array syntax is a constant pointer and does not count: it is shown as an address.
bool hasPlainPointer(const EntryPoint& entry) {
    return std::ranges::any_of(entry.parameters, [](const Parameter& parameter) {
        return parameter.type.pointer && parameter.array.empty();
    });
}

std::string marker(const EntryPoint& entry) {
    return "    *outputStream_ << \"OpenGLRekorderUnsupported(\\\"Capturing an OpenGL function (gl" +
           entry.name +
           ") with pointer parameter \"\n"
           "                      \"requires a specialized implementation!\\\");\\n\";\n";
}

std::string plainStatement(const EntryPoint& entry) {
    std::vector<std::string> parts = {"\"gl" + entry.name + "(\""};
    if (entry.parameters.empty())
        parts.emplace_back("callEnd(lineComments_)");
    addArguments(parts, entry, ", callEnd(lineComments_)");
    parts.emplace_back("LineComment(lineComments_, file, line)");
    return "    std::ostream& out = *outputStream_;\n" + insertions(parts);
}

constexpr const char* callEnd = "CallEnd(lineComments_, file, line)";

// "const unsigned int position = ...": `size` bytes for each element of the last parameter.
std::string record(const EntryPoint& entry, unsigned int size) {
    return "    const unsigned int position = writeRecord(" + entry.parameters.back().name +
           ", static_cast<unsigned int>(count) * " + std::to_string(size) + ");\n";
}

// The call of a helper of RecordBlocks.h.
std::string vectorStatement(const EntryPoint& entry, const Vector& vector) {
    const std::string function = "\"gl" + entry.name + "\"";
    if (vector.family == "MultiTexCoord")
        return list(4, "writeMultiTexCoord(",
                    {"*outputStream_", function, "target", "v", std::to_string(vector.components), callEnd},
                    ");\n");
    const std::string cast = vector.floats ? "\"GLfloat\"" : "\"GLint\"";
    return record(entry, vector.components * 4) +
           list(4, "writeUniforms(",
                {"*outputStream_", "position", function, "location", "count", cast, callEnd}, ");\n");
}

std::string matrixStatement(const EntryPoint& entry) {
    const std::string function = "\"gl" + entry.name + "\"";
    return record(entry, 16) +
           list(4, "writeUniformMatrices(",
                {"*outputStream_", "position", function, "location", "count", "transpose", callEnd}, ");\n");
}

std::string statement(const EntryPoint& entry) {
    if (const std::optional<Vector> vector = vectorOf(entry.name))
        return vectorStatement(entry, *vector);
    if (isUniformMatrix(entry))
        return matrixStatement(entry);
    return hasPlainPointer(entry) ? marker(entry) : plainStatement(entry);
}

} // namespace

void checkRekorderSplit(const std::vector<EntryPoint>& entries) {
    Split split = {0, 0, 0};
    for (const EntryPoint& entry : entries)
        ++(hasOwnForm(entry) ? split.ownForms : hasPlainPointer(entry) ? split.markers : split.plain);
    std::string faults;
    const auto compare = [&](std::size_t count, std::size_t documented, const std::string& what) {
        if (count != documented)
            faults += (faults.empty() ? "" : ", ") + std::to_string(count) + " functions " + what +
                      " instead of " + std::to_string(documented);
    };
    compare(split.plain, documentedSplit.plain, "without pointers");
    compare(split.markers, documentedSplit.markers, "that leave a marker");
    compare(split.ownForms, documentedSplit.ownForms, "with a form of their own");
    if (!faults.empty())
        throw std::runtime_error("the recorder has " + faults +
                                 ": correct the table, or the numbers in generator/EmitRekorder.cpp, "
                                 "src/extensionator/OpenGLRekorder.h and docs/recording-format.md");
}

void emitRekorder(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    for (const Topic& topic : topics) {
        std::string text = generatedNotice;
        text += "#include \"extensionator/OpenGLRekorder.h\"\n\n"
                "#include \"extensionator/RecordBlocks.h\"\n\n"
                "namespace ZLT::OGL {\n\n"
                "using namespace RecordForms;\n";
        for (const EntryPoint* entry : topic.entries) {
            if (!isByHand(*entry))
                text += '\n' + layerHead(*entry, "OpenGLRekorder") + statement(*entry) + forwarding(*entry);
        }
        text += "\n} // namespace ZLT::OGL\n";
        writeFile(directory / ("OpenGLRekorder_" + topic.name + ".cpp"), text);
    }
}

} // namespace generator
