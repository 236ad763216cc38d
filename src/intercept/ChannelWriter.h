#pragma once

#include "intercept/Channel.h"
#include "intercept/Lock.h"

#include <string_view>

namespace ZLT::Interception {

/// Writes records into the slot of this process. Several threads may write at the same time.
class ChannelWriter {
public:
    /// Takes a slot of the channel.
    /// @return whether there was one
    bool attach(Channel& channel);
    /// In a process that was forked off: writes no more into its parent's slot. The lock may be held by a
    /// thread that is not there any more.
    void abandon();

    /// After a jump out of a call: this thread writes no more.
    void giveBack() { lock_.giveBack(); }

    bool isAttached() const { return slot_ != nullptr; }
    const Options& options() const { return channel_->options; }
    ProcessSlot& slot() { return *slot_; }

    /// Adds a record of the parts, one after the other. Waits while the ring is full, as long as somebody
    /// reads.
    void write(RecordKind kind, std::string_view head, std::string_view body = {});
    /// Waits until all that was written is read, but not long.
    void waitForReader();

private:
    bool waitForSpace(std::uint64_t size);
    unsigned char* at(std::uint64_t position) { return slot_->ring + position % ringSize; }

    Channel* channel_ = nullptr;
    ProcessSlot* slot_ = nullptr;
    Lock lock_;
};

/// The bytes of a plain value.
template <class Value>
std::string_view bytesOf(const Value& value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

} // namespace ZLT::Interception
