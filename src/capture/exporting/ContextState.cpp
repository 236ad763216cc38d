// The state of a context that is no object, but for vertices: fragments, pixels, stacks.

#include "capture/PixelState.h"
#include "capture/exporting/StateReader.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Playing;

StateReader::StateReader(CapturePlay& play, Context& context, const KnownState& known, MadeCalls& to,
                         std::function<void(const std::string&)> missing)
    : play_(play), context_(context), facts_(context.facts), gl_(play.gl), known_(known), to_(to),
      missing_(std::move(missing)), isCore_(context.facts.isCore), units_(context.facts.textureUnits) {
    forgetErrors();
}

std::array<float, 16> StateReader::floats(std::uint32_t name) const {
    std::array<float, 16> values = {};
    glGetFloatv(name, values.data());
    return values;
}

bool StateReader::isEnabled(std::uint32_t name) const {
    const bool is = glIsEnabled(name) != 0;
    return isAnswered() && is;
}

bool StateReader::isAnswered() const {
    bool isGood = true;
    for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i)
        isGood = false;
    return isGood;
}

std::uint64_t StateReader::capturedName(ObjectKind kind, std::uint64_t now) const {
    if (now == 0)
        return 0;
    const NameTable& table = isOfContext(kind) ? context_.names : context_.group->names;
    return table.findCaptured(kind, now).value_or(0);
}

std::uint32_t StateReader::nameNow(ObjectKind kind, std::uint64_t captured) const {
    const NameTable& table = isOfContext(kind) ? context_.names : context_.group->names;
    return static_cast<std::uint32_t>(table.find(kind, captured).value_or(0));
}

namespace {

struct Capability {
    std::uint32_t name;
    bool isOn = false; // in a new context
    const char* extension = nullptr;
    int since = 11;
};
// Of the fixed functions and of all contexts. What units have is in VertexState.cpp.
constexpr Capability capabilities[] = {
    {GL_ALPHA_TEST},
    {GL_AUTO_NORMAL},
    {GL_BLEND},
    {GL_COLOR_LOGIC_OP},
    {GL_CULL_FACE},
    {GL_DEPTH_TEST},
    {GL_DITHER, true},
    {GL_FOG},
    {GL_INDEX_LOGIC_OP},
    {GL_LIGHTING},
    {GL_LINE_SMOOTH},
    {GL_LINE_STIPPLE},
    {GL_MAP1_COLOR_4},
    {GL_MAP1_INDEX},
    {GL_MAP1_NORMAL},
    {GL_MAP1_TEXTURE_COORD_1},
    {GL_MAP1_TEXTURE_COORD_2},
    {GL_MAP1_TEXTURE_COORD_3},
    {GL_MAP1_TEXTURE_COORD_4},
    {GL_MAP1_VERTEX_3},
    {GL_MAP1_VERTEX_4},
    {GL_MAP2_COLOR_4},
    {GL_MAP2_INDEX},
    {GL_MAP2_NORMAL},
    {GL_MAP2_TEXTURE_COORD_1},
    {GL_MAP2_TEXTURE_COORD_2},
    {GL_MAP2_TEXTURE_COORD_3},
    {GL_MAP2_TEXTURE_COORD_4},
    {GL_MAP2_VERTEX_3},
    {GL_MAP2_VERTEX_4},
    {GL_NORMALIZE},
    {GL_POINT_SMOOTH},
    {GL_POLYGON_OFFSET_FILL},
    {GL_POLYGON_OFFSET_LINE},
    {GL_POLYGON_OFFSET_POINT},
    {GL_POLYGON_SMOOTH},
    {GL_POLYGON_STIPPLE},
    {GL_SCISSOR_TEST},
    {GL_STENCIL_TEST},
    {GL_RESCALE_NORMAL, false, nullptr, 12},
    {GL_MULTISAMPLE, true, nullptr, 13},
    {GL_SAMPLE_ALPHA_TO_COVERAGE, false, nullptr, 13},
    {GL_SAMPLE_ALPHA_TO_ONE, false, nullptr, 13},
    {GL_SAMPLE_COVERAGE, false, nullptr, 13},
    {GL_COLOR_SUM, false, nullptr, 14},
    {GL_POINT_SPRITE, false, nullptr, 20},
    {GL_VERTEX_PROGRAM_POINT_SIZE, false, nullptr, 20},
    {GL_VERTEX_PROGRAM_TWO_SIDE, false, nullptr, 20},
    {GL_CLIP_DISTANCE0, false, nullptr, 11},
    {GL_CLIP_DISTANCE1, false, nullptr, 11},
    {GL_CLIP_DISTANCE2, false, nullptr, 11},
    {GL_CLIP_DISTANCE3, false, nullptr, 11},
    {GL_CLIP_DISTANCE4, false, nullptr, 11},
    {GL_CLIP_DISTANCE5, false, nullptr, 11},
    {GL_VERTEX_PROGRAM_ARB, false, "GL_ARB_vertex_program"},
    {GL_FRAGMENT_PROGRAM_ARB, false, "GL_ARB_fragment_program"},
    {GL_FRAGMENT_SHADER_ATI, false, "GL_ATI_fragment_shader"},
    {GL_STENCIL_TEST_TWO_SIDE_EXT, false, "GL_EXT_stencil_two_side"},
    {GL_DEPTH_BOUNDS_TEST_EXT, false, "GL_EXT_depth_bounds_test"},
    {GL_DEPTH_CLAMP, false, "GL_ARB_depth_clamp"},
    {GL_FRAMEBUFFER_SRGB, false, "GL_ARB_framebuffer_sRGB"},
    {GL_PRIMITIVE_RESTART_NV, false, "GL_NV_primitive_restart"},
    {GL_TEXTURE_CUBE_MAP_SEAMLESS, false, "GL_ARB_seamless_cube_map"},
    {GL_RASTER_POSITION_UNCLIPPED_IBM, false, "GL_IBM_rasterpos_clip"},
};

} // namespace

