#include "zlt/core/Exceptions.h"

#include "zlt/core/Memory.h"

#include <ostream>
#include <string>

namespace ZLT {

// The standard allocator, for the core's list of what is left: an exception that a client keeps past the end
// of the core is not one of the objects that it forgot to destroy.
struct ExceptionBase::Texts {
    std::string file;
    int line;
    std::string message;
};

ExceptionBase::ExceptionBase(const char* file, int line, const char* message)
    : texts_(std::make_shared<const Texts>(Texts{file ? file : "", line, message ? message : ""})) {}

ExceptionBase::ExceptionBase(const ExceptionBase& other) noexcept = default;
ExceptionBase& ExceptionBase::operator=(const ExceptionBase& other) noexcept = default;
ExceptionBase::~ExceptionBase() = default;

const char* ExceptionBase::what() const noexcept { return texts_->message.c_str(); }
const char* ExceptionBase::sourceFile() const noexcept { return texts_->file.c_str(); }
int ExceptionBase::sourceLine() const noexcept { return texts_->line; }

LogicalException::LogicalException(const char* file, int line, const char* message)
    : ExceptionBase(file, line, message) {}
LogicalException::LogicalException(const LogicalException& other) noexcept = default;
LogicalException& LogicalException::operator=(const LogicalException& other) noexcept = default;
LogicalException::~LogicalException() = default;

ExceptionBase* LogicalException::clone() const {
    return new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) LogicalException(*this);
}

void LogicalException::write(std::ostream& out) const {
    out << sourceFile() << ':' << sourceLine() << ": " << what();
}

const char* LogicalException::file() const noexcept { return sourceFile(); }
int LogicalException::line() const noexcept { return sourceLine(); }

InternalException::InternalException(const char* file, int line, const char* message)
    : LogicalException(file, line, message) {}
InternalException::InternalException(const InternalException& other) noexcept = default;
InternalException& InternalException::operator=(const InternalException& other) noexcept = default;
InternalException::~InternalException() = default;

ExceptionBase* InternalException::clone() const {
    return new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) InternalException(*this);
}

} // namespace ZLT
