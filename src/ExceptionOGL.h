#pragma once

#include "Export.h"
#include "zlt/core/Exceptions.h"

namespace ZLT::OGL {

/// A failure that OpenGL reported through the chain, or an unbalanced `glBegin` or `glEnd`. `file()` and
/// `line()` are those of the client's call, `what()` is GLU's text for the error.
class ZLT_OGL_API ExceptionOGL : public LogicalException {
public:
    /// @param file         source file of the client's call, copied; null counts as empty
    /// @param line         its line
    /// @param message      what `what()` gives, copied; null counts as empty
    /// @param errorNumber  a value of `glGetError`, or 0 when the failure isn't a GL error
    ExceptionOGL(const char* file, unsigned int line, const char* message, unsigned int errorNumber);
    ExceptionOGL(const ExceptionOGL& other) noexcept;
    ExceptionOGL& operator=(const ExceptionOGL& other) noexcept;
    ~ExceptionOGL() override;

    /// As ExceptionBase::clone.
    ExceptionBase* clone() const override;

    /// The value of `glGetError` (`TokenName` gives its name), or 0 when the failure isn't a GL error.
    unsigned int errorNumber() const;

private:
    unsigned int errorNumber_;
};

} // namespace ZLT::OGL
