#include "RecordingStream.h"

#include "RecordText.h"
#include "StartedLibrary.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLRekorder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

using namespace ZLT::OGL;

namespace {

// A recording with records of both kinds, in files.
class RecordingStreamTest : public testing::Test {
protected:
    RecordingStreamTest() {
        OpenGLErrorChecker checker;
        OpenGLRekorder recorder(text, data, &checker, false);
        recorder.cgmDeleteTextures("a.cpp", 1, 1, names);             // at 0
        recorder.cgmUniform1iv("a.cpp", 2, 0, 2, numbers);            // 16
        recorder.cgmShaderSource("a.cpp", 3, 5, 2, strings, nullptr); // 28
        recorder.cgmShaderSource("a.cpp", 4, 5, 0, nullptr, nullptr); // 48, without a record
        recorder.cgmUniform1iv("a.cpp", 5, 0, 2, numbers);            // 48
        std::filesystem::create_directories(folder);
    }
    ~RecordingStreamTest() override { std::filesystem::remove_all(folder); }

    RecordingStream open(const std::string& text, const std::string& data) const {
        std::ofstream(folder / "text", std::ios::binary) << text;
        std::ofstream(folder / "data", std::ios::binary) << data;
        return {(folder / "text").string(), (folder / "data").string()};
    }

    // As a statement does, for so many records in a row.
    static std::vector<std::string> read(RecordingStream& stream, std::uint32_t position, int count = 1) {
        std::vector<std::string> payloads;
        stream.seekg(position);
        while (count-- > 0) {
            unsigned int size = 0;
            stream.read(reinterpret_cast<char*>(&size), sizeof(size));
            std::string payload(size, '\0');
            stream.read(payload.data(), size);
            payloads.push_back(payload);
        }
        return payloads;
    }

    LibraryWithAllOfGL library;
    const unsigned int names[2] = {7, 0x12345678};
    const int numbers[2] = {-1, 8};
    const char* strings[2] = {"xy", ""};
    std::ostringstream text, data;
    const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "RecordingStream";
};

TEST_F(RecordingStreamTest, eachPayloadIsReadWhateverTheWidthOfItsLength) {
    RecordingStream stream = open(text.str(), data.str());
    using testing::ElementsAre;
    EXPECT_THAT(read(stream, 48), ElementsAre(bytesOf(numbers, 8)));
    EXPECT_THAT(read(stream, 28, 2), ElementsAre(std::string("xy\0", 3), std::string(1, '\0')));
    EXPECT_THAT(read(stream, 0), ElementsAre(bytesOf(names, 8)));
    EXPECT_THAT(read(stream, 16), ElementsAre(bytesOf(numbers, 8)));
}

TEST_F(RecordingStreamTest, damagedDataIsRefused) {
    const std::string whole = data.str();
    ASSERT_EQ(60u, whole.size());
    for (std::size_t size = 48; size < whole.size(); ++size) {
        RecordingStream stream = open(text.str(), whole.substr(0, size));
        EXPECT_THROW(read(stream, 48), std::runtime_error) << size;
        EXPECT_EQ(bytesOf(names, 8), read(stream, 0).at(0)) << "what is there can be read";
    }
    RecordingStream stream = open(text.str(), whole);
    for (const unsigned int position : {2u, 20u, 30u, 50u, 61u, 4294967295u})
        EXPECT_THROW(read(stream, position), std::runtime_error) << position;
    EXPECT_THROW(read(stream, 48, 2), std::runtime_error) << "more than the statement's own record";
    EXPECT_THROW(RecordingStream((folder / "missing").string(), "missing"), std::runtime_error);
    for (const char* cut : {"", "x)", "4", "99999999999999999999999)"})
        EXPECT_THROW(open(std::string("    pBinaryInputStream->seekg(") + cut, whole), std::runtime_error)
            << cut;
}

} // namespace
