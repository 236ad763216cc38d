#include "platform/linux/XErrors.h"

#include <atomic>

namespace ZLT::Platform {

namespace {

// An error is reported on the thread that waits for it, so each thread has its own. The program's handler is
// kept once, under the lock; an error of another thread finds its way to it.
thread_local XErrors* innermost = nullptr;
std::atomic<XErrorHandler> programs = nullptr;

} // namespace

int XErrors::handle(Display* server, XErrorEvent* error) {
    for (XErrors* errors = innermost; errors; errors = errors->outer_)
        if (errors->server_ == server) {
            errors->refused_ = true;
            return 0;
        }
    const XErrorHandler handler = programs;
    return handler ? handler(server, error) : 0;
}

XErrors::XErrors(Display* server, Before before)
    : server_(server), waits_(before != Before::nothing), outer_(innermost) {
    if (before == Before::theirs)
        XSync(server_, False);
    innermost = this;
    if (!outer_)
        programs = XSetErrorHandler(handle);
    if (before == Before::drivers)
        XSync(server_, False);
    refused_ = false;
}

XErrors::~XErrors() {
    if (waits_)
        XSync(server_, False);
    innermost = outer_;
    if (!outer_)
        XSetErrorHandler(programs);
}

bool XErrors::any() {
    XSync(server_, False);
    return refused_;
}

} // namespace ZLT::Platform
