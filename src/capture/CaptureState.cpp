#include "capture/CaptureState.h"

#include "capture/ReadPicture.h"
#include "platform/Platform.h"

#include <array>
#include <chrono>

namespace ZLT::Capture {

constinit thread_local CaptureThread captureThread;

CapturedContext& capturedContext() { return captureThread.state->context(); }

// No handle of a context is the address of something else.
void* CaptureState::unknownHandle() {
    static char other;
    return &other;
}

namespace {

// Bits of what the context draws to.
struct SurfaceBits {
    int red, green, blue, alpha, depth, stencil, accumulation, samples, doubleBuffered, stereo, srgb;
};

SurfaceBits bitsOf(const CapturedContext& context) {
    SurfaceBits bits = {};
    bits.doubleBuffered = context.integer(GL_DOUBLEBUFFER);
    bits.stereo = context.integer(GL_STEREO);
    if (context.isVersion(3, 0) || context.has("GL_ARB_framebuffer_sRGB") ||
        context.has("GL_EXT_framebuffer_sRGB"))
        bits.srgb = context.integer(GL_FRAMEBUFFER_SRGB_CAPABLE_EXT);
    if (context.isVersion(1, 3) || context.has("GL_ARB_multisample"))
        bits.samples = context.integer(GL_SAMPLES);
    if (!context.isCore) {
        bits.red = context.integer(GL_RED_BITS);
        bits.green = context.integer(GL_GREEN_BITS);
        bits.blue = context.integer(GL_BLUE_BITS);
        bits.alpha = context.integer(GL_ALPHA_BITS);
        bits.depth = context.integer(GL_DEPTH_BITS);
        bits.stencil = context.integer(GL_STENCIL_BITS);
        bits.accumulation = context.integer(GL_ACCUM_RED_BITS);
        return bits;
    }
    const auto ask = [&](unsigned int attachment, unsigned int name) {
        GLint value = 0;
        if (context.functions.getFramebufferAttachmentParameteriv)
            context.functions.getFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, name,
                                                                  &value);
        return value;
    };
    const unsigned int color = bits.doubleBuffered ? GL_BACK_LEFT : GL_FRONT_LEFT;
    bits.red = ask(color, GL_FRAMEBUFFER_ATTACHMENT_RED_SIZE);
    bits.green = ask(color, GL_FRAMEBUFFER_ATTACHMENT_GREEN_SIZE);
    bits.blue = ask(color, GL_FRAMEBUFFER_ATTACHMENT_BLUE_SIZE);
    bits.alpha = ask(color, GL_FRAMEBUFFER_ATTACHMENT_ALPHA_SIZE);
    // A framebuffer without one of these answers with an error to the question for its size.
    if (ask(GL_DEPTH, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE) != GL_NONE)
        bits.depth = ask(GL_DEPTH, GL_FRAMEBUFFER_ATTACHMENT_DEPTH_SIZE);
    if (ask(GL_STENCIL, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE) != GL_NONE)
        bits.stencil = ask(GL_STENCIL, GL_FRAMEBUFFER_ATTACHMENT_STENCIL_SIZE);
    return bits;
}

} // namespace

void CaptureState::noticeContext() {
    handle_ = wglGetCurrentContext();
    if (!handle_) {
        context_ = &none_;
        tellCurrent(0, 0);
        return;
    }
    bool isNew = false;
    std::uint32_t group = 0;
    {
        const std::lock_guard guard(shared_->lock);
        std::unique_ptr<CapturedContext>& known = shared_->contexts[handle_];
        isNew = !known;
        if (isNew) {
            known = std::make_unique<CapturedContext>();
            known->number = ++shared_->contextCount;
            const std::uint64_t id = shared_->groupOf(handle_);
            group = shared_->groups.try_emplace(id, static_cast<std::uint32_t>(shared_->groups.size()) + 1)
                        .first->second;
        }
        context_ = known.get();
    }
    if (isNew) {
        if (context_->number == 1)
            tellTime();
        context_->learn();
        const int profile = context_->isVersion(3, 2) ? context_->integer(GL_CONTEXT_PROFILE_MASK) : 0;
        const int flags = context_->isVersion(3, 0) ? context_->integer(GL_CONTEXT_FLAGS) : 0;
        const auto* const renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
        const auto* const version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
        send(EventRecord(Event::Context)
                 .value(context_->number)
                 .value(group)
                 .value(context_->version)
                 .value(profile)
                 .value(flags)
                 .text(std::string(renderer ? renderer : "") + ", " + (version ? version : "")));
    }
    const std::uint64_t drawId = shared_->surroundings->drawSurface();
    const std::uint64_t readId = shared_->surroundings->readSurface();
    const std::uint32_t draw = noticeSurface(drawId);
    tellCurrent(draw, readId == drawId ? draw : noticeSurface(readId));
}

