#include "FakeGL.h"

#if defined(_WIN32)
#define _GDI32_ // declares the functions as our own, not as imported ones
#include <windows.h>
#else
#include <EGL/egl.h>
#endif

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <deque>
#include <map>

namespace FakeGL {

namespace {

struct State {
    std::vector<Call> calls;
    std::map<std::string, Value, std::less<>> results;
    std::deque<GLenum> errors;
    bool recording = true;
};
State state;

Value nextError() {
    if (state.errors.empty())
        return GLenum(GL_NO_ERROR);
    const GLenum code = state.errors.front();
    state.errors.pop_front();
    return code;
}

// Stands for one function; called with its arguments.
template <class Result>
struct Function {
    const char* name;

    template <class... Arguments>
    Result operator()(Arguments... arguments) const {
        if (state.recording)
            state.calls.push_back({name, {Value(arguments)...}});
        if constexpr (!std::is_void_v<Result>) {
            if (std::strcmp(name, "glGetError") == 0)
                return nextError().as<Result>();
            const auto result = state.results.find(name);
            return result == state.results.end() ? Result() : result->second.template as<Result>();
        }
    }
};

} // namespace

void reset() { state = State(); }
const std::vector<Call>& calls() { return state.calls; }
void setRecording(bool on) { state.recording = on; }
void setResult(const std::string& function, Value result) { state.results[function] = result; }
void pushError(unsigned int code) { state.errors.push_back(code); }

std::ostream& operator<<(std::ostream& out, const Value& value) {
    return out << value.kind_ << 8 * value.size_ << " 0x" << std::hex << value.bits_ << std::dec;
}

std::ostream& operator<<(std::ostream& out, const Call& call) {
    out << call.function << '(';
    for (const Value& value : call.arguments)
        out << (&value == call.arguments.data() ? "" : ", ") << value;
    return out << ')';
}

} // namespace FakeGL

#define ZLT_GL_CORE_ENTRY(slot, group, name, result, parameters, arguments)                                  \
    extern "C" result APIENTRY gl##name parameters { return FakeGL::Function<result>{"gl" #name} arguments; }
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    static result APIENTRY fake##name parameters { return FakeGL::Function<result>{"gl" #name} arguments; }
#include "EntryPoints.inl"
#undef ZLT_GL_CORE_ENTRY
#undef ZLT_GL_ENTRY

namespace {

using Address = void (*)();

Address addressOf(const char* name) {
#define ZLT_GL_CORE_ENTRY(slot, group, name, result, parameters, arguments)
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    {"gl" #name, reinterpret_cast<Address>(fake##name)},
    static const std::map<std::string, Address, std::less<>> addresses = {
#include "EntryPoints.inl"
    };
    const auto found = addresses.find(name);
    return found == addresses.end() ? nullptr : found->second;
}

} // namespace

extern "C" {

#if defined(_WIN32)
PROC WINAPI wglGetProcAddress(LPCSTR name) { return reinterpret_cast<PROC>(addressOf(name)); }
HGLRC WINAPI wglGetCurrentContext() { return reinterpret_cast<HGLRC>(&FakeGL::state); }
#else
__eglMustCastToProperFunctionPointerType EGLAPIENTRY eglGetProcAddress(const char* name) {
    return addressOf(name);
}
#endif

// As GLU, null for what it doesn't know.
const GLubyte* APIENTRY gluErrorString(GLenum code) {
    static const char* const texts[] = {"invalid enumerant", "invalid value", "invalid operation"};
    const bool known = code >= GL_INVALID_ENUM && code <= GL_INVALID_OPERATION;
    return known ? reinterpret_cast<const GLubyte*>(texts[code - GL_INVALID_ENUM]) : nullptr;
}

} // extern "C"
