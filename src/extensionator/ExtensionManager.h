#pragma once

#include "Export.h"
#include "extensionator/Extension.h"
#include "extensionator/FunctionTable.h"
#include "platform/Platform.h"
#include "zlt/core/memory/ZLTAllocator.h"

#include <functional>
#include <memory>
#include <set>
#include <vector>

namespace ZLT::OGL::internal {
class Managers;
} // namespace ZLT::OGL::internal

namespace ZLT::OGL {

class Context;

/// Options of a start. Kept for clients that set them: neither changes what the library does.
class ZLT_OGL_API StartOptions {
public:
    /// True from the start.
    bool throwOnNullContext() const { return throwOnNullContext_; }
    void setThrowOnNullContext(bool on) { throwOnNullContext_ = on; }
    /// True from the start.
    bool flushOnMakeCurrentMacOnly() const { return flushOnMakeCurrentMacOnly_; }
    void setFlushOnMakeCurrentMacOnly(bool on) { flushOnMakeCurrentMacOnly_ = on; }

private:
    bool throwOnNullContext_ = true;
    bool flushOnMakeCurrentMacOnly_ = true;
};

/// What the driver of one display device offers: version, vendor, extensions and entry points.
///
///     if (ExtensionManager::Instance()->isSupported(GL_EXT_FRAMEBUFFER_OBJECT))
///         ExtensionManager::Instance()->table().glGenFramebuffersEXT(1, &name);
///
/// There is one manager for each display device name, and contexts of one name share it. Managers are made
/// while the library starts, or by the first context on a new device, and live until the library stops; what
/// they know is fixed from then on, so that any thread may read it. Only what the driver names is loaded:
/// check isSupported() before a call through table().
class ZLT_OGL_API ExtensionManager {
public:
    /// The driver's vendor, from `GL_VENDOR`.
    enum teVendor {
        VENDOR_UNKNOWN = 0,
        VENDOR_ATI = 1,
        VENDOR_NVIDIA = 2,
        VENDOR_INTEL = 3,
    };

    class ZLT_OGL_API InitOptions : public StartOptions {};

    ExtensionManager(const ExtensionManager&) = delete;
    ExtensionManager& operator=(const ExtensionManager&) = delete;
    ~ExtensionManager();

    /// The manager of the calling thread's current context. With no context current, while the library is
    /// started, it is a manager that supports nothing and whose table is all null. Callable from any thread;
    /// each call makes one lookup, without allocation.
    /// @throws InternalException "currentContext either not created with ZLT::OGL" when the current context
    ///         is not known to the library (wrap it in a ContextWrapped) or has outlived a stop of it, or
    ///         when none is current and the library is not started
    static ExtensionManager* Instance();

    /// The entry points, null where the version or extension was not loaded or the driver had none. Lives as
    /// long as the manager.
    const FunctionTable& table() const;

    /// Whether the driver named the version or extension and had all its entry points.
    bool isSupported(teExtension extension) const;

    /// 3 and 0 for every driver of 3.0 or later; 0 and 0 with no context.
    unsigned int majorVersion() const;
    unsigned int minorVersion() const;
    /// Whether the driver's version has a third number.
    bool hasReleaseVersion() const;
    /// @throws InternalException "nReleaseVersion_ != -1" without one
    unsigned int releaseVersion() const;
    /// What follows the numbers in the driver's version string.
    String additionalVersionInfo() const;
    teVendor vendor() const;

    /// Loads the entry points of a GL or WGL extension that was left out when the manager was made, into
    /// table() or the `_wcgm` pointers. The context of the manager must be current, and no other thread may
    /// use the manager. isSupported() does not change.
    /// @return whether there is an address for each of them: on Windows, whether the driver has them. On
    ///         Linux the system's GL library has one for every name of GL, whatever the driver has.
    bool initialize(teExtension extension);
    /// The same for the GL versions and extensions alone; false for a WGL extension.
    bool initializeGL(teExtension extension);
    /// The value of the GL version or extension of this exact name, such as "GL_ARB_multitexture" or
    /// "GL_VERSION_2_0", or EXTENSION_NOT_FOUND. `name` must not be null.
    teExtension nameToEnumGL(const char* name);

    /// @name What is known, and what the driver has of it
    /// By number is by teExtension, by name is "GL_VERSION_2_0", "GL_ARB_multitexture", "WGL_ARB_pbuffer".
    ///
    ///     const ExtensionManager& manager = *ExtensionManager::Instance();
    ///     for (const String& name : manager.driverExtensions())
    ///         if (!manager.isSupported(name.c_str()))
    ///             for (const String& function :
    ///             manager.missingEntryPoints(manager.extensionByName(name.c_str())))
    ///                 std::cerr << name << " lacks " << function << '\n';
    /// @{

