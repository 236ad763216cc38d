// What contexts and the extension manager cost: the manager of the current context beside a bare lookup, a
// checked call through its table beside the bare call, and the making of a manager and of contexts beside
// what the platform needs for it. With `--loop N` the program asks for the manager N times between two lines
// on the standard error, and does nothing else: for a tool that shows system calls.

#include "Allocations.h"
#include "Comparison.h"
#include "GlbindingCheckedCall.h"
#include "Glew.h"
#include "LibraryContext.h"
#include "extensionator/ExtensionManager.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/win/WglFunctions.h"
#include "zlt/core/memory/ZLTDeleter.h"

#if !defined(_WIN32)
#include <EGL/egl.h>
#include <EGL/eglext.h>
#endif
#include <GL/gl.h>
#include <GL/glext.h>
#include <benchmark/benchmark.h>
#include <tbb/concurrent_hash_map.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <locale>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using ZLT::String;
using ZLT::ZLTAllocator;
using ZLT::OGL::ContextOffscreen;
using ZLT::OGL::ExtensionManager;
using ZLT::OGL::FunctionTable;
using ZLT::OGL::OpenGLInterceptor;
using ZLT::OGL::teExtension;
using enum ZLT::OGL::teExtension;

// The manager of the current context.

struct HandleHash {
    static std::size_t hash(HGLRC context) { return reinterpret_cast<std::uintptr_t>(context); }
    static bool equal(HGLRC a, HGLRC b) { return a == b; }
};
using BareMap =
    tbb::concurrent_hash_map<HGLRC, void*, HandleHash, std::allocator<std::pair<const HGLRC, void*>>>;

// The living contexts, the first of which stays current, and a bare map of their handles. It grows and
// shrinks with them, so that its handles lie as in the library's own.
class Contexts {
public:
    explicit Contexts(ContextOffscreen& first) : first_(first) { add(first); }

    void resize(std::size_t count) {
        while (others_.size() + 1 > count) {
            map_.erase(others_.back()->renderContext());
            others_.pop_back();
        }
        while (others_.size() + 1 < count)
            add(*others_.emplace_back(std::make_unique<ContextOffscreen>()));
    }

    ContextOffscreen& first() const { return first_; }
    const BareMap& map() const { return map_; }

private:
    void add(const ContextOffscreen& context) { map_.insert({context.renderContext(), this}); }

    ContextOffscreen& first_;
    std::vector<std::unique_ptr<ContextOffscreen>> others_;
    BareMap map_;
};

void instance(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(ExtensionManager::Instance());
}

// The key is taken from memory anew each time.
void* bareFind(const BareMap& map, HGLRC& key) {
    benchmark::DoNotOptimize(key);
    BareMap::const_accessor entry;
    return map.find(entry, key) ? entry->second : nullptr;
}

void bareLookup(benchmark::State& state, const Contexts& contexts) {
    HGLRC key = contexts.first().renderContext();
    if (!bareFind(contexts.map(), key))
        state.SkipWithError("the bare map lacks the handle");
    for (auto _ : state)
        benchmark::DoNotOptimize(bareFind(contexts.map(), key));
}

void registerLookups(Contexts& contexts, std::vector<Bench::Comparison>& comparisons) {
    for (const std::size_t count : {1, 8, 64}) {
        const std::string alive = ", " + std::to_string(count) + (count == 1 ? " context" : " contexts");
        const std::string ours = "Instance()" + alive;
        const std::string other = "bare lookup" + alive;
        benchmark::RegisterBenchmark(ours.c_str(), [&contexts, count](benchmark::State& state) {
            contexts.resize(count);
            instance(state);
        });
        benchmark::RegisterBenchmark(other.c_str(), [&contexts, count](benchmark::State& state) {
            contexts.resize(count);
            bareLookup(state, contexts);
        });
        comparisons.push_back({ours, other, 1.6});
    }
}

bool instanceAllocatesNothing() {
    constexpr int calls = 1000000;
    const unsigned long before = allocations();
    for (int i = 0; i < calls; ++i)
        benchmark::DoNotOptimize(ExtensionManager::Instance());
    const unsigned long count = allocations() - before;
    std::printf("Instance(): %lu allocations in %d calls\n", count, calls);
    return count == 0;
}

// A checked call through the table.

