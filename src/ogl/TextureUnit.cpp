#include "ogl/TextureUnit.h"

#include "extensionator/ExtensionManager.h"
#include "ogl/AutoVector.h"
#include "ogl/Texture1D.h"
#include "ogl/Texture2D.h"
#include "ogl/Texture2DArray.h"
#include "ogl/Texture3D.h"
#include "ogl/TextureRECT.h"
#include "ogl/internal/TokenMap.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

#include <utility>

namespace ZLT::OGL {

namespace {

constexpr auto environments = internal::tokenMap<TextureUnit::Environment>(
    __LINE__, "!\"Environment enums are not all properly translated.\"",
    {GL_ADD, GL_BLEND, GL_COMBINE, GL_DECAL, GL_MODULATE, GL_REPLACE});

} // namespace

bool TextureUnit::isInitialized_ = false;
unsigned int TextureUnit::nMaxTextureUnit_ = 0;
AutoVector<TextureUnit>* TextureUnit::pavUnits_ = nullptr;

void TextureUnit::initialize() {
    ZLT_ASSERT(!pavUnits_);
    pavUnits_ = new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) AutoVector<TextureUnit>;
    isInitialized_ = true;
}

void TextureUnit::terminate() {
    isInitialized_ = false;
    ZLT_ASSERT(pavUnits_);
    ZLTDeleter<AutoVector<TextureUnit>>()(std::exchange(pavUnits_, nullptr));
}

bool TextureUnit::isInitialized() { return isInitialized_; }

void TextureUnit::Create(Context*) {
    ZLT_ASSERT(0 == nMaxTextureUnit_);
    const unsigned int count = ExtensionManager::Instance()->numberOfTextureUnits();
    AutoVector<TextureUnit> made;
    for (unsigned int unit = 0; unit < count; ++unit)
        made.push_back(new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) TextureUnit(unit));
    nMaxTextureUnit_ = count;
    // The set can't shrink here, as it can below: existing clients rely on it.
    pavUnits_->resize(count, nullptr);
    pavUnits_->swap(made);
}

void TextureUnit::Create(unsigned int count) {
    ZLT_ASSERT(isInitialized());
    AutoVector<TextureUnit> made;
    made.reserve(count);
    for (unsigned int unit = 0; unit < count; ++unit)
        made.push_back(new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) TextureUnit(unit));
    pavUnits_->swap(made);
}

void TextureUnit::Destroy() {
    ZLT_ASSERT(isInitialized());
    pavUnits_->clear();
    nMaxTextureUnit_ = 0;
}

TextureUnit* TextureUnit::Unit(unsigned int unit) {
    ZLT_ASSERT(isInitialized());
    ZLT_ASSERT(unit < ExtensionManager::Instance()->numberOfTextureUnits());
    ZLT_ASSERT(pavUnits_);
    ZLT_ASSERT(unit < (*pavUnits_).size());
    return (*pavUnits_)[unit];
}

void TextureUnit::verifyActiveTexture() const {
    if (!isInitialized_)
        ZLT_RAISE("TextureUnit::Create() was not called (Singleton not created.)");
}

void TextureUnit::bindName(unsigned int target, unsigned int name) const {
    verifyActiveTexture();
    glBindTexture(target, name);
}

void TextureUnit::enable(unsigned int target) const {
    verifyActiveTexture();
    glEnable(target);
}

void TextureUnit::disable(unsigned int target) const {
    verifyActiveTexture();
    glDisable(target);
}

bool TextureUnit::isEnabled(unsigned int target) const {
    verifyActiveTexture();
    return glIsEnabled(target) == 1;
}

// The texts of the rules say NULL. NOLINTBEGIN(modernize-use-nullptr)
void TextureUnit::bind(const Texture1D* tex1D) const {
    ZLT_ENFORCE(tex1D != NULL);
    bindName(GL_TEXTURE_1D, tex1D->objectID());
}
void TextureUnit::bind(const Texture2D* tex2D) const {
    ZLT_ENFORCE(tex2D != NULL);
    bindName(GL_TEXTURE_2D, tex2D->objectID());
}
void TextureUnit::bind(const Texture3D* tex3D) const {
    ZLT_ENFORCE(tex3D != NULL);
    bindName(GL_TEXTURE_3D, tex3D->objectID());
}
void TextureUnit::bind(const Texture2DArray* tex) const {
    ZLT_ENFORCE(tex != NULL);
    bindName(GL_TEXTURE_2D_ARRAY, tex->objectID());
}
void TextureUnit::bind(const TextureRECT* texRECT) const {
    ZLT_ENFORCE(texRECT != NULL);
    bindName(GL_TEXTURE_RECTANGLE_ARB, texRECT->objectID());
}
// NOLINTEND(modernize-use-nullptr)

void TextureUnit::bind1DDefault() const { bindName(GL_TEXTURE_1D, 0); }
void TextureUnit::bind2DDefault() const { bindName(GL_TEXTURE_2D, 0); }
void TextureUnit::bind3DDefault() const { bindName(GL_TEXTURE_3D, 0); }
void TextureUnit::bind2DArrayDefault() const { bindName(GL_TEXTURE_2D_ARRAY, 0); }
void TextureUnit::bindRECTDefault() const { bindName(GL_TEXTURE_RECTANGLE_ARB, 0); }

void TextureUnit::enable1D() const { enable(GL_TEXTURE_1D); }
void TextureUnit::enable2D() const { enable(GL_TEXTURE_2D); }
void TextureUnit::enable3D() const { enable(GL_TEXTURE_3D); }
void TextureUnit::enableRECT() const { enable(GL_TEXTURE_RECTANGLE_ARB); }
void TextureUnit::disable1D() const { disable(GL_TEXTURE_1D); }
void TextureUnit::disable2D() const { disable(GL_TEXTURE_2D); }
void TextureUnit::disable3D() const { disable(GL_TEXTURE_3D); }
void TextureUnit::disableRECT() const { disable(GL_TEXTURE_RECTANGLE_ARB); }
bool TextureUnit::isEnabled1D() const { return isEnabled(GL_TEXTURE_1D); }
bool TextureUnit::isEnabled2D() const { return isEnabled(GL_TEXTURE_2D); }
bool TextureUnit::isEnabled3D() const { return isEnabled(GL_TEXTURE_3D); }
bool TextureUnit::isEnabledRECT() const { return isEnabled(GL_TEXTURE_RECTANGLE_ARB); }

void TextureUnit::setEnv(Environment mode) const {
    verifyActiveTexture();
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, static_cast<GLint>(Environment2GL(mode)));
}

TextureUnit::Environment TextureUnit::getEnv() const {
    verifyActiveTexture();
    GLint mode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode);
    return GL2Environment(static_cast<unsigned int>(mode));
}

unsigned int TextureUnit::Environment2GL(Environment mode) { return environments.toGL(mode); }
TextureUnit::Environment TextureUnit::GL2Environment(unsigned int token) {
    return environments.fromGL(token);
}

} // namespace ZLT::OGL
