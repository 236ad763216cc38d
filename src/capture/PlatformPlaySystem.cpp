#include "capture/PlatformPlaySystem.h"

#include "platform/GL.h"
#include "platform/Platform.h"
#include "platform/WglTokens.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>

namespace ZLT::Capture {

namespace {

constexpr const char* className = "zlt_capture";

using GetFormatAttributes = BOOL(WINAPI*)(HDC, int, int, UINT, const int*, int*);
using MakeContextCurrent = BOOL(WINAPI*)(HDC, HDC, HGLRC);
using CreateContextAttributes = HGLRC(WINAPI*)(HDC, HGLRC, const int*);

// What the system says of its last failure, as the end of a sentence.
std::string reason() {
#if defined(_WIN32)
    return ": error " + std::to_string(GetLastError());
#else
    const std::string text = Platform::lastErrorText();
    return text.empty() ? ": error " + std::to_string(GetLastError()) : ": " + text;
#endif
}

HWND makeWindow(int width, int height, bool isShown) {
    static const bool isRegistered = [] {
        WNDCLASSEXA description = {};
        description.cbSize = sizeof(description);
#if defined(_WIN32)
        description.style = CS_OWNDC; // each window keeps its own pixel format
#endif
        description.lpfnWndProc = DefWindowProcW;
        description.hInstance = GetModuleHandleA(nullptr);
        description.lpszClassName = className;
        return RegisterClassExA(&description) != 0;
    }();
    const HWND window =
        isRegistered ? CreateWindowExA(0, className, "zlt_ogl replay",
                                       DWORD(WS_POPUP) | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, width,
                                       height, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr)
                     : nullptr;
    if (!window)
        throw std::runtime_error("no window of " + std::to_string(width) + " by " + std::to_string(height) +
                                 " pixels can be made");
    if (isShown)
        ShowWindow(window, SW_SHOWNORMAL);
    return window;
}

// The functions of WGL's extensions, which only a current context can give.
struct Extensions {
    GetFormatAttributes getAttributes = nullptr;
    CreateContextAttributes createContext = nullptr;
    MakeContextCurrent makeCurrent = nullptr;

