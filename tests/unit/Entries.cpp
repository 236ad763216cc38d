#include "Entries.h"

#include "extensionator/TokenName.h"
#include "extensionator/gl_intercept.h"

#include <gtest/gtest.h>

#include <random>

namespace ZLT::OGL {

using FakeGL::Value;

namespace {

std::set<std::uint64_t> used; // by the values of the present call
bool writable = false;

std::uint64_t distinctBits(int bits) {
    static std::mt19937_64 random(20);
    for (;;)
        if (const std::uint64_t value = random() >> (64 - bits); used.insert(value).second)
            return value;
}

template <class T>
T writableSample() {
    if constexpr (std::is_pointer_v<T>) {
        return nullptr;
    } else if constexpr (sizeof(T) == 1) {
        return static_cast<T>(distinctBits(64) & 1); // there may be more of them than values
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(static_cast<int>(distinctBits(12)) - 2048) / 4;
    } else if constexpr (std::is_same_v<T, unsigned int>) {
        unsigned int value;
        do
            value = static_cast<unsigned int>(distinctBits(16));
        while (std::strcmp(TokenName(value), "Unknown Token") == 0);
        return value;
    } else {
        const std::uint64_t bits = distinctBits(sizeof(T) == 2 ? 16 : std::is_signed_v<T> ? 32 : 63);
        return static_cast<T>(std::is_signed_v<T> && sizeof(T) > 2 ? static_cast<std::int32_t>(bits) : bits);
    }
}

// Pointers to characters point at a text, since the tracer reads it; others anywhere.
template <class T>
T sample() {
    if (writable)
        return writableSample<T>();
    using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (!std::is_pointer_v<T>) {
        const std::uint64_t bits = distinctBits(8 * sizeof(T));
        T value;
        std::memcpy(&value, &bits, sizeof(T));
        return value;
    } else if constexpr (std::is_same_v<Pointee, char> || std::is_same_v<Pointee, signed char> ||
                         std::is_same_v<Pointee, unsigned char>) {
        static std::string texts[256];
        const std::uint64_t index = distinctBits(8);
        texts[index] = std::to_string(index);
        return reinterpret_cast<T>(texts[index].data());
    } else {
        return reinterpret_cast<T>(distinctBits(64)); // NOLINT(performance-no-int-to-ptr)
    }
}

// To the chain's type. It is the GL type but for half floats, which are 32 bits there, and 64-bit integers,
// which the platforms spell differently.
template <class To, class From>
To plain(From value) {
    if constexpr (std::is_pointer_v<To>) {
        return reinterpret_cast<To>(value);
    } else {
        constexpr bool integer64 = sizeof(To) == 8 && std::is_signed_v<To> == std::is_signed_v<From>;
        static_assert(std::is_same_v<To, From> ||
                      (integer64 && sizeof(From) == 8 && std::is_integral_v<To>) ||
                      (std::is_same_v<From, GLhalfNV> && std::is_same_v<To, unsigned int>));
        return static_cast<To>(value);
    }
}

// "(GLenum mode, const GLfloat m[16])"
std::vector<std::string> typesOf(std::string parameters) {
    std::vector<std::string> types;
    parameters.back() = ',';
    std::size_t begin = 1;
    for (std::size_t end; (end = parameters.find(',', begin)) > begin && end != std::string::npos;
         begin = end + 2) {
        const std::string parameter = parameters.substr(begin, end - begin);
        types.push_back(parameter.substr(0, parameter.rfind(' ')) + (parameter.back() == ']' ? "*" : ""));
    }
    return types;
}

template <class EntryType, class FunctionType>
struct Caller;

// An entry of the chain and its GL function.
template <class R, class... A, class Result, class... Parameters>
struct Caller<R(A...), Result(Parameters...)> {
    using Member = R (OpenGLInterceptor::*)(const char*, unsigned int, A...);
    using Macro = Result (*)(Parameters...);

    static R callWith(const Entry& entry, Attempt& attempt, const char* file, unsigned int line,
                      bool viaMacro, Parameters... arguments) {
        attempt.arguments = {Value(arguments)...};
        if (viaMacro)
            return reinterpret_cast<Macro>(entry.macro)(arguments...);
        Member member;
        std::memcpy(&member, &entry.member, sizeof(member));
        return (OpenGLInterceptor::Instance()->*member)(file, line, plain<A>(arguments)...);
    }

    static void call(const Entry& entry, Attempt& attempt, const char* file, unsigned int line,
                     bool viaMacro) {
        used.clear();
        if constexpr (std::is_void_v<Result>) {
            callWith(entry, attempt, file, line, viaMacro, sample<Parameters>()...);
        } else {
            attempt.scripted = sample<Result>();
            if (entry.name == "GetError")
                FakeGL::pushError(attempt.scripted.as<GLenum>());
            else
                FakeGL::setResult("gl" + entry.name, attempt.scripted);
            attempt.returned = callWith(entry, attempt, file, line, viaMacro, sample<Parameters>()...);
        }
    }
};

template <class R, class... A, class Result, class... Parameters>
Entry entry(std::size_t slot, const char* name, const char* parameters,
            R (OpenGLInterceptor::*member)(const char*, unsigned int, A...), Result (*macro)(Parameters...),
            const char* file, int line) {
    Entry entry{slot,
                name,
                typesOf(parameters),
                std::strchr(parameters, '*') != nullptr,
                virtualSlotOf(member),
                file,
                line,
                {},
                reinterpret_cast<void (*)()>(macro),
                Caller<R(A...), Result(Parameters...)>::call};
    std::memcpy(&entry.member, &member, sizeof(member));
    return entry;
}

// One function for each macro of gl_intercept.h, with the parameters of the GL function.
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    result macro##name parameters { return gl##name arguments; }
#define ZLT_GL_CORE_ENTRY ZLT_GL_ENTRY
#include "EntryPoints.inl"
#undef ZLT_GL_ENTRY

struct Behind : OpenGLInterceptor {
    virtual void first() {}
};

} // namespace

std::size_t slotBehindTheLast() { return virtualSlotOf(&Behind::first); }

const std::vector<Entry>& entries() {
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    entry(slot, #name, #parameters, &OpenGLInterceptor::cgm##name, &macro##name, __FILE__, __LINE__),
    static const std::vector<Entry> entries = {
#include "EntryPoints.inl"
    };
    return entries;
}

void sampleWritableValues() { writable = true; }

void forEachEntryBut(const std::set<std::string>& leftOut,
                     const std::function<void(const Entry& entry)>& body) {
    ASSERT_EQ(1833u, entries().size());
    for (const Entry& entry : entries()) {
        if (leftOut.contains(entry.name))
            continue;
        SCOPED_TRACE(entry.name);
        FakeGL::reset();
        if (entry.name == "End")
            OpenGLInterceptor::Instance()->cgmBegin("begin.cpp", 1, 0);
        FakeGL::reset();
        body(entry);
        FakeGL::reset();
        if (entry.name == "Begin")
            OpenGLInterceptor::Instance()->cgmEnd("end.cpp", 1);
    }
}

void expectCheckedCall(const Entry& entry, const Attempt& attempt) {
    std::vector<FakeGL::Call> expected = {{"gl" + entry.name, attempt.arguments}, {"glGetError", {}}};
    if (entry.name == "Begin")
        expected.pop_back();
    EXPECT_EQ(expected, FakeGL::calls());
}

} // namespace ZLT::OGL
