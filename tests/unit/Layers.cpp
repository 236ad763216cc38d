// Forwarder, watcher, error reporter and scoped installation, on the scripted driver.

#include "Entries.h"
#include "ExceptionOGL.h"
#include "StartedLibrary.h"
#include "extensionator/OpenGLEntry.h"
#include "extensionator/OpenGLErrorReporter.h"
#include "extensionator/OpenGLForwarder.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/OpenGLWatcher.h"
#include "extensionator/ScopedInterceptor.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sstream>
#include <thread>

using namespace ZLT::OGL;
using testing::ElementsAre;
using testing::HasSubstr;
using Json = nlohmann::json;

namespace {

class LayerTest : public testing::Test {
protected:
    ~LayerTest() override { OpenGLInterceptor::destroy(); }
    static OpenGLInterceptor& gl() { return *OpenGLInterceptor::Instance(); }

    LibraryWithAllOfGL library;
    std::ostringstream text;
};

// Notes what it is told, with the arguments as the trace has them.
class Notes : public OpenGLWatcher {
public:
    explicit Notes(std::ostream& out) : out_(&out) {}
    bool lets = true;

protected:
    bool before(const OpenGLCall& call) override {
        *out_ << call.file() << ':' << call.line() << ": " << call.name() << '(';
        call.writeArguments(*out_);
        *out_ << ")\n";
        return lets;
    }
    void after(const OpenGLCall& call) override { *out_ << "after " << call.name() << '\n'; }
    void failed(const OpenGLCall& call) override { *out_ << "failed " << call.group() << '\n'; }

private:
    std::ostream* out_;
};

TEST_F(LayerTest, everyEntryPassesThroughAllOfThemUnchangedAndIsNamedLikeInATrace) {
    std::ostringstream traced;
    OpenGLErrorReporter reporter(text);
    OpenGLForwarder forwarder;
    OpenGLTracer tracer(traced);
    std::ostringstream watched;
    Notes notes(watched);
    const ScopedInterceptor first(reporter), second(forwarder), third(tracer), fourth(notes.layer());
    gl().cgmFinish("", 0);                                  // the reporter has looked at the thread
    forEachEntryBut({"GetError"}, [&](const Entry& entry) { // whose result is an error
        traced.str("");
        watched.str("");
        Attempt attempt;
        entry.viaChain(attempt, "a.cpp", 7);
        EXPECT_EQ(attempt.scripted, attempt.returned) << entry.name;
        EXPECT_EQ(traced.str() + "after gl" + entry.name + '\n', watched.str());
        EXPECT_EQ("gl" + entry.name, openGLEntryName(static_cast<unsigned>(entry.slot)));
        expectCheckedCall(entry, attempt);
    });
    EXPECT_EQ("", text.str());
}

TEST_F(LayerTest, aWatcherMayLeaveACallOutAndIsToldOfAFailure) {
    Notes notes(text);
    const ScopedInterceptor installed(notes.layer());
    FakeGL::setResult("glIsList", static_cast<unsigned char>(1));
    notes.lets = false;
    EXPECT_EQ(0, gl().cgmIsList("a.cpp", 1, 5));
    EXPECT_EQ("a.cpp:1: glIsList(5)\n", text.str());
    EXPECT_EQ(0u, FakeGL::calls().size());
    notes.lets = true;
    FakeGL::pushError(0x0502);
    EXPECT_THROW(gl().cgmActiveTexture("a.cpp", 2, 0x84C0), ExceptionOGL);
    EXPECT_THAT(text.str(), HasSubstr("glActiveTexture(GL_TEXTURE0)\nfailed GL_VERSION_1_3\n"));
    EXPECT_STREQ("glActiveTexture", openGLEntryName(OpenGLEntry::ActiveTexture));
    EXPECT_THROW(openGLEntryName(openGLEntryCount()), ZLT::InternalException);
}

// Reports of the last reporter in the chain, a line each, without those of the start.
class ReporterTest : public LayerTest {
protected:
    ReporterTest() { gl().cgmFinish("a.cpp", 1); }
    std::string newText() {
        const std::string told = text.str();
        text.str("");
        return told;
    }

