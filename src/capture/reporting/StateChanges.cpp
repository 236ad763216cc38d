#include "capture/reporting/StateChanges.h"

#include "capture/reporting/Shrink.h"
#include "platform/GL.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace ZLT::Capture::Reporting {

namespace {

// States that calls set. Functions that set the same one share it.
enum State : std::uint8_t {
    ActiveTexture,
    ClientActiveTexture,
    Alpha,
    Array,
    ArrayEnable,
    AttributeArray,
    Blend,
    BlendColor,
    BlendEquation,
    BufferBinding,
    Clamp,
    Clear,
    ColorMask,
    Cull,
    Depth,
    DrawBuffer,
    Enable,
    Environment,
    Fog,
    Framebuffer,
    FrontFace,
    Hint,
    Light,
    LightModel,
    Line,
    Logic,
    MatrixMode,
    PixelStore,
    PixelTransfer,
    Point,
    Polygon,
    ProgramBinding,
    ProgramParameter,
    ReadBuffer,
    Renderbuffer,
    Sample,
    Scissor,
    ShadeModel,
    Stencil,
    StencilMask,
    StencilOp,
    Stipple,
    TexEnv,
    TexGen,
    TexParameter,
    TextureBinding,
    TextureEnable,
    Uniform,
    UseProgram,
    VertexArray,
    Viewport,
    stateCount
};

// What else the state belongs to.
enum class Scope : std::uint8_t {
    Context,
    Unit,       // the active texture unit
    ClientUnit, // the active unit of client state
    Arrays,     // the vertex array object
    Pointer,    // the same, and the value has the buffer that is bound
    Faces,      // the first key is a face, or both
    Blending,   // for color and alpha, or for each
    Textures,   // the texture that is bound to the target
    Uniforms,   // the program in use
    Framebuffers
};

} // namespace

struct StateRow {
    std::string_view name;
    State state;
    std::uint8_t keys = 0; // so many parameters say of what it is set, the rest to what
    Scope scope = Scope::Context;
    std::uint8_t part = 0; // of a state with several
};

