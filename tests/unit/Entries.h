#pragma once

#include "FakeGL.h"
#include "extensionator/OpenGLInterceptor.h"

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

/// The virtual slot that a first virtual function behind those of OpenGLInterceptor gets.
std::size_t slotBehindTheLast();

} // namespace ZLT::OGL