void StateReader::addCapabilities() {
    for (const Capability& capability : capabilities) {
        if (facts_.version < capability.since || (capability.extension && !has(capability.extension)))
            continue;
        const bool isOn = glIsEnabled(capability.name) != 0;
        if (isAnswered() && (isFull_ || isOn != capability.isOn))
            to_.add(isOn ? "glEnable" : "glDisable", capability.name);
    }
    // Of some draw buffers alone.
    if (!isVersion(3, 0))
        return;
    const bool isBlended = glIsEnabled(GL_BLEND) != 0;
    for (int i = 1; i < integer(GL_MAX_DRAW_BUFFERS); ++i)
        if (const bool its = gl_.cgmIsEnabledi(here, 0, GL_BLEND, static_cast<unsigned int>(i)) != 0;
            its != isBlended)
            to_.add(its ? "glEnablei" : "glDisablei", GL_BLEND, i);
}

void StateReader::addFragmentState() {
    if (!isCore_)
        addUnless(token(GL_ALPHA_TEST_FUNC) == GL_ALWAYS && floats(GL_ALPHA_TEST_REF)[0] == 0, "glAlphaFunc",
                  token(GL_ALPHA_TEST_FUNC), floats(GL_ALPHA_TEST_REF)[0]);
    if (isVersion(1, 4)) {
        const std::uint32_t factors[] = {token(GL_BLEND_SRC_RGB), token(GL_BLEND_DST_RGB),
                                         token(GL_BLEND_SRC_ALPHA), token(GL_BLEND_DST_ALPHA)};
        const bool isOne = factors[0] == factors[2] && factors[1] == factors[3];
        if (!isOne)
            to_.add("glBlendFuncSeparate", factors[0], factors[1], factors[2], factors[3]);
        else
            addUnless(factors[0] == GL_ONE && factors[1] == GL_ZERO, "glBlendFunc", factors[0], factors[1]);
        const auto color = floats(GL_BLEND_COLOR);
        addUnless(std::all_of(color.begin(), color.begin() + 4, [](float value) { return value == 0; }),
                  "glBlendColor", color[0], color[1], color[2], color[3]);
        const std::uint32_t rgb = token(GL_BLEND_EQUATION);
        const std::uint32_t alpha = isVersion(2, 0) ? token(GL_BLEND_EQUATION_ALPHA) : rgb;
        if (rgb != alpha)
            to_.add("glBlendEquationSeparate", rgb, alpha);
        else
            addUnless(rgb == GL_FUNC_ADD, "glBlendEquation", rgb);
    } else {
        addUnless(token(GL_BLEND_SRC) == GL_ONE && token(GL_BLEND_DST) == GL_ZERO, "glBlendFunc",
                  token(GL_BLEND_SRC), token(GL_BLEND_DST));
    }
    GLboolean mask[4] = {};
    glGetBooleanv(GL_COLOR_WRITEMASK, mask);
    addUnless(mask[0] && mask[1] && mask[2] && mask[3], "glColorMask", mask[0], mask[1], mask[2], mask[3]);
    for (int i = 1; isVersion(3, 0) && i < integer(GL_MAX_DRAW_BUFFERS); ++i) {
        GLboolean its[4] = {};
        gl_.cgmGetBooleani_v(here, 0, GL_COLOR_WRITEMASK, static_cast<unsigned int>(i), its);
        if (!std::equal(its, its + 4, mask))
            to_.add("glColorMaski", i, its[0], its[1], its[2], its[3]);
    }
    const auto color = floats(GL_COLOR_CLEAR_VALUE);
    addUnless(color[0] == 0 && color[1] == 0 && color[2] == 0 && color[3] == 0, "glClearColor", color[0],
              color[1], color[2], color[3]);
    GLdouble depth[2] = {};
    glGetDoublev(GL_DEPTH_CLEAR_VALUE, depth);
    addUnless(depth[0] == 1, "glClearDepth", depth[0]);
    glGetDoublev(GL_DEPTH_RANGE, depth);
    addUnless(depth[0] == 0 && depth[1] == 1, "glDepthRange", depth[0], depth[1]);
    addUnless(token(GL_DEPTH_FUNC) == GL_LESS, "glDepthFunc", token(GL_DEPTH_FUNC));
    addUnless(integer(GL_DEPTH_WRITEMASK) != 0, "glDepthMask", integer(GL_DEPTH_WRITEMASK));
    addUnless(integer(GL_STENCIL_CLEAR_VALUE) == 0, "glClearStencil", integer(GL_STENCIL_CLEAR_VALUE));
    addUnless(token(GL_LOGIC_OP_MODE) == GL_COPY, "glLogicOp", token(GL_LOGIC_OP_MODE));
    // Stencil: one side, or both.
    struct Side {
        std::uint32_t function, fail, depthFail, depthPass;
        int reference, valueMask, writeMask;
        bool operator==(const Side&) const = default;
    };
    const auto ask = [&](bool isBack) {
        return isBack ? Side{token(GL_STENCIL_BACK_FUNC),
                             token(GL_STENCIL_BACK_FAIL),
                             token(GL_STENCIL_BACK_PASS_DEPTH_FAIL),
                             token(GL_STENCIL_BACK_PASS_DEPTH_PASS),
                             integer(GL_STENCIL_BACK_REF),
                             integer(GL_STENCIL_BACK_VALUE_MASK),
                             integer(GL_STENCIL_BACK_WRITEMASK)}
                      : Side{token(GL_STENCIL_FUNC),
                             token(GL_STENCIL_FAIL),
                             token(GL_STENCIL_PASS_DEPTH_FAIL),
                             token(GL_STENCIL_PASS_DEPTH_PASS),
                             integer(GL_STENCIL_REF),
                             integer(GL_STENCIL_VALUE_MASK),
                             integer(GL_STENCIL_WRITEMASK)};
    };
    const Side front = ask(false), back = isVersion(2, 0) ? ask(true) : front;
    const auto bits = [](int value) { return static_cast<std::uint32_t>(value); };
    const auto isPlain = [](const Side& side) {
        // What is asked for is cut to a positive number, or to the bits that there are.
        const auto isAll = [](int value) { return value == -1 || value == 0x7FFFFFFF || value == 0xFF; };
        return side.function == GL_ALWAYS && side.reference == 0 && isAll(side.valueMask) &&
               isAll(side.writeMask) && side.fail == GL_KEEP && side.depthFail == GL_KEEP &&
               side.depthPass == GL_KEEP;
    };
    if (front == back) {
        if (!isPlain(front)) {
            to_.add("glStencilFunc", front.function, front.reference, bits(front.valueMask));
            to_.add("glStencilOp", front.fail, front.depthFail, front.depthPass);
            to_.add("glStencilMask", bits(front.writeMask));
        }
    } else {
        for (const auto& [face, side] :
             {std::pair<std::uint32_t, const Side&>(GL_FRONT, front), {GL_BACK, back}}) {
            to_.add("glStencilFuncSeparate", face, side.function, side.reference, bits(side.valueMask));
            to_.add("glStencilOpSeparate", face, side.fail, side.depthFail, side.depthPass);
            to_.add("glStencilMaskSeparate", face, bits(side.writeMask));
        }
    }
    if (!isCore_) {
        const auto accumulation = floats(GL_ACCUM_CLEAR_VALUE);
        addUnless(accumulation[0] == 0 && accumulation[1] == 0 && accumulation[2] == 0 &&
                      accumulation[3] == 0,
                  "glClearAccum", accumulation[0], accumulation[1], accumulation[2], accumulation[3]);
        addUnless(floats(GL_INDEX_CLEAR_VALUE)[0] == 0, "glClearIndex", floats(GL_INDEX_CLEAR_VALUE)[0]);
    }
    if (isVersion(1, 3)) {
        const float coverage = floats(GL_SAMPLE_COVERAGE_VALUE)[0];
        const int isInverted = integer(GL_SAMPLE_COVERAGE_INVERT);
        addUnless(coverage == 1 && isInverted == 0, "glSampleCoverage", coverage, isInverted);
    }
    if (has("GL_EXT_depth_bounds_test")) {
        glGetDoublev(GL_DEPTH_BOUNDS_EXT, depth);
        addUnless(depth[0] == 0 && depth[1] == 1, "glDepthBoundsEXT", depth[0], depth[1]);
    }
    if (isVersion(3, 0) && !isCore_)
        for (const std::uint32_t target :
             {GL_CLAMP_VERTEX_COLOR, GL_CLAMP_FRAGMENT_COLOR, GL_CLAMP_READ_COLOR}) {
            const std::uint32_t its = token(target);
            const std::uint32_t plain =
                target == GL_CLAMP_VERTEX_COLOR ? std::uint32_t(GL_TRUE) : GL_FIXED_ONLY;
            if (isAnswered())
                addUnless(its == plain, "glClampColor", target, its);
        }
}

