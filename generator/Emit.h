#pragma once

#include "Table.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// @file
/// The call families. Each function writes the files of one family; the text of a file that is the same as
/// before is left alone, so that nothing is built again for it.

namespace generator {

/// The sources of a family are split by topic, so that no file is huge and every core has something to build.
struct Topic {
    std::string name; // "GL11": OpenGLTracer_GL11.cpp
    std::vector<const EntryPoint*> entries;
};
/// The topic to which a group of entry points belongs.
std::string topicNameOf(const std::string& group);
std::vector<Topic> topicsOf(const std::vector<EntryPoint>& entries);

/// The first line of every file that comes from the list of entry points.
inline constexpr const char* generatedNotice = "// Generated from tables/gl_entry_points.tsv.\n";

inline constexpr std::size_t columnLimit = 110;

/// Writes `text` to `path` if it differs from what stands there.
void writeFile(const std::filesystem::path& path, const std::string& text);

/// `head`, the parts with ", " between them, `tail`; broken after a comma where the line would grow past the
/// column limit, the following lines indented by four more than `indent` blanks.
std::string list(std::size_t indent, const std::string& head, const std::vector<std::string>& parts,
                 const std::string& tail);

/// "const char* file", "unsigned int line" and the parameters with the plain types of the chain.
std::vector<std::string> chainParameters(const EntryPoint& entry);
/// The parameters as the GL headers write them.
std::vector<std::string> glParameters(const EntryPoint& entry);
/// "file", "line" and the parameter names.
std::vector<std::string> chainArguments(const EntryPoint& entry);

/// Adds the inserters of ValueForms.h that write the parameters to `parts`: "Enumerant(mode, comma)". `last`
/// is what the last one takes along: ", closing".
void addArguments(std::vector<std::string>& parts, const EntryPoint& entry, const std::string& last);
/// "    out << a << b << c;", broken in front of "<<" where the line would grow past the column limit.
std::string insertions(const std::vector<std::string>& parts);
/// The last lines of a loader: the calls of load(), and the result, whether all were successful.
std::string loading(const std::vector<std::string>& loads);
/// The first line of the entry's override in the class `layer`, with the opening brace.
std::string layerHead(const EntryPoint& entry, const std::string& layer);
/// The last lines of it: the call of the next layer, and the closing brace.
std::string forwarding(const EntryPoint& entry);
/// Types of result and parameters: "void, unsigned int, unsigned int".
std::string signatureOf(const EntryPoint& entry);
/// The entries by their types, each with its place among those of the same types.
class EntriesByType {
public:
    explicit EntriesByType(const std::vector<Topic>& topics);
    std::size_t placeOf(const EntryPoint& entry) const { return places_.at(&entry); }
    const std::map<std::string, std::vector<const EntryPoint*>>& groups() const { return groups_; }

private:
    std::map<std::string, std::vector<const EntryPoint*>> groups_;
    std::map<const EntryPoint*, std::size_t> places_;
};

/// Whether the entry's floats are written as the stream writes them, without their bits.
bool showsPlainFloats(const EntryPoint& entry);

/// InterceptorEntries.inl, LayerEntries.inl: the declarations in the classes.
void emitDeclarations(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory);
/// FunctionTable.h.
void emitFunctionTable(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory);
/// Extension.h: the enumeration. ExtensionLoaders.inl: the loaders' declarations.
void emitExtensionHeaders(const std::vector<Extension>& extensions, const std::filesystem::path& directory);
/// ExtensionNames.inl, ExtensionCases.inl: what the extension manager looks up.
void emitExtensionNames(const std::vector<Extension>& extensions, const std::filesystem::path& directory);
/// ExtensionLoading_*.cpp: the loaders.
void emitExtensionLoading(const std::vector<Extension>& extensions, const std::vector<Topic>& topics,
                          const std::filesystem::path& directory);
/// WglFunctions.h among the headers; WglFunctions.inl and WglCases.inl among the sources.
void emitWglFunctions(const std::vector<Extension>& extensions, const std::vector<WglFunction>& functions,
                      const std::filesystem::path& headers, const std::filesystem::path& sources);
/// wglInterceptorEntries.inl, wglLayerEntries.inl: the declarations in the classes of the WGL chain.
void emitWglDeclarations(const std::vector<WglEntryPoint>& entries, const std::filesystem::path& directory);
/// wglErrorCheckerEntries.cpp: what the last layer of the WGL chain calls.
void emitWglErrorChecker(const std::vector<WglEntryPoint>& entries, const std::filesystem::path& directory);
/// gl_intercept.h.
void emitInterceptMacros(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory);
/// OpenGLErrorChecker_*.cpp.
void emitErrorChecker(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// OpenGLTracer_*.cpp.
void emitTracer(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// Throws std::runtime_error, with what differs and what to correct, unless as many functions have each kind
/// of form in recordings as the documentation says.
void checkRekorderSplit(const std::vector<EntryPoint>& entries);
/// OpenGLRekorder_*.cpp: all but the operations that have a form of their own and belong to no family.
void emitRekorder(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// EntryTable.inl: name, group and forms of the arguments of every entry. EntryPointers.inl: one macro call
/// for each.
void emitEntryTable(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory);
/// OpenGLEntry.h: the number of every entry by its name.
void emitEntryNumbers(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory);
/// EntriesByType.inl: pointers to the entries, those of the same types together.
void emitEntriesByType(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// OpenGLForwarder_*.cpp.
void emitForwarder(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// OpenGLWatchLayer_*.cpp.
void emitWatchLayer(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// OpenGLErrorReporter_*.cpp: all but the three that are special.
void emitErrorReporter(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// Exports_*.cpp: the functions that a foreign program calls in place of the driver's.
void emitExports(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// EntriesByName.inl, ExportedFunctions.inl, LaterFunctions.inl: what looks a function up by its name.
void emitExportedNames(const std::vector<EntryPoint>& entries, const std::vector<std::string>& later,
                       const std::filesystem::path& directory);
/// opengl32.def: what the library of that name exports. SystemFunctions.inl: what goes through it.
void emitSystemLibrary(const std::vector<EntryPoint>& entries, const std::vector<SystemFunction>& functions,
                       const std::filesystem::path& directory);
/// A layer of which each entry does its work in a template that all entries of the same types share.
struct SharedLayer {
    std::string name;                // "OpenGLWatchLayer"
    std::string header;              // "extensionator/OpenGLWatcher.inl"
    std::string work;                // the template: "watched"
    std::vector<std::string> byHand; // the entries that are not generated
    std::string space = "ZLT::OGL";
};
void emitSharedLayer(const std::vector<Topic>& topics, const std::filesystem::path& directory,
                     const SharedLayer& layer);
/// OpenGLCapture_*.cpp.
void emitCapture(const std::vector<Topic>& topics, const std::vector<Arguments>& arguments,
                 const std::filesystem::path& directory);
/// DriverCalls_*.cpp.
void emitDriverCalls(const std::vector<Topic>& topics, const std::filesystem::path& directory);
/// CapturedEntries.inl: forms and meanings of the entries. PlayedEntries.inl: how a player calls them.
void emitCapturedFunctions(const std::vector<EntryPoint>& entries, const std::vector<Arguments>& arguments,
                           const std::filesystem::path& directory);
/// A length of gl_arguments.tsv as C++.
std::string qualified(const std::string& length);
/// ReadPointers.inl: of each entry, what it reads of the client's memory. ReadingEntries.inl: which do.
/// NamedObjects.inl: the parameters that name objects which GL makes of any name.
void emitChecks(const std::vector<EntryPoint>& entries, const std::vector<Arguments>& arguments,
                const std::filesystem::path& directory);
/// gl_tokens.h.
void emitTokenHeader(const std::vector<Token>& tokens, const std::filesystem::path& directory);
/// TokenRows.inl.
void emitTokens(const std::vector<Token>& tokens, const std::filesystem::path& directory);
/// EntryPoints.inl: one macro call for each entry, for fakes and sweeps.
void emitEntryRows(const std::vector<EntryPoint>& entries, const std::filesystem::path& directory);
/// WglEntryPoints.inl: one macro call for each of the functions of the WGL extensions.
void emitWglRows(const std::vector<WglFunction>& functions, const std::filesystem::path& directory);

/// Rows of ProjectTemplate, with the content of each file. A file whose name ends with ".in" has words that
/// are replaced, and its name is without these letters. "others/a.h=/usr/include/a.h" gives it another name.
void emitFiles(const std::vector<std::string>& files, const std::filesystem::path& output);

} // namespace generator
