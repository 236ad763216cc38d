#include "FakeGL.h"
#include "Statements.h"
#include "extensionator/OpenGLRekorder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

using namespace ZLT::OGL;

namespace {

std::string contentOf(const char* path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Without what differs from program to program: the places of the calls, and the addresses of a shader's
// lengths.
std::string comparable(const std::string& text) {
    const std::string placeless = std::regex_replace(text, std::regex("\t\t// .*"), "");
    return std::regex_replace(placeless, std::regex(R"(if \((?!0{16})[0-9A-F]{16}\))"), "if (lengths)");
}

TEST(Recording, CompiledAndRunLeavesTheSameRecordingAgain) {
    FakeGL::reset();
    RecordingStream stream(ZLT_RECORDING ".inl", ZLT_RECORDING ".bin");
    pBinaryInputStream = &stream;
    std::ostringstream text, data;
    OpenGLRekorder recorder(text, data, nullptr, true);
    OpenGLInterceptor::Instance()->addInterceptor(&recorder);
    replayRecordedCalls();
    recorder.popInterceptor();
    OpenGLInterceptor::destroy();

    std::istringstream expected(comparable(contentOf(ZLT_RECORDING ".inl"))), again(comparable(text.str()));
    for (std::string line, lineAgain; std::getline(expected, line);) {
        ASSERT_TRUE(std::getline(again, lineAgain)) << line;
        ASSERT_EQ(line, lineAgain);
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
