#include "platform/linux/adoption/Adoption.h"

#include "platform/linux/apis/Egl.h"
#include "platform/linux/apis/Glx.h"

namespace ZLT::Platform {

std::atomic<bool> foreignContextsSeen = false;

namespace {

// Counts the records of others that went: what was found before holds no longer.
std::atomic<unsigned> forgotten = 0;

bool isNative(const ContextRecord& context, const Native& native) {
    return context.native && native.api == context.api && native.context == context.native &&
           native.display == context.display;
}

// The owner closes a display: nothing of it may be touched any more. Runs in the owner's XCloseDisplay.
void forgetDisplay(void* display) {
    Records& all = records();
    const std::lock_guard guard(all.lock);
    all.watchedDisplays.erase(display);
    const auto isOfIt = [&](const auto& record) { return record.api == &glx() && record.display == display; };
    const auto forgetSurfaces = [&](Drawable& drawable) { std::erase_if(drawable.surfaces, isOfIt); };
    for (const auto& [handle, drawable] : all.drawables)
        forgetSurfaces(*drawable);
    for (const auto& [handle, context] : all.contexts)
        if (isOfIt(*context))
            context->native = nullptr;
    std::erase_if(all.drawables,
                  [&](const auto& entry) { return entry.second->isForeign() && isOfIt(*entry.second); });
    std::erase_if(all.contexts,
                  [&](const auto& entry) { return entry.second->isForeign() && isOfIt(*entry.second); });
    ++forgotten;
}

HGLRC contextOf(Records& all, const Native& native) {
    for (const auto& [handle, context] : all.contexts)
        if (isNative(*context, native))
            return handle;
    const auto made = std::make_shared<ContextRecord>();
    made->handle = all.newHandle<HGLRC>();
    made->api = native.api;
    made->display = native.display;
    made->native = native.context;
    made->used = true;
    all.contexts[made->handle] = made;
    return made->handle;
}

HDC deviceOf(Records& all, const Native& native, HGLRC owner) {
    std::shared_ptr<Drawable> found;
    for (const auto& [handle, drawable] : all.drawables)
        if (drawable->isForeign() && drawable->api == native.api && drawable->display == native.display &&
            drawable->draw == native.draw && drawable->read == native.read)
            found = drawable;
    if (!found) {
        found = std::make_shared<Drawable>();
        found->handle = all.newHandle<HDC>();
        found->api = native.api;
        found->display = native.display;
        found->draw = native.draw;
        found->read = native.read;
        all.drawables[found->handle] = found;
    }
    found->owner = find(all.contexts, owner); // the last one was perhaps another
    return found->handle;
}

// Somebody else may have put back what it found current here: then the pair is known, all of it. Empty when
// it is not. The caller holds the lock.
Pins ownPairOf(const Records& all, const Native& native) {
    Pins pair;
    for (const auto& [handle, context] : all.contexts)
        if (!context->isForeign() && isNative(*context, native))
            pair.context = context;
    if (!pair.context)
        return {};
    for (const auto& [handle, drawable] : all.drawables)
        for (const Surface& surface : drawable->surfaces) {
            if (surface.display == native.display && surface.handle == native.draw)
                pair.draw = drawable;
            if (surface.display == native.display && surface.handle == native.read)
                pair.read = drawable;
        }
    return pair.draw && pair.read ? pair : Pins();
}

// A display of GLX is watched before its first record is made.
void watch(Records& all, const Native& native) {
    if (native.api != &glx())
        return;
    {
        const std::lock_guard guard(all.lock);
        if (!all.watchedDisplays.insert(native.display).second)
            return;
    }
    watchForClosing(native.display, forgetDisplay);
}

} // namespace

Current askCurrent() {
    const Native native = currentNative();
    if (const Pins* own = pinned(); own && isNative(*own->context, native))
        return here;
    // The records of others stay as long as nothing was forgotten: what was found last still holds.
    thread_local Native lastNative;
    thread_local Current last;
    thread_local unsigned lastForgotten = 0;
    if (!here.context && native == lastNative && forgotten == lastForgotten)
        return last;
    Records& all = records();
    if (native.context)
        watch(all, native);
    Pins gone;
    const std::lock_guard guard(all.lock);
    gone = takeHere();
    lastNative = native;
    lastForgotten = forgotten;
    last = {};
    if (!native.context)
        return last;
    if (const Pins pair = ownPairOf(all, native); pair.context) {
        ++pair.draw->current;
        ++pair.read->current;
        setHere(pair);
        return here;
    }
    last.context = contextOf(all, native);
    last.device = last.read = deviceOf(all, native, last.context);
    foreignContextsSeen = true;
    return last;
}

bool isCurrentNatively(const ContextRecord& context) { return isNative(context, currentNative()); }

void forgetContextsAt(void* display, void* native) {
    Records& all = records();
    const std::lock_guard guard(all.lock);
    std::erase_if(all.contexts, [&](const auto& entry) {
        ContextRecord& context = *entry.second;
        if (context.native != native || context.display != display)
            return false;
        // Drawables and wrappers may still know the record, and a handle of our own is its maker's to delete.
        context.native = nullptr;
        ++forgotten;
        return context.isForeign();
    });
}

void noticeCurrent() { askCurrent(); }

} // namespace ZLT::Platform
