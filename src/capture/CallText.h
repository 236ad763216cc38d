#pragma once

#include "capture/CaptureFile.h"
#include "capture/Export.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// Calls of a capture as people read them.

namespace ZLT::Capture {

/// `glBindTexture(GL_TEXTURE_2D, texture 1)`, with what pointers point at (`->` for what came back); what is
/// large has its size in place of it.
ZLT_CAPTURE_API std::string callText(const CapturedCall& call);
/// The enumerant that an integer or a float of the call is, as in glTexParameteri; nothing for a number.
ZLT_CAPTURE_API std::optional<std::uint32_t> constantOf(const CapturedCall& call, std::size_t index);
/// What an enumerant is called as an argument of the function: "GL_TRIANGLES"; a number for what has no name.
/// @param index  of the parameter; of none for the result
ZLT_CAPTURE_API std::string constantText(const Function& function, std::size_t index, std::uint32_t value);
/// "GL_TEXTURE_2D"; a number for what is no token.
ZLT_CAPTURE_API std::string tokenText(std::uint32_t value);
/// One element of memory, sign extended.
ZLT_CAPTURE_API std::uint64_t elementAt(std::string_view bytes, char form, std::size_t index);
/// Several texts in one value.
ZLT_CAPTURE_API std::vector<std::string_view> textsOf(const CapturedValue& value);
ZLT_CAPTURE_API std::string_view withoutZero(std::string_view text);
/// Whether its elements are written out: there are few.
ZLT_CAPTURE_API bool isWrittenOut(const Parameter& parameter, const CapturedValue& value);

} // namespace ZLT::Capture
