#include "Table.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string_view>

namespace generator {

namespace {

struct Scalar {
    const char* plain;
    ValueForm byValue;
    bool characterSized = false;
    bool is64Bit = false;
};

// Every GL type that may stand in the table, without const and stars. A half float travels by value as 32
// bits in the chain; a pointer to half floats points at 16-bit values (see typeOf).
const std::map<std::string, Scalar>& scalars() {
    using enum ValueForm;
    static const std::map<std::string, Scalar> table = {
        {"void", {"void", pointer}},
        {"GLenum", {"unsigned int", enumerant}},
        {"GLuint", {"unsigned int", number}},
        {"GLbitfield", {"unsigned int", number}},
        {"GLhandleARB", {"unsigned int", handle}},
        {"GLhalfNV", {"unsigned int", number}},
        {"GLint", {"int", number}},
        {"GLsizei", {"int", number}},
        {"GLfloat", {"float", floating}},
        {"GLclampf", {"float", floating}},
        {"GLdouble", {"double", number}},
        {"GLclampd", {"double", number}},
        {"GLboolean", {"unsigned char", boolean, true}},
        {"GLubyte", {"unsigned char", character, true}},
        {"GLbyte", {"signed char", character, true}},
        {"GLchar", {"char", character, true}},
        {"GLcharARB", {"char", character, true}},
        {"GLshort", {"short", number}},
        {"GLushort", {"unsigned short", number}},
        {"GLintptr", {"long long", low32, false, true}},
        {"GLsizeiptr", {"long long", low32, false, true}},
        {"GLintptrARB", {"long long", low32, false, true}},
        {"GLsizeiptrARB", {"long long", low32, false, true}},
        {"GLint64", {"long long", number, false, true}},
        {"GLint64EXT", {"long long", number, false, true}},
        {"GLuint64", {"unsigned long long", number, false, true}},
        {"GLuint64EXT", {"unsigned long long", number, false, true}},
        {"GLsync", {"struct __GLsync*", pointer}},
    };
    return table;
}

// The types of the platform's headers and of GL that functions of WGL take and return.
constexpr std::string_view wglTypes[] = {"void",
                                         "char",
                                         "int",
                                         "unsigned int",
                                         "unsigned long",
                                         "float",
                                         "BOOL",
                                         "DWORD",
                                         "UINT",
                                         "INT",
                                         "INT32",
                                         "INT64",
                                         "USHORT",
                                         "FLOAT",
                                         "HANDLE",
                                         "HDC",
                                         "HGLRC",
                                         "PROC",
                                         "LPCSTR",
                                         "LPVOID",
                                         "COLORREF",
                                         "WGLSWAP",
                                         "LPGLYPHMETRICSFLOAT",
                                         "LPLAYERPLANEDESCRIPTOR",
                                         "HPBUFFERARB",
                                         "HPBUFFEREXT",
                                         "HGPUNV",
                                         "PGPU_DEVICE",
                                         "HPVIDEODEV",
                                         "HVIDEOOUTPUTDEVICENV",
                                         "GLboolean",
                                         "GLushort",
                                         "GLuint",
                                         "GLsizei",
                                         "GLfloat"};

// "const GLubyte*" in its parts.
struct Spelling {
    explicit Spelling(const std::string& text)
        : base(text.substr(0, text.find('*'))), stars(text.substr(base.size())),
          isConst(base.starts_with("const ")) {
        if (isConst)
            base.erase(0, 6);
    }
    bool isSound() const {
        return std::ranges::all_of(stars, [](char c) { return c == '*'; }) && (!isConst || !stars.empty());
    }

    std::string base;
    std::string stars;
    bool isConst;
};

} // namespace

Type typeOf(const std::string& gl) {
    const Spelling spelling(gl);
    const auto found = scalars().find(spelling.base);
    if (found == scalars().end() || !spelling.isSound())
        throw std::invalid_argument("unknown type '" + gl + "'");

    const Scalar& scalar = found->second;
    Type type;
    type.gl = gl;
    type.pointer = !spelling.stars.empty();
    const bool halfPointer = spelling.base == "GLhalfNV" && type.pointer;
    type.plain = (spelling.isConst ? "const " : "") +
                 std::string(halfPointer ? "unsigned short" : scalar.plain) + spelling.stars;
    type.pointerTo64Bit = type.pointer && scalar.is64Bit;
    if (!type.pointer)
        type.form = scalar.byValue;
    else
        type.form = spelling.stars == "*" && scalar.characterSized ? ValueForm::text : ValueForm::pointer;
    return type;
}

Type wglTypeOf(const std::string& wgl) {
    const Spelling spelling(wgl);
    if (std::ranges::count(wglTypes, spelling.base) == 0 || !spelling.isSound())
        throw std::invalid_argument("unknown type '" + wgl + "'");
    Type type;
    type.gl = type.plain = wgl;
    type.pointer = !spelling.stars.empty();
    return type;
}

} // namespace generator