namespace {

// Without suffixes; what ARB and EXT made before is the same.
constexpr StateRow rows[] = {
    {"glActiveTexture", ActiveTexture},
    {"glAlphaFunc", Alpha},
    {"glBindBuffer", BufferBinding, 1},
    {"glBindFramebuffer", Framebuffer, 1, Scope::Framebuffers},
    {"glBindProgram", ProgramBinding, 1},
    {"glBindRenderbuffer", Renderbuffer, 1},
    {"glBindTexture", TextureBinding, 1, Scope::Unit},
    {"glBindVertexArray", VertexArray},
    {"glBlendColor", BlendColor},
    {"glBlendEquation", BlendEquation, 0, Scope::Blending},
    {"glBlendEquationSeparate", BlendEquation, 0, Scope::Blending},
    {"glBlendFunc", Blend, 0, Scope::Blending},
    {"glBlendFuncSeparate", Blend, 0, Scope::Blending},
    {"glClampColor", Clamp, 1},
    {"glClearAccum", Clear, 0, Scope::Context, 1},
    {"glClearColor", Clear, 0, Scope::Context, 2},
    {"glClearDepth", Clear, 0, Scope::Context, 3},
    {"glClearIndex", Clear, 0, Scope::Context, 4},
    {"glClearStencil", Clear, 0, Scope::Context, 5},
    {"glClientActiveTexture", ClientActiveTexture},
    {"glColorMask", ColorMask},
    {"glColorPointer", Array, 0, Scope::Pointer, 1},
    {"glCullFace", Cull},
    {"glDepthFunc", Depth, 0, Scope::Context, 1},
    {"glDepthMask", Depth, 0, Scope::Context, 2},
    {"glDepthRange", Depth, 0, Scope::Context, 3},
    {"glDrawBuffer", DrawBuffer},
    {"glEdgeFlagPointer", Array, 0, Scope::Pointer, 2},
    {"glFogCoordPointer", Array, 0, Scope::Pointer, 3},
    {"glFogf", Fog, 1},
    {"glFogfv", Fog, 1},
    {"glFogi", Fog, 1},
    {"glFogiv", Fog, 1},
    {"glFrontFace", FrontFace},
    {"glHint", Hint, 1},
    {"glIndexMask", ColorMask, 0, Scope::Context, 1},
    {"glIndexPointer", Array, 0, Scope::Pointer, 4},
    {"glLightModelf", LightModel, 1},
    {"glLightModelfv", LightModel, 1},
    {"glLightModeli", LightModel, 1},
    {"glLightModeliv", LightModel, 1},
    {"glLightf", Light, 2},
    {"glLightfv", Light, 2},
    {"glLighti", Light, 2},
    {"glLightiv", Light, 2},
    {"glLineStipple", Line, 0, Scope::Context, 1},
    {"glLineWidth", Line, 0, Scope::Context, 2},
    {"glLogicOp", Logic},
    {"glMatrixMode", MatrixMode},
    {"glNormalPointer", Array, 0, Scope::Pointer, 5},
    {"glPixelStoref", PixelStore, 1},
    {"glPixelStorei", PixelStore, 1},
    {"glPixelTransferf", PixelTransfer, 1},
    {"glPixelTransferi", PixelTransfer, 1},
    {"glPixelZoom", PixelTransfer, 0, Scope::Context, 1},
    {"glPointParameterf", Point, 1},
    {"glPointParameterfv", Point, 1},
    {"glPointParameteri", Point, 1},
    {"glPointSize", Point, 0, Scope::Context, 1},
    {"glPolygonMode", Polygon, 1, Scope::Faces, 1},
    {"glPolygonOffset", Polygon, 0, Scope::Context, 2},
    {"glPolygonStipple", Stipple},
    {"glProgramEnvParameter4f", ProgramParameter, 2},
    {"glProgramEnvParameter4fv", ProgramParameter, 2},
    {"glReadBuffer", ReadBuffer},
    {"glSampleCoverage", Sample},
    {"glScissor", Scissor},
    {"glSecondaryColorPointer", Array, 0, Scope::Pointer, 6},
    {"glShadeModel", ShadeModel},
    {"glStencilFunc", Stencil, 0, Scope::Faces},
    {"glStencilFuncSeparate", Stencil, 1, Scope::Faces},
    {"glStencilMask", StencilMask, 0, Scope::Faces},
    {"glStencilMaskSeparate", StencilMask, 1, Scope::Faces},
    {"glStencilOp", StencilOp, 0, Scope::Faces},
    {"glStencilOpSeparate", StencilOp, 1, Scope::Faces},
    {"glTexCoordPointer", Array, 0, Scope::Pointer, 7},
    {"glTexEnvf", TexEnv, 2, Scope::Unit},
    {"glTexEnvfv", TexEnv, 2, Scope::Unit},
    {"glTexEnvi", TexEnv, 2, Scope::Unit},
    {"glTexEnviv", TexEnv, 2, Scope::Unit},
    {"glTexGend", TexGen, 2, Scope::Unit},
    {"glTexGenf", TexGen, 2, Scope::Unit},
    {"glTexGeni", TexGen, 2, Scope::Unit},
    {"glTexParameterf", TexParameter, 2, Scope::Textures},
    {"glTexParameterfv", TexParameter, 2, Scope::Textures},
    {"glTexParameteri", TexParameter, 2, Scope::Textures},
    {"glTexParameteriv", TexParameter, 2, Scope::Textures},
    {"glUniform1f", Uniform, 1, Scope::Uniforms},
    {"glUniform1fv", Uniform, 1, Scope::Uniforms},
    {"glUniform1i", Uniform, 1, Scope::Uniforms},
    {"glUniform1iv", Uniform, 1, Scope::Uniforms},
    {"glUniform1ui", Uniform, 1, Scope::Uniforms},
    {"glUniform1uiv", Uniform, 1, Scope::Uniforms},
    {"glUniform2f", Uniform, 1, Scope::Uniforms},
    {"glUniform2fv", Uniform, 1, Scope::Uniforms},
    {"glUniform2i", Uniform, 1, Scope::Uniforms},
    {"glUniform2iv", Uniform, 1, Scope::Uniforms},
    {"glUniform2ui", Uniform, 1, Scope::Uniforms},
    {"glUniform2uiv", Uniform, 1, Scope::Uniforms},
    {"glUniform3f", Uniform, 1, Scope::Uniforms},
    {"glUniform3fv", Uniform, 1, Scope::Uniforms},
    {"glUniform3i", Uniform, 1, Scope::Uniforms},
    {"glUniform3iv", Uniform, 1, Scope::Uniforms},
    {"glUniform3ui", Uniform, 1, Scope::Uniforms},
    {"glUniform3uiv", Uniform, 1, Scope::Uniforms},
    {"glUniform4f", Uniform, 1, Scope::Uniforms},
    {"glUniform4fv", Uniform, 1, Scope::Uniforms},
    {"glUniform4i", Uniform, 1, Scope::Uniforms},
    {"glUniform4iv", Uniform, 1, Scope::Uniforms},
    {"glUniform4ui", Uniform, 1, Scope::Uniforms},
    {"glUniform4uiv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix2fv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix2x3fv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix2x4fv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix3fv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix3x2fv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix3x4fv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix4fv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix4x2fv", Uniform, 1, Scope::Uniforms},
    {"glUniformMatrix4x3fv", Uniform, 1, Scope::Uniforms},
    {"glUseProgram", UseProgram},
    {"glUseProgramObject", UseProgram},
    {"glVertexAttribIPointer", Array, 1, Scope::Pointer, 8},
    {"glVertexAttribPointer", Array, 1, Scope::Pointer, 8},
    {"glVertexPointer", Array, 0, Scope::Pointer, 9},
    {"glViewport", Viewport},
};

// Those that set a switch on or off; the switch is the key.
struct SwitchRow {
    std::string_view name;
    StateRow row;
    bool isOn;
};
constexpr SwitchRow switches[] = {
    {"glEnable", {"glEnable", Enable, 1}, true},
    {"glDisable", {"glDisable", Enable, 1}, false},
    {"glEnableClientState", {"glEnableClientState", ArrayEnable, 1, Scope::Arrays}, true},
    {"glDisableClientState", {"glDisableClientState", ArrayEnable, 1, Scope::Arrays}, false},
    {"glEnableVertexAttribArray", {"glEnableVertexAttribArray", AttributeArray, 1, Scope::Arrays}, true},
    {"glDisableVertexAttribArray", {"glDisableVertexAttribArray", AttributeArray, 1, Scope::Arrays}, false},
};

// Switches that each texture unit has.
bool isOfUnit(std::uint32_t capability) {
    switch (capability) {
    case GL_TEXTURE_1D:
    case GL_TEXTURE_2D:
    case GL_TEXTURE_3D:
    case GL_TEXTURE_CUBE_MAP:
    case GL_TEXTURE_RECTANGLE_ARB:
    case GL_TEXTURE_GEN_S:
    case GL_TEXTURE_GEN_T:
    case GL_TEXTURE_GEN_R:
    case GL_TEXTURE_GEN_Q:
        return true;
    default:
        return false;
    }
}

// Functions beside the rows that set the same states.
struct ForgetRow {
    std::string_view name;
    State state;
};
constexpr ForgetRow forgetRows[] = {
    {"glInterleavedArrays", Array},
    {"glInterleavedArrays", ArrayEnable},
    {"glDrawBuffers", DrawBuffer},
    {"glStencilFuncSeparateATI", Stencil},
    {"glStencilOpSeparateATI", StencilOp},
    {"glActiveStencilFaceEXT", Stencil},
    {"glActiveStencilFaceEXT", StencilMask},
    {"glActiveStencilFaceEXT", StencilOp},
    {"glBlendEquationIndexedAMD", BlendEquation},
    {"glBlendEquationSeparateIndexedAMD", BlendEquation},
    {"glBlendFuncIndexedAMD", Blend},
    {"glBlendFuncSeparateIndexedAMD", Blend},
    {"glColorMaski", ColorMask},
    {"glColorMaskIndexedEXT", ColorMask},
    {"glEnablei", Enable},
    {"glDisablei", Enable},
    {"glEnableIndexedEXT", Enable},
    {"glDisableIndexedEXT", Enable},
    {"glBindBufferBase", BufferBinding},
    {"glBindBufferRange", BufferBinding},
    {"glBindBufferOffset", BufferBinding},
    {"glDeleteBuffers", BufferBinding},
    {"glDeleteBuffers", Array},
    {"glDeleteFramebuffers", Framebuffer},
    {"glDeleteFramebuffers", DrawBuffer},
    {"glDeleteFramebuffers", ReadBuffer},
    {"glDeleteRenderbuffers", Renderbuffer},
    {"glDeleteTextures", TextureBinding},
    {"glDeleteTextures", TexParameter},
    {"glDeletePrograms", ProgramBinding},
    {"glDeleteVertexArrays", VertexArray},
    {"glDeleteVertexArrays", Array},
    {"glDeleteVertexArrays", ArrayEnable},
    {"glDeleteVertexArrays", AttributeArray},
    {"glDeleteVertexArrays", BufferBinding},
    {"glProgramEnvParameter4d", ProgramParameter},
    {"glProgramEnvParameter4dv", ProgramParameter},
    {"glProgramEnvParameters4fv", ProgramParameter},
    {"glDepthBoundsEXT", Depth},
    {"glDepthRangedNV", Depth},
    {"glClearDepthdNV", Clear},
    {"glSampleMaskSGIS", Sample},
};

// What a function is to us.
struct Known {
    const StateRow* row = nullptr;
    bool isSwitch = false, isOn = false;
    std::vector<State> forgotten;
    bool forgetsAll = false, isStack = false, isList = false;
};

std::string_view withoutSuffix(std::string_view name) {
    for (const std::string_view suffix : {"ARB", "EXT"})
        if (name.ends_with(suffix))
            return name.substr(0, name.size() - suffix.size());
    return name;
}

const Known& knownOf(const Function& function) {
    static const std::vector<Known> all = [] {
        std::vector<Known> known;
        for (std::uint32_t number = 0;; ++number) {
            const Function* const one = functionOf(number);
            if (!one && number > firstEntry)
                break;
            known.emplace_back();
            if (!one || number < firstEntry)
                continue;
            Known& its = known.back();
            const std::string_view name = withoutSuffix(one->name);
            for (const StateRow& row : rows)
                if (row.name == name)
                    its.row = &row;
            for (const SwitchRow& row : switches)
                if (row.name == name) {
                    its.row = &row.row;
                    its.isSwitch = true;
                    its.isOn = row.isOn;
                }
            for (const ForgetRow& row : forgetRows)
                if (row.name == name || row.name == one->name)
                    its.forgotten.push_back(row.state);
            const bool isQuery = one->name.starts_with("glGet") || one->name.starts_with("glIs");
            its.forgetsAll = one->group == "GL_EXT_direct_state_access" && !isQuery;
            its.isStack = one->name == "glPushAttrib" || one->name == "glPopAttrib" ||
                          one->name == "glPushClientAttrib" || one->name == "glPopClientAttrib";
            its.isList = one->name == "glCallList" || one->name == "glCallLists";
        }
        return known;
    }();
    static const Known nothing;
    return function.number < all.size() ? all[function.number] : nothing;
}

std::uint64_t mixed(std::uint64_t a, std::uint64_t b) {
    return (a ^ (b + 0x9E3779B97F4A7C15 + (a << 6) + (a >> 2))) * 0x9FB21C651E98DF25;
}

// What the parameters are, from one on.
std::uint64_t valueFrom(const CapturedCall& call, std::size_t first) {
    std::uint64_t value = call.function->number;
    for (std::size_t i = first; i < call.values.size(); ++i) {
        const CapturedValue& one = call.values[i];
        value = mixed(value, one.isMemory() ? hashOf(one.bytes) : one.bits);
    }
    return value;
}

Effect both(Effect a, Effect b) {
    return a == Effect::Changed || b == Effect::Changed ? Effect::Changed : Effect::Unchanged;
}

std::uint64_t bitsOf(const CapturedCall& call, std::size_t index) {
    return index < call.values.size() ? call.values[index].bits : 0;
}

} // namespace

