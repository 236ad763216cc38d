#include "intercept/checks/DrawBounds.h"

#include "capture/Readable.h"
#include "extensionator/OpenGLCall.h"
#include "intercept/checks/BufferIndices.h"

#include <algorithm>
#include <cstdio>

namespace ZLT::Interception {

namespace {

using Capture::ArrayKind;
using Capture::ClientArray;
using Capture::IndexRange;

// "texture coordinate array of unit 1".
std::string nameOfArray(const ClientArray& array) {
    constexpr const char* names[] = {"vertex",    "normal",        "color",           "secondary color",
                                     "fog",       "color index",   "edge flag",       "texture coordinate",
                                     "attribute", "weight",        "matrix index",    "tangent",
                                     "binormal",  "vertex weight", "replacement code"};
    std::string name = std::string(names[static_cast<std::size_t>(array.kind)]) + " array";
    if (array.kind == ArrayKind::TexCoord)
        name += " of unit " + std::to_string(array.index);
    else if (array.kind == ArrayKind::Attribute)
        name += ' ' + std::to_string(array.index);
    return name;
}

std::string addressText(std::uint64_t address) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(address));
    return text;
}

// What the draw reads: a program names its attributes, else all that are enabled are read, of the attributes
// the one that stands for the vertices.
bool isRead(const CheckedContext& context, const ClientArray& array) {
    if (array.kind >= ArrayKind::Element)
        return false;
    if (context.readsAllArrays)
        return true;
    const bool isAttribute = array.kind == ArrayKind::Attribute;
    if (!context.programRecord)
        return context.program == 0 && (!isAttribute || array.index == 0);
    if (isAttribute && array.index != 0)
        return std::ranges::count(context.programRecord->attributes, array.index) > 0;
    // The first attribute is the vertex too.
    const bool isVertex = isAttribute || array.kind == ArrayKind::Vertex;
    if (isVertex && std::ranges::count(context.programRecord->attributes, 0u) > 0)
        return isAttribute;
    return std::ranges::count(
               context.programRecord->arrays,
               std::pair(isAttribute ? ArrayKind::Vertex : array.kind, isAttribute ? 0u : array.index)) > 0;
}

class Draw {
public:
    Draw(CheckedContext& context, const OGL::OpenGLCall& call, const DrawArguments& draw)
        : context_(context), call_(call), values_(call.values()), draw_(draw) {}

    Finding find() {
        if (!context_.asked.areArraysKnown)
            return {};
        const Finding finding = look();
        return finding || range_.isEmpty() ? finding : lookAtArrays();
    }

private:
    std::int64_t number(std::int8_t place) const { return static_cast<std::int32_t>(values_[place].bits); }
    template <class Pointer>
    Pointer pointer(std::int8_t place) const {
        return reinterpret_cast<Pointer>(static_cast<std::uintptr_t>(values_[place].bits));
    }

    // Finds the range of vertices.
    Finding look() {
        if (draw_.form == DrawForm::ManyArrays || draw_.form == DrawForm::ManyElements)
            return lookAtMany();
        if (draw_.instances >= 0)
            instances_ = number(draw_.instances);
        if (instances_ <= 0)
            return {};
        if (draw_.form == DrawForm::ArrayElement)
            addVertices(number(draw_.first), 1);
        else if (draw_.form == DrawForm::Arrays)
            addVertices(number(draw_.first), number(draw_.count));
        else if (const std::int64_t count = number(draw_.count); count > 0)
            return addIndices(pointer<const void*>(draw_.indices), static_cast<std::uint64_t>(count));
        return {};
    }

    Finding lookAtMany() {
        const std::int64_t draws = number(draw_.instances);
        const auto* const counts = pointer<const int*>(draw_.count);
        if (draws <= 0 || !Capture::isReadable(counts, static_cast<std::uint64_t>(draws) * sizeof *counts))
            return {}; // which is told as a pointer
        if (draw_.form == DrawForm::ManyArrays) {
            const auto* const firsts = pointer<const int*>(draw_.first);
            if (Capture::isReadable(firsts, static_cast<std::uint64_t>(draws) * sizeof *firsts))
                for (std::int64_t i = 0; i < draws; ++i)
                    addVertices(firsts[i], counts[i]);
            return {};
        }
        const auto* const lists = pointer<const void* const*>(draw_.indices);
        const std::uint64_t size = static_cast<std::uint64_t>(draws) * sizeof *lists;
        if (!Capture::isReadable(lists, size))
            return {unreadablePointer, "'indices' can't be read: " + std::to_string(size) + " bytes from " +
                                           addressText(values_[draw_.indices].bits) + " on"};
        for (std::int64_t i = 0; i < draws; ++i)
            if (counts[i] > 0)
                if (Finding finding = addIndices(lists[i], static_cast<std::uint64_t>(counts[i])))
                    return finding;
        return {};
    }

    void addVertices(std::int64_t first, std::int64_t count) {
        if (first < 0 || count <= 0)
            return;
        range_.first = std::min(range_.first, static_cast<std::uint64_t>(first));
        range_.last = std::max(range_.last, static_cast<std::uint64_t>(first + count - 1));
    }

