// Objects: what made them, what they are, and whether they went.

#include "capture/CallText.h"
#include "capture/TextureBinding.h"
#include "capture/reporting/ReportState.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Reporting;

namespace {

std::size_t indexOf(const CapturedCall& call, std::string_view parameter) {
    for (std::size_t i = 0; i < call.values.size(); ++i)
        if (call.function->parameters[i].name == parameter)
            return i;
    return SIZE_MAX;
}

std::uint64_t valueOf(const CapturedCall& call, std::string_view parameter) {
    const std::size_t index = indexOf(call, parameter);
    return index == SIZE_MAX ? 0 : call.values[index].bits;
}

// Names that a call has there: one, or a list.
std::vector<std::uint64_t> namesOf(const CapturedCall& call, std::size_t index) {
    const CapturedValue& value = call.values[index];
    std::vector<std::uint64_t> names;
    if (value.form != 'p' && value.form != 'o') {
        names.push_back(value.bits);
    } else if (value.isMemory() && sizeOfForm(value.element) == 4) {
        for (std::size_t i = 0; i + 4 <= value.bytes.size(); i += 4)
            names.push_back(CapturePlay::wordAt(value.bytes, i));
    }
    return names;
}

struct KindRow {
    ObjectKind kind;
    const char* name;
};
constexpr KindRow kindRows[] = {{ObjectKind::Texture, "texture"},
                                {ObjectKind::Buffer, "buffer"},
                                {ObjectKind::List, "display list"},
                                {ObjectKind::Program, "program"},
                                {ObjectKind::AssemblyProgram, "assembly program"},
                                {ObjectKind::Framebuffer, "framebuffer"},
                                {ObjectKind::Renderbuffer, "renderbuffer"},
                                {ObjectKind::Query, "query"},
                                {ObjectKind::Sync, "sync object"},
                                {ObjectKind::VertexArray, "vertex array"},
                                {ObjectKind::Fence, "fence"},
                                {ObjectKind::OcclusionQuery, "occlusion query"},
                                {ObjectKind::FragmentShader, "ATI fragment shader"},
                                {ObjectKind::VertexShader, "EXT vertex shader"}};

const char* nameOf(ObjectKind kind) {
    const auto* const found = std::ranges::find(kindRows, kind, &KindRow::kind);
    return found == std::end(kindRows) ? nullptr : found->name;
}

// What glObjectLabel and glLabelObjectEXT call the kinds.
struct LabelRow {
    std::uint32_t kind;
    ObjectKind object;
};
constexpr LabelRow labelRows[] = {{GL_TEXTURE, ObjectKind::Texture},
                                  {GL_BUFFER, ObjectKind::Buffer},
                                  {GL_SHADER, ObjectKind::Program},
                                  {GL_PROGRAM, ObjectKind::Program},
                                  {GL_VERTEX_ARRAY, ObjectKind::VertexArray},
                                  {GL_QUERY, ObjectKind::Query},
                                  {GL_FRAMEBUFFER, ObjectKind::Framebuffer},
                                  {GL_RENDERBUFFER, ObjectKind::Renderbuffer},
                                  {GL_DISPLAY_LIST, ObjectKind::List},
                                  {GL_BUFFER_OBJECT_EXT, ObjectKind::Buffer},
                                  {GL_SHADER_OBJECT_EXT, ObjectKind::Program},
                                  {GL_PROGRAM_OBJECT_EXT, ObjectKind::Program},
                                  {GL_QUERY_OBJECT_EXT, ObjectKind::Query},
                                  {GL_VERTEX_ARRAY_OBJECT_EXT, ObjectKind::VertexArray}};

constexpr std::pair<std::uint32_t, std::uint32_t> bufferBindings[] = {
    {GL_ARRAY_BUFFER, GL_ARRAY_BUFFER_BINDING},
    {GL_ELEMENT_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER_BINDING},
    {GL_PIXEL_PACK_BUFFER, GL_PIXEL_PACK_BUFFER_BINDING},
    {GL_PIXEL_UNPACK_BUFFER, GL_PIXEL_UNPACK_BUFFER_BINDING},
    {GL_UNIFORM_BUFFER, GL_UNIFORM_BUFFER_BINDING},
    {GL_TRANSFORM_FEEDBACK_BUFFER, GL_TRANSFORM_FEEDBACK_BUFFER_BINDING},
    {GL_COPY_READ_BUFFER, GL_COPY_READ_BUFFER_BINDING},
    {GL_COPY_WRITE_BUFFER, GL_COPY_WRITE_BUFFER_BINDING}};

std::uint32_t bufferBindingOf(std::uint32_t target) {
    const auto* const found =
        std::ranges::find(bufferBindings, target, &std::pair<std::uint32_t, std::uint32_t>::first);
    return found == std::end(bufferBindings) ? 0 : found->second;
}

} // namespace

