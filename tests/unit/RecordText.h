#pragma once

#include <cstdint>
#include <string>

/// @file
/// Expected texts and bytes of a recording. In a text '@' stands for the line comment, and '%' for the
/// position of the call's record.

namespace ZLT::OGL {

inline std::string replaced(std::string text, char placeholder, const std::string& by) {
    for (std::size_t at = 0; (at = text.find(placeholder, at)) != std::string::npos; at += by.size())
        text.replace(at, 1, by);
    return text;
}

/// A block that reads its data, around a call.
inline std::string dataBlock(const std::string& call, const std::string& size = "unsigned int nSize= 0;") {
    return "{\n"
           "    pBinaryInputStream->seekg(%);\n"
           "    " +
           size +
           "\n"
           "    pBinaryInputStream->read((char *)&nSize, sizeof(nSize));\n"
           "    std::vector<char> data(nSize);\n"
           "    pBinaryInputStream->read(&data[0], nSize);\n"
           "    " +
           call + "@\n}\n";
}

/// A record: the length in so many bytes, the lowest first, and the payload.
inline std::string record(int width, std::uint64_t length, const std::string& payload) {
    std::string bytes;
    for (int i = 0; i < width; ++i)
        bytes += static_cast<char>(length >> 8 * i);
    return bytes + payload;
}
inline std::string bytesOf(const void* data, std::size_t size) {
    return {static_cast<const char*>(data), size};
}
inline std::string narrow(const void* data, std::uint32_t size) {
    return record(4, size, bytesOf(data, size));
}
inline std::string wide(const void* data, std::uint32_t size) { return record(8, size, bytesOf(data, size)); }

} // namespace ZLT::OGL
