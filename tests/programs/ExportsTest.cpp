// Exports captures as projects, builds those, and runs them: each picture and all that was read back must be
// equal.

#include "Captures.h"

#include <filesystem>
#include <map>
#include <span>

namespace {

namespace fs = std::filesystem;

Words exportOf(const std::string& file, const std::string& folder, const Words& options = {}) {
    return Words{COMMAND, "export", file, folder} + options;
}

// What can be built is, so that one project's fault is not another's.
Result build(const std::string& folder, const std::string& option) {
    const std::string to = folder + "/build";
    const Result made = run(
        {"cmake", "-G", "Ninja", "-S", folder, "-B", to, option, "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Werror"});
    return made.status != 0 ? made : run({"cmake", "--build", to, "-j2", "--", "-k", "0"}, 240s);
}

// "5 frames: equal"
void expectEqual(const Words& program, const std::string& frames) {
    const Result played = run(program + Words{"--verify"}, 60s);
    EXPECT_EQ(0, played.status) << program[0] << ": " << played.err;
    EXPECT_EQ(frames + ": equal\n", played.out) << program[0] << (program.size() > 1 ? " off screen" : "");
}

Words sceneOf(const std::string& name) { return {FOLDER "scenes", name}; }

// Projects that are built at once: a compiler works longer on what they have in common than on their frames.
class Batch {
public:
    Batch(const std::string& folder, std::span<const char* const> programs, Words wordsOf(const std::string&),
          const Words& captureOptions = {}, const Words& exportOptions = {})
        : folder_(scratch(folder)) {
        fs::create_directories(folder_ + "/shared");
        for (const char* program : programs) {
            if (access(wordsOf(program)[0].c_str(), X_OK) != 0)
                continue; // it is not installed
            const std::string name = testName(fileOf(program)), file = scratch(name + ".zlt");
            const Result captured = run(capture(file, captureOptions) + wordsOf(program), 40s);
            projects_[name] = {captured.status, contentSaid(captured, file), {}};
            addExport(name, file, exportOptions);
        }
    }
    // One of them with other calls.
    Batch& addEdited(const std::string& name, const std::string& from, std::string edit(std::string source)) {
        addExport(name, scratch(from + ".zlt"));
        const std::string source = folder_ + '/' + name + "/frames_0001.cpp",
                          edited = edit(contentOf(source));
        std::ofstream(source) << edited;
        return *this;
    }
    Batch& build() {
        std::ofstream(folder_ + "/CMakeLists.txt")
            << "cmake_minimum_required(VERSION 3.16)\nproject(batch CXX)\n" + folders_;
        built_ = ::build(folder_, "-DCMAKE_CXX_COMPILER_LAUNCHER=sh;" SOURCES "sharedObjects.sh;" + folder_ +
                                      "/shared");
        return *this;
    }

    // Beside its data.bin.
    std::string programOf(const std::string& name) const { return folder_ + '/' + name + '/' + name; }
    void expectBuilt(const std::string& name) const {
        ASSERT_TRUE(fs::exists(programOf(name))) << built_.out << built_.err;
    }
    void expectEqual(const std::string& program, bool isShown, const std::string& someFrames = "") const {
        const std::string name = testName(fileOf(program));
        if (!projects_.contains(name))
            GTEST_SKIP() << program << " is not installed";
        const auto& [status, content, exported] = projects_.at(name);
        if (status == 77)
            GTEST_SKIP() << "no driver: no window";
        EXPECT_EQ(0, exported.status);
        EXPECT_EQ("", exported.err);
        const std::string said = ": " + (someFrames.empty() ? content : someFrames + ", ");
        EXPECT_NE(std::string::npos, exported.out.find(said)) << exported.out << said;
        ASSERT_NO_FATAL_FAILURE(expectBuilt(name));
        const std::string frames = someFrames.empty() ? framesOf(content) : someFrames;
        ::expectEqual({programOf(name), "--headless"}, frames);
        if (isShown)
            ::expectEqual({programOf(name)}, frames);
    }

private:
    struct Project {
        int status = 0; // of the program that was captured
        std::string content;
        Result exported;
    };

