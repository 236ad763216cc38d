// What the fixed functions do to vertices: matrices, lights, texture units, evaluators, current values.

#include "capture/PlayedEntries.h"
#include "capture/exporting/StateReader.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Playing;

namespace {

// Those of a new context.
constexpr float zero[4] = {0, 0, 0, 0}, black[4] = {0, 0, 0, 1}, white[4] = {1, 1, 1, 1},
                grey[4] = {0.2f, 0.2f, 0.2f, 1}, diffuse[4] = {0.8f, 0.8f, 0.8f, 1}, ahead[4] = {0, 0, 1, 0},
                down[4] = {0, 0, -1, 0};

bool isEqual(const float* one, const float* other, std::size_t count = 4) {
    return std::equal(one, one + count, other);
}

} // namespace

void StateReader::play(const CapturedCall& call) const {
    std::uint64_t arguments[8] = {}, result = 0;
    for (std::size_t i = 0; i < call.values.size(); ++i)
        arguments[i] = call.values[i].form == 'p'
                           ? reinterpret_cast<std::uintptr_t>(call.values[i].bytes.data())
                           : call.values[i].bits;
    playerOf(call.function->number - firstEntry)(gl_, here, 0, arguments, result);
}

namespace {

// The steps of a matrix in their order, from behind `start` on; false where it didn't come from there.
bool stepsFrom(const MatrixStep* start, const MadeMatrix& made, std::vector<const CapturedCall*>& steps) {
    const MatrixStep* step = made.get();
    for (; step && step != start; step = step->before.get())
        steps.insert(steps.begin(), &step->call);
    return step == start;
}

bool isLoad(const CapturedCall& call) { return call.function->name.starts_with("glLoad"); }

} // namespace

bool StateReader::isMadeBy(const MadeMatrix& made, const std::array<float, 16>& matrix,
                           std::uint32_t matrixName) const {
    if (made && !made->isKnown())
        return false;
    std::vector<const CapturedCall*> steps;
    stepsFrom(nullptr, made, steps);
    glLoadIdentity();
    for (const CapturedCall* const step : steps)
        play(*step);
    return floats(matrixName) == matrix;
}

void StateReader::addStack(std::uint32_t mode, std::uint32_t depthName, std::uint32_t matrixName,
                           std::uint32_t unit) {
    constexpr std::array<float, 16> identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const int depth = integer(depthName);
    if (!isAnswered())
        return;
    glMatrixMode(mode);
    std::vector<MadeMatrix> made = known_.matrices.stackOf(mode, unit);
    const bool isFollowed = made.size() == static_cast<std::size_t>(depth);
    made.resize(static_cast<std::size_t>(depth));
    struct Level {
        std::array<float, 16> matrix;
        bool isMade; // by the calls that are known
    };
    std::vector<Level> levels(made.size());
    for (std::size_t i = made.size(); i-- > 0;) {
        levels[i].matrix = floats(matrixName);
        levels[i].isMade = isFollowed && isMadeBy(made[i], levels[i].matrix, matrixName);
        if (i > 0)
            glPopMatrix();
    }
    if (levels.empty() ||
        (levels.size() == 1 && levels[0].matrix == identity &&
         (!made[0] || (made[0]->isKnown() && made[0]->call.function->name == "glLoadIdentity"))))
        return;
    to_.add("glMatrixMode", mode);
    const MatrixStep* below = nullptr;
    bool isBelowMade = true;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        std::vector<const CapturedCall*> steps;
        if (i > 0)
            to_.add("glPushMatrix");
        if (levels[i].isMade) {
            if (!isBelowMade || !stepsFrom(below, made[i], steps)) {
                steps.clear();
                stepsFrom(nullptr, made[i], steps);
                if (steps.empty() || !isLoad(*steps.front()))
                    to_.add("glLoadIdentity");
            }
            for (const CapturedCall* const step : steps)
                to_.add(*step);
        } else {
            to_.add("glLoadMatrixf", bytesOf(levels[i].matrix.data(), 16));
        }
        below = made[i].get();
        isBelowMade = levels[i].isMade;
    }
}

