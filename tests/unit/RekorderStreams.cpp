// What the recorder does with its two streams, whatever the form of a call.

#include "ExpectError.h"
#include "RecordText.h"
#include "StartedLibrary.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLRekorder.h"

#include <gmock/gmock.h>

#include <sstream>
#include <vector>

using namespace ZLT::OGL;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

// Counts what it is given, without reading it.
struct Sink : std::streambuf {
    std::uint64_t bytes = 0;
    std::streamsize xsputn(const char*, std::streamsize count) override {
        bytes += static_cast<std::uint64_t>(count);
        return count;
    }
};

class RekorderStreamTest : public testing::Test {
protected:
    // Every position in the text.
    std::vector<unsigned int> positions() const {
        const std::string seek = "->seekg(", all = text.str();
        std::vector<unsigned int> found;
        for (std::size_t at = 0; (at = all.find(seek, at)) != std::string::npos; at += seek.size())
            found.push_back(static_cast<unsigned int>(std::stoul(all.substr(at + seek.size()))));
        return found;
    }

    LibraryWithAllOfGL library;
    std::ostringstream text, data;
    OpenGLErrorChecker checker;
    OpenGLRekorder recorder{text, data, &checker, false};
    const float matrix[16] = {0.1f, 2};
};

TEST_F(RekorderStreamTest, positionsGoOnCountingWhenAStreamIsReplaced) {
    std::ostringstream otherText, otherData;
    EXPECT_EQ("", text.str() + data.str()) << "nothing before the first call";
    recorder.cgmLoadMatrixf("a.cpp", 1, matrix);
    recorder.setBinaryOutputStream(otherData);
    recorder.cgmLoadMatrixf("a.cpp", 2, matrix);
    recorder.setOutputStream(otherText);
    recorder.cgmLoadMatrixf("a.cpp", 3, matrix);
    EXPECT_EQ(&otherText, recorder.outputStream());
    EXPECT_EQ(&otherData, recorder.binaryOutputStream());
    EXPECT_THAT(positions(), ElementsAre(0, 68));
    EXPECT_EQ(replaced(replaced(dataBlock("glLoadMatrixf((GLfloat *)&data[0]);"), '@', ""), '%', "136"),
              otherText.str());
    EXPECT_EQ(narrow(matrix, 64), data.str());
    EXPECT_EQ(narrow(matrix, 64) + narrow(matrix, 64), otherData.str());
}

TEST_F(RekorderStreamTest, positionsAndSizesAreOf32Bits) {
    Sink sink;
    std::ostream counted(&sink);
    recorder.setBinaryOutputStream(counted);
    recorder.cgmUniform1fv("a.cpp", 1, 0, (1 << 30) - 4, matrix); // 2^32 - 16 bytes
    recorder.cgmLoadMatrixf("a.cpp", 2, matrix);
    recorder.cgmUniform4iv("a.cpp", 3, 0, 1 << 28, nullptr); // 2^32 bytes
    recorder.cgmUniform1iv("a.cpp", 4, 0, -1, nullptr);      // 2^32 - 4 bytes
    recorder.cgmLoadMatrixf("a.cpp", 5, matrix);
    // Where the length has 8 bytes, so has the payload's size.
    recorder.cgmDeleteTextures("a.cpp", 6, 1 << 30, nullptr);
    recorder.cgmLoadMatrixf("a.cpp", 7, matrix);
    EXPECT_THAT(positions(), ElementsAre(0, 4294967284u, 56, 60, 60, 128, 136));
    const std::uint64_t ofUniforms = (1ull << 32) - 16 + 4 + 4 + (1ull << 32) - 4 + 4;
    EXPECT_EQ(ofUniforms + 3 * 68 + 8 + (1ull << 33), sink.bytes);
}

TEST_F(RekorderStreamTest, aStreamThatThrowsKeepsTheCallFromBeingMadeAndOneThatFailsDoesNot) {
    struct : std::streambuf {
    } nothing;
    std::ostream full(&nothing);
    recorder.setBinaryOutputStream(full);
    recorder.cgmLoadMatrixf("a.cpp", 1, matrix);
    EXPECT_THAT(FakeGL::calls(), SizeIs(2));
    recorder.cgmLoadMatrixf("a.cpp", 2, matrix);
    EXPECT_THAT(positions(), ElementsAre(0, 68));

    FakeGL::reset();
    text.str("");
    full.clear();
    full.exceptions(std::ios_base::badbit);
    EXPECT_THROW(recorder.cgmLoadMatrixf("a.cpp", 3, matrix), std::ios_base::failure);
    EXPECT_EQ("", text.str()) << "the data is written first";
    recorder.setBinaryOutputStream(data);
    recorder.setOutputStream(full);
    EXPECT_THROW(recorder.cgmLoadMatrixf("a.cpp", 4, matrix), std::ios_base::failure);
    EXPECT_THAT(FakeGL::calls(), SizeIs(0));
}

TEST_F(RekorderStreamTest, resultsComeBackAndErrorsLeaveTheStatementWritten) {
    FakeGL::setResult("glGetUniformLocation", 17);
    FakeGL::setResult("glGetUniformLocationARB", -18);
    EXPECT_EQ(17, recorder.cgmGetUniformLocation("a.cpp", 1, 5, "x"));
    EXPECT_EQ(-18, recorder.cgmGetUniformLocationARB("a.cpp", 2, 5, "x"));
    FakeGL::pushError(0x0500);
    expectError("a.cpp", 3, "invalid enumerant", 0x0500,
                [&] { recorder.cgmMultMatrixf("a.cpp", 3, matrix); });
    EXPECT_THAT(positions(), ElementsAre(0, 10, 20));
    EXPECT_EQ(wide("x", 2) + wide("x", 2) + narrow(matrix, 64), data.str());
}

} // namespace
