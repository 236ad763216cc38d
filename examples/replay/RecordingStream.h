#pragma once

#include <cstddef>
#include <cstdint>
#include <ios>
#include <string>
#include <vector>

/// The binary side of a recording, as its statements read it: `seekg` to a record, 4 bytes of length, the
/// payload. Some records have a length of 8 bytes in front, of which the statements still read 4; this class
/// gives them the payload from its true beginning.
///
/// Which records these are follows from the positions in the text: a record ends where the next one begins.
/// Data that was cut off exactly 4 bytes before its end passes for data with a last length of 4 bytes.
class RecordingStream {
public:
    /// @param text  path of the statements, for their positions
    /// @param data  path of the records
    /// @throws std::runtime_error when one can't be read, or when the text ends inside a position
    RecordingStream(const std::string& text, const std::string& data);

    /// Goes to the record at `position`.
    /// @throws std::runtime_error when no record begins there
    void seekg(std::uint32_t position);

    /// In turns the length of a record (4 bytes) and its payload, and so on with the records that follow.
    /// @throws std::runtime_error when the data ends before
    void read(char* to, std::streamsize size);

private:
    std::uint32_t lengthAt(std::size_t position) const;
    std::size_t prefixSizeAt(std::size_t position) const;

    std::vector<char> bytes_;
    std::vector<std::size_t> ends_; // of the records or runs of records, ascending
    std::size_t at_ = 0;
    std::size_t prefixSize_ = 4;
    bool lengthIsNext_ = true;
};
