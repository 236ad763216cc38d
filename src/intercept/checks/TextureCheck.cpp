#include "intercept/checks/TextureCheck.h"

#include "capture/TextureBinding.h"
#include "extensionator/OpenGLCall.h"
#include "extensionator/TokenName.h"
#include "intercept/ErrorReports.h"

#include <algorithm>
#include <map>
#include <string>

namespace ZLT::Interception {

namespace {

struct Target {
    unsigned int target;
    int axes;         ///< that get smaller from level to level
    const char* name; ///< of the token
};
// Those of the fixed functions come first, the strongest at the end: what is enabled with another one gives
// way.
constexpr Target targets[] = {
    {GL_TEXTURE_1D, 1, "GL_TEXTURE_1D"},
    {GL_TEXTURE_2D, 2, "GL_TEXTURE_2D"},
    {GL_TEXTURE_RECTANGLE_ARB, 0, "GL_TEXTURE_RECTANGLE"},
    {GL_TEXTURE_3D, 3, "GL_TEXTURE_3D"},
    {GL_TEXTURE_CUBE_MAP, 2, "GL_TEXTURE_CUBE_MAP"},
    {GL_TEXTURE_1D_ARRAY, 1, "GL_TEXTURE_1D_ARRAY"},
    {GL_TEXTURE_2D_ARRAY, 2, "GL_TEXTURE_2D_ARRAY"},
};
constexpr std::size_t fixedTargets = 5;

const Target* findTarget(std::uint32_t target) {
    const auto* const found = std::ranges::find(targets, target, &Target::target);
    return found == std::end(targets) ? nullptr : found;
}

bool hasTarget(const CheckedContext& context, std::size_t number) {
    const Capture::CapturedContext& asked = context.asked;
    switch (targets[number].target) {
    case GL_TEXTURE_3D:
        return asked.hasVolumes;
    case GL_TEXTURE_CUBE_MAP:
        return asked.isVersion(1, 3) || asked.has("GL_ARB_texture_cube_map") ||
               asked.has("GL_EXT_texture_cube_map");
    case GL_TEXTURE_RECTANGLE_ARB:
        return asked.isVersion(3, 1) || asked.has("GL_ARB_texture_rectangle") ||
               asked.has("GL_EXT_texture_rectangle") || asked.has("GL_NV_texture_rectangle");
    case GL_TEXTURE_1D_ARRAY:
    case GL_TEXTURE_2D_ARRAY:
        return asked.isVersion(3, 0) || asked.has("GL_EXT_texture_array");
    default:
        return true;
    }
}

struct SamplerType {
    std::uint32_t type, target;
    const char* name;
};
constexpr SamplerType samplerTypes[] = {
    {GL_SAMPLER_1D, GL_TEXTURE_1D, "sampler1D"},
    {GL_SAMPLER_2D, GL_TEXTURE_2D, "sampler2D"},
    {GL_SAMPLER_3D, GL_TEXTURE_3D, "sampler3D"},
    {GL_SAMPLER_CUBE, GL_TEXTURE_CUBE_MAP, "samplerCube"},
    {GL_SAMPLER_1D_SHADOW, GL_TEXTURE_1D, "sampler1DShadow"},
    {GL_SAMPLER_2D_SHADOW, GL_TEXTURE_2D, "sampler2DShadow"},
    {GL_SAMPLER_2D_RECT_ARB, GL_TEXTURE_RECTANGLE_ARB, "sampler2DRect"},
    {GL_SAMPLER_2D_RECT_SHADOW_ARB, GL_TEXTURE_RECTANGLE_ARB, "sampler2DRectShadow"},
    {GL_SAMPLER_1D_ARRAY, GL_TEXTURE_1D_ARRAY, "sampler1DArray"},
    {GL_SAMPLER_2D_ARRAY, GL_TEXTURE_2D_ARRAY, "sampler2DArray"},
    {GL_SAMPLER_1D_ARRAY_SHADOW, GL_TEXTURE_1D_ARRAY, "sampler1DArrayShadow"},
    {GL_SAMPLER_2D_ARRAY_SHADOW, GL_TEXTURE_2D_ARRAY, "sampler2DArrayShadow"},
    {GL_SAMPLER_CUBE_SHADOW, GL_TEXTURE_CUBE_MAP, "samplerCubeShadow"},
    {GL_INT_SAMPLER_1D, GL_TEXTURE_1D, "isampler1D"},
    {GL_INT_SAMPLER_2D, GL_TEXTURE_2D, "isampler2D"},
    {GL_INT_SAMPLER_3D, GL_TEXTURE_3D, "isampler3D"},
    {GL_INT_SAMPLER_CUBE, GL_TEXTURE_CUBE_MAP, "isamplerCube"},
    {GL_UNSIGNED_INT_SAMPLER_1D, GL_TEXTURE_1D, "usampler1D"},
    {GL_UNSIGNED_INT_SAMPLER_2D, GL_TEXTURE_2D, "usampler2D"},
    {GL_UNSIGNED_INT_SAMPLER_3D, GL_TEXTURE_3D, "usampler3D"},
    {GL_UNSIGNED_INT_SAMPLER_CUBE, GL_TEXTURE_CUBE_MAP, "usamplerCube"},
};
const SamplerType* findType(std::uint32_t type) {
    const auto* const found = std::ranges::find(samplerTypes, type, &SamplerType::type);
    return found == std::end(samplerTypes) ? nullptr : found;
}
const char* nameOfType(std::uint32_t type) {
    const SamplerType* const known = findType(type);
    return known ? known->name : "another sampler";
}

// The active unit comes back at the end.
class UnitChooser {
public:
    explicit UnitChooser(CheckedContext& context) : context_(context) {
        if (!context.hasUnits)
            return;
        if (context.activeUnit < 0)
            context.activeUnit = context.integer(GL_ACTIVE_TEXTURE) - GL_TEXTURE0;
        now_ = context.activeUnit;
    }
    ~UnitChooser() { choose(context_.activeUnit); }
    UnitChooser(const UnitChooser&) = delete;
    UnitChooser& operator=(const UnitChooser&) = delete;

