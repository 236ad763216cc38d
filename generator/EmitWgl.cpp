#include "Emit.h"

namespace generator {

namespace {

constexpr const char* chainNotice = "// Generated from tables/wgl_entry_points.tsv.\n";
constexpr const char* functionNotice = "// Generated from tables/wgl_extension_functions.tsv.\n";

// The checker uses neither file nor line.
std::vector<std::string> unnamedCallSite(const WglEntryPoint& entry) {
    std::vector<std::string> parts = chainParameters(entry);
    parts[0] = "const char*";
    parts[1] = "unsigned int";
    return parts;
}

// An extension with its functions, of which it may have none.
struct WglGroup {
    const Extension* extension;
    std::vector<const WglFunction*> functions;
};

// The functions stand in the order of the extensions.
std::vector<WglGroup> groupsOf(const std::vector<Extension>& extensions,
                               const std::vector<WglFunction>& functions) {
    std::vector<WglGroup> groups;
    auto function = functions.begin();
    for (const Extension& extension : extensions) {
        if (!extension.isWgl())
            continue;
        WglGroup& group = groups.emplace_back(WglGroup{&extension, {}});
        for (; function != functions.end() && function->extension == extension.name; ++function)
            group.functions.push_back(&*function);
    }
    return groups;
}

std::string variableOf(const WglFunction& function) { return "_wcgm" + function.name; }

std::string pointer(const std::string& qualifiers, const WglFunction& function, const std::string& tail) {
    return list(0, qualifiers + function.result + "(WINAPI* " + variableOf(function) + ")(",
                {function.parameters}, ")" + tail) +
           '\n';
}

std::string functionHeader(const std::vector<WglGroup>& groups) {
    std::string text = functionNotice;
    text += R"(#pragma once

#include "Export.h"
#include "platform/GL.h"
#include "platform/Platform.h"

/// @file
/// One pointer for each function of the WGL extensions, for the whole process: null until an extension manager
/// loads the extension, and overwritten by each manager that does. ExtensionManager::isSupported() says
/// whether the current context's display has the extension. On Linux they are functions of the platform
/// layer, whose extension string names the extensions that it has.

// NOLINTBEGIN(bugprone-reserved-identifier)
namespace ZLT {
extern "C" {
)";
    std::string globalNames;
    for (const WglGroup& group : groups) {
        if (!group.functions.empty())
            text += "\n// " + group.extension->name + "\n";
        for (const WglFunction* function : group.functions) {
            // A variable with an initialiser and C linkage needs its own declaration in front.
            text += pointer("extern ZLT_OGL_API ", *function, ";");
            globalNames += "using ZLT::" + variableOf(*function) + ";\n";
        }
    }
    return text + "\n} // extern \"C\"\n} // namespace ZLT\n\n" + globalNames +
           "// NOLINTEND(bugprone-reserved-identifier)\n";
}

std::string functionDefinitions(const std::vector<WglFunction>& functions) {
    std::string text = functionNotice;
    text += "// The pointer variables.\n\n";
    for (const WglFunction& function : functions)
        text += pointer("", function, " = nullptr;");
    return text;
}

std::string functionCases(const std::vector<WglGroup>& groups) {
    std::string text = functionNotice;
    text += "// For the switch over the WGL extensions.\n\n";
    for (std::size_t i = 0; i < groups.size(); ++i) {
        text += "case " + groups[i].extension->enumerator() + ":";
        if (!groups[i].functions.empty()) {
            std::vector<std::string> loads;
            for (const WglFunction* function : groups[i].functions)
                loads.push_back("load(" + variableOf(*function) + ", \"wgl" + function->name + "\")");
            text += " {\n" + loading(loads) + "}\n";
            continue;
        }
        text += '\n';
        // Those without functions that stand together share the line.
        if (i + 1 == groups.size() || !groups[i + 1].functions.empty())
            text += "    return true;\n";
    }
    return text;
}

} // namespace

void emitWglDeclarations(const std::vector<WglEntryPoint>& entries, const std::filesystem::path& directory) {
    std::string pure = std::string(chainNotice) + "// The order is the order of the virtual slots.\n\n";
    std::string overrides =
        std::string(chainNotice) + "// For the class body of a layer of the WGL chain.\n\n";
    for (const WglEntryPoint& entry : entries) {
        const std::string head = entry.plainResult + " wcgm" + entry.name + "(";
        pure += list(0, "virtual " + head, chainParameters(entry), ") = 0;") + '\n';
        overrides += list(0, head, chainParameters(entry), ") override;") + '\n';
    }
    writeFile(directory / "wglInterceptorEntries.inl", pure);
    writeFile(directory / "wglLayerEntries.inl", overrides);
}

void emitWglErrorChecker(const std::vector<WglEntryPoint>& entries, const std::filesystem::path& directory) {
    std::string text = chainNotice;
    text += "#include \"extensionator/win/wglErrorChecker.h\"\n\n"
            "namespace ZLT::OGL {\n";
    for (const WglEntryPoint& entry : entries) {
        if (entry.name == "MakeCurrent") // in wglErrorChecker.cpp
            continue;
        std::vector<std::string> arguments;
        for (const Parameter& parameter : entry.parameters)
            arguments.push_back(parameter.name);
        text += '\n' + list(0, entry.plainResult + " wglErrorChecker::wcgm" + entry.name + "(",
                            unnamedCallSite(entry), ") {\n");
        text += list(4, "return " + entry.function + "(", arguments, ");\n}\n");
    }
    text += "\n} // namespace ZLT::OGL\n";
    writeFile(directory / "wglErrorCheckerEntries.cpp", text);
}

void emitWglFunctions(const std::vector<Extension>& extensions, const std::vector<WglFunction>& functions,
                      const std::filesystem::path& headers, const std::filesystem::path& sources) {
    const std::vector<WglGroup> groups = groupsOf(extensions, functions);
    writeFile(headers / "WglFunctions.h", functionHeader(groups));
    writeFile(sources / "WglFunctions.inl", functionDefinitions(functions));
    writeFile(sources / "WglCases.inl", functionCases(groups));
}

void emitWglRows(const std::vector<WglFunction>& functions, const std::filesystem::path& directory) {
    std::string rows = functionNotice;
    for (const WglFunction& function : functions)
        rows += "ZLT_WGL_ENTRY(\"" + function.extension + "\", " + function.name + ")\n";
    writeFile(directory / "WglEntryPoints.inl", rows);
}

} // namespace generator
