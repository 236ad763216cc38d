#pragma once

#include <cstdint>
#include <vector>

namespace ZLT::Capture {

class CapturedContext;

/// An accumulation buffer for a surface that has none: what is off screen has no such buffer by EGL. It has
/// 16 bits for each component, as the software renderers have. Works on the current context, and leaves its
/// state as it was.
class PlayedAccumulation {
public:
    /// Whether colors are sRGB, of which linear values are accumulated.
    void setSrgb(bool isSrgb) { isSrgb_ = isSrgb; }
    /// glAccum.
    void accumulate(const CapturedContext& context, int width, int height, unsigned int operation,
                    float value);
    /// glClear of the accumulation buffer.
    void clear(const CapturedContext& context, int width, int height);

private:
    struct Area {
        int x, y, width, height;
    };
    Area areaOf(int width, int height);
    std::int16_t* at(int x, int y) {
        return &values_[4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                             static_cast<std::size_t>(x))];
    }
    void read(const CapturedContext& context, const Area& area, float scale, bool adds);
    void write(const CapturedContext& context, const Area& area, float scale);

    bool isSrgb_ = false;
    int width_ = 0, height_ = 0;
    std::vector<std::int16_t> values_;
};

} // namespace ZLT::Capture
