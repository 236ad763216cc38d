#include "ExceptionOGL.h"

#include "zlt/core/Enforce.h"
#include "zlt/core/Memory.h"

namespace ZLT::OGL {

ExceptionOGL::ExceptionOGL(const char* file, unsigned int line, const char* message, unsigned int errorNumber)
    : LogicalException(file, static_cast<int>(line), message), errorNumber_(errorNumber) {}
ExceptionOGL::ExceptionOGL(const ExceptionOGL& other) noexcept = default;
ExceptionOGL& ExceptionOGL::operator=(const ExceptionOGL& other) noexcept = default;
ExceptionOGL::~ExceptionOGL() = default;

ExceptionBase* ExceptionOGL::clone() const {
    return new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) ExceptionOGL(*this);
}

unsigned int ExceptionOGL::errorNumber() const { return errorNumber_; }

} // namespace ZLT::OGL
