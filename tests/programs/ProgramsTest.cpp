// Runs a program as it is, and by the command, which must change nothing of it; and looks at what it says.

#include "RunProgram.h"

#include <map>

namespace {

// What the command says, without what the program says.
Words saidBy(const Result& watched, const Result& alone) {
    Words said = linesOf(watched.err);
    for (const std::string& line : linesOf(alone.err))
        if (const auto found = std::find(said.begin(), said.end(), line); found != said.end())
            said.erase(found);
    return said;
}

Words errorsOf(const Words& said) {
    Words errors;
    for (const std::string& line : said)
        if (line.find(": error: ") != std::string::npos)
            errors.push_back(line);
    return errors;
}

// The place that is marked in the source.
std::string placeOf(const std::string& source, const std::string& mark) {
    const Words lines = linesOf(contentOf(SOURCES + source));
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i].find("/* WRONG " + mark + " */") != std::string::npos)
            return source + ':' + std::to_string(i + 1) + ": ";
    return "no mark " + mark;
}

void expectSame(const Result& alone, const Result& watched) {
    EXPECT_FALSE(alone.hung);
    EXPECT_FALSE(watched.hung);
    EXPECT_EQ(alone.out, watched.out);
    EXPECT_EQ(alone.status, watched.status);
    EXPECT_EQ(alone.signal, watched.signal);
}

struct Case {
    const char* group;
    std::string program, argument;
    const char* says;           // by `check`, at last
    const char* mark = nullptr; // of its wrong call
    const char* report = "GL_INVALID_ENUM in glEnable(0xDEAD)";
    bool children = false;
};
std::string nameOf(const testing::TestParamInfo<Case>& info) {
    return info.param.group + testName('_' + fileOf(info.param.program) + '_' + fileOf(info.param.argument));
}

std::vector<Case> cases() {
    constexpr const char* fine = "zlt_ogl: 0 errors; ";
    constexpr const char* one = "zlt_ogl: 1 error; ";
    // The beginning of a program draws by 25 calls, which is all of what some are to be seen of.
    constexpr const char* started = "zlt_ogl: 0 errors; 25 calls, 1 context, 1 thread, 0 frames.";
    std::vector<Case> all;
    for (const char* form : {"wrong_O0", "wrong_O2", "wrong_dwarf4", "wrong_dwarf5", "wrong_clang"}) {
        for (const char* way : {"own", "last", "inlined", "library", "thread"})
            all.push_back({"Wrong", form, way, one, way});
        all.push_back({"Wrong", form, "list", one, "list", "GL_INVALID_ENUM in glCallList(1)"});
        all.push_back({"Wrong", form, "early", one, "early", "no context is current in glEnable("});
    }
    for (const char* way : {"ends", "begins", "compiled", "names", "base", "tessellator", "threads"})
        all.push_back({"Right", "right", way, fine});
    for (const char* way : {"plain", "fork", "fork first", "exec", "kill", "_exit", "abort", "environment"})
        all.push_back({"Ways", "ways", way, started});
    for (const char* way : {"alarm", "jump"})
        all.push_back({"Ways", "ways", way, one, "alarm"});
    for (const char* way : {"bytes", "loader"})
        all.push_back({"Ways", "ways", way, fine});
    all.push_back(
        {"Ways", "ways", "threads", "zlt_ogl: 0 errors; 18429 calls, 5 contexts, 5 threads, 0 frames."});
    for (const char* plugin : {"", FOLDER "libplugin.so"})
        all.push_back({"Ways", "opened", plugin, started});
    all.push_back({"Ways", "embedded", "", "zlt_ogl: 0 errors; " FOLDER "embedded called no OpenGL."});
    const char* child = "GL_INVALID_ENUM in glEnable(0xDEAD)";
    all.push_back({"Ways", "ways", "fork", "zlt_ogl: 1 error; 26 calls, ", "child", child, true});
    all.push_back({"Ways", "ways", "fork first", "zlt_ogl: 1 error; 51 calls, ", "child", child, true});
    all.push_back({"Ways", "ways", "exec", "zlt_ogl: 0 errors; 50 calls, ", nullptr, "", true});
    for (const char* toolkit : {"freeglut", "sdl", "glfw", "glew", "epoxy", "/usr/bin/glxinfo"})
        all.push_back({"Windows", toolkit, "", fine});
    all.push_back(
        {"Windows", "/usr/bin/eglinfo", "", "zlt_ogl: 0 errors; /usr/bin/eglinfo called no OpenGL."});
    return all;
}

