// A client of the capture's library: its own calls, on contexts of the WGL chain, and the same again in its
// own process.

#include "PlainWindow.h"
#include "StartedDriver.h"
#include "capture/CaptureFile.h"
#include "capture/CaptureFileWriter.h"
#include "capture/CapturePlayer.h"
#include "capture/DriverCalls.h"
#include "capture/OpenGLCapture.h"
#include "capture/PlatformPlaySystem.h"
#include "capture/wglCapture.h"
#include "extensionator/ScopedInterceptor.h"
#include "extensionator/win/wglInterceptor.h"

#include <filesystem>
#include <system_error>

#include <unistd.h>

using namespace ZLT::OGL;
using namespace ZLT::Capture;

namespace {

constexpr int size = 64;

class Listener : public PlayListener {
public:
    void frameEnding(std::uint64_t, const std::function<bool(Picture&)>& read) override {
        Picture picture;
        if (read(picture))
            hashes.push_back(picture.hash());
    }
    void differs(const CapturedCall& call, const std::string& what) override {
        differences += call.function->name + ": " + what + '\n';
    }
    void incomplete(const std::string& what) override { differences += what + '\n'; }

    std::vector<std::uint64_t> hashes;
    std::string differences;
};

void draw(int frame, unsigned int texture) {
    CGM(Viewport, 0, 0, size, size);
    CGM(ClearColor, 0.1f, 0.2f, 0.1f * static_cast<float>(frame), 1);
    CGM(Clear, GL_COLOR_BUFFER_BIT);
    CGM(Enable, GL_TEXTURE_2D);
    CGM(BindTexture, GL_TEXTURE_2D, texture);
    const float corners[] = {-0.5f, -0.5f, 0.5f, -0.5f, 0, 0.5f};
    CGM(EnableClientState, GL_VERTEX_ARRAY);
    CGM(VertexPointer, 2, GL_FLOAT, 0, corners);
    CGM(DrawArrays, GL_TRIANGLES, 0, 3);
    CGM(DisableClientState, GL_VERTEX_ARRAY);
    std::array<unsigned char, std::size_t(4)* size* size> back = {};
    CGM(ReadPixels, 0, 0, size, size, GL_RGBA, GL_UNSIGNED_BYTE, back.data());
}

} // namespace

class CaptureDriverTest : public StartedDriver {};

TEST_F(CaptureDriverTest, sharedContextsOfTheWglChainArePlayedEqual) {
    const std::string path = testing::TempDir() + "client" + std::to_string(getpid()) + ".zlt";
    {
        CaptureFileWriter file(path);
        OpenGLCapture::Options options;
        options.hashPictures = true;
        OpenGLCapture capture(file, options);
        wglCapture windows(capture);
        const ScopedInterceptor installed(capture);
        const wglScopedInterceptor twin(windows);
        PlainWindow window(size, size), other(size, size);
        window.setPixelFormat();
        other.setPixelFormat();
        const HDC devices[] = {window.device(), other.device()};
        wglInterceptor& wgl = *wglInterceptor::Instance();
        const HGLRC first = wgl.wcgmCreateContext(__FILE__, __LINE__, devices[0]);
        const HGLRC second = wgl.wcgmCreateContext(__FILE__, __LINE__, devices[1]);
        ASSERT_TRUE(wgl.wcgmShareLists(__FILE__, __LINE__, first, second));
        ASSERT_TRUE(wgl.wcgmMakeCurrent(__FILE__, __LINE__, devices[0], first));
        unsigned int texture = 0;
        CGM(GenTextures, 1, &texture);
        CGM(BindTexture, GL_TEXTURE_2D, texture);
        CGM(TexParameteri, GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        const unsigned char texels[] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 9, 9, 9, 255};
        CGM(TexImage2D, GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
        for (int frame = 0; frame < 4; ++frame) {
            ASSERT_TRUE(
                wgl.wcgmMakeCurrent(__FILE__, __LINE__, devices[frame % 2], frame % 2 ? second : first));
            draw(frame, texture);
            wgl.wcgmSwapBuffers(__FILE__, __LINE__, devices[frame % 2]);
        }
        wgl.wcgmMakeCurrent(__FILE__, __LINE__, nullptr, nullptr);
        wgl.wcgmDeleteContext(__FILE__, __LINE__, second);
        wgl.wcgmDeleteContext(__FILE__, __LINE__, first);
        capture.end();
        file.close();
        EXPECT_EQ(4u, file.frameCount());
    }

    CaptureFile file(path);
    EXPECT_EQ("", file.damage());
    EXPECT_EQ(4u, file.frameCount());
    CapturedCall call;
    bool isPlaced = false;
    while (file.next(call))
        isPlaced = isPlaced || file.siteOf(call).find("CaptureDriverTest.cpp:") != std::string::npos;
    EXPECT_TRUE(isPlaced);
    file.rewind();
    DriverCalls driver;
    Listener listener;
    {
        PlatformPlaySystem system(false, driver);
        CapturePlayer player(file, system, driver, listener, {true});
        while (player.playFrame())
            continue;
        EXPECT_EQ(8u, player.comparedCount()) << "a picture and a read-back each frame";
    }
    EXPECT_EQ("", listener.differences);
    ASSERT_EQ(4u, listener.hashes.size());
    EXPECT_NE(listener.hashes[0], listener.hashes[3]);
    std::error_code stillOpen; // on Windows, by the reader
    std::filesystem::remove(path, stillOpen);
}
