#include "FakeObjects.h"
#include "StartedLibrary.h"
#include "ogl/FragmentShader.h"
#include "ogl/Program.h"
#include "ogl/VertexShader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

using namespace ZLT::OGL;
using testing::ElementsAre;

namespace {

// The program that is made is 5, and the shader 6.
struct ProgramTest : testing::Test {
    ProgramTest() {
        FakeGL::setResult("glCreateProgram", 5u);
        FakeGL::setResult("glCreateShader", 6u);
    }
    LibraryWithAllOfGL library;
    FakeObjects objects;
};

const char* const name = "";
// "8" and "9" among the calls.
const int* const ints = reinterpret_cast<const int*>(8);       // NOLINT(performance-no-int-to-ptr)
const float* const floats = reinterpret_cast<const float*>(9); // NOLINT(performance-no-int-to-ptr)
using Byte = unsigned char;

enum Rule { Scalar, Matrix, Integers, Floats };
const struct UniformRow {
    Rule rule;
    const char *member, *call, *values; // the call's name, and what stands behind the location
    void (*set)(Program&, int form, int location);
} uniformRows[] = {
// clang-format off
#define ROW(rule, member, call, values, ...)                                                              \
    {rule, #member "(" #__VA_ARGS__ ")", "glUniform" call, values,                                        \
     [](Program& program, int form, int location) {                                                       \
         form == 0   ? program.member(location, __VA_ARGS__)                                              \
         : form == 1 ? program.member(name, __VA_ARGS__)                                                  \
         : form == 2 ? program.member##_Unsafe(location, __VA_ARGS__)                                     \
                     : program.member##_Unsafe(name, __VA_ARGS__); }}
#define SCALARS(type, a, b, c, d, x, y, z, w)                                                             \
    ROW(Scalar, setUniform, "1" type, a, x), ROW(Scalar, setUniform, "2" type, a ", " b, x, y),           \
    ROW(Scalar, setUniform, "3" type, a ", " b ", " c, x, y, z),                                          \
    ROW(Scalar, setUniform, "4" type, a ", " b ", " c ", " d, x, y, z, w)
    SCALARS("i", "1", "0", "0", "1", true, false, false, true),
    SCALARS("i", "1", "2", "3", "255", Byte(1), Byte(2), Byte(3), Byte(255)),
    SCALARS("i", "-8", "9", "10", "11", -8, 9, 10, 11),
    SCALARS("f", "0.5", "-1.5", "2", "3", 0.5f, -1.5f, 2.0f, 3.0f),
    ROW(Scalar, setUniformSampler1D, "1i", "3", 3), ROW(Scalar, setUniformSampler2D, "1i", "3", 3),
    ROW(Scalar, setUniformSampler3D, "1i", "3", 3), ROW(Scalar, setUniformSampler2DRECT, "1i", "3", 3),
    ROW(Matrix, setUniformMatrices2, "Matrix2fv", "4, 1, 9", 4, floats, 1),
    ROW(Matrix, setUniformMatrices3, "Matrix3fv", "4, 0, 9", 4, floats, 0),
    ROW(Matrix, setUniformMatrices4, "Matrix4fv", "4, 1, 9", 4, floats, 1),
    ROW(Matrix, setUniformMatrix2, "Matrix2fv", "1, 0, 9", floats, 0),
    ROW(Matrix, setUniformMatrix3, "Matrix3fv", "1, 1, 9", floats, 1),
    ROW(Matrix, setUniformMatrix4, "Matrix4fv", "1, 0, 9", floats, 0),
    ROW(Integers, setUniform, "1iv", "2, 8", 2, ints), ROW(Floats, setUniform, "1fv", "2, 9", 2, floats),
    ROW(Integers, setUniform2, "2iv", "2, 8", 2, ints), ROW(Floats, setUniform2, "2fv", "2, 9", 2, floats),
    ROW(Integers, setUniform3, "3iv", "2, 8", 2, ints), ROW(Floats, setUniform3, "3fv", "2, 9", 2, floats),
    // Of four components, three are set: as it stands.
    ROW(Integers, setUniform4, "4iv", "2, 8", 2, ints), ROW(Floats, setUniform4, "3fv", "2, 9", 2, floats),
    // clang-format on
};
// By rule and form, and behind them with location -1: c asks for the current program, l looks the location
// up, s sets.
const char* const uniformSteps[][8] = {{"cs", "clcs", "s", "ls", "cs", "clcs", "", "l"},
                                       {"cs", "lcs", "s", "ls", "cs", "lcs", "", "l"},
                                       {"cs", "ls", "s", "ls", "cs", "ls", "", "ls"},
                                       {"cs", "ls", "s", "ls", "cs", "ls", "s", "ls"}};

TEST_F(ProgramTest, everyUniformFormAsksSkipsAndRefusesByItsRule) {
    Program program;
    int runs = 0;
    for (const UniformRow& row : uniformRows)
        for (int variant = 0; variant < 16; ++variant, ++runs) { // the last 8 with another program current
            const int location = variant & 4 ? -1 : 7;
            const std::string steps = uniformSteps[row.rule][variant % 8];
            const bool refused = variant >= 8 && steps.find('c') < steps.size();
            std::vector<std::string> calls;
            for (const char step : steps.substr(0, refused ? steps.find('c') + 1 : steps.size()))
                calls.push_back(step == 'c'   ? "glGetIntegerv(GL_CURRENT_PROGRAM, p)"
                                : step == 'l' ? "glGetUniformLocation(5, p)"
                                              : std::string(row.call) + '(' + std::to_string(location) +
                                                    ", " + row.values + ')');
            objects.integers[GL_CURRENT_PROGRAM] = variant < 8 ? 5 : 4;
            FakeGL::setResult("glGetUniformLocation", location);
            objects.takeAllCalls();
            EXPECT_EQ(refused ? "!Program must be enabled to set uniform parameter" : "",
                      failureOf([&] { row.set(program, variant % 4, location); }));
            EXPECT_EQ(calls, objects.takeAllCalls()) << row.member << " variant " << variant;
        }
    EXPECT_EQ(136 * 4, runs);
}

template <class Uniform, class... Values>
concept Sets = requires(Program& program, Uniform uniform, Values... values) {
    program.setUniform(uniform, values...);
};
template <class Uniform, class... Values>
concept SetsUnsafe = requires(Program& program, Uniform uniform, Values... values) {
    program.setUniform_Unsafe(uniform, values...);
};
// How many of the four forms take the values.
template <class... Values>
constexpr int forms = Sets<int, Values...> + Sets<const char*, Values...> + SetsUnsafe<int, Values...> +
                      SetsUnsafe<const char*, Values...>;
// A pointer is an array with its length in front, and never a boolean.
static_assert(forms<int, const int*> == 4 && forms<unsigned char, float*> == 4 &&
              forms<std::size_t, int*> == 4);
static_assert(forms<bool, bool> == 4 && forms<bool> == 4 && forms<int, int, int, int> == 4);
static_assert(forms<int, double*> + forms<int, const unsigned*> + forms<int, short*> + forms<int, void*> ==
              0);
static_assert(forms<int*> + forms<const char*> + forms<const int*, int> + forms<int, float*, int> == 0);
static_assert(forms<int, int, const int*> + forms<bool, bool, bool, void (*)()> + forms<int, int**> == 0);

TEST_F(ProgramTest, compileAndLinkReadNoMoreThanTheyNeed) {
    const std::string slow = "It will run in software", other = "Run in Software";
    const struct {
        bool link, check;
        int status, length;
        std::string log, failure;
        std::size_t calls; // of: the deed, its status, the log's length, the log
    } rows[] = {{false, false, 0, 6, "no go", "", 1},
                {false, true, 1, 6, "no go", "", 2},
                {false, true, 0, 0, "", "!Unknown Compile Error.", 3},
                {false, true, 0, 1, "", "!Program Compile Error: \n", 4},
                {false, true, 0, -1, "no go", "!Program Compile Error: \n", 4},
                {false, true, 0, -2, "no go", "!Program Compile Error: \n", 4},
                {false, true, 0, 6, "no go", "!Program Compile Error: \nno go", 4},
                {true, false, 0, 6, "no go", "", 1},
                {true, true, 0, 0, "", "!Unknown Program Link Error\n", 3},
                {true, true, 0, 1, "", "!Unknown Program Link Error\n", 3},
                {true, true, 0, -1, "no go", "!Unknown Program Link Error\n", 3},
                {true, true, 0, 24, slow, "!Program Link Error: \n" + slow, 4},
                {true, true, 1, 1, "", "", 3},
                {true, true, 1, 16, other, "", 4},
                {true, true, 1, 24, slow, "!Program Link Error(Falling to Software): \n" + slow, 4}};
    Program program;
    VertexShader shader;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.link ? "link, " : "compile, ") + (row.check ? "" : "not ") +
                     "checked, " + std::to_string(row.status) + ", " + std::to_string(row.length));
        objects.parameters = {{row.link ? GL_LINK_STATUS : GL_COMPILE_STATUS, row.status},
                              {GL_INFO_LOG_LENGTH, row.length}};
        objects.infoLog = row.log;
        objects.takeAllCalls();
        EXPECT_EQ(row.failure,
                  failureOf([&] { row.link ? program.link(row.check) : shader.compile(row.check); }));
        const std::vector<std::string> calls = objects.takeAllCalls();
        EXPECT_EQ(row.link ? "glLinkProgram(5)" : "glCompileShader(6)", calls.front());
        EXPECT_EQ(row.calls, calls.size());
        EXPECT_EQ(row.status == 1, row.link ? program.isLinked() : shader.isCompiled());
        EXPECT_EQ(row.length, row.link ? program.getInfoLogLength() : shader.getInfoLogLength());
        char log[4] = "###";
        row.link ? program.getInfoLog(3, log) : shader.getInfoLog(3, log);
        EXPECT_EQ(row.log.substr(0, 2), log);
    }
}

