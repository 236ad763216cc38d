#include "AutoInitializer.h"

namespace ZLT::OGL {

AutoInitializer::AutoInitializer(const Library::InitOptions& options) : active_(true), deprecated_(false) {
    Library::initialize(options);
}

AutoInitializer::AutoInitializer(Context* context, const ExtensionManager::InitOptions& options)
    : active_(true), deprecated_(true) {
    Library::initialize_DEPRECATED_2_5(context, options);
}

AutoInitializer::~AutoInitializer() {
    if (!active_)
        return;
    try {
        if (deprecated_)
            Library::terminate_DEPRECATED_2_5();
        else
            Library::terminate();
    } catch (...) { // NOLINT(bugprone-empty-catch): the end of a scope can't report it
    }
}

void AutoInitializer::release() { active_ = false; }

} // namespace ZLT::OGL
