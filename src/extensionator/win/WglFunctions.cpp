// The WGL extensions, into process-wide pointers.

#include "extensionator/win/WglFunctions.h"

#include "extensionator/ExtensionManager.h"
#include "extensionator/Load.h"

// NOLINTBEGIN(bugprone-reserved-identifier)
namespace ZLT {
#include "extensionator/WglFunctions.inl"
} // namespace ZLT
// NOLINTEND(bugprone-reserved-identifier)

namespace ZLT::OGL {

void ExtensionManager::loadWglExtensions() {
    // WGL_EXT_extensions_string is not tried in its place: clients know a driver without the ARB one as one
    // without WGL extensions.
    if (!initializeWGL(WGL_ARB_EXTENSIONS_STRING))
        return;
    const char* text = _wcgmGetExtensionsStringARB(wglGetCurrentDC());
    std::vector<String, ZLTAllocator<String>> names;
    TokenizeExtensionString(text ? text : "", names);
    for (const String& name : names) {
        const teExtension value = nameToEnumWGL(name.c_str());
        if (value < EXTENSION_NOT_FOUND && initializeWGL(value))
            extensions_.insert(value);
    }
}

bool ExtensionManager::initializeWGL(teExtension extension) {
    switch (extension) {
#include "extensionator/WglCases.inl"
    default:
        return false;
    }
}

} // namespace ZLT::OGL
