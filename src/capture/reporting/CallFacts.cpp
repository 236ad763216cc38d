#include "capture/reporting/CallFacts.h"

#include "platform/GL.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace ZLT::Capture::Reporting {

namespace {

// Rows that end with * stand for all functions that begin so.
struct KindRow {
    std::string_view name;
    CallKind kind;
};
constexpr KindRow kinds[] = {
    {"glBegin", CallKind::Begin},
    {"glEnd", CallKind::End},
    {"glVertex2*", CallKind::Vertex},
    {"glVertex3*", CallKind::Vertex},
    {"glVertex4*", CallKind::Vertex},
    {"glArrayElement*", CallKind::Vertex},
    {"glDrawArrays*", CallKind::Draw},
    {"glDrawElements*", CallKind::Draw},
    {"glDrawRangeElement*", CallKind::Draw},
    {"glDrawElementArray*", CallKind::Draw},
    {"glMultiDraw*", CallKind::Draw},
    {"glMultiMode*", CallKind::Draw},
    {"glRect*", CallKind::Draw},
    {"glEvalMesh*", CallKind::Draw},
    {"glDrawPixels", CallKind::Pixels},
    {"glCopyPixels", CallKind::Pixels},
    {"glBitmap", CallKind::Pixels},
    {"glTexImage*", CallKind::Upload},
    {"glTexSubImage*", CallKind::Upload},
    {"glCompressedTex*", CallKind::Upload},
    {"glTextureImage*", CallKind::Upload},
    {"glTextureSubImage*", CallKind::Upload},
    {"glBufferData*", CallKind::BufferData},
    {"glBufferSubData*", CallKind::BufferData},
    {"glNamedBufferData*", CallKind::BufferData},
    {"glNamedBufferSubData*", CallKind::BufferData},
    {"glCallList", CallKind::CallList},
    {"glCallLists", CallKind::CallList},
};

struct WhyRow {
    std::string_view name;
    const char* why;
};
constexpr WhyRow stalls[] = {
    {"glReadPixels", "It waits until everything drawn so far is done, and brings the pixels back."},
    {"glGetTexImage", "It waits until the texture is complete, and brings its pixels back."},
    {"glGetCompressedTexImage*", "It waits until the texture is complete, and brings it back."},
    {"glGetBufferSubData*", "It waits until nothing writes to the buffer, and brings its content back."},
    {"glMapBuffer*", "It waits until nothing uses the buffer, unless the driver gives other memory."},
    {"glMapNamedBuffer*", "It waits until nothing uses the buffer, unless the driver gives other memory."},
    {"glFinish", "It waits until everything drawn so far is done."},
    {"glGetQueryObject*", "It waits until the result of the query is there."},
    {"glClientWaitSync", "It waits until the graphics processor has come to the fence."},
    {"glFinishFence*", "It waits until the graphics processor has come to the fence."},
    {"glFinishObjectAPPLE", "It waits until nothing uses the object."},
    {"glGetHistogram*", "It waits until everything drawn so far is done."},
    {"glGetMinmax*", "It waits until everything drawn so far is done."},
    {"glCopyTexImage*", "It makes the texture anew and copies what is drawn so far."},
    {"glAccum", "Most drivers accumulate on the processor: everything drawn so far comes back."},
};

struct HabitFunctionRow {
    std::string_view name;
    const char* title;
};
constexpr const char* immediateMode = "Immediate mode";
constexpr const char* asksState = "State is asked for";
constexpr const char* asksErrors = "Errors are asked for";
constexpr const char* asksPlaces = "Locations are looked up again";
constexpr const char* compiles = "Shaders are compiled while frames are drawn";
constexpr const char* makesObjects = "Objects are made and deleted while frames are drawn";
constexpr const char* makesLists = "Display lists are compiled while frames are drawn";
constexpr const char* makesTextures = "Textures are made anew instead of written to";
constexpr const char* flushes = "Flushes beside those of the swap";
constexpr const char* drawsPixels = "Pixels are drawn from memory";
constexpr const char* stacks = "Attributes are pushed and popped";
constexpr HabitFunctionRow habitFunctions[] = {
    {"glGetError", asksErrors},
    {"glGetUniformLocation*", asksPlaces},
    {"glGetAttribLocation*", asksPlaces},
    {"glGetBooleanv", asksState},
    {"glGetIntegerv", asksState},
    {"glGetFloatv", asksState},
    {"glGetDoublev", asksState},
    {"glIsEnabled", asksState},
    {"glGetTexLevelParameter*", asksState},
    {"glGetTexParameter*", asksState},
    {"glGetString", asksState},
    {"glCompileShader*", compiles},
    {"glLinkProgram*", compiles},
    {"glProgramStringARB", compiles},
    {"glGenTextures*", makesObjects},
    {"glGenBuffers*", makesObjects},
    {"glGenFramebuffers*", makesObjects},
    {"glGenRenderbuffers*", makesObjects},
    {"glGenVertexArrays*", makesObjects},
    {"glDeleteTextures*", makesObjects},
    {"glDeleteBuffers*", makesObjects},
    {"glDeleteFramebuffers*", makesObjects},
    {"glDeleteRenderbuffers*", makesObjects},
    {"glDeleteVertexArrays*", makesObjects},
    {"glNewList", makesLists},
    {"glCopyTexImage*", makesTextures},
    {"glFlush", flushes},
    {"glDrawPixels", drawsPixels},
    {"glBitmap", drawsPixels},
    {"glPushAttrib", stacks},
    {"glPushClientAttrib", stacks},
};

constexpr HabitRow habits[] = {
    {immediateMode,
     "Each vertex is several calls; a buffer holds them all, and one call draws them, or a display list.",
     "vertices a frame", false, 100},
    {"Client arrays", "The arrays are copied at each draw; in a buffer they stay where they are drawn from.",
     "bytes a frame", false, 4096},
    {"Small draws", "A draw costs the driver about the same for ten vertices and for a thousand.",
     "vertices a draw", false, 100},
    {"The same data is sent again", "The same bytes had been sent to the same object before.",
     "bytes a frame", false, 1024},
    {asksState, "Some drivers wait for their own thread to answer; a program can know what it set.",
     "calls a frame", true, 5},
    {asksErrors, "Some drivers wait for their own thread to answer; `zlt_ogl check` looks after each call.",
     "calls a frame", true, 5},
    {asksPlaces, "Locations stay as they are until a program is linked again.", "calls a frame", true, 1},
    {compiles, "It takes milliseconds, and the frame waits.", "calls a frame", true, 0.01},
    {makesObjects, "The driver finds memory for each; objects can be kept and used again.", "calls a frame",
     true, 1},
    {makesLists, "The driver compiles a list for many uses; one that is used once costs more than its calls.",
     "lists a frame", true, 0.5},
    {makesTextures,
     "The driver finds memory and checks everything again; glTexSubImage writes to what is there.",
     "calls a frame", true, 0.5},
    {flushes, "Each sends what was collected, however little it is; a swap does so itself.", "calls a frame",
     true, 1},
    {drawsPixels, "Pixels go through the whole pipeline; a texture stays where it is drawn from.",
     "calls a frame", false, 1},
    {stacks, "The driver copies whole groups of state there and back.", "calls a frame", false, 50},
    {"State is set to what it is", "The driver checks each call, also those that change nothing.",
     "% of the calls that set state", false, 10},
};

bool isNamed(std::string_view row, std::string_view name) {
    return row.ends_with('*') ? name.starts_with(row.substr(0, row.size() - 1)) : row == name;
}

FunctionFacts makeFacts(const Function& function) {
    const std::string_view name = function.name;
    FunctionFacts facts;
    for (const KindRow& row : kinds)
        if (isNamed(row.name, name))
            facts.kind = row.kind;
    for (const WhyRow& row : stalls)
        if (isNamed(row.name, name))
            facts.stall = row.why;
    for (const HabitFunctionRow& row : habitFunctions)
        if (isNamed(row.name, name))
            facts.habit = row.title;
    // glVertexPointer and the like are no vertices.
    if (facts.kind == CallKind::Vertex && name.find("Pointer") != std::string_view::npos)
        facts.kind = CallKind::Other;
    return facts;
}

std::uint64_t countsOf(const CapturedValue& value) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; value.isMemory() && i + 4 <= value.bytes.size(); i += 4) {
        std::int32_t count = 0;
        std::memcpy(&count, value.bytes.data() + i, sizeof count);
        sum += static_cast<std::uint64_t>(std::max(count, 0));
    }
    return sum;
}

} // namespace