    void choose(int unit) {
        if (context_.hasUnits && unit != now_)
            context_.functions.activeTexture(GL_TEXTURE0 + static_cast<unsigned int>(unit));
        now_ = unit;
    }

private:
    CheckedContext& context_;
    int now_ = 0;
};

bool usesLevels(int filter) { return filter != GL_NEAREST && filter != GL_LINEAR; }

// The texture that is bound to a target of the active unit.
class BoundTexture {
public:
    BoundTexture(const CheckedContext& context, const Target& target) : context_(context), target_(target) {}

    // Why it is not complete; "" if it is.
    std::string fault() const {
        const bool hasLevels = target_.target != GL_TEXTURE_RECTANGLE_ARB;
        const int filter = parameter(GL_TEXTURE_MIN_FILTER);
        // Made by glTexStorage it has the levels that it has, whatever their limits are.
        if ((context_.asked.isVersion(4, 2) || context_.asked.has("GL_ARB_texture_storage")) &&
            parameter(GL_TEXTURE_IMMUTABLE_FORMAT))
            return faultOfIntegers(0, filter);
        int base = 0, most = 1000;
        if (hasLevels && context_.asked.isVersion(1, 2)) {
            base = parameter(GL_TEXTURE_BASE_LEVEL);
            most = parameter(GL_TEXTURE_MAX_LEVEL);
        }
        const Image first = base > deepest() ? Image() : image(0, base);
        if (first.width <= 0 || first.height <= 0 || first.depth <= 0)
            return base == 0 ? "it has no image" : "its base level " + std::to_string(base) + " has no image";
        const int faces = target_.target == GL_TEXTURE_CUBE_MAP ? 6 : 1;
        if (faces == 6 && first.width != first.height)
            return "its faces are not square";
        for (int face = 1; face < faces; ++face)
            if (std::string fault = difference(image(face, base), first, "face " + std::to_string(face));
                !fault.empty())
                return fault;
        if (std::string fault = faultOfIntegers(base, filter); !fault.empty())
            return fault;
        if (!hasLevels || !usesLevels(filter))
            return "";
        const std::string wanted = ", and the filter " +
                                   std::string(OGL::TokenName(static_cast<unsigned int>(filter))) +
                                   " wants it";
        if (base > most)
            return "its base level " + std::to_string(base) + " is after the last level " +
                   std::to_string(most) + wanted;
        Image level = first;
        for (int number = base + 1; number <= most && !level.isLast(target_.axes); ++number) {
            level.shrink(target_.axes);
            for (int face = 0; face < faces; ++face)
                if (const std::string fault =
                        difference(image(face, number), level, "level " + std::to_string(number));
                    !fault.empty())
                    return fault + wanted;
        }
        return "";
    }

private:
    struct Image {
        int width = 0, height = 0, depth = 0, border = 0, format = 0;
        bool isLast(int axes) const {
            return width - 2 * border <= 1 && (axes < 2 || height - 2 * border <= 1) &&
                   (axes < 3 || depth - 2 * border <= 1);
        }
        void shrink(int axes) {
            const auto half = [this](int& size) { size = std::max((size - 2 * border) / 2, 1) + 2 * border; };
            half(width);
            if (axes > 1)
                half(height);
            if (axes > 2)
                half(depth);
        }
    };

