#include "Emit.h"

namespace generator {

namespace {

constexpr const char* extensionNotice = "// Generated from tables/extensions.tsv.\n";
constexpr const char* wglNotice = "// Generated from tables/wgl_extension_functions.tsv.\n";

// One statement for each function, and the result: whether all were there.
std::string loads(const std::vector<std::string>& calls, const std::string& indent) {
    std::string text;
    for (const std::string& call : calls) {
        text += indent;
        text += &call == calls.data() ? "bool complete = " : "complete &= ";
        text += call + ";\n";
    }
    return text + indent + "return complete;\n";
}

std::string loaderBody(const Extension& extension, const Topic& topic) {
    if (extension.entryPoints == 0)
        return " { return true; }\n";
    std::vector<std::string> calls;
    for (const EntryPoint* entry : topic.entries)
        if (entry->group == extension.name)
            calls.push_back("load(table.gl" + entry->name + ", \"gl" + entry->name + "\")");
    return " {\n    FunctionTable& table = *tableExt_;\n" + loads(calls, "    ") + "}\n";
}

} // namespace

void emitExtensionHeaders(const std::vector<Extension>& extensions, const std::filesystem::path& directory) {
    std::string text = extensionNotice;
    text += "#pragma once\n\n"
            "namespace ZLT::OGL {\n\n"
            "/// The GL versions and the GL and WGL extensions that the library knows. The values are part "
            "of the\n"
            "/// interface; those between the last extension and EXTENSION_NOT_FOUND are not used.\n"
            "enum teExtension : int {\n";
    for (const Extension& extension : extensions)
        text += "    " + extension.enumerator() + " = " + std::to_string(extension.value) + ",\n";
    text += "    /// The answer for a name that isn't known.\n"
            "    EXTENSION_NOT_FOUND = 416,\n"
            "};\n\n} // namespace ZLT::OGL\n";
    writeFile(directory / "Extension.h", text);

    std::string loaders =
        std::string(extensionNotice) + "// For the class body of the extension manager.\n\n";
    for (const Extension& extension : extensions)
        if (!extension.isWgl())
            loaders += "bool " + extension.loader() + "();\n";
    writeFile(directory / "ExtensionLoaders.inl", loaders);
}

void emitExtensionLoading(const std::vector<Extension>& extensions, const std::vector<Topic>& topics,
                          const std::filesystem::path& directory) {
    std::string names = std::string(extensionNotice) + "// In the order of the enumerators.\n\n";
    std::string cases = std::string(extensionNotice) + "// For the switch over the GL extensions.\n\n";
    for (const Extension& extension : extensions) {
        names += "\"" + extension.name + "\",\n";
        if (!extension.isWgl())
            cases += "case " + extension.enumerator() + ":\n    return " + extension.loader() + "();\n";
    }
    writeFile(directory / "ExtensionNames.inl", names);
    writeFile(directory / "ExtensionCases.inl", cases);

    for (const Topic& topic : topics) {
        std::string text = extensionNotice;
        text += "#include \"extensionator/ExtensionManager.h\"\n"
                "#include \"extensionator/Load.h\"\n\n"
                "namespace ZLT::OGL {\n";
        for (const Extension& extension : extensions)
            if (!extension.isWgl() && topicNameOf(extension.name) == topic.name)
                text +=
                    "\nbool ExtensionManager::" + extension.loader() + "()" + loaderBody(extension, topic);
        text += "\n} // namespace ZLT::OGL\n";
        if (topic.name != "GL11")
            writeFile(directory / ("ExtensionLoading_" + topic.name + ".cpp"), text);
    }
}

void emitWglFunctions(const std::vector<Extension>& extensions, const std::vector<WglFunction>& functions,
                      const std::filesystem::path& headers, const std::filesystem::path& sources) {
    std::string declarations = wglNotice;
    declarations += R"(#pragma once

#include "Export.h"
#include "platform/GL.h"
#include "platform/Platform.h"

/// @file
/// One pointer for each function of the WGL extensions, for the whole process: null until an extension manager
/// loads the extension, and overwritten by each manager that does. ExtensionManager::isSupported() tells
/// whether the current context's display has the extension. On Linux they lead to the platform layer, which
/// names the ones that it has in its extension string.

// NOLINTBEGIN(bugprone-reserved-identifier)
namespace ZLT {
extern "C" {
)";
    std::string definitions = std::string(wglNotice) + "// The pointer variables.\n\n";
    std::string cases = std::string(wglNotice) + "// For the switch over the WGL extensions.\n\n";
    std::string globalNames;
    bool sharesCase = false;
    for (const Extension& extension : extensions) {
        if (!extension.isWgl())
            continue;
        std::vector<std::string> calls;
        for (const WglFunction& function : functions) {
            if (function.extension != extension.name)
                continue;
            if (calls.empty())
                declarations += "\n// " + extension.name + "\n";
            const std::string variable = "_wcgm" + function.name;
            // A variable with an initialiser and C linkage needs its own declaration in front.
            declarations += list(0, "extern ZLT_OGL_API " + function.result + "(WINAPI* " + variable + ")(",
                                 {function.parameters}, ");") +
                            '\n';
            definitions += list(0, function.result + "(WINAPI* " + variable + ")(", {function.parameters},
                                ") = nullptr;") +
                           '\n';
            globalNames += "using ZLT::" + variable + ";\n";
            calls.push_back("load(" + variable + ", \"wgl" + function.name + "\")");
        }
        // Those without functions that stand together share a line.
        if (sharesCase && !calls.empty())
            cases += "    return true;\n";
        sharesCase = calls.empty();
        cases += "case " + extension.enumerator() + ":";
        cases += calls.empty() ? "\n" : " {\n" + loads(calls, "    ") + "}\n";
    }
    declarations += "\n} // extern \"C\"\n} // namespace ZLT\n\n" + globalNames +
                    "// NOLINTEND(bugprone-reserved-identifier)\n";
    writeFile(headers / "WglFunctions.h", declarations);
    writeFile(sources / "WglFunctions.inl", definitions);
    if (sharesCase)
        cases += "    return true;\n";
    writeFile(sources / "WglCases.inl", cases);
}

void emitExtensionRows(const std::vector<Extension>& extensions, const std::vector<WglFunction>& functions,
                       const std::filesystem::path& directory) {
    std::string rows = extensionNotice;
    for (const Extension& extension : extensions)
        rows += "ZLT_EXTENSION(" + extension.enumerator() + ", \"" + extension.name + "\")\n";
    writeFile(directory / "Extensions.inl", rows);
    std::string wgl = wglNotice;
    for (const WglFunction& function : functions)
        wgl += "ZLT_WGL_ENTRY(\"" + function.extension + "\", " + function.name + ")\n";
    writeFile(directory / "WglEntryPoints.inl", wgl);
}

} // namespace generator