    void addExport(const std::string& name, const std::string& file, const Words& options = {}) {
        const Result& exported = projects_[name].exported =
            run(exportOf(file, folder_ + '/' + name, options));
        if (exported.status == 0)
            folders_ += "set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_SOURCE_DIR}/" + name +
                        ")\nadd_subdirectory(" + name + ")\n";
    }

    std::string folder_, folders_;
    std::map<std::string, Project> projects_;
    Result built_;
};

// A statement begins behind four spaces, and what follows of it behind more.
std::string withoutEachThirdStatement(std::string source) {
    std::string rest;
    int statements = 0;
    for (const std::string& line : linesOf(source)) {
        const bool isInside = line.starts_with("    ");
        statements += isInside && line[4] != ' ';
        if (!isInside || statements % 3 != 0)
            rest += line + '\n';
    }
    EXPECT_LT(100, statements);
    return rest;
}

std::string withAnotherColor(std::string source) {
    const std::string call = "glClearColor(0.2f";
    return source.replace(source.find(call, source.find("void frame_3()")), call.size(), "glClearColor(0.5f");
}

const Batch& scenes() {
    static const Batch scenes = Batch("scenes", sceneNames, sceneOf)
                                    .addEdited("shortened", "shaders", withoutEachThirdStatement)
                                    .addEdited("recolored", "immediate", withAnotherColor)
                                    .build();
    return scenes;
}

class ExportsTest : public testing::TestWithParam<const char*> {};

TEST_P(ExportsTest, isPlayedEqual) { scenes().expectEqual(GetParam(), true); }

INSTANTIATE_TEST_SUITE_P(, ExportsTest, testing::ValuesIn(sceneNames), nameOfProgram);

TEST(EditedTest, isBuiltWithoutSomeStatements) { scenes().expectBuilt("shortened"); }

TEST(EditedTest, saysWhichFrameDiffersFirst) {
    scenes().expectBuilt("recolored");
    const Result played = run({scenes().programOf("recolored"), "--headless", "--verify"});
    EXPECT_EQ(1, played.status) << played.err;
    EXPECT_EQ(0, played.out.find("frame 3: ")) << played.out;
}

// As a user builds it, by each compiler that there is. What GLFW itself calls is little: without more, all
// that the project's own sources call must be declared.
TEST(AloneTest, isPlayedEqual) {
    const std::string file = scratch("alone.zlt");
    for (const auto& [compiler, scene, captureOptions, frames] :
         {std::tuple("c++", "lists", Words{"--frames", "1"}, "1 frame"),
          std::tuple("clang++", "shaders", Words{}, "5 frames")}) {
        if (run({compiler, "--version"}).status != 0)
            continue;
        if (run(capture(file, captureOptions) + sceneOf(scene)).status == 77)
            GTEST_SKIP() << "no driver: no window";
        const std::string folder = scratch(std::string("alone_") + scene);
        EXPECT_EQ(0, run(exportOf(file, folder, {"--name", "other-name"})).status);
        const Result built = build(folder, std::string("-DCMAKE_CXX_COMPILER=") + compiler);
        ASSERT_EQ(0, built.status) << built.out << built.err;
        expectEqual({folder + "/build/other-name", "--headless"}, frames);
    }
}

std::string captured(const std::string& scene) {
    std::string file = scratch(scene + ".zlt");
    run(capture(file) + sceneOf(scene));
    return file;
}

std::map<std::string, std::string> contentsOf(const std::string& folder) {
    std::map<std::string, std::string> contents;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        contents[entry.path()] = contentOf(entry.path());
    return contents;
}

TEST(ExportDamageTest, whatCannotBeReadOrWrittenIsSaid) {
    const std::string file = captured("lists"), folder = scratch("wrong"), source = SOURCES "scenes.cpp";
    for (const auto& [words, sentence] : std::initializer_list<std::pair<Words, std::string>>{
             {exportOf(source, folder), source + " is no capture"},
             {exportOf("/nowhere.zlt", folder), "/nowhere.zlt can't be read"},
             {exportOf(file, folder, {"--name", "a/b"}), "a/b can't be the name of a program"},
             {exportOf(file, folder, {"--frames", "9-3"}), "9-3 is no range of frames"},
             {exportOf(file, "/dev/null/project"), "/dev/null/project can't be made"}}) {
        const Result result = run(words);
        EXPECT_LT(0, result.status) << sentence;
        EXPECT_EQ(0, result.err.find("zlt_ogl: " + sentence)) << result.err;
        EXPECT_FALSE(fs::exists(folder)) << sentence;
    }
}

TEST(ExportDamageTest, otherFilesAreLeftAlone) {
    const std::string file = captured("lists");
    for (const char* name : {"notes.txt", "frames.h", "others/data.bin"}) {
        const std::string folder = scratch("foreign_" + testName(name));
        fs::create_directories(folder + "/others");
        for (const std::string mine : {"frames_0001.cpp", name})
            std::ofstream(folder + '/' + mine) << "mine";
        const auto before = contentsOf(folder);
        const Result result = run(exportOf(file, folder));
        EXPECT_EQ(1, result.status);
        EXPECT_EQ("zlt_ogl: " + folder + " has files in it, and they are no exported project.\n", result.err);
        EXPECT_EQ(before, contentsOf(folder));
    }
}

TEST(ExportDamageTest, anEarlierProjectIsWrittenOver) {
    const std::string folder = scratch("twice"), file = captured("lists");
    run(exportOf(file, folder));
    const auto first = contentsOf(folder);
    for (const char* changed : {"/frames_0007.cpp", "/frames_0001.cpp", "/data.bin"})
        std::ofstream(folder + changed) << "of a longer one";
    EXPECT_EQ(0, run(exportOf(file, folder)).status);
    EXPECT_EQ(first, contentsOf(folder));
}

TEST(ExportDamageTest, whatIsWholeInFrontOfItIsExported) {
    const Words program = wordsOf("antspotlight");
    if (access(program[0].c_str(), X_OK) != 0)
        GTEST_SKIP() << program[0] << " is not installed";
    const std::string file = scratch("cut.zlt"), folder = scratch("cut");
    run(capture(file, {"--frames", "4"}) + program, 40s);
    fs::resize_file(file, fs::file_size(file) * 4 / 5);
    const Result exported = run(exportOf(file, folder)), played = run({COMMAND, "replay", file}, 60s);
    EXPECT_EQ(1, exported.status);
    EXPECT_EQ(0, exported.err.find("zlt_ogl: " + file + " is damaged at byte ")) << exported.err;
    EXPECT_EQ(0, exported.out.find(folder + ": " + played.out.substr(0, played.out.find(" calls"))))
        << exported.out;
    EXPECT_EQ(std::string::npos, exported.out.find(": 0 frames"));
    EXPECT_TRUE(fs::exists(folder + "/CMakeLists.txt"));
}

// Programs that know nothing of us, and make few calls.
constexpr const char* foreignPrograms[] = {
    "/usr/bin/glxgears", "antinspect", "blinkbox", "circuit",     "crumbler", "cubestack",    "cubestorm",
    "flipflop",          "gears",      "gflux",    "glblur",      "glcells",  "gleidescope",  "glmatrix",
    "glsnake",           "gltext",     "queens",   "hypertorus",  "moebius",  "kaleidocycle", "romanboy",
    "topblock",          "unicrud",    "atunnel",  "sierpinski3d"};

class ExportedTest : public testing::TestWithParam<const char*> {};

TEST_P(ExportedTest, isPlayedEqual) {
    static const Batch programs = Batch("foreign", foreignPrograms, wordsOf, {"--frames", "3"}).build();
    programs.expectEqual(GetParam(), false);
}

INSTANTIATE_TEST_SUITE_P(, ExportedTest, testing::ValuesIn(foreignPrograms), nameOfProgram);

// Frames from the middle, in front of which the state of all in front of them is made.
constexpr const char* middleScenes[] = {"textures", "buffers",  "framebuffers", "shaders",
                                        "assembly", "lists",    "queries",      "arrays",
                                        "stacks",   "contexts", "once",         "core"};

class MiddleTest : public testing::TestWithParam<const char*> {};

TEST_P(MiddleTest, isPlayedEqual) {
    static const Batch middles = Batch("middles", middleScenes, sceneOf, {}, {"--frames", "3-4"}).build();
    middles.expectEqual(GetParam(), true, "2 frames");
}

INSTANTIATE_TEST_SUITE_P(, MiddleTest, testing::ValuesIn(middleScenes), nameOfProgram);

} // namespace
