#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace ZLT::Interception {

/// Why a program can't be watched, in a sentence, and the status with which shells report such a thing.
class Refusal : public std::runtime_error {
public:
    Refusal(const std::string& sentence, int status) : std::runtime_error(sentence), status_(status) {}
    int status() const { return status_; }

    static constexpr int usage = 2, unsuitable = 126, notFound = 127;

private:
    int status_;
};

/// A program that can be watched.
struct ProgramFile {
    std::string path;               ///< where the system finds it
    std::vector<std::string> first; ///< objects of the program that have to be loaded before any other
    bool isScript = false;
};

/// Looks the program up as a shell does, and looks into the file.
/// @throws Refusal when nothing can be put under it
ProgramFile findProgram(const std::string& name);

} // namespace ZLT::Interception
