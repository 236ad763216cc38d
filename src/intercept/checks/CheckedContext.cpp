#include "intercept/checks/CheckedContext.h"

#include "capture/CaptureState.h"
#include "capture/FindFunction.h"
#include "extensionator/OpenGLCall.h"
#include "intercept/Contexts.h"
#include "intercept/ErrorReports.h"
#include "intercept/Program.h"
#include "intercept/RealFunctions.h"
#include "intercept/Thread.h"

#include <algorithm>
#include <cstring>

namespace ZLT::Interception {

namespace {

// Never destroyed: programs call GL while they end.
struct Known {
    Lock lock;
    std::unordered_map<const ContextRecord*, std::unique_ptr<CheckedContext>> contexts;
    std::map<const DisplayLists*, std::shared_ptr<CheckedGroup>> groups;
};
Known& known() {
    static auto& all = *new Known;
    return all;
}

std::shared_ptr<CheckedGroup> groupOf(Known& all, const ContextRecord& record) {
    std::shared_ptr<CheckedGroup>& group = all.groups[record.lists.get()];
    if (!group) {
        group = std::make_shared<CheckedGroup>();
        group->lists = record.lists;
    }
    if (!record.isKnownFromStart)
        group->isKnownFromStart = false;
    return group;
}

// The thread's last context.
struct LastContext {
    const ContextRecord* record = nullptr;
    const DisplayLists* lists = nullptr;
    CheckedContext* context = nullptr;
};
thread_local LastContext last;

// The functions of Sizes.h ask by the state of a capture. This one captures nothing.
Capture::CaptureState& sizesState() {
    static auto& shared = *new Capture::CaptureShared;
    thread_local auto& state = *new Capture::CaptureState(shared, 0); // as long as the thread calls
    return state;
}

CheckedContext& lookUp() {
    const ContextRecord& record = *thread.context;
    const NoSignals calm;
    Known& all = known();
    CheckedContext* context = nullptr;
    bool isNew = false;
    {
        const std::lock_guard guard(all.lock);
        std::unique_ptr<CheckedContext>& place = all.contexts[&record];
        isNew = !place;
        if (isNew)
            place = std::make_unique<CheckedContext>();
        context = place.get();
        context->group = groupOf(all, record);
    }
    if (isNew && mayAskDriver())
        context->learn();
    last = {&record, record.lists.get(), context};
    Capture::CaptureState& state = sizesState();
    state.useContext(context->asked);
    Capture::captureThread.state = &state;
    return *context;
}

} // namespace

void AskedFunctions::load() {
    Capture::findFunction(activeTexture, "glActiveTexture", "glActiveTextureARB");
    Capture::findFunction(checkFramebufferStatus, "glCheckFramebufferStatus", "glCheckFramebufferStatusEXT");
    Capture::findFunction(bindRenderbuffer, "glBindRenderbuffer", "glBindRenderbufferEXT");
    Capture::findFunction(getRenderbufferParameteriv, "glGetRenderbufferParameteriv",
                          "glGetRenderbufferParameterivEXT");
    Capture::findFunction(getUniformiv, "glGetUniformiv");
    isObject[static_cast<int>(ObjectKind::Texture)] = glIsTexture;
    const auto kind = [this](ObjectKind of) -> PFNGLISBUFFERPROC& { return isObject[static_cast<int>(of)]; };
    Capture::findFunction(kind(ObjectKind::Buffer), "glIsBuffer", "glIsBufferARB");
    Capture::findFunction(kind(ObjectKind::Framebuffer), "glIsFramebuffer", "glIsFramebufferEXT");
    Capture::findFunction(kind(ObjectKind::Renderbuffer), "glIsRenderbuffer", "glIsRenderbufferEXT");
    Capture::findFunction(kind(ObjectKind::Query), "glIsQuery", "glIsQueryARB");
    Capture::findFunction(kind(ObjectKind::OcclusionQuery), "glIsOcclusionQueryNV");
    Capture::findFunction(kind(ObjectKind::AssemblyProgram), "glIsProgramARB", "glIsProgramNV");
    Capture::findFunction(kind(ObjectKind::VertexArray), "glIsVertexArray", "glIsVertexArrayAPPLE");
}

void CheckedContext::learn() {
    asked.listsEnabled = true;
    asked.learn();
    functions.load();
    hasPrograms = asked.isVersion(2, 0) && asked.functions.getProgramiv && asked.functions.getActiveUniform &&
                  asked.functions.getUniformLocation && functions.getUniformiv;
    hasUnits = functions.activeTexture && (asked.isVersion(1, 3) || asked.has("GL_ARB_multitexture"));
    if (!asked.isCore)
        fixedUnits = hasUnits ? integer(GL_MAX_TEXTURE_UNITS) : 1;
}

namespace {

// "gl_MultiTexCoord3" as the array that feeds it.
bool arrayOfBuiltIn(std::string_view name, std::pair<Capture::ArrayKind, std::uint32_t>& array) {
    using Kind = Capture::ArrayKind;
    constexpr std::pair<std::string_view, Kind> rows[] = {{"gl_Vertex", Kind::Vertex},
                                                          {"gl_Normal", Kind::Normal},
                                                          {"gl_Color", Kind::Color},
                                                          {"gl_SecondaryColor", Kind::SecondaryColor},
                                                          {"gl_FogCoord", Kind::FogCoord}};
    for (const auto& [built, kind] : rows)
        if (name == built) {
            array = {kind, 0};
            return true;
        }
    constexpr std::string_view units = "gl_MultiTexCoord";
    if (!name.starts_with(units) || name.size() == units.size())
        return false;
    array = {Kind::TexCoord, static_cast<std::uint32_t>(name[units.size()] - '0')};
    return true;
}

int columnsOf(std::uint32_t type) {
    switch (type) {
    case GL_FLOAT_MAT2:
    case GL_FLOAT_MAT2x3:
    case GL_FLOAT_MAT2x4:
        return 2;
    case GL_FLOAT_MAT3:
    case GL_FLOAT_MAT3x2:
    case GL_FLOAT_MAT3x4:
        return 3;
    case GL_FLOAT_MAT4:
    case GL_FLOAT_MAT4x2:
    case GL_FLOAT_MAT4x3:
        return 4;
    default:
        return 1;
    }
}

bool isSampler(std::uint32_t type) {
    return (type >= GL_SAMPLER_1D && type <= GL_SAMPLER_2D_RECT_SHADOW_ARB) ||
           (type >= GL_SAMPLER_1D_ARRAY && type <= GL_SAMPLER_CUBE_SHADOW) ||
           (type >= GL_INT_SAMPLER_1D && type <= GL_UNSIGNED_INT_SAMPLER_BUFFER_EXT) ||
           (type >= 0x9108 && type <= 0x910D); // of several samples, later
}

std::shared_ptr<const ProgramRecord> readProgram(const CheckedContext& context, std::uint32_t program) {
    const Capture::DriverFunctions& driver = context.asked.functions;
    auto record = std::make_shared<ProgramRecord>();
    const auto ask = [&](unsigned int name) {
        GLint value = 0;
        driver.getProgramiv(program, name, &value);
        return value;
    };
    record->isLinked = ask(GL_LINK_STATUS) != 0;
    if (!record->isLinked)
        return record;
    char name[512];
    GLsizei length = 0;
    GLint size = 0;
    GLenum type = 0;
    for (int i = 0, count = ask(GL_ACTIVE_UNIFORMS); i < count; ++i) {
        *name = 0;
        driver.getActiveUniform(program, static_cast<GLuint>(i), sizeof name, &length, &size, &type, name);
        if (!isSampler(type))
            continue;
        std::string base = name;
        if (base.ends_with("[0]"))
            base.resize(base.size() - 3);
        for (int element = 0; element < size; ++element) {
            const std::string full = size == 1 ? base : base + '[' + std::to_string(element) + ']';
            if (const GLint location = driver.getUniformLocation(program, full.c_str()); location >= 0)
                record->samplers.push_back({full, type, location});
        }
    }
    const int attributes = driver.getActiveAttrib && driver.getAttribLocation ? ask(GL_ACTIVE_ATTRIBUTES) : 0;
    for (int i = 0; i < attributes; ++i) {
        *name = 0;
        driver.getActiveAttrib(program, static_cast<GLuint>(i), sizeof name, &length, &size, &type, name);
        std::pair<Capture::ArrayKind, std::uint32_t> array;
        if (std::string_view(name).starts_with("gl_")) {
            if (arrayOfBuiltIn(name, array))
                record->arrays.push_back(array);
            continue;
        }
        const GLint location = driver.getAttribLocation(program, name);
        for (int column = 0; location >= 0 && column < columnsOf(type) * size; ++column)
            record->attributes.push_back(static_cast<std::uint32_t>(location + column));
    }
    return record;
}

} // namespace

void CheckedContext::learnProgram() {
    static const auto pipelines = laterNumbers({"glBindProgramPipeline"});
    const auto isOn = [this](const char* extension, const char* other, unsigned int capability) {
        return (asked.has(extension) || (other && asked.has(other))) && glIsEnabled(capability);
    };
    readsAllArrays = hasOtherFragments = wasCalledLater(pipelines);
    if (!asked.isCore) {
        readsAllArrays = readsAllArrays ||
                         isOn("GL_ARB_vertex_program", "GL_NV_vertex_program", GL_VERTEX_PROGRAM_ARB) ||
                         isOn("GL_EXT_vertex_shader", nullptr, GL_VERTEX_SHADER_EXT);
        hasOtherFragments = hasOtherFragments ||
                            isOn("GL_ARB_fragment_program", nullptr, GL_FRAGMENT_PROGRAM_ARB) ||
                            isOn("GL_NV_fragment_program", nullptr, GL_FRAGMENT_PROGRAM_NV) ||
                            isOn("GL_ATI_fragment_shader", nullptr, GL_FRAGMENT_SHADER_ATI) ||
                            isOn("GL_NV_texture_shader", nullptr, GL_TEXTURE_SHADER_NV);
    }
    program = hasPrograms ? static_cast<std::uint32_t>(integer(GL_CURRENT_PROGRAM)) : 0;
    programRecord = nullptr;
    if (program == 0)
        return;
    {
        const std::lock_guard guard(group->lock);
        if (const auto found = group->programs.find(program); found != group->programs.end())
            programRecord = found->second;
    }
    if (programRecord)
        return;
    programRecord = readProgram(*this, program);
    const GroupGuard guard(*group);
    group->programs[program] = programRecord;
}

void CheckedContext::forget() {
    unknown = changesAll;
    activeUnit = -1;
    areUnitsKnown = false;
    asked.areArraysKnown = false;
    switchedOff.clear();
    const GroupGuard guard(*group);
    group->buffers.clear();
    group->textures.clear();
    group->programs.clear();
}

CheckedContext& checkedContext() {
    const ContextRecord* const record = thread.context;
    CheckedContext& context =
        last.record == record && last.lists == record->lists.get() ? *last.context : lookUp();
    if (!context.asked.isKnown && mayAskDriver())
        context.learn();
    context.asked.isInside = record->balance.isInside();
    return context;
}

bool wasCalledLater(const std::vector<std::size_t>& functions) {
    const ProcessSlot& slot = program().writer().slot();
    return std::ranges::any_of(functions, [&](std::size_t number) {
        return slot.later[number].load(std::memory_order_relaxed) != 0;
    });
}

std::vector<std::size_t> laterNumbers(std::initializer_list<const char*> names) {
    std::vector<std::size_t> numbers;
    for (const char* const name : names)
        if (const std::size_t number = laterNumber(name); number < laterCount())
            numbers.push_back(number);
    return numbers;
}

namespace {

thread_local int asking = 0;

} // namespace

Asking::Asking(const OGL::OpenGLCall& call) {
    if (asking++ == 0)
        tellPending(call);
}
Asking::~Asking() {
    if (--asking == 0)
        dropOwnErrors();
}

} // namespace ZLT::Interception
