#include "extensionator/ExtensionManager.h"
#include "extensionator/Load.h"
#include "extensionator/Managers.h"
#include "extensionator/ReporterThread.h"
#include "ogl/BufferFormat.h"
#include "ogl/Context.h"
#include "ogl/ScopedContextWrapper.h"
#include "ogl/internal/Composed.h"
#include "ogl/internal/WindowOwner.h"
#include "platform/WglTokens.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/Exceptions.h"
#include "zlt/core/Memory.h"

#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZLT::OGL {

namespace {

using internal::composed;

using ChoosePixelFormatARB = BOOL(WINAPI*)(HDC, const int*, const FLOAT*, UINT, int*, UINT*);
using GetExtensionsStringARB = const char*(WINAPI*)(HDC);

// The %i is part of the text: it is streamed, not formatted.
constexpr const char* cannotSetFormat =
    "Context::setPixelFormat Unable to set pixel format %i on device context. Window Error: ";

InternalWindow* newWindowAtOrigin() {
    return new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) InternalWindow(0, 0);
}

// Calls `visit` with each display device, mirrored or not, until it returns true. `record` is left with the
// last one that the platform wrote.
template <class Visitor>
void walkDisplayDevices(DISPLAY_DEVICEA& record, Visitor visit) {
    record.cb = sizeof(record);
    for (DWORD i = 0; EnumDisplayDevicesA(nullptr, i, &record, 0); ++i)
        if (visit(record))
            return;
}

bool isAttached(const DISPLAY_DEVICEA& device) {
    return (device.StateFlags & DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) != 0;
}

} // namespace

// What the long route makes on its way.
struct Context::Temporaries {
    InternalWindow* window = nullptr;
    HGLRC context = nullptr;

    void destroyWindow() {
        InternalWindow* gone = std::exchange(window, nullptr);
        ZLTDeleter<InternalWindow>()(gone);
    }
};

bool Context::throwTestException_ = false;
bool Context::isWglCreateContextAttribsSupportKnown_ = false;
Context::CreateContextAttribs Context::wglCreateContextAttribsARB_ = nullptr;

Context::Context() : deviceContext_(nullptr), renderContext_(nullptr), pixelFormat_(0), displayDevice_() {}
Context::~Context() noexcept(false) = default;

void Context::makeCurrent() const {
    Detail::noticeContextChange();
    if (!wglMakeCurrent(deviceContext_, renderContext_))
        ZLT_RAISE(composed("Context::can't make this context current", GetLastError()).c_str());
}

HGLRC Context::currentContext() { return wglGetCurrentContext(); }
HDC Context::deviceContext() const { return deviceContext_; }
HGLRC Context::renderContext() const { return renderContext_; }

void Context::getBitDepths(int* red, int* green, int* blue, int* alpha, int* stencil, int* depth) const {
    PIXELFORMATDESCRIPTOR description = {};
    const int format = GetPixelFormat(deviceContext_);
    DescribePixelFormat(deviceContext_, format, sizeof(description), &description);
    *red = description.cRedBits;
    *green = description.cGreenBits;
    *blue = description.cBlueBits;
    *alpha = description.cAlphaBits;
    *stencil = description.cStencilBits;
    *depth = description.cDepthBits;
}

const DISPLAY_DEVICEA& Context::displayDevice() { return displayDevice_; }
String Context::deviceName() const { return displayDevice_.DeviceName; }

bool Context::supportsVerticalRetraceControl() {
    return ExtensionManager::Instance()->isSupported(WGL_EXT_SWAP_CONTROL);
}

void Context::setThrowTestException(bool on) { throwTestException_ = on; }

void Context::initializeExtensions() {
    ZLT_RAISE("We can't initialize Extensions automatically any more with the new Singleton scheme");
}

void Context::unregisterWithExtensionMgr() {
    if (renderContext_)
        internal::Managers::leave(*this);
}

void releaseOGLContext() {
    if (wglGetCurrentContext())
        wglMakeCurrent(nullptr, nullptr);
}

// Construction and destruction. The texts below name other classes than the one at work: they served one kind
// first, and tools match on them.

void Context::initialize(HDC hdc, const BufferFormat& format, teBuffering buffering,
                         teMultisample multisample, const Context* share) {
    const ScopedContextWrapper restore;
    deviceContext_ = hdc;
    if (!hdc)
        ZLT_RAISE("ContextWindowed::ctor invalid DC on window");

    Temporaries made;
    try {
        createByShortOrLongRoute(format, buffering, multisample, share, made);
        makeCurrent();
    } catch (LogicalException& failure) {
        if ((wglGetCurrentContext() || wglGetCurrentDC()) && !wglMakeCurrent(nullptr, nullptr))
            ZLT_RAISE("ContextWindowed::ContextWindowed failed to release context: fatal exception!");
        if (made.context && !wglDeleteContext(made.context))
            ZLT_RAISE("ContextWindowed::ContextWindowed failed to destroy context: fatal exception!");
        made.destroyWindow();
        if (renderContext_) {
            if (!wglDeleteContext(renderContext_))
                ZLT_RAISE("ContextWindowed::ContextWindowed failed to destroy context: fatal exception!");
            renderContext_ = nullptr;
        }
        // The base part alone: clients catch that.
        throw LogicalException(failure); // NOLINT(cppcoreguidelines-slicing)
    }
}

