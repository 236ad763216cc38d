#include "intercept/ChannelWriter.h"

#include <chrono>
#include <cstring>
#include <mutex>
#include <new>
#include <thread>

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace ZLT::Interception {

namespace {

std::uint32_t processNumber() {
#if defined(_WIN32)
    return GetCurrentProcessId();
#else
    return static_cast<std::uint32_t>(getpid());
#endif
}

std::uint64_t filled(std::uint64_t size) { return (size + 7) / 8 * 8; }

// The reader looks every millisecond.
void pause() { std::this_thread::sleep_for(std::chrono::microseconds(100)); }

} // namespace

bool ChannelWriter::attach(Channel& channel) {
    if (channel.magic != channelMagic || channel.version != channelVersion || channel.size != sizeof channel)
        return false;
    const std::uint32_t number = channel.slotsTaken.fetch_add(1);
    if (number >= slotCount)
        return false;
    channel_ = &channel;
    slot_ = &channel.slots[number];
    slot_->process.store(processNumber(), std::memory_order_release);
    return true;
}

void ChannelWriter::abandon() {
    slot_ = nullptr;
    new (&lock_) Lock;
}

bool ChannelWriter::waitForSpace(std::uint64_t size) {
    while (slot_->written.load(std::memory_order_relaxed) + size -
               slot_->read.load(std::memory_order_acquire) >
           ringSize) {
        if (channel_->reading.load(std::memory_order_relaxed) == 0)
            return false;
        lock_.beat();
        pause();
    }
    return true;
}

void ChannelWriter::write(RecordKind kind, std::string_view head, std::string_view body) {
    const std::lock_guard guard(lock_);
    const std::uint64_t size = sizeof(RecordHead) + head.size() + body.size();
    const std::uint64_t room = filled(size);
    std::uint64_t begin = slot_->written.load(std::memory_order_relaxed);
    const std::uint64_t toEnd = ringSize - begin % ringSize;
    if (toEnd < room) {
        if (!waitForSpace(toEnd))
            return;
        const RecordHead pad = {static_cast<std::uint32_t>(toEnd), RecordKind::Pad};
        std::memcpy(at(begin), &pad, sizeof pad);
        begin += toEnd;
        slot_->written.store(begin, std::memory_order_release);
    }
    if (!waitForSpace(room))
        return;
    const RecordHead record = {static_cast<std::uint32_t>(size), kind};
    unsigned char* to = at(begin);
    std::memcpy(to, &record, sizeof record);
    std::memcpy(to + sizeof record, head.data(), head.size());
    if (!body.empty())
        std::memcpy(to + sizeof record + head.size(), body.data(), body.size());
    slot_->written.store(begin + room, std::memory_order_release);
}

void ChannelWriter::waitForReader() {
    const std::uint64_t end = slot_->written.load(std::memory_order_relaxed);
    for (int attempt = 0; attempt < 500; ++attempt) {
        if (slot_->read.load(std::memory_order_acquire) >= end || channel_->reading.load() == 0)
            return;
        pause();
    }
}

} // namespace ZLT::Interception
