#include "Statements.h"

#include <gtest/gtest.h>

#include "extensionator/gl_intercept.h"
#include "extensionator/gl_tokens.h"

#include <bit>
#include <map>
#include <vector>

RecordingStream* pBinaryInputStream = nullptr;

static float makeFloat(int bits) { return std::bit_cast<float>(bits); }
static void OpenGLRekorderUnsupported(const char* text) { ADD_FAILURE() << text; }

void replayRecordedCalls() {
#include ZLT_COMPILED
}