void StateReader::addRasterState() {
    GLint box[4] = {};
    glGetIntegerv(GL_VIEWPORT, box);
    to_.add("glViewport", box[0], box[1], box[2], box[3]);
    glGetIntegerv(GL_SCISSOR_BOX, box);
    to_.add("glScissor", box[0], box[1], box[2], box[3]);
    addUnless(token(GL_CULL_FACE_MODE) == GL_BACK, "glCullFace", token(GL_CULL_FACE_MODE));
    addUnless(token(GL_FRONT_FACE) == GL_CCW, "glFrontFace", token(GL_FRONT_FACE));
    GLint modes[2] = {GL_FILL, GL_FILL};
    glGetIntegerv(GL_POLYGON_MODE, modes);
    if (isCore_ || modes[0] == modes[1]) {
        addUnless(modes[0] == GL_FILL, "glPolygonMode", GL_FRONT_AND_BACK, modes[0]);
    } else {
        to_.add("glPolygonMode", GL_FRONT, modes[0]);
        to_.add("glPolygonMode", GL_BACK, modes[1]);
    }
    const float factor = floats(GL_POLYGON_OFFSET_FACTOR)[0], units = floats(GL_POLYGON_OFFSET_UNITS)[0];
    addUnless(factor == 0 && units == 0, "glPolygonOffset", factor, units);
    addUnless(floats(GL_LINE_WIDTH)[0] == 1, "glLineWidth", floats(GL_LINE_WIDTH)[0]);
    addUnless(floats(GL_POINT_SIZE)[0] == 1, "glPointSize", floats(GL_POINT_SIZE)[0]);
    if (isVersion(1, 4)) {
        for (const auto& [name, plain] : {std::pair<std::uint32_t, float>(GL_POINT_SIZE_MIN, 0.0f),
                                          {GL_POINT_FADE_THRESHOLD_SIZE, 1.0f}}) {
            if (isCore_ && name == GL_POINT_SIZE_MIN)
                continue;
            addUnless(floats(name)[0] == plain, "glPointParameterf", name, floats(name)[0]);
        }
        if (!isCore_) {
            // The largest size is one that the driver has, unless a program set another.
            to_.add("glPointParameterf", GL_POINT_SIZE_MAX, floats(GL_POINT_SIZE_MAX)[0]);
            const auto attenuation = floats(GL_POINT_DISTANCE_ATTENUATION);
            addUnless(attenuation[0] == 1 && attenuation[1] == 0 && attenuation[2] == 0, "glPointParameterfv",
                      GL_POINT_DISTANCE_ATTENUATION, bytesOf(attenuation.data(), 3));
        }
        if (isVersion(2, 0)) {
            const std::uint32_t origin = token(GL_POINT_SPRITE_COORD_ORIGIN);
            if (isAnswered() && origin != 0)
                addUnless(origin == GL_UPPER_LEFT, "glPointParameterf", GL_POINT_SPRITE_COORD_ORIGIN, origin);
        }
    }
    if (isCore_)
        return;
    addUnless(integer(GL_LINE_STIPPLE_PATTERN) == 0xFFFF && integer(GL_LINE_STIPPLE_REPEAT) == 1,
              "glLineStipple", integer(GL_LINE_STIPPLE_REPEAT), integer(GL_LINE_STIPPLE_PATTERN));
    addUnless(token(GL_SHADE_MODEL) == GL_SMOOTH, "glShadeModel", token(GL_SHADE_MODEL));
    std::string stipple(128, '\0');
    {
        const PlainPacking packing(facts_);
        glGetPolygonStipple(reinterpret_cast<GLubyte*>(stipple.data()));
    }
    addUnless(stipple == std::string(128, '\xFF'), "glPolygonStipple", stipple);
    addUnless(token(GL_LIST_BASE) == 0, "glListBase", token(GL_LIST_BASE));
    const auto fogColor = floats(GL_FOG_COLOR);
    addUnless(fogColor[0] == 0 && fogColor[1] == 0 && fogColor[2] == 0 && fogColor[3] == 0, "glFogfv",
              GL_FOG_COLOR, bytesOf(fogColor.data(), 4));
    for (const auto& [name, plain] : {std::pair<std::uint32_t, float>(GL_FOG_DENSITY, 1.0f),
                                      {GL_FOG_START, 0.0f},
                                      {GL_FOG_END, 1.0f},
                                      {GL_FOG_INDEX, 0.0f}})
        addUnless(floats(name)[0] == plain, "glFogf", name, floats(name)[0]);
    addUnless(token(GL_FOG_MODE) == GL_EXP, "glFogi", GL_FOG_MODE, token(GL_FOG_MODE));
    if (isVersion(1, 4))
        addUnless(token(GL_FOG_COORD_SRC) == GL_FRAGMENT_DEPTH, "glFogi", GL_FOG_COORD_SRC,
                  token(GL_FOG_COORD_SRC));
}

