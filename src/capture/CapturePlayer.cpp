#include "capture/CapturePlayer.h"

#include "capture/CapturedContext.h"
#include "capture/PlayedAccumulation.h"
#include "capture/PlayedArrays.h"
#include "capture/PlayedEntries.h"
#include "capture/PlayedNames.h"
#include "capture/PlayerThreads.h"
#include "capture/ReadPicture.h"
#include "extensionator/OpenGLEntry.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <unordered_map>
#include <vector>

namespace ZLT::Capture {

PlaySystem::~PlaySystem() = default;
PlayListener::~PlayListener() = default;
void PlayListener::frameEnding(std::uint64_t, const std::function<bool(Picture&)>&) {}
void PlayListener::differs(const CapturedCall&, const std::string&) {}
void PlayListener::incomplete(const std::string&) {}

namespace {

namespace Entry = OGL::OpenGLEntry;

constexpr const char* here = "capture"; // the file of the calls that a player makes

// A name that nothing has, for one that the capture never got: what was an error is one again.
constexpr std::uint64_t nobody = 0x3FFFFFFF;

struct Surface {
    SurfaceShape shape;
    void* handle = nullptr;
    PlayedAccumulation accumulation; // where the handle has none
};

struct Group {
    NameTable names;
    std::unordered_map<std::uint64_t, std::unordered_map<std::int64_t, std::int64_t>>
        locations;         // of programs
    void* first = nullptr; // context
    std::vector<struct Context*> contexts;
};

struct Context {
    ContextShape shape;
    std::string driver; // with which it was captured
    std::shared_ptr<Group> group;
    NameTable names; // of what belongs to the context
    void* handle = nullptr;
    CapturedContext facts;
    bool isLearnt = false;
    bool hasAccumulation = true;
    std::uint32_t thread = 0; // that has it
    std::uint32_t draw = 0, read = 0;
    std::uint64_t program = 0; // captured name; 0 may stand for not known
    bool isProgramKnown = true;
    std::vector<std::uint32_t> feedback, selection;
    struct Map {
        char* address = nullptr;
        std::uint64_t size = 0;
    };
    std::unordered_map<std::uint64_t, Map> maps; // by captured address
};

struct Linked {
    std::uint64_t program = 0;
    std::string places;
    std::uint32_t count = 0;
};

} // namespace

struct CapturePlayer::Play {
    CaptureFile& file;
    PlaySystem& system;
    OGL::OpenGLInterceptor& gl;
    PlayListener& listener;
    Options options;

    PlayerThreads threads;
    std::unordered_map<std::uint32_t, std::uint32_t> current; // the context of each thread
    std::unordered_map<std::uint32_t, Surface> surfaces;
    std::unordered_map<std::uint32_t, Context> contexts;
    std::unordered_map<std::uint32_t, std::shared_ptr<Group>> groups;
    Context none;

    CapturedCall call;
    bool isRead = false; // `call` is one that was not played yet
    std::uint64_t calls = 0, frames = 0, compared = 0;

    std::vector<PlayedArray> arrays; // for the draw that follows
    std::optional<Linked> linked;

    // Of the call that is played.
    std::vector<std::uint64_t> arguments;
    struct Written {
        std::size_t parameter;
        std::unique_ptr<char[]> memory;
    };
    std::vector<Written> written;
    std::vector<std::unique_ptr<char[]>> scratch;

    Play(CaptureFile& from, PlaySystem& by, OGL::OpenGLInterceptor& to, PlayListener& whoHears,
         const Options& how)
        : file(from), system(by), gl(to), listener(whoHears), options(how) {}

    Context& context() { return contextOf(call.thread); }
    Context& contextOf(std::uint32_t thread) {
        const auto found = current.find(thread);
        return found == current.end() || found->second == 0 ? none : contexts[found->second];
    }

    // ---- events

