// Reads, plays, exports and reports on whatever bytes there are, on the scripted GL. The first byte says what
// the rest is: a file, or records and data of one whose chunks are whole, so that no checksum stands in front
// of what is behind it.

#include "FakeGL.h"
#include "FakeWindowSystem.h"
#include "capture/Bytes.h"
#include "capture/CaptureFile.h"
#include "capture/CapturePlayer.h"
#include "capture/Compression.h"
#include "capture/ProjectExporter.h"
#include "capture/reporting/CaptureReporter.h"
#include "extensionator/OpenGLCall.h"
#include "extensionator/OpenGLInterceptor.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

namespace {

using namespace ZLT::Capture;

class NoSystem : public PlaySystem {
public:
    void* makeSurface(const SurfaceShape&) override { return this; }
    void* makeContext(const ContextShape&, void*, void*) override { return this; }
    void makeCurrent(void*, void*, void*) override {}
    void destroyContext(void*) override {}
    void resize(void*, int, int) override {}
    void swap(void*) override {}
    bool hasOneBuffer(void*) override { return true; }
};

std::string chunk(ChunkKind kind, std::string_view bytes, std::uint64_t count) {
    const ChunkHead head = {chunkMagic,        kind, Codec::None, 0, bytes.size(), bytes.size(),
                            checksumOf(bytes), 0,    count};
    return std::string(reinterpret_cast<const char*>(&head), sizeof head).append(bytes);
}

void appendText(std::string& to, std::string_view text) {
    appendValue(to, text.size());
    to += text;
}

// Every eighth function, and those with forms of their own: by their numbers, as this version has them.
std::string declarations() {
    std::string all;
    for (std::uint32_t number = 1; number < firstEntry + ZLT::OGL::openGLEntryCount(); ++number) {
        const Function* const function = functionOf(number);
        if (!function || (function->isCall() && number % 8 != 0 &&
                          function->form.find_first_of("xnot") == std::string::npos))
            continue;
        appendValue(all, static_cast<std::uint32_t>(Event::Function));
        appendValue(all, number);
        appendText(all, function->name);
        appendText(all, function->form);
    }
    return all;
}

std::string fileOf(std::string_view input) {
    if (input.empty() || input[0] == 0)
        return std::string(input.substr(input.empty() ? 0 : 1));
    static const std::string declared = declarations();
    input.remove_prefix(1);
    FileHead head = {{}, fileVersion, sizeof(FileHead)};
    std::memcpy(head.magic, fileMagic, sizeof head.magic);
    std::string pieces;
    for (const std::size_t size : {std::size_t(0), std::size_t(64), std::size_t(5000)}) {
        appendValue(pieces, size);
        pieces.resize(alignedPiece(pieces.size()));
        pieces.append(size, 'x');
    }
    return std::string(reinterpret_cast<const char*>(&head), sizeof head) +
           chunk(ChunkKind::Data, pieces, 3) + chunk(ChunkKind::Calls, declared + std::string(input), 1) +
           chunk(ChunkKind::Index, "", 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int memory = memfd_create("capture", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(memory);
    const std::string bytes = fileOf({reinterpret_cast<const char*>(data), size});
    if (ftruncate(memory, 0) != 0 ||
        pwrite(memory, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        std::abort();
    FakeGL::setRecording(false);
    try {
        CaptureFile file(path);
        NoSystem system;
        PlayListener listener;
        CapturePlayer player(file, system, *ZLT::OGL::OpenGLInterceptor::Instance(), listener, {true});
        for (int frame = 0; frame < 100 && player.playFrame(); ++frame)
            continue;
        file.rewind();
        ReportOptions options;
        options.encode = [](const Picture&, bool) { return std::string("picture"); };
        CaptureReporter reporter(file, system, *ZLT::OGL::OpenGLInterceptor::Instance(), options);
        for (int frame = 0; frame < 100 && reporter.playFrame(); ++frame)
            continue;
        reporter.finish();
        // Nothing of it is left.
        file.rewind();
        ProjectExporter exporter(file, {"/dev/shm/zlt_fuzz_" + std::to_string(getpid()), "fuzz", "capture"});
        for (int frame = 0; frame < 100 && exporter.exportFrame(); ++frame)
            continue;
    } catch (const std::exception&) {
        // What is wrong is said by one; a call between glBegin and glEnd is another.
    }
    ZLT::OGL::OpenGLInterceptor::destroy();
    return 0;
}
