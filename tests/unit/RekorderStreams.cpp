// What the recorder does with its two streams, whatever the form of a call.

#include "ExpectError.h"
#include "FakeGL.h"
#include "RecordText.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLRekorder.h"

#include <gmock/gmock.h>

#include <sstream>
#include <vector>

using namespace ZLT::OGL;
using testing::ElementsAre;

namespace {

// Counts what it is given, without reading it.
struct Sink : std::streambuf {
    std::uint64_t bytes = 0;
    std::streamsize xsputn(const char*, std::streamsize count) override {
        bytes += static_cast<std::uint64_t>(count);
        return count;
    }
};

// Takes so many characters and then fails.
struct Room : std::streambuf {
    explicit Room(std::size_t size) { setp(text, text + size); }
    char text[400];
};

class RekorderStreams : public testing::Test {
protected:
    RekorderStreams() { FakeGL::reset(); }

    // Every position in the text.
    std::vector<unsigned int> positions() const {
        const std::string seek = "->seekg(", all = text.str();
        std::vector<unsigned int> found;
        for (std::size_t at = 0; (at = all.find(seek, at)) != std::string::npos; at += seek.size())
            found.push_back(static_cast<unsigned int>(std::stoul(all.substr(at + seek.size()))));
        return found;
    }
    // The data goes to `buffer` from now on.
    void discardInto(std::streambuf& buffer) {
        discarding.rdbuf(&buffer);
        recorder.setBinaryOutputStream(discarding);
    }

    std::ostringstream text, data;
    std::ostream discarding{nullptr};
    OpenGLErrorChecker checker;
    OpenGLRekorder recorder{text, data, &checker, false};
    const float matrix[16] = {0.1f, 2};
};

TEST_F(RekorderStreams, PositionsGoOnCountingWhenAStreamIsReplaced) {
    std::ostringstream otherText, otherData;
    const OpenGLRekorder& constant = recorder;
    EXPECT_EQ(&text, constant.outputStream());
    EXPECT_EQ(&data, constant.binaryOutputStream());
    EXPECT_EQ("", text.str() + data.str()) << "nothing before the first call";
    recorder.cgmLoadMatrixf("a.cpp", 1, matrix);
    recorder.setBinaryOutputStream(otherData);
    recorder.cgmLoadMatrixf("a.cpp", 2, matrix);
    EXPECT_THAT(positions(), ElementsAre(0, 68));
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

TEST_F(RekorderStreams, PositionsAndSizesAreOf32Bits) {
    Sink sink;
    discardInto(sink);
    recorder.cgmUniform1fv("a.cpp", 1, 0, (1 << 30) - 4, matrix); // 2^32 - 16 bytes
    recorder.cgmLoadMatrixf("a.cpp", 2, matrix);
    EXPECT_EQ((1ull << 32) - 16 + 4 + 68, sink.bytes);
    recorder.cgmUniform4iv("a.cpp", 3, 0, 1 << 28, nullptr); // 2^32 bytes
    recorder.cgmUniform1iv("a.cpp", 4, 0, -1, nullptr);      // 2^32 - 4 bytes
    recorder.cgmLoadMatrixf("a.cpp", 5, matrix);
    EXPECT_THAT(positions(), ElementsAre(0, 4294967284u, 56, 60, 60));

    // Where the length has 8 bytes, so has the payload's size.
    sink.bytes = 0;
    recorder.cgmDeleteTextures("a.cpp", 6, 1 << 30, nullptr);
    EXPECT_EQ((1ull << 33) + 8, sink.bytes);
    recorder.cgmLoadMatrixf("a.cpp", 7, matrix);
    EXPECT_THAT(positions(), ElementsAre(0, 4294967284u, 56, 60, 60, 128, 136));
}

// The stream takes no payload of a negative size, and fails.
TEST_F(RekorderStreams, ANegativeCountOrLengthIsWrittenWithItsSign) {
    const char* string[] = {"abc"};
    const int negative[] = {-2};
    recorder.cgmDeleteQueries("a.cpp", 1, -1, nullptr);
    EXPECT_EQ(record(8, static_cast<std::uint64_t>(-8), ""), data.str());
    data.clear();
    recorder.cgmShaderSource("a.cpp", 2, 5, 1, string, negative);
    EXPECT_EQ(record(8, static_cast<std::uint64_t>(-2), ""), data.str().substr(8));
    data.clear();
    recorder.cgmLoadMatrixf("a.cpp", 3, matrix);
    EXPECT_THAT(positions(), ElementsAre(0, 0, 6));
}

TEST_F(RekorderStreams, AStreamThatFailsLosesDataAndNothingElse) {
    Room none(0);
    discardInto(none);
    recorder.cgmLoadMatrixf("a.cpp", 1, matrix);
    recorder.cgmLoadMatrixf("a.cpp", 2, matrix);
    EXPECT_TRUE(discarding.bad());
    EXPECT_THAT(positions(), ElementsAre(0, 68));
    EXPECT_EQ(4u, FakeGL::calls().size());
}

TEST_F(RekorderStreams, AStreamThatThrowsKeepsTheCallFromBeingMade) {
    recorder.cgmLoadMatrixf("a.cpp", 1, matrix);
    const std::string whole = text.str();
    ASSERT_GT(sizeof(Room::text), whole.size());
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        Room room(size);
        std::ostream out(&room);
        out.exceptions(std::ios_base::badbit);
        OpenGLRekorder other(out, data, &checker, false);
        FakeGL::reset();
        if (size < whole.size())
            EXPECT_THROW(other.cgmLoadMatrixf("a.cpp", 1, matrix), std::ios_base::failure);
        else
            other.cgmLoadMatrixf("a.cpp", 1, matrix);
        EXPECT_EQ(size < whole.size(), FakeGL::calls().empty());
        EXPECT_EQ(whole.substr(0, size), std::string(room.text, size));
    }
    // Of the data, before any text.
    FakeGL::reset();
    text.str("");
    for (const std::size_t size : {0, 3, 4, 67}) {
        Room room(size);
        discardInto(room);
        discarding.exceptions(std::ios_base::badbit);
        EXPECT_THROW(recorder.cgmLoadMatrixf("a.cpp", 1, matrix), std::ios_base::failure);
        discarding.exceptions(std::ios_base::goodbit);
    }
    EXPECT_EQ("", text.str());
    EXPECT_TRUE(FakeGL::calls().empty());
}

TEST_F(RekorderStreams, ResultsComeBackAndErrorsLeaveTheStatementWritten) {
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