// Puts a program in use and returns the location of its vec4, or -1.
int useProgramWithUniform() {
    const FunctionTable& gl = ExtensionManager::Instance()->table();
    const char* source = "uniform vec4 color;\n"
                         "void main() { gl_FrontColor = color; gl_Position = gl_Vertex; }\n";
    const GLuint shader = gl.glCreateShader(GL_VERTEX_SHADER);
    gl.glShaderSource(shader, 1, &source, nullptr);
    gl.glCompileShader(shader);
    const GLuint program = gl.glCreateProgram();
    gl.glAttachShader(program, shader);
    gl.glLinkProgram(program);
    gl.glUseProgram(program);
    const int location = gl.glGetUniformLocation(program, "color");
    // What the calls below do arrives.
    float read[4] = {};
    CGM(Uniform4f, location, 0.5f, 1, 2, 3);
    gl.glGetUniformfv(program, location, read);
    return read[0] == 0.5f && read[3] == 3 && glGetError() == GL_NO_ERROR ? location : -1;
}

// Another value each time: a driver may leave out what changes nothing.
template <class Call>
void setUniform(benchmark::State& state, Call call) {
    float value = 0;
    for (auto _ : state) {
        call(value);
        value += 1;
    }
}

void registerUniforms(Contexts& contexts, int location, std::vector<Bench::Comparison>& comparisons) {
    benchmark::RegisterBenchmark("glUniform4f", [=](benchmark::State& state) {
        const auto uniform4f = ExtensionManager::Instance()->table().glUniform4f;
        setUniform(state, [=](float value) { uniform4f(location, value, 1, 2, 3); });
    });
    benchmark::RegisterBenchmark("glUniform4f, glGetError", [=](benchmark::State& state) {
        const auto uniform4f = ExtensionManager::Instance()->table().glUniform4f;
        setUniform(state, [=](float value) {
            uniform4f(location, value, 1, 2, 3);
            benchmark::DoNotOptimize(glGetError());
        });
    });
    // The least that a checked call takes whose table is looked up in such a map.
    const auto behindLookup = [=, &contexts](benchmark::State& state) {
        const auto uniform4f = ExtensionManager::Instance()->table().glUniform4f;
        HGLRC key = contexts.first().renderContext();
        setUniform(state, [&](float value) {
            benchmark::DoNotOptimize(bareFind(contexts.map(), key));
            uniform4f(location, value, 1, 2, 3);
            benchmark::DoNotOptimize(glGetError());
        });
    };
    benchmark::RegisterBenchmark("bare lookup, glUniform4f, glGetError", behindLookup);
    benchmark::RegisterBenchmark("CGM(Uniform4f)", [=](benchmark::State& state) {
        setUniform(state, [=](float value) { CGM(Uniform4f, location, value, 1, 2, 3); });
    });
    comparisons.push_back({"CGM(Uniform4f)", "glUniform4f", 2.2});
    comparisons.push_back({"CGM(Uniform4f)", "glUniform4f, glGetError"});
    comparisons.push_back({"CGM(Uniform4f)", "bare lookup, glUniform4f, glGetError"});
#if defined(WITH_GLBINDING)
    const std::string other = "glbinding's glUniform4f, after-callback with glGetError";
    benchmark::RegisterBenchmark(other.c_str(),
                                 [=](benchmark::State& state) { glbindingUniform4f(state, location); });
    comparisons.push_back({"CGM(Uniform4f)", other});
#endif
}

// A manager is made.

constexpr std::string_view extensionNames[] = {
#include "extensionator/ExtensionNames.inl"
};

constexpr const char* entryNames[] = {
#define ZLT_GL_CORE_ENTRY(slot, group, name, result, parameters, arguments)
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments) "gl" #name,
#include "EntryPoints.inl"
#undef ZLT_GL_ENTRY
#undef ZLT_GL_CORE_ENTRY
};
static_assert(std::size(entryNames) == 1497);

using Extensions = std::set<teExtension, std::less<>, ZLTAllocator<teExtension>>;

String driverString(GLenum name) { return reinterpret_cast<const char*>(glGetString(name)); }

int numberIn(const String& text) {
    std::istringstream in{std::string(text)};
    in.imbue(std::locale::classic());
    int number = 0;
    in >> number;
    return number;
}

std::vector<String, ZLTAllocator<String>> tokens(const String& text) {
    std::vector<String, ZLTAllocator<String>> tokens;
    String::size_type begin = 0;
    while ((begin = text.find_first_not_of(' ', begin)) != String::npos) {
        const String::size_type end = text.find(' ', begin);
        tokens.push_back(text.substr(begin, end - begin));
        begin = end;
    }
    return tokens;
}

teExtension wglExtension(std::string_view name) {
    for (std::size_t value = WGL_3DFX_MULTISAMPLE; value < std::size(extensionNames); ++value)
        if (extensionNames[value] == name)
            return teExtension(value);
    return EXTENSION_NOT_FOUND;
}