void CaptureState::tellCurrent(std::uint32_t draw, std::uint32_t read) {
    if (told_ == std::array{context_->number, draw, read})
        return;
    told_ = {context_->number, draw, read};
    send(EventRecord(Event::Current).value(context_->number).value(draw).value(read));
}

std::uint32_t CaptureState::noticeSurface(std::uint64_t id) {
    if (id == 0)
        return 0;
    const CaptureSurroundings::Size surface = shared_->surroundings->sizeOf(id);
    std::unique_lock guard(shared_->lock);
    const auto [place, isNew] = shared_->surfaces.try_emplace(
        id, CaptureShared::KnownSurface{static_cast<std::uint32_t>(shared_->surfaces.size()), 0, 0});
    CaptureShared::KnownSurface& known = place->second;
    if (!isNew) {
        guard.unlock();
        noticeSize(id, surface);
        return known.number;
    }
    known.number = static_cast<std::uint32_t>(shared_->surfaces.size());
    known.width = surface.width;
    known.height = surface.height;
    if (known.width <= 0 || known.height <= 0) {
        // What a context sees first is its viewport, as large as the surface.
        GLint viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, viewport);
        known.width = viewport[2];
        known.height = viewport[3];
    }
    const SurfaceBits bits = bitsOf(*context_);
    context_->hasOneBuffer = bits.doubleBuffered == 0;
    EventRecord event(Event::Surface);
    event.value(known.number).value(known.width).value(known.height);
    for (const int value : {bits.red, bits.green, bits.blue, bits.alpha, bits.depth, bits.stencil,
                            bits.accumulation, bits.samples, bits.doubleBuffered, bits.stereo, bits.srgb})
        event.value(value);
    guard.unlock();
    send(event);
    return known.number;
}

void CaptureState::noticeSize(std::uint64_t id, CaptureSurroundings::Size surface) {
    std::unique_lock guard(shared_->lock);
    const auto place = shared_->surfaces.find(id);
    if (place == shared_->surfaces.end() || surface.width <= 0 || surface.height <= 0 ||
        (place->second.width == surface.width && place->second.height == surface.height))
        return;
    place->second.width = surface.width;
    place->second.height = surface.height;
    const std::uint32_t number = place->second.number;
    guard.unlock();
    send(EventRecord(Event::Size).value(number).value(surface.width).value(surface.height));
}

void CaptureState::viewportSet() {
    if (!handle_)
        return;
    const std::uint64_t id = shared_->surroundings->drawSurface();
    noticeSize(id, shared_->surroundings->sizeOf(id));
}

void CaptureState::shown() {
    const bool isOnSurface =
        !context_->hasFramebuffers || (context_->mayAsk() && context_->integer(GL_FRAMEBUFFER_BINDING) == 0);
    if (handle_ && context_->hasOneBuffer && !context_->isSwapped && isOnSurface)
        endFrame(0);
}

void CaptureState::swapping(std::uint64_t id) {
    context_->isSwapped = true;
    endFrame(id);
}

void CaptureState::endFrame(std::uint64_t id) {
    const std::uint64_t current = handle_ ? shared_->surroundings->drawSurface() : 0;
    if (id == 0)
        id = current;
    std::uint32_t number = 0;
    int width = 0, height = 0;
    {
        const std::lock_guard guard(shared_->lock);
        if (const auto place = shared_->surfaces.find(id); place != shared_->surfaces.end()) {
            number = place->second.number;
            width = place->second.width;
            height = place->second.height;
        }
    }
    Picture picture;
    if (shared_->options.hashPictures && number != 0 && id == current &&
        readPicture(*context_, width, height, picture))
        send(EventRecord(Event::Picture).value(number).value(picture.hash()));
    tellTime();
    send(EventRecord(Event::Swap).value(number));
    // Before the next frame the window may have got another size; the next call looks.
    forgetContext();
    shared_->output->frameEnded();
}

