#pragma once

#include "capture/CaptureState.h"
#include "capture/Sizes.h"

#include <string>
#include <string_view>
#include <type_traits>

namespace ZLT::Capture {

/// Writes the record of one call: its parameters in their order, then its result. The record is sent when the
/// writer goes.
class CallWriter {
public:
    CallWriter(CaptureState& state, std::uint32_t entry, const char* file, unsigned int line)
        : state_(state) {
        end_ = putNumber(bytes_, firstEntry + entry);
        end_ = putNumber(end_, state.siteOf(file, line));
    }
    ~CallWriter() { state_.send({bytes_, static_cast<std::size_t>(end_ - bytes_)}); }
    CallWriter(const CallWriter&) = delete;
    CallWriter& operator=(const CallWriter&) = delete;

    template <class Value>
    void value(Value number) {
        end_ = putValue(end_, number);
    }

    /// Memory that was read: `count` elements.
    template <class Element>
    void in(const Element* from, std::uint64_t count) {
        constexpr std::size_t size = sizeOf<Element>;
        bytes(reinterpret_cast<const char*>(from), count * size);
    }
    /// The same of something that other types point at: half floats, and pointers.
    void in(const void* from, std::uint64_t size) { bytes(static_cast<const char*>(from), size); }
    /// Memory that was written.
    template <class Element>
    void out(const Element* to, std::uint64_t count) {
        in(to, count);
    }
    /// Characters with a zero byte behind them.
    template <class Character>
    void text(const Character* characters) {
        const auto* const from = reinterpret_cast<const char*>(characters);
        bytes(from, from ? std::strlen(from) + 1 : 0);
    }
    /// Several texts; where `lengths` has none, or a negative one, the text ends with a zero byte.
    template <class Character>
    void texts(const Character* const* from, int count, const int* lengths = nullptr) {
        textsOf(reinterpret_cast<const char* const*>(from), count, lengths);
    }
    void address(const volatile void* pointer) { addressOf(pointer); }
    template <class Function>
    requires std::is_function_v<Function>
    void address(Function* function) { addressOf(reinterpret_cast<const volatile void*>(function)); }

    /// Pixels that were read or written.
    void image(const void* from, const ImageBytes& layout);
    void packed(const void* to, const ImageBytes& layout) { image(to, layout); }
    /// Indices, in the client's memory or in a buffer.
    void indices(const void* from, int count, unsigned int type);
    void indexLists(const void* const* from, const int* counts, unsigned int type, int draws);

private:
    template <class Element>
    static constexpr std::size_t sizeOf = sizeof(std::conditional_t<std::is_void_v<Element>, char, Element>);

    // What is longer, or what a record that is long already gets on top, is data of its own.
    static constexpr std::size_t longestInline = 96, longestRecord = 1024, restOfRecord = 512;

    void tag(PointerForm form) { *end_++ = static_cast<char>(form); }
    void addressOf(const volatile void* pointer) {
        if (!pointer)
            return tag(PointerForm::Null);
        tag(PointerForm::Address);
        end_ = putNumber(end_, reinterpret_cast<std::uintptr_t>(pointer));
    }
    void bytes(const char* from, std::uint64_t size) {
        if (!from)
            return tag(PointerForm::Null);
        if (size <= longestInline && end_ - bytes_ < static_cast<std::ptrdiff_t>(restOfRecord)) [[likely]] {
            tag(PointerForm::Inline);
            end_ = putNumber(end_, size);
            std::memcpy(end_, from, size);
            end_ += size;
            return;
        }
        stored(from, 0, size);
    }
    void stored(const char* from, std::uint64_t skipped, std::uint64_t size);
    void textsOf(const char* const* from, int count, const int* lengths);

    CaptureState& state_;
    char* end_;
    char bytes_[longestRecord];
};

} // namespace ZLT::Capture
