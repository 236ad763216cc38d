#include "RecordingStream.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

constexpr std::size_t narrow = 4;
constexpr std::size_t wide = 8;

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Every position that the text seeks.
std::vector<std::size_t> positionsIn(const std::string& text) {
    constexpr char seek[] = "pBinaryInputStream->seekg(";
    std::vector<std::size_t> positions;
    for (std::size_t at = 0; (at = text.find(seek, at)) != std::string::npos;) {
        at += sizeof(seek) - 1;
        std::size_t position = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + at, end, position);
        if (error != std::errc() || stop == end || *stop != ')')
            throw std::runtime_error("no position behind byte " + std::to_string(at) + " of the statements");
        positions.push_back(position);
    }
    return positions;
}

} // namespace

RecordingStream::RecordingStream(const std::string& text, const std::string& data)
    : ends_(positionsIn(readFile(text))) {
    const std::string bytes = readFile(data);
    bytes_.assign(bytes.begin(), bytes.end());
    ends_.push_back(bytes_.size());
    std::ranges::sort(ends_);
}

std::uint32_t RecordingStream::lengthAt(std::size_t position) const {
    if (position + narrow > bytes_.size())
        throw std::runtime_error("the recorded data ends inside the record at byte " +
                                 std::to_string(position));
    std::uint32_t length;
    std::memcpy(&length, &bytes_[position], sizeof(length));
    return length;
}

// One record with a narrow length, or a run of records with wide ones, fills the space up to the next
// position.
std::size_t RecordingStream::prefixSizeAt(std::size_t position) const {
    const auto end = std::ranges::upper_bound(ends_, position);
    if (end == ends_.end()) // a statement without records, at the end of the data
        return narrow;
    if (position + narrow + lengthAt(position) == *end)
        return narrow;
    std::size_t at = position;
    while (at + wide <= *end)
        at += wide + lengthAt(at);
    if (at != *end)
        throw std::runtime_error("no record begins at byte " + std::to_string(position) +
                                 " of the recorded data");
    return wide;
}

void RecordingStream::seekg(std::uint32_t position) {
    at_ = position;
    prefixSize_ = prefixSizeAt(position);
    lengthIsNext_ = true;
}

void RecordingStream::read(char* to, std::streamsize size) {
    const auto wanted = static_cast<std::size_t>(size);
    if (at_ > bytes_.size() || wanted > bytes_.size() - at_)
        throw std::runtime_error("the recorded data ends " + std::to_string(size) +
                                 " bytes too early, at byte " + std::to_string(bytes_.size()));
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at_), wanted, to);
    at_ += lengthIsNext_ ? prefixSize_ : wanted;
    lengthIsNext_ = !lengthIsNext_;
}
