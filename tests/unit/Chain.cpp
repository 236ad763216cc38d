#include "FakeGL.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLTracer.h"
#include "zlt/core/Exceptions.h"
#include "zlt/core/Memory.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace ZLT;
using namespace ZLT::OGL;

namespace {

class Chain : public testing::Test {
protected:
    Chain() { FakeGL::reset(); }
    // Whatever layers a failed test left there.
    ~Chain() override {
        while (other.popInterceptor()) {
        }
        OpenGLInterceptor::destroy();
        EXPECT_EQ(0u, Core::allocationCount());
    }

    OpenGLErrorChecker other; // not in the chain; all operations of the chain work through it as well
    std::ostringstream text;
    OpenGLTracer layer{text, &other};
};

TEST_F(Chain, MakesItsCheckerOnceAndWhenAskedFor) {
    EXPECT_EQ(nullptr, other.popInterceptor());
    EXPECT_EQ(0u, Core::allocationCount());
    OpenGLInterceptor::destroy();
    EXPECT_EQ(0u, Core::allocationCount());

    OpenGLInterceptor* const checker = OpenGLInterceptor::Instance();
    EXPECT_NE(nullptr, dynamic_cast<OpenGLErrorChecker*>(checker));
    EXPECT_EQ(nullptr, checker->popInterceptor());
    EXPECT_EQ(checker, OpenGLInterceptor::Instance());
    std::ostringstream blocks;
    EXPECT_EQ(1u, Core::writeAllocations(blocks));
    EXPECT_THAT(blocks.str(), testing::StartsWith("..\\..\\extensionator\\OpenGLInterceptor:"));

    OpenGLInterceptor::destroy();
    OpenGLInterceptor::destroy();
    EXPECT_EQ(0u, Core::allocationCount());
    OpenGLInterceptor::Instance()->cgmFlush("a.cpp", 2);
    EXPECT_EQ("glFlush", FakeGL::calls().at(0).function);
}

TEST_F(Chain, StacksLayersAndGivesThemBack) {
    OpenGLInterceptor* const checker = OpenGLInterceptor::Instance();
    std::ostringstream secondText;
    OpenGLTracer second(secondText);
    EXPECT_EQ(&other, layer.interceptor());
    checker->addInterceptor(&layer);
    checker->addInterceptor(&second);
    EXPECT_EQ(&second, OpenGLInterceptor::Instance());
    EXPECT_EQ(&layer, second.interceptor());
    EXPECT_EQ(checker, layer.interceptor()) << "the old head, not the constructor's";

    FakeGL::setResult("glIsTexture", static_cast<unsigned char>(3));
    EXPECT_EQ(3, OpenGLInterceptor::Instance()->cgmIsTexture("a.cpp", 5, 6));
    EXPECT_EQ("a.cpp:5: glIsTexture(6)\n", text.str());
    EXPECT_EQ(text.str(), secondText.str());
    EXPECT_EQ((std::vector<FakeGL::Call>{{"glIsTexture", {6u}}, {"glGetError", {}}}), FakeGL::calls());

    EXPECT_EQ(&second, OpenGLInterceptor::Instance()->popInterceptor());
    EXPECT_EQ(&layer, second.interceptor()) << "left as it was";
    EXPECT_EQ(&layer, OpenGLInterceptor::Instance()->popInterceptor());
    EXPECT_EQ(nullptr, OpenGLInterceptor::Instance()->popInterceptor());
    EXPECT_EQ(checker, OpenGLInterceptor::Instance());
}

TEST_F(Chain, RefusesToGoAwayUnderALayer) {
    OpenGLInterceptor* const checker = OpenGLInterceptor::Instance();
    checker->addInterceptor(&layer);
    try {
        OpenGLInterceptor::destroy();
        ADD_FAILURE() << "no exception";
    } catch (const InternalException& exception) {
        EXPECT_STREQ("Enforce dynamic_cast<OpenGLErrorChecker *>(gInterceptor) != NULL", exception.what());
        EXPECT_STREQ("..\\..\\extensionator\\OpenGLInterceptor", exception.file());
    }
    EXPECT_EQ(&layer, OpenGLInterceptor::Instance());
    EXPECT_EQ(checker, layer.interceptor());
    layer.popInterceptor();
    OpenGLInterceptor::destroy();
    EXPECT_EQ(0u, Core::allocationCount());
}

TEST_F(Chain, ALayerOnAnEmptyChainEndsInNothing) {
    layer.addInterceptor(&layer);
    EXPECT_EQ(nullptr, layer.interceptor());
    EXPECT_EQ(&layer, OpenGLInterceptor::Instance());
    EXPECT_EQ(&layer, layer.popInterceptor());
    EXPECT_NE(&layer, OpenGLInterceptor::Instance());
}

} // namespace