ObjectKey ReportState::keyOf(ObjectKind kind, std::uint64_t name, const ContextFacts& context) const {
    return {isOfContext(kind) ? -std::int64_t(context.number) : std::int64_t(context.group), kind, name};
}

ReportedObject& ReportState::objectAt(const ObjectPlace& place) {
    switch (place.list) {
    case ObjectPlace::List::Textures:
        return report.textures[place.index];
    case ObjectPlace::List::Buffers:
        return report.buffers[place.index];
    case ObjectPlace::List::Shaders:
        return report.shaders[place.index];
    case ObjectPlace::List::Programs:
        return report.programs[place.index];
    case ObjectPlace::List::Lists:
        return report.lists[place.index];
    default:
        return report.others[place.index];
    }
}

std::uint64_t ReportState::bytesOf(const ObjectPlace& place) const {
    if (place.list == ObjectPlace::List::Textures)
        return report.textures[place.index].bytes;
    return place.list == ObjectPlace::List::Buffers ? report.buffers[place.index].bytes : 0;
}

ReportedObject* ReportState::find(const ObjectKey& key) {
    const auto found = objects.find(key);
    return found == objects.end() ? nullptr : &objectAt(found->second);
}

ReportedObject& ReportState::make(const ObjectKey& key, const CapturedCall& call) {
    const auto add = [](auto& list) {
        list.emplace_back();
        return list.size() - 1;
    };
    ObjectPlace place;
    const bool isShader =
        key.kind == ObjectKind::Program && call.function->name.find("Shader") != std::string::npos;
    if (key.kind == ObjectKind::Texture)
        place = {ObjectPlace::List::Textures, add(report.textures)};
    else if (key.kind == ObjectKind::Buffer)
        place = {ObjectPlace::List::Buffers, add(report.buffers)};
    else if (isShader)
        place = {ObjectPlace::List::Shaders, add(report.shaders)};
    else if (key.kind == ObjectKind::Program || key.kind == ObjectKind::AssemblyProgram)
        place = {ObjectPlace::List::Programs, add(report.programs)};
    else if (key.kind == ObjectKind::List)
        place = {ObjectPlace::List::Lists, add(report.lists)};
    else
        place = {ObjectPlace::List::Others, add(report.others)};
    objects[key] = place;
    ReportedObject& made = objectAt(place);
    made.kind = isShader ? "shader" : nameOf(key.kind);
    made.name = key.name;
    made.site = call.site;
    made.made = call.frame;
    const ContextFacts* const context = contextOf(call.thread);
    made.group = context ? context->group : 0;
    if (isShader && call.values.size() == 1)
        report.shaders[place.index].type = tokenText(call.u32(0));
    if (place.list == ObjectPlace::List::Programs)
        report.programs[place.index].type = nameOf(key.kind);
    return made;
}

void ReportState::remove(const ObjectKey& key) {
    const auto found = objects.find(key);
    if (found == objects.end())
        return;
    objectAt(found->second).deleted = report.frames.size() + 1;
    objects.erase(found);
}

void ReportState::label(const CapturedCall& call) {
    const auto* const row = std::ranges::find(labelRows, call.u32(0), &LabelRow::kind);
    const ContextFacts* const context = contextOf(call.thread);
    if (row == std::end(labelRows) || !context)
        return;
    if (ReportedObject* const object = find(keyOf(row->object, call.values[1].bits, *context)))
        object->label = call.values[2].bytes;
}

std::uint64_t ReportState::boundAt(std::uint32_t query, ObjectKind kind) {
    if (query == 0 || !play.context().facts.mayAsk())
        return 0;
    const auto name = static_cast<std::uint32_t>(play.context().facts.integer(query));
    return name == 0 ? 0 : play.tableOf(kind).findCaptured(kind, name).value_or(0);
}