    void makeSurface() {
        Surface& surface = surfaces[call.u32(0)];
        SurfaceShape& shape = surface.shape;
        int* const fields[] = {&shape.width,        &shape.height, &shape.red,   &shape.green,
                               &shape.blue,         &shape.alpha,  &shape.depth, &shape.stencil,
                               &shape.accumulation, &shape.samples};
        for (std::size_t i = 0; i < std::size(fields); ++i)
            *fields[i] = call.i32(i + 1);
        shape.isDoubleBuffered = call.i32(11) != 0;
        shape.isStereo = call.i32(12) != 0;
        shape.isSrgb = call.i32(13) != 0;
        surface.handle = system.makeSurface(shape);
    }

    void* surfaceHandle(std::uint32_t number) {
        if (number == 0)
            return nullptr;
        const auto found = surfaces.find(number);
        return found == surfaces.end() ? nullptr : found->second.handle;
    }

    void makeContext() {
        Context& made = contexts[call.u32(0)];
        std::shared_ptr<Group>& group = groups[call.u32(1)];
        if (!group)
            group = std::make_shared<Group>();
        made.group = group;
        group->contexts.push_back(&made);
        made.shape = {call.i32(2), call.i32(3), call.i32(4)};
        made.driver = call.values[5].bytes;
    }

