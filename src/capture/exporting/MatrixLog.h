#pragma once

#include "capture/CaptureFile.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

/// @file
/// How the matrices of a context were made. A driver computes with more than their values: of a matrix that
/// was made of rotations it inverts the normals in another way than of one that was loaded.

namespace ZLT::Capture {

/// The last call that made a matrix, and through it those before.
struct MatrixStep {
    std::shared_ptr<const MatrixStep> before; ///< null where the matrix was loaded, or for a new context's
    CapturedCall call;                        ///< without a function where there were too many
    std::uint32_t count = 1;
    bool isKnown() const { return call.function != nullptr; }
};
/// Null for the matrix of a new context.
using MadeMatrix = std::shared_ptr<const MatrixStep>;

/// Follows the calls of one context.
class MatrixLog {
public:
    /// The calls of a display list, each to be followed; nothing for one that there is not.
    using EachCall =
        std::function<void(std::uint64_t list, const std::function<void(const CapturedCall&)>& take)>;

    void follow(const CapturedCall& call, const EachCall& eachCallOf) { follow(call, eachCallOf, 0); }
    /// From the bottom to the top. @param unit  of texture matrices; 0 for others
    std::vector<MadeMatrix> stackOf(std::uint32_t mode, std::uint32_t unit) const;

private:
    void follow(const CapturedCall& call, const EachCall& eachCallOf, int depth);
    void followLists(const CapturedCall& call, const EachCall& eachCallOf, int depth);
    std::vector<MadeMatrix>& stack();

    struct Modes {
        std::uint32_t mask, mode, unit;
    };
    std::map<std::uint64_t, std::vector<MadeMatrix>> stacks_;
    std::uint32_t mode_ = 0x1700, unit_ = 0; // GL_MODELVIEW
    std::uint64_t listBase_ = 0;
    std::vector<Modes> pushed_;
};

} // namespace ZLT::Capture