StateChanges::StateChanges()
    : values_(stateCount), generations_(stateCount), unit_(GL_TEXTURE0), clientUnit_(GL_TEXTURE0) {}

void StateChanges::forgetAll() {
    for (std::uint8_t state = 0; state < stateCount; ++state)
        forget(state);
}

void StateChanges::forget(std::uint8_t state) {
    ++generations_[state];
    values_[state].clear();
    if (state == TextureBinding)
        textures_.clear();
    if (state == BufferBinding)
        arrayBuffer_.reset();
    if (state == VertexArray)
        vertexArray_.reset();
    if (state == ActiveTexture)
        unit_.reset();
    if (state == ClientActiveTexture)
        clientUnit_.reset();
    if (state == UseProgram)
        program_.reset();
}

Effect StateChanges::set(std::uint8_t state, Key key, std::uint64_t value) {
    const auto [place, isNew] = values_[state].try_emplace(key, value);
    if (!isNew && place->second == value)
        return Effect::Unchanged;
    place->second = value;
    return Effect::Changed;
}

Effect StateChanges::setFrom(std::uint64_t initial, const StateRow& row, Key key, std::uint64_t value) {
    if (generations_[row.state] == 0)
        values_[row.state].try_emplace(key, initial);
    return set(row.state, key, value);
}

