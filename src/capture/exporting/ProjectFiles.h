#pragma once

#include "capture/exporting/SourceText.h"

#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// @file
/// The files of an exported project.

namespace ZLT::Capture {

/// A function of GL that the project calls.
using UsedFunctions = std::map<std::string, const Function*, std::less<>>;

/// What the project has beside its frames.
struct ProjectFacts {
    std::string info;             ///< of the capture: lines of text
    std::string capture;          ///< its file's name
    std::uint64_t firstFrame = 1; ///< its number in the capture
    std::uint64_t calls = 0;      ///< that were exported
    UsedConstants constants;
    UsedFunctions functions;
    /// Variables for objects: the prefix ("", "group2.") and the name ("texture").
    std::set<std::pair<std::string, std::string>> variables;
    std::set<std::string> missing; ///< what the project could not have: sentences
};

/// Writes the folder of a project while its frames come. Functions have at most 5,000 statements, sources
/// about 400 kB; frames that are equal are one function.
class ProjectFiles {
public:
    /// @throws std::runtime_error when the folder has files that are no project's, or can't be written
    ProjectFiles(std::string folder, std::string name);
    /// Without finish() nothing is left in a folder that was new.
    ~ProjectFiles();
    ProjectFiles(const ProjectFiles&) = delete;
    ProjectFiles& operator=(const ProjectFiles&) = delete;

    /// Puts bytes into data.bin, once for all that are equal.
    /// @return their offset
    std::uint64_t data(std::string_view bytes);

    /// Adds lines to the frame: whole statements, as many as `count`.
    void add(std::string_view statements, std::size_t count = 1);
    /// What was added comes in front of the frame with this number, in a function of its own.
    void endStart(std::uint64_t number);
    void endFrame(std::uint64_t number, bool hasHash, std::uint64_t hash);
    /// Writes all that is not written yet. What was added behind the last frame is played behind it.
    void finish(const ProjectFacts& facts);

    std::uint64_t frameCount() const { return frames_.size(); }

private:
    struct ShownFrame {
        std::string function;
        bool hasHash;
        std::uint64_t hash;
    };
    /// Writes what was added as a function, unless there is one that is equal.
    /// @return its name
    std::string writeFunction(const std::string& name);
    void writePart();
    std::string endFunction(const std::string& name);
    void writeSource();
    void write(const std::string& file, std::string_view text) const;

    std::string folder_, name_;
    bool isNew_ = false, isFinished_ = false;
    std::ofstream data_;
    std::uint64_t dataSize_ = 0;
    std::unordered_map<std::string, std::uint64_t> pieces_; ///< offsets, by hash and size
    std::string frame_;              ///< its statements, or those of the part that grows
    std::size_t count_ = 0;          ///< of these
    std::vector<std::string> parts_; ///< of the frame, which are written
    std::uint64_t started_ = 0;      ///< functions, whose parts have their names by it
    std::unordered_map<std::string, std::string> functions_; ///< by the hashes of what is in them
    std::vector<ShownFrame> frames_;
    std::string source_;
    std::vector<std::string> sources_;
};

} // namespace ZLT::Capture
