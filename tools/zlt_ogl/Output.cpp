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
std::unique_ptr<std::ostream> open(const std::string& path, bool keepsContent) {
    return std::make_unique<std::ofstream>(path, keepsContent ? std::ios::binary | std::ios::app
                                                              : std::ios::binary);
}
#else
constexpr std::size_t bufferSize = 1 << 16;

// A stream of the standard library can't be told to keep its descriptor from other programs.
class File : public std::ostream {
public:
    File(const std::string& path, bool keepsContent) : std::ostream(nullptr) {
        const int file =
            ::open(path.c_str(), O_WRONLY | O_CREAT | (keepsContent ? 0 : O_TRUNC) | O_CLOEXEC, 0666);
        if (file >= 0) // else the buffer would have an error of its own
            buffer_ = __gnu_cxx::stdio_filebuf<char>(file, std::ios::out, bufferSize);
        rdbuf(&buffer_);
        if (file < 0)
            setstate(failbit);
    }

private:
    __gnu_cxx::stdio_filebuf<char> buffer_;
};
std::unique_ptr<std::ostream> open(const std::string& path, bool keepsContent) {
    return std::make_unique<File>(path, keepsContent);
}
#endif

} // namespace

std::string freeName(const std::string& path, const std::string& extension) {
    const std::string stem = std::filesystem::path(path).stem().string();
    std::string name = stem + extension;
    for (int i = 1; std::filesystem::exists(name); ++i)
        name = std::string(stem).append(".").append(std::to_string(i)).append(extension);
    return name;
}

std::unique_ptr<std::ostream> openOutput(const std::string& path, bool keepsContent) {
    std::unique_ptr<std::ostream> file = open(path, keepsContent);
    if (!*file)
        throw Refusal(path + " can't be written: " + std::strerror(errno), Refusal::usage);
    return file;
}

void closeOutput(std::ostream& file, const std::string& path) {
    file.flush();
    if (!file)
        throw Refusal(path + " could not be written to the end: " + std::strerror(errno), Refusal::usage);
}

LateOutput::LateOutput(std::string path, const std::string& source) : path_(std::move(path)) {
    std::error_code none;
    if (std::filesystem::equivalent(path_, source, none))
        throw Refusal(path_ + " is what is read, and would be lost", Refusal::usage);
    isNew_ = !std::filesystem::exists(path_, none);
    file_ = openOutput(path_, true);
}

LateOutput::~LateOutput() {
    if (!file_ || !isNew_)
        return;
    file_.reset();
    std::error_code none;
    std::filesystem::remove(path_, none);
}

std::ostream& LateOutput::begin() {
    isNew_ = false;
    // A pipe or a device has nothing to be emptied.
    if (std::filesystem::is_regular_file(path_))
        std::filesystem::resize_file(path_, 0);
    return *file_;
}

void LateOutput::finish() { closeOutput(*file_, path_); }

} // namespace ZLT::Interception
