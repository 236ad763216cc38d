#include "ExpectError.h"
#include "FakeGL.h"
#include "extensionator/OpenGLErrorChecker.h"

#include <gmock/gmock.h>

using namespace ZLT::OGL;
using FakeGL::Call;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CheckerTest : public testing::Test {
protected:
    CheckerTest() { FakeGL::reset(); }

    // The calls that reached GL since the last time.
    static std::vector<Call> newCalls() {
        std::vector<Call> calls =
            FakeGL::calls(); // NOLINT(performance-unnecessary-copy-initialization): reset follows
        FakeGL::reset();
        return calls;
    }

    OpenGLErrorChecker gl;
    const Call getError{"glGetError", {}}, begin{"glBegin", {7u}}, end{"glEnd", {}}, finish{"glFinish", {}};
};

TEST_F(CheckerTest, theFirstErrorIsThrownAndTheOthersAreLeftToLaterCalls) {
    for (const unsigned int code : {0x0500, 0x0501, 0x4321})
        FakeGL::pushError(code);
    FakeGL::setResult("glGenLists", 17u);
    unsigned int list = 0;
    expectError("a.cpp", 3, "invalid enumerant", 0x0500, [&] { list = gl.cgmGenLists("a.cpp", 3, 1); });
    EXPECT_EQ(0u, list) << "the result is dropped";
    expectError("a.cpp", 4, "invalid value", 0x0501, [&] { gl.cgmFinish("a.cpp", 4); });
    expectError("a.cpp", 5, "", 0x4321, [&] { gl.cgmFinish("a.cpp", 5); }); // GLU has no text for it
    EXPECT_EQ(17u, gl.cgmGenLists("a.cpp", 6, 1));
    const Call genLists{"glGenLists", {1}};
    EXPECT_THAT(FakeGL::calls(),
                ElementsAre(genLists, getError, finish, getError, finish, getError, genLists, getError));
}

TEST_F(CheckerTest, anUnbalancedBeginOrEndIsRefused) {
    const auto strayEnd = [&] { gl.cgmEnd("a.cpp", 2); };
    FakeGL::pushError(0x0501);
    expectError("a.cpp", 2, "Unbalanced glEnd()!", 0, strayEnd);
    EXPECT_THAT(newCalls(), IsEmpty());
    gl.cgmBegin("a.cpp", 3, 7);
    FakeGL::pushError(0x0501);
    expectError("a.cpp", 4, "Unbalanced glBegin()!", 0, [&] { gl.cgmBegin("a.cpp", 4, 1); });
    gl.cgmFinish("a.cpp", 5); // still between begin and end
    // The end reports what went wrong since the begin, and closes the pair all the same.
    expectError("a.cpp", 6, "invalid value", 0x0501, [&] { gl.cgmEnd("a.cpp", 6); });
    gl.cgmFinish("a.cpp", 7);
    EXPECT_THAT(newCalls(), ElementsAre(begin, finish, end, getError, finish, getError));
    expectError("a.cpp", 2, "Unbalanced glEnd()!", 0, strayEnd);
    EXPECT_THAT(newCalls(), IsEmpty());
}

TEST_F(CheckerTest, getErrorReturnsOneErrorAndThrowsASecond) {
    EXPECT_EQ(0u, gl.cgmGetError("a.cpp", 1));
    FakeGL::pushError(0x0500);
    EXPECT_EQ(0x0500u, gl.cgmGetError("a.cpp", 2));
    for (const unsigned int code : {0x0500, 0x0501, 0x0502})
        FakeGL::pushError(code);
    expectError("a.cpp", 3, "invalid value", 0x0501, [&] { gl.cgmGetError("a.cpp", 3); });
    EXPECT_EQ(0x0502u, gl.cgmGetError("a.cpp", 4)) << "the third is still there";
    EXPECT_EQ(std::vector<Call>(8, getError), newCalls());
}

} // namespace