void StateReader::addMatrices() {
    const std::uint32_t mode = token(GL_MATRIX_MODE), active = isVersion(1, 3) ? token(GL_ACTIVE_TEXTURE) : 0;
    addStack(GL_MODELVIEW, GL_MODELVIEW_STACK_DEPTH, GL_MODELVIEW_MATRIX);
    addStack(GL_PROJECTION, GL_PROJECTION_STACK_DEPTH, GL_PROJECTION_MATRIX);
    if (has("GL_ARB_imaging"))
        addStack(GL_COLOR, GL_COLOR_MATRIX_STACK_DEPTH, GL_COLOR_MATRIX);
    for (int unit = 0; unit < units_; ++unit) {
        const auto name = GL_TEXTURE0 + static_cast<std::uint32_t>(unit);
        if (active != 0)
            gl_.cgmActiveTexture(here, 0, name);
        addToUnit(active != 0 ? "glActiveTexture" : nullptr, name, [&] {
            addStack(GL_TEXTURE, GL_TEXTURE_STACK_DEPTH, GL_TEXTURE_MATRIX, static_cast<std::uint32_t>(unit));
        });
    }
    if (has("GL_ARB_vertex_program") || has("GL_ARB_fragment_program"))
        for (int i = 0; i < integer(GL_MAX_PROGRAM_MATRICES_ARB); ++i) {
            const auto matrix = GL_MATRIX0_ARB + static_cast<std::uint32_t>(i);
            addStack(matrix, GL_CURRENT_MATRIX_STACK_DEPTH_ARB, GL_CURRENT_MATRIX_ARB);
        }
    forgetErrors();
    if (active != 0) {
        gl_.cgmActiveTexture(here, 0, active);
        to_.add("glActiveTexture", active);
    }
    glMatrixMode(mode);
    to_.add("glMatrixMode", mode);
}

void StateReader::addLighting() {
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(std::min(integer(GL_MAX_CLIP_PLANES), 8)); ++i) {
        GLdouble plane[4] = {};
        glGetClipPlane(GL_CLIP_PLANE0 + i, plane);
        addUnless(plane[0] == 0 && plane[1] == 0 && plane[2] == 0 && plane[3] == 0, "glClipPlane",
                  GL_CLIP_PLANE0 + i, bytesOf(plane, 4));
    }
    addUnless(isEqual(floats(GL_LIGHT_MODEL_AMBIENT).data(), grey), "glLightModelfv", GL_LIGHT_MODEL_AMBIENT,
              bytesOf(floats(GL_LIGHT_MODEL_AMBIENT).data(), 4));
    for (const std::uint32_t name : {GL_LIGHT_MODEL_LOCAL_VIEWER, GL_LIGHT_MODEL_TWO_SIDE})
        addUnless(integer(name) == 0, "glLightModeli", name, integer(name));
    if (isVersion(1, 2))
        addUnless(token(GL_LIGHT_MODEL_COLOR_CONTROL) == GL_SINGLE_COLOR, "glLightModeli",
                  GL_LIGHT_MODEL_COLOR_CONTROL, token(GL_LIGHT_MODEL_COLOR_CONTROL));
    struct Light {
        std::uint32_t name;
        std::size_t count;
        const float *first, *others; // for GL_LIGHT0, for the others
    };
    constexpr float half[1] = {180}, one[1] = {1};
    const Light lights[] = {
        {GL_AMBIENT, 4, black, black},          {GL_DIFFUSE, 4, white, black},
        {GL_SPECULAR, 4, white, black},         {GL_POSITION, 4, ahead, ahead},
        {GL_SPOT_DIRECTION, 3, down, down},     {GL_SPOT_EXPONENT, 1, zero, zero},
        {GL_SPOT_CUTOFF, 1, half, half},        {GL_CONSTANT_ATTENUATION, 1, one, one},
        {GL_LINEAR_ATTENUATION, 1, zero, zero}, {GL_QUADRATIC_ATTENUATION, 1, zero, zero}};
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(std::min(integer(GL_MAX_LIGHTS), 8)); ++i) {
        for (const Light& light : lights) {
            float values[4] = {};
            glGetLightfv(GL_LIGHT0 + i, light.name, values);
            addUnless(isEqual(values, i == 0 ? light.first : light.others, light.count), "glLightfv",
                      GL_LIGHT0 + i, light.name, bytesOf(values, light.count));
        }
        addUnless(!isEnabled(GL_LIGHT0 + i), isEnabled(GL_LIGHT0 + i) ? "glEnable" : "glDisable",
                  GL_LIGHT0 + i);
    }
    const Light materials[] = {{GL_AMBIENT, 4, grey, grey},
                               {GL_DIFFUSE, 4, diffuse, diffuse},
                               {GL_SPECULAR, 4, black, black},
                               {GL_EMISSION, 4, black, black},
                               {GL_SHININESS, 1, zero, zero}};
    for (const std::uint32_t face : {GL_FRONT, GL_BACK}) {
        for (const Light& material : materials) {
            float values[4] = {};
            glGetMaterialfv(face, material.name, values);
            addUnless(isEqual(values, material.first, material.count), "glMaterialfv", face, material.name,
                      bytesOf(values, material.count));
        }
        constexpr float plain[3] = {0, 1, 1};
        float indices[3] = {};
        glGetMaterialfv(face, GL_COLOR_INDEXES, indices);
        addUnless(isEqual(indices, plain, 3), "glMaterialfv", face, GL_COLOR_INDEXES, bytesOf(indices, 3));
    }
    addUnless(token(GL_COLOR_MATERIAL_FACE) == GL_FRONT_AND_BACK &&
                  token(GL_COLOR_MATERIAL_PARAMETER) == GL_AMBIENT_AND_DIFFUSE,
              "glColorMaterial", token(GL_COLOR_MATERIAL_FACE), token(GL_COLOR_MATERIAL_PARAMETER));
}

