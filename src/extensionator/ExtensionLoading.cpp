// How a manager is filled from the driver's strings.

#include "extensionator/DriverStrings.h"
#include "extensionator/ExtensionManager.h"
#include "ogl/Context.h"
#include "zlt/core/Memory.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <locale>
#include <sstream>
#include <string_view>

namespace ZLT::OGL {

namespace {

// As a stream extracts it. Without any text, `value` stays; 0 where another text stands than a number.
template <class Number>
void extract(const String& text, Number& value) {
    std::istringstream in{std::string(text)};
    in.imbue(std::locale::classic());
    in >> value;
}

} // namespace

ExtensionManager::ExtensionManager(Context* context)
    : tableExt_(new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) FunctionTable(), ZLTDeleter<FunctionTable>(),
                ZLTAllocator<FunctionTable>()) {
    if (!context)
        return;
    deviceName_ = context->deviceName();
    context->makeCurrent();

    const String vendor = driverString(GL_VENDOR);
    if (vendor.find("ATI") != String::npos)
        vendor_ = VENDOR_ATI;
    else if (vendor.find("NVIDIA") != String::npos)
        vendor_ = VENDOR_NVIDIA;
    else if (vendor.find("Intel") != String::npos)
        vendor_ = VENDOR_INTEL;
    TokenizeVersionString(driverString(GL_VERSION), nMajorVersion_, nMinorVersion_, nReleaseVersion_,
                          additionalVersionInfo_);
    const String extensions = OGL::driverExtensions(nMajorVersion_);

    loadVersions();
    loadExtensions(extensions);
    loadWglExtensions();

    // On this one vendor the version doesn't count: 2.0 came with hardware that lacks it.
    supportsNonPowerOfTwo_ = isSupported(GL_ARB_TEXTURE_NON_POWER_OF_TWO) ||
                             (vendor_ != VENDOR_NVIDIA && isSupported(OPEN_GL_2_0));
}

// A version is loaded when the driver's is exactly it, or a later one was: one that is neither (1.1, 2.2)
// loads nothing, and existing clients rely on it.
void ExtensionManager::loadVersions() {
    bool atOrAbove = false;
    if (nMajorVersion_ >= 3) {
        nMajorVersion_ = 3;
        nMinorVersion_ = 0;
    }
    const struct {
        unsigned int major, minor;
        teExtension version;
    } steps[] = {{3, 0, OPEN_GL_3_0}, {2, 1, OPEN_GL_2_1}, {2, 0, OPEN_GL_2_0}, {1, 5, OPEN_GL_1_5},
                 {1, 4, OPEN_GL_1_4}, {1, 3, OPEN_GL_1_3}, {1, 2, OPEN_GL_1_2}};
    for (const auto& step : steps) {
        if (!atOrAbove && (nMajorVersion_ != step.major || nMinorVersion_ != step.minor))
            continue;
        tryVersion(step.version);
        atOrAbove = true;
    }
}

void ExtensionManager::tryVersion(teExtension version) {
    if (initializeGL(version))
        extensions_.insert(version);
}

void ExtensionManager::loadExtensions(const String& names) {
    std::vector<String, ZLTAllocator<String>> tokens;
    TokenizeExtensionString(names, tokens);
    for (const String& name : tokens) {
        const teExtension value = nameToEnumGL(name.c_str());
        if (value != EXTENSION_NOT_FOUND && initializeGL(value))
            extensions_.insert(value);
    }
}

void ExtensionManager::TokenizeVersionString(const String& version, unsigned int& major, unsigned int& minor,
                                             int& release, String& additional) {
    release = -1;
    additional.clear();
    const String::size_type point = version.find('.');
    extract(version.substr(0, point), major);
    // Without a point, both numbers are read from the whole text.
    const String::size_type begin = point == String::npos ? 0 : point + 1;
    String::size_type end = version.find_first_of(" .", begin);
    extract(version.substr(begin, end - begin), minor);
    if (end == String::npos)
        return;
    if (version[end] == '.') {
        const String::size_type third = end + 1;
        end = version.find(' ', third);
        extract(version.substr(third, end - third), release);
        if (end == String::npos)
            return;
    }
    additional = version.substr(end + 1);
}

void ExtensionManager::TokenizeExtensionString(const String& extensions,
                                               std::vector<String, ZLTAllocator<String>>& names) {
    String::size_type begin = 0;
    while ((begin = extensions.find_first_not_of(' ', begin)) != String::npos) {
        const String::size_type end = extensions.find(' ', begin);
        names.push_back(extensions.substr(begin, end - begin));
        begin = end;
    }
}

bool ExtensionManager::initializeGL(teExtension extension) {
    switch (extension) {
#include "extensionator/ExtensionCases.inl"
#include "platform/GL.h"
    default:
        return false;
    }
}

bool ExtensionManager::initialize(teExtension extension) {
    return initializeGL(extension) || initializeWGL(extension);
}

} // namespace ZLT::OGL
