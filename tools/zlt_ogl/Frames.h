#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ZLT::Interception {

/// A range as users write it: "3", "3-7", "3-".
struct Frames {
    std::uint64_t first = 1, last = UINT64_MAX;

    /// @param what  "frame", for the sentence
    /// @return what is wrong with it, or nothing
    static std::string parse(const std::string& text, Frames& frames, const std::string& what = "frame") {
        const auto number = [](const std::string& digits, std::uint64_t& value) {
            if (digits.empty() || digits.size() > 18 ||
                digits.find_first_not_of("0123456789") != std::string::npos)
                return false;
            value = std::stoull(digits);
            return value > 0;
        };
        const std::size_t dash = text.find('-');
        bool good = number(text.substr(0, dash), frames.first);
        if (dash == std::string::npos)
            frames.last = frames.first;
        else if (dash + 1 < text.size())
            good = good && number(text.substr(dash + 1), frames.last);
        return good && frames.first <= frames.last
                   ? ""
                   : text + " is no range of " + what + "s: write 3, 3-7 or 3-; the first " + what + " is 1";
    }
};

} // namespace ZLT::Interception