// All that a manager does when it is made, step by step, with the members of one that is there. Returns what
// it would support, on a driver of 3.0 or later.
Extensions makeManager(ExtensionManager& manager, const ContextOffscreen& context) {
    const std::unique_ptr<FunctionTable, ZLT::ZLTDeleter<FunctionTable>> table(
        new (ZLT::MemoryType(0), __FILE__, __LINE__) FunctionTable());
    const String deviceName = context.deviceName();
    context.makeCurrent();
    const String vendor = driverString(GL_VENDOR);
    for (const char* known : {"ATI", "NVIDIA", "Intel"})
        benchmark::DoNotOptimize(vendor.find(known));
    const String version = driverString(GL_VERSION);
    const String::size_type point = version.find('.');
    const String::size_type end = version.find_first_of(" .", point + 1);
    benchmark::DoNotOptimize(numberIn(version.substr(0, point)));
    benchmark::DoNotOptimize(numberIn(version.substr(point + 1, end - point - 1)));
    const String more = version.substr(end + 1);
    const String extensions = driverString(GL_EXTENSIONS);

    Extensions supported;
    for (const teExtension step :
         {OPEN_GL_3_0, OPEN_GL_2_1, OPEN_GL_2_0, OPEN_GL_1_5, OPEN_GL_1_4, OPEN_GL_1_3, OPEN_GL_1_2})
        if (manager.initializeGL(step))
            supported.insert(step);
    for (const String& name : tokens(extensions)) {
        const teExtension value = manager.nameToEnumGL(name.c_str());
        if (value != EXTENSION_NOT_FOUND && manager.initializeGL(value))
            supported.insert(value);
    }
    if (manager.initialize(WGL_ARB_EXTENSIONS_STRING))
        for (const String& name : tokens(_wcgmGetExtensionsStringARB(wglGetCurrentDC()))) {
            const teExtension value = wglExtension(name);
            if (value != EXTENSION_NOT_FOUND && manager.initialize(value))
                supported.insert(value);
        }
    return supported;
}

// What is measured is what the library did.
bool makesTheSameManager(const ContextOffscreen& context) {
    ExtensionManager& manager = *ExtensionManager::Instance();
    const Extensions supported = makeManager(manager, context);
    bool same = manager.majorVersion() == 3;
    for (std::size_t value = 0; value < std::size(extensionNames); ++value)
        same &= manager.isSupported(teExtension(value)) == supported.contains(teExtension(value));
    const FunctionTable& table = manager.table();
    std::array<void*, sizeof(FunctionTable) / sizeof(void*)> functions;
    std::memcpy(functions.data(), &table, sizeof(table));
    std::printf("a manager: %zu extensions and versions of %zu, %zd functions of %zu\n", supported.size(),
                std::size(extensionNames),
                functions.size() - std::ranges::count(functions, static_cast<void*>(nullptr)),
                std::size(entryNames));
    return same;
}

void registerManagers(const ContextOffscreen& context, std::vector<Bench::Comparison>& comparisons) {
    benchmark::RegisterBenchmark("a manager", [&context](benchmark::State& state) {
        ExtensionManager& manager = *ExtensionManager::Instance();
        for (auto _ : state)
            benchmark::DoNotOptimize(makeManager(manager, context));
    });
    const auto addLookups = [&](const char* other, const std::vector<const char*>& names, double aim) {
        benchmark::RegisterBenchmark(other, [names](benchmark::State& state) {
            for (auto _ : state)
                for (const char* name : names)
                    benchmark::DoNotOptimize(wglGetProcAddress(name));
        });
        comparisons.push_back({"a manager", other, aim});
    };
    addLookups("wglGetProcAddress of 1,497 names", {std::begin(entryNames), std::end(entryNames)}, 1.1);
#if defined(_WIN32)
    // A manager asks for no more than these, and Wine takes long to say no.
    std::vector<const char*> present;
    std::ranges::copy_if(entryNames, std::back_inserter(present),
                         [](const char* name) { return wglGetProcAddress(name) != nullptr; });
    addLookups("wglGetProcAddress of the names that the driver has", present, 0);
#endif
#if defined(WITH_GLEW)
    benchmark::RegisterBenchmark("glewInit", [](benchmark::State& state) {
        for (auto _ : state)
            if (!initializeGlew())
                state.SkipWithError("glewInit failed");
    });
    comparisons.push_back({"a manager", "glewInit"});
#endif
}

// Contexts come and go.

