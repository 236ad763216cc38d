#pragma once

#include "zlt/core/Export.h"

#include <exception>
#include <iosfwd>
#include <memory>

/// @file
/// The exception bases. Every failure is an exception that knows the file and line where it was raised.
///
///     std::exception
///       ZLT::ExceptionBase
///         ZLT::LogicalException
///           ZLT::InternalException     a broken precondition or a broken rule inside a library
///           ZLT::OGL::ExceptionOGL     a failure that OpenGL reported (ExceptionOGL.h)

namespace ZLT {

/// Root of the tree: a message, and a copy of unknown dynamic type.
class ZLT_CORE_API ExceptionBase : public std::exception {
public:
    ExceptionBase(const ExceptionBase& other) noexcept;
    ExceptionBase& operator=(const ExceptionBase& other) noexcept;
    ~ExceptionBase() override;

    /// The message alone, without file and line. Lives as long as any copy of this exception.
    const char* what() const noexcept override;

    /// A copy of the same dynamic type, made with the core's `operator new` (memory type 0). The caller owns
    /// it and destroys it with `ZLTDeleter`. Null when there is no memory.
    virtual ExceptionBase* clone() const = 0;

protected:
    /// Copies `message` and `file`; a null text is an empty one.
    ExceptionBase(const char* file, int line, const char* message);

    const char* sourceFile() const noexcept;
    int sourceLine() const noexcept;

private:
    struct Texts;
    // Shared between copies, so that copying an exception in flight can't fail.
    std::shared_ptr<const Texts> texts_;
};

/// Adds file and line. A base class only: code throws one of the classes derived from it.
class ZLT_CORE_API LogicalException : public ExceptionBase {
public:
    /// @param file     the source file that throws, copied; null counts as empty
    /// @param line     the line in it
    /// @param message  what `what()` gives, copied; null counts as empty
    LogicalException(const char* file, int line, const char* message);
    LogicalException(const LogicalException& other) noexcept;
    LogicalException& operator=(const LogicalException& other) noexcept;
    ~LogicalException() override;

    ExceptionBase* clone() const override;

    /// Writes "file:line: message", without a line end.
    virtual void write(std::ostream& out) const;

    /// The file that was given to the constructor. Lives as long as any copy of this exception.
    const char* file() const noexcept;
    /// The line that was given to the constructor.
    int line() const noexcept;
};

/// A broken precondition or a broken rule inside a library. The file and line are the library's own, and the
/// message is the source text of the rule (see Enforce.h).
class ZLT_CORE_API InternalException : public LogicalException {
public:
    /// As LogicalException.
    InternalException(const char* file, int line, const char* message);
    InternalException(const InternalException& other) noexcept;
    InternalException& operator=(const InternalException& other) noexcept;
    ~InternalException() override;

    ExceptionBase* clone() const override;
};

} // namespace ZLT
