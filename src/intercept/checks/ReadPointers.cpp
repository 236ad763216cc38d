#include "intercept/checks/ReadPointers.h"

#include "capture/Readable.h"
#include "capture/Sizes.h"
#include "extensionator/OpenGLCall.h"
#include "platform/GL.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <string_view>
#include <type_traits>
#include <utility>

namespace ZLT::Interception {

namespace Sizes = Capture::Sizes;

namespace {

// As the program passed it.
template <class Value>
Value argument(const OGL::CallValue& value) {
    if constexpr (std::is_same_v<Value, float>)
        return std::bit_cast<float>(static_cast<std::uint32_t>(value.bits));
    else if constexpr (std::is_same_v<Value, double>)
        return std::bit_cast<double>(value.bits);
    else if constexpr (std::is_pointer_v<Value>)
        return reinterpret_cast<Value>(static_cast<std::uintptr_t>(value.bits));
    else
        return static_cast<Value>(value.bits);
}

std::uint64_t countOf(std::uint64_t count) { return count; }
template <class Number>
requires std::is_signed_v<Number> std::uint64_t countOf(Number count) {
    return count > 0 ? static_cast<std::uint64_t>(count) : 0;
}

// Pages that were readable a short time ago: colors and vertices of which many are passed one after the other
// are looked at once.
class KnownPages {
public:
    bool has(std::uintptr_t page) const { return pages_[page % pages_.size()] == page; }
    void add(std::uintptr_t page) { pages_[page % pages_.size()] = page; }
    void clear() { pages_.fill(none); }
    KnownPages() { clear(); }

private:
    static constexpr std::uintptr_t none = UINTPTR_MAX; // the first page is one that nobody can read
    std::array<std::uintptr_t, 64> pages_;
};
thread_local KnownPages knownPages;

bool isSmallReadable(const void* from, std::uint64_t size) {
    const auto begin = reinterpret_cast<std::uintptr_t>(from);
    const std::uintptr_t first = begin >> 12, last = (begin + size - 1) >> 12;
    if (knownPages.has(first) && knownPages.has(last))
        return true;
    if (!Capture::isReadable(from, size))
        return false;
    knownPages.add(first);
    knownPages.add(last);
    return true;
}

// What these may be null for: room without data, texts that end by themselves, nothing.
bool takesNull(std::string_view function) {
    return function.find("Image") != std::string_view::npos ||
           function.find("BufferData") != std::string_view::npos ||
           function.find("ObjectBuffer") != std::string_view::npos ||
           function.find("ColorTable") != std::string_view::npos ||
           function.find("Filter") != std::string_view::npos ||
           function.find("ShaderSource") != std::string_view::npos ||
           function.find("Delete") != std::string_view::npos ||
           function.find("Bitmap") != std::string_view::npos ||
           function.find("TransformFeedback") != std::string_view::npos;
}

class Reader {
public:
    explicit Reader(const OGL::OpenGLCall& call) : call_(call) {}

    template <class Element>
    void operator()(const char* name, const Element* from, const Capture::ImageBytes& layout) {
        if (!layout.isInBuffer)
            look(name, reinterpret_cast<const char*>(from), layout.skipped, layout.size);
    }
    template <class Element, class Count>
    void operator()(const char* name, const Element* from, Count count) {
        constexpr std::size_t size = sizeof(std::conditional_t<std::is_void_v<Element>, char, Element>);
        look(name, reinterpret_cast<const char*>(from), 0, countOf(count) * size);
    }
    std::string fault;

private:
    void look(const char* name, const char* from, std::uint64_t skipped, std::uint64_t size) {
        constexpr std::uint64_t small = 128; // of one vertex, one matrix
        if (size == 0 || !fault.empty() || (!from && takesNull(call_.name())))
            return;
        const char* const begin = from + skipped;
        if (from && (size <= small ? isSmallReadable(begin, size) : Capture::isReadable(begin, size)))
            return;
        char text[200];
        if (from)
            std::snprintf(text, sizeof text, "'%s' can't be read: %llu bytes from %p on", name,
                          static_cast<unsigned long long>(size), static_cast<const void*>(begin));
        else
            std::snprintf(text, sizeof text, "'%s' is null, and %llu bytes are read", name,
                          static_cast<unsigned long long>(size));
        fault = text;
    }

    const OGL::OpenGLCall& call_;
};

// Images of these are only asked about, and not read.
bool isProxy(std::uint64_t target) {
    for (const unsigned int proxy :
         {GL_PROXY_TEXTURE_1D, GL_PROXY_TEXTURE_2D, GL_PROXY_TEXTURE_3D, GL_PROXY_TEXTURE_CUBE_MAP,
          GL_PROXY_TEXTURE_RECTANGLE_ARB, GL_PROXY_TEXTURE_1D_ARRAY, GL_PROXY_TEXTURE_2D_ARRAY,
          GL_PROXY_COLOR_TABLE, GL_PROXY_POST_CONVOLUTION_COLOR_TABLE,
          GL_PROXY_POST_COLOR_MATRIX_COLOR_TABLE})
        if (target == proxy)
            return true;
    return false;
}

#include "intercept/checks/ReadingEntries.inl"

} // namespace

bool entryReadsMemory(unsigned int entry) { return std::ranges::binary_search(readingEntries, entry); }

std::string unreadableOf(const OGL::OpenGLCall& call) {
    const OGL::CallValue* const passed = call.values();
    Reader reads(call);
    if (!isProxy(passed[0].bits))
        switch (call.number()) {
#include "intercept/checks/ReadPointers.inl"
        default:
            break;
        }
    return std::move(reads.fault);
}

void forgetReadable() { knownPages.clear(); }

} // namespace ZLT::Interception
