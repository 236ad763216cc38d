// A project that begins in the middle: with the objects and the state that there were.

#include "capture/CapturePlay.h"
#include "capture/exporting/ExportedState.h"
#include "capture/exporting/StateReader.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Exporting;

namespace {

// The thread of the calls that nobody made.
constexpr std::uint32_t startThread = 0xFFFFFFFF;

class SilentListener : public PlayListener {};

bool isObject(const CapturedCall& create) { return create.function->name.ends_with("ARB"); }

} // namespace

void ProjectExport::startAt(std::uint64_t frame, const std::string& path, PlaySystem& system,
                            OGL::OpenGLInterceptor& gl, const std::function<void(std::uint64_t)>& progress) {
    CaptureFile played(path);
    SilentListener listener;
    CapturePlay play(played, system, gl, listener, {});
    isSkimming = true;
    std::uint64_t ended = 0;
    while (ended + 1 < frame && file.next(call)) {
        exportRecord();
        if (!call.is(Event::Swap))
            continue;
        ++ended;
        play.playFrame();
        progress(ended);
    }
    isSkimming = false;
    if (ended + 1 < frame)
        throw std::runtime_error("the capture has " + std::to_string(ended) +
                                 (ended == 1 ? " frame" : " frames") + ", and frame " +
                                 std::to_string(frame) + " was asked for");
    facts.firstFrame = frame;
    bring(play);
}

void ProjectExport::bring(CapturePlay& play) {
    for (const auto& [number, shape] : surfaces)
        addSurface(number, shape);
    // As they were, for the end.
    std::map<std::uint32_t, std::uint32_t> owners;
    for (auto& [number, its] : contexts)
        if (its.isCreated)
            owners[number] = its.thread;
    for (const auto& [number, thread] : owners)
        contexts[number].isCreated = false;
    std::set<const Group*> brought;
    for (const auto& [number, thread] : owners) {
        Context& its = contexts[number];
        bringContext(play, its, brought.insert(its.group.get()).second);
    }
    threads.erase(startThread);
    for (const auto& [number, thread] : owners)
        contexts[number].thread = thread;
    // Who makes the next call is made current by it.
    current = 0;
    facts.calls = 0; // of the capture, of which none is written yet
    files.endStart(facts.firstFrame);
}

