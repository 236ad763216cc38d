#include "intercept/checks/BufferIndices.h"

#include "extensionator/OpenGLCall.h"
#include "extensionator/OpenGLEntry.h"
#include "intercept/Contexts.h"
#include "intercept/ErrorReports.h"
#include "intercept/checks/CheckedContext.h"

#include <cstdint>
#include <string>

namespace ZLT::Interception {

namespace {

// A program that draws ever other parts of a buffer.
constexpr std::size_t mostRanges = 4096;

unsigned int bindingOf(std::uint64_t target) {
    switch (target) {
    case GL_ARRAY_BUFFER:
        return GL_ARRAY_BUFFER_BINDING;
    case GL_ELEMENT_ARRAY_BUFFER:
        return GL_ELEMENT_ARRAY_BUFFER_BINDING;
    case GL_PIXEL_PACK_BUFFER:
        return GL_PIXEL_PACK_BUFFER_BINDING;
    case GL_PIXEL_UNPACK_BUFFER:
        return GL_PIXEL_UNPACK_BUFFER_BINDING;
    default:
        return 0;
    }
}

// Asks about a buffer that need not be bound. One that was deleted would be made again by that.
template <class Question>
void askAbout(const CheckedContext& context, std::uint32_t buffer, const Question& question) {
    const auto bound = static_cast<std::uint32_t>(context.integer(GL_ARRAY_BUFFER_BINDING));
    const auto bind = context.asked.functions.bindBuffer;
    const auto isBuffer = context.functions.isObject[static_cast<int>(ObjectKind::Buffer)];
    if (!isBuffer || !isBuffer(buffer) || (bound != 0 && !isBuffer(bound)))
        return;
    if (bound != buffer)
        bind(GL_ARRAY_BUFFER, buffer);
    question();
    if (bound != buffer)
        bind(GL_ARRAY_BUFFER, bound);
}

} // namespace

bool sizeOfBuffer(CheckedContext& context, const OGL::OpenGLCall& call, std::uint32_t buffer,
                  std::uint64_t& size) {
    {
        const std::lock_guard guard(context.group->lock);
        if (const auto found = context.group->buffers.find(buffer); found != context.group->buffers.end()) {
            size = found->second.size;
            return true;
        }
    }
    if (!mayAskDriver())
        return false;
    const Asking asking(call);
    GLint bytes = -1;
    askAbout(context, buffer,
             [&] { context.asked.functions.getBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &bytes); });
    if (bytes < 0)
        return false; // of more than 2 GiB
    size = static_cast<std::uint64_t>(bytes);
    const GroupGuard guard(*context.group);
    context.group->buffers[buffer].size = size;
    return true;
}

bool rangeInBuffer(CheckedContext& context, const OGL::OpenGLCall& call, std::uint32_t buffer,
                   const DrawnIndices& indices, Capture::IndexRange& range) {
    const BufferRecord::Key key = {reinterpret_cast<std::uintptr_t>(indices.from), indices.count,
                                   indices.type, indices.restart.index, indices.restart.isThere};
    {
        const std::lock_guard guard(context.group->lock);
        const auto record = context.group->buffers.find(buffer);
        if (record == context.group->buffers.end())
            return false; // another thread changed it a moment ago
        if (const auto found = record->second.ranges.find(key); found != record->second.ranges.end()) {
            range = found->second;
            return true;
        }
    }
    const Asking asking(call);
    const Capture::DriverFunctions& driver = context.asked.functions;
    GLint isMapped = 0;
    driver.getBufferParameteriv(GL_ELEMENT_ARRAY_BUFFER, GL_BUFFER_MAPPED, &isMapped);
    if (isMapped)
        return false;
    std::string bytes(indices.count * Capture::sizeOfType(indices.type), '\0');
    driver.getBufferSubData(GL_ELEMENT_ARRAY_BUFFER, reinterpret_cast<GLintptr>(indices.from),
                            static_cast<GLsizeiptr>(bytes.size()), bytes.data());
    Capture::addIndices(range, bytes.data(), indices.type, indices.count, indices.restart);
    const GroupGuard guard(*context.group);
    if (const auto record = context.group->buffers.find(buffer); record != context.group->buffers.end()) {
        auto& ranges = record->second.ranges;
        if (ranges.size() >= mostRanges)
            ranges.clear();
        ranges[key] = range;
    }
    return true;
}

void noticeBuffers(CheckedContext& context, const OGL::OpenGLCall& call) {
    using Entry = OGL::OpenGLEntry::Number;
    const OGL::CallValue* const values = call.values();
    std::uint32_t buffer = 0;
    bool isNewData = false;
    switch (call.number()) {
    case Entry::BufferData:
    case Entry::BufferDataARB:
        isNewData = true;
        [[fallthrough]];
    case Entry::BufferSubData:
    case Entry::BufferSubDataARB:
    case Entry::MapBuffer:
    case Entry::MapBufferARB:
    case Entry::UnmapBuffer:
    case Entry::UnmapBufferARB:
    case Entry::MapBufferRange:
    case Entry::FlushMappedBufferRange:
        if (const unsigned int binding = bindingOf(values[0].bits);
            binding != 0 && mayAskDriver() && context.asked.hasBuffers)
            buffer = static_cast<std::uint32_t>(context.integer(binding));
        break;
    default:
        break;
    }
    const GroupGuard guard(*context.group);
    if (buffer == 0) {
        context.group->buffers.clear();
        return;
    }
    BufferRecord& record = context.group->buffers[buffer];
    record.ranges.clear();
    if (isNewData)
        record.size = values[1].bits;
    else if (record.size == 0)
        context.group->buffers.erase(buffer);
}

} // namespace ZLT::Interception
