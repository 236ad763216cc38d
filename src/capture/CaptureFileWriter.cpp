#include "capture/CaptureFileWriter.h"

#include "capture/Bytes.h"
#include "capture/CaptureFormat.h"
#include "capture/Compression.h"
#include "capture/Functions.h"
#include "capture/Records.h"

#include <cerrno>
#include <cstdio>
#include <map>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace ZLT::Capture {

namespace {

constexpr std::size_t callChunk = std::size_t(1) << 20, dataChunk = std::size_t(4) << 20;

} // namespace

struct CaptureFileWriter::File {
    std::FILE* file = nullptr;
    std::string path;
    Options options;
    mutable std::mutex lock;
    int error = 0; // the first that writing had

    std::string calls, pieces;
    Compressor compressor;
    std::uint32_t thread = 0;
    std::uint64_t callCount = 0, firstCall = 0, chunkCount = 0, size = 0;
    std::uint64_t pieceCount = 0, firstPiece = 0;
    std::vector<bool> declared = std::vector<bool>(4096);
    std::vector<FrameEnd> frames;
    std::map<std::pair<const void*, unsigned int>, std::uint32_t> sites;

    void write(std::string_view bytes) {
        if (error == 0 && std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size())
            error = errno != 0 ? errno : EIO;
        size += bytes.size();
    }

    void writeChunk(ChunkKind kind, std::string_view bytes, std::uint64_t first, std::uint64_t count) {
        bool packed = false;
        const std::string_view stored = compressor.compress(bytes, packed);
        const ChunkHead head = {chunkMagic,
                                kind,
                                packed ? Codec::Zstandard : Codec::None,
                                0,
                                stored.size(),
                                bytes.size(),
                                checksumOf(stored),
                                first,
                                count};
        write({reinterpret_cast<const char*>(&head), sizeof head});
        write(stored);
    }

    void flushData() {
        if (pieces.empty())
            return;
        writeChunk(ChunkKind::Data, pieces, firstPiece, pieceCount - firstPiece);
        pieces.clear();
        firstPiece = pieceCount;
    }

    // Data first: whoever reads a call finds what it names in front of it.
    void flush() {
        flushData();
        if (calls.empty())
            return;
        writeChunk(ChunkKind::Calls, calls, firstCall, callCount - firstCall);
        ++chunkCount;
        calls.clear();
        firstCall = callCount;
        thread = 0; // each chunk says of which thread it is
    }

    void declare(std::uint32_t number) {
        const Function* const function = functionOf(number);
        if (!function || declared[number])
            return;
        declared[number] = true;
        appendValue(calls, static_cast<std::uint32_t>(Event::Function));
        appendValue(calls, number);
        for (const std::string* text : {&function->name, &function->form}) {
            appendValue(calls, text->size());
            calls += *text;
        }
    }
};

CaptureFileWriter::CaptureFileWriter(const std::string& path) : CaptureFileWriter(path, Options()) {}

CaptureFileWriter::CaptureFileWriter(const std::string& path, const Options& options)
    : file_(std::make_unique<File>()) {
    file_->path = path;
    file_->options = options;
    file_->declared[static_cast<std::size_t>(Event::Function)] = true; // by the format itself
#if defined(_WIN32)
    file_->file = std::fopen(path.c_str(), "wbN"); // no program that is started gets it
#else
    file_->file = std::fopen(path.c_str(), "wbe");
#endif
    if (!file_->file)
        throw std::system_error(errno, std::generic_category(), path + " can't be written");
    FileHead head = {{}, fileVersion, sizeof(FileHead)};
    std::memcpy(head.magic, fileMagic, sizeof head.magic);
    file_->write({reinterpret_cast<const char*>(&head), sizeof head});
    if (!options.info.empty())
        file_->writeChunk(ChunkKind::Info, options.info, 0, 0);
}

CaptureFileWriter::~CaptureFileWriter() {
    try {
        close();
    } catch (const std::exception&) {
        return;
    }
}

