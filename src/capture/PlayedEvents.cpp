// What a player does for the records that are no calls.

#include "capture/CapturePlay.h"
#include "capture/ReadPicture.h"

#include <cstring>
#include <utility>

namespace ZLT::Capture {

using namespace Playing;

SurfaceShape shapeOf(const CapturedCall& surface) {
    SurfaceShape shape;
    int* const fields[] = {&shape.width, &shape.height, &shape.red,     &shape.green,        &shape.blue,
                           &shape.alpha, &shape.depth,  &shape.stencil, &shape.accumulation, &shape.samples};
    for (std::size_t i = 0; i < std::size(fields); ++i)
        *fields[i] = surface.i32(i + 1);
    shape.isDoubleBuffered = surface.i32(11) != 0;
    shape.isStereo = surface.i32(12) != 0;
    shape.isSrgb = surface.i32(13) != 0;
    return shape;
}

void CapturePlay::makeSurface() {
    Surface& surface = surfaces[call.u32(0)];
    surface.shape = shapeOf(call);
    surface.handle = system.makeSurface(surface.shape);
}

void* CapturePlay::surfaceHandle(std::uint32_t number) {
    if (number == 0)
        return nullptr;
    const auto found = surfaces.find(number);
    return found == surfaces.end() ? nullptr : found->second.handle;
}

void CapturePlay::makeContext() {
    Context& made = contexts[call.u32(0)];
    std::shared_ptr<Group>& group = groups[call.u32(1)];
    if (!group)
        group = std::make_shared<Group>();
    made.group = group;
    group->contexts.push_back(&made);
    made.shape = {call.i32(2), call.i32(3), call.i32(4)};
    made.driver = call.values[5].bytes;
}

void* CapturePlay::handleToDraw(std::uint32_t number, std::uint32_t surface) {
    if (void* const handle = surfaceHandle(surface))
        return handle;
    // Each context gets one, since a surface is one thread's.
    Surface& small = surfaces[noSurface + number];
    if (!small.handle) {
        small.shape.width = small.shape.height = 1;
        small.shape.red = small.shape.green = small.shape.blue = small.shape.alpha = 8;
        small.handle = system.makeSurface(small.shape);
    }
    return small.handle;
}

bool CapturePlay::withContext(std::uint32_t number, const std::function<void()>& work) {
    Context& wanted = contexts[number];
    bool isDone = false;
    threads.run(wanted.thread != 0 ? wanted.thread : 1, [&] {
        if (!wanted.handle)
            return;
        isDone = true;
        if (wanted.thread != 0)
            return work();
        // Not on its last surface, which another context may have now.
        void* const draw = handleToDraw(number, 0);
        system.makeCurrent(draw, draw, wanted.handle);
        work();
        const Context& now = contextOf(1);
        if (!now.handle)
            return system.makeCurrent(nullptr, nullptr, nullptr);
        void* const before = handleToDraw(current[1], now.draw);
        void* const read = surfaceHandle(now.read);
        system.makeCurrent(before, read ? read : before, now.handle);
    });
    return isDone;
}

void CapturePlay::makeCurrent() {
    const std::uint32_t number = call.u32(0);
    if (number == 0 || !contexts.contains(number)) {
        release(call.thread);
        return;
    }
    Context& next = contexts[number];
    if (next.thread != 0 && next.thread != call.thread) {
        // It moved on before its old thread made another call.
        const std::uint32_t old = next.thread;
        threads.run(old, [&] { release(old); });
    }
    if (contextOf(call.thread).handle != next.handle || !next.handle)
        release(call.thread);
    void* const draw = handleToDraw(number, call.u32(1));
    if (!next.handle) {
        next.handle = system.makeContext(next.shape, draw, next.group->first);
        if (!next.group->first)
            next.group->first = next.handle;
    }
    void* const read = surfaceHandle(call.u32(2));
    system.makeCurrent(draw, read ? read : draw, next.handle);
    next.thread = call.thread;
    next.draw = call.u32(1);
    next.read = call.u32(2);
    current[call.thread] = number;
    if (!next.isLearnt) {
        next.facts.learn();
        next.isLearnt = true;
        next.hasAccumulation = next.facts.isCore || next.facts.integer(GL_ACCUM_RED_BITS) > 0;
    }
}

void CapturePlay::release(std::uint32_t thread) {
    Context& old = contextOf(thread);
    if (&old == &none)
        return;
    system.makeCurrent(nullptr, nullptr, nullptr);
    old.thread = 0;
    current[thread] = 0;
    if (old.isDoomed)
        destroy(old);
}

void CapturePlay::destroy() {
    const auto found = contexts.find(call.u32(0));
    if (found == contexts.end() || !found->second.handle)
        return;
    // As in GLX and EGL: one that a thread still has goes when the thread lets it go.
    if (found->second.thread != 0)
        found->second.isDoomed = true;
    else
        destroy(found->second);
}

void CapturePlay::destroy(Context& old) {
    if (old.group->first == old.handle) {
        // Who comes later shares with another one.
        old.group->first = nullptr;
        for (Context* other : old.group->contexts)
            if (other != &old && other->handle)
                old.group->first = other->handle;
    }
    system.destroyContext(std::exchange(old.handle, nullptr));
    std::erase(old.group->contexts, &old);
}

bool CapturePlay::readSurface(std::uint32_t number, Picture& picture) {
    const auto found = surfaces.find(number);
    Context& now = context();
    return found != surfaces.end() && now.handle && now.draw == number &&
           readPicture(now.facts, found->second.shape.width, found->second.shape.height, picture);
}

void CapturePlay::comparePicture() {
    Picture picture;
    if (!options.verifies || !readSurface(call.u32(0), picture))
        return;
    ++compared;
    if (picture.hash() != call.values[1].bits)
        listener.differs(call, "the picture");
}

void CapturePlay::swap() {
    ++frames;
    const std::uint32_t number = call.u32(0);
    listener.frameEnding(frames, [&](Picture& picture) { return readSurface(number, picture); });
    if (void* const surface = surfaceHandle(number))
        system.swap(surface);
}

void CapturePlay::resize() {
    const auto found = surfaces.find(call.u32(0));
    if (found == surfaces.end())
        return;
    found->second.shape.width = call.i32(1);
    found->second.shape.height = call.i32(2);
    system.resize(found->second.handle, call.i32(1), call.i32(2));
}

void CapturePlay::writeMapped() {
    Context& now = context();
    const auto found = now.maps.find(call.values[0].bits);
    const std::uint64_t offset = call.values[1].bits;
    const std::string_view bytes = call.values[2].bytes;
    // What the file claims may be more than there is.
    if (found != now.maps.end() && found->second.address && offset <= found->second.size &&
        bytes.size() <= found->second.size - offset)
        std::memcpy(found->second.address + offset, bytes.data(), bytes.size());
}

void CapturePlay::compareReturned() {
    if (!options.verifies)
        return;
    Context& now = context();
    const std::vector<std::uint32_t>& memory = call.u32(0) == GL_FEEDBACK ? now.feedback : now.selection;
    const std::string_view captured = call.values[1].bytes;
    ++compared;
    if (captured.size() > memory.size() * 4 ||
        std::memcmp(captured.data(), memory.data(), captured.size()) != 0)
        listener.differs(call, call.u32(0) == GL_FEEDBACK ? "the feedback" : "the selection");
}

void CapturePlay::playEvent() {
    switch (static_cast<Event>(call.function->number)) {
    case Event::Context:
        return makeContext();
    case Event::Surface:
        return makeSurface();
    case Event::Current:
        return makeCurrent();
    case Event::Size:
        return resize();
    case Event::Destroyed:
        return destroy();
    case Event::Picture:
        return comparePicture();
    case Event::Swap:
        return swap();
    case Event::Array:
        arrays.push_back(arrayOf(call));
        return;
    case Event::Written:
        return writeMapped();
    case Event::Returned:
        return compareReturned();
    case Event::Linked:
        linked = LinkedPlaces{call.values[0].bits, std::string(call.values[2].bytes), call.u32(1)};
        return;
    case Event::Incomplete:
        return listener.incomplete(std::string(call.values[0].bytes));
    default:
        return;
    }
}

} // namespace ZLT::Capture
