#pragma once

#include "Export.h"

#include <exception>

namespace ZLT::OGL {

/// Base of the GL objects that have a bind point: textures, buffers, framebuffers and renderbuffers. It
/// knows the object's name, the target to which it binds, and the query for what is bound there.
///
/// Only GL knows what is bound; nothing is tracked here. Constructors bind for themselves and restore what
/// was bound before. Methods act on what is bound at the target, and don't bind: bind first. An object is
/// used, and destroyed, while the context that made it (or one that shares with it) is current on the
/// calling thread; nothing in the object remembers that context, and no lock guards it.
///
/// Any method may throw as ExtensionManager::Instance() does, or InternalException "The current context
/// has no glBindBuffer" (or another function) where the driver lacks a function, or no context is current.
///
/// Failures are exceptions, from the destructors of buffers, framebuffers and renderbuffers too: these call
/// what the driver may lack. A destructor that runs because another exception unwinds the object drops its
/// own. Textures are deleted by GL 1.1, and their destructors let nothing out.
class ZLT_OGL_API Object {
public:
    virtual ~Object() noexcept(false);

    /// The GL name; 0 before it was generated.
    unsigned int objectID() const { return n_ObjectID; }
    /// The GL token of the target.
    unsigned int target() const { return target_; }
    bool isInitialized() const { return n_ObjectID != 0; }

    /// The name that is bound at this object's target now, whichever object that is. For a texture: in the
    /// active texture unit.
    unsigned int getBoundID() const;
    /// Whether this object is bound at its target.
    bool isBound() const;

protected:
    /// @param target   GL token of the target
    /// @param binding  GL token by which `glGetIntegerv` gives the name that is bound there
    Object(unsigned int target, unsigned int binding);

    /// The two tokens belong together and change together. Makes no GL call.
    void changeTarget(unsigned int target, unsigned int binding);

    unsigned int n_ObjectID = 0; ///< Subclasses generate it and delete it.

    /// How many exceptions were under way when it was made, for a destructor that may fail.
    const int exceptions_ = std::uncaught_exceptions();

private:
    // An object has one owner of its name.
    Object(const Object&) {}
    Object& operator=(const Object&) { return *this; } // NOLINT(bugprone-unhandled-self-assignment)

    unsigned int target_ = 0;
    unsigned int binding_ = 0;
};

} // namespace ZLT::OGL
