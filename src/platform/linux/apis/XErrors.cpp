#include "platform/linux/apis/XErrors.h"

// Last: it defines min and max.
#include <X11/Xlibint.h>
#undef min
#undef max

namespace ZLT::Platform {

struct XErrors::Filter {
    Display* display;
    unsigned long first; // request whose error is ours
    bool refused = false;
    _XAsyncHandler handler = {};

    // Called with the display locked, on the thread that reads the answer.
    static Bool handle(Display* display, xReply* reply, char*, int, XPointer data) {
        auto* filter = reinterpret_cast<Filter*>(data);
        if (reply->generic.type != X_Error || display->last_request_read < filter->first)
            return False;
        filter->refused = true;
        return True;
    }
};

XErrors::XErrors(Display* display) : filter_(new Filter{display, 0}) {
    LockDisplay(display);
    filter_->first = display->request + 1;
    filter_->handler.next = display->async_handlers;
    filter_->handler.handler = Filter::handle;
    filter_->handler.data = reinterpret_cast<XPointer>(filter_.get());
    display->async_handlers = &filter_->handler;
    UnlockDisplay(display);
}

XErrors::~XErrors() {
    XSync(filter_->display, False);
    LockDisplay(filter_->display);
    DeqAsyncHandler(filter_->display, &filter_->handler);
    UnlockDisplay(filter_->display);
}

bool XErrors::any() {
    XSync(filter_->display, False);
    return filter_->refused;
}

void keepErrorsFromProgram(Display* display) {
    static _XAsyncHandler all;
    all.handler = [](Display*, xReply* reply, char*, int, XPointer) -> Bool {
        return reply->generic.type == X_Error;
    };
    LockDisplay(display);
    all.next = display->async_handlers;
    display->async_handlers = &all;
    UnlockDisplay(display);
    XSetIOErrorExitHandler(
        display, [](Display*, void*) {}, nullptr);
}

} // namespace ZLT::Platform
