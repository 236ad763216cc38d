#include "capture/CapturedContext.h"

#include <cstdio>
#include <cstring>

namespace ZLT::Capture {

std::size_t sizeOfType(unsigned int type) {
    switch (type) {
    case GL_BYTE:
    case GL_UNSIGNED_BYTE:
        return 1;
    case GL_SHORT:
    case GL_UNSIGNED_SHORT:
    case GL_HALF_FLOAT:
    case GL_2_BYTES:
        return 2;
    case GL_3_BYTES:
        return 3;
    case GL_INT:
    case GL_UNSIGNED_INT:
    case GL_FLOAT:
    case GL_FIXED:
    case GL_4_BYTES:
    case GL_INT_2_10_10_10_REV:
    case GL_UNSIGNED_INT_2_10_10_10_REV:
        return 4;
    case GL_DOUBLE:
        return 8;
    default:
        return 0;
    }
}

std::size_t ClientArray::elementSize() const {
    if (type == GL_INT_2_10_10_10_REV || type == GL_UNSIGNED_INT_2_10_10_10_REV)
        return 4;
    return sizeOfType(type) * static_cast<std::size_t>(size == GL_BGRA ? 4 : size);
}

void CapturedContext::learn() {
    isKnown = true;
    functions.load();
    const auto* const text = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    int major = 1, minor = 1;
    if (text && std::sscanf(text, "%d.%d", &major, &minor) == 2)
        version = 10 * major + minor;
    if (isVersion(3, 2)) {
        GLint profile = 0;
        glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
        isCore = (profile & GL_CONTEXT_CORE_PROFILE_BIT) != 0;
    }
    // Which a core profile refuses to say, with an error.
    const GLubyte* const names = isCore ? nullptr : glGetString(GL_EXTENSIONS);
    if (names)
        extensions_ = ' ' + std::string(reinterpret_cast<const char*>(names)) + ' ';
    if (extensions_.empty() && isVersion(3, 0) && functions.getStringi) {
        const int count = integer(GL_NUM_EXTENSIONS);
        for (int i = 0; i < count; ++i)
            if (const auto* const name = functions.getStringi(GL_EXTENSIONS, static_cast<GLuint>(i)))
                extensions_ += ' ' + std::string(reinterpret_cast<const char*>(name));
        extensions_ += ' ';
    }
    hasBuffers = functions.bindBuffer && (isVersion(1, 5) || has("GL_ARB_vertex_buffer_object"));
    hasPixelBuffers = functions.bindBuffer && (isVersion(2, 1) || has("GL_ARB_pixel_buffer_object") ||
                                               has("GL_EXT_pixel_buffer_object"));
    hasVolumes = isVersion(1, 2) || has("GL_EXT_texture3D");
    hasFramebuffers = functions.bindFramebuffer && (isVersion(3, 0) || has("GL_ARB_framebuffer_object") ||
                                                    has("GL_EXT_framebuffer_object"));
    if (!isCore && functions.clientActiveTexture && (isVersion(1, 3) || has("GL_ARB_multitexture")))
        textureUnits = integer(isVersion(2, 0) ? GL_MAX_TEXTURE_COORDS : GL_MAX_TEXTURE_UNITS);
    if (functions.getVertexAttribiv &&
        (isVersion(2, 0) || has("GL_ARB_vertex_program") || has("GL_ARB_vertex_shader")))
        attributes = integer(GL_MAX_VERTEX_ATTRIBS);
}

bool CapturedContext::has(const char* extension) const {
    return extensions_.find(' ' + std::string(extension) + ' ') != std::string::npos;
}

int CapturedContext::integer(unsigned int name) const {
    GLint values[16] = {}; // whatever `name` is, and whether it is known or not
    glGetIntegerv(name, values);
    return values[0];
}

unsigned int CapturedContext::elementBuffer() const {
    return hasBuffers && mayAsk() ? static_cast<unsigned int>(integer(GL_ELEMENT_ARRAY_BUFFER_BINDING)) : 0;
}

namespace {

// An array of the fixed functions: what to ask for it by.
struct FixedArray {
    ArrayKind kind;
    unsigned int array, size, type, stride, pointer, buffer;
    int fixedSize; // where no size can be asked for
    int since;     // version
    const char* extension;
};
constexpr FixedArray fixedArrays[] = {
    {ArrayKind::Vertex, GL_VERTEX_ARRAY, GL_VERTEX_ARRAY_SIZE, GL_VERTEX_ARRAY_TYPE, GL_VERTEX_ARRAY_STRIDE,
     GL_VERTEX_ARRAY_POINTER, GL_VERTEX_ARRAY_BUFFER_BINDING, 0, 11, nullptr},
    {ArrayKind::Normal, GL_NORMAL_ARRAY, 0, GL_NORMAL_ARRAY_TYPE, GL_NORMAL_ARRAY_STRIDE,
     GL_NORMAL_ARRAY_POINTER, GL_NORMAL_ARRAY_BUFFER_BINDING, 3, 11, nullptr},
    {ArrayKind::Color, GL_COLOR_ARRAY, GL_COLOR_ARRAY_SIZE, GL_COLOR_ARRAY_TYPE, GL_COLOR_ARRAY_STRIDE,
     GL_COLOR_ARRAY_POINTER, GL_COLOR_ARRAY_BUFFER_BINDING, 0, 11, nullptr},
    {ArrayKind::Index, GL_INDEX_ARRAY, 0, GL_INDEX_ARRAY_TYPE, GL_INDEX_ARRAY_STRIDE, GL_INDEX_ARRAY_POINTER,
     GL_INDEX_ARRAY_BUFFER_BINDING, 1, 11, nullptr},
    {ArrayKind::EdgeFlag, GL_EDGE_FLAG_ARRAY, 0, 0, GL_EDGE_FLAG_ARRAY_STRIDE, GL_EDGE_FLAG_ARRAY_POINTER,
     GL_EDGE_FLAG_ARRAY_BUFFER_BINDING, 1, 11, nullptr},
    {ArrayKind::SecondaryColor, GL_SECONDARY_COLOR_ARRAY, GL_SECONDARY_COLOR_ARRAY_SIZE,
     GL_SECONDARY_COLOR_ARRAY_TYPE, GL_SECONDARY_COLOR_ARRAY_STRIDE, GL_SECONDARY_COLOR_ARRAY_POINTER,
     GL_SECONDARY_COLOR_ARRAY_BUFFER_BINDING, 0, 14, "GL_EXT_secondary_color"},
    {ArrayKind::FogCoord, GL_FOG_COORD_ARRAY, 0, GL_FOG_COORD_ARRAY_TYPE, GL_FOG_COORD_ARRAY_STRIDE,
     GL_FOG_COORD_ARRAY_POINTER, GL_FOG_COORD_ARRAY_BUFFER_BINDING, 1, 14, "GL_EXT_fog_coord"},
    {ArrayKind::Weight, GL_WEIGHT_ARRAY_ARB, GL_WEIGHT_ARRAY_SIZE_ARB, GL_WEIGHT_ARRAY_TYPE_ARB,
     GL_WEIGHT_ARRAY_STRIDE_ARB, GL_WEIGHT_ARRAY_POINTER_ARB, GL_WEIGHT_ARRAY_BUFFER_BINDING, 0, 99,
     "GL_ARB_vertex_blend"},
    {ArrayKind::MatrixIndex, GL_MATRIX_INDEX_ARRAY_ARB, GL_MATRIX_INDEX_ARRAY_SIZE_ARB,
     GL_MATRIX_INDEX_ARRAY_TYPE_ARB, GL_MATRIX_INDEX_ARRAY_STRIDE_ARB, GL_MATRIX_INDEX_ARRAY_POINTER_ARB, 0,
     0, 99, "GL_ARB_matrix_palette"},
    {ArrayKind::Tangent, GL_TANGENT_ARRAY_EXT, 0, GL_TANGENT_ARRAY_TYPE_EXT, GL_TANGENT_ARRAY_STRIDE_EXT,
     GL_TANGENT_ARRAY_POINTER_EXT, 0, 3, 99, "GL_EXT_coordinate_frame"},
    {ArrayKind::Binormal, GL_BINORMAL_ARRAY_EXT, 0, GL_BINORMAL_ARRAY_TYPE_EXT, GL_BINORMAL_ARRAY_STRIDE_EXT,
     GL_BINORMAL_ARRAY_POINTER_EXT, 0, 3, 99, "GL_EXT_coordinate_frame"},
    {ArrayKind::VertexWeight, GL_VERTEX_WEIGHT_ARRAY_EXT, GL_VERTEX_WEIGHT_ARRAY_SIZE_EXT,
     GL_VERTEX_WEIGHT_ARRAY_TYPE_EXT, GL_VERTEX_WEIGHT_ARRAY_STRIDE_EXT, GL_VERTEX_WEIGHT_ARRAY_POINTER_EXT,
     0, 0, 99, "GL_EXT_vertex_weighting"},
    {ArrayKind::ReplacementCode, GL_REPLACEMENT_CODE_ARRAY_SUN, 0, GL_REPLACEMENT_CODE_ARRAY_TYPE_SUN,
     GL_REPLACEMENT_CODE_ARRAY_STRIDE_SUN, GL_REPLACEMENT_CODE_ARRAY_POINTER_SUN, 0, 1, 99,
     "GL_SUN_triangle_list"},
    {ArrayKind::Element, GL_ELEMENT_ARRAY_ATI, 0, GL_ELEMENT_ARRAY_TYPE_ATI, 0, GL_ELEMENT_ARRAY_POINTER_ATI,
     0, 1, 99, "GL_ATI_element_array"},
    {ArrayKind::Element, GL_ELEMENT_ARRAY_APPLE, 0, GL_ELEMENT_ARRAY_TYPE_APPLE, 0,
     GL_ELEMENT_ARRAY_POINTER_APPLE, 0, 1, 99, "GL_APPLE_element_array"},
};

const char* pointerOf(unsigned int name) {
    void* pointer = nullptr;
    glGetPointerv(name, &pointer);
    return static_cast<const char*>(pointer);
}

} // namespace

void CapturedContext::add(const ClientArray& array) {
    if (listsEnabled)
        enabled.push_back(array);
    if (array.pointer && array.buffer == 0)
        arrays.push_back(array);
}

void CapturedContext::addFixedArrays() {
    const auto addRow = [this](const FixedArray& row, std::uint32_t unit) {
        if (!glIsEnabled(row.array))
            return;
        ClientArray array;
        if (hasBuffers && row.buffer != 0)
            array.buffer = static_cast<std::uint32_t>(integer(row.buffer));
        hasBufferArrays = hasBufferArrays || array.buffer != 0;
        if (array.buffer != 0 && !listsEnabled)
            return;
        array.kind = row.kind;
        array.index = unit;
        array.size = row.size != 0 ? integer(row.size) : row.fixedSize;
        array.type = row.type != 0 ? static_cast<std::uint32_t>(integer(row.type)) : GL_UNSIGNED_BYTE;
        array.stride = row.stride != 0 ? integer(row.stride) : 0;
        array.pointer = pointerOf(row.pointer);
        add(array);
    };
    for (const FixedArray& row : fixedArrays)
        if (version >= row.since || (row.extension && has(row.extension)))
            addRow(row, 0);
    constexpr FixedArray texCoord = {ArrayKind::TexCoord,
                                     GL_TEXTURE_COORD_ARRAY,
                                     GL_TEXTURE_COORD_ARRAY_SIZE,
                                     GL_TEXTURE_COORD_ARRAY_TYPE,
                                     GL_TEXTURE_COORD_ARRAY_STRIDE,
                                     GL_TEXTURE_COORD_ARRAY_POINTER,
                                     GL_TEXTURE_COORD_ARRAY_BUFFER_BINDING,
                                     0,
                                     11,
                                     nullptr};
    if (textureUnits <= 1) {
        addRow(texCoord, 0);
        return;
    }
    const auto active = static_cast<unsigned int>(integer(GL_CLIENT_ACTIVE_TEXTURE));
    for (int unit = 0; unit < textureUnits; ++unit) {
        functions.clientActiveTexture(GL_TEXTURE0 + static_cast<unsigned int>(unit));
        addRow(texCoord, static_cast<std::uint32_t>(unit));
    }
    functions.clientActiveTexture(active);
}

void CapturedContext::addAttributes() {
    const auto ask = [this](std::uint32_t index, unsigned int name) {
        GLint values[4] = {};
        functions.getVertexAttribiv(index, name, values);
        return values[0];
    };
    for (std::uint32_t index = 0; index < static_cast<std::uint32_t>(attributes); ++index) {
        if (!ask(index, GL_VERTEX_ATTRIB_ARRAY_ENABLED))
            continue;
        ClientArray array;
        if (hasBuffers)
            array.buffer = static_cast<std::uint32_t>(ask(index, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING));
        hasBufferArrays = hasBufferArrays || array.buffer != 0;
        if (array.buffer != 0 && !listsEnabled)
            continue;
        array.kind = ArrayKind::Attribute;
        array.index = index;
        array.size = ask(index, GL_VERTEX_ATTRIB_ARRAY_SIZE);
        array.type = static_cast<std::uint32_t>(ask(index, GL_VERTEX_ATTRIB_ARRAY_TYPE));
        array.stride = ask(index, GL_VERTEX_ATTRIB_ARRAY_STRIDE);
        if (ask(index, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED))
            array.flags |= arrayIsNormalized;
        if (isVersion(3, 0) && ask(index, GL_VERTEX_ATTRIB_ARRAY_INTEGER))
            array.flags |= arrayIsInteger;
        if (isVersion(3, 3) || has("GL_ARB_instanced_arrays"))
            array.divisor = static_cast<std::uint32_t>(ask(index, GL_VERTEX_ATTRIB_ARRAY_DIVISOR));
        void* pointer = nullptr;
        functions.getVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        array.pointer = static_cast<const char*>(pointer);
        add(array);
    }
}

void CapturedContext::learnArrays() {
    if (areArraysKnown || !mayAsk())
        return;
    arrays.clear();
    enabled.clear();
    hasBufferArrays = false;
    if (!isCore)
        addFixedArrays();
    // A core profile has no arrays in the client's memory at all.
    if ((!isCore || listsEnabled) && functions.getVertexAttribiv && functions.getVertexAttribPointerv)
        addAttributes();
    areArraysKnown = true;
}

} // namespace ZLT::Capture
