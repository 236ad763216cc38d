#include "Report.h"

#include "extensionator/ExtensionManager.h"
#include "extensionator/win/WglFunctions.h"
#include "ogl/ContextOffscreen.h"

#include <GL/gl.h>

#include <map>
#include <sstream>

using namespace ZLT::OGL;

namespace {

// All that the library knows, by name.
const std::map<std::string, teExtension>& knownExtensions() {
#define ZLT_EXTENSION(value, name) {name, value},
    static const std::map<std::string, teExtension> known = {
#include "Extensions.inl"
    };
#undef ZLT_EXTENSION
    return known;
}

// The entry points of each extension that have no address now.
std::multimap<std::string, std::string> missingEntryPoints() {
    const FunctionTable& table = ExtensionManager::Instance()->table();
    std::multimap<std::string, std::string> missing;
    const auto note = [&](const char* extension, const char* name, bool there) {
        if (!there)
            missing.emplace(extension, name);
    };
#define ZLT_GL_CORE_ENTRY(slot, group, name, result, parameters, arguments)
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    note(#group, "gl" #name, table.gl##name != nullptr);
#include "EntryPoints.inl"
#undef ZLT_GL_CORE_ENTRY
#undef ZLT_GL_ENTRY
#define ZLT_WGL_ENTRY(extension, name) note(extension, "wgl" #name, _wcgm##name != nullptr);
#include "WglEntryPoints.inl"
#undef ZLT_WGL_ENTRY
    return missing;
}

std::string driverText(GLenum name) {
    const auto* text = reinterpret_cast<const char*>(glGetString(name));
    return text ? text : "";
}

// The names that the driver gives: GL's own, then WGL's.
std::vector<std::string> namedExtensions() {
    std::istringstream names(
        driverText(GL_EXTENSIONS) + ' ' +
        (_wcgmGetExtensionsStringARB ? _wcgmGetExtensionsStringARB(wglGetCurrentDC()) : ""));
    std::vector<std::string> list;
    for (std::string name; names >> name;)
        list.push_back(name);
    return list;
}

ExtensionReport reportExtension(const std::string& name,
                                const std::multimap<std::string, std::string>& missing) {
    ExtensionReport report;
    report.name = name;
    const auto known = knownExtensions().find(name);
    report.known = known != knownExtensions().end();
    if (report.known && !ExtensionManager::Instance()->isSupported(known->second)) {
        const auto [begin, end] = missing.equal_range(name);
        for (auto entry = begin; entry != end; ++entry)
            report.missing.push_back(entry->second);
    }
    return report;
}

const char* kindOf(ExtensionManager::teVendor vendor) {
    switch (vendor) {
    case ExtensionManager::VENDOR_ATI:
        return "ATI";
    case ExtensionManager::VENDOR_NVIDIA:
        return "NVIDIA";
    case ExtensionManager::VENDOR_INTEL:
        return "Intel";
    default:
        return "unknown";
    }
}

DeviceReport reportDevice(const DISPLAY_DEVICEA& device) {
    const ContextOffscreen context(device);
    context.makeCurrent();
    ExtensionManager& manager = *ExtensionManager::Instance();
    DeviceReport report;
    report.name = device.DeviceName;
    report.adapter = device.DeviceString;
    report.primary = (device.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE) != 0;
    report.vendor = driverText(GL_VENDOR);
    report.vendorKind = kindOf(manager.vendor());
    report.renderer = driverText(GL_RENDERER);
    report.version = driverText(GL_VERSION);
    report.majorVersion = manager.majorVersion();
    report.minorVersion = manager.minorVersion();
    report.releaseVersion = manager.hasReleaseVersion() ? static_cast<int>(manager.releaseVersion()) : -1;
    report.additionalVersionInfo = manager.additionalVersionInfo();
    report.textureUnits = manager.numberOfTextureUnits();
    report.capabilities = {
        {"16-bit floating point", manager.supports16BitFloat()},
        {"clamp to edge", manager.supportsClampToEdge()},
        {"draw buffers", manager.supportsDrawBuffers()},
        {"floating-point textures", manager.supportsFloatingPointTextures()},
        {"filtering of 16-bit floats", manager.supportsHalfFiltering()},
        {"filtering of 32-bit floats", manager.supportsFloatFiltering()},
        {"multitexture", manager.supportsMultiTexture()},
        {"non-power-of-two textures", manager.supportsNonPowerOfTwoTextures()},
        {"pixel buffers", manager.supportsPixelBuffers()},
        {"render to texture", manager.supportsRenderToTexture()},
        {"render to rectangle texture", manager.supportsRenderToTextureRectangle()},
        {"3D textures", manager.supportsTexture3D()},
        {"vertical retrace control", Context::supportsVerticalRetraceControl()},
    };
    const auto missing = missingEntryPoints();
    const unsigned known = 10 * manager.majorVersion() + manager.minorVersion();
    for (const auto& [version, number] : {std::pair{"1_2", 12u},
                                          {"1_3", 13u},
                                          {"1_4", 14u},
                                          {"1_5", 15u},
                                          {"2_0", 20u},
                                          {"2_1", 21u},
                                          {"3_0", 30u}})
        if (number <= known)
            report.versions.push_back(reportExtension(std::string("GL_VERSION_") + version, missing));
    for (const std::string& name : namedExtensions())
        report.extensions.push_back(reportExtension(name, missing));
    releaseOGLContext();
    return report;
}

} // namespace

std::vector<DeviceReport> reportDevices() {
    std::vector<DeviceReport> devices;
    for (std::size_t i = 0; i < Context::numDisplayDevice(); ++i) {
        DISPLAY_DEVICEA device = {};
        Context::displayDevice(i, device);
        devices.push_back(reportDevice(device));
    }
    return devices;
}
