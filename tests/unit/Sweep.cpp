#include "ExpectError.h"
#include "ValueText.h"
#include "extensionator/OpenGLTracer.h"

#include <set>
#include <sstream>

using namespace ZLT::OGL;
using FakeGL::Call;
using FakeGL::Value;

namespace {

const char* const file = "ogl\\Texture";

// The beginning of a trace line.
std::string prefix(const char* file, int line, const Entry& entry) {
    std::ostringstream out;
    out << file << ':' << line << ": gl" << entry.name << '(';
    return out.str();
}

// A tracer in front of the checker.
class Sweep : public testing::Test {
protected:
    Sweep() : tracer(text) { OpenGLInterceptor::Instance()->addInterceptor(&tracer); }
    ~Sweep() override {
        tracer.popInterceptor();
        OpenGLInterceptor::destroy();
    }

    // Runs `body` for every entry but those left out, with no text before.
    template <class Body>
    void forEachBut(const std::set<std::string>& leftOut, const Body& body) {
        forEachEntryBut(leftOut, [&](const Entry& entry) {
            text.str("");
            body(entry);
        });
    }

    std::ostringstream text;
    OpenGLTracer tracer;
};

TEST_F(Sweep, EveryEntryHasItsVirtualSlot) {
    std::size_t slot = 0;
    for (const Entry& entry : entries()) {
        EXPECT_EQ(slot, entry.slot) << entry.name;
        EXPECT_EQ(slot++, entry.virtualSlot) << entry.name;
    }
    // With every slot up to there taken, only the two that a destructor has are left.
    EXPECT_EQ(1833u + 2u, slotBehindTheLast());
}

TEST_F(Sweep, ArgumentsAndResultsPassUnchangedAndEachCallIsCheckedOnce) {
    int results = 0;
    for (int round = 0; round < 4; ++round)
        forEachBut({}, [&](const Entry& entry) {
            Attempt attempt;
            entry.viaChain(attempt, file, 1);
            expectCheckedCall(entry, attempt);
            EXPECT_EQ(attempt.scripted, attempt.returned);
            results += attempt.returned != Value();
        });
    EXPECT_EQ(4 * 81, results);
}

TEST_F(Sweep, EveryErrorComesBackWithTheCallersPlace) {
    int line = 100;
    forEachBut({"Begin"}, [&](const Entry& entry) {
        Attempt attempt;
        ++line;
        if (entry.name == "GetError") // which hands a first error to its caller
            FakeGL::pushError(0x0500);
        FakeGL::pushError(0x0502);
        expectError(file, line, "invalid operation", 0x0502, [&] { entry.viaChain(attempt, file, line); });
        expectCheckedCall(entry, attempt);
    });
}

TEST_F(Sweep, NothingBetweenBeginAndEndAsksForErrors) {
    forEachBut({"Begin", "End"}, [&](const Entry& entry) {
        tracer.cgmBegin(file, 1, 0);
        FakeGL::reset();
        Attempt attempt;
        if (entry.name != "GetError") // whose scripted result comes first
            FakeGL::pushError(0x0502);
        entry.viaChain(attempt, file, 2);
        EXPECT_EQ((std::vector<Call>{{"gl" + entry.name, attempt.arguments}}), FakeGL::calls());
        EXPECT_EQ(attempt.scripted, attempt.returned);
        if (entry.name == "GetError")
            FakeGL::pushError(0x0502);
        expectError("end.cpp", 7, "invalid operation", 0x0502, [&] { tracer.cgmEnd("end.cpp", 7); });
    });
}

TEST_F(Sweep, EveryMacroOfGlInterceptCallsItsEntryFromItsOwnLine) {
    forEachBut({}, [&](const Entry& entry) {
        Attempt attempt;
        entry.viaMacro(attempt);
        expectCheckedCall(entry, attempt);
        EXPECT_EQ(attempt.scripted, attempt.returned);
        const std::string expected = prefix(entry.macroFile, entry.macroLine, entry);
        EXPECT_EQ(expected, text.str().substr(0, expected.size()));
    });
}

TEST_F(Sweep, EveryTraceLineFollowsTheTypesOfTheParameters) {
    std::multiset<std::string> handles, bareFloats;
    for (int line = 0; line < 3; ++line)
        forEachBut({}, [&](const Entry& entry) {
            Attempt attempt;
            entry.viaChain(attempt, file, line);
            ASSERT_EQ(entry.types.size(), attempt.arguments.size());
            std::string expected = prefix(file, line, entry);
            for (std::size_t i = 0; i < entry.types.size(); ++i) {
                expected += (i > 0 ? ", " : "") + textOf(entry, entry.types[i], attempt.arguments[i]);
                if (line == 0 && entry.types[i] == "GLhandleARB")
                    handles.insert(entry.name);
                if (line == 0 && entry.types[i] == "GLfloat" && plainFloats.contains(entry.name))
                    bareFloats.insert(entry.name);
            }
            EXPECT_EQ(expected + ")\n", text.str());
        });
    EXPECT_EQ(22u, handles.size());
    EXPECT_EQ(20u, std::set<std::string>(handles.begin(), handles.end()).size());
    EXPECT_EQ(std::multiset<std::string>(plainFloats.begin(), plainFloats.end()), bareFloats);
}

} // namespace