    std::ostringstream out;
    OpenGLErrorReporter reporter{text};
    ScopedInterceptor installed{reporter};
};

TEST_F(ReporterTest, everyEntryIsNamedWithItsErrorAndGivesNothing) {
    forEachEntryBut({"Begin", "GetError"}, [&](const Entry& entry) {
        FakeGL::pushError(0x0501);
        Attempt attempt;
        entry.viaChain(attempt, "a.cpp", static_cast<unsigned>(entry.slot) + 1);
        EXPECT_THAT(newText(), testing::StartsWith("a.cpp:" + std::to_string(entry.slot + 1) +
                                                   ": error: GL_INVALID_VALUE in gl" + entry.name + '('));
        EXPECT_TRUE(attempt.returned == FakeGL::Value() || attempt.returned != attempt.scripted)
            << entry.name;
    });
}

TEST_F(ReporterTest, theTextIsWhatCompilersPrint) {
    const auto fail = [&](unsigned code) { FakeGL::pushError(code); };
    fail(0x0500);
    gl().cgmEnable("scene.cpp", 105, 0xDEAD);
    fail(0x0502);
    gl().cgmRectf("scene.cpp", 106, 0.5f, -1, 0, 1e30f);
    fail(0x1234);
    gl().cgmGetUniformLocation("scene.cpp", 107, 3, "light");
    fail(0x0502);
    gl().cgmGetUniformLocation(nullptr, 0, 3, nullptr);
    fail(0x0503);
    gl().cgmColor3ub("scene.cpp", 108, 255, 0, 10);
    EXPECT_EQ("scene.cpp:105: error: GL_INVALID_ENUM in glEnable(0xDEAD)\n"
              "scene.cpp:106: error: GL_INVALID_OPERATION in glRectf(0.5, -1, 0, 1e+30)\n"
              "scene.cpp:107: error: 0x1234 in glGetUniformLocation(3, \"light\")\n"
              "error: GL_INVALID_OPERATION in glGetUniformLocation(3, null)\n"
              "scene.cpp:108: error: GL_STACK_OVERFLOW in glColor3ub(255, 0, 10)\n",
              text.str());
}

TEST_F(ReporterTest, equalErrorsOfALineAreToldOnceAndCounted) {
    for (unsigned cap = 0; cap < 5; ++cap) {
        FakeGL::pushError(0x0500);
        gl().cgmEnable("a.cpp", 5, 0xDEAD + cap);
    }
    FakeGL::pushError(0x0500);
    gl().cgmEnable("a.cpp", 6, 0xDEAD);
    EXPECT_EQ(6u, reporter.errorCount());
    EXPECT_EQ("a.cpp:5: error: GL_INVALID_ENUM in glEnable(0xDEAD)\n"
              "a.cpp:6: error: GL_INVALID_ENUM in glEnable(0xDEAD)\n",
              newText());
    reporter.finish();
    EXPECT_EQ("a.cpp:5: note: 5 times in all: GL_INVALID_ENUM in glEnable(0xDEAD)\n", newText());
    reporter.finish();
    EXPECT_EQ("", newText());
}

TEST_F(ReporterTest, errorsOfOthersAreNotBlamedOnTheCall) {
    FakeGL::pushError(0x0502);
    reporter.reportPending("a.cpp", 8);
    FakeGL::pushError(0x0501);
    library.context.makeCurrent(); // another context, for all that is known
    gl().cgmFinish("a.cpp", 9);
    FakeGL::pushError(0x0503);
    std::thread([&] {
        library.context.makeCurrent();
        gl().cgmFlush("b.cpp", 3);
    }).join();
    EXPECT_EQ("a.cpp:8: warning: GL_INVALID_OPERATION raised before this call, outside the chain\n"
              "a.cpp:9: warning: GL_INVALID_VALUE raised before this call, outside the chain\n"
              "b.cpp:3: warning: GL_STACK_OVERFLOW raised before this call, outside the chain\n",
              newText());
    // The flags of one call are all its own.
    for (const unsigned code : {0x0500, 0x0502})
        FakeGL::pushError(code);
    gl().cgmEnable("a.cpp", 10, 0xDEAD);
    gl().cgmFinish("a.cpp", 11);
    EXPECT_EQ("a.cpp:10: error: GL_INVALID_ENUM in glEnable(0xDEAD)\n"
              "a.cpp:10: error: GL_INVALID_OPERATION in glEnable(0xDEAD)\n",
              newText());
}

TEST_F(ReporterTest, betweenBeginAndEndNothingIsAsked) {
    FakeGL::reset();
    gl().cgmBegin("a.cpp", 1, 4);
    library.context.makeCurrent();
    gl().cgmVertex2i("a.cpp", 2, 0, 0);
    reporter.reportPending("a.cpp", 2);
    gl().cgmBegin("a.cpp", 3, 4);
    EXPECT_EQ(0, std::ranges::count(FakeGL::calls(), "glGetError", &FakeGL::Call::function));
    FakeGL::pushError(0x0502);
    gl().cgmEnd("a.cpp", 4);
    FakeGL::pushError(0x0501); // by others, before a call that isn't made
    gl().cgmEnd("a.cpp", 5);
    EXPECT_EQ("a.cpp:3: error: Unbalanced glBegin()! in glBegin(GL_TRIANGLES)\n"
              "a.cpp:4: error: GL_INVALID_OPERATION in glEnd()\n"
              "a.cpp:5: warning: GL_INVALID_VALUE raised before this call, outside the chain\n"
              "a.cpp:5: error: Unbalanced glEnd()! in glEnd()\n",
              newText());
}

TEST_F(ReporterTest, aProgramThatAsksGetsTheErrorOnceAsFromGL) {
    FakeGL::pushError(0x0500);
    gl().cgmEnable("a.cpp", 1, 1);
    FakeGL::pushError(0x0501);
    gl().cgmEnable("a.cpp", 2, 1);
    EXPECT_EQ(0x0500u, gl().cgmGetError("a.cpp", 3)) << "the first is kept";
    EXPECT_EQ(0u, gl().cgmGetError("a.cpp", 4));
    newText();
    FakeGL::pushError(0x0505); // raised outside
    EXPECT_EQ(0x0505u, gl().cgmGetError("a.cpp", 5));
    EXPECT_EQ("a.cpp:5: warning: GL_OUT_OF_MEMORY raised before this call, outside the chain\n", newText());
}

TEST_F(ReporterTest, aLostContextIsNamedOnceAndItsCallsGoOn) {
    const struct {
        const char* name;
        std::function<void()> lose;
        const char* sentence;
    } cases[] = {{"by its code", [] { FakeGL::pushError(0x0507); },
                  "GL_CONTEXT_LOST: the context is lost; nothing more is said about it\n"},
                 {"errors without end",
                  [] {
                      for (int i = 0; i < 100; ++i)
                          FakeGL::pushError(0x0502);
                  },
                  "the context reports errors without end; nothing more is said about it\n"}};
    for (const auto& [name, lose, sentence] : cases) {
        SCOPED_TRACE(name);
        ContextOffscreen context;
        context.makeCurrent();
        gl().cgmFinish("a.cpp", 1);
        FakeGL::reset();
        lose();
        for (unsigned line = 2; line < 5; ++line)
            gl().cgmFlush("a.cpp", line);
        EXPECT_EQ(3, std::ranges::count(FakeGL::calls(), "glFlush", &FakeGL::Call::function));
        const std::string told = newText();
        EXPECT_THAT(told, testing::EndsWith(std::string("a.cpp:2: error: ") + sentence));
        EXPECT_LE(std::ranges::count(told, '\n'), 2);
        FakeGL::reset();
        library.context.makeCurrent();
        gl().cgmFinish("a.cpp", 6);
        EXPECT_EQ("", newText());
    }
}

TEST_F(ReporterTest, whatTheLibraryRefusesIsReportedAndOtherExceptionsPass) {
    ZLT::OGL::releaseOGLContext();
    const HGLRC stranger = wglCreateContext(library.context.deviceContext());
    wglMakeCurrent(library.context.deviceContext(), stranger);
    gl().cgmActiveTexture("a.cpp", 1, 0x84C0);
    EXPECT_EQ("a.cpp:1: error: currentContext either not created with ZLT::OGL in "
              "glActiveTexture(GL_TEXTURE0)\n",
              newText());
    library.context.makeCurrent();
    wglDeleteContext(stranger);
    struct Thrower : OpenGLForwarder {
        void cgmFlush(const char*, unsigned) override { throw std::runtime_error("mine"); }
    } thrower;
    OpenGLErrorReporter outer(&thrower);
    EXPECT_THROW(outer.cgmFlush("a.cpp", 1), std::runtime_error);
}

TEST_F(ReporterTest, twoThreadsThatFailAtTheSameTimeAreCountedAndToldOnceEach) {
    struct Failing : OpenGLForwarder {
        void cgmFlush(const char* file, unsigned line) override {
            throw ExceptionOGL(file, line, "", 0x0502);
        }
    } failing;
    OpenGLErrorReporter shared(text, &failing);
    const auto fail = [&](unsigned line) {
        for (int i = 0; i < 500; ++i)
            shared.cgmFlush("a.cpp", line);
    };
    std::thread other([&] { fail(1); });
    fail(2);
    other.join();
    EXPECT_EQ(1000u, shared.errorCount());
    for (const char* told : {"a.cpp:1: error: GL_INVALID_OPERATION in glFlush()\n",
                             "a.cpp:2: error: GL_INVALID_OPERATION in glFlush()\n"})
        EXPECT_THAT(text.str(), HasSubstr(told));
    EXPECT_EQ(2, std::ranges::count(newText(), '\n'));
}

TEST_F(ReporterTest, sinksHearOfEachRepetitionAndWriteTheCallers) {
    struct Sink : OpenGLErrorSink {
        std::vector<std::size_t> heard;
        void report(const OpenGLErrorReport&) override { heard.push_back(100); }
        void repeated(std::size_t number) override { heard.push_back(number); }
    };
    const auto sink = std::make_shared<Sink>();
    reporter.addSink(sink);
    for (unsigned line : {1u, 2u, 2u, 1u}) {
        FakeGL::pushError(0x0500);
        gl().cgmEnable("a.cpp", line, 0xDEAD);
    }
    EXPECT_THAT(sink->heard, ElementsAre(100u, 100u, 1u, 0u));

    OpenGLErrorReport report;
    report.reason = "GL_INVALID_ENUM";
    report.function = "glEnable";
    report.stack = {{"draw", "a.cpp", 3}, {"", "libc.so+0x1", 0}};
    std::ostringstream lines, log;
    OpenGLTextSink(lines).report(report);
    EXPECT_EQ("error: GL_INVALID_ENUM in glEnable()\na.cpp:3: note: called from draw\n"
              "libc.so+0x1: note: called from here\n",
              lines.str());
    OpenGLSarifSink(log).finish({{report, 1}});
    const Json frames = Json::parse(log.str()).at(Json::json_pointer("/runs/0/results/0/stacks/0/frames"));
    ASSERT_EQ(2u, frames.size());
    EXPECT_EQ("draw", frames[0].at(Json::json_pointer("/location/logicalLocations/0/name")));
    EXPECT_EQ(3, frames[0].at(Json::json_pointer("/location/physicalLocation/region/startLine")));
}

// What the published schema of SARIF 2.1.0 requires, and what viewers need.
TEST_F(ReporterTest, theSarifLogHasWhatItsSchemaRequires) {
    reporter.addSink(std::make_shared<OpenGLSarifSink>(out));
    std::vector<std::string> heard;
    reporter.addSink(std::make_shared<OpenGLCallbackSink>(
        [&](const OpenGLErrorReport& report) { heard.emplace_back(report.sentence()); }));
    reporter.addSink(std::make_shared<OpenGLTrapSink>()); // no debugger: nothing happens
    for (const char* file : {"a b/scene#1.cpp", "/src/scene.cpp", "C:\\src\\scene.cpp", "\xFFx.cpp"})
        for (unsigned line : {0u, 12u}) {
            FakeGL::pushError(0x0500);
            gl().cgmEnable(file, line, 0xDEAD);
        }
    EXPECT_EQ(8u, heard.size());
    reporter.finish();
    const Json log = Json::parse(out.str());
    EXPECT_EQ("2.1.0", log.at("version"));
    ASSERT_EQ(1u, log.at("runs").size());
    const Json& run = log["runs"][0];
    EXPECT_EQ("zlt_ogl", run.at("tool").at("driver").at("name"));
    EXPECT_EQ(Json::array({{{"id", "GL_INVALID_ENUM"}}}), run["tool"]["driver"].at("rules"));
    std::vector<std::string> uris;
    for (const Json& result : run.at("results")) {
        EXPECT_EQ("GL_INVALID_ENUM in glEnable(0xDEAD)", result.at("message").at("text"));
        EXPECT_EQ("error", result.at("level"));
        EXPECT_EQ(1, result.at("occurrenceCount"));
        const Json& place = result.at("locations").at(0).at("physicalLocation");
        // A line is 1 or more, or not there.
        EXPECT_EQ(12, place.value(Json::json_pointer("/region/startLine"), 12));
        if (!place.contains("region"))
            uris.push_back(place.at("artifactLocation").at("uri"));
    }
    EXPECT_THAT(uris, ElementsAre("a%20b/scene%231.cpp", "file:///src/scene.cpp", "file:///C:/src/scene.cpp",
                                  "%FFx.cpp"));
}

} // namespace