    int parameter(unsigned int name) const {
        GLint value = 0;
        glGetTexParameteriv(target_.target, name, &value);
        return value;
    }

    // A level that is greater than this may not be asked for.
    int deepest() const {
        const unsigned int name = target_.target == GL_TEXTURE_3D         ? GL_MAX_3D_TEXTURE_SIZE
                                  : target_.target == GL_TEXTURE_CUBE_MAP ? GL_MAX_CUBE_MAP_TEXTURE_SIZE
                                                                          : GL_MAX_TEXTURE_SIZE;
        int level = 0;
        for (int size = context_.integer(name); size > 1; size /= 2)
            ++level;
        return level;
    }

    Image image(int face, int level) const {
        const unsigned int of = target_.target == GL_TEXTURE_CUBE_MAP
                                    ? GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<unsigned int>(face)
                                    : target_.target;
        const auto ask = [&](unsigned int name) {
            GLint value = 0;
            glGetTexLevelParameteriv(of, level, name, &value);
            return value;
        };
        Image image;
        image.width = ask(GL_TEXTURE_WIDTH);
        if (image.width == 0)
            return image;
        image.height = ask(GL_TEXTURE_HEIGHT);
        image.depth = context_.asked.hasVolumes ? ask(GL_TEXTURE_DEPTH) : 1;
        image.border = context_.asked.isCore ? 0 : ask(GL_TEXTURE_BORDER);
        image.format = ask(GL_TEXTURE_INTERNAL_FORMAT);
        constexpr int formats[] = {0, GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB, GL_RGBA};
        if (image.format >= 0 && image.format < 5) // a number of components
            image.format = formats[image.format];
        return image;
    }

    static std::string sizeOf(const Image& image, int axes) {
        std::string text = std::to_string(image.width);
        if (axes > 1)
            text += " x " + std::to_string(image.height);
        if (axes > 2)
            text += " x " + std::to_string(image.depth);
        return text;
    }

    std::string difference(const Image& image, const Image& wanted, const std::string& what) const {
        if (image.width == 0)
            return what + " has no image";
        if (image.width != wanted.width || image.height != wanted.height || image.depth != wanted.depth)
            return what + " is " + sizeOf(image, target_.axes) + " and not " + sizeOf(wanted, target_.axes);
        if (image.border != wanted.border)
            return what + " has another border";
        if (image.format != wanted.format)
            return what + " has the format " + OGL::TokenName(static_cast<unsigned int>(image.format)) +
                   " and not " + OGL::TokenName(static_cast<unsigned int>(wanted.format));
        return "";
    }

