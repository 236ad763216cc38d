#pragma once

#include "extensionator/OpenGLInterceptor.h"

#include <string>
#include <vector>

namespace ZLT::OGL {

/// A call that is recorded in a form of its own, with the text and the bytes that stand for it.
struct RecordRow {
    const char* name;
    void (*call)(OpenGLInterceptor& gl);
    std::string text; // with the placeholders of RecordText.h
    std::string data{};
};

extern const unsigned char recordedPixels[1024];

/// One for each form but the comment of glReadPixels, all of them statements that compile and can be
/// replayed.
std::vector<RecordRow> recordRows();

/// What a recording shows all the same: sizes that no array has, values that are no C++, leaks.
std::vector<RecordRow> rowsThatCannotBeReplayed();

} // namespace ZLT::OGL
