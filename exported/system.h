// Where windows and contexts come from: GLFW, or EGL off screen.
#pragma once

#include "project.h"

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

struct Surface {
    explicit Surface(const Format& its) : format(its) {}
    virtual ~Surface() = default;
    Format format;
};

struct Context {
    virtual ~Context() = default;
    bool is_learnt = false;
    // What it has.
    int version = 0; // 21 for 2.1
    bool is_core = false;
    bool has_accumulation = false;
    std::string extensions;
    // Whether what it draws to has but one buffer, although two were wanted.
    bool has_one_buffer = false;

    void learn();
    bool has(const char* extension) const;
    bool is_version(int major, int minor) const { return version >= 10 * major + minor; }
};

class System {
public:
    virtual ~System() = default;
    virtual std::unique_ptr<Surface> make_surface(const Format& format) = 0;
    // Made when it becomes current first, since a context is made for a surface.
    virtual std::unique_ptr<Context> make_context(const Version& version, Context* shares_with) = 0;
    virtual void make_current(Context* context, Surface* draw, Surface* read) = 0;
    virtual void destroy(Context& context) = 0;
    virtual void resize(Surface& surface, int width, int height) = 0;
    virtual void swap(Surface& surface) = 0;
    // No context and no surface is left then.
    virtual void reset() = 0;
    // Null where there is none.
    virtual void* function(const char* name) = 0;
    // Whether the user closed a window.
    virtual bool is_closed() { return false; }
};

// Throw std::runtime_error, with a sentence.
std::unique_ptr<System> make_window_system(bool is_visible);
std::unique_ptr<System> make_headless_system();

// What is current.
extern System* the_system;
extern Context* current_context;
extern Surface* current_surface;

// How the frames are played.
struct Options {
    bool verifies = false;
    std::string pictures; // a folder; empty for none
};
extern Options options;
// What differs, in the first frame that does.
void differs(const std::string& what);
// Pictures and read-backs.
extern std::size_t compared;

// Of the window that is current: rows of RGBA from the bottom up, opaque. Empty where it can't be read.
std::vector<unsigned char> read_picture(int width, int height);

template <class Function>
Function function_named(const char* name) {
    Function function;
    void* const address = the_system->function(name);
    static_assert(sizeof function == sizeof address, "functions have addresses as data has");
    std::memcpy(&function, &address, sizeof function);
    return function;
}
