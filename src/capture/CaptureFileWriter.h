#pragma once

#include "capture/CaptureOutput.h"
#include "capture/Export.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ZLT::Capture {

/// Writes a capture to a file: the output of an OpenGLCapture in its own process.
///
///     CaptureFileWriter file("scene.zlt");
///     OpenGLCapture capture(file);
///     ...
///     capture.end();
///     file.close();
///
/// With each frame that ends, what is there goes to the file: a process that is killed leaves all frames but
/// the last one. Threads may write at once.
class ZLT_CAPTURE_API CaptureFileWriter : public CaptureOutput {
public:
    struct Options {
        bool flushesFrames =
            true;         ///< write each frame when it ends; else when there is enough to compress well
        std::string info; ///< what the capture is of, for people: a line of text each
    };

    /// @throws std::system_error when the file can't be made
    explicit CaptureFileWriter(const std::string& path);
    CaptureFileWriter(const std::string& path, const Options& options);
    /// Closes the file; what goes wrong then is not told.
    ~CaptureFileWriter() override;

    /// Writes all that is left, and the index of the frames. Nothing may follow.
    /// @throws std::system_error when something could not be written, now or before: the disk is full
    void close();
    /// Writes what is there.
    void flush();

    std::uint64_t callCount() const;
    std::uint64_t frameCount() const;
    /// Bytes of the file so far.
    std::uint64_t size() const;

    void record(std::uint32_t thread, std::string_view bytes) override;
    std::uint32_t siteOf(const char* file, unsigned int line) override;
    void frameEnded() override;

    /// For who has numbered places or data elsewhere.
    void addSite(std::uint32_t number, std::string_view file, unsigned int line);
    void addData(std::uint32_t number, std::string_view bytes);

protected:
    void data(std::uint32_t number, std::string_view bytes) override;

private:
    struct File;
    std::unique_ptr<File> file_;
};

} // namespace ZLT::Capture
