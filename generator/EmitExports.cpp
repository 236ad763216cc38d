// What a foreign program is given in place of the driver's functions.

#include "Emit.h"

#include <algorithm>

namespace generator {

namespace {

// As a C compiler passes it: the chain widens half floats, the function has 16 bits.
std::string exportedType(const Type& type) {
    const bool isHalf = !type.pointer && type.gl.starts_with("GLhalf");
    return isHalf ? "unsigned short" : type.plain;
}

} // namespace

void emitExports(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    const EntriesByType byType(topics);
    for (const Topic& topic : topics) {
        std::string text = std::string(generatedNotice) + "#include \"intercept/Intercepted.h\"\n\n"
                                                          "using ZLT::Interception::intercepted;\n";
        for (const EntryPoint* entry : topic.entries) {
            std::vector<std::string> parameters;
            std::vector<std::string> arguments = {"__builtin_return_address(0)",
                                                  std::to_string(byType.placeOf(*entry))};
            for (const Parameter& parameter : entry->parameters) {
                parameters.push_back(exportedType(parameter.type) + " " + parameter.name);
                arguments.push_back(parameter.name);
            }
            text += '\n' + list(0, "ZLT_INTERCEPTED " + entry->plainResult + " gl" + entry->name + "(",
                                parameters, ") {\n");
            // The layers' own question is not the program's.
            if (entry->name == "GetError")
                text += "    if (ZLT::Interception::thread.inside)\n"
                        "        return ZLT::Interception::errorForLayers();\n";
            text += list(4,
                         std::string(entry->hasResult() ? "return " : "") + "intercepted<" +
                             signatureOf(*entry) + ">(",
                         arguments, ");\n}\n");
        }
        writeFile(directory / ("Exports_" + topic.name + ".cpp"), text);
    }
}

void emitExportedNames(const std::vector<EntryPoint>& entries, const std::vector<std::string>& later,
                       const std::filesystem::path& directory) {
    std::vector<const EntryPoint*> sorted;
    sorted.reserve(entries.size());
    for (const EntryPoint& entry : entries)
        sorted.push_back(&entry);
    std::ranges::sort(sorted, {}, &EntryPoint::name);
    std::string text = generatedNotice;
    text += "// The numbers of the entries, in the order of their names.\n"
            "constexpr unsigned short entriesByName[] = {\n";
    for (const EntryPoint* entry : sorted)
        text += "    " + std::to_string(entry->slot) + ", // " + entry->name + '\n';
    text += "};\n";
    writeFile(directory / "EntriesByName.inl", text);

    text = "// Generated from tables/gl_entry_points.tsv.\n"
           "// A declaration of each exported function, and a row with its address.\n";
    for (const EntryPoint& entry : entries)
        text += "extern \"C\" void gl" + entry.name + "();\n";
    text += "const RealFunction exportedFunctions[] = {\n";
    for (const EntryPoint& entry : entries)
        text += "    gl" + entry.name + ",\n";
    text += "};\n";
    writeFile(directory / "ExportedFunctions.inl", text);

    text = "// Generated from tables/gl_later_functions.tsv: X(place, name) for each.\n";
    for (std::size_t i = 0; i < later.size(); ++i)
        text += "X(" + std::to_string(i) + ", gl" + later[i] + ")\n";
    writeFile(directory / "LaterFunctions.inl", text);
}

void emitSystemLibrary(const std::vector<EntryPoint>& entries, const std::vector<SystemFunction>& functions,
                       const std::filesystem::path& directory) {
    std::vector<std::string> names;
    std::string through =
        "// Generated from tables/opengl32_functions.tsv: X(place, name) for each that goes through.\n";
    std::size_t place = 0;
    for (const SystemFunction& function : functions) {
        names.push_back(function.name);
        if (!function.isOwn)
            through += "X(" + std::to_string(place++) + ", " + function.name + ")\n";
    }
    for (const EntryPoint& entry : entries)
        if (entry.isCore11())
            names.push_back("gl" + entry.name);
    // The system's ordinals are the places in the order of the names.
    std::ranges::sort(names);
    std::string text = "; Generated from tables/gl_entry_points.tsv and tables/opengl32_functions.tsv.\n"
                       "LIBRARY opengl32.dll\nEXPORTS\n";
    for (std::size_t i = 0; i < names.size(); ++i)
        text += "    " + names[i] + " @" + std::to_string(i + 1) + '\n';
    writeFile(directory / "opengl32.def", text);
    // By these the layers' objects call what a library would export.
    std::string imports = generatedNotice;
    for (const EntryPoint& entry : entries)
        if (entry.isCore11())
            imports += "X(gl" + entry.name + ")\n";
    writeFile(directory / "ImportedFunctions.inl", imports);
    writeFile(directory / "SystemFunctions.inl", through);
}

} // namespace generator
