// What the frames are written with: memory, names of objects, windows and contexts.
#pragma once

#include "gl.h"

// All frames include this: what is large stays out of it.
#include <cstddef>
#include <cstdint>
#include <initializer_list>

// ---- Memory --------------------------------------------------------------------------------------------

// A pointer of whatever type the call wants.
class Memory {
public:
    explicit Memory(void* address) : address_(address) {}
    template <class Value>
    operator Value*() const {
        return static_cast<Value*>(address_);
    }

private:
    void* address_;
};

// Bytes of data.bin. `skipped` bytes in front of them are part of what GL was given, but it doesn't read
// them.
Memory data(std::size_t offset, std::size_t size, std::size_t skipped = 0);
// An offset in the buffer object that is bound.
inline Memory offset(std::size_t bytes) { return Memory(reinterpret_cast<void*>(bytes)); }
// Where the program had an array of its own: what a draw reads of it is set in front of the draw.
extern Memory client_memory;
// Memory for results that nobody looks at.
Memory out(std::size_t size);

// Small arrays, in place. They live as long as the call.
inline const GLfloat* floats(const std::initializer_list<GLfloat>& values) { return values.begin(); }
inline const GLdouble* doubles(const std::initializer_list<GLdouble>& values) { return values.begin(); }
inline const GLint* ints(const std::initializer_list<GLint>& values) { return values.begin(); }
inline const GLuint* uints(const std::initializer_list<GLuint>& values) { return values.begin(); }
inline const GLenum* enums(const std::initializer_list<GLenum>& values) { return values.begin(); }
inline const GLshort* shorts(const std::initializer_list<GLshort>& values) { return values.begin(); }
inline const GLushort* ushorts(const std::initializer_list<GLushort>& values) { return values.begin(); }
inline const GLbyte* bytes(const std::initializer_list<GLbyte>& values) { return values.begin(); }
inline const GLubyte* ubytes(const std::initializer_list<GLubyte>& values) { return values.begin(); }
inline const GLint64* int64s(const std::initializer_list<GLint64>& values) { return values.begin(); }
inline const GLuint64* uint64s(const std::initializer_list<GLuint64>& values) { return values.begin(); }
// The texts of a shader.
inline const GLchar* const* texts(const std::initializer_list<const GLchar*>& values) {
    return values.begin();
}
// The lists of indices of a call that draws several.
inline const void* const* pointers(const std::initializer_list<const void*>& values) {
    return values.begin();
}

// Floats that have no literal.
GLfloat float_of(std::uint32_t bits);
GLdouble double_of(std::uint64_t bits);

// Memory that GL writes to later, by glRenderMode.
GLfloat* feedback(GLsizei size);
GLuint* selection(GLsizei size);
// What glRenderMode wrote, with --verify.
void expect_feedback(Memory captured, std::size_t size);
void expect_selection(Memory captured, std::size_t size);

// Memory for what is read back; with --verify it is compared at the end of the call.
class read_back {
public:
    read_back(std::size_t offset, std::size_t size, std::size_t skipped = 0);
    ~read_back();
    read_back(const read_back&) = delete;
    read_back& operator=(const read_back&) = delete;
    template <class Value>
    operator Value*() const {
        return static_cast<Value*>(address());
    }

private:
    void* address() const;

    const unsigned char* captured_;
    std::size_t size_, skipped_;
};

// ---- Objects -------------------------------------------------------------------------------------------

// By the numbers that they had when they were captured.
template <class Value>
class Table {
public:
    Table();
    ~Table();
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    Value& operator[](std::uint32_t number);
    void clear();

private:
    struct Values;
    Values* values_;
};

// Names that GL gives: texture[3] is what the texture with the name 3 is called now.
class Names : public Table<GLuint> {
public:
    // For a call that makes objects: they get these numbers.
    class Made {
    public:
        Made(Names& names, const GLuint* numbers, std::size_t count);
        ~Made();
        Made(const Made&) = delete;
        Made& operator=(const Made&) = delete;
        operator GLuint*() { return made_; }

