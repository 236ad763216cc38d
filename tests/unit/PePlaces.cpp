// Programs that were compiled for Windows while this was built, and what objdump and addr2line say about
// them.

#include "PeFile.h"
#include "Places.h"
#include "ProgramFile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>

#include <gmock/gmock.h>

using namespace ZLT::Interception;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;
namespace fs = std::filesystem;

namespace {

const std::string programs = ZLT_PE_PROGRAMS; // empty where there is no compiler for Windows
const std::string sources = ZLT_PE_SOURCES;

std::vector<std::string> linesOf(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line.substr(0, line.find('\r')));
    return lines;
}
std::string bytesOf(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}
void write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// From where it is loaded, where a call of the function returns to: the address in the next line of
// objdump's.
std::vector<std::uint64_t> returnsOf(const std::string& program, const std::string& symbol) {
    const std::vector<std::string> lines = linesOf(program + ".listing");
    const std::uint64_t base = PeFile(program).imageBase();
    std::vector<std::uint64_t> found;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i)
        if (lines[i].find("\tcall ") != std::string::npos && lines[i].ends_with('<' + symbol + '>'))
            found.push_back(std::stoull(lines[i + 1], nullptr, 16) - base);
    return found;
}

// With the name of its line: "places/Program.cpp @method Drawing::Shape::draw(int)".
std::string textOf(const Place& place) {
    const std::vector<std::string> lines = linesOf(sources + '/' + fs::path(place.file).filename().string());
    const std::string line = place.line > 0 && place.line <= lines.size() ? lines[place.line - 1] : "";
    const std::size_t name = line.find('@');
    return place.file + ' ' + (name == line.npos ? "?" : line.substr(name)) + ' ' + place.function;
}
std::string textOf(const std::vector<Place>& places) {
    std::string text;
    for (const Place& place : places)
        text += (text.empty() ? "" : " <- ") + textOf(place);
    return text;
}

class PePlacesTest : public testing::Test {
protected:
    void SetUp() override {
        if (programs.empty())
            GTEST_SKIP() << "no compiler for Windows: x86_64-w64-mingw32-g++";
        fs::create_directories(scratch_);
    }
    const std::string small_ = programs + "/O2.exe";
    const std::string scratch_ = programs + "/scratch";
};

struct Way {
    const char* name; // of the program, as tests/unit/CMakeLists.txt has it
    std::string folder;
    bool isOptimised = true;
};

TEST_F(PePlacesTest, eachCallIsFoundAsTheCompilerWasGivenItsFile) {
    const Way ways[] = {{"O0", "places/", false},
                        {"O2", "places/"},
                        {"dwarf2", "places/"},
                        {"dwarf4", "places/"},
                        {"here", ""},
                        {"dwarf4here", ""},
                        {"absolute", sources + '/'},
                        {"absoluteHere", sources + '/'},
                        {"dotted", "./places/../places/"}};
    for (const auto& [name, folder, isOptimised] : ways) {
        SCOPED_TRACE(name);
        const std::string path = programs + '/' + name + ".exe";
        const std::string program = folder + "Program.cpp", header = folder + "Inlined.h";
        const std::string inlined = header + " @inlined inlined(int) <- ";
        std::vector<std::string> expected = {program + " @method Drawing::Shape::draw(int)",
                                             inlined + program + " @aroundInlined Drawing::Shape::draw(int)",
                                             inlined + header + " @inTwice twice(int) <- " + program +
                                                 " @aroundTwice main"};
        // Optimised, it is left before marked() is called, and the call returns to its caller.
        const std::string tail = program + " @tail last(int)";
        const std::string call = program + " @callOfLast main";
        if (!isOptimised)
            expected.push_back(tail);
        std::vector<std::string> found;
        for (const std::uint64_t address : returnsOf(path, "marked"))
            found.push_back(textOf(placeFinder().findAll(path, address)));
        EXPECT_THAT(found, UnorderedElementsAreArray(expected));
        const std::vector<std::uint64_t> returns = returnsOf(path, "_Z4lasti");
        ASSERT_EQ(1u, returns.size());
        EXPECT_EQ(isOptimised ? tail : call, textOf(placeFinder().find(path, returns[0], "marked")));
        EXPECT_EQ(call, textOf(placeFinder().find(path, returns[0], "_Z4lasti")));
    }
}

TEST_F(PePlacesTest, addr2lineSaysTheSame) {
    const std::string path = programs + "/library.exe";
    const std::uint64_t base = PeFile(path).imageBase();
    const std::vector<std::string> answers = linesOf(path + ".lines");
    int known = 0, otherNames = 0;
    for (std::size_t i = 0; i + 1 < answers.size(); i += 2) {
        const std::string answer = answers[i + 1].substr(0, answers[i + 1].find(" (discriminator"));
        const std::size_t colon = answer.rfind(':');
        const unsigned int line = static_cast<unsigned int>(std::atoi(answer.c_str() + colon + 1));
        const Place place =
            placeFinder().findAll(path, std::stoull(answers[i], nullptr, 16) - base + 1).front();
        ASSERT_EQ(line, place.line) << answers[i] << ' ' << answer << ", not " << place.file;
        known += line > 0;
        otherNames +=
            line > 0 && fs::path(answer.substr(0, colon)).filename() != fs::path(place.file).filename();
    }
    EXPECT_LT(500, known);
    // In DWARF 5 it takes the first file behind the unit's own for that one.
    EXPECT_GT(known / 50, otherNames);
}