std::string ReportState::uploadedObject(const CapturedCall& call, ContextFacts& context, std::uint64_t bytes,
                                        std::uint64_t time) {
    const bool isBuffer = factsOf(*call.function).kind == CallKind::BufferData;
    const ObjectKind kind = isBuffer ? ObjectKind::Buffer : ObjectKind::Texture;
    std::uint64_t name = 0;
    for (std::size_t i = 0; i < call.values.size(); ++i)
        if (kindOf(call.function->parameters[i].object) == kind)
            name = call.values[i].bits;
    const std::uint32_t target = static_cast<std::uint32_t>(valueOf(call, "target"));
    if (name == 0)
        name = boundAt(isBuffer ? bufferBindingOf(target) : textureBindingOf(target), kind);
    std::string text = (isBuffer ? "buffer " : "texture ") + std::to_string(name);
    ReportedObject* const object = find(keyOf(kind, name, context));
    if (!object)
        return text;
    if (isBuffer) {
        auto& buffer = static_cast<ReportedBuffer&>(*object);
        ++buffer.uploads;
        buffer.uploaded += bytes;
        if (indexOf(call, "usage") != SIZE_MAX) {
            buffer.usage = tokenText(static_cast<std::uint32_t>(valueOf(call, "usage")));
            buffer.bytes = valueOf(call, "size");
        }
        return text;
    }
    auto& texture = static_cast<ReportedTexture&>(*object);
    const bool isAnew = call.function->name.starts_with("glTexImage") && valueOf(call, "level") == 0;
    if (isAnew && texture.uploads > 0 && texture.made < call.frame)
        addHabit("Textures are made anew instead of written to", call, time, 1);
    ++texture.uploads;
    texture.uploaded += bytes;
    return text;
}

void ReportState::objectsGoing(const CapturedCall& call, ContextFacts& context) {
    if (!call.function->name.starts_with("glDeleteTextures"))
        return;
    for (const std::uint64_t name : namesOf(call, call.values.size() - 1))
        if (ReportedObject* const texture = find(keyOf(ObjectKind::Texture, name, context)))
            readTexture(static_cast<ReportedTexture&>(*texture), playedContext(context.number));
}

void ReportState::followObjects(const CapturedCall& call, ContextFacts& context, bool failed) {
    const Function& function = *call.function;
    const std::string& name = function.name;
    if (name == "glEndList")
        context.list = 0;
    if (name.starts_with("glProgramString"))
        followAssembly(call, context); // a text that is wrong is an error
    if (failed)
        return;
    if (context.list != 0)
        if (ReportedObject* const list = find(keyOf(ObjectKind::List, context.list, context)))
            ++static_cast<ReportedList*>(list)->calls;
    if (const ObjectKind kind = kindOf(function.result.object);
        kind != ObjectKind::None && nameOf(kind) && call.result.bits != 0) {
        const std::uint64_t count =
            kind == ObjectKind::List ? std::min<std::uint64_t>(valueOf(call, "range"), 1 << 16) : 1;
        for (std::uint64_t i = 0; i < count; ++i)
            if (const ObjectKey key = keyOf(kind, call.result.bits + i, context); !find(key))
                make(key, call);
    }
    const bool isBind = name.starts_with("glBind") || name == "glNewList";
    const bool isDelete = name.find("Delete") != std::string::npos;
    for (std::size_t i = 0; i < call.values.size(); ++i) {
        const Parameter& parameter = function.parameters[i];
        const ObjectKind kind = parameter.object.empty() ? ObjectKind::None : kindOf(parameter.object);
        if (kind == ObjectKind::None || !nameOf(kind))
            continue;
        if (parameter.form == 'o' && name.starts_with("glGen")) {
            for (const std::uint64_t made : namesOf(call, i))
                if (const ObjectKey key = keyOf(kind, made, context); made != 0)
                    make(key, call);
        } else if (isDelete && kind == ObjectKind::List) {
            const std::uint64_t count = std::min<std::uint64_t>(valueOf(call, "range"), 1 << 16);
            for (std::uint64_t list = 0; list < count; ++list)
                remove(keyOf(kind, call.values[i].bits + list, context));
        } else if (isDelete) {
            for (const std::uint64_t gone : namesOf(call, i))
                remove(keyOf(kind, gone, context));
        } else if (isBind && call.values[i].bits != 0 && parameter.form != 'o' && parameter.form != 'p') {
            const ObjectKey key = keyOf(kind, call.values[i].bits, context);
            ReportedObject* object = find(key);
            if (!object && kind != ObjectKind::Program)
                object = &make(key, call);
            if (kind == ObjectKind::Texture && name.starts_with("glBindTexture") && object)
                static_cast<ReportedTexture*>(object)->target = tokenText(call.u32(0));
            if (kind == ObjectKind::AssemblyProgram && object) {
                static_cast<ReportedProgram*>(object)->type = tokenText(call.u32(0));
                ++static_cast<ReportedProgram*>(object)->used;
            }
        }
    }
    followShaders(call, context);
    followLists(call, context);
}

