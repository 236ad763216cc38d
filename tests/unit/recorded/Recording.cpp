#include "CallLog.h"
#include "FakeGL.h"
#include "Statements.h"
#include "extensionator/OpenGLInterceptor.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace {

TEST(Recording, CompiledAndRunMakesTheCallsThatWereRecorded) {
    FakeGL::reset();
    std::stringstream replayed;
    logCallsTo(replayed);
    RecordingStream stream(ZLT_RECORDING ".inl", ZLT_RECORDING ".bin");
    pBinaryInputStream = &stream;
    replayRecordedCalls();
    ZLT::OGL::OpenGLInterceptor::destroy();
    FakeGL::reset();

    std::ifstream recorded(ZLT_RECORDING ".calls");
    std::set<std::string> functions;
    std::string expected, line;
    while (std::getline(recorded, expected)) {
        ASSERT_TRUE(std::getline(replayed, line)) << expected;
        functions.insert(line.substr(0, line.find(' ')));
        ASSERT_EQ(expected, line);
    }
    EXPECT_FALSE(std::getline(replayed, line)) << line;
    // All plain statements but the 21 with bytes by value and the 9 with addresses, and all other forms but
    // glReadPixels.
    EXPECT_EQ(856u - 21 - 9 + 66, functions.size());
}

} // namespace