TEST_F(ProgramTest, eachCopyDeletesItsHandleWhichMustNotBe0) {
    const auto make = [] { const Program made; };
    const auto makeWrong = [] { const Shader made(static_cast<Shader::ShaderType>(2)); };
    {
        const Program program, programCopy(program);
        const FragmentShader fragment, copy(fragment);
        FakeGL::setResult("glCreateShader", 7u);
        VertexShader other;
        static_cast<Shader&>(other) = copy; // and 7 is lost
        objects.takeCalls();
    }
    EXPECT_THAT(objects.takeCalls(),
                ElementsAre("glDeleteShader(6)", "glDeleteShader(6)", "glDeleteShader(6)",
                            "glDeleteProgram(5)", "glDeleteProgram(5)"));
    struct Emptied : Program {
        ~Emptied() noexcept(false) override { _hObject = 0; }
    };
    EXPECT_EQ("!_hObject != 0", failureOf([] { const Emptied made; }));
    EXPECT_EQ("!_hObject != 0", failureWhileUnwinding([] { const Emptied made; }));
    FakeGL::setResult("glCreateShader", 0u);
    FakeGL::setResult("glCreateProgram", 0u);
    EXPECT_EQ("!_hObject != 0", failureOf([] { const VertexShader made; }));
    EXPECT_EQ("!_hObject != 0", failureOf(make));
    EXPECT_EQ("!Unknown Compile Error.", failureOf([] { FragmentShader().compile(true); }))
        << "the constructor accepts it, and the first failure hides that of the destructor";
    EXPECT_EQ("!!\"Type enums are not all properly translated.\"", failureOf(makeWrong));
    EXPECT_THAT(objects.takeCalls(), Not(testing::Contains(testing::HasSubstr("glDelete"))));
    EXPECT_TRUE(Shader::isSupported() && Program::isSupported());
    releaseOGLContext();
    EXPECT_FALSE(Shader::isSupported() || Program::isSupported());
    for (const auto& failure : {failureOf(make), failureOf(makeWrong)})
        EXPECT_EQ("!ExtensionManager::Instance()->isSupported(OPEN_GL_2_0)", failure);
}

