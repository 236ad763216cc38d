#include "Progress.h"

#include <cstdio>
#include <iostream>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace ZLT::Interception {

Progress::Progress()
#if defined(_WIN32)
    : isTerminal_(_isatty(2) != 0)
#else
    : isTerminal_(isatty(2) != 0)
#endif
{
}

void Progress::show(const std::string& text) {
    const auto now = std::chrono::steady_clock::now();
    if (!isTerminal_ || now - last_ < std::chrono::milliseconds(200))
        return;
    clear();
    last_ = now;
    std::cerr << text << std::flush;
    shown_ = text.size();
}

void Progress::clear() {
    if (shown_ > 0)
        std::cerr << '\r' << std::string(shown_, ' ') << '\r' << std::flush;
    shown_ = 0;
}

std::string counted(std::uint64_t number, const std::string& noun) {
    return std::to_string(number) + ' ' + noun + (number == 1 ? "" : "s");
}

std::string sizeText(std::uint64_t bytes) {
    const char* const units[] = {" KiB", " MiB", " GiB"};
    if (bytes < 1024)
        return std::to_string(bytes) + " bytes";
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (value /= 1024; value >= 1024 && unit < 2; value /= 1024)
        ++unit;
    char text[32];
    std::snprintf(text, sizeof text, "%.1f%s", value, units[unit]);
    return text;
}

} // namespace ZLT::Interception
