#include "FakeGL.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/ScopedInterceptor.h"
#include "extensionator/win/wglErrorChecker.h"
#include "extensionator/win/wglRekorder.h"
#include "zlt/core/Exceptions.h"
#include "zlt/core/Memory.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace ZLT;
using namespace ZLT::OGL;

namespace {

// What differs between the chains of GL and of WGL.
struct GL {
    using Interceptor = OpenGLInterceptor;
    using Checker = OpenGLErrorChecker;
    using Scoped = ScopedInterceptor;
    struct Layer : OpenGLTracer {
        explicit Layer(std::ostream& text, Interceptor* next = nullptr) : OpenGLTracer(text, next) {}
    };
    static void call(Interceptor& gl) { gl.cgmFlush("a.cpp", 5); }
    static constexpr const char *function = "glFlush", *text = "a.cpp:5: glFlush()\n";
    static constexpr const char* rule = "Enforce dynamic_cast<OpenGLErrorChecker *>(gInterceptor) != NULL";
    static constexpr const char* file = "..\\..\\extensionator\\OpenGLInterceptor";
};
struct WGL {
    using Interceptor = wglInterceptor;
    using Checker = wglErrorChecker;
    using Scoped = wglScopedInterceptor;
    struct Layer : wglRekorder {
        explicit Layer(std::ostream& text, Interceptor* next = nullptr)
            : wglRekorder(text, text, nullptr, next, false) {}
    };
    static void call(Interceptor& gl) { gl.wcgmGetCurrentDC("a.cpp", 5); }
    static constexpr const char *function = "wglGetCurrentDC", *text = "wglGetCurrentDC();\n";
    static constexpr const char* rule = "Enforce dynamic_cast<wglErrorChecker *>(gInterceptor) != NULL";
    static constexpr const char* file = "..\\..\\extensionator\\win\\wglInterceptor";
};

template <class Kind>
class ChainTest : public testing::Test {
protected:
    using Interceptor = typename Kind::Interceptor;
    ChainTest() { FakeGL::reset(); }
    // Whatever layers a failed test left there.
    ~ChainTest() override {
        while (other.popInterceptor()) {
        }
        Interceptor::destroy();
        EXPECT_EQ(0u, Core::allocationCount());
    }

    typename Kind::Checker other; // not in the chain; all operations of the chain work through it as well
    std::ostringstream text, secondText;
    typename Kind::Layer layer{text, &other}, second{secondText};
};
using Kinds = testing::Types<GL, WGL>;
TYPED_TEST_SUITE(ChainTest, Kinds);

TYPED_TEST(ChainTest, theCheckerIsMadeOnceAndWhenAskedFor) {
    using Interceptor = typename TypeParam::Interceptor;
    EXPECT_EQ(nullptr, this->other.popInterceptor());
    Interceptor::destroy();
    EXPECT_EQ(0u, Core::allocationCount());

    Interceptor* const checker = Interceptor::Instance();
    EXPECT_NE(nullptr, dynamic_cast<typename TypeParam::Checker*>(checker));
    EXPECT_EQ(nullptr, checker->popInterceptor());
    EXPECT_EQ(checker, Interceptor::Instance());
    std::ostringstream blocks;
    EXPECT_EQ(1u, Core::writeAllocations(blocks));
    EXPECT_THAT(blocks.str(), testing::StartsWith(std::string(TypeParam::file) + ':'));

    Interceptor::destroy();
    Interceptor::destroy();
    EXPECT_EQ(0u, Core::allocationCount());
}

TYPED_TEST(ChainTest, layersAreStackedAndGivenBackAndTheCheckerStaysUnderThem) {
    using Interceptor = typename TypeParam::Interceptor;
    auto &layer = this->layer, &second = this->second;
    Interceptor* const checker = Interceptor::Instance();
    EXPECT_EQ(&this->other, layer.interceptor());
    EXPECT_EQ(nullptr, second.interceptor());
    checker->addInterceptor(&layer);
    checker->addInterceptor(&second);
    EXPECT_EQ(&second, Interceptor::Instance());
    EXPECT_EQ(&layer, second.interceptor());
    EXPECT_EQ(checker, layer.interceptor()) << "the old head, not the constructor's";

    this->text.str("");
    this->secondText.str("");
    TypeParam::call(*Interceptor::Instance());
    EXPECT_EQ(TypeParam::text, this->text.str());
    EXPECT_EQ(TypeParam::text, this->secondText.str());
    EXPECT_EQ(TypeParam::function, FakeGL::calls().at(0).function);

    try {
        Interceptor::destroy();
        ADD_FAILURE() << "no exception";
    } catch (const InternalException& exception) {
        EXPECT_STREQ(TypeParam::rule, exception.what());
        EXPECT_STREQ(TypeParam::file, exception.file());
    }
    EXPECT_EQ(&second, Interceptor::Instance());
    EXPECT_EQ(&second, checker->popInterceptor());
    EXPECT_EQ(&layer, second.interceptor()) << "left as it was";
    EXPECT_EQ(&layer, Interceptor::Instance()->popInterceptor());
    EXPECT_EQ(nullptr, Interceptor::Instance()->popInterceptor());
    EXPECT_EQ(checker, Interceptor::Instance());
}

TYPED_TEST(ChainTest, aScopeTakesItsLayerOutWhereverItIs) {
    using Scoped = typename TypeParam::Scoped;
    using Interceptor = typename TypeParam::Interceptor;
    auto &layer = this->layer, &second = this->second;
    EXPECT_FALSE(Scoped::isInstalled(layer));
    EXPECT_FALSE(Scoped::remove(layer));
    {
        const Scoped first(layer);
        {
            const Scoped again(layer), above(second);
            EXPECT_TRUE(Scoped::isInstalled(layer) && Scoped::isInstalled(second));
        }
        EXPECT_TRUE(Scoped::isInstalled(layer)) << "it was there before the inner scope";
        Interceptor::Instance()->addInterceptor(&second);
    }
    this->text.str("");
    this->secondText.str("");
    EXPECT_FALSE(Scoped::isInstalled(layer)) << "out from under the other";
    EXPECT_EQ(&second, Interceptor::Instance());
    TypeParam::call(*Interceptor::Instance());
    EXPECT_EQ("", this->text.str());
    EXPECT_EQ(TypeParam::text, this->secondText.str());
    {
        const Scoped scope(layer);
        EXPECT_TRUE(Scoped::remove(layer));
    }
    EXPECT_TRUE(Scoped::remove(second));
    EXPECT_EQ(nullptr, Interceptor::Instance()->popInterceptor());
}

TYPED_TEST(ChainTest, aLayerOnAnEmptyChainEndsInNothing) {
    auto& layer = this->layer;
    layer.addInterceptor(&layer);
    EXPECT_EQ(nullptr, layer.interceptor());
    EXPECT_EQ(&layer, TypeParam::Interceptor::Instance());
    EXPECT_EQ(&layer, layer.popInterceptor());
    EXPECT_NE(&layer, TypeParam::Interceptor::Instance());
}

} // namespace
