#include "Emit.h"

namespace generator {

namespace {

constexpr const char* wglNotice = "// Generated from tables/wgl_entry_points.tsv.\n";

// The checker uses neither file nor line.
std::vector<std::string> unnamedCallSite(const WglEntryPoint& entry) {
    std::vector<std::string> parts = chainParameters(entry);
    parts[0] = "const char*";
    parts[1] = "unsigned int";
    return parts;
}

} // namespace

void emitWglDeclarations(const std::vector<WglEntryPoint>& entries, const std::filesystem::path& directory) {
    std::string pure = std::string(wglNotice) + "// The order is the order of the virtual slots.\n\n";
    std::string overrides = std::string(wglNotice) + "// For the class body of a layer of the WGL chain.\n\n";
    for (const WglEntryPoint& entry : entries) {
        const std::string head = entry.plainResult + " wcgm" + entry.name + "(";
        pure += list(0, "virtual " + head, chainParameters(entry), ") = 0;") + '\n';
        overrides += list(0, head, chainParameters(entry), ") override;") + '\n';
    }
    writeFile(directory / "wglInterceptorEntries.inl", pure);
    writeFile(directory / "wglLayerEntries.inl", overrides);
}

void emitWglErrorChecker(const std::vector<WglEntryPoint>& entries, const std::filesystem::path& directory) {
    std::string text = wglNotice;
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

} // namespace generator
