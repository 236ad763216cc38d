#include "project.h"

#include "mapped_file.h"
#include "system.h"

#define XXH_INLINE_ALL
#include "xxhash.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <unordered_map>
#include <vector>

// ---- Memory --------------------------------------------------------------------------------------------

Memory data(std::size_t offset, std::size_t size, std::size_t skipped) {
    return Memory(const_cast<unsigned char*>(data_file().at(offset, size)) - skipped);
}

static unsigned char nothing[1 << 16];
Memory client_memory(nothing);

Memory out(std::size_t size) {
    // Another driver may have more to say, and calls with more than one such pointer want each its own.
    static std::vector<std::unique_ptr<unsigned char[]>> memory(4);
    static std::array<std::size_t, 4> sizes = {};
    static std::size_t next = 0;
    const std::size_t i = next++ % memory.size();
    if (sizes[i] < size + 4096) {
        sizes[i] = size + 4096;
        memory[i] = std::make_unique<unsigned char[]>(sizes[i]);
    }
    return Memory(memory[i].get());
}

GLfloat float_of(std::uint32_t bits) {
    GLfloat value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

GLdouble double_of(std::uint64_t bits) {
    GLdouble value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

static std::unordered_map<Context*, std::vector<GLfloat>> feedbacks;
static std::unordered_map<Context*, std::vector<GLuint>> selections;

GLfloat* feedback(GLsizei size) {
    std::vector<GLfloat>& memory = feedbacks[current_context];
    memory.assign(static_cast<std::size_t>(std::max(size, 1)), 0);
    return memory.data();
}

GLuint* selection(GLsizei size) {
    std::vector<GLuint>& memory = selections[current_context];
    memory.assign(static_cast<std::size_t>(std::max(size, 1)), 0);
    return memory.data();
}

template <class Value>
static void expect(const std::vector<Value>& memory, const void* captured, std::size_t size,
                   const char* what) {
    compared += options.verifies;
    if (options.verifies &&
        (size > memory.size() * sizeof(Value) || std::memcmp(memory.data(), captured, size) != 0))
        differs(what);
}

void expect_feedback(Memory captured, std::size_t size) {
    expect(feedbacks[current_context], captured, size, "the feedback");
}

void expect_selection(Memory captured, std::size_t size) {
    expect(selections[current_context], captured, size, "the selection");
}

static std::vector<unsigned char> read;

read_back::read_back(std::size_t offset, std::size_t size, std::size_t skipped)
    : captured_(data(offset, size)), size_(size), skipped_(skipped) {
    read.resize(std::max(read.size(), skipped + size + 4096));
    // What isn't written is seen by a pattern that is not the captured one.
    for (std::size_t i = 0; options.verifies && i < size; ++i)
        read[skipped + i] = static_cast<unsigned char>(~captured_[i]);
}

void* read_back::address() const { return read.data(); }

read_back::~read_back() {
    if (!options.verifies || size_ == 0)
        return;
    ++compared;
    const unsigned char* const now = read.data() + skipped_;
    bool is_written = false, is_equal = true;
    for (std::size_t i = 0; i < size_; ++i) {
        // Bytes between the rows stay as they were.
        const bool is_untouched = now[i] == static_cast<unsigned char>(~captured_[i]);
        is_written = is_written || !is_untouched;
        is_equal = is_equal && (is_untouched || now[i] == captured_[i]);
    }
    if (!is_equal || !is_written)
        differs("what is read back");
}

void write(void* mapped, std::size_t offset, Memory from, std::size_t size) {
    if (mapped)
        std::memcpy(static_cast<unsigned char*>(mapped) + offset, static_cast<const unsigned char*>(from),
                    size);
}

// ---- Objects -------------------------------------------------------------------------------------------

template <class Value>
struct Table<Value>::Values {
    std::vector<Value> small = std::vector<Value>(64);
    std::unordered_map<std::uint32_t, Value> large;
};

template <class Value>
Table<Value>::Table() : values_(new Values) {}

template <class Value>
Table<Value>::~Table() {
    delete values_;
}

template <class Value>
Value& Table<Value>::operator[](std::uint32_t number) {
    if (number < values_->small.size())
        return values_->small[number];
    if (number >= 4096)
        return values_->large[number];
    values_->small.resize(4096);
    return values_->small[number];
}

template <class Value>
void Table<Value>::clear() {
    *values_ = Values();
}

template class Table<GLuint>;
template class Table<Program>;
template class Table<GLsync>;
template class Table<void*>;
template class Table<Surface*>;
template class Table<Context*>;

Names::Made::Made(Names& names, const GLuint* numbers, std::size_t count)
    : names_(names), made_(new GLuint[2 * count + 1]()), count_(count) {
    std::copy_n(numbers, count, made_ + count);
}

Names::Made::~Made() {
    for (std::size_t i = 0; i < count_; ++i)
        names_[made_[count_ + i]] = made_[i];
    delete[] made_;
}

const GLuint* Names::list(const GLuint* numbers, std::size_t count) {
    static std::vector<GLuint> now;
    now.clear();
    for (std::size_t i = 0; i < count; ++i)
        now.push_back(numbers[i] == 0 ? 0 : (*this)[numbers[i]]);
    return now.data();
}

GLint Program::location_of(const char* variable) const {
    using Ask = GLint(APIENTRY*)(GLuint, const GLchar*);
    static Ask ask = nullptr;
    if (!ask)
        ask = function_named<Ask>("glGetUniformLocation");
    if (!ask)
        ask = function_named<Ask>("glGetUniformLocationARB");
    return ask ? ask(name_, variable) : -1;
}

extern "C" {
GLAPI void APIENTRY glNewList(GLuint list, GLenum mode);
GLAPI void APIENTRY glEndList(void);
GLAPI void APIENTRY glGetIntegerv(GLenum name, GLint* values);
}

void make_lists(GLuint first, GLsizei count) {
    constexpr GLenum compile = 0x1300, list_index = 0x0B33;
    GLint open = 0;
    glGetIntegerv(list_index, &open);
    // So that GL gives none of these names again.
    for (GLsizei i = 0; open == 0 && i < std::min(count, 1 << 14); ++i) {
        glNewList(first + static_cast<GLuint>(i), compile);
        glEndList();
    }
}

// ---- Windows and contexts ------------------------------------------------------------------------------

Table<Surface*> surface;
Table<Context*> context;
System* the_system = nullptr;
Context* current_context = nullptr;
Surface* current_surface = nullptr;
Options options;

static std::vector<std::unique_ptr<Surface>> surfaces;
static std::vector<std::unique_ptr<Context>> contexts;

void create(Surface*& to, const Format& format) {
    surfaces.push_back(the_system->make_surface(format));
    to = surfaces.back().get();
}

void create(Context*& to, const Version& version, Context* shares_with) {
    contexts.push_back(the_system->make_context(version, shares_with));
    to = contexts.back().get();
}

static std::unordered_map<Context*, Surface*> small_surfaces;

void make_current(Context* next, Surface* draw, Surface* from) {
    if (!next)
        return release_current();
    if (!draw) {
        // It draws to framebuffer objects alone. Each context has one, since a surface is for one at a time.
        Surface*& its = small_surfaces[next];
        if (!its)
            create(its, Format(1, 1).color(8, 8, 8, 8));
        draw = its;
    }
    the_system->make_current(next, draw, from ? from : draw);
    current_context = next;
    current_surface = draw;
    gl_load([](const char* name) { return the_system->function(name); },
            [](const char* name) { std::fprintf(stderr, "this driver has no %s: it is left out\n", name); });
    if (!next->is_learnt)
        next->learn();
}

void release_current() {
    if (current_context)
        the_system->make_current(nullptr, nullptr, nullptr);
    current_context = nullptr;
    current_surface = nullptr;
}

void destroy(Context*& old) {
    if (!old)
        return;
    if (old == current_context)
        release_current();
    the_system->destroy(*old);
    old = nullptr;
}

void resize(Surface* its, int width, int height) {
    if (!its)
        return;
    its->format.width_ = width;
    its->format.height_ = height;
    the_system->resize(*its, width, height);
}

void forget_buffers();

void forget_everything() {
    release_current();
    forget_objects();
    feedbacks.clear();
    selections.clear();
    small_surfaces.clear();
    surface.clear();
    context.clear();
    the_system->reset();
    forget_buffers();
    contexts.clear();
    surfaces.clear();
}

std::uint64_t hash_of(const std::vector<unsigned char>& bytes) {
    return XXH3_64bits(bytes.data(), bytes.size());
}
