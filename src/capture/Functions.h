#pragma once

#include "capture/Export.h"
#include "capture/Records.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// The functions whose records a capture has: 1,833 of GL, and the events.

namespace ZLT::Capture {

/// What is known of one parameter.
struct Parameter {
    char form = 0;           ///< see Function::form
    char element = 0;        ///< of a pointer: the form of what it points at, v for bytes
    std::string_view name;   ///< "target"; of an event or an unknown function: empty
    std::string_view object; ///< "texture"; empty for what names none
    std::string_view length; ///< as in tables/gl_arguments.tsv; "packed" for pixels that GL writes
};

/// What a record of a function is made of.
///
/// The form has a letter for each parameter, and behind `>` one for the result: e (enumerant), u, i, s, S, C,
/// c, l, L (integers: unsigned 32 bits, 32 bits, 16 bits, unsigned 16, unsigned 8, 8, 64, unsigned 64), b
/// (boolean), f, d (floats), y (sync object), t (text with a zero byte), x (texts), n (lists of indices), a
/// (address), w (bytes, of events alone), p and o with a letter for what they point at (read, written; e, u,
/// i, ..., v for bytes, h for half floats, a for pointers).
struct Function {
    std::string name; ///< "glBindTexture"; an event's: "Swap"
    std::string form;
    std::vector<Parameter> parameters;
    Parameter result;         ///< without a form: none
    std::string_view group;   ///< what brought it: "GL_VERSION_1_1", "GL_ARB_imaging"; of an event: empty
    std::uint32_t number = 0; ///< of its records, in captures of this version
    bool isCall() const { return number >= firstEntry; }
};

/// By the number of its records; null for a number that is no function's.
ZLT_CAPTURE_API const Function* functionOf(std::uint32_t number);
/// By the name, "glBindTexture".
ZLT_CAPTURE_API const Function* functionNamed(std::string_view name);
/// Bytes of a value with this form.
ZLT_CAPTURE_API std::size_t sizeOfForm(char form);
/// Whether what GL writes there is compared: pictures, and the contents of buffers.
bool isReadBack(const Function& function, const Parameter& parameter);
/// The parameters of a form that comes from a file.
/// @throws FormatError for letters that mean nothing
Function readForm(std::string name, std::string form);

} // namespace ZLT::Capture
