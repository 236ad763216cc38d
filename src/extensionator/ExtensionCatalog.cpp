// What is known, and what the driver has of it, by name and by number.

#include "extensionator/DriverStrings.h"
#include "extensionator/ExtensionManager.h"
#include "extensionator/OpenGLCall.h"
#include "extensionator/win/WglFunctions.h"
#include "platform/GL.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

namespace ZLT::OGL {

namespace {

constexpr std::string_view names[] = {
#include "extensionator/ExtensionNames.inl"
};

// The value of the exact name; `kind` is what it must begin with. Those of a kind don't all stand together.
teExtension valueOf(std::string_view name, std::string_view kind) {
    const auto* const found = name.starts_with(kind) ? std::ranges::find(names, name) : std::end(names);
    return found == std::end(names) ? EXTENSION_NOT_FOUND : teExtension(found - std::begin(names));
}

// The functions of the WGL extensions and whether each has an address now.
struct WglFunction {
    std::string_view extension;
    const char* name;
    bool (*isThere)();
};
constexpr WglFunction wglFunctions[] = {
#define ZLT_WGL_ENTRY(extension, name) {extension, "wgl" #name, [] { return _wcgm##name != nullptr; }},
#include "extensionator/WglEntryPoints.inl"
#undef ZLT_WGL_ENTRY
};

// Slots of the function table begin with the first entry outside GL 1.1.
constexpr unsigned int firstSlot = 336;

bool isSlotEmpty(const FunctionTable& table, std::size_t slot) {
    using Function = void (*)();
    Function function;
    std::memcpy(&function, reinterpret_cast<const char*>(&table) + slot * sizeof(Function), sizeof(Function));
    return !function;
}

} // namespace

std::vector<teExtension> ExtensionManager::knownExtensions() {
    std::vector<teExtension> known;
    for (std::size_t value = 0; value < std::size(names); ++value)
        known.push_back(teExtension(value));
    return known;
}

const char* ExtensionManager::extensionName(teExtension extension) {
    const auto value = static_cast<std::size_t>(extension);
    return value < std::size(names) ? names[value].data() : nullptr;
}

teExtension ExtensionManager::extensionByName(const char* name) {
    return name ? valueOf(name, "") : EXTENSION_NOT_FOUND;
}

teExtension ExtensionManager::nameToEnumGL(const char* name) { return valueOf(name, "GL_"); }
teExtension ExtensionManager::nameToEnumWGL(const char* name) { return valueOf(name, "WGL_"); }

bool ExtensionManager::isSupported(const char* name) const { return isSupported(extensionByName(name)); }

bool ExtensionManager::isVersionSupported(unsigned int major, unsigned int minor) const {
    if (major == 1 && minor <= 1)
        return nMajorVersion_ > 0;
    const std::string name = "GL_VERSION_" + std::to_string(major) + '_' + std::to_string(minor);
    return isSupported(name.c_str());
}

std::vector<teExtension> ExtensionManager::supportedExtensions() const {
    return {extensions_.begin(), extensions_.end()};
}

std::vector<String> ExtensionManager::missingEntryPoints(teExtension extension) const {
    std::vector<String> missing;
    const char* name = extensionName(extension);
    if (!name)
        return missing;
    const unsigned int end = openGLEntryCount();
    for (unsigned int number = firstSlot; number < end; ++number)
        if (std::string_view(openGLEntryGroup(number)) == name && isSlotEmpty(table(), number - firstSlot))
            missing.emplace_back(openGLEntryName(number));
    for (const WglFunction& function : wglFunctions)
        if (function.extension == name && !function.isThere())
            missing.emplace_back(function.name);
    return missing;
}

String ExtensionManager::driverVendor() const { return driverString(GL_VENDOR); }
String ExtensionManager::driverRenderer() const { return driverString(GL_RENDERER); }
String ExtensionManager::driverVersion() const { return driverString(GL_VERSION); }
String ExtensionManager::driverShadingLanguageVersion() const {
    return isVersionSupported(2, 0) || isSupported(GL_ARB_SHADING_LANGUAGE_100)
               ? driverString(GL_SHADING_LANGUAGE_VERSION)
               : String();
}

std::vector<String> ExtensionManager::driverExtensions() const {
    String all = OGL::driverExtensions(nMajorVersion_) + ' ';
    if (const char* wgl =
            _wcgmGetExtensionsStringARB ? _wcgmGetExtensionsStringARB(wglGetCurrentDC()) : nullptr)
        all += wgl;
    std::vector<String, ZLTAllocator<String>> tokens;
    TokenizeExtensionString(all, tokens);
    return {tokens.begin(), tokens.end()};
}

} // namespace ZLT::OGL