TEST_F(ProgramTest, shadersAreAttachedOnceTheyHaveASource) {
    Program program;
    VertexShader shader;
    const char* const noSource = "!Shader must be loaded before attaching";
    objects.parameters[GL_SHADER_SOURCE_LENGTH] = 1;
    objects.takeCalls();
    EXPECT_EQ("!Enforce shader != NULL", failureOf([&] { program.attach(nullptr); }));
    EXPECT_EQ(noSource, failureOf([&] { program.attach(&shader); }));
    objects.parameters[GL_SHADER_SOURCE_LENGTH] = 2; // and it isn't compiled
    program.attach(&shader);
    program.detach(&shader);
    EXPECT_THAT(objects.takeCalls(), ElementsAre("glAttachShader(5, 6)", "glDetachShader(5, 6)"));
    const char *const source = "glShaderSource(6, 2, null, null)", *const compile = "glCompileShader(6)",
                      *const ask = "glGetShaderiv(6, GL_SHADER_SOURCE_LENGTH, p)";
    for (const auto& [kind, load] : {std::pair("VERTEX", &Program::loadVertexShader),
                                     std::pair("FRAGMENT", &Program::loadFragmentShader)}) {
        const std::string make = "glCreateShader(GL_" + std::string(kind) + "_SHADER)";
        const std::size_t allocated = ZLT::Core::allocationCount();
        objects.parameters[GL_SHADER_SOURCE_LENGTH] = 2;
        objects.takeAllCalls();
        (program.*load)(2, nullptr, nullptr);
        EXPECT_THAT(objects.takeAllCalls(),
                    ElementsAre(make, source, compile, ask, "glAttachShader(5, 6)", "glDeleteShader(6)"));
        EXPECT_EQ(allocated, ZLT::Core::allocationCount());
        objects.parameters[GL_SHADER_SOURCE_LENGTH] = 1;
        EXPECT_EQ(noSource, failureOf([&, load = load] { (program.*load)(2, nullptr, nullptr); }));
        EXPECT_THAT(objects.takeAllCalls(), ElementsAre(make, source, compile, ask));
        EXPECT_EQ(allocated + 1, ZLT::Core::allocationCount()) << "the shader is lost";
    }
}

