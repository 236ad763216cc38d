#pragma once

#include "platform/GL.h"

/// @file
/// The functions past GL 1.1 that the capture asks the driver by. It calls the driver, not the chain: what it
/// wants to know is nobody else's business.

namespace ZLT::Capture {

/// Of one context. Each is null where the driver has none.
struct DriverFunctions {
    PFNGLACTIVETEXTUREPROC clientActiveTexture = nullptr;
    PFNGLBINDBUFFERPROC bindBuffer = nullptr;
    PFNGLGETBUFFERPARAMETERIVPROC getBufferParameteriv = nullptr;
    PFNGLGETBUFFERPOINTERVPROC getBufferPointerv = nullptr;
    PFNGLGETBUFFERSUBDATAPROC getBufferSubData = nullptr;
    PFNGLGETVERTEXATTRIBIVPROC getVertexAttribiv = nullptr;
    PFNGLGETVERTEXATTRIBPOINTERVPROC getVertexAttribPointerv = nullptr;
    PFNGLGETPROGRAMIVPROC getProgramiv = nullptr;
    PFNGLGETACTIVEATTRIBPROC getActiveAttrib = nullptr;
    PFNGLGETATTRIBLOCATIONPROC getAttribLocation = nullptr;
    PFNGLGETACTIVEUNIFORMPROC getActiveUniform = nullptr;
    PFNGLGETUNIFORMLOCATIONPROC getUniformLocation = nullptr;
    PFNGLGETPROGRAMIVARBPROC getProgramivARB = nullptr;
    PFNGLGETSTRINGIPROC getStringi = nullptr;
    PFNGLGETCOMPRESSEDTEXIMAGEPROC getCompressedTexImage = nullptr;
    PFNGLGETFRAMEBUFFERATTACHMENTPARAMETERIVPROC getFramebufferAttachmentParameteriv = nullptr;
    PFNGLBINDFRAMEBUFFERPROC bindFramebuffer = nullptr;
    PFNGLGETCOLORTABLEPARAMETERIVSGIPROC getColorTableParameteriv = nullptr;
    PFNGLGETCONVOLUTIONPARAMETERIVEXTPROC getConvolutionParameteriv = nullptr;
    PFNGLGETHISTOGRAMPARAMETERIVEXTPROC getHistogramParameteriv = nullptr;
    PFNGLGETTEXTURELEVELPARAMETERIVEXTPROC getTextureLevelParameterivEXT = nullptr;
    PFNGLGETMULTITEXLEVELPARAMETERIVEXTPROC getMultiTexLevelParameterivEXT = nullptr;
    PFNGLGETNAMEDBUFFERPARAMETERIVEXTPROC getNamedBufferParameterivEXT = nullptr;
    PFNGLGETNAMEDBUFFERPOINTERVEXTPROC getNamedBufferPointervEXT = nullptr;
    PFNGLGETNAMEDPROGRAMIVEXTPROC getNamedProgramivEXT = nullptr;
    PFNGLGETPROGRAMIVNVPROC getProgramivNV = nullptr;
    PFNGLGETMAPPARAMETERIVNVPROC getMapParameterivNV = nullptr;
    PFNGLGETOBJECTBUFFERIVATIPROC getObjectBufferivATI = nullptr;
    PFNGLGETTEXFILTERFUNCSGISPROC getTexFilterFuncSGIS = nullptr;

    /// Of the current context.
    void load();
};

} // namespace ZLT::Capture