StateChanges::Key StateChanges::keyOf(const StateRow& row, const CapturedCall& call,
                                      std::uint64_t extra) const {
    Key key = mixed(row.part, extra);
    for (int i = 0; i < row.keys; ++i)
        key = mixed(key, bitsOf(call, static_cast<std::size_t>(i)) + 1);
    return key;
}

Effect StateChanges::followBlending(const CapturedCall& call, const StateRow& row) {
    const std::size_t half = row.state == Blend ? 2 : 1;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 2 * half; ++i)
        value = mixed(value, bitsOf(call, call.values.size() == half ? i % half : i));
    return set(row.state, keyOf(row, call, 0), value);
}

Effect StateChanges::followFaces(const CapturedCall& call, const StateRow& row) {
    const std::uint64_t face = row.keys == 0 ? GL_FRONT_AND_BACK : bitsOf(call, 0);
    std::uint64_t value = 0;
    for (std::size_t i = static_cast<std::size_t>(row.keys); i < call.values.size(); ++i)
        value = mixed(value, bitsOf(call, i) + 1);
    Effect effect = Effect::Unchanged;
    for (const std::uint64_t one : {GL_FRONT, GL_BACK})
        if (face == one || face == GL_FRONT_AND_BACK)
            effect = both(effect, set(row.state, mixed(row.part, one), value));
    return effect;
}

