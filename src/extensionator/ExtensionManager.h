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
    // Managers are made and kept by the library itself, one thread at a time.
    friend class Context;
    friend class ContextOffscreen;
    friend class ContextWindowed;
    friend class ContextWrapped;
    friend class Library;

    // Reads the driver of `context`, which is left current. With null: the manager that supports nothing.
    explicit ExtensionManager(Context* context);
    // The manager of the device, made if there is none yet.
    static ExtensionManager* Create(const DISPLAY_DEVICEA& device);
    // Files the context's handle under the manager of its device.
    static void RegisterContext(Context& context);
    // Does nothing if it is filed already.
    static void file(HGLRC context, ExtensionManager* manager);
    static void UnRegisterContext(Context& context);
    static ExtensionManager* nullExtensionManager();

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

    static std::vector<ExtensionManager*> perDeviceEM_; // owns them, in order of creation
    static ExtensionManager* cachedNullExtMgrInstance;  // while the library is started
    // Set by Library, which is a floor above: a start that failed leaves the instance, but not this.
    static bool answersWithoutContext_;
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