    void makeCurrent() {
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
        void* draw = surfaceHandle(call.u32(1));
        if (!draw) {
            // It drew to framebuffer objects alone.
            Surface& small = surfaces[0];
            if (!small.handle) {
                small.shape.width = small.shape.height = 1;
                small.shape.red = small.shape.green = small.shape.blue = small.shape.alpha = 8;
                small.handle = system.makeSurface(small.shape);
            }
            draw = small.handle;
        }
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

    void release(std::uint32_t thread) {
        Context& old = contextOf(thread);
        if (&old == &none)
            return;
        system.makeCurrent(nullptr, nullptr, nullptr);
        old.thread = 0;
        current[thread] = 0;
    }

    void destroy() {
        const auto found = contexts.find(call.u32(0));
        if (found == contexts.end() || !found->second.handle)
            return;
        Context& old = found->second;
        if (old.thread != 0)
            threads.run(old.thread, [&] { release(old.thread); });
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

    bool readSurface(std::uint32_t number, Picture& picture) {
        const auto found = surfaces.find(number);
        Context& now = context();
        return found != surfaces.end() && now.handle && now.draw == number &&
               readPicture(now.facts, found->second.shape.width, found->second.shape.height, picture);
    }

    void comparePicture() {
        Picture picture;
        if (!options.verifies || !readSurface(call.u32(0), picture))
            return;
        ++compared;
        if (picture.hash() != call.values[1].bits)
            listener.differs(call, "the picture");
    }

    void swap() {
        ++frames;
        const std::uint32_t number = call.u32(0);
        listener.frameEnding(frames, [&](Picture& picture) { return readSurface(number, picture); });
        if (void* const surface = surfaceHandle(number))
            system.swap(surface);
    }

    void resize() {
        const auto found = surfaces.find(call.u32(0));
        if (found == surfaces.end())
            return;
        found->second.shape.width = call.i32(1);
        found->second.shape.height = call.i32(2);
        system.resize(found->second.handle, call.i32(1), call.i32(2));
    }

    void addArray() {
        PlayedArray array;
        array.kind = static_cast<ArrayKind>(call.u32(0));
        array.index = call.u32(1);
        array.size = call.i32(2);
        array.type = call.u32(3);
        array.stride = call.i32(4);
        array.flags = call.u32(5);
        array.first = call.values[6].bits;
        array.bytes = call.values[7].bytes;
        array.held = call.held;
        arrays.push_back(std::move(array));
    }

    void writeMapped() {
        Context& now = context();
        const auto found = now.maps.find(call.values[0].bits);
        const std::uint64_t offset = call.values[1].bits;
        const std::string_view bytes = call.values[2].bytes;
        // What the file claims may be more than there is.
        if (found != now.maps.end() && found->second.address && offset <= found->second.size &&
            bytes.size() <= found->second.size - offset)
            std::memcpy(found->second.address + offset, bytes.data(), bytes.size());
    }

    void compareReturned() {
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

    void playEvent() {
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
            return addArray();
        case Event::Written:
            return writeMapped();
        case Event::Returned:
            return compareReturned();
        case Event::Linked:
            linked = Linked{call.values[0].bits, std::string(call.values[2].bytes), call.u32(1)};
            return;
        case Event::Incomplete:
            return listener.incomplete(std::string(call.values[0].bytes));
        default:
            return;
        }
    }

    // ---- names

    NameTable& tableOf(ObjectKind kind) {
        return isOfContext(kind) ? context().names : context().group->names;
    }

    std::optional<std::uint64_t> findName(ObjectKind kind, std::uint64_t captured) {
        if (const auto found = tableOf(kind).find(kind, captured))
            return found;
        if (isOfContext(kind)) // some drivers share these too
            for (Context* other : context().group->contexts)
                if (const auto found = other->names.find(kind, captured))
                    return found;
        return std::nullopt;
    }

    // A name that the program made up: it gets one that the driver gives.
    std::optional<std::uint64_t> makeName(ObjectKind kind) {
        if (!context().facts.mayAsk())
            return std::nullopt;
        const std::string& function = call.function->name;
        unsigned int name = 0;
        switch (kind) {
        case ObjectKind::Texture:
            gl.cgmGenTextures(here, 0, 1, &name);
            break;
        case ObjectKind::Buffer:
            function.ends_with("ARB") ? gl.cgmGenBuffersARB(here, 0, 1, &name)
                                      : gl.cgmGenBuffers(here, 0, 1, &name);
            break;
        case ObjectKind::AssemblyProgram:
            function.ends_with("NV") ? gl.cgmGenProgramsNV(here, 0, 1, &name)
                                     : gl.cgmGenProgramsARB(here, 0, 1, &name);
            break;
        case ObjectKind::Framebuffer:
            function.ends_with("EXT") ? gl.cgmGenFramebuffersEXT(here, 0, 1, &name)
                                      : gl.cgmGenFramebuffers(here, 0, 1, &name);
            break;
        case ObjectKind::Renderbuffer:
            function.ends_with("EXT") ? gl.cgmGenRenderbuffersEXT(here, 0, 1, &name)
                                      : gl.cgmGenRenderbuffers(here, 0, 1, &name);
            break;
        case ObjectKind::Query:
            function.ends_with("ARB") ? gl.cgmGenQueriesARB(here, 0, 1, &name)
                                      : gl.cgmGenQueries(here, 0, 1, &name);
            break;
        case ObjectKind::OcclusionQuery:
            gl.cgmGenOcclusionQueriesNV(here, 0, 1, &name);
            break;
        case ObjectKind::Fence:
            function.ends_with("APPLE") ? gl.cgmGenFencesAPPLE(here, 0, 1, &name)
                                        : gl.cgmGenFencesNV(here, 0, 1, &name);
            break;
        default:
            break;
        }
        return name != 0 ? std::optional<std::uint64_t>(name) : std::nullopt;
    }

    std::uint64_t nameNow(ObjectKind kind, std::uint64_t captured) {
        if (captured == 0 || kind == ObjectKind::List || &context() == &none)
            return captured; // lists have the names that the program gives, see playGenLists()
        if (const auto found = findName(kind, captured))
            return *found;
        if (const auto made = makeName(kind)) {
            tableOf(kind).set(kind, captured, *made);
            return *made;
        }
        return kind == ObjectKind::Program ? captured + nobody : captured;
    }

    void forgetNames(std::size_t parameter, ObjectKind kind) {
        // A program lives on while it is used, and its name is not given again before.
        if (kind == ObjectKind::Program || kind == ObjectKind::List || &context() == &none)
            return;
        const CapturedValue& value = call.values[parameter];
        if (value.form != 'p') {
            tableOf(kind).erase(kind, value.bits);
            return;
        }
        for (std::size_t i = 0; i + 4 <= value.bytes.size(); i += 4)
            tableOf(kind).erase(kind, wordAt(value.bytes, i));
    }

    static std::uint32_t wordAt(std::string_view bytes, std::size_t offset) {
        std::uint32_t word;
        std::memcpy(&word, bytes.data() + offset, sizeof word);
        return word;
    }

    std::int64_t locationNow(std::int64_t captured) {
        Context& now = context();
        if (&now == &none)
            return captured;
        std::uint64_t program = 0;
        if (const std::string_view first = call.function->parameters[0].object; first == "program")
            program = call.values[0].bits;
        else
            program = currentProgram();
        const auto& locations = now.group->locations[program];
        const auto found = locations.find(captured);
        return found == locations.end() ? captured : found->second;
    }

    std::uint64_t currentProgram() {
        Context& now = context();
        if (!now.isProgramKnown && now.facts.mayAsk()) {
            int program = 0;
            gl.cgmGetIntegerv(here, 0, GL_CURRENT_PROGRAM, &program);
            now.program =
                now.group->names.findCaptured(ObjectKind::Program, static_cast<std::uint32_t>(program))
                    .value_or(0);
            now.isProgramKnown = true;
        }
        return now.program;
    }

    // ---- calls

    char* scratchOf(std::size_t size) {
        scratch.push_back(std::make_unique<char[]>(std::max<std::size_t>(size, 16)));
        return scratch.back().get();
    }

    std::uint64_t addressOf(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

    // Memory that the call reads.
    std::uint64_t input(const Parameter& parameter, const CapturedValue& value) {
        if (!value.isMemory())
            return value.pointer == PointerForm::Null ? 0 : value.bits;
        const ObjectKind kind = kindOf(parameter.object);
        if (kind != ObjectKind::None && kind != ObjectKind::UniformLocation) {
            char* const names = scratchOf(value.bytes.size());
            for (std::size_t i = 0; i + 4 <= value.bytes.size(); i += 4) {
                const auto name = static_cast<std::uint32_t>(nameNow(kind, wordAt(value.bytes, i)));
                std::memcpy(names + i, &name, sizeof name);
            }
            return addressOf(names);
        }
        if (value.pointer == PointerForm::Inline) {
            char* const copy = scratchOf(value.bytes.size());
            std::memcpy(copy, value.bytes.data(), value.bytes.size());
            return addressOf(copy);
        }
        return addressOf(value.bytes.data()) - value.skipped;
    }

    std::uint64_t textInput(const CapturedValue& value) {
        if (!value.isMemory())
            return 0;
        char* const copy = scratchOf(value.bytes.size() + 1); // with a zero byte, whatever the file has
        std::memcpy(copy, value.bytes.data(), value.bytes.size());
        return addressOf(copy);
    }

    std::uint64_t textsInput(const CapturedValue& value) {
        if (!value.isMemory())
            return 0;
        ByteReader from(value.bytes);
        std::vector<std::uint64_t> pointers;
        while (!from.isAtEnd()) {
            const std::string_view text = from.text();
            char* const copy = scratchOf(text.size() + 1);
            std::memcpy(copy, text.data(), text.size());
            pointers.push_back(addressOf(copy));
        }
        // The count of the call may claim more.
        const std::size_t claimed = std::max<std::size_t>(pointers.size(), claimedCount());
        char* const list = scratchOf((claimed + 1) * sizeof(std::uint64_t));
        char* const empty = scratchOf(1);
        for (std::size_t i = 0; i <= claimed; ++i) {
            const std::uint64_t pointer = i < pointers.size() ? pointers[i] : addressOf(empty);
            std::memcpy(list + i * sizeof pointer, &pointer, sizeof pointer);
        }
        return addressOf(list);
    }

    // The largest of the call's counts, as far as a count can be.
    std::size_t claimedCount() const {
        std::int64_t most = 0;
        for (const CapturedValue& value : call.values)
            if (value.form == 'i')
                most = std::max<std::int64_t>(most, static_cast<std::int64_t>(value.bits));
        return static_cast<std::size_t>(std::min<std::int64_t>(most, 1 << 20));
    }

    std::uint64_t indexListsInput(const CapturedValue& value) {
        if (!value.isMemory())
            return 0;
        ByteReader from(value.bytes);
        const bool isInBuffer = from.number() != 0;
        const std::uint64_t draws = from.number();
        const std::size_t claimed =
            std::max<std::size_t>(std::min<std::uint64_t>(draws, 1 << 24), claimedCount());
        char* const list = scratchOf((claimed + 1) * sizeof(std::uint64_t));
        for (std::uint64_t i = 0; i < draws && !from.isAtEnd(); ++i) {
            std::uint64_t pointer = 0;
            if (isInBuffer) {
                pointer = from.number();
            } else {
                const std::string_view indices = from.text();
                char* const copy = scratchOf(indices.size());
                std::memcpy(copy, indices.data(), indices.size());
                pointer = indices.empty() ? 0 : addressOf(copy);
            }
            std::memcpy(list + i * sizeof pointer, &pointer, sizeof pointer);
        }
        return addressOf(list);
    }

    // Memory that the call writes. What it doesn't write is seen by a pattern that is not the captured one.
    std::uint64_t output(std::size_t parameter, const CapturedValue& value) {
        if (!value.isMemory())
            return value.pointer == PointerForm::Null ? 0 : value.bits;
        // Another driver may have more to say.
        const std::size_t size =
            value.skipped + value.bytes.size() + std::max<std::size_t>(4096, claimedCount() * 8);
        auto memory = std::make_unique<char[]>(size);
        for (std::size_t i = 0; i < value.bytes.size(); ++i)
            memory[value.skipped + i] = static_cast<char>(~value.bytes[i]);
        written.push_back({parameter, std::move(memory)});
        return addressOf(written.back().memory.get());
    }

    // A client's array, or an offset in the buffer that is bound.
    std::uint64_t arrayAddress(const CapturedValue& value) {
        static const std::vector<char> nothing(std::size_t(1) << 16);
        if (value.pointer != PointerForm::Address)
            return 0;
        int buffer = 0;
        if (context().facts.hasBuffers && context().facts.mayAsk())
            gl.cgmGetIntegerv(here, 0, GL_ARRAY_BUFFER_BINDING, &buffer);
        return buffer != 0 ? value.bits : addressOf(nothing.data()); // set again by the draw
    }

    std::uint64_t lentMemory(const CapturedValue& value) {
        if (value.pointer == PointerForm::Null)
            return 0;
        Context& now = context();
        const bool isFeedback = call.function->number == firstEntry + Entry::FeedbackBuffer;
        std::vector<std::uint32_t>& memory = isFeedback ? now.feedback : now.selection;
        memory.assign(std::min<std::size_t>(static_cast<std::uint32_t>(call.i32(0)), 1u << 24), 0);
        return addressOf(memory.data());
    }

    void prepare() {
        arguments.clear();
        written.clear();
        scratch.clear();
        const Function& function = *call.function;
        for (std::size_t i = 0; i < function.parameters.size(); ++i) {
            const Parameter& parameter = function.parameters[i];
            const CapturedValue& value = call.values[i];
            std::uint64_t bits = value.bits;
            switch (parameter.form) {
            case 'p':
                bits = input(parameter, value);
                break;
            case 't':
                bits = textInput(value);
                break;
            case 'x':
                bits = textsInput(value);
                break;
            case 'n':
                bits = indexListsInput(value);
                break;
            case 'o':
                bits = output(i, value);
                break;
            case 'a': {
                const std::uint32_t entry = function.number - firstEntry;
                bits = entry == Entry::FeedbackBuffer || entry == Entry::SelectBuffer ? lentMemory(value)
                                                                                      : arrayAddress(value);
                break;
            }
            default:
                if (parameter.object == "uniform location")
                    bits = static_cast<std::uint64_t>(locationNow(static_cast<std::int32_t>(bits)));
                else if (!parameter.object.empty())
                    bits = nameNow(kindOf(parameter.object), bits);
            }
            arguments.push_back(bits);
        }
    }

    // ---- what calls mean beside themselves

    // Buffers that the surface has not: there is one, and it is the front.
    unsigned int bufferNow(unsigned int buffer) {
        const auto surface = surfaces.find(context().draw);
        if (surface == surfaces.end() || !surface->second.shape.isDoubleBuffered ||
            !system.hasOneBuffer(surface->second.handle))
            return buffer;
        switch (buffer) {
        case GL_BACK:
            return GL_FRONT;
        case GL_BACK_LEFT:
            return GL_FRONT_LEFT;
        case GL_BACK_RIGHT:
            return GL_FRONT_RIGHT;
        default:
            return buffer;
        }
    }

    // The accumulation buffer that the surface lacks.
    Surface* surfaceToAccumulate() {
        const Context& now = context();
        const auto surface = surfaces.find(now.draw);
        if (now.hasAccumulation || surface == surfaces.end() || surface->second.shape.accumulation == 0)
            return nullptr;
        return &surface->second;
    }

    // Calls that are played in another way.
    bool isReplaced(std::uint32_t entry) {
        Surface* const surface =
            entry == Entry::Accum || (entry == Entry::Clear && (arguments[0] & GL_ACCUM_BUFFER_BIT))
                ? surfaceToAccumulate()
                : nullptr;
        if (!surface)
            return false;
        const SurfaceShape& shape = surface->shape;
        // Mesa accumulates linear values of surfaces that can be sRGB, whether they are or not.
        surface->accumulation.setSrgb(shape.isSrgb && context().driver.find("Mesa") != std::string::npos);
        if (entry == Entry::Accum) {
            surface->accumulation.accumulate(context().facts, shape.width, shape.height, call.u32(0),
                                             call.values[1].asFloat());
            return true;
        }
        surface->accumulation.clear(context().facts, shape.width, shape.height);
        arguments[0] &= ~std::uint64_t(GL_ACCUM_BUFFER_BIT);
        return false;
    }

    // Before the call.
    void begin(std::uint32_t entry) {
        switch (entry) {
        case Entry::DrawBuffer:
        case Entry::ReadBuffer:
            arguments[0] = bufferNow(static_cast<unsigned int>(arguments[0]));
            break;
        case Entry::DrawBuffers:
        case Entry::DrawBuffersARB:
        case Entry::DrawBuffersATI:
            if (call.values[1].isMemory()) {
                char* const buffers = scratchOf(call.values[1].bytes.size());
                for (std::size_t i = 0; i + 4 <= call.values[1].bytes.size(); i += 4) {
                    const unsigned int buffer = bufferNow(wordAt(call.values[1].bytes, i));
                    std::memcpy(buffers + i, &buffer, sizeof buffer);
                }
                arguments[1] = addressOf(buffers);
            }
            break;
        case Entry::LinkProgram:
        case Entry::LinkProgramARB:
            if (linked)
                placeAttributes();
            break;
        case Entry::GetShaderSource:
        case Entry::GetShaderSourceARB:
        case Entry::GetProgramInfoLog:
        case Entry::GetShaderInfoLog:
        case Entry::GetInfoLogARB:
            // As much as there is room for.
            arguments[1] = std::min<std::uint64_t>(arguments[1], 1 << 20);
            break;
        default:
            break;
        }
    }

    template <class Take>
    void eachPlace(const Take& take) {
        ByteReader from(linked->places);
        for (std::uint32_t i = 0; i < linked->count; ++i) {
            const bool isUniform = from.number() != 0;
            const std::int64_t location = from.signedNumber();
            take(isUniform, location, std::string(from.text()));
        }
    }

    // The linker is to put the attributes where the capture has them.
    void placeAttributes() {
        const auto program = static_cast<unsigned int>(arguments[0]);
        const bool isObject = call.function->name.ends_with("ARB");
        eachPlace([&](bool isUniform, std::int64_t location, const std::string& name) {
            if (isUniform)
                return;
            if (isObject)
                gl.cgmBindAttribLocationARB(here, 0, program, static_cast<unsigned int>(location),
                                            name.c_str());
            else
                gl.cgmBindAttribLocation(here, 0, program, static_cast<unsigned int>(location), name.c_str());
        });
    }

    void learnUniforms() {
        const auto program = static_cast<unsigned int>(arguments[0]);
        const bool isObject = call.function->name.ends_with("ARB");
        auto& locations = context().group->locations[linked->program];
        locations.clear();
        eachPlace([&](bool isUniform, std::int64_t location, const std::string& name) {
            if (!isUniform)
                return;
            const int now = isObject ? gl.cgmGetUniformLocationARB(here, 0, program, name.c_str())
                                     : gl.cgmGetUniformLocation(here, 0, program, name.c_str());
            if (now >= 0)
                locations[location] = now;
        });
        linked.reset();
    }

    // Programs compute names of lists from others: they keep the names that they had.
    void keepListNames(std::uint64_t result) {
        const std::uint64_t captured = call.result.bits;
        const std::int32_t range = call.i32(0);
        if (captured == 0 || captured == result || range <= 0)
            return;
        gl.cgmDeleteLists(here, 0, static_cast<unsigned int>(result), range);
        if (context().facts.isCompiling)
            return;
        for (std::int32_t i = 0; i < std::min(range, 1 << 16); ++i) {
            gl.cgmNewList(here, 0, static_cast<unsigned int>(captured) + static_cast<unsigned int>(i),
                          GL_COMPILE);
            gl.cgmEndList(here, 0);
        }
    }

    // How much of a buffer is mapped now.
    std::uint64_t mapSize(std::uint32_t entry) {
        const auto first = static_cast<unsigned int>(arguments[0]);
        if (entry == Entry::MapBufferRange)
            return arguments[2];
        int size = 0;
        if (entry == Entry::MapNamedBufferEXT)
            gl.cgmGetNamedBufferParameterivEXT(here, 0, first, GL_BUFFER_SIZE, &size);
        else if (entry == Entry::MapObjectBufferATI)
            gl.cgmGetObjectBufferivATI(here, 0, first, GL_OBJECT_BUFFER_SIZE_ATI, &size);
        else
            gl.cgmGetBufferParameteriv(here, 0, first, GL_BUFFER_SIZE, &size);
        return static_cast<std::uint64_t>(size);
    }

    // After the call.
    void finish(std::uint32_t entry, std::uint64_t result) {
        Context& now = context();
        switch (entry) {
        case Entry::Begin:
            now.facts.isInside = true;
            break;
        case Entry::End:
            now.facts.isInside = false;
            break;
        case Entry::NewList:
            now.facts.isCompiling = true;
            break;
        case Entry::EndList:
            now.facts.isCompiling = false;
            break;
        case Entry::CallList:
        case Entry::CallLists:
            now.isProgramKnown = false;
            break;
        case Entry::UseProgram:
        case Entry::UseProgramObjectARB:
            now.program = call.values[0].bits;
            now.isProgramKnown = true;
            break;
        case Entry::LinkProgram:
        case Entry::LinkProgramARB:
            if (linked)
                learnUniforms();
            break;
        case Entry::MapBuffer:
        case Entry::MapBufferARB:
        case Entry::MapBufferRange:
        case Entry::MapNamedBufferEXT:
        case Entry::MapObjectBufferATI:
            now.maps[call.result.bits] = {
                reinterpret_cast<char*>(result), // NOLINT(performance-no-int-to-ptr)
                mapSize(entry)};
            break;
        case Entry::GenLists:
            keepListNames(result);
            break;
        default:
            break;
        }
    }

    // Names that came back stand for those that were captured.
    void learnNames(std::uint64_t result) {
        const Function& function = *call.function;
        if (&context() == &none)
            return;
        if (const ObjectKind kind = kindOf(function.result.object);
            kind != ObjectKind::None && kind != ObjectKind::List && kind != ObjectKind::UniformLocation &&
            call.result.bits != 0 && result != 0) {
            const bool isRange = kind == ObjectKind::FragmentShader || kind == ObjectKind::VertexShader ||
                                 kind == ObjectKind::AsyncMarker || kind == ObjectKind::Symbol;
            const std::uint64_t range = isRange && !call.values.empty()
                                            ? std::clamp<std::uint64_t>(call.values.back().bits, 1, 1 << 16)
                                            : 1;
            for (std::uint64_t i = 0; i < range; ++i)
                tableOf(kind).set(kind, call.result.bits + i, result + i);
        }
        for (const Written& one : written) {
            const ObjectKind kind = kindOf(function.parameters[one.parameter].object);
            const CapturedValue& value = call.values[one.parameter];
            if (kind == ObjectKind::None)
                continue;
            for (std::size_t i = 0; i + 4 <= value.bytes.size(); i += 4)
                if (const std::uint32_t captured = wordAt(value.bytes, i))
                    tableOf(kind).set(kind, captured, wordAt({one.memory.get(), i + 4}, i));
        }
        if (function.name.find("Delete") == std::string::npos)
            return;
        for (std::size_t i = 0; i < function.parameters.size(); ++i)
            if (const ObjectKind kind = kindOf(function.parameters[i].object); kind != ObjectKind::None)
                forgetNames(i, kind);
    }

    static bool isReadBack(const Function& function, const Parameter& parameter) {
        return parameter.length == "packed" || function.name.find("BufferSubData") != std::string::npos;
    }

    void compareWritten() {
        for (const Written& one : written) {
            const Parameter& parameter = call.function->parameters[one.parameter];
            const CapturedValue& value = call.values[one.parameter];
            if (!isReadBack(*call.function, parameter) || value.bytes.empty())
                continue;
            ++compared;
            const char* const now = one.memory.get() + value.skipped;
            bool isWritten = false;
            std::size_t differing = value.bytes.size();
            for (std::size_t i = 0; i < value.bytes.size(); ++i) {
                // Bytes between the rows stay as they were.
                const bool isUntouched = now[i] == static_cast<char>(~value.bytes[i]);
                isWritten = isWritten || !isUntouched;
                if (!isUntouched && now[i] != value.bytes[i])
                    differing = std::min(differing, i);
            }
            if (!isWritten)
                listener.differs(call, "what was read back, of which nothing came now,");
            else if (differing < value.bytes.size())
                listener.differs(call, "byte " + std::to_string(differing) + " of what was read back");
        }
    }

    void playCall() {
        const std::uint32_t entry = call.function->number - firstEntry;
        PlayEntry* const play = playerOf(entry);
        if (!play)
            return;
        ++calls;
        prepare();
        begin(entry);
        std::uint64_t result = 0;
        const std::string& site = file.siteOf(call);
        if (!arrays.empty() && (entry == Entry::ArrayElement || entry == Entry::ArrayElementEXT)) {
            playElement(gl, arrays);
        } else if (!isReplaced(entry)) {
            const ArraysForDraw forDraw(gl, context().facts, arrays);
            play(gl, site.c_str(), 0, arguments.data(), result);
        }
        arrays.clear();
        learnNames(result);
        finish(entry, result);
        if (options.verifies)
            compareWritten();
    }

    void playRecord() {
        if (call.function->number < eventCount)
            playEvent();
        else if (call.function->number != UINT32_MAX)
            playCall();
        else
            listener.incomplete(call.function->name + ", which is not known here, was left out");
    }

    bool read() {
        if (!isRead)
            isRead = file.next(call);
        return isRead;
    }

    // The records of one thread, up to the end of a frame or the next thread's.
    void playThread(std::uint32_t thread, std::uint64_t frame) {
        while (frames == frame && read() && call.thread == thread) {
            isRead = false;
            playRecord();
        }
    }
};

CapturePlayer::CapturePlayer(CaptureFile& file, PlaySystem& system, OGL::OpenGLInterceptor& gl,
                             PlayListener& listener, const Options& options)
    : play_(std::make_unique<Play>(file, system, gl, listener, options)) {}
CapturePlayer::~CapturePlayer() = default;

bool CapturePlayer::playFrame() {
    Play& play = *play_;
    const std::uint64_t frame = play.frames;
    while (play.frames == frame && play.read()) {
        const std::uint32_t thread = play.call.thread;
        play.threads.run(thread, [&] { play.playThread(thread, frame); });
    }
    return play.frames != frame;
}

std::uint64_t CapturePlayer::callCount() const { return play_->calls; }
std::uint64_t CapturePlayer::frameCount() const { return play_->frames; }
std::uint64_t CapturePlayer::comparedCount() const { return play_->compared; }

} // namespace ZLT::Capture