Effect StateChanges::followUniform(const CapturedCall& call, const StateRow& row, StateChanges& group) {
    if (!program_ || *program_ == 0)
        return Effect::Changed;
    const auto location = static_cast<std::int64_t>(bitsOf(call, 0));
    if (location < 0)
        return Effect::Unchanged; // GL ignores it
    const bool isArray = call.function->name.find('v') != std::string::npos;
    const std::int64_t count = isArray ? static_cast<std::int64_t>(bitsOf(call, 1)) : 1;
    auto& arrays = group.uniformArrays_[*program_];
    const auto keyAt = [&](std::int64_t at) { return mixed(*program_, static_cast<std::uint64_t>(at) + 1); };
    // Arrays and their elements are set by either.
    auto before = arrays.upper_bound(location);
    if (before != arrays.begin() && (--before)->first < location && before->second > location) {
        group.values_[Uniform].erase(keyAt(before->first));
        arrays.erase(before);
    }
    if (count > 1) {
        for (std::int64_t i = 1; i < std::min<std::int64_t>(count, 4096); ++i)
            group.values_[Uniform].erase(keyAt(location + i));
        arrays[location] = location + count;
    }
    // The same value by glUniform1f and glUniform1fv is told by its function, and taken for a change.
    return group.set(Uniform, keyAt(location), valueFrom(call, static_cast<std::size_t>(row.keys)));
}

Effect StateChanges::followTexture(const CapturedCall& call, const StateRow& row, StateChanges& group) {
    const auto bound = unit_ ? textures_.find({*unit_, bitsOf(call, 0)}) : textures_.end();
    if (bound == textures_.end())
        return Effect::Changed;
    return group.set(TexParameter, group.keyOf(row, call, bound->second + 1), valueFrom(call, 2));
}

Effect StateChanges::followFramebuffer(const CapturedCall& call, const StateRow& row) {
    const std::uint64_t target = bitsOf(call, 0);
    Effect effect = Effect::Unchanged;
    for (const std::uint64_t one : {GL_DRAW_FRAMEBUFFER, GL_READ_FRAMEBUFFER})
        if (target == one || target == GL_FRAMEBUFFER)
            effect = both(effect, setFrom(0, row, one, bitsOf(call, 1)));
    // Each has buffers of its own that it draws to.
    if (effect == Effect::Changed) {
        forget(DrawBuffer);
        forget(ReadBuffer);
    }
    return effect;
}

