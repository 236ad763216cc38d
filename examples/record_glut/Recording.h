#pragma once

#include "AutoInitializer.h"
#include "extensionator/OpenGLRekorder.h"
#include "extensionator/win/wglRekorder.h"
#include "ogl/ContextWrapped.h"

#include <filesystem>
#include <fstream>

/// Records what is drawn in the calling thread's current context, which a toolkit made, into recording.inl
/// (statements) and recording.bin (data) of a folder, for as long as this object lives. The core library must
/// be started. The context must be current when the object is made and when it is destroyed.
class Recording {
public:
    /// @throws std::runtime_error when a file can't be written
    explicit Recording(const std::filesystem::path& folder);
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording();

    /// What to swap: `CWGM(SwapBuffers, recording.device())` in place of the toolkit's own function.
    HDC device() const { return context_.deviceContext(); }

private:
    ZLT::OGL::AutoInitializer library_;
    std::ofstream text_;
    std::ofstream data_;
    ZLT::OGL::ContextWrapped context_;
    ZLT::OGL::wglRekorder contexts_;
    ZLT::OGL::OpenGLRekorder calls_;
};
