#include "platform/linux/XErrors.h"

namespace ZLT::Platform {

namespace {

// One is in use at a time, under the lock of the state.
Display* watched = nullptr;
bool refused = false;
XErrorHandler others = nullptr;

int handle(Display* server, XErrorEvent* error) {
    if (server != watched)
        return others ? others(server, error) : 0;
    refused = true;
    return 0;
}

} // namespace

XErrors::XErrors(Display* server, Before before) : server_(server), before_(nullptr) {
    if (before == Before::theirs)
        XSync(server_, False);
    watched = server_;
    before_ = XSetErrorHandler(handle);
    others = before_;
    if (before == Before::drivers)
        XSync(server_, False);
    refused = false;
}

XErrors::~XErrors() {
    XSync(server_, False);
    XSetErrorHandler(before_);
    watched = nullptr;
}

bool XErrors::any() {
    XSync(server_, False);
    return refused;
}

} // namespace ZLT::Platform
