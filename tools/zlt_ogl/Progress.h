#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace ZLT::Interception {

/// A line that changes, for somebody who waits: on standard error, where that is a terminal; nothing
/// elsewhere.
class Progress {
public:
    Progress();
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Shows the text, unless another one was shown a moment ago.
    void show(const std::string& text);
    void clear();

private:
    bool isTerminal_;
    std::size_t shown_ = 0;
    std::chrono::steady_clock::time_point last_;
};

/// "1 call", "2 calls".
std::string counted(std::uint64_t number, const std::string& noun);
/// "512 bytes", "3.4 MiB".
std::string sizeText(std::uint64_t bytes);

} // namespace ZLT::Interception
