#include "Channels.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace ZLT::Interception {

#if defined(_WIN32)

struct ChannelReader::Memory {
    HANDLE mapping = nullptr;
    void* address = nullptr;

    explicit Memory(std::string& name) {
        name = "Local\\zlt_ogl-" + std::to_string(GetCurrentProcessId());
        const auto size = static_cast<std::uint64_t>(sizeof(Channel));
        mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, DWORD(size >> 32),
                                     DWORD(size), name.c_str());
        if (mapping)
            address = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Channel));
        if (!address)
            throw std::system_error(int(GetLastError()), std::system_category(), "memory to share");
    }
    ~Memory() {
        UnmapViewOfFile(address);
        CloseHandle(mapping);
    }
};

#else

struct ChannelReader::Memory {
    int file = -1;
    void* address = MAP_FAILED;

    explicit Memory(std::string& name) {
        file = memfd_create("zlt_ogl", MFD_CLOEXEC);
        if (file < 0 || ftruncate(file, sizeof(Channel)) != 0)
            throw std::system_error(errno, std::system_category(), "memory to share");
        address = mmap(nullptr, sizeof(Channel), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (address == MAP_FAILED)
            throw std::system_error(errno, std::system_category(), "memory to share");
        // A file of the system's, so that nothing is left behind and no program has to keep a descriptor
        // open.
        name = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file);
    }
    ~Memory() {
        munmap(address, sizeof(Channel));
        close(file);
    }
};

#endif

ChannelReader::ChannelReader(const Options& options) : memory_(std::make_unique<Memory>(name_)) {
    // The memory is all zero, and stays so where nobody writes: it takes no more pages than are used.
    channel_ = static_cast<Channel*>(memory_->address);
    channel_->options = options;
    channel_->size = sizeof(Channel);
    channel_->version = channelVersion;
    channel_->reading = 1;
    channel_->magic = channelMagic;
}

ChannelReader::~ChannelReader() { channel_->reading = 0; }

std::size_t ChannelReader::processCount() const {
    return std::min<std::size_t>(channel_->slotsTaken.load(), slotCount);
}

bool ChannelReader::read(RecordHandler& handler) {
    bool any = false;
    for (std::size_t number = 0; number < processCount(); ++number) {
        ProcessSlot& slot = channel_->slots[number];
        const std::uint64_t end = slot.written.load(std::memory_order_acquire);
        std::uint64_t at = slot.read.load(std::memory_order_relaxed);
        while (at < end) {
            const unsigned char* bytes = slot.ring + at % ringSize;
            RecordHead head;
            std::memcpy(&head, bytes, sizeof head);
            const std::uint64_t room = (std::uint64_t(head.size) + 7) / 8 * 8;
            // What a program wrote over by itself can't be read on.
            if (head.size < sizeof head || room > end - at || at % ringSize + head.size > ringSize) {
                at = end;
                break;
            }
            if (head.kind != RecordKind::Pad)
                handler.record(number, head.kind,
                               {reinterpret_cast<const char*>(bytes) + sizeof head, head.size - sizeof head});
            at += room;
            any = true;
            slot.read.store(at, std::memory_order_release);
        }
        slot.read.store(at, std::memory_order_release);
    }
    return any;
}

} // namespace ZLT::Interception