    Finding addIndices(const void* from, std::uint64_t count) {
        DrawnIndices indices = {from, count, static_cast<std::uint32_t>(values_[draw_.type].bits), {}};
        if (indices.type != GL_UNSIGNED_BYTE && indices.type != GL_UNSIGNED_SHORT &&
            indices.type != GL_UNSIGNED_INT)
            return {};
        const std::uint64_t size = count * Capture::sizeOfType(indices.type);
        const std::uint32_t buffer = context_.asked.elementBuffer();
        if (buffer == 0 && context_.asked.isCore)
            return {}; // GL's error
        indices.restart = Capture::restartIndexOf(context_.asked, indices.type);
        IndexRange range;
        if (buffer != 0) {
            std::uint64_t room = 0;
            const std::uint64_t end = reinterpret_cast<std::uintptr_t>(from) + size;
            if (!sizeOfBuffer(context_, call_, buffer, room))
                return {};
            if (end > room || end < size)
                return {outOfBounds, "the indices end at byte " + std::to_string(end) + ", and buffer " +
                                         std::to_string(buffer) + " has " + std::to_string(room)};
            if (!rangeInBuffer(context_, call_, buffer, indices, range))
                return {};
        } else {
            if (!from || !Capture::isReadable(from, size))
                return {unreadablePointer, "the indices can't be read: " + std::to_string(size) +
                                               " bytes from " +
                                               addressText(reinterpret_cast<std::uintptr_t>(from)) + " on"};
            Capture::addIndices(range, from, indices.type, count, indices.restart);
        }
        if (range.isEmpty())
            return {};
        range_.first = std::min(range_.first, range.first);
        range_.last = std::max(range_.last, range.last);
        return draw_.start >= 0 ? lookAtPromise(range) : Finding();
    }

    // What glDrawRangeElements says of its indices.
    Finding lookAtPromise(const IndexRange& range) const {
        const auto start = static_cast<std::uint32_t>(values_[draw_.start].bits),
                   end = static_cast<std::uint32_t>(values_[draw_.start + 1].bits);
        if (start > end || (range.first >= start && range.last <= end))
            return {};
        return {outOfBounds, "index " + std::to_string(range.first < start ? range.first : range.last) +
                                 " is not between " + std::to_string(start) + " and " + std::to_string(end)};
    }

    Finding lookAtArrays() {
        // These set attributes up in a way that is not asked for here.
        static const auto formats = laterNumbers(
            {"glBindVertexBuffer", "glBindVertexBuffers", "glVertexAttribFormat", "glVertexAttribIFormat",
             "glVertexAttribBinding", "glVertexBindingDivisor", "glVertexArrayVertexBuffer",
             "glVertexArrayVertexBuffers", "glVertexArrayAttribFormat", "glVertexArrayAttribIFormat",
             "glVertexArrayAttribBinding", "glVertexArrayBindingDivisor"});
        const bool isBlind = wasCalledLater(formats);
        Capture::Memory memories[64];
        const ClientArray* owners[64];
        std::size_t count = 0;
        for (const ClientArray& array : context_.asked.enabled) {
            const std::uint64_t size = array.elementSize();
            if (size == 0 || !isRead(context_, array) || (array.kind == ArrayKind::Attribute && isBlind))
                continue;
            IndexRange elements = range_;
            if (array.divisor != 0)
                elements = {0, static_cast<std::uint64_t>(instances_ - 1) / array.divisor};
            const std::uint64_t begin = elements.first * array.step(),
                                end = elements.last * array.step() + size;
            if (array.buffer == 0) {
                if (array.pointer && count < std::size(memories)) {
                    owners[count] = &array;
                    memories[count++] = {array.pointer + begin, end - begin};
                } else if (!array.pointer) {
                    return {unreadablePointer, "the " + nameOfArray(array) + " is null"};
                }
                continue;
            }
            std::uint64_t room = 0;
            const std::uint64_t offset = reinterpret_cast<std::uintptr_t>(array.pointer);
            if (sizeOfBuffer(context_, call_, array.buffer, room) && offset + end > room)
                return {outOfBounds, "index " + std::to_string(elements.last) + " of the " +
                                         nameOfArray(array) + " ends at byte " +
                                         std::to_string(offset + end) + ", and buffer " +
                                         std::to_string(array.buffer) + " has " + std::to_string(room)};
        }
        if (Capture::areReadable({memories, count}))
            return {};
        for (std::size_t i = 0; i < count; ++i)
            if (!Capture::isReadable(memories[i].from, memories[i].size))
                return unreadable(*owners[i], memories[i]);
        return {};
    }

    Finding unreadable(const ClientArray& array, const Capture::Memory& memory) const {
        const std::uint64_t index = array.divisor == 0 ? range_.last : 0;
        return {unreadablePointer, "the " + nameOfArray(array) + " can't be read up to index " +
                                       std::to_string(index) + ": " + std::to_string(memory.size) +
                                       " bytes from " +
                                       addressText(reinterpret_cast<std::uintptr_t>(memory.from)) + " on"};
    }

    CheckedContext& context_;
    const OGL::OpenGLCall& call_;
    const OGL::CallValue* values_;
    const DrawArguments& draw_;
    IndexRange range_;
    std::int64_t instances_ = 1;
};

} // namespace

Finding findOutOfBounds(CheckedContext& context, const OGL::OpenGLCall& call, const DrawArguments& draw) {
    return Draw(context, call, draw).find();
}

} // namespace ZLT::Interception
