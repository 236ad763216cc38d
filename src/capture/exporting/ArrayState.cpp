// Arrays of vertices, and what is bound.

#include "capture/TextureBinding.h"
#include "capture/exporting/StateReader.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Playing;

namespace {

struct FixedPointer {
    std::uint32_t array, size, type, stride, buffer, pointer;
    const char* function;
    int since;
};
constexpr FixedPointer fixedPointers[] = {
    {GL_VERTEX_ARRAY, GL_VERTEX_ARRAY_SIZE, GL_VERTEX_ARRAY_TYPE, GL_VERTEX_ARRAY_STRIDE,
     GL_VERTEX_ARRAY_BUFFER_BINDING, GL_VERTEX_ARRAY_POINTER, "glVertexPointer", 11},
    {GL_NORMAL_ARRAY, 0, GL_NORMAL_ARRAY_TYPE, GL_NORMAL_ARRAY_STRIDE, GL_NORMAL_ARRAY_BUFFER_BINDING,
     GL_NORMAL_ARRAY_POINTER, "glNormalPointer", 11},
    {GL_COLOR_ARRAY, GL_COLOR_ARRAY_SIZE, GL_COLOR_ARRAY_TYPE, GL_COLOR_ARRAY_STRIDE,
     GL_COLOR_ARRAY_BUFFER_BINDING, GL_COLOR_ARRAY_POINTER, "glColorPointer", 11},
    {GL_INDEX_ARRAY, 0, GL_INDEX_ARRAY_TYPE, GL_INDEX_ARRAY_STRIDE, GL_INDEX_ARRAY_BUFFER_BINDING,
     GL_INDEX_ARRAY_POINTER, "glIndexPointer", 11},
    {GL_EDGE_FLAG_ARRAY, 0, 0, GL_EDGE_FLAG_ARRAY_STRIDE, GL_EDGE_FLAG_ARRAY_BUFFER_BINDING,
     GL_EDGE_FLAG_ARRAY_POINTER, "glEdgeFlagPointer", 11},
    {GL_SECONDARY_COLOR_ARRAY, GL_SECONDARY_COLOR_ARRAY_SIZE, GL_SECONDARY_COLOR_ARRAY_TYPE,
     GL_SECONDARY_COLOR_ARRAY_STRIDE, GL_SECONDARY_COLOR_ARRAY_BUFFER_BINDING,
     GL_SECONDARY_COLOR_ARRAY_POINTER, "glSecondaryColorPointer", 14},
    {GL_FOG_COORD_ARRAY, 0, GL_FOG_COORD_ARRAY_TYPE, GL_FOG_COORD_ARRAY_STRIDE,
     GL_FOG_COORD_ARRAY_BUFFER_BINDING, GL_FOG_COORD_ARRAY_POINTER, "glFogCoordPointer", 14},
};
constexpr FixedPointer coordinatePointer = {GL_TEXTURE_COORD_ARRAY,
                                            GL_TEXTURE_COORD_ARRAY_SIZE,
                                            GL_TEXTURE_COORD_ARRAY_TYPE,
                                            GL_TEXTURE_COORD_ARRAY_STRIDE,
                                            GL_TEXTURE_COORD_ARRAY_BUFFER_BINDING,
                                            GL_TEXTURE_COORD_ARRAY_POINTER,
                                            "glTexCoordPointer",
                                            11};

} // namespace

