#include "Emit.h"

#include <map>

namespace generator {

namespace {

constexpr const char* extensionNotice = "// Generated from tables/extensions.tsv.\n";

// The statements that load the functions of each group of entry points, by the group's name.
std::map<std::string, std::vector<std::string>> loadsOf(const Topic& topic) {
    std::map<std::string, std::vector<std::string>> loads;
    for (const EntryPoint* entry : topic.entries)
        loads[entry->group].push_back("load(table.gl" + entry->name + ", \"gl" + entry->name + "\")");
    return loads;
}

std::string enumeration(const std::vector<Extension>& extensions) {
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
            "    EXTENSION_NOT_FOUND = " +
            std::to_string(extensionNotFound) +
            ",\n"
            "};\n\n} // namespace ZLT::OGL\n";
    return text;
}

} // namespace

void emitExtensionHeaders(const std::vector<Extension>& extensions, const std::filesystem::path& directory) {
    std::string loaders = extensionNotice;
    loaders += "// For the class body of the extension manager.\n\n";
    for (const Extension& extension : extensions)
        if (!extension.isWgl())
            loaders += "bool " + extension.loader() + "();\n";
    writeFile(directory / "Extension.h", enumeration(extensions));
    writeFile(directory / "ExtensionLoaders.inl", loaders);
}

void emitExtensionNames(const std::vector<Extension>& extensions, const std::filesystem::path& directory) {
    std::string names = extensionNotice;
    names += "// In the order of the enumerators.\n\n";
    std::string cases = extensionNotice;
    cases += "// For the switch over the GL extensions.\n\n";
    for (const Extension& extension : extensions) {
        names += "\"" + extension.name + "\",\n";
        if (!extension.isWgl())
            cases += "case " + extension.enumerator() + ":\n    return " + extension.loader() + "();\n";
    }
    writeFile(directory / "ExtensionNames.inl", names);
    writeFile(directory / "ExtensionCases.inl", cases);
}

void emitExtensionLoading(const std::vector<Extension>& extensions, const std::vector<Topic>& topics,
                          const std::filesystem::path& directory) {
    for (const Topic& topic : topics) {
        if (topic.name == "GL11") // linked by name
            continue;
        const std::map<std::string, std::vector<std::string>> loads = loadsOf(topic);
        std::string text = extensionNotice;
        text += "#include \"extensionator/ExtensionManager.h\"\n"
                "#include \"extensionator/Load.h\"\n\n"
                "namespace ZLT::OGL {\n";
        for (const Extension& extension : extensions) {
            if (extension.isWgl() || topicNameOf(extension.name) != topic.name)
                continue;
            text += "\nbool ExtensionManager::" + extension.loader() + "()";
            if (const auto found = loads.find(extension.name); found != loads.end())
                text += " {\n    FunctionTable& table = *tableExt_;\n" + loading(found->second) + "}\n";
            else
                text += " { return true; }\n";
        }
        text += "\n} // namespace ZLT::OGL\n";
        writeFile(directory / ("ExtensionLoading_" + topic.name + ".cpp"), text);
    }
}

} // namespace generator