    Extensions() {
        const HWND window = makeWindow(8, 8, false);
        const HDC device = GetDC(window);
        PIXELFORMATDESCRIPTOR wanted = {};
        wanted.nSize = sizeof(wanted);
        wanted.nVersion = 1;
        wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
        wanted.cColorBits = 24;
        const int format = ChoosePixelFormat(device, &wanted);
        const HGLRC context =
            format != 0 && SetPixelFormat(device, format, &wanted) ? wglCreateContext(device) : nullptr;
        if (context && wglMakeCurrent(device, context)) {
            find(getAttributes, "wglGetPixelFormatAttribivARB");
            find(createContext, "wglCreateContextAttribsARB");
            find(makeCurrent, "wglMakeContextCurrentARB");
            wglMakeCurrent(nullptr, nullptr);
        }
        if (context)
            wglDeleteContext(context);
        ReleaseDC(window, device);
        DestroyWindow(window);
        if (!context)
            throw std::runtime_error("no OpenGL context can be made");
    }
    template <class Function>
    static void find(Function& function, const char* name) {
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(wglGetProcAddress(name)));
    }
};
const Extensions& extensions() {
    static const Extensions all;
    return all;
}

// How far a format is from a shape; what shows counts most.
int distance(const SurfaceShape& shape, const std::array<int, 11>& format) {
    const auto [accelerated, red, green, blue, alpha, depth, stencil, accumulation, samples, doubled,
                stereo] = format;
    (void)accelerated;
    const auto lacking = [](int wanted, int there) {
        return there < wanted ? 4 * (wanted - there) + 40 : there - wanted;
    };
    int sum = 1000 * (std::abs(red - shape.red) + std::abs(green - shape.green) +
                      std::abs(blue - shape.blue) + std::abs(alpha - shape.alpha));
    sum += 500 * std::abs(samples - shape.samples) + (stereo != int(shape.isStereo) ? 300 : 0);
    sum += (doubled != 0) != shape.isDoubleBuffered ? 200 : 0;
    // A larger depth or stencil buffer rounds elsewhere.
    sum += 2 * lacking(shape.depth, depth) + 2 * lacking(shape.stencil, stencil);
    return sum + lacking(shape.accumulation, accumulation);
}

int chooseFormat(HDC device, const SurfaceShape& shape) {
    constexpr std::array<int, 11> names = {WGL_SUPPORT_OPENGL_ARB, WGL_RED_BITS_ARB,       WGL_GREEN_BITS_ARB,
                                           WGL_BLUE_BITS_ARB,      WGL_ALPHA_BITS_ARB,     WGL_DEPTH_BITS_ARB,
                                           WGL_STENCIL_BITS_ARB,   WGL_ACCUM_RED_BITS_ARB, WGL_SAMPLES_ARB,
                                           WGL_DOUBLE_BUFFER_ARB,  WGL_STEREO_ARB};
    const int count = DescribePixelFormat(device, 1, 0, nullptr);
    int best = 0, least = INT_MAX;
    for (int format = 1; format <= count && extensions().getAttributes; ++format) {
        constexpr int forWindows = WGL_DRAW_TO_WINDOW_ARB;
        int drawsToWindow = 0;
        std::array<int, 11> values = {};
        if (!extensions().getAttributes(device, format, 0, 1, &forWindows, &drawsToWindow) ||
            !drawsToWindow ||
            !extensions().getAttributes(device, format, 0, static_cast<UINT>(names.size()), names.data(),
                                        values.data()) ||
            !values[0])
            continue;
        if (const int apart = distance(shape, values); apart < least) {
            least = apart;
            best = format;
        }
    }
    if (best != 0)
        return best;
    PIXELFORMATDESCRIPTOR wanted = {};
    wanted.nSize = sizeof(wanted);
    wanted.nVersion = 1;
    wanted.dwFlags =
        PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | DWORD(shape.isDoubleBuffered ? PFD_DOUBLEBUFFER : 0);
    wanted.cColorBits = static_cast<BYTE>(shape.red + shape.green + shape.blue);
    wanted.cAlphaBits = static_cast<BYTE>(shape.alpha);
    wanted.cDepthBits = static_cast<BYTE>(shape.depth);
    wanted.cStencilBits = static_cast<BYTE>(shape.stencil);
    wanted.cAccumBits = static_cast<BYTE>(4 * shape.accumulation);
    return ChoosePixelFormat(device, &wanted);
}

void setFormat(HDC device, int format) {
    PIXELFORMATDESCRIPTOR description = {};
    description.nSize = sizeof(description);
    DescribePixelFormat(device, format, sizeof(description), &description);
    if (format == 0 || !SetPixelFormat(device, format, &description))
        throw std::runtime_error("no window of the captured pixel format can be made" + reason());
}

} // namespace

// A surface: a window, and others beside it where contexts of other formats draw to it too.
struct PlatformPlaySystem::Window {
    SurfaceShape shape;
    std::map<int, HWND> windows; // by their formats
    int format = 0;              // of the first
    bool hasOneBuffer = false;

    HDC device(int wanted, bool isShown) {
        HWND& window = windows[wanted];
        if (!window) {
            window = makeWindow(shape.width, shape.height, isShown);
            setFormat(GetDC(window), wanted);
        }
        return GetDC(window);
    }
};

PlatformPlaySystem::PlatformPlaySystem(bool isShown, DriverCalls& driver)
    : isShown_(isShown), driver_(&driver) {
    extensions();
}

PlatformPlaySystem::~PlatformPlaySystem() {
    wglMakeCurrent(nullptr, nullptr);
    for (void* const context : contexts_)
        wglDeleteContext(static_cast<HGLRC>(context));
    for (const std::unique_ptr<Window>& surface : windows_)
        for (const auto& [format, window] : surface->windows)
            DestroyWindow(window);
}

