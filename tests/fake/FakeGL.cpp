#include "FakeGL.h"

#if defined(_WIN32)
#define _GDI32_ // declares the functions as our own, not as imported ones
#include <windows.h>
#endif

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <deque>
#include <map>
#include <mutex>
#include <set>

namespace FakeGL {

namespace {

struct State {
    std::vector<Call> calls;
    std::map<std::string, Value, std::less<>> results;
    std::deque<GLenum> errors;
    std::function<void(const Call&)> hook;
    bool recording = true;
};
State state;
std::mutex mutex;
bool (*driver)(const char*, std::initializer_list<Value>, Value&) = nullptr;

Value nextError() {
    if (state.errors.empty())
        return GLenum(GL_NO_ERROR);
    const GLenum code = state.errors.front();
    state.errors.pop_front();
    return code;
}

} // namespace

void reset() { state = State(); }
const std::vector<Call>& calls() { return state.calls; }
void setRecording(bool on) { state.recording = on; }
void setResult(const std::string& function, Value result) { state.results[function] = result; }
void setDriver(bool (*newDriver)(const char*, std::initializer_list<Value>, Value&)) { driver = newDriver; }
void pushError(unsigned int code) { state.errors.push_back(code); }
void setHook(std::function<void(const Call& call)> hook) { state.hook = std::move(hook); }

Value answer(const char* function, std::initializer_list<Value> arguments) {
    const std::lock_guard lock(mutex);
    if (state.recording) {
        state.calls.push_back({function, arguments});
        if (state.hook)
            state.hook(state.calls.back());
    }
    if (std::strcmp(function, "glGetError") == 0)
        return nextError();
    if (const auto result = state.results.find(function); result != state.results.end())
        return result->second;
    Value result;
    return driver && driver(function, arguments, result) ? result : Value();
}

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

namespace FakeGL {

using Address = void (*)();

Address addressOf(const char* name) {
#define ZLT_GL_CORE_ENTRY(slot, group, name, result, parameters, arguments)
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    {"gl" #name, reinterpret_cast<Address>(fake##name)},
    static const std::map<std::string, Address, std::less<>> addresses = {
#include "EntryPoints.inl"
    };
#undef ZLT_GL_ENTRY
    const auto found = addresses.find(name);
    return found == addresses.end() ? nullptr : found->second;
}

const std::string& extensionNames() {
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments) #group,
    static const std::string names = [] {
        std::string all;
        for (const std::string& name : std::set<std::string>{
#include "EntryPoints.inl"
             })
            all += name.starts_with("GL_VERSION_") ? "" : name + ' ';
        return all;
    }();
#undef ZLT_GL_ENTRY
    return names;
}

} // namespace FakeGL

extern "C" {

// As GLU, null for what it doesn't know.
const GLubyte* APIENTRY gluErrorString(GLenum code) {
    static const char* const texts[] = {"invalid enumerant", "invalid value", "invalid operation"};
    const bool known = code >= GL_INVALID_ENUM && code <= GL_INVALID_OPERATION;
    return known ? reinterpret_cast<const GLubyte*>(texts[code - GL_INVALID_ENUM]) : nullptr;
}

} // extern "C"