    /// All versions and extensions that the library knows, in the order of their values. Needs no context.
    static std::vector<teExtension> knownExtensions();
    /// The name, a constant that lives as long as the library; null for a value that is none. Needs no
    /// context.
    static const char* extensionName(teExtension extension);
    /// The value of the GL or WGL version or extension of exactly this name, or EXTENSION_NOT_FOUND, for null
    /// too. Needs no context.
    static teExtension extensionByName(const char* name);
    /// As isSupported() of the value; false for a name that is not known and for null.
    bool isSupported(const char* name) const;
    /// Whether the driver has all of this version of GL: (2, 1). True for 1.1 and before with any driver,
    /// false for a version after 3.0, which the library does not know.
    bool isVersionSupported(unsigned int major, unsigned int minor) const;
    /// What isSupported() is true for, in the order of the values.
    std::vector<teExtension> supportedExtensions() const;
    /// The functions of the version or extension that have no address: "glGenBuffersARB". All of them, where
    /// the driver did not name it. Those of WGL are looked for in the `_wcgm` pointers of the process.
    std::vector<String> missingEntryPoints(teExtension extension) const;

    /// The driver's own strings. A context of this manager must be current; empty where the driver gives
    /// none.
    String driverVendor() const;
    String driverRenderer() const;
    String driverVersion() const;
    /// Empty before GLSL.
    String driverShadingLanguageVersion() const;
    /// All names that the driver gives, known or not: those of GL, then those of WGL. A context of this
    /// manager must be current.
    std::vector<String> driverExtensions() const;
    /// @}

    /// The options with which the managers are made: the default ones.
    static const InitOptions& initOptions();

    /// @name Capabilities
    /// What the driver can do, by its version and extensions together. Those marked so answer for the manager
    /// of the current context, whichever object they are called on, and throw as Instance() does.
    /// @{
    bool supportsFloatingPointTextures() const;
    /// Of the current context's manager.
    bool supports16BitFloat() const;
    bool supportsMultiTexture() const;
    bool supportsDrawBuffers() const;
    bool supportsClampToEdge() const;
    bool supportsTexture3D() const;
    /// Of the current context's manager.
    bool supportsRenderToTexture() const;
    /// Of the current context's manager.
    bool supportsRenderToTextureRectangle() const;
    /// Of the current context's manager.
    bool supportsPixelBuffers() const;
    bool supportsNonPowerOfTwoTextures() const;
    /// How many texture image units a shader or the fixed pipeline has; a context of this manager must be
    /// current.
    unsigned int numberOfTextureUnits() const;
    /// Whether textures of 16-bit floats can be filtered linearly. The vendor decides where that is enough,
    /// otherwise an experiment, whose answer is kept for the manager's life. A context of this manager must
    /// be current, and is current again after the experiment, which draws on a context of its own on the
    /// primary display. It needs a started library and `WGL_ARB_render_texture`; when it fails the answer is
    /// no. Without `GL_EXT_gpu_shader4` the answer is no.
    bool supportsHalfFiltering();
    /// The same for 32-bit floats; `GL_EXT_gpu_shader4` counts for NVIDIA's drivers alone.
    bool supportsFloatFiltering();
    /// @}

    /// @name Loaders
    /// One for each GL version and extension: loads its entry points, as initializeGL() does.
    /// @{
#include "extensionator/ExtensionLoaders.inl"
    /// @}

private:
    friend class internal::Managers; // which makes and keeps them

    // One that supports nothing by name, and has these entry points.
    explicit ExtensionManager(std::shared_ptr<FunctionTable> table);

    // Reads the driver of `context`, which is left current. With null: the manager that supports nothing.
    explicit ExtensionManager(Context* context);

    static void TokenizeVersionString(const String& version, unsigned int& major, unsigned int& minor,
                                      int& release, String& additional);
    static void TokenizeExtensionString(const String& extensions,
                                        std::vector<String, ZLTAllocator<String>>& names);

    void loadVersions();
    void tryVersion(teExtension version);
    void loadExtensions(const String& names);
    void loadWglExtensions();
    teExtension nameToEnumWGL(const char* name);
    bool initializeWGL(teExtension extension);

    bool testHalfFiltering();
    bool testFloatFiltering();
    bool testFiltering(unsigned int internalFormat);

    static const InitOptions oInitOptions_;

    std::set<teExtension, std::less<>, ZLTAllocator<teExtension>> extensions_;
    unsigned int nMajorVersion_ = 0;
    unsigned int nMinorVersion_ = 0;
    int nReleaseVersion_ = -1;
    String additionalVersionInfo_;
    teVendor vendor_ = VENDOR_UNKNOWN;
    bool supportsNonPowerOfTwo_ = false;
    // The experiments' results, each made by the first call that needs it; not locked.
    bool halfFilteringTested_ = false;
    bool halfFilteringResult_ = false;
    bool floatFilteringTested_ = false;
    bool floatFilteringResult_ = false;
    std::shared_ptr<FunctionTable> tableExt_;
    String deviceName_; // the key; empty for the one that supports nothing
};

} // namespace ZLT::OGL
