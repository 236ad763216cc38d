#pragma once

#include "Export.h"
#include "zlt/core/Math.h"
#include "zlt/core/memory/ZLTAllocator.h"

#include <cstddef>
#include <vector>

namespace ZLT::OGL {

/// The current values of OpenGL 2.0: what a context carries from primitive to primitive. An object holds
/// the values that a new context has; CurrentState() fills in only the current colour. It is a plain
/// value, and a copy shares nothing.
class ZLT_OGL_API StateObject_2_0 {
public:
    /// The values of a new context. A context must be current: the number of texture coordinates comes
    /// from it.
    StateObject_2_0();
    StateObject_2_0(const StateObject_2_0& other) = default;
    StateObject_2_0& operator=(const StateObject_2_0& other) = default;
    virtual ~StateObject_2_0();

    /// The same with the current colour (RGBA). All else is as in a new context, whatever the current
    /// one has.
    static StateObject_2_0 CurrentState();

    float4 currentColor() const { return currentColor_; }
    float4 currentSecondaryColor() const { return currentSecondaryColor_; }
    float currentIndex() const { return currentIndex_; }
    /// How many sets of texture coordinates there are.
    std::size_t maxTextureCoords() const { return maxTextureCoords_; }
    /// @throws InternalException "iTexture < maxTextureCoords()"
    float4 currentTextureCoords(std::size_t iTexture) const;
    float3 currentNormal() const { return currentNormal_; }
    float currentFogCoord() const { return currentFogCoord_; }
    float4 currentRasterPosition() const { return currentRasterPosition_; }
    float currentRasterDistance() const { return currentRasterDistance_; }
    float4 currentRasterColor() const { return currentRasterColor_; }
    float currentRasterIndex() const { return currentRasterIndex_; }
    /// @throws InternalException "iTexture < maxTextureCoords()"
    float4 currentRasterTextureCoords(std::size_t iTexture) const;
    bool currentRasterPositionValid() const { return currentRasterPositionValid_; }
    bool edgeFlag() const { return edgeFlag_; }
    /// The active texture unit, from 0.
    std::size_t activeTexture() const { return activeTexture_; }

private:
    using Coordinates = std::vector<float4, ZLTAllocator<float4>>;

    float4 currentColor_{1, 1, 1, 1};
    float4 currentSecondaryColor_{0, 0, 0, 1};
    float currentIndex_ = 1;
    std::size_t maxTextureCoords_;
    Coordinates currentTextureCoords_;
    float3 currentNormal_{0, 0, 1};
    float currentFogCoord_ = 0;
    float4 currentRasterPosition_{0, 0, 0, 1};
    float currentRasterDistance_ = 0;
    float4 currentRasterColor_{1, 1, 1, 1};
    float currentRasterIndex_ = 1;
    Coordinates currentRasterTextureCoords_;
    bool currentRasterPositionValid_ = true;
    bool edgeFlag_ = true;
    std::size_t activeTexture_ = 0;
};

} // namespace ZLT::OGL