void StateReader::addFixedArrays() {
    const auto add = [this](const FixedPointer& row) {
        const auto buffer = facts_.hasBuffers ? token(row.buffer) : 0;
        void* pointer = nullptr;
        glGetPointerv(row.pointer, &pointer);
        if (pointer || buffer != 0 || isFull_) {
            if (facts_.hasBuffers)
                to_.add("glBindBuffer", GL_ARRAY_BUFFER, capturedName(ObjectKind::Buffer, buffer));
            // The memory of a program is set by the draw that reads it.
            const BufferOffset offset = {reinterpret_cast<std::uintptr_t>(pointer)};
            if (row.size != 0)
                to_.add(row.function, token(row.size), token(row.type), integer(row.stride), offset);
            else if (row.type != 0)
                to_.add(row.function, token(row.type), integer(row.stride), offset);
            else
                to_.add(row.function, integer(row.stride), offset);
        }
        const bool isOn = isEnabled(row.array);
        addUnless(!isOn, isOn ? "glEnableClientState" : "glDisableClientState", row.array);
    };
    for (const FixedPointer& row : fixedPointers)
        if (facts_.version >= row.since)
            add(row);
    const std::uint32_t active = units_ > 1 ? token(GL_CLIENT_ACTIVE_TEXTURE) : 0;
    for (int unit = 0; unit < units_; ++unit) {
        const auto name = GL_TEXTURE0 + static_cast<std::uint32_t>(unit);
        if (units_ > 1)
            gl_.cgmClientActiveTexture(here, 0, name);
        addToUnit(units_ > 1 ? "glClientActiveTexture" : nullptr, name, [&] { add(coordinatePointer); });
    }
    if (units_ > 1) {
        gl_.cgmClientActiveTexture(here, 0, active);
        to_.add("glClientActiveTexture", active);
    }
}

