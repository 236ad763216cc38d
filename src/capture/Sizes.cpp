#include "capture/Sizes.h"

#include "capture/CaptureState.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

namespace ZLT::Capture {

namespace {

struct ValueCount {
    unsigned int name;
    std::uint64_t count;
};
// The parameters that have more than one value.
constexpr ValueCount valueCounts[] = {
    {GL_CURRENT_COLOR, 4},
    {GL_CURRENT_NORMAL, 3},
    {GL_CURRENT_TEXTURE_COORDS, 4},
    {GL_CURRENT_RASTER_COLOR, 4},
    {GL_CURRENT_RASTER_TEXTURE_COORDS, 4},
    {GL_CURRENT_RASTER_POSITION, 4},
    {GL_CURRENT_RASTER_SECONDARY_COLOR, 4},
    {GL_CURRENT_SECONDARY_COLOR, 4},
    {GL_CURRENT_VERTEX_ATTRIB, 4},
    {GL_CURRENT_TANGENT_EXT, 3},
    {GL_CURRENT_BINORMAL_EXT, 3},
    {GL_POINT_SIZE_RANGE, 2},
    {GL_ALIASED_POINT_SIZE_RANGE, 2},
    {GL_LINE_WIDTH_RANGE, 2},
    {GL_ALIASED_LINE_WIDTH_RANGE, 2},
    {GL_POLYGON_MODE, 2},
    {GL_LIGHT_MODEL_AMBIENT, 4},
    {GL_FOG_COLOR, 4},
    {GL_DEPTH_RANGE, 2},
    {GL_DEPTH_BOUNDS_EXT, 2},
    {GL_ACCUM_CLEAR_VALUE, 4},
    {GL_VIEWPORT, 4},
    {GL_MAX_VIEWPORT_DIMS, 2},
    {GL_SCISSOR_BOX, 4},
    {GL_COLOR_CLEAR_VALUE, 4},
    {GL_COLOR_WRITEMASK, 4},
    {GL_BLEND_COLOR, 4},
    {GL_MAP1_GRID_DOMAIN, 2},
    {GL_MAP2_GRID_DOMAIN, 4},
    {GL_MAP2_GRID_SEGMENTS, 2},
    {GL_MODELVIEW_MATRIX, 16},
    {GL_PROJECTION_MATRIX, 16},
    {GL_TEXTURE_MATRIX, 16},
    {GL_COLOR_MATRIX, 16},
    {GL_TRANSPOSE_MODELVIEW_MATRIX, 16},
    {GL_TRANSPOSE_PROJECTION_MATRIX, 16},
    {GL_TRANSPOSE_TEXTURE_MATRIX, 16},
    {GL_TRANSPOSE_COLOR_MATRIX, 16},
    {GL_MODELVIEW1_ARB, 16},
    {GL_CURRENT_MATRIX_ARB, 16},
    {GL_TRANSPOSE_CURRENT_MATRIX_ARB, 16},
    {GL_MATRIX_PALETTE_ARB, 16},
    {GL_AMBIENT, 4},
    {GL_DIFFUSE, 4},
    {GL_SPECULAR, 4},
    {GL_EMISSION, 4},
    {GL_AMBIENT_AND_DIFFUSE, 4},
    {GL_COLOR_INDEXES, 3},
    {GL_POSITION, 4},
    {GL_SPOT_DIRECTION, 3},
    {GL_FRAGMENT_LIGHT_MODEL_AMBIENT_SGIX, 4},
    {GL_TEXTURE_ENV_COLOR, 4},
    {GL_TEXTURE_BORDER_COLOR, 4},
    {GL_TEXTURE_SWIZZLE_RGBA_EXT, 4},
    {GL_POST_TEXTURE_FILTER_BIAS_SGIX, 4},
    {GL_POST_TEXTURE_FILTER_SCALE_SGIX, 4},
    {GL_POST_TEXTURE_FILTER_BIAS_RANGE_SGIX, 2},
    {GL_POST_TEXTURE_FILTER_SCALE_RANGE_SGIX, 2},
    {GL_TEXTURE_CLIPMAP_CENTER_SGIX, 2},
    {GL_TEXTURE_CLIPMAP_OFFSET_SGIX, 2},
    {GL_TEXTURE_CLIPMAP_VIRTUAL_DEPTH_SGIX, 3},
    {GL_OBJECT_PLANE, 4},
    {GL_EYE_PLANE, 4},
    {GL_OBJECT_POINT_SGIS, 4},
    {GL_EYE_POINT_SGIS, 4},
    {GL_OBJECT_LINE_SGIS, 6},
    {GL_EYE_LINE_SGIS, 6},
    {GL_REFERENCE_PLANE_EQUATION_SGIX, 4},
    {GL_POINT_DISTANCE_ATTENUATION, 3},
    {GL_COLOR_TABLE_SCALE, 4},
    {GL_COLOR_TABLE_BIAS, 4},
    {GL_CONVOLUTION_BORDER_COLOR, 4},
    {GL_CONVOLUTION_FILTER_SCALE, 4},
    {GL_CONVOLUTION_FILTER_BIAS, 4},
    {GL_CONSTANT_COLOR0_NV, 4},
    {GL_CONSTANT_COLOR1_NV, 4},
    {GL_BUMP_ROT_MATRIX_ATI, 4},
    {GL_CULL_VERTEX_EYE_POSITION_EXT, 4},
    {GL_CULL_VERTEX_OBJECT_POSITION_EXT, 4},
    {GL_OFFSET_TEXTURE_MATRIX_NV, 4},
    {GL_TEXTURE_FILTER4_SIZE_SGIS, 1},
    {GL_SPRITE_AXIS_SGIX, 3},
    {GL_SPRITE_TRANSLATION_SGIX, 3},
    {GL_PROGRAM_PARAMETER_NV, 4},
    {GL_RGBA_SIGNED_COMPONENTS_EXT, 4},
    {GL_VARIABLE_A_NV, 1},
};

CapturedContext& context() { return capturedContext(); }

int ask(unsigned int name) { return context().mayAsk() ? context().integer(name) : 0; }

std::uint64_t positive(long long value) { return value > 0 ? static_cast<std::uint64_t>(value) : 0; }

// The parameters by which pixels lie in memory.
struct PixelStore {
    std::uint64_t alignment, rowLength, skipRows, skipPixels, imageHeight = 0, skipImages = 0;

