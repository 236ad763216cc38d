#include "platform/linux/apis/Api.h"

namespace ZLT::Platform {

Native currentNative() {
    const Native native = egl().current();
    return native.context ? native : glx().current();
}

bool makeNativeCurrent(const Native& wanted) {
    const Api& other = wanted.api == &egl() ? glx() : egl();
    return other.release() && wanted.api->makeCurrent(wanted);
}

bool releaseNative() { return egl().release() && glx().release(); }

} // namespace ZLT::Platform