std::string ReportState::logOf(const CapturedCall& call, std::uint64_t name, std::optional<bool>& isGood) {
    using Playing::here;
    const auto now = play.findName(ObjectKind::Program, name);
    if (!now)
        return "";
    const auto object = static_cast<unsigned int>(*now);
    const bool isShader = call.function->name.find("Compile") != std::string::npos;
    int status = 0, length = 0;
    OGL::OpenGLInterceptor& gl = play.gl;
    const auto ask = [&](unsigned int what, unsigned int whatArb, int& to) {
        if (call.function->name.ends_with("ARB"))
            gl.cgmGetObjectParameterivARB(here, 0, object, whatArb, &to);
        else if (isShader)
            gl.cgmGetShaderiv(here, 0, object, what, &to);
        else
            gl.cgmGetProgramiv(here, 0, object, what, &to);
    };
    ask(isShader ? GL_COMPILE_STATUS : GL_LINK_STATUS,
        isShader ? GL_OBJECT_COMPILE_STATUS_ARB : GL_OBJECT_LINK_STATUS_ARB, status);
    ask(GL_INFO_LOG_LENGTH, GL_OBJECT_INFO_LOG_LENGTH_ARB, length);
    isGood = status != 0;
    std::string log(static_cast<std::size_t>(std::clamp(length, 0, 1 << 16)), '\0');
    if (log.empty())
        return log;
    int written = 0;
    const auto room = static_cast<int>(log.size());
    if (call.function->name.ends_with("ARB"))
        gl.cgmGetInfoLogARB(here, 0, object, room, &written, log.data());
    else if (isShader)
        gl.cgmGetShaderInfoLog(here, 0, object, room, &written, log.data());
    else
        gl.cgmGetProgramInfoLog(here, 0, object, room, &written, log.data());
    log.resize(static_cast<std::size_t>(std::clamp(written, 0, room)));
    return log;
}

void ReportState::followShaders(const CapturedCall& call, ContextFacts& context) {
    std::string_view name = call.function->name;
    if (name.ends_with("ARB"))
        name.remove_suffix(3);
    const auto placeOf = [&](ObjectKind kind, std::uint64_t its) -> const ObjectPlace* {
        const auto found = objects.find(keyOf(kind, its, context));
        return found == objects.end() ? nullptr : &found->second;
    };
    const auto first = [&](ObjectPlace::List list) -> const ObjectPlace* {
        const ObjectPlace* const place = placeOf(ObjectKind::Program, call.values[0].bits);
        return place && place->list == list ? place : nullptr;
    };
    if (name == "glShaderSource") {
        if (const ObjectPlace* const place = first(ObjectPlace::List::Shaders)) {
            std::string& source = report.shaders[place->index].source;
            source.clear();
            for (const std::string_view text : textsOf(call.values[2]))
                source += withoutZero(text);
        }
    } else if (name == "glCompileShader") {
        if (const ObjectPlace* const place = first(ObjectPlace::List::Shaders)) {
            ReportedShader& shader = report.shaders[place->index];
            shader.log = logOf(call, call.values[0].bits, shader.compiled);
        }
    } else if (name == "glLinkProgram") {
        if (const ObjectPlace* const place = first(ObjectPlace::List::Programs)) {
            ReportedProgram& program = report.programs[place->index];
            program.log = logOf(call, call.values[0].bits, program.linked);
        }
    } else if (name == "glAttachShader" || name == "glAttachObject") {
        const ObjectPlace* const program = first(ObjectPlace::List::Programs);
        const ObjectPlace* const shader = placeOf(ObjectKind::Program, call.values[1].bits);
        if (program && shader && shader->list == ObjectPlace::List::Shaders)
            report.programs[program->index].shaders.push_back(shader->index);
    } else if (name == "glUseProgram" || name == "glUseProgramObject") {
        if (const ObjectPlace* const place = first(ObjectPlace::List::Programs))
            ++report.programs[place->index].used;
    }
}

