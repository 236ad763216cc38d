#pragma once

#include "Export.h"

#include <cstdint>

namespace ZLT::OGL {

class Context;
class Library;
class Texture1D;
class Texture2D;
class Texture2DArray;
class Texture3D;
class TextureRECT;
template <class T>
class AutoVector;

/// The texture units of the fixed pipeline. There is one set for the process, made while the library starts:
///
///     TextureState::setActiveTextureUnit(1);
///     TextureUnit::Unit(1)->bind(&texture);
///
/// No method makes its unit active: each acts on the unit that is active in the current context, whichever
/// object it is called on. Methods throw InternalException "TextureUnit::Create() was not called
/// (Singleton not created.)" while the library is stopped. One thread starts and stops, while no other
/// uses the units.
class ZLT_OGL_API TextureUnit {
public:
    /// What a unit does with a texel and the colour so far; enumerators are the GL tokens without their
    /// `GL_`.
    enum class Environment : unsigned int {
        ADD = 0,
        BLEND = 1,
        COMBINE = 2,
        DECAL = 3,
        MODULATE = 4,
        REPLACE = 5,
    };

    TextureUnit(const TextureUnit&) = delete;
    TextureUnit& operator=(const TextureUnit&) = delete;

    /// The unit of this number, from 0. It lives until the library stops.
    /// @throws InternalException "isInitialized()" before the library has started, "unit <
    ///         ExtensionManager::Instance()->numberOfTextureUnits()" for a unit that the current context
    ///         lacks, "pavUnits_", "unit < (*pavUnits_).size()" for one that no display device had at the
    ///         start
    static TextureUnit* Unit(unsigned int unit);

    /// @name Bind a texture in the active unit
    /// @throws InternalException "Enforce tex1D != NULL" (tex2D, tex3D, tex, texRECT) for null
    /// @{
    void bind(const Texture1D* tex1D) const;
    void bind(const Texture2D* tex2D) const;
    void bind(const Texture3D* tex3D) const;
    void bind(const Texture2DArray* tex) const;
    void bind(const TextureRECT* texRECT) const;
    /// @}

    /// @name Bind no texture
    /// @{
    void bind1DDefault() const;
    void bind2DDefault() const;
    void bind3DDefault() const;
    void bind2DArrayDefault() const;
    void bindRECTDefault() const;
    /// @}

    /// @name Texturing of the fixed pipeline
    /// @{
    void enable1D() const;
    void enable2D() const;
    void enable3D() const;
    void enableRECT() const;
    void disable1D() const;
    void disable2D() const;
    void disable3D() const;
    void disableRECT() const;
    bool isEnabled1D() const;
    bool isEnabled2D() const;
    bool isEnabled3D() const;
    bool isEnabledRECT() const;

    void setEnv(Environment mode) const;
    /// @throws InternalException as GL2Environment(), for a mode outside the enumeration
    Environment getEnv() const;
    /// @}

    /// @name Translation
    /// @throws InternalException "!\"Environment enums are not all properly translated.\""
    /// @{
    static unsigned int Environment2GL(Environment mode);
    static Environment GL2Environment(unsigned int token);
    /// @}

    /// Makes room for the units. The library calls it.
    /// @throws InternalException "!pavUnits_" when it was called before, even by a start that failed later
    static void initialize();
    /// Destroys the units. The library calls it; a client does after a start that failed, before the next.
    /// Never while the library is started: it could neither stop nor start again.
    /// @throws InternalException "pavUnits_" without initialize()
    static void terminate();

private:
    friend class Library;

    explicit TextureUnit(std::uint64_t unit) : unit_(unit) {}

    static bool isInitialized();
    // As many as the current context has; the context itself isn't queried.
    static void Create(Context* context);
    // As many as this.
    static void Create(unsigned int count);
    static void Destroy();

    // Checks that there are units; which one is active doesn't matter.
    void verifyActiveTexture() const;
    void bindName(unsigned int target, unsigned int name) const;
    void enable(unsigned int target) const;
    void disable(unsigned int target) const;
    bool isEnabled(unsigned int target) const;

    static bool isInitialized_;
    static unsigned int nMaxTextureUnit_; // by Create(Context*) alone
    static AutoVector<TextureUnit>* pavUnits_;

    [[maybe_unused]] std::uint64_t unit_; // its number, for a debugger to show
};

} // namespace ZLT::OGL