void StateReader::addHints() {
    for (const std::uint32_t name :
         {GL_PERSPECTIVE_CORRECTION_HINT, GL_POINT_SMOOTH_HINT, GL_LINE_SMOOTH_HINT, GL_POLYGON_SMOOTH_HINT,
          GL_FOG_HINT, GL_GENERATE_MIPMAP_HINT, GL_TEXTURE_COMPRESSION_HINT,
          GL_FRAGMENT_SHADER_DERIVATIVE_HINT}) {
        const std::uint32_t its = token(name);
        if (isAnswered() && its != 0)
            addUnless(its == GL_DONT_CARE, "glHint", name, its);
    }
}

void StateReader::addPixelTransfer() {
    if (isCore_)
        return;
    const float x = floats(GL_ZOOM_X)[0], y = floats(GL_ZOOM_Y)[0];
    addUnless(x == 1 && y == 1, "glPixelZoom", x, y);
    struct Transfer {
        std::uint32_t name;
        float plain;
    };
    constexpr Transfer transfers[] = {{GL_MAP_COLOR, 0},    {GL_MAP_STENCIL, 0}, {GL_INDEX_SHIFT, 0},
                                      {GL_INDEX_OFFSET, 0}, {GL_RED_SCALE, 1},   {GL_GREEN_SCALE, 1},
                                      {GL_BLUE_SCALE, 1},   {GL_ALPHA_SCALE, 1}, {GL_DEPTH_SCALE, 1},
                                      {GL_RED_BIAS, 0},     {GL_GREEN_BIAS, 0},  {GL_BLUE_BIAS, 0},
                                      {GL_ALPHA_BIAS, 0},   {GL_DEPTH_BIAS, 0}};
    for (const Transfer& transfer : transfers)
        addUnless(floats(transfer.name)[0] == transfer.plain, "glPixelTransferf", transfer.name,
                  floats(transfer.name)[0]);
    for (std::uint32_t map = GL_PIXEL_MAP_I_TO_I; map <= GL_PIXEL_MAP_A_TO_A; ++map) {
        const int size = integer(map - GL_PIXEL_MAP_I_TO_I + GL_PIXEL_MAP_I_TO_I_SIZE);
        std::vector<float> values(static_cast<std::size_t>(std::max(size, 1)));
        const PlainPacking packing(facts_);
        glGetPixelMapfv(map, values.data());
        addUnless(size == 1 && values[0] == 0, "glPixelMapfv", map, size,
                  bytesOf(values.data(), values.size()));
    }
    addImaging();
}