void CaptureState::tellTime() {
    const std::int64_t now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                                 std::chrono::steady_clock::now().time_since_epoch())
                                 .count();
    std::int64_t start = 0;
    if (shared_->start.compare_exchange_strong(start, now))
        start = now;
    send(EventRecord(Event::Time).value(static_cast<std::uint64_t>(now - start)));
}

void CaptureState::incomplete(std::string_view what) {
    {
        const std::lock_guard guard(shared_->lock);
        if (!shared_->told.emplace(what).second)
            return;
    }
    send(EventRecord(Event::Incomplete).text(what));
}

void CaptureState::begun(unsigned int mode) {
    // Another mode is an error, and nothing was begun.
    context_->isInside = mode <= GL_TRIANGLE_STRIP_ADJACENCY || mode == GL_PATCHES;
}

void CaptureState::listBegun() { context_->isCompiling = true; }

void CaptureState::written(const void* address, std::uint64_t offset, std::uint64_t size) {
    const auto* const from = static_cast<const char*>(address) + offset;
    if (address && size > 0)
        send(EventRecord(Event::Written)
                 .value(reinterpret_cast<std::uintptr_t>(address))
                 .value(offset)
                 .value(static_cast<std::uint8_t>(PointerForm::Stored))
                 .value(0u)
                 .value(store({from, size})));
}

namespace {

// What the driver says of a map, by whatever function asks for this buffer.
struct Map {
    void* pointer = nullptr;
    std::uint64_t size = 0;
    bool isWritten = false;
};

template <class Parameter>
Map mapOf(const CapturedContext& context, void* pointer, const Parameter& parameter) {
    Map map;
    map.pointer = pointer;
    if (context.isVersion(3, 0) || context.has("GL_ARB_map_buffer_range")) {
        const auto flags = static_cast<unsigned int>(parameter(GL_BUFFER_ACCESS_FLAGS));
        map.isWritten = (flags & GL_MAP_WRITE_BIT) && !(flags & GL_MAP_FLUSH_EXPLICIT_BIT);
        map.size = static_cast<std::uint64_t>(parameter(GL_BUFFER_MAP_LENGTH));
    } else {
        map.isWritten = parameter(GL_BUFFER_ACCESS) != GL_READ_ONLY;
        map.size = static_cast<std::uint64_t>(parameter(GL_BUFFER_SIZE));
    }
    return map;
}

} // namespace

void CaptureState::unmapping(unsigned int target) {
    const DriverFunctions& functions = context_->functions;
    if (!context_->mayAsk() || !functions.getBufferPointerv || !functions.getBufferParameteriv)
        return;
    void* pointer = nullptr;
    functions.getBufferPointerv(target, GL_BUFFER_MAP_POINTER, &pointer);
    const Map map = mapOf(*context_, pointer, [&](unsigned int name) {
        GLint value = 0;
        functions.getBufferParameteriv(target, name, &value);
        return value;
    });
    if (map.isWritten)
        written(map.pointer, 0, map.size);
}

void CaptureState::unmappingNamed(unsigned int buffer) {
    const DriverFunctions& functions = context_->functions;
    if (!context_->mayAsk() || !functions.getNamedBufferPointervEXT ||
        !functions.getNamedBufferParameterivEXT)
        return;
    void* pointer = nullptr;
    functions.getNamedBufferPointervEXT(buffer, GL_BUFFER_MAP_POINTER, &pointer);
    const Map map = mapOf(*context_, pointer, [&](unsigned int name) {
        GLint value = 0;
        functions.getNamedBufferParameterivEXT(buffer, name, &value);
        return value;
    });
    if (map.isWritten)
        written(map.pointer, 0, map.size);
}

void CaptureState::mappedObject(unsigned int buffer, const void* pointer) {
    context_->mappedObjects[buffer] = pointer;
}

void CaptureState::unmappingObject(unsigned int buffer) {
    GLint size = 0;
    if (context_->mayAsk() && context_->functions.getObjectBufferivATI)
        context_->functions.getObjectBufferivATI(buffer, GL_OBJECT_BUFFER_SIZE_ATI, &size);
    if (const auto found = context_->mappedObjects.extract(buffer))
        written(found.mapped(), 0, static_cast<std::uint64_t>(size));
}