void StateReader::addUnit() {
    // Combinations, and what comes to them.
    struct Environment {
        std::uint32_t name, plain;
        int since;
    };
    constexpr Environment environments[] = {
        {GL_TEXTURE_ENV_MODE, GL_MODULATE, 11}, {GL_COMBINE_RGB, GL_MODULATE, 13},
        {GL_COMBINE_ALPHA, GL_MODULATE, 13},    {GL_SRC0_RGB, GL_TEXTURE, 13},
        {GL_SRC1_RGB, GL_PREVIOUS, 13},         {GL_SRC2_RGB, GL_CONSTANT, 13},
        {GL_SRC0_ALPHA, GL_TEXTURE, 13},        {GL_SRC1_ALPHA, GL_PREVIOUS, 13},
        {GL_SRC2_ALPHA, GL_CONSTANT, 13},       {GL_OPERAND0_RGB, GL_SRC_COLOR, 13},
        {GL_OPERAND1_RGB, GL_SRC_COLOR, 13},    {GL_OPERAND2_RGB, GL_SRC_ALPHA, 13},
        {GL_OPERAND0_ALPHA, GL_SRC_ALPHA, 13},  {GL_OPERAND1_ALPHA, GL_SRC_ALPHA, 13},
        {GL_OPERAND2_ALPHA, GL_SRC_ALPHA, 13}};
    for (const Environment& environment : environments) {
        if (facts_.version < environment.since)
            continue;
        GLint its = 0;
        glGetTexEnviv(GL_TEXTURE_ENV, environment.name, &its);
        if (isAnswered())
            addUnless(static_cast<std::uint32_t>(its) == environment.plain, "glTexEnvi", GL_TEXTURE_ENV,
                      environment.name, its);
    }
    float values[4] = {};
    glGetTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, values);
    addUnless(isEqual(values, zero), "glTexEnvfv", GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, bytesOf(values, 4));
    for (const std::uint32_t name : {GL_RGB_SCALE, GL_ALPHA_SCALE}) {
        if (!isVersion(1, 3))
            break;
        glGetTexEnvfv(GL_TEXTURE_ENV, name, values);
        addUnless(values[0] == 1, "glTexEnvf", GL_TEXTURE_ENV, name, values[0]);
    }
    if (isVersion(1, 4)) {
        glGetTexEnvfv(GL_TEXTURE_FILTER_CONTROL, GL_TEXTURE_LOD_BIAS, values);
        addUnless(values[0] == 0, "glTexEnvf", GL_TEXTURE_FILTER_CONTROL, GL_TEXTURE_LOD_BIAS, values[0]);
    }
    if (isVersion(2, 0)) {
        GLint replaces = 0;
        glGetTexEnviv(GL_POINT_SPRITE, GL_COORD_REPLACE, &replaces);
        addUnless(replaces == 0, "glTexEnvi", GL_POINT_SPRITE, GL_COORD_REPLACE, replaces);
    }
    constexpr float planes[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}};
    for (std::uint32_t i = 0; i < 4; ++i) {
        const std::uint32_t coordinate = GL_S + i;
        for (const std::uint32_t name : {GL_OBJECT_PLANE, GL_EYE_PLANE}) {
            glGetTexGenfv(coordinate, name, values);
            addUnless(isEqual(values, planes[i]), "glTexGenfv", coordinate, name, bytesOf(values, 4));
        }
        GLint mode = GL_EYE_LINEAR;
        glGetTexGeniv(coordinate, GL_TEXTURE_GEN_MODE, &mode);
        addUnless(mode == GL_EYE_LINEAR, "glTexGeni", coordinate, GL_TEXTURE_GEN_MODE, mode);
        const bool isOn = isEnabled(GL_TEXTURE_GEN_S + i);
        addUnless(!isOn, isOn ? "glEnable" : "glDisable", GL_TEXTURE_GEN_S + i);
    }
    for (const std::uint32_t name :
         {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP, GL_TEXTURE_RECTANGLE_ARB}) {
        const bool isOn = glIsEnabled(name) != 0;
        if (isAnswered())
            addUnless(!isOn, isOn ? "glEnable" : "glDisable", name);
    }
}