void StateReader::addImaging() {
    if (!has("GL_ARB_imaging"))
        return;
    for (const std::uint32_t name :
         {GL_COLOR_TABLE, GL_POST_CONVOLUTION_COLOR_TABLE, GL_POST_COLOR_MATRIX_COLOR_TABLE,
          GL_CONVOLUTION_1D, GL_CONVOLUTION_2D, GL_SEPARABLE_2D, GL_HISTOGRAM, GL_MINMAX})
        if (isEnabled(name)) {
            to_.add("glEnable", name);
            missing_("What glColorTable, glConvolutionFilter2D and glHistogram set is not carried over.");
        }
}

void StateReader::addPixelStore() {
    struct Store {
        std::uint32_t name;
        int plain;
    };
    constexpr Store stores[] = {
        {GL_UNPACK_ALIGNMENT, 4},    {GL_UNPACK_ROW_LENGTH, 0},  {GL_UNPACK_SKIP_ROWS, 0},
        {GL_UNPACK_SKIP_PIXELS, 0},  {GL_UNPACK_SWAP_BYTES, 0},  {GL_UNPACK_LSB_FIRST, 0},
        {GL_PACK_ALIGNMENT, 4},      {GL_PACK_ROW_LENGTH, 0},    {GL_PACK_SKIP_ROWS, 0},
        {GL_PACK_SKIP_PIXELS, 0},    {GL_PACK_SWAP_BYTES, 0},    {GL_PACK_LSB_FIRST, 0},
        {GL_UNPACK_IMAGE_HEIGHT, 0}, {GL_UNPACK_SKIP_IMAGES, 0}, {GL_PACK_IMAGE_HEIGHT, 0},
        {GL_PACK_SKIP_IMAGES, 0}};
    for (const Store& store : stores) {
        const int its = integer(store.name);
        if (isAnswered())
            addUnless(its == store.plain, "glPixelStorei", store.name, its);
    }
}

