// Every entry of the chain, captured on the scripted GL and played there: the same call with the same data.

#include "ExpectError.h"
#include "StartedLibrary.h"
#include "capture/CaptureFile.h"
#include "capture/CaptureFileWriter.h"
#include "capture/CapturePlayer.h"
#include "capture/OpenGLCapture.h"
#include "capture/PlayedEntries.h"
#include "capture/ProjectExporter.h"
#include "extensionator/OpenGLCall.h"
#include "extensionator/ScopedInterceptor.h"
#include "extensionator/gl_tokens.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

using namespace ZLT::OGL;
using namespace ZLT::Capture;
using FakeGL::Call;

namespace {

const std::string path = testing::TempDir() + "capture.zlt";

// A player's contexts, of which nothing is asked.
class NoSystem : public PlaySystem {
public:
    void* makeSurface(const SurfaceShape& shape) override {
        shapes.push_back(shape);
        return this;
    }
    void* makeContext(const ContextShape&, void*, void*) override { return this; }
    void makeCurrent(void*, void*, void*) override {}
    void destroyContext(void*) override {}
    void resize(void*, int, int) override {}
    void swap(void*) override {}
    bool hasOneBuffer(void*) override { return false; }
    std::vector<SurfaceShape> shapes;
};

// What was called, with copies of what its pointers pointed at.
struct Seen {
    Call call;
    std::vector<std::string> memory;
};

// Values of parameters by their names, with which each length comes to something.
std::uint64_t telling(const Parameter& parameter, std::size_t index) {
    static const std::map<std::string_view, std::uint64_t> values = {{"n", 3},
                                                                     {"count", 3},
                                                                     {"size", 24},
                                                                     {"width", 2},
                                                                     {"height", 3},
                                                                     {"depth", 2},
                                                                     {"size4d", 2},
                                                                     {"order", 3},
                                                                     {"stride", 4},
                                                                     {"ustride", 6},
                                                                     {"uorder", 2},
                                                                     {"vstride", 3},
                                                                     {"vorder", 2},
                                                                     {"len", 5},
                                                                     {"imageSize", 16},
                                                                     {"mapsize", 4},
                                                                     {"primcount", 2},
                                                                     {"drawcount", 2},
                                                                     {"bufSize", 9},
                                                                     {"maxLength", 9},
                                                                     {"maxCount", 2},
                                                                     {"range", 2},
                                                                     {"modestride", 4},
                                                                     {"format", GL_RGBA},
                                                                     {"buffer", GL_COLOR},
                                                                     {"pname", GL_AMBIENT}};
    const auto found = values.find(parameter.name);
    if (parameter.name == "type")
        return GL_UNSIGNED_BYTE;
    if (found != values.end() && (parameter.name != "buffer" || parameter.form == 'e') &&
        (parameter.name != "range" || parameter.form == 'i'))
        return found->second;
    switch (parameter.form) {
    case 'f':
        return std::bit_cast<std::uint32_t>(1.25f + static_cast<float>(index));
    case 'd':
        return std::bit_cast<std::uint64_t>(-2.7182818284590452 * static_cast<double>(index + 1));
    case 'i':
    case 's':
    case 'c':
    case 'l':
        return static_cast<std::uint64_t>(-std::int64_t(index) - 5);
    case 'C':
    case 'b':
        return 200 + index;
    case 'S':
        return 60000 + index;
    case 'L':
    case 'y':
        return 0x123456789Aull + index;
    default:
        return 0x8000 + index;
    }
}

class CaptureTest : public testing::Test {
protected:
    CaptureTest() { std::filesystem::remove(path); }
    ~CaptureTest() override { std::filesystem::remove(path); }

    // Memory that pointers point at, each with bytes of its own. Integers in it are small, since they may
    // count.
    char* memoryFor(std::size_t index, const Parameter& parameter) {
        std::string& memory = memories[index];
        memory.assign(4096, '\0');
        for (std::size_t i = 0; i < memory.size(); ++i)
            memory[i] = static_cast<char>(parameter.element == 'i' ? (i % 4 == 0 ? 1 : 0)
                                                                   : 33 + (i * 7 + index) % 90);
        if (parameter.form == 't')
            memory[20] = '\0';
        return memory.data();
    }

    std::uint64_t argumentFor(const Function& function, std::size_t index) {
        const Parameter& parameter = function.parameters[index];
        switch (parameter.form) {
        case 'p':
        case 'o':
        case 't':
            return reinterpret_cast<std::uintptr_t>(memoryFor(index, parameter));
        case 'x':
        case 'n':
            for (std::size_t i = 0; i < std::size(lists); ++i) {
                texts[i] = "text " + std::to_string(i) + std::string(4000, '!');
                lists[i] = texts[i].c_str();
            }
            return reinterpret_cast<std::uintptr_t>(lists);
        case 'a':
            return 0xBEEF00 + index;
        default:
            return telling(parameter, index);
        }
    }

    // Calls the entry on a head, and takes down what arrived at GL with as many bytes as `sizes` says.
    Seen callAndSee(const Function& function, OpenGLInterceptor& head,
                    const std::vector<std::uint64_t>& arguments, const std::vector<std::size_t>& sizes) {
        Seen seen;
        watch(function, sizes, seen, true);
        std::uint64_t result = 0;
        playerOf(function.number - firstEntry)(head, "scene.cpp", 17, arguments.data(), result);
        FakeGL::setHook(nullptr);
        return seen;
    }

