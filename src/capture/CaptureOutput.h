#pragma once

#include "capture/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

/// @file
/// Where a capture goes.

namespace ZLT::Capture {

/// Takes what the capturing layers write. A client hands a CaptureFileWriter to them; the command has an
/// output of its own, which sends everything to another process. Several threads may call at once.
class ZLT_CAPTURE_API CaptureOutput {
public:
    CaptureOutput();
    CaptureOutput(const CaptureOutput&) = delete;
    CaptureOutput& operator=(const CaptureOutput&) = delete;
    virtual ~CaptureOutput();

    /// Adds a record of the thread, numbered from 1.
    virtual void record(std::uint32_t thread, std::string_view bytes) = 0;
    /// The number of the place that a call came from, from 1.
    virtual std::uint32_t siteOf(const char* file, unsigned int line) = 0;
    /// A frame was ended, and all records of it were added.
    virtual void frameEnded() {}

    /// Keeps data: what is equal to something that was kept has its number. The numbers count from 0.
    virtual std::uint32_t store(std::string_view bytes);

protected:
    /// Data that is new, and gets this number.
    virtual void data(std::uint32_t number, std::string_view bytes) = 0;

private:
    struct Stored;
    std::unique_ptr<Stored> stored_;
};

} // namespace ZLT::Capture