Effect StateChanges::followRow(const CapturedCall& call, const StateRow& row, StateChanges& group) {
    const Known& known = knownOf(*call.function);
    const std::uint64_t first = bitsOf(call, 0);
    if (known.isSwitch) {
        std::optional<std::uint64_t> extra = row.scope == Scope::Arrays ? vertexArray_ : 0;
        if (row.state == ArrayEnable && first == GL_TEXTURE_COORD_ARRAY && extra)
            extra = clientUnit_ ? std::optional(mixed(*extra, *clientUnit_)) : std::nullopt;
        if (row.state == Enable && isOfUnit(static_cast<std::uint32_t>(first)))
            extra = unit_ ? std::optional(*unit_ + 1) : std::nullopt;
        const bool isOnFirst = row.state == Enable && (first == GL_DITHER || first == GL_MULTISAMPLE);
        return extra ? setFrom(isOnFirst, row, keyOf(row, call, *extra), known.isOn) : Effect::Changed;
    }
    switch (row.scope) {
    case Scope::Blending:
        return followBlending(call, row);
    case Scope::Faces:
        return followFaces(call, row);
    case Scope::Uniforms:
        return followUniform(call, row, group);
    case Scope::Textures:
        return followTexture(call, row, group);
    case Scope::Framebuffers:
        return followFramebuffer(call, row);
    case Scope::Pointer: {
        if (!vertexArray_ || !arrayBuffer_ || (row.part == 7 && !clientUnit_))
            return Effect::Changed;
        const std::uint64_t extra = mixed(*vertexArray_, row.part == 7 ? *clientUnit_ + 1 : 0);
        return set(row.state, keyOf(row, call, extra),
                   mixed(*arrayBuffer_, valueFrom(call, static_cast<std::size_t>(row.keys))));
    }
    case Scope::Unit:
        if (!unit_)
            return Effect::Changed;
        // A plane of the eye is of the matrix that there is at the time.
        if (row.state == TexGen && bitsOf(call, 1) == GL_EYE_PLANE)
            return Effect::Changed;
        if (row.state == TextureBinding) {
            textures_[{*unit_, first}] = bitsOf(call, 1);
            return setFrom(0, row, keyOf(row, call, *unit_ + 1), bitsOf(call, 1));
        }
        return set(row.state, keyOf(row, call, *unit_ + 1),
                   valueFrom(call, static_cast<std::size_t>(row.keys)));
    default:
        break;
    }
    // Where a light is depends on the matrix too.
    if (row.state == Light && (bitsOf(call, 1) == GL_POSITION || bitsOf(call, 1) == GL_SPOT_DIRECTION))
        return Effect::Changed;
    std::uint64_t extra = 0;
    if (row.state == BufferBinding && first == GL_ELEMENT_ARRAY_BUFFER) {
        if (!vertexArray_)
            return Effect::Changed;
        extra = *vertexArray_ + 1;
    }
    const bool isBinding = row.state == BufferBinding || row.state == UseProgram ||
                           row.state == VertexArray || row.state == ProgramBinding ||
                           row.state == Renderbuffer;
    const Key key = keyOf(row, call, extra);
    const auto keys = static_cast<std::size_t>(row.keys);
    const Effect effect =
        isBinding ? setFrom(0, row, key, bitsOf(call, keys)) : set(row.state, key, valueFrom(call, keys));
    switch (row.state) {
    case ActiveTexture:
        unit_ = first;
        break;
    case ClientActiveTexture:
        clientUnit_ = first;
        break;
    case UseProgram:
        program_ = first;
        break;
    case VertexArray:
        vertexArray_ = first;
        break;
    case BufferBinding:
        if (first == GL_ARRAY_BUFFER)
            arrayBuffer_ = bitsOf(call, 1);
        break;
    default:
        break;
    }
    return effect;
}

void StateChanges::followOther(const CapturedCall& call, StateChanges& group) {
    const Known& known = knownOf(*call.function);
    for (const State state : known.forgotten) {
        forget(state);
        group.forget(state);
    }
    if (known.forgetsAll) {
        forgetAll();
        // Functions that need no binding set the state of objects too.
        if (call.function->group == "GL_EXT_direct_state_access")
            group.forgetAll();
    }
    if (call.function->name.starts_with("glLinkProgram"))
        group.forget(Uniform);
}

