#include "intercept/Program.h"

#include "intercept/Thread.h"

namespace ZLT::Interception {

constinit thread_local Thread thread;

namespace {

// Storage without an end: nothing of it may be destroyed while threads still call.
template <class Value>
union Endless {
    Value value;
    constexpr Endless() : value() {}
    ~Endless() {} // NOLINT(modernize-use-equals-default): of a union with a member that has one
};
#if !defined(_WIN32) // where a mutex has a constructor, which runs before the library attaches
constinit
#endif
    Endless<Program>
        theProgram;

} // namespace

Program& program() { return theProgram.value; }

void Program::attach(Channel& channel) {
    if (writer_.attach(channel))
        active_.store(true, std::memory_order_release);
}

void Program::detach() {
    active_.store(false, std::memory_order_relaxed);
    writer_.abandon();
}

void Program::countContext() {
    if (isActive())
        writer_.slot().contexts.fetch_add(1, std::memory_order_relaxed);
}

std::uint64_t Program::countFrame() {
    return writer_.slot().frames.fetch_add(1, std::memory_order_relaxed) + 2;
}

void Program::note(std::string_view text) {
    if (isActive())
        writer_.write(RecordKind::Note, text);
}

} // namespace ZLT::Interception