void ReportState::followAssembly(const CapturedCall& call, ContextFacts& context) {
    if (call.values.size() == 4 && play.context().facts.mayAsk()) {
        int bound = 0;
        play.gl.cgmGetProgramivARB(Playing::here, 0, call.u32(0), GL_PROGRAM_BINDING_ARB, &bound);
        const std::uint64_t captured =
            play.tableOf(ObjectKind::AssemblyProgram)
                .findCaptured(ObjectKind::AssemblyProgram, static_cast<std::uint64_t>(bound))
                .value_or(0);
        const auto found = objects.find(keyOf(ObjectKind::AssemblyProgram, captured, context));
        if (found == objects.end())
            return;
        const ObjectPlace* const place = &found->second;
        ReportedShader shader;
        static_cast<ReportedObject&>(shader) = report.programs[place->index];
        shader.kind = "assembly program";
        shader.type = tokenText(call.u32(0));
        shader.source = call.values[3].bytes;
        const auto* const error = reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB));
        shader.log = error ? error : "";
        shader.compiled = shader.log.empty();
        report.programs[place->index].linked = shader.compiled;
        report.programs[place->index].shaders = {report.shaders.size()};
        report.shaders.push_back(std::move(shader));
    }
}

void ReportState::followLists(const CapturedCall& call, ContextFacts& context) {
    const std::string& name = call.function->name;
    if (name == "glNewList") {
        context.list = call.values[0].bits;
        context.isListExecuted = call.u32(1) == GL_COMPILE_AND_EXECUTE;
        if (ReportedObject* const object = find(keyOf(ObjectKind::List, context.list, context))) {
            auto& list = static_cast<ReportedList&>(*object);
            list.calls = list.draws = list.vertices = 0;
        }
        return;
    }
    if (factsOf(*call.function).kind != CallKind::CallList)
        return;
    const auto use = [&](std::uint64_t list) {
        ReportedObject* const object = find(keyOf(ObjectKind::List, list, context));
        if (!object)
            return;
        auto& used = static_cast<ReportedList&>(*object);
        ++used.used;
        ReportedObject* const open = find(keyOf(ObjectKind::List, context.list, context));
        if (open && open != object) {
            static_cast<ReportedList*>(open)->draws += used.draws;
            static_cast<ReportedList*>(open)->vertices += used.vertices;
        }
        if (context.list != 0 && !context.isListExecuted)
            return;
        frame.draws += used.draws;
        frame.vertices += used.vertices;
    };
    if (name == "glCallList")
        return use(call.values[0].bits);
    const CapturedValue& lists = call.values[2];
    char form = 0;
    switch (call.u32(1)) {
    case GL_BYTE:
        form = 'c';
        break;
    case GL_UNSIGNED_BYTE:
        form = 'C';
        break;
    case GL_SHORT:
        form = 's';
        break;
    case GL_UNSIGNED_SHORT:
        form = 'S';
        break;
    case GL_INT:
        form = 'i';
        break;
    case GL_UNSIGNED_INT:
        form = 'u';
        break;
    default:
        return;
    }
    const CapturedContext& facts = play.context().facts;
    const auto base = facts.mayAsk() ? static_cast<std::uint32_t>(facts.integer(GL_LIST_BASE)) : 0;
    for (std::size_t i = 0; lists.isMemory() && i < lists.bytes.size() / sizeOfForm(form); ++i)
        use(base + static_cast<std::uint32_t>(elementAt(lists.bytes, form, i)));
}

void ReportState::close(ContextFacts& context, const std::string& when) {
    GroupFacts& group = groups[context.group];
    if (group.contexts > 0)
        --group.contexts;
    context.isAlive = false;
    const auto isGoing = [&](const ObjectKey& key) {
        return key.scope == -std::int64_t(context.number) ||
               (group.contexts == 0 && key.scope == std::int64_t(context.group));
    };
    if (context.isLearnt)
        play.withContext(context.number, [&] {
            context.timers.resolve(stamps_);
            for (const auto& [key, place] : objects)
                if (isGoing(key) && place.list == ObjectPlace::List::Textures)
                    readTexture(report.textures[place.index], playedContext(context.number));
        });
    struct Sum {
        std::uint64_t count = 0, bytes = 0;
        std::string names;
    };
    std::map<std::pair<std::string, std::uint32_t>, Sum> sums;
    for (const auto& [key, place] : objects) {
        if (!isGoing(key))
            continue;
        const ReportedObject& object = objectAt(place);
        Sum& sum = sums[{object.kind, object.site}];
        constexpr std::uint64_t mostNames = 8;
        if (sum.count < mostNames)
            sum.names += (sum.count > 0 ? ", " : "") + std::to_string(object.name);
        else if (sum.count == mostNames)
            sum.names += ", ...";
        ++sum.count;
        sum.bytes += bytesOf(place);
    }
    for (const auto& [place, sum] : sums)
        report.leaks.push_back({place.first, sum.names, when, place.second, sum.count, sum.bytes});
    std::erase_if(objects, [&](const auto& one) { return isGoing(one.first); });
}

} // namespace ZLT::Capture
