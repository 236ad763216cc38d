#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// @file
/// A GL that draws nothing: it notes each call and answers as it was told to. All of GL 1.1 is linked by
/// name, everything else comes from `wglGetProcAddress`. The window system beside it (FakeWindowSystem.h) is
/// scripted alike until one is made that keeps state. Threads may call at once; the rest is for one of them.

namespace FakeGL {

/// An argument or a result: what kind of value it is, its size and its exact bits.
class Value {
public:
    Value() = default;
    template <class T>
    Value(T value) : kind_(kindOf<T>()), size_(sizeOf<T>) {
        std::memcpy(&bits_, &value, size_);
    }

    template <class T>
    bool is() const {
        return kind_ == kindOf<T>() && size_ == sizeOf<T>;
    }
    /// The value back, in a type of the same kind and size.
    template <class T>
    T as() const {
        if (!is<T>())
            throw std::logic_error("a value of another type");
        T value;
        std::memcpy(&value, &bits_, size_);
        return value;
    }

    bool operator==(const Value&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Value& value);

private:
    // NOLINTNEXTLINE(bugprone-sizeof-expression): the size of a pointer is meant
    template <class T>
    static constexpr std::size_t sizeOf = sizeof(T);
    template <class T>
    static constexpr std::string_view kindOf() {
        if (std::is_pointer_v<T> || std::is_null_pointer_v<T>)
            return "pointer";
        return std::is_floating_point_v<T> ? "real" : std::is_signed_v<T> ? "int" : "uint";
    }

    std::string_view kind_ = "none";
    std::size_t size_ = 0;
    std::uint64_t bits_ = 0;
};

struct Call {
    std::string function; // "glBindTexture"
    std::vector<Value> arguments;

    bool operator==(const Call&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Call& call);
};

/// Forgets the calls, the results and the errors.
void reset();
/// The calls since reset(), `glGetError` among them.
const std::vector<Call>& calls();
/// Off: calls are answered and not noted, so that nothing in here allocates. reset() turns it on.
void setRecording(bool on);
/// What `function` returns from now on, in the function's type; 0 without.
void setResult(const std::string& function, Value result);
/// Who is asked for the result of a function that has none set; false for one without an answer. reset()
/// keeps it.
void setDriver(bool (*driver)(const char* function, std::initializer_list<Value> arguments, Value& result));
/// What a later `glGetError` returns, first in, first out; 0 when there is nothing left.
void pushError(unsigned int code);

/// Calls `hook` with each call that is noted, after it was, until reset(): what it finds is what the driver
/// would have found.
void setHook(std::function<void(const Call& call)> hook);

/// For the scripted functions themselves: notes the call, and gives the scripted result.
Value answer(const char* function, std::initializer_list<Value> arguments);

/// Stands for one function; called with its arguments.
template <class Result>
struct Function {
    const char* name;

    template <class... Arguments>
    Result operator()(Arguments... arguments) const {
        [[maybe_unused]] const Value result = answer(name, {Value(arguments)...});
        if constexpr (!std::is_void_v<Result>)
            return result == Value() ? Result() : result.as<Result>();
    }
};

/// The address of a function of the scripted GL that is not linked by name, or null.
void (*addressOf(const char* name))();
/// The names of all extensions that have functions, as `GL_EXTENSIONS` gives them.
const std::string& extensionNames();

} // namespace FakeGL