void StateReader::addLevel() {
    addCapabilities();
    addFragmentState();
    addRasterState();
    addHints();
    addPixelTransfer();
    if (!isCore_) {
        addLighting();
        addTextureUnits();
        addEvaluators();
    }
    addBindings();
    if (!isCore_)
        addCurrentValues();
}

void StateReader::addToUnit(const char* selection, std::uint32_t unit, const std::function<void()>& add) {
    std::vector<CapturedCall> before = to_.take();
    add();
    std::vector<CapturedCall> its = to_.take();
    for (CapturedCall& call : before)
        to_.add(std::move(call));
    if (!its.empty() && selection)
        to_.add(selection, unit);
    for (CapturedCall& call : its)
        to_.add(std::move(call));
}

void StateReader::addContextState() {
    addStacks();
    forgetErrors();
}

void StateReader::addStacks() {
    // What stands below on a stack is read when what is above is taken away, and so the levels come from the
    // top.
    std::vector<CapturedCall> before = to_.take();
    const auto read = [this](int depth, void (StateReader::*add)(), void (*pop)()) {
        std::vector<std::vector<CapturedCall>> levels;
        for (;; --depth) {
            isFull_ = depth > 0;
            (this->*add)();
            levels.push_back(to_.take());
            if (depth <= 0)
                return levels;
            pop();
        }
    };
    auto client = read(isCore_ ? 0 : integer(GL_CLIENT_ATTRIB_STACK_DEPTH), &StateReader::addClientLevel,
                       [] { glPopClientAttrib(); });
    auto server =
        read(isCore_ ? 0 : integer(GL_ATTRIB_STACK_DEPTH), &StateReader::addLevel, [] { glPopAttrib(); });
    if (!isCore_)
        addMatrices();
    std::vector<CapturedCall> matrices = to_.take();
    const auto put = [this](std::vector<CapturedCall>& calls) {
        for (CapturedCall& call : calls)
            to_.add(std::move(call));
    };
    const auto putLevels = [&](auto& levels, const char* push, const std::vector<std::uint32_t>& masks,
                               std::uint32_t all) {
        for (std::size_t i = levels.size(); i-- > 0;) {
            put(levels[i]);
            const std::size_t pushed = levels.size() - 1 - i;
            if (i > 0)
                to_.add(push, pushed < masks.size() ? masks[pushed] : all);
        }
    };
    put(before);
    // Lights, planes and the raster position are those of the eye: no matrix is set yet.
    putLevels(server, "glPushAttrib", known_.attributeMasks, GL_ALL_ATTRIB_BITS);
    put(matrices);
    putLevels(client, "glPushClientAttrib", known_.clientMasks, GL_CLIENT_ALL_ATTRIB_BITS);
}

void StateReader::addClientLevel() {
    addPixelStore();
    addPixelBuffers();
    addCurrentArrays();
}

} // namespace ZLT::Capture
