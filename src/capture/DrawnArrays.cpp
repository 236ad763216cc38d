// What a draw reads of the client's arrays.

#include "capture/CaptureState.h"
#include "capture/IndexRange.h"
#include "capture/Readable.h"

#include <algorithm>

namespace ZLT::Capture {

namespace {

// What is as short as this goes into the record.
constexpr std::size_t longestInline = 96;

// Memory from `begin` to `end`, which several arrays share where they lie between each other.
struct Span {
    const char* begin;
    const char* end;
    std::uint32_t number = 0;
};

} // namespace

void CaptureState::drawRange(IndexRange range, int instances) {
    struct Drawn {
        const ClientArray* array;
        Span span;
        std::uint64_t first;
    };
    std::vector<Drawn> drawn;
    for (const ClientArray& array : context_->arrays) {
        IndexRange elements = range;
        if (array.divisor != 0)
            elements = {0, static_cast<std::uint64_t>(instances - 1) / array.divisor};
        const std::size_t size = array.elementSize();
        if (array.kind == ArrayKind::Element || size == 0)
            continue;
        const char* const begin = array.pointer + elements.first * array.step();
        const char* const end = array.pointer + elements.last * array.step() + size;
        if (isReadable(begin, static_cast<std::uint64_t>(end - begin)))
            drawn.push_back({&array, {begin, end}, elements.first});
    }
    std::vector<Span> spans;
    spans.reserve(drawn.size());
    for (const Drawn& one : drawn)
        spans.push_back(one.span);
    std::ranges::sort(spans, {}, &Span::begin);
    std::size_t kept = 0;
    for (std::size_t i = 1; i < spans.size(); ++i) {
        if (spans[i].begin < spans[kept].end)
            spans[kept].end = std::max(spans[kept].end, spans[i].end);
        else
            spans[++kept] = spans[i];
    }
    if (!spans.empty())
        spans.resize(kept + 1);
    for (Span& span : spans)
        if (span.end - span.begin > static_cast<std::ptrdiff_t>(longestInline))
            span.number = store({span.begin, static_cast<std::size_t>(span.end - span.begin)});
    for (const Drawn& one : drawn) {
        const auto span = std::ranges::find_if(
            spans, [&](const Span& all) { return all.begin <= one.span.begin && one.span.end <= all.end; });
        const ClientArray& array = *one.array;
        EventRecord event(Event::Array);
        event.value(static_cast<std::uint32_t>(array.kind))
            .value(array.index)
            .value(array.size)
            .value(array.type);
        event.value(array.stride).value(array.flags).value(one.first);
        const auto size = static_cast<std::size_t>(one.span.end - one.span.begin);
        if (span->end - span->begin > static_cast<std::ptrdiff_t>(longestInline))
            event.value(static_cast<std::uint8_t>(PointerForm::Slice))
                .value(span->number)
                .value(static_cast<std::uint64_t>(one.span.begin - span->begin))
                .value(size);
        else
            event.value(static_cast<std::uint8_t>(PointerForm::Inline)).text({one.span.begin, size});
        send(event);
    }
}

bool CaptureState::addRange(unsigned int type, const void* indices, int count, IndexRange& range) {
    const std::size_t size = sizeOfType(type);
    if (size == 0 || count <= 0)
        return false;
    const char* from = static_cast<const char*>(indices);
    std::string copy;
    if (context_->elementBuffer() != 0) {
        copy.resize(size * static_cast<std::size_t>(count));
        context_->functions.getBufferSubData(GL_ELEMENT_ARRAY_BUFFER, reinterpret_cast<GLintptr>(indices),
                                             static_cast<GLsizeiptr>(copy.size()), copy.data());
        from = copy.data();
    } else if (!isReadable(from, size * static_cast<std::size_t>(count))) {
        return false;
    }
    addIndices(range, from, type, static_cast<std::size_t>(count), restartIndexOf(*context_, type));
    return !range.isEmpty();
}

void CaptureState::drawArrays(int first, int count, int instances) {
    context_->learnArrays();
    if (!context_->arrays.empty() && first >= 0 && count > 0 && instances > 0)
        drawRange({static_cast<std::uint64_t>(first),
                   static_cast<std::uint64_t>(first) + static_cast<std::uint64_t>(count) - 1},
                  instances);
}

void CaptureState::drawManyArrays(const int* first, const int* count, int draws) {
    context_->learnArrays();
    if (context_->arrays.empty() || !first || !count)
        return;
    IndexRange range;
    for (int i = 0; i < draws; ++i) {
        if (first[i] < 0 || count[i] <= 0)
            continue;
        range.first = std::min(range.first, static_cast<std::uint64_t>(first[i]));
        range.last = std::max(range.last, static_cast<std::uint64_t>(first[i]) +
                                              static_cast<std::uint64_t>(count[i]) - 1);
    }
    if (range.first <= range.last)
        drawRange(range, 1);
}

void CaptureState::drawElements(int count, unsigned int type, const void* indices, int instances) {
    context_->learnArrays();
    IndexRange range;
    if (!context_->arrays.empty() && instances > 0 && addRange(type, indices, count, range))
        drawRange(range, instances);
}

void CaptureState::drawManyElements(const int* count, unsigned int type, const void* const* indices,
                                    int draws) {
    context_->learnArrays();
    if (context_->arrays.empty() || !count || !indices)
        return;
    IndexRange range;
    bool any = false;
    for (int i = 0; i < draws; ++i)
        any = addRange(type, indices[i], count[i], range) || any;
    if (any)
        drawRange(range, 1);
}

void CaptureState::drawElement(int index) {
    context_->learnArrays();
    if (context_->arrays.empty() || index < 0)
        return;
    if (context_->hasBufferArrays)
        incomplete("glArrayElement reads arrays of which some are in buffers and some are not");
    drawRange({static_cast<std::uint64_t>(index), static_cast<std::uint64_t>(index)}, 1);
}

void CaptureState::drawElementArray(int first, int count) { drawManyElementArrays(&first, &count, 1); }

// The indices are an array of the client too.
void CaptureState::drawManyElementArrays(const int* first, const int* count, int draws) {
    context_->learnArrays();
    const auto elements = std::ranges::find(context_->arrays, ArrayKind::Element, &ClientArray::kind);
    if (elements == context_->arrays.end() || !first || !count)
        return;
    const std::size_t size = sizeOfType(elements->type);
    IndexRange range;
    std::int64_t last = -1;
    for (int i = 0; i < draws; ++i)
        if (first[i] >= 0 && count[i] > 0 &&
            addRange(elements->type, elements->pointer + size * static_cast<std::size_t>(first[i]), count[i],
                     range))
            last = std::max(last, std::int64_t(first[i]) + count[i] - 1);
    if (last < 0)
        return;
    drawRange(range, 1);
    send(EventRecord(Event::Array)
             .value(static_cast<std::uint32_t>(ArrayKind::Element))
             .value(0u)
             .value(1)
             .value(elements->type)
             .value(0)
             .value(0u)
             .value(0u)
             .value(static_cast<std::uint8_t>(PointerForm::Stored))
             .value(0u)
             .value(store({elements->pointer, size * static_cast<std::size_t>(last + 1)})));
}

} // namespace ZLT::Capture