void ProjectExport::bringContext(CapturePlay& play, Context& its, bool isFirst) {
    KnownState known = {its.group->kept.textureTargets,
                        its.group->kept.assemblyTargets,
                        its.queryTargets,
                        its.attributeMasks,
                        {},
                        its.matrices};
    for (const auto& [mask, state] : its.clientStack)
        known.clientMasks.push_back(mask);
    // What follows is followed like all calls.
    const std::uint64_t program = its.program;
    its.program = 0;
    its.client = {};
    its.clientStack.clear();
    its.attributeMasks.clear();
    its.arrays.clear();
    threads[startThread].context = its.number;
    its.thread = startThread;
    createContext(its);
    writeCurrent(its);

    Playing::Context& played = play.contexts[its.number];
    MadeCalls objects, state;
    const auto missing = [this](const std::string& what) { facts.missing.insert(what); };
    objects.add("glPixelStorei", GL_UNPACK_ALIGNMENT, 1);
    const auto read = [&] {
        StateReader reader(play, played, known, objects, missing);
        const auto each = [](NameScope& scope, ObjectKind kind, const auto& add) {
            const std::set<std::uint64_t> names(scope.known[kind].begin(), scope.known[kind].end());
            for (const std::uint64_t name : names)
                add(name);
        };
        if (isFirst) {
            NameScope& shared = its.group->names;
            each(shared, ObjectKind::Buffer, [&](std::uint64_t name) { reader.addBuffer(name); });
            reader.addDefaultTextures();
            each(shared, ObjectKind::Texture, [&](std::uint64_t name) { reader.addTexture(name); });
            each(shared, ObjectKind::Renderbuffer, [&](std::uint64_t name) { reader.addRenderbuffer(name); });
            each(shared, ObjectKind::AssemblyProgram,
                 [&](std::uint64_t name) { reader.addAssemblyProgram(name); });
        }
        each(its.names, ObjectKind::VertexArray, [&](std::uint64_t name) { reader.addVertexArray(name); });
        each(its.names, ObjectKind::Framebuffer, [&](std::uint64_t name) { reader.addFramebuffer(name); });
        each(its.names, ObjectKind::Query, [&](std::uint64_t name) { reader.addQuery(name); });
        if (const auto shape = surfaces.find(its.draw); shape != surfaces.end())
            reader.addPixels(shape->second);
        objects.add("glPixelStorei", GL_UNPACK_ALIGNMENT, 4);
        StateReader(play, played, known, state, missing).addContextState();
    };
    if (!play.withContext(its.number, read))
        missing("Context " + std::to_string(its.number) + " begins as a new one.");
    if (isFirst)
        addShaders(*its.group);
    addKept(objects.take());
    if (isFirst) {
        addPrograms(*its.group);
        addLists(*its.group);
        MadeCalls fences;
        for (const std::uint64_t sync : its.group->kept.syncs)
            if (syncs.contains(sync)) // and not deleted
                fences.addMaking("glFenceSync", sync, GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
        addKept(fences.take());
    }
    addKept(state.take());
    for (const std::optional<CapturedCall>* const memory : {&its.feedback, &its.selection})
        if (*memory)
            addKept(**memory);
    if (its.accumulates)
        missing("The accumulation buffer begins empty.");
    if (const auto used = its.group->kept.programs.find(program);
        used != its.group->kept.programs.end() && used->second.isDeleted) {
        MadeCalls calls;
        calls.add("glDeleteProgram", program);
        addKept(calls.take());
    }
}

void ProjectExport::addKept(CapturedCall kept) {
    call = std::move(kept);
    call.thread = startThread;
    exportCall();
}

void ProjectExport::addKept(std::vector<CapturedCall> calls) {
    for (CapturedCall& one : calls)
        addKept(std::move(one));
}

void ProjectExport::addShaders(Group& group) {
    // First those of which programs were linked, which may be no more; then those that there are.
    KeptObjects& kept = group.kept;
    std::map<std::uint64_t, std::shared_ptr<const KeptSource>> made;
    const auto make = [&](std::uint64_t name, const CapturedCall& create,
                          const std::shared_ptr<const KeptSource>& compiled) {
        addKept(create);
        if (compiled && compiled->source)
            addKept(*compiled->source);
        if (compiled)
            addKept(*compiled->compile);
        made[name] = compiled;
    };
    const auto tell = [&](bool isOld, const char* function, const char* oldFunction, auto... arguments) {
        MadeCalls calls;
        calls.add(isOld ? oldFunction : function, arguments...);
        addKept(calls.take());
    };
    for (auto& [name, program] : kept.programs) {
        const bool isOld = isObject(program.create);
        addKept(program.create);
        for (const CapturedCall& setting : program.settings)
            addKept(setting);
        std::set<std::uint64_t> attached;
        for (const KeptProgram::LinkedShader& part : program.linked) {
            const auto known = made.find(part.name);
            if (known == made.end() || known->second != part.compiled)
                make(part.name, part.create, part.compiled);
            tell(isOld, "glAttachShader", "glAttachObjectARB", name, part.name);
            attached.insert(part.name);
        }
        if (program.link) {
            linked = program.places;
            addKept(*program.link);
            linked.reset();
        }
        for (const KeptProgram::LinkedShader& part : program.linked) {
            const auto alive = kept.shaders.find(part.name);
            const bool isSame = alive != kept.shaders.end() && alive->second.compiled == part.compiled;
            if (isSame && std::ranges::count(program.attached, part.name) > 0)
                continue;
            tell(isOld, "glDetachShader", "glDetachObjectARB", name, part.name);
            attached.erase(part.name);
            if (!isSame) {
                tell(isOld, "glDeleteShader", "glDeleteObjectARB", part.name);
                made.erase(part.name);
            }
        }
        std::erase_if(program.attached, [&](std::uint64_t shader) { return attached.contains(shader); });
    }
    for (const auto& [name, shader] : kept.shaders) {
        if (!made.contains(name))
            make(name, shader.create, shader.compiled);
        // It got another text since it was compiled.
        if (shader.source && (!shader.compiled || !shader.compiled->source ||
                              shader.compiled->source->number != shader.source->number))
            addKept(*shader.source);
    }
    for (const auto& [name, program] : kept.programs)
        for (const std::uint64_t shader : program.attached)
            if (kept.shaders.contains(shader))
                tell(isObject(program.create), "glAttachShader", "glAttachObjectARB", name, shader);
    for (const auto& [name, shader] : kept.shaders)
        if (shader.isDeleted)
            tell(isObject(shader.create), "glDeleteShader", "glDeleteObjectARB", name);
}

void ProjectExport::addPrograms(Group& group) {
    for (const auto& [name, program] : group.kept.programs) {
        if (program.uniforms.empty())
            continue;
        std::map<std::uint64_t, const CapturedCall*> inOrder;
        for (const auto& [key, uniform] : program.uniforms)
            inOrder[uniform.first] = &uniform.second;
        MadeCalls use;
        use.add(isObject(program.create) ? "glUseProgramObjectARB" : "glUseProgram", name);
        addKept(use.take());
        for (const auto& [order, uniform] : inOrder)
            addKept(*uniform);
        use.add(isObject(program.create) ? "glUseProgramObjectARB" : "glUseProgram", 0);
        addKept(use.take());
    }
}

void ProjectExport::setUnpacking(const std::map<std::uint32_t, std::int32_t>& wanted) {
    MadeCalls calls;
    for (const std::uint32_t name :
         {GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS,
          GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST, GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_SKIP_IMAGES}) {
        const auto valueIn = [name](const std::map<std::uint32_t, std::int32_t>& values) {
            const auto found = values.find(name);
            return found != values.end() ? found->second : name == GL_UNPACK_ALIGNMENT ? 4 : 0;
        };
        if (valueIn(wanted) != valueIn(contextOf(startThread)->client.unpacking))
            calls.add("glPixelStorei", name, valueIn(wanted));
    }
    addKept(calls.take());
}

void ProjectExport::addLists(Group& group) {
    const auto tell = [&](const char* function, auto... arguments) {
        MadeCalls calls;
        calls.add(function, arguments...);
        addKept(calls.take());
    };
    for (auto list = group.kept.emptyLists.begin(); list != group.kept.emptyLists.end();) {
        const std::uint64_t first = *list;
        std::uint64_t count = 0;
        for (; list != group.kept.emptyLists.end() && *list == first + count; ++list)
            ++count;
        MadeCalls calls;
        calls.addMaking("glGenLists", first, count);
        addKept(calls.take());
    }
    for (const auto& [name, list] : group.kept.lists) {
        setUnpacking(list.unpacking);
        // The arrays that its first draw reads were enabled in front of it.
        const auto draw =
            std::ranges::find_if(list.calls, [](const KeptCall& kept) { return !kept.arrays.empty(); });
        const bool hasArrays = draw != list.calls.end();
        if (hasArrays) {
            tell("glPushClientAttrib", GL_CLIENT_VERTEX_ARRAY_BIT);
            for (const PlayedArray& array : draw->arrays) {
                constexpr std::pair<ArrayKind, std::uint32_t> states[] = {
                    {ArrayKind::Vertex, GL_VERTEX_ARRAY},
                    {ArrayKind::Normal, GL_NORMAL_ARRAY},
                    {ArrayKind::Color, GL_COLOR_ARRAY},
                    {ArrayKind::SecondaryColor, GL_SECONDARY_COLOR_ARRAY},
                    {ArrayKind::FogCoord, GL_FOG_COORD_ARRAY},
                    {ArrayKind::Index, GL_INDEX_ARRAY},
                    {ArrayKind::EdgeFlag, GL_EDGE_FLAG_ARRAY}};
                if (array.kind == ArrayKind::Attribute)
                    tell("glEnableVertexAttribArray", array.index);
                if (array.kind == ArrayKind::TexCoord) {
                    tell("glClientActiveTexture", GL_TEXTURE0 + array.index);
                    tell("glEnableClientState", GL_TEXTURE_COORD_ARRAY);
                    tell("glClientActiveTexture", GL_TEXTURE0);
                }
                for (const auto& [kind, state] : states)
                    if (array.kind == kind)
                        tell("glEnableClientState", state);
            }
        }
        for (const KeptCall& kept : list.calls) {
            arrays = kept.arrays;
            CapturedCall one = kept.call;
            if (one.function->name == "glNewList")
                one.values[1].bits = GL_COMPILE; // what it did then is in the state
            addKept(std::move(one));
        }
        if (hasArrays)
            tell("glPopClientAttrib");
    }
    setUnpacking({});
}

} // namespace ZLT::Capture