void StateReader::addAttributes() {
    for (unsigned int i = 0; i < static_cast<unsigned int>(facts_.attributes); ++i) {
        const auto ask = [&](std::uint32_t name) {
            int value = 0;
            gl_.cgmGetVertexAttribiv(here, 0, i, name, &value);
            return value;
        };
        const auto buffer = static_cast<std::uint32_t>(ask(GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING));
        void* pointer = nullptr;
        gl_.cgmGetVertexAttribPointerv(here, 0, i, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        if (pointer || buffer != 0 || isFull_) {
            if (facts_.hasBuffers)
                to_.add("glBindBuffer", GL_ARRAY_BUFFER, capturedName(ObjectKind::Buffer, buffer));
            const BufferOffset offset = {reinterpret_cast<std::uintptr_t>(pointer)};
            if (isVersion(3, 0) && ask(GL_VERTEX_ATTRIB_ARRAY_INTEGER))
                to_.add("glVertexAttribIPointer", i, ask(GL_VERTEX_ATTRIB_ARRAY_SIZE),
                        ask(GL_VERTEX_ATTRIB_ARRAY_TYPE), ask(GL_VERTEX_ATTRIB_ARRAY_STRIDE), offset);
            else
                to_.add("glVertexAttribPointer", i, ask(GL_VERTEX_ATTRIB_ARRAY_SIZE),
                        ask(GL_VERTEX_ATTRIB_ARRAY_TYPE), ask(GL_VERTEX_ATTRIB_ARRAY_NORMALIZED),
                        ask(GL_VERTEX_ATTRIB_ARRAY_STRIDE), offset);
        }
        if (has("GL_ARB_instanced_arrays"))
            addUnless(ask(GL_VERTEX_ATTRIB_ARRAY_DIVISOR_ARB) == 0, "glVertexAttribDivisorARB", i,
                      ask(GL_VERTEX_ATTRIB_ARRAY_DIVISOR_ARB));
        const bool isOn = ask(GL_VERTEX_ATTRIB_ARRAY_ENABLED) != 0;
        addUnless(!isOn, isOn ? "glEnableVertexAttribArray" : "glDisableVertexAttribArray", i);
    }
    forgetErrors();
}

void StateReader::addCurrentArrays() {
    const bool hasObjects = isVersion(3, 0) || has("GL_ARB_vertex_array_object");
    const std::uint32_t object = hasObjects ? token(GL_VERTEX_ARRAY_BINDING) : 0;
    if (object == 0)
        return addArrays();
    // Those of the object were set with it; there are others without one, but for a core profile.
    const std::uint32_t buffer = token(GL_ARRAY_BUFFER_BINDING);
    if (!isCore_) {
        gl_.cgmBindVertexArray(here, 0, 0);
        addArrays();
        gl_.cgmBindVertexArray(here, 0, object);
    }
    to_.add("glBindVertexArray", capturedName(ObjectKind::VertexArray, object));
    to_.add("glBindBuffer", GL_ARRAY_BUFFER, capturedName(ObjectKind::Buffer, buffer));
}

void StateReader::addPixelBuffers() {
    if (!facts_.hasPixelBuffers)
        return;
    for (const auto& [target, binding] :
         {std::pair<std::uint32_t, std::uint32_t>(GL_PIXEL_PACK_BUFFER, GL_PIXEL_PACK_BUFFER_BINDING),
          {GL_PIXEL_UNPACK_BUFFER, GL_PIXEL_UNPACK_BUFFER_BINDING}})
        addUnless(token(binding) == 0, "glBindBuffer", target,
                  capturedName(ObjectKind::Buffer, token(binding)));
}

void StateReader::addArrays() {
    const std::uint32_t buffer = facts_.hasBuffers ? token(GL_ARRAY_BUFFER_BINDING) : 0;
    if (!isCore_)
        addFixedArrays();
    addAttributes();
    if (!facts_.hasBuffers)
        return;
    const std::uint32_t elements = token(GL_ELEMENT_ARRAY_BUFFER_BINDING);
    addUnless(elements == 0, "glBindBuffer", GL_ELEMENT_ARRAY_BUFFER,
              capturedName(ObjectKind::Buffer, elements));
    to_.add("glBindBuffer", GL_ARRAY_BUFFER, capturedName(ObjectKind::Buffer, buffer));
}

void StateReader::addBindings() {
    struct Binding {
        std::uint32_t target;
        int since;
        const char* extension;
    };
    constexpr Binding bindings[] = {
        {GL_TEXTURE_1D, 11, nullptr},
        {GL_TEXTURE_2D, 11, nullptr},
        {GL_TEXTURE_3D, 12, nullptr},
        {GL_TEXTURE_CUBE_MAP, 13, nullptr},
        {GL_TEXTURE_RECTANGLE_ARB, 99, "GL_ARB_texture_rectangle"},
        {GL_TEXTURE_1D_ARRAY, 30, "GL_EXT_texture_array"},
        {GL_TEXTURE_2D_ARRAY, 30, "GL_EXT_texture_array"},
        {GL_TEXTURE_BUFFER, 31, "GL_ARB_texture_buffer_object"},
    };
    int count = 1;
    if (isVersion(2, 0))
        count = integer(GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS);
    else if (isVersion(1, 3) || has("GL_ARB_multitexture"))
        count = integer(GL_MAX_TEXTURE_UNITS);
    const std::uint32_t active = count > 1 ? token(GL_ACTIVE_TEXTURE) : 0;
    std::uint32_t told = isCore_ ? std::uint32_t(GL_TEXTURE0) : active; // else the units were set
    for (int unit = 0; unit < count; ++unit) {
        const auto name = GL_TEXTURE0 + static_cast<std::uint32_t>(unit);
        if (count > 1)
            gl_.cgmActiveTexture(here, 0, name);
        for (const Binding& binding : bindings) {
            if (facts_.version < binding.since && !(binding.extension && has(binding.extension)))
                continue;
            const std::uint32_t its = token(textureBindingOf(binding.target));
            if (!isAnswered() || (its == 0 && !isFull_))
                continue;
            if (count > 1 && told != name)
                to_.add("glActiveTexture", told = name);
            to_.add("glBindTexture", binding.target, capturedName(ObjectKind::Texture, its));
        }
    }
    if (count > 1) {
        gl_.cgmActiveTexture(here, 0, active);
        if (told != active || isFull_ || isCore_)
            to_.add("glActiveTexture", active);
    }
    for (const auto& [target, extension] :
         {std::pair<std::uint32_t, const char*>(GL_VERTEX_PROGRAM_ARB, "GL_ARB_vertex_program"),
          {GL_FRAGMENT_PROGRAM_ARB, "GL_ARB_fragment_program"}}) {
        if (!has(extension))
            continue;
        int its = 0, size = 0;
        gl_.cgmGetProgramivARB(here, 0, target, GL_PROGRAM_BINDING_ARB, &its);
        addUnless(its == 0, "glBindProgramARB", target,
                  capturedName(ObjectKind::AssemblyProgram, static_cast<std::uint32_t>(its)));
        gl_.cgmGetProgramivARB(here, 0, target, GL_MAX_PROGRAM_ENV_PARAMETERS_ARB, &size);
        for (unsigned int i = 0; i < static_cast<unsigned int>(std::min(size, 4096)); ++i) {
            float values[4] = {};
            gl_.cgmGetProgramEnvParameterfvARB(here, 0, target, i, values);
            addUnless(values[0] == 0 && values[1] == 0 && values[2] == 0 && values[3] == 0,
                      "glProgramEnvParameter4fvARB", target, i, bytesOf(values, 4));
        }
        forgetErrors();
    }
    // Attribute 0 is the vertex itself.
    for (unsigned int i = isCore_ ? 0 : 1; i < static_cast<unsigned int>(facts_.attributes); ++i) {
        constexpr float plain[4] = {0, 0, 0, 1};
        float values[4] = {0, 0, 0, 1};
        gl_.cgmGetVertexAttribfv(here, 0, i, GL_CURRENT_VERTEX_ATTRIB, values);
        if (isAnswered())
            addUnless(std::equal(values, values + 4, plain), "glVertexAttrib4fv", i, bytesOf(values, 4));
    }
    if (facts_.hasFramebuffers) {
        const bool isDivided =
            isVersion(3, 0) || has("GL_ARB_framebuffer_object") || has("GL_EXT_framebuffer_blit");
        const bool isNew = isVersion(3, 0) || has("GL_ARB_framebuffer_object");
        const char* const bind = isNew ? "glBindFramebuffer" : "glBindFramebufferEXT";
        const std::uint32_t draw = token(GL_FRAMEBUFFER_BINDING);
        const std::uint32_t read = isDivided ? token(GL_READ_FRAMEBUFFER_BINDING) : draw;
        facts_.functions.bindFramebuffer(GL_FRAMEBUFFER, 0);
        addDrawBuffers(true);
        facts_.functions.bindFramebuffer(isDivided ? GL_DRAW_FRAMEBUFFER : GL_FRAMEBUFFER, draw);
        if (isDivided)
            facts_.functions.bindFramebuffer(GL_READ_FRAMEBUFFER, read);
        const std::uint64_t drawName = capturedName(ObjectKind::Framebuffer, draw),
                            readName = capturedName(ObjectKind::Framebuffer, read);
        if (drawName == readName) {
            addUnless(draw == 0, bind, GL_FRAMEBUFFER, drawName);
        } else {
            to_.add(bind, GL_DRAW_FRAMEBUFFER, drawName);
            to_.add(bind, GL_READ_FRAMEBUFFER, readName);
        }
        const std::uint32_t renderbuffer = token(GL_RENDERBUFFER_BINDING);
        addUnless(renderbuffer == 0, isNew ? "glBindRenderbuffer" : "glBindRenderbufferEXT", GL_RENDERBUFFER,
                  capturedName(ObjectKind::Renderbuffer, renderbuffer));
    } else {
        addDrawBuffers(true);
    }
    if (isVersion(2, 0)) {
        const std::uint32_t program = token(GL_CURRENT_PROGRAM);
        addUnless(program == 0, "glUseProgram", capturedName(ObjectKind::Program, program));
    }
    forgetErrors();
}

} // namespace ZLT::Capture
