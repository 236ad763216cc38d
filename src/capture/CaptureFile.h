#pragma once

#include "capture/Bytes.h"
#include "capture/CaptureFormat.h"
#include "capture/Export.h"
#include "capture/Functions.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ZLT::Capture {

class CaptureFile;

/// One value of a record, as it lies in the file.
struct CapturedValue {
    char form = 0;    ///< see Function::form; 0 for a result that there is not
    char element = 0; ///< of what a pointer points at
    PointerForm pointer = PointerForm::Null;
    std::uint64_t bits = 0;    ///< of a number, sign extended; of floats the bits; an address
    std::uint64_t skipped = 0; ///< bytes in front of what was touched
    std::string_view bytes;    ///< what a pointer points at; lives as long as the call

    float asFloat() const { return std::bit_cast<float>(static_cast<std::uint32_t>(bits)); }
    double asDouble() const { return std::bit_cast<double>(bits); }
    bool isMemory() const { return pointer >= PointerForm::Inline; }
};

/// One record.
struct CapturedCall {
    const Function* function = nullptr;
    std::uint32_t site = 0;   ///< 0: none
    std::uint32_t thread = 0; ///< from 1
    std::uint64_t number = 0; ///< of calls: from 1 in the order of the file
    std::uint64_t frame = 0;  ///< from 1
    std::vector<CapturedValue> values;
    CapturedValue result;
    std::vector<std::shared_ptr<const std::string>> held; ///< what the values' bytes lie in

    bool is(Event event) const { return function->number == static_cast<std::uint32_t>(event); }
    std::uint32_t u32(std::size_t index) const { return static_cast<std::uint32_t>(values[index].bits); }
    std::int32_t i32(std::size_t index) const { return static_cast<std::int32_t>(values[index].bits); }
};

/// A capture, read from its file. Nothing in the file is trusted: what is damaged is told with its place, and
/// what is whole in front of it can be read.
///
///     CaptureFile file("scene.zlt");
///     CapturedCall call;
///     while (file.next(call))
///         std::cout << call.function->name << '\n';
///     if (!file.damage().empty())
///         std::cerr << file.damage() << '\n';
///
/// One thread at a time.
class ZLT_CAPTURE_API CaptureFile {
public:
    /// @throws std::system_error when there is no such file; FormatError when it is none of a capture, or of
    ///         a newer version
    explicit CaptureFile(const std::string& path);
    ~CaptureFile();
    CaptureFile(const CaptureFile&) = delete;
    CaptureFile& operator=(const CaptureFile&) = delete;

    /// What the capture is of: lines of text.
    const std::string& info() const;
    /// Empty for a file that is whole: it has its index.
    const std::string& damage() const;
    /// How many frames were ended, as far as it is known in front: by the index.
    std::uint64_t frameCount() const;
    std::uint64_t callCount() const;

    /// Reads the next record. Functions and sites are told by their records too.
    /// @return whether there was one: else the end was reached, or what is damaged
    bool next(CapturedCall& call);
    /// Goes back to the first record.
    void rewind();
    /// Goes to the first record of the frame. What is in front of it is read, since functions and sites are
    /// told there.
    void seekFrame(std::uint64_t frame);

    /// "scene.cpp:105"; empty where none is known.
    const std::string& siteOf(const CapturedCall& call) const;
    /// All that were read so far, by their numbers.
    std::map<std::uint32_t, std::string> sites() const;

private:
    struct File;
    std::unique_ptr<File> file_;
};

} // namespace ZLT::Capture
