#pragma once

#include <memory>
#include <ostream>
#include <string>

namespace ZLT::Interception {

/// The name of a new file here: that of `path` with this extension, and a number where there is one.
std::string freeName(const std::string& path, const std::string& extension);
/// A file to write, from its start. The program that is started does not get it.
/// @throws Refusal when it can't be written
std::unique_ptr<std::ostream> openOutput(const std::string& path, bool keepsContent = false);
/// @throws Refusal when something of it was lost
void closeOutput(std::ostream& file, const std::string& path);

/// A file that is known to be writable long before there is something to write. Until `begin` it has what it
/// had, and one that is new goes away again with an object that never wrote it.
class LateOutput {
public:
    /// @throws Refusal when it can't be written, or is the `source` of what would be written
    LateOutput(std::string path, const std::string& source);
    ~LateOutput();
    LateOutput(const LateOutput&) = delete;
    LateOutput& operator=(const LateOutput&) = delete;
    /// Empties it.
    std::ostream& begin();
    /// @throws Refusal when something of it was lost
    void finish();

private:
    std::string path_;
    bool isNew_ = false;
    std::unique_ptr<std::ostream> file_;
};

} // namespace ZLT::Interception
