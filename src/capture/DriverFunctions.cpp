#include "capture/DriverFunctions.h"

#include "capture/FindFunction.h"

namespace ZLT::Capture {

void DriverFunctions::load() {
    findFunction(clientActiveTexture, "glClientActiveTexture", "glClientActiveTextureARB");
    findFunction(bindBuffer, "glBindBuffer", "glBindBufferARB");
    findFunction(getBufferParameteriv, "glGetBufferParameteriv", "glGetBufferParameterivARB");
    findFunction(getBufferPointerv, "glGetBufferPointerv", "glGetBufferPointervARB");
    findFunction(getBufferSubData, "glGetBufferSubData", "glGetBufferSubDataARB");
    findFunction(getVertexAttribiv, "glGetVertexAttribiv", "glGetVertexAttribivARB");
    findFunction(getVertexAttribPointerv, "glGetVertexAttribPointerv", "glGetVertexAttribPointervARB");
    findFunction(getProgramiv, "glGetProgramiv", "glGetObjectParameterivARB");
    findFunction(getActiveAttrib, "glGetActiveAttrib", "glGetActiveAttribARB");
    findFunction(getAttribLocation, "glGetAttribLocation", "glGetAttribLocationARB");
    findFunction(getActiveUniform, "glGetActiveUniform", "glGetActiveUniformARB");
    findFunction(getUniformLocation, "glGetUniformLocation", "glGetUniformLocationARB");
    findFunction(getProgramivARB, "glGetProgramivARB");
    findFunction(getStringi, "glGetStringi");
    findFunction(getCompressedTexImage, "glGetCompressedTexImage", "glGetCompressedTexImageARB");
    findFunction(getFramebufferAttachmentParameteriv, "glGetFramebufferAttachmentParameteriv",
                 "glGetFramebufferAttachmentParameterivEXT");
    findFunction(bindFramebuffer, "glBindFramebuffer", "glBindFramebufferEXT");
    findFunction(getColorTableParameteriv, "glGetColorTableParameteriv", "glGetColorTableParameterivSGI",
                 "glGetColorTableParameterivEXT");
    findFunction(getConvolutionParameteriv, "glGetConvolutionParameteriv", "glGetConvolutionParameterivEXT");
    findFunction(getHistogramParameteriv, "glGetHistogramParameteriv", "glGetHistogramParameterivEXT");
    findFunction(getTextureLevelParameterivEXT, "glGetTextureLevelParameterivEXT");
    findFunction(getMultiTexLevelParameterivEXT, "glGetMultiTexLevelParameterivEXT");
    findFunction(getNamedBufferParameterivEXT, "glGetNamedBufferParameterivEXT");
    findFunction(getNamedBufferPointervEXT, "glGetNamedBufferPointervEXT");
    findFunction(getNamedProgramivEXT, "glGetNamedProgramivEXT");
    findFunction(getProgramivNV, "glGetProgramivNV");
    findFunction(getMapParameterivNV, "glGetMapParameterivNV");
    findFunction(getObjectBufferivATI, "glGetObjectBufferivATI");
    findFunction(getTexFilterFuncSGIS, "glGetTexFilterFuncSGIS");
}

} // namespace ZLT::Capture
