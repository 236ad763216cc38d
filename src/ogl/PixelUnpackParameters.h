#pragma once

#include "Export.h"

#include <cstddef>

namespace ZLT::OGL {

/// The layout of pixels in client memory (or in a buffer) that are passed to GL, all of it in one value.
/// The default is tightly packed rows: an alignment of 1 byte, where GL's own is 4. Lengths and skips are
/// counts of pixels, rows and images, as in `glPixelStorei`; they are narrowed to its 32 bits.
class ZLT_OGL_API PixelUnpackParameters {
public:
    /// Each row begins at a multiple of this number of bytes.
    enum teAlignment : int {
        eAlignment1 = 0,
        eAlignment2 = 1,
        eAlignment4 = 2,
        eAlignment8 = 3,
    };

    /// Whether the bytes of each element are in the reverse of this machine's order.
    bool swapBytes() const { return swapBytes_; }
    void enableSwapBytes() { swapBytes_ = true; }
    void disableSwapBytes() { swapBytes_ = false; }

    /// Whether bitmaps have their first pixel in the lowest bit.
    bool isFirstLSB() const { return firstLSB_; }
    void makeFirstLSB() { firstLSB_ = true; }
    void makeFirstMSB() { firstLSB_ = false; }

    /// Pixels from row to row; 0: as many as are transferred.
    std::size_t rowLength() const { return rowLength_; }
    void setRowLength(std::size_t pixels) { rowLength_ = pixels; }
    /// Rows from image to image; 0: as many as are transferred. For three-dimensional textures.
    std::size_t imageHeight() const { return imageHeight_; }
    void setImageHeight(std::size_t rows) { imageHeight_ = rows; }
    /// What to skip at the beginning.
    std::size_t skipPixels() const { return skipPixels_; }
    void setSkipPixels(std::size_t pixels) { skipPixels_ = pixels; }
    std::size_t skipRows() const { return skipRows_; }
    void setSkipRows(std::size_t rows) { skipRows_ = rows; }
    /// For three-dimensional textures.
    std::size_t skipImages() const { return skipImages_; }
    void setSkipImages(std::size_t images) { skipImages_ = images; }

    teAlignment alignment() const { return alignment_; }
    /// The value isn't checked here; apply() refuses one that is not of the enumeration.
    void setAlignment(teAlignment alignment) { alignment_ = alignment; }
    /// @param bytes  1, 2, 4 or 8
    /// @throws InternalException "!\"Unsupported aligment in PixelUnpackParameters::setAlignment!\""
    ///         otherwise, and nothing changes
    void setAlignment(unsigned int bytes);

    /// Sets all of it in the current context, which the library must know, until something else sets it.
    /// Image height and skipped images are left out where the driver has no three-dimensional textures.
    /// @throws InternalException "Enum value not recognized" for an alignment outside the
    ///         enumeration; the rest has been set then
    void apply() const;

private:
    bool swapBytes_ = false;
    bool firstLSB_ = false;
    std::size_t rowLength_ = 0;
    std::size_t imageHeight_ = 0;
    std::size_t skipPixels_ = 0;
    std::size_t skipRows_ = 0;
    std::size_t skipImages_ = 0;
    teAlignment alignment_ = eAlignment1;
};

} // namespace ZLT::OGL
