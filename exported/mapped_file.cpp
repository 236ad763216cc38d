#include "mapped_file.h"

#include <stdexcept>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX // some compilers have it
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#if defined(_WIN32)

MappedFile::MappedFile(const std::string& path) {
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    LARGE_INTEGER size = {};
    if (file == INVALID_HANDLE_VALUE || !GetFileSizeEx(file, &size))
        throw std::runtime_error(path + " can't be read: error " + std::to_string(GetLastError()));
    size_ = static_cast<std::size_t>(size.QuadPart);
    const HANDLE mapping =
        size_ > 0 ? CreateFileMappingA(file, nullptr, PAGE_WRITECOPY, 0, 0, nullptr) : nullptr;
    if (mapping) {
        // Written to nowhere; some functions of GL take pointers that aren't const.
        bytes_ = static_cast<const unsigned char*>(MapViewOfFile(mapping, FILE_MAP_COPY, 0, 0, 0));
        CloseHandle(mapping);
    }
    CloseHandle(file);
    if (size_ > 0 && !bytes_)
        throw std::runtime_error(path + " can't be mapped: error " + std::to_string(GetLastError()));
}

MappedFile::~MappedFile() {
    if (bytes_)
        UnmapViewOfFile(bytes_);
}

#else

MappedFile::MappedFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat facts = {};
    if (file < 0 || fstat(file, &facts) != 0)
        throw std::runtime_error(path + " can't be read");
    size_ = static_cast<std::size_t>(facts.st_size);
    void* const bytes =
        size_ > 0 ? mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE, file, 0) : nullptr;
    close(file);
    if (bytes == MAP_FAILED)
        throw std::runtime_error(path + " can't be mapped");
    bytes_ = static_cast<const unsigned char*>(bytes);
}

MappedFile::~MappedFile() {
    if (bytes_)
        munmap(const_cast<unsigned char*>(bytes_), size_);
}

#endif

const unsigned char* MappedFile::at(std::size_t offset, std::size_t size) const {
    if (offset > size_ || size > size_ - offset)
        throw std::runtime_error("data.bin has " + std::to_string(size_) + " bytes, and " +
                                 std::to_string(size) + " are wanted from byte " + std::to_string(offset));
    return bytes_ + offset;
}