    // Integers are not interpolated.
    std::string faultOfIntegers(int base, int filter) const {
        if (!context_.asked.isVersion(3, 0))
            return "";
        GLint type = 0;
        const unsigned int of =
            target_.target == GL_TEXTURE_CUBE_MAP ? GL_TEXTURE_CUBE_MAP_POSITIVE_X : target_.target;
        glGetTexLevelParameteriv(of, base, GL_TEXTURE_RED_TYPE_ARB, &type);
        if (type != GL_INT && type != GL_UNSIGNED_INT)
            return "";
        const int magnified = parameter(GL_TEXTURE_MAG_FILTER);
        if (magnified == GL_NEAREST && (filter == GL_NEAREST || filter == GL_NEAREST_MIPMAP_NEAREST))
            return "";
        return "its integers have the filter " + std::string(OGL::TokenName(static_cast<unsigned int>(
                                                     magnified != GL_NEAREST ? magnified : filter)));
    }

    const CheckedContext& context_;
    const Target& target_;
};

class Sampled {
public:
    explicit Sampled(CheckedContext& context) : context_(context), chooser_(context) {}

    // What the active program samples.
    Finding lookAtProgram() {
        for (const ProgramSampler& sampler : context_.programRecord->samplers) {
            const SamplerType* const type = findType(sampler.type);
            const Target* const target = type ? findTarget(type->target) : nullptr;
            if (!target)
                continue;
            GLint unit = 0;
            context_.functions.getUniformiv(context_.program, sampler.location, &unit);
            if (unit < 0 || unit >= 192) // no driver has as many
                continue;
            if (Finding finding = look(unit, *target, ", which " + sampler.name + " samples in unit "))
                return finding;
        }
        return {};
    }

    Finding lookAtUnits() {
        if (!context_.areUnitsKnown)
            learnUnits();
        for (int unit = 0; unit < context_.fixedUnits; ++unit) {
            const std::uint8_t enabled = context_.enabled[static_cast<std::size_t>(unit)];
            if (enabled == 0)
                continue;
            std::size_t strongest = fixedTargets - 1;
            while (!(enabled & 1u << strongest))
                --strongest;
            // With the nameless texture, which has no image, programs draw untextured.
            if (nameAt(unit, targets[strongest]) == 0)
                continue;
            if (Finding finding = look(unit, targets[strongest], ", which is enabled in unit "))
                return finding;
        }
        return {};
    }

private:
    void learnUnits() {
        context_.enabled.assign(static_cast<std::size_t>(context_.fixedUnits), 0);
        for (int unit = 0; unit < context_.fixedUnits; ++unit) {
            chooser_.choose(unit);
            for (std::size_t number = 0; number < fixedTargets; ++number)
                if (hasTarget(context_, number) && glIsEnabled(targets[number].target))
                    context_.enabled[static_cast<std::size_t>(unit)] |=
                        static_cast<std::uint8_t>(1u << number);
        }
        context_.areUnitsKnown = true;
    }

    std::uint32_t nameAt(int unit, const Target& target) {
        chooser_.choose(unit);
        return static_cast<std::uint32_t>(context_.integer(Capture::textureBindingOf(target.target)));
    }

    Finding look(int unit, const Target& target, const std::string& how) {
        const std::uint32_t name = nameAt(unit, target);
        std::string fault;
        bool isKnown = false;
        if (name != 0) {
            const std::lock_guard guard(context_.group->lock);
            const auto found = context_.group->textures.find(name);
            isKnown = found != context_.group->textures.end();
            if (isKnown)
                fault = found->second;
        }
        if (!isKnown) {
            fault = BoundTexture(context_, target).fault();
        }
        if (!isKnown && name != 0) { // which is another one in each context
            const GroupGuard guard(*context_.group);
            context_.group->textures[name] = fault;
        }
        if (fault.empty())
            return {};
        return {incompleteTexture, std::string(target.name) + ' ' + std::to_string(name) + how +
                                       std::to_string(unit) + ", is not complete: " + fault};
    }

