#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// How much a pointer points at, where no expression says it: tables/gl_arguments.tsv names these functions.
/// They ask the driver for the state that the call used, and give 0 where GL reads or writes nothing: for an
/// unknown token, or where nothing may be asked.

namespace ZLT::Capture {

/// Memory that a pixel operation reads or writes, from its pointer on.
struct ImageBytes {
    std::uint64_t skipped = 0; ///< in front of what is touched
    std::uint64_t size = 0;    ///< from there
    bool isInBuffer = false;   ///< the pointer is an offset in a pixel buffer object
};

namespace Sizes {

/// Values of a parameter with this name, which is set or asked for.
std::uint64_t values(unsigned int pname);
std::uint64_t indexedValues(unsigned int target);
std::uint64_t clearValues(unsigned int buffer);
/// Bytes of the names of glCallLists.
std::uint64_t lists(int count, unsigned int type);
/// The modes of a draw of many, which lie `stride` bytes apart.
std::uint64_t modes(int count, int stride);

// Evaluators: values, from the first to the last control point.
std::uint64_t mapPoints(unsigned int target, int stride, int order);
std::uint64_t mapPoints(unsigned int target, int ustride, int uorder, int vstride, int vorder);
std::uint64_t mapValues(unsigned int target, unsigned int query);
std::uint64_t mapParameterValues(unsigned int target, unsigned int pname);
/// Bytes of the points of GL_NV_evaluators.
std::uint64_t controlPoints(unsigned int target, unsigned int type, int ustride, int vstride, int uorder,
                            int vorder);
std::uint64_t controlPoints(unsigned int target, unsigned int index, unsigned int type, int ustride,
                            int vstride);

// Pixels that GL reads, under the unpack parameters.
ImageBytes image(unsigned int format, unsigned int type, int width, int height, int depth);
ImageBytes volume(unsigned int format, unsigned int type, int width, int height, int depth);
/// Bytes without a layout: compressed images, pixel maps.
ImageBytes unpacked(long long bytes);

// Pixels that GL writes, under the pack parameters.
ImageBytes packed(unsigned int format, unsigned int type, int width, int height);
ImageBytes textureImage(unsigned int target, int level, unsigned int format, unsigned int type);
ImageBytes multiTextureImage(unsigned int unit, unsigned int target, int level, unsigned int format,
                             unsigned int type);
ImageBytes namedTextureImage(unsigned int texture, unsigned int target, int level, unsigned int format,
                             unsigned int type);
ImageBytes compressedImage(unsigned int target, int level);
ImageBytes compressedMultiImage(unsigned int unit, unsigned int target, int level);
ImageBytes compressedTextureImage(unsigned int texture, unsigned int target, int level);
ImageBytes colorTable(unsigned int target, unsigned int format, unsigned int type);
ImageBytes convolution(unsigned int target, unsigned int format, unsigned int type);
ImageBytes histogram(unsigned int target, unsigned int format, unsigned int type);
ImageBytes separableRow(unsigned int target, unsigned int format, unsigned int type);
ImageBytes separableColumn(unsigned int target, unsigned int format, unsigned int type);
ImageBytes pixelMap(unsigned int map, int valueSize);

// What is known of objects.
std::uint64_t uniformValues(unsigned int program, int location);
std::uint64_t programString(unsigned int target);
std::uint64_t namedProgramString(unsigned int program, unsigned int target);
std::uint64_t programStringNV(unsigned int program);
std::uint64_t functionPoints(unsigned int countName);
std::uint64_t texturePoints(unsigned int target, unsigned int countName);
std::uint64_t filterWeights(unsigned int target, unsigned int filter);
std::uint64_t symbolValues(unsigned int symbol);
std::uint64_t symbolBytes(unsigned int symbol, unsigned int type);

/// The characters that were written to a buffer of this size, with the zero byte.
std::uint64_t written(int size, const char* text);
/// How many names came back.
std::uint64_t counted(int most, const int* count);

} // namespace Sizes

/// Components of a pixel of the format; 0 for an unknown one.
std::uint64_t componentsOf(unsigned int format);
/// Bits of a pixel; 0 for an unknown one.
std::uint64_t bitsOfPixel(unsigned int format, unsigned int type);

} // namespace ZLT::Capture
