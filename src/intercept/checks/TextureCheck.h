#pragma once

#include "intercept/checks/CheckedContext.h"

namespace ZLT::OGL {
class OpenGLCall;
} // namespace ZLT::OGL

namespace ZLT::Interception {

/// Whether the program in use can be drawn with. Asks the driver.
Finding findInvalidProgram(CheckedContext& context);
/// Whether all textures that a draw samples are complete. Asks the driver; the program is known.
Finding findIncompleteTexture(CheckedContext& context);

/// After glEnable or glDisable of something.
void noticeToggle(CheckedContext& context, std::uint32_t capability, bool isOn);
/// After a call that changes textures.
void noticeTextures(CheckedContext& context, const OGL::OpenGLCall& call);

} // namespace ZLT::Interception
