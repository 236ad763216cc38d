#include "StartedLibrary.h"
#include "ogl/ContextWrapped.h"
#include "ogl/internal/ContextBootstrap.h"

#include <gtest/gtest.h>

#include <memory>

using namespace ZLT::OGL;

namespace {

using ZLT::Core::allocationCount;

// The registry's own operations, on a context that the library knows nothing else of.
struct Member : Context {
    explicit Member(HGLRC context = nullptr) { renderContext_ = context; }
    ~Member() noexcept override = default;
    using Context::_addShareContext;
    using Context::_registerContextWrapped;
    using Context::_unregisterShareContext;
    using Context::unregisterSharedContext;
};

class SharingTest : public testing::Test {
protected:
    HGLRC context() { return system.makeContext(window); }
    bool sharing(const Context& a, HGLRC current) const {
        wglMakeCurrent(GetDC(window), current);
        return a.isSharingWithCurrentContext();
    }
    std::string failure(const Context& a, HGLRC current) const {
        return failureOf([&] { sharing(a, current); });
    }

    FakeWindowSystem system;
    const HWND window = system.makeWindow();
    HGLRC handles[5] = {context(), context(), context(), context(), context()};
    Member a{handles[0]}, b{handles[1]}, c{handles[2]}, d{handles[3]}, nobody{handles[4]};
    const std::size_t before = allocationCount();
};

TEST_F(SharingTest, groupsGrowByNamingAMemberAndOutliveTheirFounder) {
    a._addShareContext(nullptr);
    c._addShareContext(nullptr);
    b._addShareContext(&a);
    d._addShareContext(&b);
    for (const Member* one : {&a, &b, &d}) {
        for (const Member* other : {&a, &b, &d})
            EXPECT_TRUE(sharing(*one, other->renderContext()));
        EXPECT_FALSE(sharing(*one, c.renderContext()));
        EXPECT_FALSE(sharing(c, one->renderContext()));
    }
    Member::_unregisterShareContext(&d);
    EXPECT_TRUE(sharing(a, b.renderContext()));
    Member::_unregisterShareContext(&a);
    d._addShareContext(&b);
    EXPECT_TRUE(sharing(d, b.renderContext()));
    EXPECT_TRUE(sharing(b, d.renderContext()));
    EXPECT_FALSE(sharing(c, d.renderContext()));
    EXPECT_EQ("!indexSource < LARGE_INDEX-1", failure(a, b.renderContext()));
    // The group in front goes, and the others are found all the same.
    Member::_unregisterShareContext(&b);
    Member::_unregisterShareContext(&d);
    EXPECT_TRUE(sharing(c, c.renderContext()));
    Member().unregisterSharedContext(); // it has no handle, so it isn't looked for
    c.unregisterSharedContext();
    EXPECT_EQ(before, allocationCount()) << "the registry goes with its last member";
}

TEST_F(SharingTest, whatIsUnknownIsReportedAndChangesNothing) {
    EXPECT_FALSE(sharing(nobody, nullptr)) << "nothing is current, and nothing else is looked at";
    EXPECT_EQ("!indexSource < LARGE_INDEX-1", failure(nobody, nobody.renderContext()));
    EXPECT_EQ("!outerIter != pvvContext->end()", failureOf([&] { a._addShareContext(&b); }));
    EXPECT_EQ("!sibling != this", failureOf([&] { a._addShareContext(&a); }));
    Member::_unregisterShareContext(&a);
    EXPECT_EQ(before + 1, allocationCount()) << "an empty registry stays until a last member goes";
    a._addShareContext(nullptr);
    EXPECT_EQ("!indexQuery < LARGE_INDEX-1", failure(a, nobody.renderContext()));
    EXPECT_EQ("!indexSource < LARGE_INDEX-1", failure(nobody, a.renderContext()));
    EXPECT_EQ("!sibling != this", failureOf([&] { a._addShareContext(&a); }));
    Member::_unregisterShareContext(&nobody);
    EXPECT_TRUE(sharing(a, a.renderContext()));
    Member::_unregisterShareContext(&a);
    EXPECT_EQ(before, allocationCount());
}

TEST_F(SharingTest, aWrappedContextStartsAloneAndAHandleIsWhoeverWrapsIt) {
    Member again(handles[0]);
    a._addShareContext(nullptr);
    b._addShareContext(&a);
    Member::_registerContextWrapped(&again);
    EXPECT_TRUE(sharing(a, handles[0]));
    EXPECT_TRUE(sharing(again, handles[0]));
    EXPECT_FALSE(sharing(again, handles[1]));
    c._addShareContext(&again);
    EXPECT_TRUE(sharing(c, handles[0]));
    EXPECT_TRUE(sharing(again, handles[2]));
    EXPECT_FALSE(sharing(b, handles[2]));
    for (const Member* member : {&a, &b, &c, &again})
        Member::_unregisterShareContext(member);
    EXPECT_EQ(before, allocationCount());
}

TEST_F(SharingTest, everyKindOfContextRegistersButABootstrap) {
    const StartedLibrary library;
    const ContextOffscreen first;
    const internal::ContextBootstrap bootstrap;
    bootstrap.makeCurrent();
    EXPECT_EQ("!indexQuery < LARGE_INDEX-1", failureOf([&] { first.isSharingWithCurrentContext(); }));
    EXPECT_EQ("!outerIter != pvvContext->end()", failureOf([&] { const ContextOffscreen made(&bootstrap); }));
    {
        const ContextWrapped wrapped(GetDC(window), handles[0], nullptr);
        EXPECT_FALSE(sharing(first, handles[0]));
    }
    EXPECT_EQ("!indexQuery < LARGE_INDEX-1", failure(first, handles[0]));
}

} // namespace