const FunctionFacts& factsOf(const Function& function) {
    static const std::vector<FunctionFacts> all = [] {
        std::vector<FunctionFacts> facts(firstEntry);
        while (const Function* const one = functionOf(static_cast<std::uint32_t>(facts.size())))
            facts.push_back(makeFacts(*one));
        return facts;
    }();
    static const FunctionFacts none;
    return function.number < all.size() ? all[function.number] : none;
}

const HabitRow& habitNamed(std::string_view title) {
    return *std::ranges::find(habits, title, [](const HabitRow& row) { return std::string_view(row.title); });
}

std::uint64_t verticesOf(const CapturedCall& call) {
    const std::string& name = call.function->name;
    if (name.starts_with("glRect"))
        return 4;
    std::uint64_t vertices = 0, instances = 1;
    for (std::size_t i = 0; i < call.values.size(); ++i) {
        const std::string_view parameter = call.function->parameters[i].name;
        if (parameter == "count" && call.values[i].form == 'i')
            vertices = static_cast<std::uint64_t>(std::max(call.i32(i), 0));
        else if (parameter == "count")
            vertices = countsOf(call.values[i]);
        else if ((parameter == "primcount" || parameter == "instancecount") && !name.starts_with("glMulti"))
            instances = static_cast<std::uint64_t>(std::max(call.i32(i), 0));
    }
    return vertices * instances;
}

bool isStall(const CapturedCall& call) {
    if (!factsOf(*call.function).stall)
        return false;
    const std::string& name = call.function->name;
    if (name.starts_with("glGetQueryObject"))
        return call.values.size() > 1 && call.u32(1) == GL_QUERY_RESULT;
    if (name.starts_with("glMapBufferRange"))
        return call.values.size() > 3 &&
               (call.u32(3) & (GL_MAP_UNSYNCHRONIZED_BIT | GL_MAP_INVALIDATE_BUFFER_BIT)) == 0;
    if (name == "glAccum")
        return call.u32(0) == GL_ACCUM || call.u32(0) == GL_LOAD || call.u32(0) == GL_RETURN;
    if (name == "glReadPixels" || name == "glGetTexImage" || name.starts_with("glGetCompressedTexImage"))
        return std::ranges::any_of(call.values, &CapturedValue::isMemory); // to a buffer it goes on
    return true;
}

std::uint64_t bytesRead(const CapturedCall& call) {
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < call.values.size(); ++i)
        if (call.function->parameters[i].form != 'o' && call.values[i].isMemory())
            bytes += call.values[i].bytes.size();
    return bytes;
}

std::uint64_t bytesWritten(const CapturedCall& call) {
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < call.values.size(); ++i)
        if (call.function->parameters[i].form == 'o' && call.values[i].isMemory())
            bytes += call.values[i].bytes.size();
    return bytes;
}

} // namespace ZLT::Capture::Reporting
