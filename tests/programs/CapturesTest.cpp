// Captures programs, and plays the captures: each picture and all that was read back must be equal.

#include "Captures.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

const Words replay = {COMMAND, "replay", "--verify"};

// "20 frames: equal", in the first line.
void expectEqual(const std::string& file, const std::string& frames) {
    const Result played = run(replay + Words{file}, 60s);
    EXPECT_FALSE(played.hung);
    EXPECT_EQ(0, played.status) << played.err;
    ASSERT_FALSE(linesOf(played.out).empty()) << played.err;
    EXPECT_EQ(frames + ": equal", linesOf(played.out)[0]);
}

class ScenesTest : public testing::TestWithParam<const char*> {};

TEST_P(ScenesTest, isPlayedEqual) {
    const Words program = {FOLDER "scenes", GetParam()};
    const std::string file = scratch("scene.zlt");
    const Result alone = run(program), captured = run(capture(file) + program);
    if (alone.status == 77)
        GTEST_SKIP() << "no driver: no window";
    EXPECT_EQ(alone.out, captured.out) << "a capture changes nothing";
    EXPECT_EQ(0, captured.status) << captured.err;
    ASSERT_EQ(2, linesOf(captured.err).size()) << captured.err;
    expectEqual(file, framesOf(contentSaid(captured, file)));
}

INSTANTIATE_TEST_SUITE_P(, ScenesTest, testing::ValuesIn(sceneNames), nameOfProgram);

// By a layer that gives all objects other names, and all uniform variables other locations.
TEST(OtherNamesTest, areMapped) {
    for (const char* scene :
         {"textures", "shaders", "assembly", "buffers", "framebuffers", "lists", "queries"}) {
        const std::string file = scratch("names.zlt");
        run(capture(file) + Words{FOLDER "scenes", scene});
        const Result played = run({FOLDER "othernames", file}, 60s);
        EXPECT_EQ(0, played.status) << scene;
        const std::string names = std::string(scene) == "lists" ? "no names" : "renamed";
        EXPECT_NE(std::string::npos, played.out.find(", " + names + ", equal"))
            << scene << ": " << played.out;
    }
}

class CapturedTest : public testing::TestWithParam<const char*> {};

TEST_P(CapturedTest, isPlayedEqual) {
    const Words program = wordsOf(GetParam());
    if (access(program[0].c_str(), X_OK) != 0)
        GTEST_SKIP() << program[0] << " is not installed";
    const std::string file = scratch("program.zlt");
    const Result captured = run(capture(file, {"--frames", "20"}) + program, 40s);
    EXPECT_FALSE(captured.hung);
    EXPECT_EQ(0, captured.status) << "it was ended by us: " << captured.err;
    EXPECT_EQ(0, captured.signal);
    expectEqual(file, "20 frames");
}

INSTANTIATE_TEST_SUITE_P(
    , CapturedTest,
    testing::Values("/usr/bin/glxgears", "antinspect", "antmaze", "antspotlight", "atlantis", "atunnel",
                    "beats", "blinkbox", "blocktube", "bouncingcow", "boxed", "bubble3d", "cage", "circuit",
                    "cityflow", "companioncube", "crackberg", "crumbler", "cube21", "cubenetic", "cubestack",
                    "cubestorm", "dangerball", "discoball", "endgame", "engine", "flipflop", "flurry",
                    "gears", "gflux", "glblur", "glcells", "gleidescope", "glmatrix", "glplanet", "glsnake",
                    "gltext", "gravitywell", "hypertorus", "kaleidocycle", "klein", "menger", "moebius",
                    "morph3d", "pipes", "queens", "romanboy", "sierpinski3d", "topblock", "unicrud"),
    nameOfProgram);

// The toolkits, in their own time.
class ToolkitsTest : public testing::TestWithParam<const char*> {};

TEST_P(ToolkitsTest, isPlayedEqual) {
    const std::string file = scratch("toolkit.zlt");
    const Words program = {std::string(FOLDER) + GetParam()};
    const Result alone = run(program), captured = run(capture(file) + program);
    if (alone.status == 77)
        GTEST_SKIP() << "no driver: no window";
    EXPECT_EQ(alone.out, captured.out);
    EXPECT_EQ(alone.status, captured.status) << captured.err;
    const Result played = run(replay + Words{file}, 60s);
    EXPECT_EQ(0, played.status) << played.err;
    EXPECT_NE(std::string::npos, played.out.find(": equal")) << played.out;
    // None is made anew while it goes.
    const std::string calls = run({COMMAND, "dump", file}).out;
    int contexts = 0;
    for (std::size_t at = 0; (at = calls.find("// Context(", at)) != std::string::npos; ++at)
        ++contexts;
    EXPECT_NE(std::string::npos, captured.err.find(", " + std::to_string(contexts) + " context"))
        << contexts << " in the capture, " << captured.err;
}

INSTANTIATE_TEST_SUITE_P(, ToolkitsTest, testing::Values("freeglut", "sdl", "glfw", "glew", "epoxy"),
                         nameOfProgram);