    CheckedContext& context_;
    UnitChooser chooser_;
};

} // namespace

Finding findInvalidProgram(CheckedContext& context) {
    if (!context.programRecord)
        return {};
    const std::string name = "program " + std::to_string(context.program);
    if (!context.programRecord->isLinked)
        return {invalidProgram, name + " is not linked: its last link failed"};
    std::map<GLint, const ProgramSampler*> units;
    for (const ProgramSampler& sampler : context.programRecord->samplers) {
        GLint unit = 0;
        context.functions.getUniformiv(context.program, sampler.location, &unit);
        const auto [place, isFirst] = units.try_emplace(unit, &sampler);
        const ProgramSampler& other = *place->second;
        if (!isFirst && other.type != sampler.type)
            return {invalidProgram, name + " samples unit " + std::to_string(unit) + " by " +
                                        nameOfType(other.type) + ' ' + other.name + " and by " +
                                        nameOfType(sampler.type) + ' ' + sampler.name};
    }
    return {};
}

Finding findIncompleteTexture(CheckedContext& context) {
    // Sampler objects have filters of their own.
    static const auto samplers =
        laterNumbers({"glBindSampler", "glBindSamplers", "glTextureView", "glBindProgramPipeline"});
    if (wasCalledLater(samplers))
        return {};
    if (context.program != 0)
        return context.programRecord ? Sampled(context).lookAtProgram() : Finding();
    return context.hasOtherFragments || context.asked.isCore ? Finding() : Sampled(context).lookAtUnits();
}

void noticeToggle(CheckedContext& context, std::uint32_t capability, bool isOn) {
    const Target* const target = findTarget(capability);
    if (!target) {
        switch (capability) {
        case GL_VERTEX_PROGRAM_ARB:
        case GL_VERTEX_SHADER_EXT:
        case GL_FRAGMENT_PROGRAM_ARB:
        case GL_FRAGMENT_PROGRAM_NV:
        case GL_FRAGMENT_SHADER_ATI:
        case GL_TEXTURE_SHADER_NV:
            context.unknown |= changesProgram;
            break;
        default:
            break;
        }
        return;
    }
    context.unknown |= changesBindings;
    if (context.unknown & changesUnits || !context.areUnitsKnown)
        return;
    if (context.activeUnit < 0 && context.hasUnits) {
        context.unknown |= changesUnits;
        return;
    }
    const int unit = context.hasUnits ? context.activeUnit : 0;
    if (unit >= context.fixedUnits)
        return;
    const auto bit = static_cast<std::uint8_t>(1u << (target - targets));
    std::uint8_t& enabled = context.enabled[static_cast<std::size_t>(unit)];
    enabled = static_cast<std::uint8_t>(isOn ? enabled | bit : enabled & ~bit);
}

void noticeTextures(CheckedContext& context, const OGL::OpenGLCall& call) {
    std::uint32_t texture = 0;
    const std::string_view name = call.name();
    // Those of extensions may mean another texture than the one that is bound.
    const bool isPlain = name.starts_with("glTex") || name.starts_with("glCopyTexImage") ||
                         name.starts_with("glCompressedTexImage") || name.starts_with("glGenerateMipmap");
    if (isPlain && call.values() && mayAskDriver()) {
        auto target = static_cast<std::uint32_t>(call.values()[0].bits);
        if (target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z)
            target = GL_TEXTURE_CUBE_MAP;
        const Target* const known = findTarget(target);
        if (known && hasTarget(context, static_cast<std::size_t>(known - targets)))
            texture = static_cast<std::uint32_t>(context.integer(Capture::textureBindingOf(known->target)));
    }
    const GroupGuard guard(*context.group);
    if (texture != 0)
        context.group->textures.erase(texture);
    else
        context.group->textures.clear();
}

} // namespace ZLT::Interception
