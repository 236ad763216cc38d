#include "capture/CaptureOutput.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstring>
#include <mutex>
#include <unordered_map>

namespace ZLT::Capture {

namespace {

struct Hash {
    std::uint64_t low, high;
    std::size_t size;
    bool operator==(const Hash&) const = default;
};
struct FirstBits {
    std::size_t operator()(const Hash& hash) const { return hash.low; }
};

} // namespace

struct CaptureOutput::Stored {
    std::mutex lock;
    std::unordered_map<Hash, std::uint32_t, FirstBits> numbers;
};

CaptureOutput::CaptureOutput() : stored_(std::make_unique<Stored>()) {}
CaptureOutput::~CaptureOutput() = default;

std::uint32_t CaptureOutput::store(std::string_view bytes) {
    const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
    const std::lock_guard guard(stored_->lock);
    const auto next = static_cast<std::uint32_t>(stored_->numbers.size());
    const auto [place, isNew] = stored_->numbers.try_emplace({hash.low64, hash.high64, bytes.size()}, next);
    if (isNew)
        data(next, bytes); // before anybody else can name it
    return place->second;
}

} // namespace ZLT::Capture