void StateReader::addTextureUnits() {
    int count = 1;
    if (isVersion(1, 3) || has("GL_ARB_multitexture"))
        count = std::max(1, integer(GL_MAX_TEXTURE_UNITS));
    const std::uint32_t active = count > 1 ? token(GL_ACTIVE_TEXTURE) : 0;
    for (int unit = 0; unit < count; ++unit) {
        const auto name = GL_TEXTURE0 + static_cast<std::uint32_t>(unit);
        if (count > 1)
            gl_.cgmActiveTexture(here, 0, name);
        addToUnit(count > 1 ? "glActiveTexture" : nullptr, name, [&] { addUnit(); });
    }
    if (count > 1) {
        gl_.cgmActiveTexture(here, 0, active);
        to_.add("glActiveTexture", active);
    }
}

void StateReader::addEvaluators() {
    // From GL_MAP1_COLOR_4 on, and in the same order from GL_MAP2_COLOR_4.
    constexpr std::size_t components[] = {4, 1, 3, 1, 2, 3, 4, 3, 4};
    for (std::uint32_t i = 0; i < std::size(components); ++i)
        for (const bool isPlane : {false, true}) {
            const std::uint32_t name = (isPlane ? GL_MAP2_COLOR_4 : GL_MAP1_COLOR_4) + i;
            GLint orders[2] = {1, 1};
            GLdouble domain[4] = {};
            glGetMapiv(name, GL_ORDER, orders);
            glGetMapdv(name, GL_DOMAIN, domain);
            const std::size_t count = static_cast<std::size_t>(orders[0]) *
                                      (isPlane ? static_cast<std::size_t>(orders[1]) : 1) * components[i];
            if (!isAnswered() || count == components[i])
                continue; // as in a new context
            std::vector<GLdouble> points(count);
            glGetMapdv(name, GL_COEFF, points.data());
            const auto step = static_cast<int>(components[i]);
            if (isPlane)
                to_.add("glMap2d", name, domain[0], domain[1], step * orders[1], orders[0], domain[2],
                        domain[3], step, orders[1], bytesOf(points.data(), count));
            else
                to_.add("glMap1d", name, domain[0], domain[1], step, orders[0],
                        bytesOf(points.data(), count));
        }
    GLint segments[2] = {1, 1};
    GLdouble domain[4] = {0, 1, 0, 1};
    glGetIntegerv(GL_MAP1_GRID_SEGMENTS, segments);
    glGetDoublev(GL_MAP1_GRID_DOMAIN, domain);
    addUnless(segments[0] == 1 && domain[0] == 0 && domain[1] == 1, "glMapGrid1d", segments[0], domain[0],
              domain[1]);
    glGetIntegerv(GL_MAP2_GRID_SEGMENTS, segments);
    glGetDoublev(GL_MAP2_GRID_DOMAIN, domain);
    addUnless(segments[0] == 1 && segments[1] == 1 && domain[0] == 0 && domain[1] == 1 && domain[2] == 0 &&
                  domain[3] == 1,
              "glMapGrid2d", segments[0], domain[0], domain[1], segments[1], domain[2], domain[3]);
}