class ProgramsTest : public testing::TestWithParam<Case> {};

TEST_P(ProgramsTest, isNotChangedAndItsErrorsAreSeen) {
    const Case& row = GetParam();
    Words program = {row.program[0] == '/' ? row.program : FOLDER + row.program};
    if (!row.argument.empty())
        program.push_back(row.argument);
    if (access(program[0].c_str(), X_OK) != 0)
        GTEST_SKIP() << program[0] << " is not there";
    const std::string file = scratch("trace");
    const Words children = row.children ? Words{"--children"} : Words{};
    const Result alone = run(program), checked = run(Words{COMMAND, "check"} + children + program),
                 traced = run(Words{COMMAND, "trace", "-o", file} + children + program);
    if (alone.status == 77)
        GTEST_SKIP() << "no driver: no context for OpenGL";
    expectSame(alone, checked);
    expectSame(alone, traced);
    const Words said = saidBy(checked, alone), errors = errorsOf(said);
    ASSERT_FALSE(said.empty());
    EXPECT_EQ(0, said.back().find(row.says)) << said.back();
    EXPECT_EQ(row.children, said.back().ends_with(", 2 programs."));
    ASSERT_EQ(row.mark ? 1 : 0, errors.size()) << checked.err;
    if (row.mark) {
        const std::string source = row.program.starts_with("wrong") ? "wrong.cpp" : "ways.cpp";
        EXPECT_NE(std::string::npos, errors[0].find(placeOf(source, row.mark) + "error: " + row.report))
            << errors[0];
    }
    EXPECT_EQ(1, saidBy(traced, alone).size()) << traced.err;
    for (const std::string& line : linesOf(contentOf(file)))
        ASSERT_TRUE(line.starts_with("// ") || (line.find(": gl") < line.size() && line.ends_with(')')))
            << line;
}

INSTANTIATE_TEST_SUITE_P(, ProgramsTest, testing::ValuesIn(cases()), [](const auto& info) {
    return nameOf(info) + (info.param.children ? "_children" : "");
});

// GLU has no lines: the nearest caller that has one stands below.
TEST(WrongCallOfToolkit, hasTheLineOfItsCaller) {
    for (const std::string form : {"O0", "O2"}) {
        const std::string said = run({COMMAND, "check", FOLDER "wrong_" + form, "mipmaps"}).err;
        const std::size_t error = said.find(": error: GL_INVALID_ENUM in glTexImage1D(GL_TEXTURE_2D, 0, ");
        EXPECT_EQ(0, said.find("libGLU.so."));
        ASSERT_NE(std::string::npos, error) << said;
        EXPECT_NE(std::string::npos, said.find(placeOf("wrong.cpp", "mipmaps") + "note: called from ", error))
            << said;
    }
}

using Counts = std::map<std::string, int>;

// Each function by its name. What apitrace does for itself is marked; so are pointers to memory of the
// program, which it writes down where they are used.
void count(Counts& counts, const std::string& function) {
    if (function.starts_with("gl") && !function.starts_with("glX") && !function.ends_with("Pointer"))
        ++counts[function];
}

