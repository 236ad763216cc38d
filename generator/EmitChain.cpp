#include "Emit.h"

#include <algorithm>

namespace generator {

namespace {

// The chain's arguments as the GL function takes them. Pointers to 64-bit values are named differently on the
// two platforms and need a cast; everything else converts by itself.
std::vector<std::string> glArguments(const EntryPoint& entry) {
    std::vector<std::string> parts;
    for (const Parameter& parameter : entry.parameters) {
        if (parameter.type.pointerTo64Bit)
            parts.push_back("reinterpret_cast<" + parameter.type.gl + ">(" + parameter.name + ")");
        else
            parts.push_back(parameter.name);
    }
    return parts;
}

// A pointer to void takes any pointer by itself, others need a cast.
bool takesTypedPointer(const EntryPoint& entry) {
    return std::ranges::any_of(entry.parameters, [](const Parameter& parameter) {
        const Type& type = parameter.type;
        return type.pointer && type.plain != "void*" && type.plain != "const void*";
    });
}

} // namespace

void emitDeclarations(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory) {
    std::string pure = std::string(generatedNotice) + "// The order is the order of the virtual slots.\n\n";
    std::string overrides = std::string(generatedNotice) + "// For the class body of a layer.\n\n";
    for (const EntryPoint& entry : entries) {
        const std::string head = entry.plainResult + " cgm" + entry.name + "(";
        pure += list(0, "virtual " + head, chainParameters(entry), ") = 0;") + '\n';
        overrides += list(0, head, chainParameters(entry), ") override;") + '\n';
    }
    writeFile(directory / "InterceptorEntries.inl", pure);
    writeFile(directory / "LayerEntries.inl", overrides);
}

void emitFunctionTable(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory) {
    std::string table = generatedNotice;
    table += "#pragma once\n\n"
             "#include \"platform/GL.h\"\n\n"
             "namespace ZLT::OGL {\n\n"
             "/// One pointer for each GL function outside GL 1.1, in the order of the chain's entries.\n"
             "struct FunctionTable {\n";
    std::string group;
    for (const EntryPoint& entry : entries) {
        if (entry.isCore11())
            continue;
        if (entry.group != group) {
            group = entry.group;
            table += "    // " + group + "\n";
        }
        table +=
            list(4, entry.result + "(APIENTRY* gl" + entry.name + ")(", glParameters(entry), ");") + '\n';
    }
    table += "};\n\n} // namespace ZLT::OGL\n";
    writeFile(directory / "FunctionTable.h", table);
}

void emitInterceptMacros(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory) {
    std::string text = generatedNotice;
    text += R"(#pragma once

/// @file
/// Sends the GL calls of an existing program through the chain: compile its sources again with this header in
/// front (`-include extensionator/gl_intercept.h`), or include it after the GL headers. Each `glName(...)`
/// then stands for the `cgm` entry of that name with the file and line of the call. The calls are C++, of 2011
/// or later, and a GL error is an exception. What is not a call (an address such as `&glFlush`) still means GL
/// itself.
///
/// The macros take every name that is followed by an opening bracket. So all headers that declare GL functions
/// or call them inline, and sources that call members of these names (`table().glUniform1i(...)`), come
/// before this header. A program that defines GL_GLEXT_PROTOTYPES in its sources, for functions that came
/// after GL 3.0, must define it before as well: on the command line, when this header is included there.

#ifndef __cplusplus
#error "gl_intercept.h needs a C++ compiler: build this source as C++"
#endif

// The GL headers come first: their declarations must not meet the macros.
#include "platform/GL.h"

#include "extensionator/InterceptCall.h"

)";
    for (const EntryPoint& entry : entries) {
        // The arguments stay together, since one of them may be a macro that stands for several.
        const bool none = entry.parameters.empty();
        text +=
            "#undef gl" + entry.name + "\n#define gl" + entry.name + (none ? "()" : "(...)") + " \\\n    ";
        if (takesTypedPointer(entry))
            text += "::ZLT::OGL::Intercept::call(&::ZLT::OGL::OpenGLInterceptor::cgm" + entry.name +
                    ", __FILE__, __LINE__)(__VA_ARGS__)\n";
        else
            text += "::ZLT::OGL::OpenGLInterceptor::Instance()->cgm" + entry.name +
                    (none ? "(__FILE__, __LINE__)\n" : "(__FILE__, __LINE__, __VA_ARGS__)\n");
    }
    writeFile(directory / "gl_intercept.h", text);
}

void emitErrorChecker(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    // What is special about these three stands in OpenGLErrorChecker.cpp.
    const std::vector<std::string> byHand = {"Begin", "End", "GetError"};
    for (const Topic& topic : topics) {
        std::string text = generatedNotice;
        text += "#include \"extensionator/OpenGLErrorChecker.inl\"\n\n"
                "#include \"extensionator/ExtensionManager.h\"\n\n"
                "namespace ZLT::OGL {\n";
        for (const EntryPoint* entry : topic.entries) {
            if (std::ranges::count(byHand, entry->name))
                continue;
            text += '\n' + list(0, entry->plainResult + " OpenGLErrorChecker::cgm" + entry->name + "(",
                                chainParameters(*entry), ") {\n");
            const std::string function = entry->isCore11()
                                             ? "gl" + entry->name
                                             : "ExtensionManager::Instance()->table().gl" + entry->name;
            const std::string keep = entry->hasResult() ? "const auto result = " : "";
            text += list(4, keep + function + "(", glArguments(*entry), ");\n");
            text += "    check(file, line);\n";
            if (entry->hasResult())
                text += "    return result;\n";
            text += "}\n";
        }
        text += "\n} // namespace ZLT::OGL\n";
        writeFile(directory / ("OpenGLErrorChecker_" + topic.name + ".cpp"), text);
    }
}

} // namespace generator
