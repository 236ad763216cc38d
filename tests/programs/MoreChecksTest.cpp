// Runs the cases of a program as they are, and by the command, which must change nothing of them and find the
// one call that is wrong.

#include "RunProgram.h"

#include <map>

namespace {

struct Wrong {
    const char* name; // of the case, and of the mark in it
    const char* says;
    int others = 0; // errors of GL itself
};
constexpr Wrong wrongCases[] = {
    {"arrays beyond buffer", "error: index 3 of the vertex array ends at byte 48, and buffer 1 has 36 in "
                             "glDrawArrays(GL_POINTS, 1, 3)"},
    {"shrunk buffer",
     "error: index 9 of the vertex array ends at byte 120, and buffer 1 has 60 in glDrawArrays"},
    {"many arrays",
     "error: index 3 of the vertex array ends at byte 48, and buffer 1 has 36 in glMultiDrawArrays"},
    {"elements written later",
     "error: index 9 of the vertex array ends at byte 120, and buffer 1 has 36 in glDrawElements"},
    {"elements beyond their buffer",
     "error: the indices end at byte 8, and buffer 2 has 6 in glDrawElements"},
    {"range", "error: index 9 is not between 0 and 8 in glDrawRangeElements"},
    {"array element",
     "error: index 3 of the vertex array ends at byte 48, and buffer 1 has 36 in glArrayElement(3)"},
    {"short attribute",
     "error: index 2 of the attribute array 5 ends at byte 48, and buffer 2 has 32 in glDrawArrays"},
    {"instanced attribute", "error: index 2 of the attribute array 5 ends at byte 48, and buffer 2 has 32 in "
                            "glDrawArraysInstancedARB"},
    {"memory beyond its end", "error: the vertex array can't be read up to index 2: 36 bytes from 0x"},
    {"indices beyond their memory", "error: the indices can't be read: 6 bytes from 0x"},
    {"pixels beyond their memory", "error: 'pixels' can't be read: 21 bytes from 0x"},
    {"data beyond its memory", "error: 'data' can't be read: 16 bytes from 0x"},
    {"offset from null", "error: 'value' can't be read: 16 bytes from 0x40"},
    {"made-up texture", "warning: texture 5 was never made by glGen, and is made here in glBindTexture("},
    {"deleted texture", "error: texture 1 was deleted, and is a new one from here on in glBindTexture("},
    {"made-up buffer", "warning: buffer 9 was never made by glGen, and is made here in glBindBuffer("},
    {"deleted buffer", "error: buffer 1 was deleted, and is a new one from here on in glBindBuffer("},
    {"framebuffer without image",
     "error: framebuffer 1 is incomplete (GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT): GL_COLOR_ATTACHMENT0, "
     "renderbuffer 1, has no image in glRecti(",
     1},
    {"framebuffer of nothing",
     "error: framebuffer 1 is incomplete (GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT): nothing is attached "
     "in ",
     1},
    {"one unit for two samplers",
     "error: program 1 samples unit 0 by sampler2D flat and by samplerCube cube in glRecti(", 1},
    {"failed link", "error: program 1 is not linked: its last link failed in glRecti("},
    {"missing level", "error: GL_TEXTURE_2D 1, which is enabled in unit 0, is not complete: level 2 has no "
                      "image, and the filter "
                      "GL_LINEAR_MIPMAP_LINEAR wants it in glRecti("},
    {"other format", "level 1 has the format GL_ALPHA and not GL_RGBA, and the filter "},
    {"unequal faces", "error: GL_TEXTURE_CUBE_MAP 1, which is enabled in unit 0, is not complete: face 4 is "
                      "2 x 2 and not 4 x 4 in"},
    {"sampled without image",
     "error: GL_TEXTURE_2D 0, which flat samples in unit 0, is not complete: it has no image in glRecti("},
    {"thread without context", "error: no context is current in glEnable("},
};

// All cases of the program, and where the marks are.
struct Source {
    std::vector<std::string> cases;
    std::map<std::string, std::string> marks;
    Source() {
        const Words lines = linesOf(contentOf(SOURCES "unnoticed.cpp"));
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const std::string& line = lines[i];
            if (line.starts_with("    {\""))
                cases.push_back(line.substr(6, line.find('"', 6) - 6));
            if (const std::size_t mark = line.find("/* WRONG "); mark != std::string::npos)
                marks[line.substr(mark + 9, line.find(" */") - mark - 9)] =
                    "unnoticed.cpp:" + std::to_string(i + 1) + ": ";
        }
    }
};
const Source& source() {
    static const Source read;
    return read;
}

Words reportsOf(const std::string& said) {
    Words reports;
    for (const std::string& line : linesOf(said))
        if (line.find(": error: ") != std::string::npos || line.find(": warning: ") != std::string::npos)
            reports.push_back(line);
    return reports;
}

class UnnoticedTest : public testing::TestWithParam<std::string> {};

TEST_P(UnnoticedTest, isToldWhereItIsWrong) {
    const Words program = {FOLDER "unnoticed", GetParam()};
    const Result alone = run(program);
    if (alone.status == 77)
        GTEST_SKIP() << "no driver: no context for OpenGL";
    const Result checked = run(Words{COMMAND, "check", "--more"} + program);
    EXPECT_EQ(alone.out, checked.out);
    EXPECT_EQ(alone.status, checked.status);
    EXPECT_EQ(alone.signal, checked.signal);
    const Words reports = reportsOf(checked.err);
    const auto* const wrong = std::ranges::find(wrongCases, GetParam(), &Wrong::name);
    if (wrong == std::end(wrongCases)) {
        EXPECT_EQ(Words(), reports);
        EXPECT_FALSE(source().marks.contains(GetParam()));
        EXPECT_EQ(0, alone.signal);
        return;
    }
    ASSERT_EQ(1 + wrong->others, reports.size()) << checked.err;
    EXPECT_NE(std::string::npos, reports[0].find(source().marks.at(GetParam()))) << reports[0];
    EXPECT_NE(std::string::npos, reports[0].find(wrong->says)) << reports[0];
    // What GL reports by itself, or what is the command's in any case, is told without the option.
    const Words plain = reportsOf(run(Words{COMMAND, "check"} + program).err);
    EXPECT_EQ(GetParam() == "thread without context" ? 1 : wrong->others, plain.size());
}

INSTANTIATE_TEST_SUITE_P(, UnnoticedTest, testing::ValuesIn(source().cases),
                         [](const auto& info) { return testName(info.param); });

// The same way out as errors: counted by line, in SARIF with the check's name, and as a status.
TEST(UnnoticedReportTest, goesWhereErrorsGo) {
    const std::string file = scratch("more.sarif");
    const Result checked = run(
        {COMMAND, "check", "--more", "--stack", "--exit-code", "--sarif", file, FOLDER "unnoticed", "range"});
    if (checked.status == 77)
        GTEST_SKIP() << "no driver: no context for OpenGL";
    EXPECT_EQ(1, checked.status);
    EXPECT_NE(std::string::npos, checked.err.find("zlt_ogl: 1 error; ")) << checked.err;
    EXPECT_NE(std::string::npos, checked.err.find("note: called from main\n")) << checked.err;
    EXPECT_NE(std::string::npos, contentOf(file).find("\"ruleId\": \"out-of-bounds\""));
}

} // namespace