#if !defined(_WIN32)
// EGL by hand, on the device that the library's first display device is.
class BareEGL {
public:
    explicit BareEGL(const ContextOffscreen& like) {
        const auto queryDevices =
            reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
        EGLDeviceEXT device = nullptr;
        EGLint count = 0;
        if (queryDevices && queryDevices(1, &device, &count) && count > 0)
            display_ = eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
        int red = 0, green = 0, blue = 0, alpha = 0, stencil = 0, depth = 0;
        like.getBitDepths(&red, &green, &blue, &alpha, &stencil, &depth);
        const EGLint wanted[] = {
            EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_RED_SIZE,   red,
            EGL_GREEN_SIZE,   green,           EGL_BLUE_SIZE,       blue,           EGL_ALPHA_SIZE, alpha,
            EGL_STENCIL_SIZE, stencil,         EGL_DEPTH_SIZE,      depth,          EGL_NONE};
        works_ = display_ != EGL_NO_DISPLAY && eglInitialize(display_, nullptr, nullptr) &&
                 eglChooseConfig(display_, wanted, &config_, 1, &count) && count > 0;
    }

    // A context on a surface of 8 x 8 pixels is made, made current, released and destroyed.
    bool comeAndGo() const {
        const EGLint size[] = {EGL_WIDTH, 8, EGL_HEIGHT, 8, EGL_NONE};
        const EGLint version[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 0, EGL_NONE};
        if (!works_ || !eglBindAPI(EGL_OPENGL_API))
            return false;
        const EGLSurface surface = eglCreatePbufferSurface(display_, config_, size);
        const EGLContext context = eglCreateContext(display_, config_, EGL_NO_CONTEXT, version);
        return eglMakeCurrent(display_, surface, surface, context) &&
               eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) &&
               eglDestroyContext(display_, context) && eglDestroySurface(display_, surface);
    }

private:
    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLConfig config_ = nullptr;
    bool works_ = false;
};
#endif

void registerContexts(Contexts& contexts, std::vector<Bench::Comparison>& comparisons) {
    constexpr int number = 1000; // in each repetition
    const auto add = [&contexts](const char* name, auto comeAndGo) {
        benchmark::RegisterBenchmark(name, [&contexts, comeAndGo](benchmark::State& state) {
            contexts.resize(1);
            ZLT::OGL::releaseOGLContext();
            for (auto _ : state)
                if (!comeAndGo())
                    state.SkipWithError("no context");
            contexts.first().makeCurrent();
        })->Iterations(number);
    };
    add("ContextOffscreen", [] {
        const ContextOffscreen context;
        return context.renderContext() != nullptr;
    });
#if !defined(_WIN32)
    add("EGL context", [egl = BareEGL(contexts.first())] { return egl.comeAndGo(); });
#endif
    comparisons.push_back({"ContextOffscreen", "EGL context"});
}

int measure(int argc, char** argv, Bench::LibraryContext& library) {
    const int location = useProgramWithUniform();
    if (location < 0) {
        std::fprintf(stderr, "No program with a uniform.\n");
        return 1;
    }
    if (!makesTheSameManager(library.context())) {
        std::fprintf(stderr, "What is measured makes another manager than the library.\n");
        return 1;
    }
    Contexts contexts(library.context());
#if !defined(_WIN32)
    const std::size_t handles = ZLT::Platform::liveHandles();
#endif

    std::vector<Bench::Comparison> comparisons;
    registerLookups(contexts, comparisons);
    registerUniforms(contexts, location, comparisons);
    registerManagers(library.context(), comparisons);
    registerContexts(contexts, comparisons);
    int result = Bench::run(argc, argv, comparisons);

    if (allocationsCount && !allocationsAreCounted()) {
        std::fprintf(stderr, "Allocations are not counted.\n");
        result = 1;
    }
    if (allocationsCount && !instanceAllocatesNothing())
        result = 1;
#if !defined(_WIN32)
    contexts.resize(1);
    std::printf("live handles: %zu before, %zu after\n", handles, ZLT::Platform::liveHandles());
    if (ZLT::Platform::liveHandles() != handles)
        result = 1;
#endif
    return result;
}

} // namespace

int main(int argc, char** argv) {
    Bench::LibraryContext library;
    if (argc == 3 && std::strcmp(argv[1], "--loop") == 0) {
        std::fputs("begin\n", stderr);
        for (long i = std::atol(argv[2]); i > 0; --i)
            benchmark::DoNotOptimize(ExtensionManager::Instance());
        std::fputs("end\n", stderr);
        return 0;
    }
    return measure(argc, argv, library);
}