namespace {

// Which states the groups of glPushAttrib have. Enable, Clear and Depth are in several, in parts; what is
// drawn to and read from is that of the framebuffer which is bound when it comes back.
struct GroupRow {
    std::uint32_t bit;
    std::initializer_list<State> states;
};
const GroupRow groupRows[] = {
    {GL_COLOR_BUFFER_BIT, {Alpha, Blend, BlendColor, BlendEquation, ColorMask, Logic, Clamp}},
    {GL_FOG_BIT, {Fog}},
    {GL_HINT_BIT, {Hint}},
    {GL_LIGHTING_BIT, {Light, LightModel, ShadeModel}},
    {GL_LINE_BIT, {Line}},
    {GL_PIXEL_MODE_BIT, {PixelTransfer}},
    {GL_POINT_BIT, {Point}},
    {GL_POLYGON_BIT, {Cull, FrontFace, Polygon}},
    {GL_POLYGON_STIPPLE_BIT, {Stipple}},
    {GL_SCISSOR_BIT, {Scissor}},
    {GL_STENCIL_BUFFER_BIT, {Stencil, StencilMask, StencilOp}},
    {GL_TEXTURE_BIT, {ActiveTexture, TexEnv, TexGen, TextureBinding}},
    {GL_TRANSFORM_BIT, {MatrixMode}},
    {GL_VIEWPORT_BIT, {Viewport}},
    {GL_MULTISAMPLE_BIT, {Sample}},
    {GL_ENABLE_BIT, {Enable}},
};

std::uint64_t bitOf(State state) { return std::uint64_t(1) << state; }
static_assert(stateCount <= 64);

// What calls set at once while a list is compiled: what is of the client, and which objects are bound but for
// textures.
const std::uint64_t doneAtOnce = bitOf(Array) | bitOf(ArrayEnable) | bitOf(AttributeArray) |
                                 bitOf(ClientActiveTexture) | bitOf(PixelStore) | bitOf(BufferBinding) |
                                 bitOf(VertexArray) | bitOf(Framebuffer) | bitOf(Renderbuffer);

} // namespace

StateChanges::Extent StateChanges::extentOf(bool isClient, std::uint32_t mask) {
    Extent extent;
    if (isClient) {
        if ((mask & GL_CLIENT_PIXEL_STORE_BIT) != 0)
            extent.whole |= bitOf(PixelStore);
        if ((mask & GL_CLIENT_VERTEX_ARRAY_BIT) != 0) {
            extent.whole |=
                bitOf(Array) | bitOf(ArrayEnable) | bitOf(AttributeArray) | bitOf(ClientActiveTexture);
            // Which buffers come back with the arrays, drivers see differently.
            extent.part |= bitOf(BufferBinding) | bitOf(VertexArray);
        }
        return extent;
    }
    for (const GroupRow& row : groupRows)
        if ((mask & row.bit) != 0)
            for (const State state : row.states)
                extent.whole |= bitOf(state);
    extent.part =
        (bitOf(Enable) | bitOf(Clear) | bitOf(Depth) | bitOf(DrawBuffer) | bitOf(ReadBuffer)) & ~extent.whole;
    return extent;
}

void StateChanges::restore(Kept& kept, const Extent& extent) {
    // Nothing is set to it, and so the next call is a change.
    constexpr std::uint64_t unknown = ~std::uint64_t(0);
    for (std::uint8_t state = 0; state < stateCount; ++state) {
        if (((extent.whole | extent.part) >> state & 1) == 0)
            continue;
        Values& values = values_[state];
        if (generations_[state] != kept.generations[state])
            values.clear();
        else if ((extent.whole >> state & 1) != 0)
            values = std::move(kept.values[state]);
        else
            for (auto& [key, value] : values) {
                const auto before = kept.values[state].find(key);
                if (before == kept.values[state].end() || before->second != value)
                    value = unknown;
            }
    }
}

