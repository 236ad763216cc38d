#pragma once

#include "extensionator/OpenGLErrorChecker.h"

namespace ZLT::Interception {

/// The end of the chain in a foreign program: the checker, but that the driver is always called. What is
/// legal in GL and looks unbalanced from here (a list that begins what its caller ends, two threads that
/// draw) is no error, and what is one, the driver says.
class DriverEnd final : public OGL::OpenGLErrorChecker {
public:
    void cgmBegin(const char* file, unsigned int line, unsigned int mode) override;
    void cgmEnd(const char* file, unsigned int line) override;
    void cgmNewList(const char* file, unsigned int line, unsigned int list, unsigned int mode) override;
    void cgmEndList(const char* file, unsigned int line) override;
    void cgmCallList(const char* file, unsigned int line, unsigned int list) override;
    void cgmCallLists(const char* file, unsigned int line, int n, unsigned int type,
                      const void* lists) override;
    void cgmDeleteLists(const char* file, unsigned int line, unsigned int list, int range) override;
    void cgmListBase(const char* file, unsigned int line, unsigned int base) override;
    void cgmPushAttrib(const char* file, unsigned int line, unsigned int mask) override;
    void cgmPopAttrib(const char* file, unsigned int line) override;
    /// As the driver answers, and nothing more: it is the program that asks.
    unsigned int cgmGetError(const char* file, unsigned int line) override;
};

/// What glGetError answers to the layers: the driver's flag, or GL_NO_ERROR where it may not be read.
unsigned int errorForLayers();

} // namespace ZLT::Interception
