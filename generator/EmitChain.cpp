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
/// then stands for the `cgm` entry of that name with the file and line of the call. The calls are C++, and a
/// GL error is an exception. What is not a call (an address such as `&glFlush`) still means GL itself.
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

#include "extensionator/OpenGLInterceptor.h"

)";
    for (const EntryPoint& entry : entries) {
        std::vector<std::string> names;
        std::vector<std::string> arguments = {"__FILE__", "__LINE__"};
        for (const Parameter& parameter : entry.parameters) {
            names.push_back(parameter.name);
            // The cast accepts what a C compiler does, a void* for any pointer, and either spelling where GL
            // headers differ: a const inside a pointer to pointers, two names of the 64-bit integers.
            const std::string& plain = parameter.type.plain;
            const bool typed = parameter.type.pointer && plain != "void*" && plain != "const void*";
            arguments.push_back(typed ? "(" + plain + ")(" + parameter.name + ")" : parameter.name);
        }
        std::string head = list(0, "#define gl" + entry.name + "(", names, ") \\\n");
        std::string body =
            list(4, "::ZLT::OGL::OpenGLInterceptor::Instance()->cgm" + entry.name + "(", arguments, ")");
        // A line end inside a macro needs its backslash.
        for (std::string* part : {&head, &body}) {
            for (std::string::size_type at = 0; (at = part->find('\n', at)) != std::string::npos; ++at)
                if (at > 0 && (*part)[at - 1] != '\\') {
                    part->insert(at, " \\");
                    at += 2;
                }
        }
        text += "#undef gl" + entry.name + '\n';
        text += head + body + '\n';
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
