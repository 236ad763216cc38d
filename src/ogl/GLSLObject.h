#pragma once

#include "Export.h"

#include <exception>

namespace ZLT::OGL {

/// Base of shaders and programs: a GL handle. Copies copy the handle and share nothing: the destructor of
/// each copy deletes the same GL object, so don't copy what deletes.
///
/// The context that made it, or one that shares with it, must be current for every method. Any method may
/// throw as ExtensionManager::Instance() does, or InternalException "The current context has no
/// glUseProgram" (or another function) where the driver lacks a function, or no context is current.
/// Failures are exceptions, from destructors too; a destructor that runs because another exception unwinds
/// the object drops its own.
class ZLT_OGL_API GLSLObject {
public:
    // The handle is unset: the classes derived from it make one.
    GLSLObject() {} // NOLINT(modernize-use-equals-default,cppcoreguidelines-pro-type-member-init)
    GLSLObject(const GLSLObject& other) : _hObject(other._hObject) {}
    GLSLObject& operator=(const GLSLObject& other) { // NOLINT(bugprone-unhandled-self-assignment)
        _hObject = other._hObject;
        return *this;
    }
    virtual ~GLSLObject() noexcept(false);

    unsigned int objectID() const { return _hObject; }

protected:
    unsigned int _hObject; ///< Made and deleted by the classes derived from this one.

    /// How many exceptions were under way when it was made, for a destructor that may fail.
    const int exceptions_ = std::uncaught_exceptions();
};

} // namespace ZLT::OGL
