#include "Output.h"

#include "ProgramFile.h"

#include <cerrno>
#include <cstring>

namespace ZLT::Interception {

std::ofstream openOutput(const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    if (!file)
        throw Refusal(path + " can't be written: " + std::strerror(errno), Refusal::usage);
    return file;
}

void closeOutput(std::ofstream& file, const std::string& path) {
    file.close();
    if (!file)
        throw Refusal(path + " could not be written to the end: " + std::strerror(errno), Refusal::usage);
}

} // namespace ZLT::Interception
