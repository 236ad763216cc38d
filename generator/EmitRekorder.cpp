#include "Emit.h"

#include <algorithm>
#include <string_view>

namespace generator {

namespace {

// What has a form of its own stands in OpenGLRekorderData.cpp and OpenGLRekorderNames.cpp.
constexpr std::string_view byHand[] = {
    // data
    "TexImage2D", "TexSubImage2D", "ReadPixels", "LoadMatrixf", "MultMatrixf", "MultMatrixd", "Uniform1fv",
    "Uniform2fv", "Uniform3fv", "Uniform4fv", "Uniform1iv", "Uniform2iv", "Uniform3iv", "Uniform4iv",
    "Uniform1fvARB", "Uniform2fvARB", "Uniform3fvARB", "Uniform4fvARB", "Uniform1ivARB", "Uniform2ivARB",
    "Uniform3ivARB", "Uniform4ivARB", "UniformMatrix2fv", "UniformMatrix2fvARB", "DrawBuffersARB",
    "Vertex2fv", "MultiTexCoord1fv", "MultiTexCoord2fv", "MultiTexCoord3fv", "MultiTexCoord4fv",
    "MultiTexCoord1iv", "MultiTexCoord2iv", "MultiTexCoord3iv", "MultiTexCoord4iv", "MultiTexCoord1fvARB",
    "MultiTexCoord2fvARB", "MultiTexCoord3fvARB", "MultiTexCoord4fvARB", "MultiTexCoord1ivARB",
    "MultiTexCoord2ivARB", "MultiTexCoord3ivARB", "MultiTexCoord4ivARB", "TexParameterfv",
    // queries, names, shaders
    "GenTextures", "GenQueries", "GenFramebuffersEXT", "GetBooleanv", "GetFloatv", "GetIntegerv",
    "GetObjectParameterfvARB", "GetObjectParameterivARB", "GetTexLevelParameterfv", "GetTexLevelParameteriv",
    "GetProgramiv", "GetShaderiv", "GetProgramInfoLog", "GetInfoLogARB", "GetActiveUniformARB",
    "GetAttachedShaders", "GetAttachedObjectsARB", "DeleteTextures", "DeleteQueries", "DeleteFramebuffersEXT",
    "GetUniformLocation", "GetUniformLocationARB", "ShaderSource", "ShaderSourceARB"};

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

} // namespace

void emitRekorder(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    for (const Topic& topic : topics) {
        std::string text = generatedNotice;
        text += "#include \"extensionator/OpenGLRekorder.h\"\n\n"
                "#include \"extensionator/RecordForms.h\"\n\n"
                "namespace ZLT::OGL {\n\n"
                "using namespace RecordForms;\n";
        for (const EntryPoint* entry : topic.entries) {
            if (std::ranges::count(byHand, entry->name))
                continue;
            text += '\n' + layerHead(*entry, "OpenGLRekorder");
            text += hasPlainPointer(*entry) ? marker(*entry) : plainStatement(*entry);
            text += forwarding(*entry);
        }
        text += "\n} // namespace ZLT::OGL\n";
        writeFile(directory / ("OpenGLRekorder_" + topic.name + ".cpp"), text);
    }
}

} // namespace generator