TEST_F(ProgramTest, detachingGoesInPassesOf64) {
    Program program;
    const auto run = [&](void (Program::*detach)(), int typeOfAll, unsigned int attached) {
        objects.parameters[GL_SHADER_TYPE] = typeOfAll;
        objects.attached.resize(attached);
        std::iota(objects.attached.begin(), objects.attached.end(), 1);
        (program.*detach)();
        const auto asked = std::ranges::count(objects.takeAllCalls(), "glGetAttachedShaders(5, 64, p, p)");
        return std::to_string(objects.attached.size()) + " left in " + std::to_string(asked);
    };
    EXPECT_EQ("0 left in 6", run(&Program::detachAllShaders, GL_VERTEX_SHADER, 300));
    EXPECT_EQ("44 left in 4", run(&Program::detachAllVertexShaders, GL_VERTEX_SHADER, 300));
    EXPECT_EQ("3 left in 4", run(&Program::detachAllVertexShaders, GL_FRAGMENT_SHADER, 3));
    EXPECT_EQ("44 left in 4", run(&Program::detachAllFragmentShaders, GL_FRAGMENT_SHADER, 300));
    EXPECT_EQ("3 left in 4", run(&Program::detachAllFragmentShaders, GL_VERTEX_SHADER, 3));
}

TEST_F(ProgramTest, someQuestionsAndEnablingNeedALink) {
    Program program;
    objects.parameters = {{GL_ACTIVE_UNIFORMS, 3}, {GL_ACTIVE_UNIFORM_MAX_LENGTH, 12}};
    for (const bool linked : {false, true}) {
        objects.parameters[GL_LINK_STATUS] = objects.parameters[GL_VALIDATE_STATUS] = linked;
        const std::string refusal = linked ? "" : "!Program must be linked to get active uniform count";
        EXPECT_EQ(refusal, failureOf([&] { EXPECT_EQ(3u, program.getActiveUniformCount()); }));
        EXPECT_EQ(refusal, failureOf([&] { EXPECT_EQ(12, program.getMaxUniformStringLength()); }));
        EXPECT_EQ(refusal, failureOf([&] { program.getActiveUniform(2, 40, nullptr, nullptr, nullptr); }));
        EXPECT_EQ(linked ? "glGetActiveUniform(5, 2, 40, p, null, null, null)"
                         : "glGetProgramiv(5, GL_LINK_STATUS, p)",
                  objects.takeAllCalls().back());
        EXPECT_EQ(linked ? "" : "!Program must be linked before being enabled",
                  failureOf([&] { program.enable(); }));
        EXPECT_EQ(linked, program.isEnabled());
        EXPECT_EQ(linked, program.validate());
    }
    objects.integers[GL_CURRENT_PROGRAM] = 4;
    program.setAttributeLocation(3, name);
    program.disable(); // whichever is current
    FakeGL::setResult("glGetAttribLocation", -1);
    EXPECT_EQ(-1, program.getAttributeLocation(name));
    EXPECT_THAT(objects.takeCalls(), ElementsAre("glUseProgram(5)", "glValidateProgram(5)",
                                                 "glBindAttribLocation(5, 3, p)", "glUseProgram(0)"));
}

} // namespace
