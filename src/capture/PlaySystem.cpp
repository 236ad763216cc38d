#include "capture/PlaySystem.h"

namespace ZLT::Capture {

PlaySystem::~PlaySystem() = default;
PlayListener::~PlayListener() = default;
void PlayListener::frameEnding(std::uint64_t, const std::function<bool(Picture&)>&) {}
void PlayListener::differs(const CapturedCall&, const std::string&) {}
void PlayListener::playing(const CapturedCall&) {}
void PlayListener::played(const CapturedCall&, std::uint64_t) {}
void PlayListener::incomplete(const std::string&) {}

} // namespace ZLT::Capture