    // Takes down the first call of the function, or the last one.
    void watch(const Function& function, const std::vector<std::size_t>& sizes, Seen& seen, bool isFirst) {
        FakeGL::reset();
        FakeGL::setHook([&function, sizes, &seen, isFirst](const Call& call) {
            // A player asks for state in front of it.
            if (call.function != function.name || (isFirst && !seen.call.function.empty()))
                return;
            seen = {call, {}};
            for (std::size_t i = 0; i < sizes.size(); ++i) {
                const char* const from =
                    sizes[i] > 0 ? static_cast<const char*>(call.arguments[i].as<void*>()) : nullptr;
                seen.memory.emplace_back(from ? from : "", from ? sizes[i] : 0);
            }
        });
    }

    std::map<std::size_t, std::string> memories;
    std::string texts[4];
    const char* lists[4];
    LibraryWithAllOfGL library;
};

// What is known to have a mapping that this GL can't have.
bool isMapped(const Parameter& parameter) {
    return parameter.object == "program" || parameter.object == "shader";
}

TEST_F(CaptureTest, everyEntryIsPlayedWithTheDataOfItsCapture) {
    std::size_t withData = 0;
    for (unsigned int entry = 0; entry < openGLEntryCount(); ++entry) {
        const Function& function = *functionOf(firstEntry + entry);
        SCOPED_TRACE(function.name + " " + function.form);
        std::vector<std::uint64_t> arguments;
        for (std::size_t i = 0; i < function.parameters.size(); ++i)
            arguments.push_back(argumentFor(function, i));
        std::vector<std::size_t> sizes(arguments.size());
        Seen original;
        {
            CaptureFileWriter file(path);
            OpenGLCapture capture(file);
            const ScopedInterceptor installed(capture);
            capture.cgmFlush("warm up", 1);
            if (function.name == "glEnd")
                capture.cgmBegin("scene.cpp", 16, GL_LINES);
            original = callAndSee(function, capture, arguments, {});
            if (function.name == "glBegin")
                capture.cgmEnd("scene.cpp", 18);
            capture.end();
        }
        ASSERT_EQ(function.name, original.call.function);

        CaptureFile file(path);
        ASSERT_EQ("", file.damage());
        CapturedCall call;
        while (file.next(call) && (call.function != &function || file.siteOf(call) != "scene.cpp:17"))
            continue;
        ASSERT_EQ(&function, call.function);
        ASSERT_EQ("scene.cpp:17", file.siteOf(call));
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const Parameter& parameter = function.parameters[i];
            const CapturedValue& value = call.values[i];
            if (parameter.form == 'p' || parameter.form == 'o' || parameter.form == 't') {
                // What was captured is what lay there.
                EXPECT_EQ(memories[i].substr(value.skipped, value.bytes.size()), value.bytes)
                    << parameter.name;
                sizes[i] = parameter.form == 'o' || !parameter.object.empty() ? 0 : value.bytes.size();
                withData += value.bytes.size() > 0;
            }
        }

        NoSystem system;
        PlayListener listener;
        OpenGLInterceptor& end = *OpenGLInterceptor::Instance();
        Seen played;
        watch(function, sizes, played, false);
        file.rewind();
        CapturePlayer player(file, system, end, listener, {});
        while (player.playFrame())
            continue;
        FakeGL::setHook(nullptr);
        OpenGLInterceptor::destroy();
        ASSERT_EQ(function.name, played.call.function);
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const Parameter& parameter = function.parameters[i];
            if (sizes[i] > 0) {
                EXPECT_EQ(memories[i].substr(0, sizes[i]), played.memory[i]) << parameter.name;
            } else if (std::string_view("potxna").find(parameter.form) == std::string_view::npos &&
                       !isMapped(parameter)) {
                EXPECT_EQ(original.call.arguments[i], played.call.arguments[i]) << parameter.name;
            }
        }
    }
    EXPECT_LT(700u, withData);
}

// Each is a statement, which a compiler takes.
TEST_F(CaptureTest, everyEntryIsExported) {
    const std::string folder = testing::TempDir() + "exported";
    std::filesystem::remove_all(folder);
    {
        CaptureFileWriter file(path);
        OpenGLCapture capture(file);
        const ScopedInterceptor installed(capture);
        for (unsigned int entry = 0; entry < openGLEntryCount(); ++entry) {
            const Function& function = *functionOf(firstEntry + entry);
            std::vector<std::uint64_t> arguments;
            for (std::size_t i = 0; i < function.parameters.size(); ++i)
                arguments.push_back(argumentFor(function, i));
            if (function.name == "glEnd")
                capture.cgmBegin("scene.cpp", 16, GL_LINES);
            callAndSee(function, capture, arguments, {});
            if (function.name == "glBegin")
                capture.cgmEnd("scene.cpp", 18);
            if (function.name == "glNewList")
                capture.cgmEndList("scene.cpp", 18);
        }
        capture.end();
    }
    CaptureFile file(path);
    ProjectExporter exporter(file, {folder, "every", "capture.zlt"});
    while (exporter.exportFrame())
        continue;
    exporter.finish();
    std::string source;
    std::string command =
        "cd '" + folder + "' && c++ -std=c++17 -Wall -Wextra -Werror -fsyntax-only frames*.cpp";
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename().string().starts_with("frames_")) {
            std::ifstream text(entry.path());
            source.append(std::istreambuf_iterator<char>(text), {});
        }
    for (unsigned int entry = 0; entry < openGLEntryCount(); ++entry) {
        const std::string& name = functionOf(firstEntry + entry)->name;
        const bool isThere = source.find(' ' + name + '(') != std::string::npos;
        EXPECT_TRUE(isThere || (name == "glGenLists" && source.find("make_lists(") != std::string::npos))
            << name;
    }
#if !defined(_WIN32)
    EXPECT_EQ(0, std::system(command.c_str()));
#endif
    std::filesystem::remove_all(folder);
}

} // namespace
