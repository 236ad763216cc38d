// data.bin, mapped into memory.
#pragma once

#include <cstddef>
#include <string>

class MappedFile {
public:
    // Throws std::runtime_error, with a sentence.
    explicit MappedFile(const std::string& path);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    const unsigned char* at(std::size_t offset, std::size_t size) const;
    std::size_t size() const { return size_; }

private:
    const unsigned char* bytes_ = nullptr;
    std::size_t size_ = 0;
};

// The one of this program.
const MappedFile& data_file();
