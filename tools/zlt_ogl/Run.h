#pragma once

#include "Channels.h"

#include <string>
#include <vector>

namespace ZLT::Interception {

/// How a program ended.
struct Ending {
    int status = 0; ///< its exit status
    int signal = 0; ///< or the signal that it died by
};

/// Runs a program with the object of src/intercept in it, and reads what it writes until it has ended.
/// Signals from the terminal are the program's. Where the handler is done first, the program is ended.
/// @param words  the program and its arguments
/// @throws Refusal when the program can't be run or watched
Ending run(const std::vector<std::string>& words, ChannelReader& channel, RecordHandler& handler);

/// Ends this process as the program ended.
[[noreturn]] void endAs(const Ending& ending);

/// Goes on as a program that belongs to the command.
/// @param name  without the ending that the system's programs have
/// @throws Refusal when it is not there
[[noreturn]] void becomeOwn(const char* name, const std::vector<std::string>& arguments);

} // namespace ZLT::Interception
