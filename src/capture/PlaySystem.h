#pragma once

#include "capture/CaptureFile.h"
#include "capture/Export.h"
#include "capture/Picture.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ZLT::Capture {

/// How a capture is played.
struct PlayOptions {
    bool verifies = false; ///< compares pictures and what is read back
    bool follows = false;  ///< tells the listener of each record
};

/// A surface as it was captured.
struct SurfaceShape {
    int width = 0, height = 0;
    int red = 0, green = 0, blue = 0, alpha = 0, depth = 0, stencil = 0, accumulation = 0, samples = 0;
    bool isDoubleBuffered = false, isStereo = false;
    bool isSrgb = false; ///< it can be: GL_FRAMEBUFFER_SRGB_CAPABLE
};

/// Of the record of a surface that is new.
SurfaceShape shapeOf(const CapturedCall& surface);

/// A context as it was captured.
struct ContextShape {
    int version = 0; ///< 21 for 2.1
    int profile = 0; ///< bits of GL_CONTEXT_PROFILE_MASK; 0 before profiles
    int flags = 0;   ///< of GL_CONTEXT_FLAGS
};

/// Makes the contexts and surfaces of a player. Handles are the system's own.
class ZLT_CAPTURE_API PlaySystem {
public:
    virtual ~PlaySystem();
    /// @throws std::runtime_error, with a sentence, when there can be none
    virtual void* makeSurface(const SurfaceShape& shape) = 0;
    /// @param like   a surface that the context will draw to
    /// @param share  shares its objects with this one; null for none
    virtual void* makeContext(const ContextShape& shape, void* like, void* share) = 0;
    /// On the calling thread. Null for none.
    virtual void makeCurrent(void* draw, void* read, void* context) = 0;
    virtual void destroyContext(void* context) = 0;
    virtual void resize(void* surface, int width, int height) = 0;
    virtual void swap(void* surface) = 0;
    /// Whether the surface has one buffer although its shape has two: the player draws to that one then.
    virtual bool hasOneBuffer(void* surface) = 0;
};

/// What is told while a capture is played.
class ZLT_CAPTURE_API PlayListener {
public:
    virtual ~PlayListener();
    /// A frame is complete, and about to be shown. On the thread of its context, which is current, if it has
    /// one.
    /// @param read  reads the picture; false where there is none
    virtual void frameEnding(std::uint64_t frame, const std::function<bool(Picture&)>& read);
    /// Something differs from the capture: what, and in which call.
    virtual void differs(const CapturedCall& call, const std::string& what);
    /// A record is about to be played, on its thread. With PlayOptions::follows.
    virtual void playing(const CapturedCall& call);
    /// It was played.
    /// @param time  nanoseconds inside of the chain; 0 for what is no call
    virtual void played(const CapturedCall& call, std::uint64_t time);
    /// The capture says that it is incomplete.
    virtual void incomplete(const std::string& what);
};

} // namespace ZLT::Capture
