#include "capture/CallWriter.h"

#include "capture/Readable.h"

namespace ZLT::Capture {

void CallWriter::stored(const char* from, std::uint64_t skipped, std::uint64_t size) {
    // A call that was an error read nothing, and may have been given anything.
    if (!isReadable(from + skipped, size))
        return addressOf(from);
    const std::uint32_t number = state_.store({from + skipped, size});
    tag(PointerForm::Stored);
    end_ = putNumber(end_, skipped);
    end_ = putNumber(end_, number);
}

void CallWriter::image(const void* from, const ImageBytes& layout) {
    if (!from || layout.isInBuffer)
        return addressOf(from);
    const auto* const pixels = static_cast<const char*>(from);
    if (layout.skipped == 0)
        return bytes(pixels, layout.size);
    stored(pixels, layout.skipped, layout.size);
}

void CallWriter::indices(const void* from, int count, unsigned int type) {
    if (state_.context().elementBuffer() != 0)
        return addressOf(from);
    bytes(static_cast<const char*>(from),
          sizeOfType(type) * static_cast<std::uint64_t>(count > 0 ? count : 0));
}

void CallWriter::indexLists(const void* const* from, const int* counts, unsigned int type, int draws) {
    const bool isInBuffer = state_.context().elementBuffer() != 0;
    std::string lists;
    appendValue(lists, static_cast<std::uint32_t>(isInBuffer));
    appendValue(lists, static_cast<std::uint32_t>(draws > 0 ? draws : 0));
    for (int draw = 0; from && counts && draw < draws; ++draw) {
        const auto* const indices = static_cast<const char*>(from[draw]);
        if (isInBuffer || !indices) {
            appendValue(lists, reinterpret_cast<std::uintptr_t>(indices));
            continue;
        }
        const std::size_t size =
            counts[draw] > 0 ? sizeOfType(type) * static_cast<std::size_t>(counts[draw]) : 0;
        appendValue(lists, size);
        lists.append(indices, size);
    }
    bytes(from ? lists.data() : nullptr, lists.size());
}

void CallWriter::textsOf(const char* const* from, int count, const int* lengths) {
    std::string all;
    for (int i = 0; from && i < count; ++i) {
        const std::string_view text = !from[i] ? std::string_view()
                                      : lengths && lengths[i] >= 0
                                          ? std::string_view(from[i], static_cast<std::size_t>(lengths[i]))
                                          : std::string_view(from[i]);
        appendValue(all, text.size());
        all += text;
    }
    bytes(from ? all.data() : nullptr, all.size());
}

} // namespace ZLT::Capture
