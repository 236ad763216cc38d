#include "StartedLibrary.h"
#include "Statements.h"
#include "extensionator/OpenGLRekorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

using namespace ZLT::OGL;

namespace {

std::string contentOf(const char* path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A line without what differs from program to program: the place of the call, and the address of a shader's
// lengths, of which only zero or not matters.
std::string comparable(std::string line) {
    line.resize(std::min(line.size(), line.find("\t\t// ")));
    const std::size_t condition = line.find("if (");
    if (condition != std::string::npos && line.substr(condition + 4, 16) != std::string(16, '0'))
        line.replace(condition + 4, 16, "lengths");
    return line;
}

TEST(RecordingTest, aRecordingCompiledAndRunLeavesTheSameRecordingAgain) {
    const LibraryWithAllOfGL library;
    RecordingStream stream(ZLT_RECORDING ".inl", ZLT_RECORDING ".bin");
    pBinaryInputStream = &stream;
    std::ostringstream text, data;
    OpenGLRekorder recorder(text, data, nullptr, true);
    OpenGLInterceptor::Instance()->addInterceptor(&recorder);
    replayRecordedCalls();
    recorder.popInterceptor();
    OpenGLInterceptor::destroy();

    std::istringstream expected(contentOf(ZLT_RECORDING ".inl")), again(text.str());
    for (std::string line, lineAgain; std::getline(expected, line);) {
        ASSERT_TRUE(std::getline(again, lineAgain)) << line;
        ASSERT_EQ(comparable(line), comparable(lineAgain));
    }
    EXPECT_EQ(again.peek(), std::istringstream::traits_type::eof());
    EXPECT_TRUE(contentOf(ZLT_RECORDING ".bin") == data.str());
    // All plain statements but the 21 with bytes by value and the 9 with addresses, and all other forms but
    // glReadPixels.
    std::set<std::string> functions;
    for (const FakeGL::Call& call : FakeGL::calls())
        functions.insert(call.function);
    EXPECT_EQ(856u - 21 - 9 + 66, functions.size());
}

} // namespace
