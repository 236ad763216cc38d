#pragma once

#include <GL/gl.h>

/// What somebody would write by hand who wants few GL calls checked: one virtual call, file and line in
/// front. The classes stand in a source of their own, so that no compiler sees through the call.
class HandWrittenInterceptor {
public:
    virtual ~HandWrittenInterceptor() = default;
    virtual void bindTexture(const char* file, unsigned int line, GLenum target, GLuint texture) = 0;
    virtual void activeTexture(const char* file, unsigned int line, GLenum texture) = 0;
    /// Through the table of the current context's driver, looked up at each call.
    virtual void activeTextureByTable(const char* file, unsigned int line, GLenum texture) = 0;
};

/// The one that calls GL and throws std::runtime_error on an error.
HandWrittenInterceptor* handWrittenChecker();

/// glActiveTexture, which is no function of GL 1.1 and so is asked for.
using ActiveTexture = void (*)(GLenum texture);
ActiveTexture activeTextureFunction();
