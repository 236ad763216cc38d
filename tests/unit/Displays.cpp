#include "FakeWindowSystem.h"
#include "StartedLibrary.h"
#include "ogl/BufferFormat.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace ZLT::OGL;

namespace {

// Each name tells the format: the channels, their bits, F for floating point, D for depth, S for stencil.
TEST(BufferFormatTest, everyPredefinedFormatIsWhatItsNameSays) {
    const char* const colors[] = {"R16F", "R32F", "RG16F", "RG32F", "RGB8", "RGBA8", "RGBA16F", "RGBA16F"};
    const char* const forms[] = {"", "_D24", "_D24S8"};
    static_assert(BufferFormat::RGB8 == 12 && BufferFormat::RGBA16F_D24S8_ALT == 23);
    for (std::size_t value = 0; value < 24; ++value) {
        const std::string color = colors[value / 3], name = color + forms[value % 3];
        const unsigned int bits = std::stoul(color.substr(color.find_first_of("0123456789")));
        const auto channel = [&](char letter) { return color.find(letter) == std::string::npos ? 0 : bits; };
        const BufferFormat format{BufferFormat::tePredefined(value)};
        EXPECT_EQ(channel('R'), format.redBits()) << name;
        EXPECT_EQ(channel('G'), format.greenBits()) << name;
        EXPECT_EQ(channel('B'), format.blueBits()) << name;
        EXPECT_EQ(channel('A'), format.alphaBits()) << name;
        EXPECT_EQ(name.find("D24") == std::string::npos ? 0u : 24u, format.depthBits()) << name;
        EXPECT_EQ(name.find("S8") == std::string::npos ? 0u : 8u, format.stencilBits()) << name;
        EXPECT_EQ(color.back() == 'F', format.floatingPointColor()) << name;
    }
    for (const int value : {24, -1})
        EXPECT_EQ("!Trying to construct an buffer-format not recognized by this method",
                  failureOf([&] { BufferFormat{BufferFormat::tePredefined(value)}; }));
    const BufferFormat own(1, 2, 3, 4, 5, 6, true);
    EXPECT_EQ(5u, own.stencilBits());
    EXPECT_EQ(6u, own.depthBits());
}

constexpr DWORD attached = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP,
                primary = attached | DISPLAY_DEVICE_PRIMARY_DEVICE,
                mirror = attached | DISPLAY_DEVICE_MIRRORING_DRIVER;

class DisplayTest : public testing::Test {
protected:
    // Named a, b, c ... side by side from the left, the second at the origin.
    void setDevices(const std::vector<DWORD>& flags) {
        system.devices.clear();
        for (const DWORD flag : flags) {
            const LONG number = static_cast<LONG>(system.devices.size());
            system.devices.push_back(
                {std::string(1, static_cast<char>('a' + number)), flag, 1000 * (number - 1), -50});
        }
    }
    static std::string nameAt(std::size_t index) {
        DISPLAY_DEVICEA record = {};
        std::string("untouched").copy(record.DeviceName, 31);
        Context::displayDevice(index, record);
        return record.DeviceName;
    }
    std::string nameAtWindow(int x, int y) {
        return Context::displayDeviceFromWindow(system.makeWindow(x, y)).DeviceName;
    }
    FakeWindowSystem system;
};

TEST_F(DisplayTest, countsLeaveOutMirrorsAndIndicesDoNot) {
    const struct {
        std::vector<DWORD> flags;
        std::size_t count, primary;
        const char* names; // by the indices 0, 1 and 2
    } rows[] = {
        {{}, 0, 0, "untouched untouched untouched"},
        {{primary}, 1, 0, "a a a"},
        {{attached, primary, attached}, 3, 1, "a b c"},
        {{mirror, primary, attached}, 2, 1, "a b c"},
        {{0, attached, 0, primary, 0}, 2, 1, "b d e"}, // past the end: the last one, attached or not
        {{attached, attached}, 2, 0, "a b b"},
        {{mirror}, 0, 0, "a a a"},
        {{DISPLAY_DEVICE_PRIMARY_DEVICE, attached}, 1, 0, "b b b"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.flags.size()) + " devices: " + row.names);
        setDevices(row.flags);
        EXPECT_EQ(row.count, Context::numDisplayDevice());
        EXPECT_EQ(row.primary, Context::primaryDisplayIndex());
        EXPECT_EQ(row.names, nameAt(0) + ' ' + nameAt(1) + ' ' + nameAt(2));
    }
    setDevices({attached, primary});
    const DISPLAY_DEVICEA& record = Context::primaryDisplayDevice();
    EXPECT_STREQ("b", record.DeviceName);
    setDevices({primary, attached});
    EXPECT_EQ(&record, &Context::primaryDisplayDevice());
    EXPECT_STREQ("a", record.DeviceName);
}

TEST_F(DisplayTest, aWindowBelongsToItsMonitorOrTheNearest) {
    setDevices({attached, primary, 0});
    EXPECT_EQ("a", nameAtWindow(-900, 0));
    EXPECT_EQ("b", nameAtWindow(0, 0));
    EXPECT_EQ("a", nameAtWindow(-1500, 3000));
    EXPECT_EQ("b", nameAtWindow(1500, 10)) << "c is not attached";
    system.fail("MonitorFromWindow");
    system.takeCalls();
    EXPECT_EQ("a", nameAtWindow(-900, 0));
    EXPECT_THAT(system.takeCalls(),
                testing::ElementsAre("MonitorFromWindow(w1, 2)", "MonitorFromWindow(w1, 1)",
                                     "GetMonitorInfoA()", "EnumDisplayDevicesA(0)"));
    system.devices[0].monitor = "x";
    EXPECT_EQ("c", nameAtWindow(-900, 0)) << "the last one, for a name that no device has";
    system.fail("EnumDisplayDevicesA");
    const DISPLAY_DEVICEA none = Context::displayDeviceFromWindow(system.makeWindow());
    EXPECT_EQ(sizeof(none), none.cb);
    EXPECT_STREQ("", none.DeviceName);
    system.fail("GetMonitorInfoA", 1, 1461);
    EXPECT_EQ("!Context::can't get monitor info1461", failureOf([&] { nameAtWindow(0, 0); }));
}

TEST_F(DisplayTest, originsComeByName) {
    struct Exposed : Context {
        using Context::displayOrigin;
    };
    setDevices({attached, primary});
    EXPECT_EQ(-1000, Exposed::displayOrigin("a").x);
    EXPECT_EQ(-50, Exposed::displayOrigin("a").y);
    EXPECT_EQ("!error != 0", failureOf([] { Exposed::displayOrigin("c"); }));
}

TEST(SharedDeviceTest, keysAreComparedWithoutTheNumberAtTheirEnd) {
    const struct {
        const char *a, *b;
        bool shared;
    } rows[] = {{"Video\\{1}\\0000", "Video\\{1}\\0001", true},
                {"Video\\{1}\\0000", "Video\\{2}\\0000", false},
                {"Video{1}0000", "Video{2}0000", false},
                {"abcd", "wxyz", true},
                {"abc", "abc", true},
                {"abc", "abd", false},
                {"abcd", "abc", false},
                {"abcd", "abcde", false},
                {"", "", true}};
    for (const auto& row : rows) {
        DISPLAY_DEVICEA a = {}, b = {};
        std::string(row.a).copy(a.DeviceKey, 127);
        std::string(row.b).copy(b.DeviceKey, 127);
        EXPECT_EQ(row.shared, Context::shareDevice(a, b)) << row.a << ' ' << row.b;
    }
}

} // namespace
