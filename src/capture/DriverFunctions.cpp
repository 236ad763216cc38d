#include "capture/DriverFunctions.h"

#include "platform/Platform.h"

#include <initializer_list>

namespace ZLT::Capture {

namespace {

template <class Function, class... Names>
void find(Function& function, Names... names) {
    for (const char* name : {names...})
        if (!function)
            function = reinterpret_cast<Function>(reinterpret_cast<void*>(wglGetProcAddress(name)));
}

} // namespace

void DriverFunctions::load() {
    find(clientActiveTexture, "glClientActiveTexture", "glClientActiveTextureARB");
    find(bindBuffer, "glBindBuffer", "glBindBufferARB");
    find(getBufferParameteriv, "glGetBufferParameteriv", "glGetBufferParameterivARB");
    find(getBufferPointerv, "glGetBufferPointerv", "glGetBufferPointervARB");
    find(getBufferSubData, "glGetBufferSubData", "glGetBufferSubDataARB");
    find(getVertexAttribiv, "glGetVertexAttribiv", "glGetVertexAttribivARB");
    find(getVertexAttribPointerv, "glGetVertexAttribPointerv", "glGetVertexAttribPointervARB");
    find(getProgramiv, "glGetProgramiv", "glGetObjectParameterivARB");
    find(getActiveAttrib, "glGetActiveAttrib", "glGetActiveAttribARB");
    find(getAttribLocation, "glGetAttribLocation", "glGetAttribLocationARB");
    find(getActiveUniform, "glGetActiveUniform", "glGetActiveUniformARB");
    find(getUniformLocation, "glGetUniformLocation", "glGetUniformLocationARB");
    find(getProgramivARB, "glGetProgramivARB");
    find(getStringi, "glGetStringi");
    find(getCompressedTexImage, "glGetCompressedTexImage", "glGetCompressedTexImageARB");
    find(getFramebufferAttachmentParameteriv, "glGetFramebufferAttachmentParameteriv",
         "glGetFramebufferAttachmentParameterivEXT");
    find(bindFramebuffer, "glBindFramebuffer", "glBindFramebufferEXT");
    find(getColorTableParameteriv, "glGetColorTableParameteriv", "glGetColorTableParameterivSGI",
         "glGetColorTableParameterivEXT");
    find(getConvolutionParameteriv, "glGetConvolutionParameteriv", "glGetConvolutionParameterivEXT");
    find(getHistogramParameteriv, "glGetHistogramParameteriv", "glGetHistogramParameterivEXT");
    find(getTextureLevelParameterivEXT, "glGetTextureLevelParameterivEXT");
    find(getMultiTexLevelParameterivEXT, "glGetMultiTexLevelParameterivEXT");
    find(getNamedBufferParameterivEXT, "glGetNamedBufferParameterivEXT");
    find(getNamedBufferPointervEXT, "glGetNamedBufferPointervEXT");
    find(getNamedProgramivEXT, "glGetNamedProgramivEXT");
    find(getProgramivNV, "glGetProgramivNV");
    find(getMapParameterivNV, "glGetMapParameterivNV");
    find(getObjectBufferivATI, "glGetObjectBufferivATI");
    find(getTexFilterFuncSGIS, "glGetTexFilterFuncSGIS");
}

} // namespace ZLT::Capture