void* PlatformPlaySystem::makeSurface(const SurfaceShape& shape) {
    constexpr int largest = 1 << 14;
    if (shape.width <= 0 || shape.height <= 0 || shape.width > largest || shape.height > largest)
        throw std::runtime_error("a surface of " + std::to_string(shape.width) + " by " +
                                 std::to_string(shape.height) + " pixels can't be made");
    windows_.push_back(std::make_unique<Window>());
    Window& surface = *windows_.back();
    surface.shape = shape;
    const HWND window = makeWindow(shape.width, shape.height, isShown_);
    surface.format = chooseFormat(GetDC(window), shape);
    surface.windows[surface.format] = window;
    setFormat(GetDC(window), surface.format);
    return &surface;
}

void* PlatformPlaySystem::makeContext(const ContextShape& shape, void* like, void* share) {
    Window& surface = *static_cast<Window*>(like);
    const HDC device = surface.device(surface.format, isShown_);
    HGLRC context = nullptr;
    const bool isCore = (shape.profile & WGL_CONTEXT_CORE_PROFILE_BIT_ARB) != 0;
    constexpr int forwardCompatible = 1; // of GL_CONTEXT_FLAGS
    if ((isCore || (shape.flags & forwardCompatible)) && extensions().createContext) {
        const int attributes[] = {WGL_CONTEXT_MAJOR_VERSION_ARB,
                                  shape.version / 10,
                                  WGL_CONTEXT_MINOR_VERSION_ARB,
                                  shape.version % 10,
                                  WGL_CONTEXT_FLAGS_ARB,
                                  shape.flags & forwardCompatible ? WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB
                                                                  : 0,
                                  isCore ? WGL_CONTEXT_PROFILE_MASK_ARB : 0,
                                  WGL_CONTEXT_CORE_PROFILE_BIT_ARB,
                                  0};
        context = extensions().createContext(device, static_cast<HGLRC>(share), attributes);
    } else {
        context = wglCreateContext(device);
        if (context && share && !wglShareLists(static_cast<HGLRC>(share), context)) {
            wglDeleteContext(context);
            context = nullptr;
        }
    }
    if (!context)
        throw std::runtime_error("no context of version " + std::to_string(shape.version / 10) + '.' +
                                 std::to_string(shape.version % 10) +
                                 (isCore ? " and the core profile" : "") + " can be made");
    contexts_.push_back(context);
    formats_[context] = surface.format;
    return context;
}

void PlatformPlaySystem::makeCurrent(void* draw, void* read, void* context) {
    driver_->contextChanged();
    if (!context) {
        wglMakeCurrent(nullptr, nullptr);
        return;
    }
    Window& surface = *static_cast<Window*>(draw);
    const int format = formats_[context];
    const HDC device = surface.device(format, isShown_);
    const auto handle = static_cast<HGLRC>(context);
    const bool isOne = read == draw || !extensions().makeCurrent;
    if (!(isOne ? wglMakeCurrent(device, handle)
                : extensions().makeCurrent(device, static_cast<Window*>(read)->device(format, isShown_),
                                           handle)))
        throw std::runtime_error("a context can't be made current" + reason());
    GLint isDouble = 0;
    glGetIntegerv(GL_DOUBLEBUFFER, &isDouble);
    surface.hasOneBuffer = !isDouble;
}

void PlatformPlaySystem::destroyContext(void* context) {
    wglDeleteContext(static_cast<HGLRC>(context));
    std::erase(contexts_, context);
    formats_.erase(context);
}

void PlatformPlaySystem::resize(void* surface, int width, int height) {
    Window& window = *static_cast<Window*>(surface);
    window.shape.width = width;
    window.shape.height = height;
    for (const auto& [format, handle] : window.windows)
        MoveWindow(handle, 0, 0, width, height, FALSE);
}

void PlatformPlaySystem::swap(void* surface) {
    Window& window = *static_cast<Window*>(surface);
    if (const HDC device = wglGetCurrentDC())
        SwapBuffers(device);
    else
        SwapBuffers(window.device(window.format, isShown_));
#if defined(_WIN32)
    // Windows that nobody listens to are taken for hung.
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
        DispatchMessageA(&message);
#endif
}

bool PlatformPlaySystem::hasOneBuffer(void* surface) { return static_cast<Window*>(surface)->hasOneBuffer; }

} // namespace ZLT::Capture
