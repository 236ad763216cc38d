#pragma once

#include <cstddef>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <vector>

/// @file
/// The tables, read and checked. A table that is wrong in any way stops the build with the row number.

namespace generator {

/// "gl_entry_points.tsv, row 12: ...": the file, the row (the heading is row 1) and what is wrong there.
class TableError : public std::runtime_error {
public:
    TableError(const std::string& table, std::size_t row, const std::string& what)
        : std::runtime_error(table + ", row " + std::to_string(row) + ": " + what) {}
};

/// How a parameter becomes text; one form for each kind of GL type.
enum class ValueForm {
    enumerant,
    boolean,
    number,    // inserted as it is: decimal, by the stream's flags
    handle,    // GLhandleARB
    low32,     // 64-bit sizes and offsets
    character, // GLbyte and GLubyte by value
    floating,  // GLfloat: makeFloat() and the value
    text,      // pointer to characters
    pointer,
};

struct Type {
    std::string gl;    // as the GL headers write it: "const GLubyte*"
    std::string plain; // as the chain writes it: "const unsigned char*"
    ValueForm form = ValueForm::number;
    bool pointer = false;
    bool pointerTo64Bit = false; // GLint64* is long* on one platform and long long* on another
};

struct Parameter {
    Type type;
    std::string name;
    std::string array; // "[16]" where the GL header uses array syntax, else empty
};

struct EntryPoint {
    std::size_t slot = 0; // virtual slot
    std::string group;
    std::string name;        // without prefix: "BindTexture"
    std::string result;      // GL type
    std::string plainResult; // chain type
    std::vector<Parameter> parameters;

    bool isCore11() const { return group == "GL_VERSION_1_1"; }
    bool hasResult() const { return result != "void"; }
};

/// Number of entries linked by name; the slots of the function table count from there.
inline constexpr std::size_t core11Count = 336;

/// The value that stands for a name that isn't known; those of extensions are smaller.
inline constexpr unsigned extensionNotFound = 416;

struct Extension {
    unsigned value = 0;
    std::string name;
    std::size_t entryPoints = 0;

    bool isWgl() const { return name.starts_with("WGL_"); }
    /// "OPEN_GL_1_2", "GL_ARB_MULTITEXTURE", "WGL_ARB_PBUFFER".
    std::string enumerator() const;
    /// "init_GL_VERSION_1_2": the member that loads it.
    std::string loader() const { return "init_" + name; }
};

/// A function of a WGL extension: a pointer variable of the library.
struct WglFunction {
    std::string extension;
    std::string name; // without prefix: "SwapIntervalEXT"
    std::string result;
    std::string parameters; // as one text: "HDC hDC, UINT uState"
};

/// A function of the WGL chain. It has no group, and its plain types are those of the platform's headers.
struct WglEntryPoint : EntryPoint {
    std::string function; // the platform's: "wglCopyContext", "SwapBuffers"
};

/// Number of entries of the WGL chain. wglRekorder.cpp has a form for each of them.
inline constexpr std::size_t wglEntryPointCount = 20;

struct Token {
    unsigned long value = 0;
    std::string name;
};

/// Reads extensions.tsv: ascending values, distinct names. Values are part of the library's interface, so the
/// ones that were given stay, and what is new stands at the end.
std::vector<Extension> readExtensions(std::istream& in);

/// Reads gl_entry_points.tsv. Checks the order, the slots, the names, the types, and that each group stands
/// in the order of `extensions` with the number of entries given there. As with the values of extensions,
/// slots that were given stay.
std::vector<EntryPoint> readEntryPoints(std::istream& in, const std::vector<Extension>& extensions);

/// Reads wgl_extension_functions.tsv. Checks the order, the names and the types, and that each extension has
/// the number of functions given in `extensions`.
std::vector<WglFunction> readWglFunctions(std::istream& in, const std::vector<Extension>& extensions);

/// Reads wgl_entry_points.tsv. Checks the slots, the names, the types and the number of entries.
std::vector<WglEntryPoint> readWglEntryPoints(std::istream& in);

/// Reads gl_tokens.tsv: ascending 32-bit values, distinct names.
std::vector<Token> readTokens(std::istream& in);

/// Reads gl_later_functions.tsv: names in ascending order, none of which is an entry's.
std::vector<std::string> readLaterFunctions(std::istream& in, const std::vector<EntryPoint>& entries);

/// What a pointer, a name or a location means; see readArguments().
struct Argument {
    std::string pointer; // "in", "out", "array", "address", "kept", "text", or empty for what is no pointer
    std::string length;  // of what "in" and "out" point at, in elements
    std::string object;  // "texture", "uniform location"
};
/// Of one entry point: one for each parameter, the last one for the result.
using Arguments = std::vector<Argument>;

/// Reads gl_arguments.tsv: what the entries' pointers point at, in the order of the entries. Checks that each
/// pointer has a meaning, and that a length is made of what a length can be made of: parameters, numbers,
/// tokens, and the functions of src/capture/Sizes.h.
/// @return one for each entry
std::vector<Arguments> readArguments(std::istream& in, const std::vector<EntryPoint>& entries);

/// What opengl32.dll exports beside the functions of GL 1.1.
struct SystemFunction {
    std::string name;
    bool isOwn = false; // it has a function of its own in src/intercept; else it goes straight through
};
/// Reads opengl32_functions.tsv: names in ascending order.
std::vector<SystemFunction> readSystemFunctions(std::istream& in);

/// The type of a parameter or result; throws std::invalid_argument on one that isn't known.
Type typeOf(const std::string& gl);
/// The same for a function of WGL.
Type wglTypeOf(const std::string& wgl);

} // namespace generator
