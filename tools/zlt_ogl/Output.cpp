#include "Output.h"

#include "ProgramFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#if defined(_WIN32)
#include <fstream>
#else
#include <ext/stdio_filebuf.h>
#include <fcntl.h>
#endif

namespace ZLT::Interception {

namespace {

#if defined(_WIN32)
std::unique_ptr<std::ostream> open(const std::string& path) {
    return std::make_unique<std::ofstream>(path, std::ios::binary);
}
#else
constexpr std::size_t bufferSize = 1 << 16;

// A stream of the standard library can't be told to keep its descriptor from other programs.
class File : public std::ostream {
public:
    explicit File(const std::string& path)
        : std::ostream(nullptr), buffer_(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666),
                                         std::ios::out, bufferSize) {
        rdbuf(&buffer_);
        if (!buffer_.is_open())
            setstate(failbit);
    }

private:
    __gnu_cxx::stdio_filebuf<char> buffer_;
};
std::unique_ptr<std::ostream> open(const std::string& path) { return std::make_unique<File>(path); }
#endif

} // namespace

std::string freeName(const std::string& path, const std::string& extension) {
    const std::string stem = std::filesystem::path(path).stem().string();
    std::string name = stem + extension;
    for (int i = 1; std::filesystem::exists(name); ++i)
        name = std::string(stem).append(".").append(std::to_string(i)).append(extension);
    return name;
}

std::unique_ptr<std::ostream> openOutput(const std::string& path) {
    std::unique_ptr<std::ostream> file = open(path);
    if (!*file)
        throw Refusal(path + " can't be written: " + std::strerror(errno), Refusal::usage);
    return file;
}

void closeOutput(std::ostream& file, const std::string& path) {
    file.flush();
    if (!file)
        throw Refusal(path + " could not be written to the end: " + std::strerror(errno), Refusal::usage);
}

} // namespace ZLT::Interception