    private:
        Names& names_;
        GLuint* made_; // behind them the numbers
        std::size_t count_;
    };
    Made made(const std::initializer_list<GLuint>& numbers) {
        return {*this, numbers.begin(), numbers.size()};
    }
    Made made(const GLuint* numbers, std::size_t count) { return {*this, numbers, count}; }
    // For a call that makes as many, with names in a row, of which it gives the first.
    class Range {
    public:
        Range(Names& names, GLuint first, GLuint count) : names_(names), first_(first), count_(count) {}
        void operator=(GLuint made) {
            for (GLuint i = 0; i < count_; ++i)
                names_[first_ + i] = made + i;
        }

    private:
        Names& names_;
        GLuint first_, count_;
    };
    Range range(GLuint first, GLuint count) { return {*this, first, count}; }
    // For a call that takes several; until the next call.
    const GLuint* list(const std::initializer_list<GLuint>& numbers) {
        return list(numbers.begin(), numbers.size());
    }
    const GLuint* list(const GLuint* numbers, std::size_t count);
};

// A program, with its variables by name.
class Program {
public:
    Program& operator=(GLuint name) {
        name_ = name;
        return *this;
    }
    operator GLuint() const { return name_; }
    GLint location_of(const char* variable) const;

private:
    GLuint name_ = 0;
};

// Display lists keep the names that they had, since programs compute some from others.
constexpr GLuint list(GLuint name) { return name; }
// glGenLists for lists with these names.
void make_lists(GLuint first, GLsizei count);

// To memory of a buffer that is mapped.
void write(void* mapped, std::size_t offset, Memory from, std::size_t size);

// ---- Windows and contexts ------------------------------------------------------------------------------

// What a window, or what stands for it off screen, has for each pixel.
struct Format {
    int width_ = 0, height_ = 0;
    int red_ = 0, green_ = 0, blue_ = 0, alpha_ = 0, depth_ = 0, stencil_ = 0, accumulation_ = 0,
        samples_ = 0;
    bool is_double_buffered_ = false, is_stereo_ = false, is_srgb_ = false;

    Format(int width, int height) : width_(width), height_(height) {}
    Format& color(int red, int green, int blue, int alpha) {
        red_ = red, green_ = green, blue_ = blue, alpha_ = alpha;
        return *this;
    }
    Format& depth(int bits) { return depth_ = bits, *this; }
    Format& stencil(int bits) { return stencil_ = bits, *this; }
    Format& accumulation(int bits) { return accumulation_ = bits, *this; }
    Format& samples(int count) { return samples_ = count, *this; }
    Format& double_buffered() { return is_double_buffered_ = true, *this; }
    Format& stereo() { return is_stereo_ = true, *this; }
    Format& srgb() { return is_srgb_ = true, *this; }
};

// What a context is made as.
struct Version {
    int major_, minor_;
    bool is_core_ = false, is_forward_compatible_ = false;

    Version(int major, int minor) : major_(major), minor_(minor) {}
    Version& core() { return is_core_ = true, *this; }
    Version& forward_compatible() { return is_forward_compatible_ = true, *this; }
};

struct Surface; // a window, or what stands for it off screen
struct Context;
extern Table<Surface*> surface;
extern Table<Context*> context;

void create(Surface*& surface, const Format& format);
void create(Context*& context, const Version& version, Context* shares_with = nullptr);
// Where a context draws to framebuffer objects alone, `draw` is null.
void make_current(Context* context, Surface* draw, Surface* read);
void release_current();
void destroy(Context*& context);
void resize(Surface* surface, int width, int height);
// The end of a frame. For null nothing is shown.
void swap(Surface* surface);

// One frame: its calls, and the hash of what it showed.
struct Frame {
    void (*play)();
    bool has_hash;
    std::uint64_t hash;
};
extern const Frame frames[];
extern const std::size_t frame_count;   // behind them stands what comes after the last one
extern const std::uint64_t first_frame; // its number in the capture
// Forgets the names of all objects.
void forget_objects();

// ---- Calls that windows of one buffer need other arguments for -------------------------------------------

// What stands for a window off screen may have one buffer, which is its front. It may have no accumulation
// buffer, and then one is computed.
void draw_buffer(GLenum buffer);
void read_buffer(GLenum buffer);
void draw_buffers(GLsizei count, const GLenum* buffers);
void clear(GLbitfield mask);
void accumulate(GLenum operation, GLfloat value);
#define glDrawBuffer draw_buffer
#define glReadBuffer read_buffer
#define glDrawBuffers draw_buffers
#define glDrawBuffersARB draw_buffers
#define glDrawBuffersATI draw_buffers
#define glClear clear
#define glAccum accumulate
