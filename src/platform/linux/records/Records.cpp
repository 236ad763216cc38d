#include "platform/linux/records/Records.h"

namespace ZLT::Platform {

int excess(const Format& format, const Format& wanted) {
    if (format.samples != wanted.samples || format.floatingPoint != wanted.floatingPoint)
        return -1;
    int more = 0;
    for (const auto bits :
         {&Format::red, &Format::green, &Format::blue, &Format::alpha, &Format::depth, &Format::stencil}) {
        if (format.*bits < wanted.*bits)
            return -1;
        more += format.*bits - wanted.*bits;
    }
    return more;
}

bool servesFor(const Format& format, const Format& wanted) {
    return format.pbuffer >= wanted.pbuffer && format.window >= wanted.window &&
           (!wanted.window || format.visual == wanted.visual);
}

Records& records() {
    static Records& only = *new Records;
    return only;
}

std::size_t liveHandles() {
    Records& all = records();
    const std::lock_guard guard(all.lock);
    std::size_t count = 0;
    for (const auto& [handle, window] : all.windows)
        count += window->toolkits ? 0 : 1;
    for (const auto& [handle, drawable] : all.drawables)
        count += drawable->isPbuffer() ? 1 : 0;
    for (const auto& [handle, context] : all.contexts)
        count += context->isForeign() ? 0 : 1;
    return count;
}

} // namespace ZLT::Platform
