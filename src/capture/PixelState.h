#pragma once

#include "capture/CapturedContext.h"

/// @file
/// State of pixels that gives way while we read or draw some, and comes back.

namespace ZLT::Capture {

/// Nothing is done to the pixels on their way. Needs a free place on the attribute stack.
class PlainTransfer {
public:
    explicit PlainTransfer(const CapturedContext& context);
    ~PlainTransfer();
    PlainTransfer(const PlainTransfer&) = delete;
    PlainTransfer& operator=(const PlainTransfer&) = delete;

private:
    bool isPushed_ = false;
};

/// Pixels go to memory or come from there, one row behind the other.
class PlainStore {
public:
    /// @param isUnpack  of what GL reads
    PlainStore(const CapturedContext& context, bool isUnpack);
    ~PlainStore();
    PlainStore(const PlainStore&) = delete;
    PlainStore& operator=(const PlainStore&) = delete;

private:
    const CapturedContext& context_;
    bool isUnpack_;
    int before_[6] = {};
    unsigned int buffer_ = 0;
};
struct PlainPacking : PlainStore {
    explicit PlainPacking(const CapturedContext& context) : PlainStore(context, false) {}
};
struct PlainUnpacking : PlainStore {
    explicit PlainUnpacking(const CapturedContext& context) : PlainStore(context, true) {}
};

} // namespace ZLT::Capture