void StateReader::addCurrentValues() {
    // The raster position takes what is current with it, and is a place in the window.
    GLint isValid = 0;
    glGetIntegerv(GL_CURRENT_RASTER_POSITION_VALID, &isValid);
    const auto place = floats(GL_CURRENT_RASTER_POSITION), rasterColor = floats(GL_CURRENT_RASTER_COLOR);
    if (isVersion(1, 4) &&
        (isFull_ || place[0] != 0 || place[1] != 0 || place[2] != 0 || !isEqual(rasterColor.data(), white)) &&
        isValid) {
        to_.add("glColor4fv", bytesOf(rasterColor.data(), 4));
        to_.add("glTexCoord4fv", bytesOf(floats(GL_CURRENT_RASTER_TEXTURE_COORDS).data(), 4));
        to_.add("glWindowPos3f", place[0], place[1], place[2]);
    }
    to_.add("glColor4fv", bytesOf(floats(GL_CURRENT_COLOR).data(), 4));
    addUnless(isEqual(floats(GL_CURRENT_NORMAL).data(), ahead, 3), "glNormal3fv",
              bytesOf(floats(GL_CURRENT_NORMAL).data(), 3));
    addUnless(floats(GL_CURRENT_INDEX)[0] == 1, "glIndexf", floats(GL_CURRENT_INDEX)[0]);
    addUnless(integer(GL_EDGE_FLAG) != 0, "glEdgeFlag", integer(GL_EDGE_FLAG));
    if (isVersion(1, 4)) {
        addUnless(isEqual(floats(GL_CURRENT_SECONDARY_COLOR).data(), zero, 3), "glSecondaryColor3fv",
                  bytesOf(floats(GL_CURRENT_SECONDARY_COLOR).data(), 3));
        addUnless(floats(GL_CURRENT_FOG_COORD)[0] == 0, "glFogCoordf", floats(GL_CURRENT_FOG_COORD)[0]);
    }
    const std::uint32_t active = units_ > 1 ? token(GL_ACTIVE_TEXTURE) : 0;
    for (int unit = 0; unit < units_; ++unit) {
        const auto name = GL_TEXTURE0 + static_cast<std::uint32_t>(unit);
        if (units_ > 1)
            gl_.cgmActiveTexture(here, 0, name);
        const auto values = floats(GL_CURRENT_TEXTURE_COORDS);
        if (!isAnswered())
            continue;
        if (unit == 0)
            to_.add("glTexCoord4fv", bytesOf(values.data(), 4));
        else
            addUnless(isEqual(values.data(), black), "glMultiTexCoord4fv", name, bytesOf(values.data(), 4));
    }
    if (units_ > 1)
        gl_.cgmActiveTexture(here, 0, active);
    const bool isOn = isEnabled(GL_COLOR_MATERIAL);
    addUnless(!isOn, isOn ? "glEnable" : "glDisable", GL_COLOR_MATERIAL);
    if (integer(GL_RENDER_MODE) != GL_RENDER)
        missing_("Feedback or selection was in progress, and is not.");
    forgetErrors();
}

} // namespace ZLT::Capture
