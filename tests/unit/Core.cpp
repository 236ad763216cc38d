#include "zlt/core/Core.h"
#include "ExceptionOGL.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/Exceptions.h"
#include "zlt/core/Memory.h"
#include "zlt/core/memory/ZLTAllocator.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <gmock/gmock.h>

#include <functional>
#include <sstream>
#include <thread>

using namespace ZLT;
using Core::Library;
using OGL::ExceptionOGL;
using Clone = std::unique_ptr<ExceptionBase, ZLTDeleter<ExceptionBase>>;

namespace {

const MemoryType memory = MemoryType(0);

std::string written(const LogicalException& exception) {
    std::ostringstream out;
    exception.write(out);
    return out.str();
}

std::string liveBlocks() {
    std::ostringstream out;
    const std::size_t count = Core::writeAllocations(out);
    EXPECT_EQ(Core::allocationCount(), count);
    return out.str();
}

InternalException thrownBy(const std::function<void()>& action) {
    try {
        action();
    } catch (const InternalException& exception) {
        return exception;
    }
    throw std::logic_error("nothing was thrown");
}

TEST(CoreTest, itStartsAndStopsOnceAndSaysSoOtherwise) {
    EXPECT_STREQ("isInitialized_", thrownBy([] { Library::terminate(); }).what());
    EXPECT_FALSE(Library::isInitialized());
    Library::initialize();
    const InternalException twice = thrownBy(Library::initialize);
    EXPECT_STREQ("!isInitialized_", twice.what());
    EXPECT_STREQ("..\\..\\zlt\\core\\Core", twice.file());
    EXPECT_TRUE(Library::isInitialized());
    Library::terminate();
    EXPECT_FALSE(Library::isInitialized());
}

TEST(CoreTest, theStopListsWhatIsStillAllocatedBySite) {
    Library::initialize();
    void* const freed = ::operator new(5, memory, "c.cpp", 1);
    void* const blocks[] = {::operator new(100, memory, "b.cpp", 7), ::operator new(1, memory, "b.cpp", 12),
                            ::operator new(28, memory, "b.cpp", 7), ::operator new(0, memory, "a.cpp", 9)};
    ::operator delete(freed, memory, "c.cpp", 2);
    ::operator delete(nullptr, memory, "c.cpp", 2);
    std::ostringstream out, refused;
    Library::terminate(&out);
    EXPECT_EQ("a.cpp:9: 1 block, 0 bytes\nb.cpp:7: 2 blocks, 128 bytes\nb.cpp:12: 1 block, 1 byte\n",
              out.str());
    EXPECT_THROW(Library::terminate(&refused), InternalException);
    EXPECT_EQ("", refused.str());
    for (void* block : blocks)
        ::operator delete(block, memory, "b.cpp", 99);
    EXPECT_EQ("", liveBlocks());
}

TEST(CoreTest, enforcementHoldsTheSourceTextOfItsRule) {
    const void* poTex = nullptr;
    int nSize = 0;
    struct {
        std::function<void()> rule;
        int line;
        const char* text;
    } cases[] = {
        {[&] { ZLT_ASSERT(!(std::pair<int, int>(0, 1).first == nSize)); }, __LINE__,
         "!(std::pair<int, int>(0, 1).first == nSize)"},
        {[&] { ZLT_ENFORCE(poTex != nullptr); }, __LINE__, "Enforce poTex != nullptr"},
        {[&] { ZLT_UNREACHABLE("No \"such\" filter."); }, __LINE__, "!\"No \\\"such\\\" filter.\""},
        {[&] { ZLT_RANGE(nSize > 0); }, __LINE__, "Range error: nSize > 0"},
    };
    for (const auto& test : cases) {
        const InternalException thrown = thrownBy(test.rule);
        EXPECT_STREQ(test.text, thrown.what());
        EXPECT_STREQ(__FILE__, thrown.file());
        EXPECT_EQ(test.line, thrown.line()) << test.text;
    }
    EXPECT_NO_THROW(ZLT_ASSERT(++nSize == 1); ZLT_ENFORCE(&nSize != poTex); ZLT_RANGE(++nSize == 2));
    EXPECT_EQ(2, nSize) << "a rule is evaluated once";
}

TEST(ExceptionTest, everyCopyKeepsTypeMessagePlaceAndNumber) {
    auto original = std::make_unique<ExceptionOGL>("dir\\a.cpp", 12, "invalid enumerant", 0x500);
    ExceptionOGL assigned("other", 1, nullptr, 0);
    EXPECT_EQ("other:1: ", written(assigned));
    const ExceptionOGL copy(*original);
    assigned = *original;
    Clone clone(original->clone());
    EXPECT_EQ(1u, Core::allocationCount());
    EXPECT_THAT(liveBlocks(), testing::HasSubstr("..\\..\\ExceptionOGL:"));
    original.reset(); // the copies stand alone
    for (const ExceptionOGL* exception :
         {&copy, &std::as_const(assigned), &dynamic_cast<const ExceptionOGL&>(*clone)}) {
        EXPECT_STREQ("invalid enumerant", exception->what());
        EXPECT_EQ("dir\\a.cpp:12: invalid enumerant", written(*exception));
        EXPECT_EQ(0x500u, exception->errorNumber());
        EXPECT_THROW(throw *exception, LogicalException);
        EXPECT_THROW(throw *exception, std::exception);
    }
    clone.reset(InternalException("a", 1, "b").clone());
    EXPECT_TRUE(typeid(InternalException) == typeid(*clone));
    clone.reset(LogicalException("a", 1, "b").clone());
    EXPECT_TRUE(typeid(LogicalException) == typeid(*clone));
    clone.reset();
    EXPECT_EQ("", liveBlocks());
}

TEST(AllocatorTest, itReportsItsOwnHeaderAndRefusesWhatNoMemoryHolds) {
    {
        const std::vector<int, ZLTAllocator<int>> values(6);
        const String text(100, 'x');
        EXPECT_EQ("..\\..\\zlt\\core\\memory\\ZLTAllocator:101: 2 blocks, 125 bytes\n", liveBlocks());
    }
    volatile std::size_t all = SIZE_MAX; // hidden from the compiler, which would warn
    EXPECT_THROW(ZLTAllocator<int>().allocate(all / 2), std::bad_array_new_length);
    EXPECT_THROW(ZLTAllocator<char>().allocate(all), std::bad_alloc);
    EXPECT_EQ(nullptr, ::operator new(all, memory, "a.cpp", 1));
    struct Never {
        Never() { throw std::domain_error("constructed"); }
    };
    EXPECT_THROW(new (memory, "a.cpp", 1) Never, std::domain_error);
    EXPECT_EQ("", liveBlocks()) << "a constructor that throws gives its memory back";
}

TEST(AllocatorTest, itServesThreadsAtTheSameTime) {
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'})
        threads.emplace_back([letter] {
            std::vector<String, ZLTAllocator<String>> texts;
            for (int i = 0; i < 2000; ++i) {
                texts.emplace_back(20 + i % 50, letter);
                if (i % 3 == 0)
                    texts.erase(texts.begin());
                EXPECT_LT(0u, Core::allocationCount());
            }
            for (const String& text : texts)
                EXPECT_EQ(String::npos, text.find_first_not_of(letter));
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ("", liveBlocks());
}

#if !defined(_WIN32)
TEST(AllocatorDeathTest, aPointerThatIsNoLiveBlockEndsTheProcess) {
    // Through a variable that the compiler can't follow, since it warns of what is done here. Without a word,
    // since the C library never gets to see the pointer.
    alignas(std::max_align_t) static char foreign[256] = {};
    void* volatile block = foreign + 128;
    EXPECT_DEATH(::operator delete(block, memory, "a.cpp", 1), "^$");
    block = ::operator new(64, memory, "a.cpp", 1);
    const auto free = [&] { ::operator delete(block, memory, "a.cpp", 2); };
    EXPECT_DEATH((free(), free()), "^$|heap-use-after-free");
    free();
}
#endif

} // namespace
