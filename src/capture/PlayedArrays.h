#pragma once

#include "capture/CaptureFile.h"
#include "extensionator/OpenGLInterceptor.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZLT::Capture {

class CapturedContext;

/// What a draw reads of one array.
struct PlayedArray {
    ArrayKind kind;
    std::uint32_t index = 0;
    std::int32_t size = 0;
    std::uint32_t type = 0;
    std::int32_t stride = 0;
    std::uint32_t flags = 0;
    std::uint64_t first = 0; ///< the element with which the bytes begin
    std::string_view bytes;
    std::vector<std::shared_ptr<const std::string>> held; ///< in which the bytes lie

    const char* data() const { return bytes.data(); }
};

/// Of the record of an array.
PlayedArray arrayOf(const CapturedCall& call);

/// Points the arrays of the context at these, for the draw within its life. Nothing for no arrays.
class ArraysForDraw {
public:
    ArraysForDraw(OGL::OpenGLInterceptor& gl, const CapturedContext& context,
                  const std::vector<PlayedArray>& arrays);
    ~ArraysForDraw();
    ArraysForDraw(const ArraysForDraw&) = delete;
    ArraysForDraw& operator=(const ArraysForDraw&) = delete;

private:
    void point(const PlayedArray& array) const;

    OGL::OpenGLInterceptor& gl_;
    const CapturedContext& context_;
    int buffer_ = 0;
};

/// A call of immediate mode.
struct ElementCall {
    const Function* function;
    std::optional<std::uint32_t> index; ///< an attribute, or a texture unit
    std::string bytes;                  ///< four components, or a flag
};
/// What glArrayElement does, for arrays whose element these are. The call for the vertex is the last.
std::vector<ElementCall> elementCalls(const std::vector<PlayedArray>& arrays);

/// What glArrayElement does, for arrays whose element these are: the calls of immediate mode, of which that
/// for the vertex is the last. Between glBegin and glEnd no array can be pointed anywhere.
void playElement(OGL::OpenGLInterceptor& gl, const std::vector<PlayedArray>& arrays);

} // namespace ZLT::Capture
