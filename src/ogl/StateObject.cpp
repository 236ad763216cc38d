#include "ogl/StateObject.h"

#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

StateObject_2_0::StateObject_2_0() {
    GLint count = 0;
    glGetIntegerv(GL_MAX_TEXTURE_COORDS, &count);
    maxTextureCoords_ = static_cast<std::size_t>(count);
    for (Coordinates* coordinates : {&currentTextureCoords_, &currentRasterTextureCoords_})
        coordinates->resize(maxTextureCoords_, float4(0, 0, 0, 1));
}

StateObject_2_0::~StateObject_2_0() = default;

StateObject_2_0 StateObject_2_0::CurrentState() {
    StateObject_2_0 state;
    glGetFloatv(GL_CURRENT_COLOR, &state.currentColor_[0]);
    return state;
}

float4 StateObject_2_0::currentTextureCoords(std::size_t iTexture) const {
    ZLT_ASSERT(iTexture < maxTextureCoords());
    return currentTextureCoords_[iTexture];
}

float4 StateObject_2_0::currentRasterTextureCoords(std::size_t iTexture) const {
    ZLT_ASSERT(iTexture < maxTextureCoords());
    return currentRasterTextureCoords_[iTexture];
}

} // namespace ZLT::OGL