Counts callsOfApitrace(const std::string& file) {
    Counts counts;
    for (const std::string& line : linesOf(run({"apitrace", "dump", "--verbose", "--color=never", file}).out))
        if (const std::size_t begin = line.find(' ') + 1; !line.ends_with(" // fake"))
            count(counts, line.substr(begin, line.find('(') - begin));
    return counts;
}

Counts callsOfTrace(const std::string& file) {
    Counts counts;
    for (const std::string& line : linesOf(contentOf(file)))
        if (const std::size_t begin = line.find(": gl"); begin != std::string::npos)
            count(counts, line.substr(begin + 2, line.find('(', begin) - begin - 2));
    return counts;
}

class CountsTest : public testing::TestWithParam<const char*> {};

TEST_P(CountsTest, apitraceSeesTheSameCalls) {
    const Words program = wordsOf(GetParam());
    if (access(program[0].c_str(), X_OK) != 0 || access(WRAPPERS "egltrace.so", R_OK) != 0)
        GTEST_SKIP() << program[0] << " or apitrace is not installed";
    const std::string ours = scratch("trace"), theirs = scratch("apitrace");
    const Words trace = {COMMAND, "trace", "-o", ours};
    if (program[0].starts_with(FOLDER)) {
        run(Words{"apitrace", "trace", "-o", theirs} + program);
        run(trace + program);
    } else {
        // No run of it is as the one before: both look at the same one.
        setenv("TRACE_FILE", theirs.c_str(), 1);
        setenv("FRAMES", "5", 1);
        const std::string wrapper = program.size() == 1 ? "glxtrace.so" : "egltrace.so";
        const Result result = run(trace + program, 0ms, FOLDER "libending.so:" WRAPPERS + wrapper);
        EXPECT_FALSE(result.hung);
        EXPECT_EQ(0, result.status);
        EXPECT_EQ(0, result.signal);
    }
    const Counts expected = callsOfApitrace(theirs);
    EXPECT_LT(5, expected.size());
    EXPECT_EQ(expected, callsOfTrace(ours));
}

INSTANTIATE_TEST_SUITE_P(, CountsTest,
                         testing::Values(FOLDER "freeglut", FOLDER "sdl", FOLDER "glfw", FOLDER "epoxy",
                                         "/usr/bin/glxgears", "antinspect", "atunnel", "bubble3d", "circuit",
                                         "cityflow", "crumbler", "engine", "flipflop", "gears", "glcells",
                                         "glmatrix", "gltext", "lavalite", "moebius", "morph3d", "romanboy",
                                         "queens", "hypertorus", "topblock", "unicrud"),
                         nameOfProgram);

class SaversTest : public testing::TestWithParam<const char*> {};

TEST_P(SaversTest, haveNoErrorsAndEndAsWithoutUs) {
    const Words program = wordsOf(GetParam());
    if (access(program[0].c_str(), X_OK) != 0)
        GTEST_SKIP() << program[0] << " is not installed";
    Result result;
    for (const auto time : {1s, 4s, 16s}) { // on a busy machine it has not drawn yet
        result = run(Words{COMMAND, "check"} + program, time);
        if (result.err.find(" 0 frames") == std::string::npos)
            break;
    }
    EXPECT_FALSE(result.hung);
    EXPECT_EQ(SIGTERM, result.signal);
    const Words said = linesOf(result.err);
    ASSERT_FALSE(said.empty());
    EXPECT_EQ(0, said.back().find("zlt_ogl: 0 errors; ")) << result.err;
    EXPECT_EQ(std::string::npos, said.back().find(" 0 frames")) << said.back();
}

INSTANTIATE_TEST_SUITE_P(, SaversTest,
                         testing::Values("/usr/bin/glxgears", "antinspect", "atunnel", "bubble3d", "circuit",
                                         "cityflow", "crumbler", "discoball", "engine", "flipflop", "gears",
                                         "glcells", "glmatrix", "gltext", "lavalite", "moebius", "morph3d",
                                         "queens", "romanboy", "topblock"),
                         nameOfProgram);

} // namespace
