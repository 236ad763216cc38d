#include "Devices.h"

#include "extensionator/ExtensionManager.h"
#include "ogl/ContextOffscreen.h"

#include <utility>

using namespace ZLT::OGL;

namespace {

ExtensionReport reportExtension(const ZLT::String& name) {
    const ExtensionManager& manager = *ExtensionManager::Instance();
    const teExtension extension = manager.extensionByName(name.c_str());
    ExtensionReport report;
    report.name = name;
    report.known = extension != EXTENSION_NOT_FOUND;
    if (!manager.isSupported(extension))
        for (const ZLT::String& function : manager.missingEntryPoints(extension))
            report.missing.emplace_back(function);
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
    report.vendor = manager.driverVendor();
    report.vendorKind = kindOf(manager.vendor());
    report.renderer = manager.driverRenderer();
    report.version = manager.driverVersion();
    report.shadingLanguage = manager.driverShadingLanguageVersion();
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
    const unsigned known = 10 * manager.majorVersion() + manager.minorVersion();
    for (const auto& [version, number] : {std::pair{"1_2", 12u},
                                          {"1_3", 13u},
                                          {"1_4", 14u},
                                          {"1_5", 15u},
                                          {"2_0", 20u},
                                          {"2_1", 21u},
                                          {"3_0", 30u}})
        if (number <= known)
            report.versions.push_back(reportExtension(ZLT::String("GL_VERSION_") + version));
    for (const ZLT::String& name : manager.driverExtensions())
        report.extensions.push_back(reportExtension(name));
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
