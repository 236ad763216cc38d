#pragma once

#include "intercept/Channel.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// The command's end of the memory that it shares with the programs it watches.

namespace ZLT::Interception {

/// Takes what a program wrote. `process` is the number of its slot.
class RecordHandler {
public:
    virtual ~RecordHandler() = default;
    virtual void record(std::size_t process, RecordKind kind, std::string_view bytes) = 0;
    /// Enough was seen: the program may be ended.
    virtual bool isDone() const { return false; }
};

/// Makes the memory, reads it, and ends it.
class ChannelReader {
public:
    /// @throws std::system_error when there is no memory to share
    explicit ChannelReader(const Options& options);
    ~ChannelReader();
    ChannelReader(const ChannelReader&) = delete;
    ChannelReader& operator=(const ChannelReader&) = delete;

    /// By which a program opens the memory: the value of channelVariable.
    const std::string& name() const { return name_; }
    const Channel& channel() const { return *channel_; }

    /// Hands over all that is there.
    /// @return whether there was anything
    bool read(RecordHandler& handler);
    /// How many processes have taken a slot.
    std::size_t processCount() const;
    const ProcessSlot& process(std::size_t number) const { return channel_->slots[number]; }

private:
    struct Memory;
    std::string name_; // which the memory sets
    std::unique_ptr<Memory> memory_;
    Channel* channel_ = nullptr;
};

} // namespace ZLT::Interception