void StateChanges::followStacks(const CapturedCall& call, StateChanges& group) {
    const bool isClient = call.function->name.find("Client") != std::string::npos;
    std::vector<Kept>& stack = isClient ? clientStack_ : serverStack_;
    if (call.function->name.starts_with("glPush")) {
        stack.push_back({call.u32(0), std::vector<Values>(stateCount), generations_, textures_, unit_,
                         clientUnit_, vertexArray_, arrayBuffer_});
        const Extent extent = extentOf(isClient, call.u32(0));
        for (std::uint8_t state = 0; state < stateCount; ++state)
            if (((extent.whole | extent.part) >> state & 1) != 0)
                stack.back().values[state] = values_[state];
        return;
    }
    if (stack.empty())
        return forgetAll(); // pushed before the capture
    Kept kept = std::move(stack.back());
    stack.pop_back();
    const Extent extent = extentOf(isClient, kept.mask);
    const auto isKept = [&](State state) { return generations_[state] == kept.generations[state]; };
    restore(kept, extent);
    if ((extent.whole & bitOf(ClientActiveTexture)) != 0) {
        clientUnit_ = isKept(ClientActiveTexture) ? kept.clientUnit : Optional();
        if (arrayBuffer_ != kept.arrayBuffer)
            arrayBuffer_.reset();
        if (vertexArray_ != kept.vertexArray)
            vertexArray_.reset();
    }
    if ((extent.whole & bitOf(TextureBinding)) != 0) {
        unit_ = isKept(ActiveTexture) ? kept.unit : Optional();
        textures_.clear();
        if (isKept(TextureBinding))
            textures_ = std::move(kept.textures);
        group.forget(TexParameter); // of the textures that were bound
    }
}

void StateChanges::followLists(const CapturedCall& call, StateChanges& group) {
    ListStates used;
    if (call.function->name == "glCallList") {
        const auto found = group.lists_.find(bitsOf(call, 0));
        if (found != group.lists_.end())
            used = found->second;
    } else {
        used = group.anyList_;
    }
    if (isCompiling_) {
        ListStates& outer = group.lists_[list_];
        outer.states |= used.states;
        outer.isAll = outer.isAll || used.isAll;
        group.anyList_.states |= used.states;
        group.anyList_.isAll = group.anyList_.isAll || used.isAll;
        if (!isExecuted_)
            return;
    }
    if (used.isAll)
        return forgetAll();
    for (std::uint8_t state = 0; state < stateCount; ++state)
        if ((used.states >> state & 1) != 0) {
            forget(state);
            group.forget(state);
        }
}

Effect StateChanges::follow(const CapturedCall& call, StateChanges& group, bool failed) {
    if (failed)
        return Effect::None;
    const std::string& name = call.function->name;
    const Known& known = knownOf(*call.function);
    if (name == "glNewList") {
        list_ = bitsOf(call, 0);
        group.lists_[list_] = {};
        isCompiling_ = true;
        isExecuted_ = bitsOf(call, 1) == GL_COMPILE_AND_EXECUTE;
        return Effect::None;
    }
    if (name == "glEndList") {
        isCompiling_ = false;
        return Effect::None;
    }
    if (known.isList) {
        followLists(call, group);
        return Effect::None;
    }
    if (isCompiling_) {
        ListStates& its = group.lists_[list_];
        if (known.row)
            its.states |= std::uint64_t(1) << known.row->state;
        for (const State state : known.forgotten)
            its.states |= std::uint64_t(1) << state;
        its.isAll = its.isAll || known.forgetsAll || known.isStack;
        group.anyList_.states |= its.states;
        group.anyList_.isAll = group.anyList_.isAll || its.isAll;
    }
    if (isCompiling_ && !isExecuted_) {
        // Some calls are done at once instead, and some by one driver and not by another.
        if (known.row && (doneAtOnce >> known.row->state & 1) != 0)
            forget(known.row->state);
        if (known.isStack && name.find("Client") != std::string::npos)
            followStacks(call, group);
        if (!known.forgotten.empty() || known.forgetsAll)
            followOther(call, group);
        return Effect::None;
    }
    if (known.isStack) {
        followStacks(call, group);
        return Effect::None;
    }
    Effect effect = Effect::None;
    if (known.row)
        effect = followRow(call, *known.row, group);
    if (!known.forgotten.empty() || known.forgetsAll || name.starts_with("glLink"))
        followOther(call, group);
    // A list that is being made needs the call, even if this state has it.
    return isCompiling_ && effect == Effect::Unchanged ? Effect::Changed : effect;
}

} // namespace ZLT::Capture::Reporting
