#include "Entries.h"
#include "RecordText.h"
#include "extensionator/win/wglErrorChecker.h"
#include "extensionator/win/wglInterceptor.h"
#include "extensionator/win/wglRekorder.h"
#include "zlt/core/Exceptions.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace ZLT;
using namespace ZLT::OGL;
using FakeGL::Call;
using FakeGL::Value;

namespace {

using ZLT::Platform::BOOL;
template <class T>
T at(std::uintptr_t address) {
    return reinterpret_cast<T>(address); // NOLINT(performance-no-int-to-ptr)
}

const HDC device = at<HDC>(0x1000ABCD);
const HGLRC first = at<HGLRC>(0xFEDCBA9876543210), second = at<HGLRC>(0x22);
const LPGLYPHMETRICSFLOAT metrics = at<LPGLYPHMETRICSFLOAT>(0x33);
const LPLAYERPLANEDESCRIPTOR descriptor = at<LPLAYERPLANEDESCRIPTOR>(0x44);
COLORREF* const colours = at<COLORREF*>(0x55);
const WGLSWAP* const buffers = at<const WGLSWAP*>(0x66);
const char name[] = "glFlush";

struct Row {
    std::size_t slot;
    Value (*call)(wglInterceptor& gl);
    Call expected;
    Value success, failure;
    std::string statement; // empty: it can't be recorded
};

// The result's type and a value of it, entry, function, statement, arguments in the function's types.
#define ROW(type, result, name, function, statement, ...)                                                    \
    {                                                                                                        \
        virtualSlotOf(&wglInterceptor::wcgm##name),                                                          \
            [](wglInterceptor& gl) { return Value(gl.wcgm##name("a.cpp", 7 __VA_OPT__(, ) __VA_ARGS__)); },  \
            {#function, {__VA_ARGS__}}, Value(type(result)), Value(type()), statement                        \
    }

// In the order of the virtual slots.
const Row rows[] = {
    ROW(BOOL, 3, CopyContext, wglCopyContext,
        "wglCopyContext(FEDCBA9876543210, 0000000000000022, 4294967295);@\n", first, second,
        UINT(0xFFFFFFFF)),
    ROW(HGLRC, at<HGLRC>(5), CreateContext, wglCreateContext,
        R"(GLRekorderCreateWindow((HDC)0x000000001000ABCD);
std::map<HDC, HDC>::iterator iter = hdc_map_.find((HDC)0x000000001000ABCD);
if (iter == hdc_map_.end())
{
    std::cerr << "Missing HDC in hdc_map_!\n";
}
hDC_Ours = iter->second;
wglCreateContext(hDC_Ours);@
)",
        device),
    ROW(HGLRC, at<HGLRC>(6), CreateLayerContext, wglCreateLayerContext,
        "wglCreateLayerContext((HDC)0x000000001000ABCD, -2);@\n", device, -2),
    ROW(BOOL, 1, DeleteContext, wglDeleteContext, "wglDeleteContext((HGLRC)0x0000000000000022);@\n", second),
    ROW(HGLRC, first, GetCurrentContext, wglGetCurrentContext, "wglGetCurrentContext();@\n"),
    ROW(HDC, device, GetCurrentDC, wglGetCurrentDC, "wglGetCurrentDC();@\n"),
    ROW(PROC, at<PROC>(0x77), GetProcAddress, wglGetProcAddress,
        "OpenGLRekorderUnsupported(\"Unsupported function (wglGetProcAddress) called. \");@\n",
        static_cast<const char*>(name)),
    ROW(BOOL, 1, MakeCurrent, wglMakeCurrent,
        "GLRekorderMakeCurrent((HDC)0x000000001000ABCD, (HGLRC)0xFEDCBA9876543210);@\n", device, first),
    ROW(BOOL, -1, ShareLists, wglShareLists,
        "wglShareLists((HGLRC)0xFEDCBA9876543210, (HGLRC)0x0000000000000022);@\n", first, second),
    ROW(BOOL, 1, UseFontBitmapsA, wglUseFontBitmapsA, "", device, DWORD(1), DWORD(2), DWORD(3)),
    ROW(BOOL, 1, UseFontBitmapsW, wglUseFontBitmapsW, "", device, DWORD(4), DWORD(5), DWORD(6)),
    ROW(BOOL, 1, SwapBuffers, SwapBuffers, "GLRekorderSwapBuffers((HDC)0x000000001000ABCD);@\n", device),
    ROW(BOOL, 1, UseFontOutlinesA, wglUseFontOutlinesA, "", device, DWORD(1), DWORD(2), DWORD(3), 0.5f, 2.0f,
        4, metrics),
    ROW(BOOL, 1, UseFontOutlinesW, wglUseFontOutlinesW, "", device, DWORD(5), DWORD(6), DWORD(7), 1.5f, 3.0f,
        8, metrics),
    ROW(BOOL, 1, DescribeLayerPlane, wglDescribeLayerPlane, "", device, 1, -2, UINT(40), descriptor),
    ROW(int, 12, SetLayerPaletteEntries, wglSetLayerPaletteEntries, "", device, 1, 2, 3,
        static_cast<const COLORREF*>(colours)),
    ROW(int, -12, GetLayerPaletteEntries, wglGetLayerPaletteEntries, "", device, 4, 5, 6, colours),
    ROW(BOOL, 1, RealizeLayerPalette, wglRealizeLayerPalette, "", device, 1, BOOL(2)),
    ROW(BOOL, 1, SwapLayerBuffers, wglSwapLayerBuffers,
        "wglSwapLayerBuffers((HDC)0x000000001000ABCD, 2147483649);@\n", device, UINT(0x80000001)),
    ROW(DWORD, 0x80000001, SwapMultipleBuffers, wglSwapMultipleBuffers, "", UINT(9), buffers),
};

struct WglTest : testing::Test {
    WglTest() { FakeGL::reset(); }
    ~WglTest() override { wglInterceptor::destroy(); }
    std::ostringstream text, data;
};

TEST_F(WglTest, theChainIsTwentyEntriesThatHandThroughWhatThePlatformSays) {
    std::size_t slot = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(slot++, row.slot);
        for (const Value& result : {row.success, row.failure}) {
            FakeGL::reset();
            FakeGL::setResult(row.expected.function, result);
            EXPECT_EQ(result, row.call(*wglInterceptor::Instance()));
            EXPECT_EQ(std::vector<Call>{row.expected}, FakeGL::calls());
        }
    }
    EXPECT_EQ(20u, slot);
}

// Sees what the recorder passes on, which wglGetProcAddress must not be.
struct Next : wglErrorChecker {
    PROC wcgmGetProcAddress(const char*, unsigned int, LPCSTR) override {
        ADD_FAILURE() << "reached the next layer";
        return nullptr;
    }
};

TEST_F(WglTest, eachCallIsWrittenAndThenMadeOrRefused) {
    Next next;
    for (const std::string comment : {"", "\t\t// a.cpp, line 7"}) {
        // The inner one writes the file and line that the outer one hands on.
        std::ostringstream innerText;
        wglRekorder inner(innerText, data, device, &next, true);
        wglRekorder outer(text, data, nullptr, &inner, !comment.empty());
        EXPECT_EQ("addCurrentAppDC((HDC)0x000000001000ABCD);\n", innerText.str());
        EXPECT_EQ("addCurrentAppDC((HDC)0x0000000000000000);\n", text.str());
        int refused = 0;
        for (const Row& row : rows) {
            SCOPED_TRACE(row.expected);
            FakeGL::reset();
            text.str("");
            innerText.str("");
            std::string textOnCall;
            FakeGL::setResult(row.expected.function, row.success);
            FakeGL::setHook([&](const Call&) { textOnCall = text.str(); });
            if (row.statement.empty()) {
                ++refused;
                try {
                    row.call(outer);
                    ADD_FAILURE() << "no exception";
                } catch (const InternalException& exception) {
                    EXPECT_STREQ("!\"Missing code to record this wgl function!\"", exception.what());
                    EXPECT_STREQ("..\\..\\extensionator\\win\\wglRekorder", exception.file());
                    EXPECT_LT(0, exception.line());
                }
                EXPECT_TRUE(FakeGL::calls().empty());
                EXPECT_EQ("", text.str() + innerText.str());
                continue;
            }
            EXPECT_EQ(row.success, row.call(outer));
            EXPECT_EQ(std::vector<Call>{row.expected}, FakeGL::calls());
            EXPECT_EQ(replaced(row.statement, '@', comment), text.str());
            EXPECT_EQ(text.str(), textOnCall);
            const bool passedOn = row.expected.function != "wglGetProcAddress";
            EXPECT_EQ(passedOn ? replaced(row.statement, '@', "\t\t// a.cpp, line 7") : "", innerText.str());
        }
        EXPECT_EQ(9, refused);
        EXPECT_EQ("", data.str());
        text.str("");
    }
}

TEST_F(WglTest, theMacroNamesThePlace) {
    wglRekorder layer(text, data, device, nullptr, true);
    wglInterceptor::Instance()->addInterceptor(&layer);
    text.str("");
    CWGM(GetCurrentDC);
    const std::string line = std::to_string(__LINE__ - 1);
    EXPECT_EQ("wglGetCurrentDC();\t\t// " __FILE__ ", line " + line + '\n', text.str());
    layer.popInterceptor();
}

} // namespace
