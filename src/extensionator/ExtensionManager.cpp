#include "extensionator/ExtensionManager.h"

#include "zlt/core/Enforce.h"

#include <utility>

namespace ZLT::OGL {

const ExtensionManager::InitOptions ExtensionManager::oInitOptions_;

ExtensionManager::ExtensionManager(std::shared_ptr<FunctionTable> table) : tableExt_(std::move(table)) {}
ExtensionManager::~ExtensionManager() = default;

const FunctionTable& ExtensionManager::table() const {
    ZLT_ASSERT(tableExt_.get() != 0); // NOLINT(modernize-use-nullptr): the rule's text is known to clients
    return *tableExt_;
}

bool ExtensionManager::isSupported(teExtension extension) const { return extensions_.contains(extension); }

unsigned int ExtensionManager::majorVersion() const { return nMajorVersion_; }
unsigned int ExtensionManager::minorVersion() const { return nMinorVersion_; }
bool ExtensionManager::hasReleaseVersion() const { return nReleaseVersion_ != -1; }

unsigned int ExtensionManager::releaseVersion() const {
    ZLT_ASSERT(nReleaseVersion_ != -1);
    return static_cast<unsigned int>(nReleaseVersion_);
}

String ExtensionManager::additionalVersionInfo() const { return additionalVersionInfo_; }
ExtensionManager::teVendor ExtensionManager::vendor() const { return vendor_; }

const ExtensionManager::InitOptions& ExtensionManager::initOptions() { return oInitOptions_; }

} // namespace ZLT::OGL