class DamageTest : public testing::Test {
protected:
    // A capture of a few frames, which was made once.
    static const std::string& whole() {
        static const std::string bytes = [] {
            const std::string file = scratch("whole.zlt");
            run(capture(file) + Words{FOLDER "scenes", "shaders"});
            return contentOf(file);
        }();
        return bytes;
    }
    static Result play(const std::string& bytes, const std::string& how) {
        const std::string file = scratch("damaged.zlt");
        std::ofstream(file, std::ios::binary) << bytes;
        return run({COMMAND, how, file}, 60s);
    }
};

TEST_F(DamageTest, aProgramThatIsKilledLeavesItsFrames) {
    const std::string file = scratch("killed.zlt");
    const Result killed = run(capture(file) + Words{FOLDER "scenes", "arrays", "3"});
    EXPECT_EQ(SIGKILL, killed.signal) << killed.err;
    // The first is the toolkit's own; three are whole, and the last one was not swapped.
    expectEqual(file, "4 frames");
}

TEST_F(DamageTest, whatIsWholeInFrontOfItIsPlayed) {
    ASSERT_LT(2000, whole().size());
    const Result good = play(whole(), "dump");
    EXPECT_EQ(0, good.status);
    EXPECT_EQ("", good.err);
    EXPECT_LT(500, linesOf(good.out).size());
    for (std::size_t part = 0; part < 20; ++part) {
        const std::size_t place = whole().size() * part / 20;
        std::string cut = whole().substr(0, place), flipped = whole(), huge = whole();
        flipped[place] = static_cast<char>(flipped[place] ^ 0x10);
        const std::uint64_t claim = std::uint64_t(1) << 60;
        for (std::size_t i = 0; i < sizeof claim && place + i < huge.size(); ++i)
            huge[place + i] = static_cast<char>(claim >> (8 * i));
        for (const std::string* bytes : {&cut, &flipped, &huge})
            for (const char* how : {"dump", "replay"}) {
                const Result result = play(*bytes, how);
                SCOPED_TRACE(std::string(how) + ' ' + std::to_string(place) + ": " + result.err);
                EXPECT_FALSE(result.hung);
                EXPECT_EQ(0, result.signal);
                ASSERT_GT(2, result.status);
                if (result.status == 0) // where nothing is read: what the capture is of, and what is reserved
                    continue;
                EXPECT_EQ(0, result.err.find("zlt_ogl: "));
                EXPECT_NE(std::string::npos, result.err.find(place < 16 ? "capture" : " at byte ")) << place;
            }
    }
}

TEST_F(DamageTest, whatCannotBeReadOrWrittenIsSaid) {
    const std::string newer = whole().substr(0, 8) + '\x7F' + whole().substr(9);
    EXPECT_NE(std::string::npos, play(newer, "dump").err.find("a capture of version 127"));
    EXPECT_NE(std::string::npos, play("GIF89a", "replay").err.find("is no capture"));
    const std::pair<Words, std::string> wrong[] = {
        {{COMMAND, "replay", "/nowhere.zlt"}, "/nowhere.zlt can't be read"},
        {{COMMAND, "dump", "--frames", "0", "/nowhere.zlt"}, "0 is no range of frames"},
        {{COMMAND, "dump", "--calls", "9-3", "/nowhere.zlt"}, "9-3 is no range of calls"},
        {{COMMAND, "capture", "-o", "/nowhere/a.zlt", FOLDER "scenes", "lists"},
         "/nowhere/a.zlt can't be written"},
        {{COMMAND, "capture", "--frames", "x", FOLDER "scenes"}, "--frames"},
        {{COMMAND, "replay"}, "FILE"}};
    for (const auto& [words, sentence] : wrong) {
        const Result result = run(words);
        EXPECT_LT(0, result.status);
        EXPECT_EQ(0, result.err.find("zlt_ogl: ")) << result.err;
        EXPECT_NE(std::string::npos, result.err.find(sentence)) << result.err;
    }
}

TEST_F(DamageTest, picturesAndCallsOfSomeFramesAreWritten) {
    const std::string file = scratch("pictures.zlt"), folder = scratch("pictures");
    run(capture(file) + Words{FOLDER "scenes", "immediate"});
    EXPECT_EQ(0, run({COMMAND, "replay", "--png", folder, "--frames", "2-3", "--loop", "2", file}).status);
    EXPECT_FALSE(fs::exists(folder + "/frame-000001.png"));
    EXPECT_EQ("\x89PNG", contentOf(folder + "/frame-000002.png").substr(0, 4));
    EXPECT_TRUE(fs::exists(folder + "/frame-000003.png"));
    EXPECT_FALSE(fs::exists(folder + "/frame-000004.png"));
    const std::string frame = run({COMMAND, "dump", "--frames", "2", file}).out;
    EXPECT_EQ(0, frame.find("// frame 2\n"));
    EXPECT_NE(std::string::npos, frame.find("scenes.cpp:"));
    EXPECT_NE(std::string::npos, frame.find("glColor4fv({0, 0, 1, 1})"));
    EXPECT_EQ(std::string::npos, frame.find("// frame 3"));
    const std::string json = run({COMMAND, "dump", "--json", "--frames", "3", file}).out;
    EXPECT_NE(std::string::npos, json.find(R"("function":"glColor4fv","arguments":{"v":[0.0,0.0,1.0,1.0]}})"))
        << json;
}

} // namespace