// The short route needs no GL; the long one, for what ChoosePixelFormat can't express, needs a current
// context.
void Context::createByShortOrLongRoute(const BufferFormat& format, teBuffering buffering,
                                       teMultisample multisample, const Context* share, Temporaries& made) {
    const bool plain = !format.floatingPointColor() && multisample == eNoMultisample &&
                       format.redBits() <= 8 && format.greenBits() <= 8 && format.blueBits() <= 8 &&
                       format.alphaBits() <= 8;
    if (plain) {
        renderContext_ = setupRenderingContext(deviceContext_, format, buffering == eDoubleBuffered, share);
        return;
    }

    HDC probe = nullptr;
    if (wglGetCurrentContext()) {
        probe = wglGetCurrentDC();
    } else {
        made.window = newWindowAtOrigin();
        probe = GetDC(made.window->window());
        pixelFormat_ = choosePixelFormat(probe, BufferFormat(BufferFormat::RGB8), false);
        setPixelFormat(probe, pixelFormat_);
        made.context = createRenderingContext(probe, nullptr);
        wglMakeCurrent(probe, made.context);
    }
    // The off-screen kinds too draw to a window, a hidden one.
    const int chosen = choosePixelFormat(probe, format, buffering, multisample, eWindowedTarget);
    if (made.window) {
        wglMakeCurrent(nullptr, nullptr);
        wglDeleteContext(std::exchange(made.context, nullptr));
        made.destroyWindow();
    }
    setPixelFormat(deviceContext_, chosen);
    renderContext_ = createRenderingContext(deviceContext_, share);
}

void Context::destroyContext() {
    Platform::noticeCurrent(); // what is restored below is what is really current
    const HDC savedDC = wglGetCurrentDC();
    const HGLRC saved = wglGetCurrentContext();
    const bool other = saved != renderContext_;
    if (saved && !wglMakeCurrent(nullptr, nullptr))
        ZLT_RAISE("ContextWindowed::~ContextWindowed failed to release context: fatal exception!");
    if (!wglDeleteContext(renderContext_))
        ZLT_RAISE("ContextOffscreen::~ContextWindowed failed to delete rendering context: fatal exception");
    if (saved && other && !wglMakeCurrent(savedDC, saved))
        ZLT_UNREACHABLE("ContextOffscreen::~ContextOffscreen failed to restore context");
}

// Pixel formats and rendering contexts.

int Context::choosePixelFormat(HDC hdc, const BufferFormat& format, bool doubleBuffered) {
    if (!hdc)
        ZLT_RAISE("Context:choosePixelFormat invalid device context");
    PIXELFORMATDESCRIPTOR wanted = {};
    wanted.nSize = sizeof(wanted);
    wanted.nVersion = 1;
    wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | (doubleBuffered ? PFD_DOUBLEBUFFER : 0);
    wanted.iPixelType = PFD_TYPE_RGBA;
    // Alpha counts, and the sum alone tells the platform of red, green and blue.
    wanted.cColorBits =
        static_cast<BYTE>(format.redBits() + format.blueBits() + format.greenBits() + format.alphaBits());
    wanted.cAlphaBits = static_cast<BYTE>(format.alphaBits());
    wanted.cDepthBits = static_cast<BYTE>(format.depthBits());
    wanted.cStencilBits = static_cast<BYTE>(format.stencilBits());
    const int chosen = ChoosePixelFormat(hdc, &wanted);
    if (chosen == 0)
        ZLT_RAISE(composed("Cannot create OpenGL Context. Can't find suitable format. Windows error ",
                           GetLastError())
                      .c_str());
    return chosen;
}

