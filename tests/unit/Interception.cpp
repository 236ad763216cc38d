// What is put into foreign programs, as far as no program is needed: the balance of begin and end with
// display lists, and the records that go to the command.

#include "intercept/ChannelWriter.h"
#include "intercept/DisplayLists.h"
#include "intercept/ReportRecord.h"

#include <GL/gl.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <thread>

using namespace ZLT::Interception;
using Step = DisplayLists::Step;

namespace {

struct BalanceTest : testing::Test {
    DisplayLists lists;
    ListBalance balance;

    void compile(std::uint32_t name, const std::vector<Step>& steps, bool executes = false) {
        balance.listBegun(name, executes);
        for (const Step& step : steps)
            switch (step.kind) {
            case Step::Begin:
                balance.begun();
                break;
            case Step::End:
                balance.ended();
                break;
            case Step::Call:
                balance.listCalled(lists, step.list);
                break;
            case Step::CallFromBase:
                balance.listsCalled(lists, 1, GL_UNSIGNED_INT, &step.list);
                break;
            default:
                balance.compiled(step);
            }
        balance.listEnded(lists);
    }
    bool after(std::uint32_t list) {
        balance.listCalled(lists, list);
        return balance.isInside();
    }
};

TEST_F(BalanceTest, aListThatIsOnlyCompiledChangesNothingUntilItIsCalled) {
    compile(1, {{Step::Begin}});
    EXPECT_FALSE(balance.isInside());
    EXPECT_TRUE(after(1));
    balance.ended();
    compile(2, {{Step::End}});
    balance.begun();
    EXPECT_FALSE(after(2));
    compile(3, {{Step::Begin}}, true);
    EXPECT_TRUE(balance.isInside());
}

TEST_F(BalanceTest, listsCallListsAsTheyAreThen) {
    compile(2, {{Step::Begin}});
    compile(1, {{Step::Call, 2}});
    EXPECT_TRUE(after(1));
    balance.ended();
    compile(2, {{Step::Begin}, {Step::End}});
    EXPECT_FALSE(after(1));
    lists.erase(1, 2);
    EXPECT_TRUE(lists.isEmpty());
    compile(5, {{Step::Begin}, {Step::Call, 5}, {Step::End}}); // without end, but for GL's limit
    EXPECT_FALSE(after(5));
}

TEST_F(BalanceTest, namesCountFromTheBaseThatListsSetAndAttributesBringBack) {
    compile(1098, {{Step::Begin}});
    compile(1, {{Step::PushBase},
                {Step::SetBase, 1000},
                {Step::CallFromBase, 98},
                {Step::End},
                {Step::Pop},
                {Step::CallFromBase, 98}});
    EXPECT_FALSE(after(1)); // the second one is list 98, which is none
    compile(2, {{Step::SetBase, 1000}, {Step::PushOther}, {Step::Pop}, {Step::CallFromBase, 98}});
    EXPECT_TRUE(after(2));
    balance.ended();
    balance.setBase(1000);
    const unsigned char byte = 98;
    balance.listsCalled(lists, 1, GL_UNSIGNED_BYTE, &byte);
    EXPECT_TRUE(balance.isInside());
    balance.ended();
    const unsigned char two[] = {1098 >> 8, 1098 & 255};
    balance.setBase(0);
    balance.listsCalled(lists, 1, GL_2_BYTES, two);
    EXPECT_TRUE(balance.isInside());
}

TEST(ReportRecordTest, comesBackWholeAndDamagedOnesAreRefused) {
    ReportRecord record;
    record.number = 7;
    record.site = 9;
    record.report.function = "glEnable";
    record.report.arguments = "0xDEAD";
    record.report.code = 0x0500;
    record.report.reason = "GL_INVALID_ENUM";
    record.report.messages.push_back({1, 2, 3, 4, true, "said"});
    record.stack = {9, 10};
    const std::string bytes = encode(record);
    const ReportRecord back = decodeReport(bytes);
    EXPECT_EQ(bytes, encode(back));
    EXPECT_STREQ("glEnable", back.report.function);
    EXPECT_EQ("said", back.report.messages.at(0).text);
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_THROW(decodeReport(std::string_view(bytes).substr(0, size)), std::runtime_error) << size;
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        std::string damaged = bytes;
        damaged[random() % damaged.size()] = static_cast<char>(random());
        try {
            encode(decodeReport(damaged));
        } catch (const std::runtime_error&) { // refused
        }
    }
}

// More records than the ring has room for, of all sizes: each arrives whole, and none is written over.
TEST(ChannelTest, theWriterWaitsForTheReaderAtTheEndOfTheRing) {
    // As the system gives it: all zero, and not there before it is used.
    const std::unique_ptr<Channel, decltype(&std::free)> channel(
        static_cast<Channel*>(std::calloc(1, sizeof(Channel))), &std::free);
    channel->magic = channelMagic;
    channel->version = channelVersion;
    channel->size = sizeof(Channel);
    channel->reading = 1;
    ChannelWriter writer;
    ASSERT_TRUE(writer.attach(*channel));
    ProcessSlot& slot = channel->slots[0];
    constexpr std::uint32_t count = 3000;
    std::thread other([&] {
        for (std::uint32_t i = 0; i < count; ++i)
            writer.write(RecordKind::Line, bytesOf(i), std::string(i % 7001, char('a' + i % 26)));
    });
    std::uint32_t next = 0;
    while (next < count) {
        std::uint64_t at = slot.read.load();
        if (at == slot.written.load(std::memory_order_acquire))
            continue;
        RecordHead head;
        std::memcpy(&head, slot.ring + at % ringSize, sizeof head);
        if (head.kind != RecordKind::Pad) {
            const char* bytes = reinterpret_cast<const char*>(slot.ring + at % ringSize + sizeof head);
            std::uint32_t number = 0;
            std::memcpy(&number, bytes, sizeof number);
            ASSERT_EQ(next, number);
            ASSERT_EQ(std::string(next % 7001, char('a' + next % 26)),
                      std::string(bytes + sizeof number, head.size - sizeof head - sizeof number));
            ++next;
        }
        slot.read.store(at + (head.size + 7) / 8 * 8, std::memory_order_release);
    }
    other.join();
    channel->reading = 0; // nobody reads: what has no room is lost, and nobody waits
    for (int i = 0; i < 5; ++i)
        writer.write(RecordKind::Line, std::string(ringSize / 2, 'x'));
}

} // namespace
