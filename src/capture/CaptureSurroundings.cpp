#include "capture/CaptureSurroundings.h"

namespace ZLT::Capture {

CaptureSurroundings::~CaptureSurroundings() = default;

} // namespace ZLT::Capture
