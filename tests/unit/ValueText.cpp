#include "ValueText.h"

#include "extensionator/TokenName.h"

#include <map>
#include <sstream>

namespace ZLT::OGL {

using FakeGL::Value;

namespace {

// How a value of each type is written that is not a pointer, a float or a size.
using Form = void (*)(std::ostream&, const Value&);
template <class T>
constexpr Form number = [](std::ostream& out, const Value& value) { out << value.as<T>(); };
const std::map<std::string, Form> formsByValue = {
    {"GLenum", [](std::ostream& out, const Value& value) { out << TokenName(value.as<unsigned int>()); }},
    {"GLboolean",
     [](std::ostream& out, const Value& value) { out << boolToString(value.as<unsigned char>()); }},
    {"GLhandleARB",
     [](std::ostream& out, const Value& value) { out << "(GLhandleARB)" << value.as<unsigned>(); }},
    {"GLuint", number<unsigned int>},
    {"GLbitfield", number<unsigned int>},
    {"GLhalfNV", number<unsigned short>},
    {"GLint", number<int>},
    {"GLsizei", number<int>},
    {"GLshort", number<short>},
    {"GLushort", number<unsigned short>},
    {"GLdouble", number<double>},
    {"GLclampd", number<double>},
    {"GLuint64", number<unsigned long long>},
    {"GLuint64EXT", number<unsigned long long>},
    {"GLbyte", number<signed char>},
    {"GLubyte", number<unsigned char>}}; // the last two: one raw character
const std::set<std::string> textPointers = {"GLchar*", "GLcharARB*", "GLbyte*", "GLubyte*", "GLboolean*"};
const std::set<std::string> sizes = {"GLintptr", "GLsizeiptr", "GLintptrARB", "GLsizeiptrARB"};

} // namespace

const std::set<std::string> plainFloats = {"FragmentMaterialfEXT", "FragmentMaterialfSGIX",
                                           "ImageTransformParameterfHP", "PixelTransformParameterfEXT"};

std::string textOf(const Entry& entry, std::string type, const Value& value) {
    if (type.starts_with("const "))
        type.erase(0, 6);
    std::ostringstream out;
    if (textPointers.contains(type)) {
        out << value.as<const char*>();
    } else if (type.ends_with('*') || type == "GLsync") {
        char digits[17];
        const auto address = reinterpret_cast<std::uintptr_t>(value.as<void*>());
        std::snprintf(digits, sizeof(digits), "%016llX", static_cast<unsigned long long>(address));
        out << digits;
    } else if (sizes.contains(type)) {
        out << static_cast<int>(value.as<long long>() & 0xFFFFFFFF);
    } else if (type != "GLfloat" && type != "GLclampf") {
        formsByValue.at(type)(out, value);
    } else if (plainFloats.contains(entry.name)) {
        out << value.as<float>();
    } else {
        int bits;
        const float real = value.as<float>();
        std::memcpy(&bits, &real, sizeof(bits));
        out << "makeFloat(" << bits << ") /* " << real << " */";
    }
    return out.str();
}

} // namespace ZLT::OGL
