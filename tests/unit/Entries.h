#pragma once

#include "FakeGL.h"
#include "extensionator/OpenGLInterceptor.h"

#include <set>

/// @file
/// All entries of the chain, each callable with random arguments, for tests that go over every one of them.

namespace ZLT::OGL {

/// What went into a call and came back, in the GL function's types; the results are empty for void.
struct Attempt {
    std::vector<FakeGL::Value> arguments;
    FakeGL::Value scripted; // what the driver was told to return
    FakeGL::Value returned; // what came back
};

struct Entry {
    std::size_t slot;               // place in the list
    std::string name;               // "BindTexture"
    std::vector<std::string> types; // of the parameters, as the GL headers write them; "[16]" counts as "*"
    bool takesPointer;              // an opaque GLsync doesn't count, nor does array syntax
    std::size_t virtualSlot;
    const char* macroFile; // where the macro of gl_intercept.h is used
    int macroLine;

    // Both call with new random arguments, no two of a call alike, and a random scripted result.

    /// Instance()->cgmName(file, line, ...)
    void viaChain(Attempt& attempt, const char* file, unsigned int line) const {
        call(*this, attempt, file, line, false);
    }
    /// glName(...) as gl_intercept.h means it
    void viaMacro(Attempt& attempt) const { call(*this, attempt, nullptr, 0, true); }

    // The entry and the macro without their types, which `call` knows.
    void (OpenGLInterceptor::*member)();
    void (*macro)();
    void (*call)(const Entry& entry, Attempt& attempt, const char* file, unsigned int line, bool viaMacro);
};

/// In the order of the list.
const std::vector<Entry>& entries();

/// From now on, arguments are values that compile where a recording shows them, and come back exactly: floats
/// and doubles have few digits, any unsigned number is that of a token, sizes fit 32 bits, pointers are null.
void sampleWritableValues();

/// Runs `body` for every entry but those left out, on a new scripted GL, from the state in which the entry
/// may be called: cgmEnd behind a cgmBegin. A cgmBegin is closed afterwards.
void forEachEntryBut(const std::set<std::string>& leftOut,
                     const std::function<void(const Entry& entry)>& body);

/// Expects that the entry called its own function with its arguments, and glGetError once, unless that opened
/// a glBegin.
void expectCheckedCall(const Entry& entry, const Attempt& attempt);

/// The place of a virtual member in the virtual table: a pointer to it holds the offset, its lowest bit set
/// on some processors.
template <class Member>
std::size_t virtualSlotOf(Member member) {
    std::size_t word;
    std::memcpy(&word, &member, sizeof(word));
    return word / sizeof(void*);
}

/// The virtual slot that a first virtual function behind those of OpenGLInterceptor gets.
std::size_t slotBehindTheLast();

} // namespace ZLT::OGL