    PixelStore(bool isUnpack, bool isVolume) {
        const auto parameter = [&](unsigned int unpack, unsigned int pack) {
            return positive(ask(isUnpack ? unpack : pack));
        };
        alignment = std::max<std::uint64_t>(parameter(GL_UNPACK_ALIGNMENT, GL_PACK_ALIGNMENT), 1);
        rowLength = parameter(GL_UNPACK_ROW_LENGTH, GL_PACK_ROW_LENGTH);
        skipRows = parameter(GL_UNPACK_SKIP_ROWS, GL_PACK_SKIP_ROWS);
        skipPixels = parameter(GL_UNPACK_SKIP_PIXELS, GL_PACK_SKIP_PIXELS);
        if (isVolume && context().hasVolumes) {
            imageHeight = parameter(GL_UNPACK_IMAGE_HEIGHT, GL_PACK_IMAGE_HEIGHT);
            skipImages = parameter(GL_UNPACK_SKIP_IMAGES, GL_PACK_SKIP_IMAGES);
        }
    }
};

bool isBufferBound(unsigned int binding) { return context().hasPixelBuffers && ask(binding) != 0; }

ImageBytes layOut(const PixelStore& store, unsigned int format, unsigned int type, std::uint64_t width,
                  std::uint64_t height, std::uint64_t depth) {
    ImageBytes bytes;
    const std::uint64_t bits = bitsOfPixel(format, type);
    if (bits == 0 || width == 0 || height == 0 || depth == 0)
        return bytes;
    const std::uint64_t rowPixels = store.rowLength != 0 ? store.rowLength : width;
    const std::uint64_t row =
        ((rowPixels * bits + 7) / 8 + store.alignment - 1) / store.alignment * store.alignment;
    const std::uint64_t slice = row * (store.imageHeight != 0 ? store.imageHeight : height);
    // A bitmap begins and ends inside of bytes.
    const std::uint64_t firstBit = store.skipPixels * bits;
    bytes.skipped = store.skipImages * slice + store.skipRows * row + firstBit / 8;
    bytes.size = (depth - 1) * slice + (height - 1) * row + (firstBit % 8 + width * bits + 7) / 8;
    return bytes;
}

ImageBytes read(unsigned int format, unsigned int type, int width, int height, int depth, bool isVolume) {
    ImageBytes bytes;
    if (isBufferBound(GL_PIXEL_UNPACK_BUFFER_BINDING))
        bytes.isInBuffer = true;
    else
        bytes = layOut(PixelStore(true, isVolume), format, type, positive(width), positive(height),
                       positive(depth));
    return bytes;
}

ImageBytes write(unsigned int format, unsigned int type, int width, int height, int depth, bool isVolume) {
    ImageBytes bytes;
    if (isBufferBound(GL_PIXEL_PACK_BUFFER_BINDING))
        bytes.isInBuffer = true;
    else
        bytes = layOut(PixelStore(false, isVolume), format, type, positive(width), positive(height),
                       positive(depth));
    return bytes;
}

ImageBytes writePlain(long long size) {
    ImageBytes bytes;
    bytes.isInBuffer = isBufferBound(GL_PIXEL_PACK_BUFFER_BINDING);
    bytes.size = bytes.isInBuffer ? 0 : positive(size);
    return bytes;
}

// An image of a texture's level; `parameter` asks for one of its parameters.
template <class Parameter>
ImageBytes writeLevel(unsigned int target, unsigned int format, unsigned int type,
                      const Parameter& parameter) {
    if (!context().mayAsk())
        return {};
    const bool isVolume = target == GL_TEXTURE_3D || target == GL_TEXTURE_2D_ARRAY;
    return write(format, type, parameter(GL_TEXTURE_WIDTH),
                 target == GL_TEXTURE_1D ? 1 : parameter(GL_TEXTURE_HEIGHT),
                 isVolume ? parameter(GL_TEXTURE_DEPTH) : 1, isVolume);
}

auto levelParameter(unsigned int target, int level) {
    return [=](unsigned int name) {
        GLint value = 0;
        glGetTexLevelParameteriv(target, level, name, &value);
        return value;
    };
}

// One of a family of functions that ask for a parameter, where the driver has it.
template <class Function, class... Arguments>
int parameterBy(Function function, Arguments... arguments) {
    GLint values[16] = {};
    if (function && context().mayAsk())
        function(arguments..., values);
    return values[0];
}

std::uint64_t mapComponents(unsigned int target) {
    switch (target) {
    case GL_MAP1_VERTEX_3:
    case GL_MAP2_VERTEX_3:
    case GL_MAP1_NORMAL:
    case GL_MAP2_NORMAL:
    case GL_MAP1_TEXTURE_COORD_3:
    case GL_MAP2_TEXTURE_COORD_3:
        return 3;
    case GL_MAP1_INDEX:
    case GL_MAP2_INDEX:
    case GL_MAP1_TEXTURE_COORD_1:
    case GL_MAP2_TEXTURE_COORD_1:
        return 1;
    case GL_MAP1_TEXTURE_COORD_2:
    case GL_MAP2_TEXTURE_COORD_2:
        return 2;
    case GL_MAP1_VERTEX_4:
    case GL_MAP2_VERTEX_4:
    case GL_MAP1_COLOR_4:
    case GL_MAP2_COLOR_4:
    case GL_MAP1_TEXTURE_COORD_4:
    case GL_MAP2_TEXTURE_COORD_4:
        return 4;
    default:
        // The attributes of programs have four each.
        const bool isAttribute =
            (target >= GL_MAP1_VERTEX_ATTRIB0_4_NV && target <= GL_MAP1_VERTEX_ATTRIB15_4_NV) ||
            (target >= GL_MAP2_VERTEX_ATTRIB0_4_NV && target <= GL_MAP2_VERTEX_ATTRIB15_4_NV);
        return isAttribute ? 4 : 0;
    }
}

bool hasTwoDimensions(unsigned int target) {
    return (target >= GL_MAP2_COLOR_4 && target <= GL_MAP2_VERTEX_4) ||
           (target >= GL_MAP2_VERTEX_ATTRIB0_4_NV && target <= GL_MAP2_VERTEX_ATTRIB15_4_NV);
}

} // namespace

std::uint64_t componentsOf(unsigned int format) {
    switch (format) {
    case GL_COLOR_INDEX:
    case GL_STENCIL_INDEX:
    case GL_DEPTH_COMPONENT:
    case GL_RED:
    case GL_GREEN:
    case GL_BLUE:
    case GL_ALPHA:
    case GL_LUMINANCE:
    case GL_INTENSITY:
    case GL_RED_INTEGER:
    case GL_GREEN_INTEGER:
    case GL_BLUE_INTEGER:
    case GL_ALPHA_INTEGER_EXT:
    case GL_LUMINANCE_INTEGER_EXT:
    case GL_YCBCR_MESA: // two bytes, by its type
    case GL_DEPTH_STENCIL:
        return 1;
    case GL_RG:
    case GL_RG_INTEGER:
    case GL_LUMINANCE_ALPHA:
    case GL_LUMINANCE_ALPHA_INTEGER_EXT:
    case GL_DUDV_ATI:
    case GL_HILO_NV:
    case GL_DSDT_NV:
    case GL_422_EXT:
    case GL_422_REV_EXT:
    case GL_422_AVERAGE_EXT:
    case GL_422_REV_AVERAGE_EXT:
        return 2;
    case GL_RGB:
    case GL_BGR:
    case GL_RGB_INTEGER:
    case GL_BGR_INTEGER:
    case GL_DSDT_MAG_NV:
        return 3;
    case GL_RGBA:
    case GL_BGRA:
    case GL_ABGR_EXT:
    case GL_CMYK_EXT:
    case GL_RGBA_INTEGER:
    case GL_BGRA_INTEGER:
    case GL_DSDT_MAG_VIB_NV:
        return 4;
    case GL_CMYKA_EXT:
        return 5;
    default:
        return 0;
    }
}

std::uint64_t bitsOfPixel(unsigned int format, unsigned int type) {
    switch (type) {
    case GL_BITMAP:
        return componentsOf(format) == 1 ? 1 : 0;
    case GL_UNSIGNED_BYTE_3_3_2:
    case GL_UNSIGNED_BYTE_2_3_3_REV:
        return 8;
    case GL_UNSIGNED_SHORT_5_6_5:
    case GL_UNSIGNED_SHORT_5_6_5_REV:
    case GL_UNSIGNED_SHORT_4_4_4_4:
    case GL_UNSIGNED_SHORT_4_4_4_4_REV:
    case GL_UNSIGNED_SHORT_5_5_5_1:
    case GL_UNSIGNED_SHORT_1_5_5_5_REV:
    case GL_UNSIGNED_SHORT_8_8_MESA:
    case GL_UNSIGNED_SHORT_8_8_REV_MESA:
        return 16;
    case GL_UNSIGNED_INT_8_8_8_8:
    case GL_UNSIGNED_INT_8_8_8_8_REV:
    case GL_UNSIGNED_INT_10_10_10_2:
    case GL_UNSIGNED_INT_2_10_10_10_REV:
    case GL_UNSIGNED_INT_10F_11F_11F_REV:
    case GL_UNSIGNED_INT_5_9_9_9_REV:
    case GL_UNSIGNED_INT_24_8:
    case GL_UNSIGNED_INT_S8_S8_8_8_NV:
    case GL_UNSIGNED_INT_8_8_S8_S8_REV_NV:
        return 32;
    case GL_FLOAT_32_UNSIGNED_INT_24_8_REV:
        return 64;
    default:
        return componentsOf(format) * sizeOfType(type) * 8;
    }
}

namespace Sizes {

std::uint64_t values(unsigned int pname) {
    for (const ValueCount& row : valueCounts)
        if (row.name == pname)
            return row.count;
    if (pname >= GL_MODELVIEW2_ARB && pname <= GL_MODELVIEW31_ARB)
        return 16;
    if (pname == GL_COMPRESSED_TEXTURE_FORMATS)
        return positive(ask(GL_NUM_COMPRESSED_TEXTURE_FORMATS));
    if (pname == GL_PROGRAM_BINARY_FORMATS)
        return positive(ask(GL_NUM_PROGRAM_BINARY_FORMATS));
    if (pname == GL_SHADER_BINARY_FORMATS)
        return positive(ask(GL_NUM_SHADER_BINARY_FORMATS));
    if (pname == GL_BUMP_TEX_UNITS_ATI)
        return positive(ask(GL_BUMP_NUM_TEX_UNITS_ATI));
    return 1;
}

std::uint64_t indexedValues(unsigned int target) { return values(target); }

std::uint64_t clearValues(unsigned int buffer) { return buffer == GL_COLOR ? 4 : 1; }

std::uint64_t lists(int count, unsigned int type) { return positive(count) * sizeOfType(type); }

std::uint64_t modes(int count, int stride) {
    return count > 0 ? positive(count - 1) * positive(stride) / sizeof(unsigned int) + 1 : 0;
}

std::uint64_t mapPoints(unsigned int target, int stride, int order) {
    const std::uint64_t components = mapComponents(target);
    return components == 0 || order <= 0 ? 0 : positive(order - 1) * positive(stride) + components;
}

std::uint64_t mapPoints(unsigned int target, int ustride, int uorder, int vstride, int vorder) {
    const std::uint64_t components = mapComponents(target);
    if (components == 0 || uorder <= 0 || vorder <= 0)
        return 0;
    return positive(uorder - 1) * positive(ustride) + positive(vorder - 1) * positive(vstride) + components;
}

std::uint64_t mapValues(unsigned int target, unsigned int query) {
    const bool isTwo = hasTwoDimensions(target);
    if (query == GL_ORDER)
        return isTwo ? 2 : 1;
    if (query == GL_DOMAIN)
        return isTwo ? 4 : 2;
    if (query != GL_COEFF || !context().mayAsk() || mapComponents(target) == 0)
        return 0;
    GLint order[2] = {0, 1};
    glGetMapiv(target, GL_ORDER, order);
    return mapComponents(target) * positive(order[0]) * (isTwo ? positive(order[1]) : 1);
}

std::uint64_t mapParameterValues(unsigned int, unsigned int pname) {
    return pname == GL_MAP_TESSELLATION_NV ? 2 : 1;
}

std::uint64_t controlPoints(unsigned int, unsigned int type, int ustride, int vstride, int uorder,
                            int vorder) {
    if (uorder <= 0 || vorder <= 0)
        return 0;
    return positive(uorder - 1) * positive(ustride) + positive(vorder - 1) * positive(vstride) +
           4 * sizeOfType(type);
}

std::uint64_t controlPoints(unsigned int target, unsigned int index, unsigned int type, int ustride,
                            int vstride) {
    const auto order = [&](unsigned int name) {
        GLint value = 0;
        if (context().functions.getMapParameterivNV && context().mayAsk())
            context().functions.getMapParameterivNV(target, name, &value);
        return value;
    };
    (void)index; // all attributes of a map have its orders
    return controlPoints(target, type, ustride, vstride, order(GL_MAP_ATTRIB_U_ORDER_NV),
                         order(GL_MAP_ATTRIB_V_ORDER_NV));
}

ImageBytes image(unsigned int format, unsigned int type, int width, int height, int depth) {
    return read(format, type, width, height, depth, false);
}

ImageBytes volume(unsigned int format, unsigned int type, int width, int height, int depth) {
    return read(format, type, width, height, depth, true);
}

ImageBytes unpacked(long long size) {
    ImageBytes bytes;
    bytes.isInBuffer = isBufferBound(GL_PIXEL_UNPACK_BUFFER_BINDING);
    bytes.size = bytes.isInBuffer ? 0 : positive(size);
    return bytes;
}

ImageBytes packed(unsigned int format, unsigned int type, int width, int height) {
    return write(format, type, width, height, 1, false);
}

ImageBytes textureImage(unsigned int target, int level, unsigned int format, unsigned int type) {
    return writeLevel(target, format, type, levelParameter(target, level));
}

ImageBytes multiTextureImage(unsigned int unit, unsigned int target, int level, unsigned int format,
                             unsigned int type) {
    return writeLevel(target, format, type, [=](unsigned int name) {
        return parameterBy(context().functions.getMultiTexLevelParameterivEXT, unit, target, level, name);
    });
}

ImageBytes namedTextureImage(unsigned int texture, unsigned int target, int level, unsigned int format,
                             unsigned int type) {
    return writeLevel(target, format, type, [=](unsigned int name) {
        return parameterBy(context().functions.getTextureLevelParameterivEXT, texture, target, level, name);
    });
}

ImageBytes compressedImage(unsigned int target, int level) {
    return writePlain(context().mayAsk() ? levelParameter(target, level)(GL_TEXTURE_COMPRESSED_IMAGE_SIZE)
                                         : 0);
}

ImageBytes compressedMultiImage(unsigned int unit, unsigned int target, int level) {
    return writePlain(parameterBy(context().functions.getMultiTexLevelParameterivEXT, unit, target, level,
                                  static_cast<unsigned int>(GL_TEXTURE_COMPRESSED_IMAGE_SIZE)));
}

ImageBytes compressedTextureImage(unsigned int texture, unsigned int target, int level) {
    return writePlain(parameterBy(context().functions.getTextureLevelParameterivEXT, texture, target, level,
                                  static_cast<unsigned int>(GL_TEXTURE_COMPRESSED_IMAGE_SIZE)));
}

ImageBytes colorTable(unsigned int target, unsigned int format, unsigned int type) {
    const int width = parameterBy(context().functions.getColorTableParameteriv, target,
                                  static_cast<unsigned int>(GL_COLOR_TABLE_WIDTH));
    return write(format, type, width, 1, 1, false);
}

ImageBytes convolution(unsigned int target, unsigned int format, unsigned int type) {
    const auto size = [&](unsigned int name) {
        return parameterBy(context().functions.getConvolutionParameteriv, target, name);
    };
    return write(format, type, size(GL_CONVOLUTION_WIDTH),
                 target == GL_CONVOLUTION_1D ? 1 : size(GL_CONVOLUTION_HEIGHT), 1, false);
}

ImageBytes histogram(unsigned int target, unsigned int format, unsigned int type) {
    const int width = parameterBy(context().functions.getHistogramParameteriv, target,
                                  static_cast<unsigned int>(GL_HISTOGRAM_WIDTH));
    return write(format, type, width, 1, 1, false);
}

ImageBytes separableRow(unsigned int target, unsigned int format, unsigned int type) {
    const int width = parameterBy(context().functions.getConvolutionParameteriv, target,
                                  static_cast<unsigned int>(GL_CONVOLUTION_WIDTH));
    return write(format, type, width, 1, 1, false);
}

ImageBytes separableColumn(unsigned int target, unsigned int format, unsigned int type) {
    const int height = parameterBy(context().functions.getConvolutionParameteriv, target,
                                   static_cast<unsigned int>(GL_CONVOLUTION_HEIGHT));
    return write(format, type, height, 1, 1, false);
}

ImageBytes pixelMap(unsigned int map, int valueSize) {
    // The sizes stand in the order of the maps.
    const int size = map >= GL_PIXEL_MAP_I_TO_I && map <= GL_PIXEL_MAP_A_TO_A
                         ? ask(GL_PIXEL_MAP_I_TO_I_SIZE + (map - GL_PIXEL_MAP_I_TO_I))
                         : 0;
    return writePlain(static_cast<long long>(size) * valueSize);
}

std::uint64_t uniformValues(unsigned int program, int location) {
    const DriverFunctions& functions = context().functions;
    if (!context().mayAsk() || !functions.getActiveUniform || !functions.getUniformLocation ||
        !functions.getProgramiv)
        return 0;
    GLint count = 0;
    functions.getProgramiv(program, GL_ACTIVE_UNIFORMS, &count);
    for (GLint i = 0; i < count; ++i) {
        char name[512] = "";
        GLsizei length = 0;
        GLint size = 0;
        GLenum type = 0;
        functions.getActiveUniform(program, static_cast<GLuint>(i), sizeof name, &length, &size, &type, name);
        // The elements of an array follow its first one, which is what is found by the name.
        const GLint first = functions.getUniformLocation(program, name);
        if (location < first || location >= first + size)
            continue;
        switch (type) {
        case GL_FLOAT_VEC2:
        case GL_INT_VEC2:
        case GL_BOOL_VEC2:
        case GL_UNSIGNED_INT_VEC2:
            return 2;
        case GL_FLOAT_VEC3:
        case GL_INT_VEC3:
        case GL_BOOL_VEC3:
        case GL_UNSIGNED_INT_VEC3:
            return 3;
        case GL_FLOAT_VEC4:
        case GL_INT_VEC4:
        case GL_BOOL_VEC4:
        case GL_UNSIGNED_INT_VEC4:
        case GL_FLOAT_MAT2:
            return 4;
        case GL_FLOAT_MAT2x3:
        case GL_FLOAT_MAT3x2:
            return 6;
        case GL_FLOAT_MAT2x4:
        case GL_FLOAT_MAT4x2:
            return 8;
        case GL_FLOAT_MAT3:
            return 9;
        case GL_FLOAT_MAT3x4:
        case GL_FLOAT_MAT4x3:
            return 12;
        case GL_FLOAT_MAT4:
            return 16;
        default:
            return 1;
        }
    }
    return 0;
}

std::uint64_t programString(unsigned int target) {
    return positive(parameterBy(context().functions.getProgramivARB, target,
                                static_cast<unsigned int>(GL_PROGRAM_LENGTH_ARB)));
}

std::uint64_t namedProgramString(unsigned int program, unsigned int target) {
    return positive(parameterBy(context().functions.getNamedProgramivEXT, program, target,
                                static_cast<unsigned int>(GL_PROGRAM_LENGTH_ARB)));
}

std::uint64_t programStringNV(unsigned int program) {
    return positive(parameterBy(context().functions.getProgramivNV, program,
                                static_cast<unsigned int>(GL_PROGRAM_LENGTH_NV)));
}

std::uint64_t functionPoints(unsigned int countName) { return 2 * positive(ask(countName)); }

std::uint64_t texturePoints(unsigned int target, unsigned int countName) {
    GLint count = 0;
    if (context().mayAsk())
        glGetTexParameteriv(target, countName, &count);
    return 2 * positive(count);
}

std::uint64_t filterWeights(unsigned int target, unsigned int filter) {
    GLint count = 0;
    if (context().mayAsk() && filter == GL_FILTER4_SGIS)
        glGetTexParameteriv(target, GL_TEXTURE_FILTER4_SIZE_SGIS, &count);
    return positive(count);
}

std::uint64_t symbolValues(unsigned int symbol) {
    const auto found = context().symbols.find(symbol);
    const unsigned int type = found == context().symbols.end() ? GL_SCALAR_EXT : found->second;
    return type == GL_VECTOR_EXT ? 4 : type == GL_MATRIX_EXT ? 16 : 1;
}

std::uint64_t symbolBytes(unsigned int symbol, unsigned int type) {
    return symbolValues(symbol) * sizeOfType(type);
}

std::uint64_t written(int size, const char* text) {
    if (size <= 0 || !text)
        return 0;
    const auto room = static_cast<std::size_t>(size);
    const void* const end = std::memchr(text, 0, room);
    return end ? static_cast<std::uint64_t>(static_cast<const char*>(end) - text) + 1 : room;
}

std::uint64_t counted(int most, const int* count) { return positive(count ? std::min(most, *count) : most); }

} // namespace Sizes

} // namespace ZLT::Capture
