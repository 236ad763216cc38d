#include "Emit.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace {

std::ifstream open(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot read " + path.string());
    return in;
}

void generate(const std::filesystem::path& tables, const std::filesystem::path& output) {
    using namespace generator;
    std::ifstream extensionRows = open(tables / "extensions.tsv");
    std::ifstream entryRows = open(tables / "gl_entry_points.tsv");
    std::ifstream tokenRows = open(tables / "gl_tokens.tsv");
    std::ifstream wglRows = open(tables / "wgl_extension_functions.tsv");
    std::ifstream wglEntryRows = open(tables / "wgl_entry_points.tsv");
    const std::vector<Extension> extensions = readExtensions(extensionRows);
    const std::vector<EntryPoint> entries = readEntryPoints(entryRows, extensions);
    const std::vector<WglFunction> wglFunctions = readWglFunctions(wglRows, extensions);
    const std::vector<WglEntryPoint> wglEntries = readWglEntryPoints(wglEntryRows);
    std::ifstream laterRows = open(tables / "gl_later_functions.tsv");
    const std::vector<std::string> later = readLaterFunctions(laterRows, entries);
    std::ifstream systemRows = open(tables / "opengl32_functions.tsv");
    const std::vector<SystemFunction> systemFunctions = readSystemFunctions(systemRows);
    const std::vector<Token> tokens = readTokens(tokenRows);
    std::ifstream argumentRows = open(tables / "gl_arguments.tsv");
    const std::vector<Arguments> arguments = readArguments(argumentRows, entries);
    const std::vector<Topic> topics = topicsOf(entries);

    const std::filesystem::path headers = output / "include" / "extensionator";
    emitDeclarations(entries, headers);
    emitInterceptMacros(entries, headers);
    emitFunctionTable(entries, headers);
    emitEntryNumbers(entries, headers);
    emitExtensionHeaders(extensions, headers);
    emitWglDeclarations(wglEntries, headers / "win");

    const std::filesystem::path sources = output / "src" / "extensionator";
    emitExtensionNames(extensions, sources);
    emitExtensionLoading(extensions, topics, sources);
    emitWglFunctions(extensions, wglFunctions, headers / "win", sources);
    emitErrorChecker(topics, sources);
    emitWglErrorChecker(wglEntries, sources / "win");
    emitTracer(topics, sources);
    checkRekorderSplit(entries);
    emitRekorder(topics, sources);
    emitEntryTable(entries, sources);
    emitEntriesByType(topics, sources);
    emitForwarder(topics, sources);
    emitWatchLayer(topics, sources);
    emitErrorReporter(topics, sources);
    emitExports(topics, output / "src" / "intercept");
    emitExportedNames(entries, later, output / "src" / "intercept");
    emitSystemLibrary(entries, systemFunctions, output / "src" / "intercept");
    emitCapture(topics, arguments, output / "src" / "capture");
    emitDriverCalls(topics, output / "src" / "capture");
    emitCapturedFunctions(entries, arguments, output / "src" / "capture");
    emitChecks(entries, arguments, output / "src" / "intercept" / "checks");
    emitTokens(tokens, sources);
    emitTokenHeader(tokens, headers);
    emitEntryRows(entries, output / "tests");
    emitWglRows(wglFunctions, sources);
}

} // namespace

int main(int argc, char** argv) {
    const bool embeds = argc > 3 && argv[1] == std::string("embed");
    if (argc != 3 && !embeds) {
        std::cerr << "usage: zlt_generator TABLES OUTPUT\n"
                     "       zlt_generator embed OUTPUT FILE...\n";
        return 2;
    }
    try {
        if (embeds)
            generator::emitFiles({argv + 3, argv + argc}, argv[2]);
        else
            generate(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::cerr << "zlt_generator: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