void CaptureState::flushed(unsigned int target, long long offset, long long length) {
    const DriverFunctions& functions = context_->functions;
    void* pointer = nullptr;
    if (context_->mayAsk() && functions.getBufferPointerv)
        functions.getBufferPointerv(target, GL_BUFFER_MAP_POINTER, &pointer);
    if (offset >= 0 && length > 0)
        written(pointer, static_cast<std::uint64_t>(offset), static_cast<std::uint64_t>(length));
}

void CaptureState::lent(const float* buffer, int size) {
    context_->feedback = {buffer, size > 0 ? static_cast<std::size_t>(size) : 0};
}

void CaptureState::lent(const unsigned int* buffer, int size) {
    context_->selection = {buffer, size > 0 ? static_cast<std::size_t>(size) : 0};
}

void CaptureState::leavingMode() {
    context_->mode = context_->mayAsk() ? static_cast<unsigned int>(context_->integer(GL_RENDER_MODE)) : 0;
}

void CaptureState::leftMode(int result) {
    const bool isFeedback = context_->mode == GL_FEEDBACK;
    const LentMemory& memory = isFeedback ? context_->feedback : context_->selection;
    if ((!isFeedback && context_->mode != GL_SELECT) || !memory.address || result == 0)
        return;
    std::size_t count = memory.size; // all of it, where there was too much
    if (result > 0 && isFeedback) {
        count = std::min(count, static_cast<std::size_t>(result));
    } else if (result > 0) {
        // A hit is the number of its names, two depths and the names.
        const auto* const words = static_cast<const unsigned int*>(memory.address);
        std::size_t at = 0;
        for (int hit = 0; hit < result && at < memory.size; ++hit)
            at += 3 + std::size_t(words[at]);
        count = std::min(count, at);
    }
    const std::string_view bytes(static_cast<const char*>(memory.address), count * 4);
    send(EventRecord(Event::Returned)
             .value(context_->mode)
             .value(static_cast<std::uint8_t>(PointerForm::Stored))
             .value(0u)
             .value(store(bytes)));
}

void CaptureState::linked(unsigned int program) {
    const DriverFunctions& functions = context_->functions;
    if (!context_->mayAsk() || !functions.getProgramiv || !functions.getActiveUniform)
        return;
    const auto ask = [&](unsigned int name) {
        GLint value = 0;
        functions.getProgramiv(program, name, &value);
        return value;
    };
    if (!ask(GL_LINK_STATUS))
        return;
    std::string places;
    std::uint32_t count = 0;
    const auto add = [&](bool isUniform, const char* name, int location) {
        if (location < 0)
            return; // built in
        appendValue(places, static_cast<std::uint32_t>(isUniform));
        appendValue(places, location);
        appendValue(places, std::strlen(name));
        places += name;
        ++count;
    };
    char name[512];
    GLsizei length = 0;
    GLint size = 0;
    GLenum type = 0;
    const int attributes = functions.getActiveAttrib ? ask(GL_ACTIVE_ATTRIBUTES) : 0;
    for (int i = 0; i < attributes; ++i) {
        *name = 0;
        functions.getActiveAttrib(program, static_cast<GLuint>(i), sizeof name, &length, &size, &type, name);
        if (!std::string_view(name).starts_with("gl_"))
            add(false, name, functions.getAttribLocation(program, name));
    }
    const int uniforms = ask(GL_ACTIVE_UNIFORMS);
    for (int i = 0; i < uniforms; ++i) {
        *name = 0;
        functions.getActiveUniform(program, static_cast<GLuint>(i), sizeof name, &length, &size, &type, name);
        const std::string base(name, std::string_view(name).ends_with("[0]") ? std::strlen(name) - 3
                                                                             : std::strlen(name));
        add(true, base.c_str(), functions.getUniformLocation(program, base.c_str()));
        for (int element = 1; element < size; ++element) {
            const std::string of = base + '[' + std::to_string(element) + ']';
            add(true, of.c_str(), functions.getUniformLocation(program, of.c_str()));
        }
    }
    send(EventRecord(Event::Linked).value(program).value(count).text(places));
}

void CaptureState::symbolsMade(unsigned int first, unsigned int type) {
    if (first != 0)
        context_->symbols[first] = type;
}

} // namespace ZLT::Capture