TEST_F(PePlacesTest, damageIsAsIfThereWereNothing) {
    const std::string bytes = bytesOf(small_);
    const std::uint64_t address = returnsOf(small_, "marked").front();
    const std::string right = textOf(placeFinder().findAll(small_, address));
    std::set<std::string> seen;
    const auto look = [&](const std::string& damaged) {
        const std::string path = scratch_ + "/damaged" + std::to_string(seen.size()) + ".exe";
        seen.insert(path);
        write(path, damaged);
        const std::vector<Place> places = placeFinder().findAll(path, address);
        placeFinder().find(path, returnsOf(small_, "_Z4lasti").front(), "marked");
        try {
            findProgram(path);
            PeFile file(path);
            file.imports();
            file.functionAt(address);
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), HasSubstr(path));
        }
        fs::remove(path);
        EXPECT_FALSE(places.front().file.empty());
        return places.front().isKnown() ? textOf(places) : places.front().file;
    };
    int known = 0;
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const std::string text = look(bytes.substr(0, bytes.size() * i / 200));
        const std::string without =
            placeWithoutLine("damaged" + std::to_string(seen.size() - 1) + ".exe", address).file;
        known += text == right;
        EXPECT_THAT(text, testing::AnyOf(right, without));
    }
    EXPECT_LT(known, 100) << "the debug information was cut off";
    std::mt19937 random(1);
    for (int i = 0; i < 400; ++i) {
        std::string damaged = bytes;
        const std::size_t start = i % 2 ? random() % damaged.size() : random() % 1024;
        for (std::size_t at = start; at < std::min(start + 1 + i % 16, damaged.size()); ++at)
            damaged[at] = static_cast<char>(random());
        look(damaged);
    }
}

TEST_F(PePlacesTest, withoutDebugInformationThereIsStillTheFunction) {
    const std::string path = programs + "/plain.exe";
    const std::uint64_t address = returnsOf(path, "_Z4lasti").at(0);
    EXPECT_EQ(placeWithoutLine(path, address).file, placeFinder().find(path, address, "marked").file);
    EXPECT_EQ("main", placeFinder().find(path, address, "marked").function);
    std::vector<std::string> functions;
    for (const std::uint64_t call : returnsOf(path, "marked"))
        functions.push_back(placeFinder().findAll(path, call).front().function);
    const std::string method = "Drawing::Shape::draw(int)";
    EXPECT_THAT(functions, testing::UnorderedElementsAre(method, method, "main"));
    EXPECT_EQ("0x10", placeFinder().find("", 0x10, "marked").file);
    EXPECT_EQ("none.exe+0x10", placeFinder().find("/none/none.exe", 0x10, "marked").file);
}

TEST_F(PePlacesTest, whatIsNoProgramIsRefusedWithItsReason) {
    const std::string bytes = bytesOf(small_);
    const std::size_t head = static_cast<unsigned char>(bytes[0x3C]); // which MinGW has below 256
    const auto with = [&](std::size_t offset, const std::string& other) {
        return std::string(bytes).replace(head + offset, other.size(), other);
    };
    const std::string properties = bytes.substr(head + 22, 2);
    const auto isDll = [&] { return std::string{properties[0], static_cast<char>(properties[1] | 0x20)}; };
    const struct {
        std::string name, bytes, refusal;
    } rows[] = {
        {"there.exe", bytes, ""},
        {"script.BAT", "echo", ""},
        {"arm.exe", with(4, "\x64\xAA"), " is a program for another processor"},
        {"small.exe", with(24, "\x0B\x01"), " is a program of 32 bits; this is for programs of 64 bits"},
        {"part.dll", with(22, isDll()), " is no program: it is a DLL"},
        {"failed.exe", with(22, std::string("\0\0", 2)), " is no program: it was not linked"},
        {"text.exe", "#!/bin/sh", " is no program of this system: neither a PE file nor a script"},
        {"empty.exe", "", " is no program of this system: neither a PE file nor a script"},
        {"cut.exe", bytes.substr(0, head + 30), " is damaged: it ends too early"},
    };
    const auto refusalOf = [](const std::string& name) {
        try {
            findProgram(name);
        } catch (const Refusal& refusal) {
            return std::string(refusal.what());
        }
        return std::string();
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string path = scratch_ + '/' + row.name;
        write(path, row.bytes);
        EXPECT_EQ(row.refusal.empty() ? "" : path + row.refusal, refusalOf(path));
    }
    EXPECT_EQ(scratch_ + " is a folder", refusalOf(scratch_));
    EXPECT_EQ(scratch_ + "/none: No such file or directory", refusalOf(scratch_ + "/none"));
    EXPECT_EQ("There is no program none in the PATH", refusalOf("none"));
    EXPECT_TRUE(findProgram(scratch_ + "/script.BAT").isScript);
    EXPECT_EQ(scratch_ + "/there.exe", findProgram(scratch_ + "/there").path);
#ifdef _WIN32
    _putenv_s("PATH", (";\"" + scratch_ + "\"").c_str());
#else
    setenv("PATH", (";\"" + scratch_ + "\"").c_str(), 1);
#endif
    EXPECT_EQ(fs::path(scratch_) / "there.exe", fs::path(findProgram("there").path));
    EXPECT_FALSE(findProgram("there.exe").isScript);
}

TEST_F(PePlacesTest, aFileTellsItsSectionsAndImports) {
    const PeFile file(small_);
    EXPECT_TRUE(file.is64() && file.isLinked() && !file.isDll());
    EXPECT_EQ(PeFile::x86_64, file.machine());
    EXPECT_THAT(file.imports(), testing::Contains("KERNEL32.dll"));
    EXPECT_FALSE(file.content(".debug_line_str").empty()) << "a name of more than eight letters";
}

} // namespace