int Context::choosePixelFormat(HDC hdc, const BufferFormat& format, teBuffering buffering,
                               teMultisample multisample, teWindowed windowed) {
    const auto choose = functionAddress<ChoosePixelFormatARB>("wglChoosePixelFormatARB");
    if (!choose)
        ZLT_RAISE("wglChoosePixelFormatARB extension not supported");
    if (!hdc)
        ZLT_RAISE("Context:choosePixelFormat invalid device context");

    const auto bits = [](unsigned int count) { return static_cast<int>(count); };
    std::vector<int> attributes = {
        WGL_SUPPORT_OPENGL_ARB,
        1,
        WGL_ACCELERATION_ARB,
        WGL_FULL_ACCELERATION_ARB,
        WGL_PIXEL_TYPE_ARB,
        WGL_TYPE_RGBA_ARB,
        WGL_COLOR_BITS_ARB,
        bits(format.redBits() + format.greenBits() + format.blueBits() + format.alphaBits()),
        WGL_RED_BITS_ARB,
        bits(format.redBits()),
        WGL_GREEN_BITS_ARB,
        bits(format.greenBits()),
        WGL_BLUE_BITS_ARB,
        bits(format.blueBits()),
        WGL_ALPHA_BITS_ARB,
        bits(format.alphaBits()),
        WGL_DEPTH_BITS_ARB,
        bits(format.depthBits()),
        WGL_STENCIL_BITS_ARB,
        bits(format.stencilBits()),
        WGL_DOUBLE_BUFFER_ARB,
        buffering == eDoubleBuffered ? 1 : 0,
    };
    const auto add = [&](int attribute, int value) {
        attributes.insert(attributes.end(), {attribute, value});
    };
    if (windowed == eOffscreenTarget) {
        add(WGL_DRAW_TO_PBUFFER_ARB, 1);
        add(WGL_DRAW_TO_WINDOW_ARB, 0);
    } else {
        add(WGL_DRAW_TO_WINDOW_ARB, 1);
    }
    // A value of the pixel type in the place of an attribute, beside the unchanged type: drivers are known to
    // read it so.
    if (format.floatingPointColor())
        add(WGL_TYPE_RGBA_FLOAT_ARB, 1);
    if (multisample > eNoMultisample) {
        if (buffering != eDoubleBuffered)
            ZLT_RAISE("Double buffering required with multisampling.");
        add(WGL_SAMPLE_BUFFERS_ARB, 1);
        add(WGL_SAMPLES_ARB, static_cast<int>(multisample));
    }
    attributes.push_back(0);

    const FLOAT noAttributes[] = {0, 0};
    int chosen = 0;
    UINT count = 0;
    if (!choose(hdc, attributes.data(), noAttributes, 1, &chosen, &count) || count == 0)
        ZLT_RAISE("Can't find suitable pixel format.");
    return chosen;
}

void Context::setPixelFormat(HDC hdc, int format) {
    if (format <= 0)
        ZLT_RAISE(composed("Context::setPixelFormat invalid pixel format ", format).c_str());
    pixelFormat_ = format;
    PIXELFORMATDESCRIPTOR description = {};
    description.nSize = sizeof(description);
    if (!SetPixelFormat(hdc, format, &description))
        ZLT_RAISE(composed(cannotSetFormat, GetLastError()).c_str());
}

HGLRC Context::createRenderingContext(HDC hdc, const Context* share) {
    if (!hdc)
        ZLT_RAISE("Context::createRenderingContext invalid device context");
    const auto shareWith = [&](HGLRC made) {
        if (!wglShareLists(share->renderContext_, made))
            ZLT_RAISE("Context::createRenderingContext cannot share lists.");
    };
    if (const CreateContextAttribs create = getWglCreateContextAttribsPtr()) {
        const int attributes[] = {WGL_CONTEXT_MAJOR_VERSION_ARB, 3, WGL_CONTEXT_MINOR_VERSION_ARB, 0, 0, 0};
        if (const HGLRC made = create(hdc, nullptr, attributes)) {
            // Sharing is a step of its own here, never the share handle of the creation.
            if (share && share->renderContext_)
                shareWith(made);
            return made;
        }
        // A driver that offers the function and refuses the version.
    }
    const HGLRC made = wglCreateContext(hdc);
    if (share)
        shareWith(made);
    if (!made)
        ZLT_RAISE("Context::createRenderingContext Can't create rendering context");
    return made;
}

HGLRC Context::setupRenderingContext(HDC hdc, const BufferFormat& format, bool doubleBuffered,
                                     const Context* share) {
    pixelFormat_ = choosePixelFormat(hdc, format, doubleBuffered);
    setPixelFormat(hdc, pixelFormat_);
    return createRenderingContext(hdc, share);
}

void Context::shareLists(HGLRC other) {
    if (!wglShareLists(other, renderContext_))
        ZLT_RAISE("Context::shareLists cannot share lists.");
}

