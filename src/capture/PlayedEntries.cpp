#include "capture/PlayedEntries.h"

#include <bit>
#include <iterator>
#include <type_traits>
#include <utility>

namespace ZLT::Capture {

namespace {

using OGL::OpenGLInterceptor;

template <class Value>
Value valueOf(std::uint64_t bits) {
    if constexpr (std::is_pointer_v<Value>)
        return reinterpret_cast<Value>(bits); // NOLINT(performance-no-int-to-ptr)
    else if constexpr (std::is_same_v<Value, float>)
        return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    else if constexpr (std::is_same_v<Value, double>)
        return std::bit_cast<double>(bits);
    else
        return static_cast<Value>(bits);
}

template <class Result, class... Parameters, std::size_t... index>
void call(Result (OpenGLInterceptor::*entry)(const char*, unsigned int, Parameters...), OpenGLInterceptor& gl,
          const char* file, unsigned int line, const std::uint64_t* arguments, std::uint64_t& result,
          std::index_sequence<index...>) {
    if constexpr (std::is_void_v<Result>)
        (gl.*entry)(file, line, valueOf<Parameters>(arguments[index])...);
    else if constexpr (std::is_pointer_v<Result>)
        result = reinterpret_cast<std::uintptr_t>(
            (gl.*entry)(file, line, valueOf<Parameters>(arguments[index])...));
    else
        result =
            static_cast<std::uint64_t>((gl.*entry)(file, line, valueOf<Parameters>(arguments[index])...));
}

template <class Result, class... Parameters>
void spread(Result (OpenGLInterceptor::*entry)(const char*, unsigned int, Parameters...),
            OpenGLInterceptor& gl, const char* file, unsigned int line, const std::uint64_t* arguments,
            std::uint64_t& result) {
    call(entry, gl, file, line, arguments, result, std::index_sequence_for<Parameters...>());
}

template <auto entry>
void play(OpenGLInterceptor& gl, const char* file, unsigned int line,
          [[maybe_unused]] const std::uint64_t* arguments, std::uint64_t& result) {
    spread(entry, gl, file, line, arguments, result);
}

#include "capture/PlayedEntries.inl"

} // namespace

PlayEntry* playerOf(std::uint32_t entry) {
    return entry < std::size(playedEntries) ? playedEntries[entry] : nullptr;
}

} // namespace ZLT::Capture