void CaptureFileWriter::close() {
    const std::lock_guard guard(file_->lock);
    if (!file_->file)
        return;
    file_->flush();
    std::string frames;
    for (const FrameEnd& frame : file_->frames) {
        appendValue(frames, frame.chunk);
        appendValue(frames, frame.offset);
        appendValue(frames, frame.call);
    }
    file_->writeChunk(ChunkKind::Index, frames, 0, file_->frames.size());
    if (std::fclose(std::exchange(file_->file, nullptr)) != 0 && file_->error == 0)
        file_->error = errno;
    if (file_->error != 0)
        throw std::system_error(file_->error, std::generic_category(),
                                file_->path + " could not be written to the end");
}

void CaptureFileWriter::flush() {
    const std::lock_guard guard(file_->lock);
    if (!file_->file)
        return;
    file_->flush();
    std::fflush(file_->file);
}

std::uint64_t CaptureFileWriter::callCount() const {
    const std::lock_guard guard(file_->lock);
    return file_->callCount;
}

std::uint64_t CaptureFileWriter::frameCount() const {
    const std::lock_guard guard(file_->lock);
    return file_->frames.size();
}

std::uint64_t CaptureFileWriter::size() const {
    const std::lock_guard guard(file_->lock);
    return file_->size;
}

void CaptureFileWriter::record(std::uint32_t thread, std::string_view bytes) {
    const std::lock_guard guard(file_->lock);
    File& file = *file_;
    if (!file.file)
        return;
    const std::uint32_t number = ByteReader(bytes).numberOf<std::uint32_t>();
    if (number < file.declared.size() && !file.declared[number])
        file.declare(number);
    if (thread != file.thread) {
        file.thread = thread;
        file.declare(static_cast<std::uint32_t>(Event::Thread));
        appendValue(file.calls, static_cast<std::uint32_t>(Event::Thread));
        appendValue(file.calls, thread);
    }
    file.calls += bytes;
    if (number >= firstEntry)
        ++file.callCount;
    if (number == static_cast<std::uint32_t>(Event::Swap))
        file.frames.push_back({file.chunkCount, file.calls.size(), file.callCount});
    if (file.calls.size() >= callChunk)
        file.flush();
}

std::uint32_t CaptureFileWriter::siteOf(const char* path, unsigned int line) {
    std::uint32_t number = 0;
    {
        const std::lock_guard guard(file_->lock);
        const auto [place, isNew] = file_->sites.try_emplace({path, line}, file_->sites.size() + 1);
        number = place->second;
        if (!isNew)
            return number;
    }
    addSite(number, path, line);
    return number;
}

void CaptureFileWriter::frameEnded() {
    if (file_->options.flushesFrames)
        flush();
}

void CaptureFileWriter::addSite(std::uint32_t number, std::string_view path, unsigned int line) {
    const std::lock_guard guard(file_->lock);
    file_->declare(static_cast<std::uint32_t>(Event::Site));
    appendValue(file_->calls, static_cast<std::uint32_t>(Event::Site));
    appendValue(file_->calls, number);
    appendValue(file_->calls, path.size());
    file_->calls += path;
    appendValue(file_->calls, line);
}

void CaptureFileWriter::addData(std::uint32_t number, std::string_view bytes) {
    const std::lock_guard guard(file_->lock);
    File& file = *file_;
    // A piece that is as large as a chunk gets one of its own.
    if (number != file.pieceCount || file.pieces.size() + bytes.size() > dataChunk)
        file.flushData();
    if (number != file.pieceCount)
        file.firstPiece = file.pieceCount = number;
    appendValue(file.pieces, bytes.size());
    file.pieces.resize(alignedPiece(file.pieces.size())); // where drivers like to read from
    file.pieces += bytes;
    ++file.pieceCount;
}

void CaptureFileWriter::data(std::uint32_t number, std::string_view bytes) { addData(number, bytes); }

} // namespace ZLT::Capture
