#pragma once

#include "capture/CaptureFile.h"

#include <bit>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

/// @file
/// Calls that no program made: those that bring a context to where a capture begins. They look as if they
/// came from a file.

namespace ZLT::Capture {

/// An offset in a buffer that is bound, as an argument.
struct BufferOffset {
    std::uint64_t bytes;
};
/// What is written, as an argument: `bytes` is what a call gave.
struct Given {
    std::string bytes;
};

/// The bytes of values, as an argument.
template <class Value>
std::string bytesOf(const Value* values, std::size_t count) {
    return {reinterpret_cast<const char*>(values), count * sizeof(Value)};
}

/// A list of calls under construction.
///
///     calls.add("glClearColor", 0, 0, 0, 1);
///     calls.add("glLightfv", GL_LIGHT0, GL_POSITION, bytesOf(position, 4));
///     calls.addMaking("glCreateProgram", 3);
class MadeCalls {
public:
    /// @throws std::logic_error for a function that there is not, or with another number of parameters
    template <class... Arguments>
    void add(const char* function, Arguments&&... arguments) {
        CapturedCall& call = begin(function, sizeof...(Arguments));
        std::size_t index = 0;
        (set(call, index++, std::forward<Arguments>(arguments)), ...);
    }
    /// A call whose result is a name.
    template <class... Arguments>
    void addMaking(const char* function, std::uint64_t result, Arguments&&... arguments) {
        add(function, std::forward<Arguments>(arguments)...);
        calls_.back().result.bits = result;
    }
    void add(CapturedCall call) { calls_.push_back(std::move(call)); }

    std::vector<CapturedCall> take() { return std::exchange(calls_, {}); }

private:
    CapturedCall& begin(const char* function, std::size_t count);
    void setMemory(CapturedCall& call, std::size_t index, std::string bytes);

    template <class Argument>
    void set(CapturedCall& call, std::size_t index, Argument&& argument) {
        using Plain = std::remove_cvref_t<Argument>;
        CapturedValue& value = call.values[index];
        const char form = value.form;
        if constexpr (std::is_same_v<Plain, BufferOffset>) {
            value.pointer = argument.bytes != 0 ? PointerForm::Address : PointerForm::Null;
            value.bits = argument.bytes;
        } else if constexpr (std::is_same_v<Plain, Given>) {
            setMemory(call, index, argument.bytes);
        } else if constexpr (std::is_same_v<Plain, std::nullptr_t>) {
            value.pointer = PointerForm::Null;
        } else if constexpr (std::is_convertible_v<Plain, std::string_view>) {
            setMemory(call, index, std::string(std::string_view(argument)));
        } else if (form == 'f') {
            value.bits = std::bit_cast<std::uint32_t>(static_cast<float>(argument));
        } else if (form == 'd') {
            value.bits = std::bit_cast<std::uint64_t>(static_cast<double>(argument));
        } else {
            value.bits = static_cast<std::uint64_t>(static_cast<std::int64_t>(argument));
            if (form == 'e' || form == 'u')
                value.bits &= 0xFFFFFFFF;
        }
    }

    std::vector<CapturedCall> calls_;
};

} // namespace ZLT::Capture