// The texts of the probe keep a name that it had once.
Context::CreateContextAttribs Context::getWglCreateContextAttribsPtr() {
    if (isWglCreateContextAttribsSupportKnown_)
        return wglCreateContextAttribsARB_;
    internal::WindowOwner window(newWindowAtOrigin());
    CreateContextAttribs found = nullptr;
    HGLRC probe = nullptr;
    try {
        const HDC dc = GetDC(window.window());
        if (!dc)
            ZLT_RAISE("Context::haveWglCreateContextAttribs invalid device context");
        const int format = choosePixelFormat(dc, BufferFormat(BufferFormat::RGB8), true);
        PIXELFORMATDESCRIPTOR description = {};
        description.nSize = sizeof(description);
        if (!SetPixelFormat(dc, format, &description))
            ZLT_RAISE(composed(cannotSetFormat, GetLastError()).c_str());
        probe = wglCreateContext(dc);
        if (!probe)
            ZLT_RAISE("Context::haveWglCreateContextAttribs Can't create rendering context");
        const ScopedContextWrapper restore;
        wglMakeCurrent(dc, probe);
        if (const auto names = functionAddress<GetExtensionsStringARB>("wglGetExtensionsStringARB")) {
            const char* text = names(dc);
            if (text && std::strstr(text, "WGL_ARB_create_context"))
                found = functionAddress<CreateContextAttribs>("wglCreateContextAttribsARB");
        }
        wglMakeCurrent(nullptr, nullptr);
        wglDeleteContext(std::exchange(probe, nullptr));
    } catch (...) {
        if (probe)
            wglDeleteContext(probe);
        throw;
    }
    window.reset();
    return found;
}

void Context::initializeWglCreateContextAttribsPtr() {
    ZLT_ASSERT(isWglCreateContextAttribsSupportKnown_ == false);
    const CreateContextAttribs found = getWglCreateContextAttribsPtr();
    isWglCreateContextAttribsSupportKnown_ = true;
    wglCreateContextAttribsARB_ = found;
}

void Context::unInitializeWglCreateContextAttribsPtr() {
    ZLT_ASSERT(isWglCreateContextAttribsSupportKnown_ == true);
    wglCreateContextAttribsARB_ = nullptr;
    isWglCreateContextAttribsSupportKnown_ = false;
}

// Display devices.

std::size_t Context::numDisplayDevice() {
    std::size_t count = 0;
    DISPLAY_DEVICEA record = {};
    walkDisplayDevices(record, [&](const DISPLAY_DEVICEA& device) {
        count += isAttached(device) && !(device.StateFlags & DISPLAY_DEVICE_MIRRORING_DRIVER) ? 1 : 0;
        return false;
    });
    return count;
}

// Mirroring drivers count here and in displayDevice(), unlike above: existing clients rely on the numbers.
std::size_t Context::primaryDisplayIndex() {
    std::size_t index = 0;
    bool found = false;
    DISPLAY_DEVICEA record = {};
    walkDisplayDevices(record, [&](const DISPLAY_DEVICEA& device) {
        if (!isAttached(device))
            return false;
        found = (device.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE) != 0;
        index += found ? 0 : 1;
        return found;
    });
    return found ? index : 0;
}

void Context::displayDevice(std::size_t index, DISPLAY_DEVICEA& record) {
    walkDisplayDevices(record,
                       [&](const DISPLAY_DEVICEA& device) { return isAttached(device) && index-- == 0; });
}

const DISPLAY_DEVICEA& Context::primaryDisplayDevice() {
    static DISPLAY_DEVICEA record;
    displayDevice(primaryDisplayIndex(), record);
    return record;
}

DISPLAY_DEVICEA Context::displayDeviceFromWindow(HWND const& window) {
    HMONITOR monitor = MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST);
    if (!monitor)
        monitor = MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY);
    MONITORINFOEXA information = {};
    information.cbSize = sizeof(information);
    if (!GetMonitorInfoA(monitor, &information))
        ZLT_RAISE(composed("Context::can't get monitor info", GetLastError()).c_str());
    DISPLAY_DEVICEA record = {};
    walkDisplayDevices(record, [&](const DISPLAY_DEVICEA& device) {
        return std::string_view(device.DeviceName) == information.szDevice;
    });
    return record;
}

POINTL Context::displayOrigin(const String& deviceName) {
    DEVMODEA mode = {};
    mode.dmSize = sizeof(mode);
    const BOOL error = EnumDisplaySettingsA(deviceName.c_str(), ENUM_CURRENT_SETTINGS, &mode);
    ZLT_ASSERT(error != 0);
    return mode.dmPosition;
}

bool Context::shareDevice(const DISPLAY_DEVICEA& a, const DISPLAY_DEVICEA& b) {
    // The number at the end of a key tells outputs of one adapter apart.
    const auto adapter = [](const DISPLAY_DEVICEA& device) {
        std::string key = device.DeviceKey;
        if (key.size() >= 4)
            key.replace(key.size() - 4, 4, 4, '\0');
        return key;
    };
    return adapter(a) == adapter(b);
}

} // namespace ZLT::OGL
