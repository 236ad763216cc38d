#include "capture/exporting/MatrixLog.h"

#include "extensionator/OpenGLEntry.h"
#include "platform/GL.h"

#include <cstring>

namespace ZLT::Capture {

namespace Entry = OGL::OpenGLEntry;

namespace {

// More are not made again.
constexpr std::uint32_t mostSteps = 400;
constexpr int deepestList = 64; // as GL_MAX_LIST_NESTING

std::uint64_t keyOf(std::uint32_t mode, std::uint32_t unit) {
    return (std::uint64_t(mode) << 32) | (mode == GL_TEXTURE ? unit : 0);
}

} // namespace

std::vector<MadeMatrix>& MatrixLog::stack() {
    std::vector<MadeMatrix>& its = stacks_[keyOf(mode_, unit_)];
    if (its.empty())
        its.emplace_back();
    return its;
}

std::vector<MadeMatrix> MatrixLog::stackOf(std::uint32_t mode, std::uint32_t unit) const {
    const auto found = stacks_.find(keyOf(mode, unit));
    return found == stacks_.end() ? std::vector<MadeMatrix>(1) : found->second;
}

void MatrixLog::followLists(const CapturedCall& call, const EachCall& eachCallOf, int depth) {
    if (depth >= deepestList)
        return;
    const auto run = [&](std::uint64_t list) {
        eachCallOf(list, [&](const CapturedCall& one) { follow(one, eachCallOf, depth + 1); });
    };
    if (call.function->number == firstEntry + Entry::CallList)
        return run(call.values[0].bits);
    const std::string_view bytes = call.values[2].bytes;
    const std::uint32_t type = call.u32(1);
    const std::size_t size = type == GL_UNSIGNED_BYTE || type == GL_BYTE     ? 1
                             : type == GL_UNSIGNED_SHORT || type == GL_SHORT ? 2
                                                                             : 4;
    for (std::size_t at = 0; at + size <= bytes.size(); at += size) {
        std::uint32_t offset = 0;
        std::memcpy(&offset, bytes.data() + at, size);
        run(listBase_ + offset);
    }
}

void MatrixLog::follow(const CapturedCall& call, const EachCall& eachCallOf, int depth) {
    std::vector<MadeMatrix>& its = stack();
    switch (call.function->number - firstEntry) {
    case Entry::MatrixMode:
        mode_ = call.u32(0);
        break;
    case Entry::ActiveTexture:
    case Entry::ActiveTextureARB:
        unit_ = call.u32(0) - GL_TEXTURE0;
        break;
    case Entry::PushAttrib:
        pushed_.push_back({call.u32(0), mode_, unit_});
        break;
    case Entry::PopAttrib:
        if (pushed_.empty())
            break;
        if (pushed_.back().mask & GL_TRANSFORM_BIT)
            mode_ = pushed_.back().mode;
        if (pushed_.back().mask & GL_TEXTURE_BIT)
            unit_ = pushed_.back().unit;
        pushed_.pop_back();
        break;
    case Entry::PushMatrix:
        its.push_back(its.back());
        break;
    case Entry::PopMatrix:
        if (its.size() > 1)
            its.pop_back();
        break;
    case Entry::LoadIdentity:
    case Entry::LoadMatrixf:
    case Entry::LoadMatrixd:
    case Entry::LoadTransposeMatrixf:
    case Entry::LoadTransposeMatrixd:
        its.back() = std::make_shared<const MatrixStep>(MatrixStep{nullptr, call, 1});
        break;
    case Entry::MultMatrixf:
    case Entry::MultMatrixd:
    case Entry::MultTransposeMatrixf:
    case Entry::MultTransposeMatrixd:
    case Entry::Rotatef:
    case Entry::Rotated:
    case Entry::Scalef:
    case Entry::Scaled:
    case Entry::Translatef:
    case Entry::Translated:
    case Entry::Frustum:
    case Entry::Ortho: {
        const std::uint32_t count = its.back() ? its.back()->count + 1 : 1;
        its.back() = count > mostSteps || (its.back() && !its.back()->isKnown())
                         ? std::make_shared<const MatrixStep>()
                         : std::make_shared<const MatrixStep>(MatrixStep{its.back(), call, count});
        break;
    }
    case Entry::ListBase:
        listBase_ = call.values[0].bits;
        break;
    case Entry::CallList:
    case Entry::CallLists:
        followLists(call, eachCallOf, depth);
        break;
    default:
        break;
    }
}

} // namespace ZLT::Capture
