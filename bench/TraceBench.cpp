// A traced and a recorded call, from the client to the text in a file, against the trace by plain insertions,
// and against `apitrace trace`, whose file is a binary one that `apitrace dump` makes text of. Each figure
// has the GL call in it, on Mesa; ours has the error check too.

#include "Allocations.h"
#include "CallValues.h"
#include "Comparison.h"
#include "HeadlessContext.h"
#include "TemporaryFolder.h"
#include "extensionator/OpenGLRekorder.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/TokenName.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>
#if !defined(_WIN32)
#include <sys/resource.h>
#endif

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

using ZLT::OGL::OpenGLInterceptor;
using ZLT::OGL::OpenGLRekorder;
using ZLT::OGL::OpenGLTracer;

constexpr long callCount = 500000;
constexpr const char* file = "src/Renderer.cpp";
constexpr unsigned int line = 417;

// Where the traces go.
std::string folder;

struct BindTexture {
    std::string name = "glBindTexture";
    std::string kind = "bind";

    static GLuint texture(long i) { return 1 + static_cast<GLuint>(i) % CallValues::textureCount; }

    void call(OpenGLInterceptor* head, long i) const {
        head->cgmBindTexture(file, line, GL_TEXTURE_2D, texture(i));
    }
    void insert(std::ostream& out, long i) const {
        out << file << ':' << line << ": "
            << "glBindTexture(" << ZLT::OGL::TokenName(GL_TEXTURE_2D) << ", " << texture(i) << ")\n";
    }
};

struct Color4f {
    explicit Color4f(const std::string& kind) : name("glColor4f, " + kind), kind(kind) {}

    std::string name;
    std::string kind;
    std::vector<float> values = CallValues::floats(kind);

    const float* color(long i) const {
        return &values[static_cast<std::size_t>(i) * 4 % CallValues::floatCount];
    }

    void call(OpenGLInterceptor* head, long i) const {
        const float* value = color(i);
        head->cgmColor4f(file, line, value[0], value[1], value[2], value[3]);
    }
    void insert(std::ostream& out, long i) const {
        const float* value = color(i);
        out << file << ':' << line << ": "
            << "glColor4f(";
        for (int j = 0; j < 4; ++j)
            out << (j ? ", " : "") << "makeFloat(" << std::bit_cast<std::int32_t>(value[j]) << ") /* "
                << value[j] << " */";
        out << ")\n";
    }
};

// Puts a tracer in front of the chain for as long as it lives.
class Tracing {
public:
    explicit Tracing(std::ostream& out) : tracer_(out) {
        OpenGLInterceptor::Instance()->addInterceptor(&tracer_);
    }
    ~Tracing() { OpenGLInterceptor::Instance()->popInterceptor(); }

private:
    OpenGLTracer tracer_;
};

// Likewise a recorder.
class Recording {
public:
    Recording(std::ostream& text, std::ostream& data, bool lineComments)
        : recorder_(text, data, nullptr, lineComments) {
        OpenGLInterceptor::Instance()->addInterceptor(&recorder_);
    }
    ~Recording() { OpenGLInterceptor::Instance()->popInterceptor(); }

private:
    OpenGLRekorder recorder_;
};

template <class Calls>
void checkedCalls(benchmark::State& state, const Calls& calls) {
    long i = 0;
    for (auto _ : state)
        calls.call(OpenGLInterceptor::Instance(), i++);
}

template <class Calls>
void tracedCalls(benchmark::State& state, const Calls& calls) {
    std::ofstream out(folder + "/ours.txt");
    const Tracing tracing(out);
    checkedCalls(state, calls);
}

template <bool lineComments, class Calls>
void recordedCalls(benchmark::State& state, const Calls& calls) {
    std::ofstream text(folder + "/recording.inl");
    std::ofstream data(folder + "/recording.bin", std::ios::binary);
    const Recording recording(text, data, lineComments);
    checkedCalls(state, calls);
}

// apitrace collects about a megabyte before it writes; a client may give its stream a larger buffer too.
template <class Calls>
void tracedCallsLargeBuffer(benchmark::State& state, const Calls& calls) {
    std::vector<char> buffer(std::size_t(1) << 16);
    std::ofstream out;
    out.rdbuf()->pubsetbuf(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    out.open(folder + "/ours.txt");
    const Tracing tracing(out);
    checkedCalls(state, calls);
}

template <class Calls>
void insertedCalls(benchmark::State& state, const Calls& calls) {
    std::ofstream out(folder + "/plain.txt");
    long i = 0;
    for (auto _ : state) {
        calls.insert(out, i);
        calls.call(OpenGLInterceptor::Instance(), i++);
    }
}

#if defined(_WIN32)
bool apitraceIsInstalled() { return false; }
#else
bool apitraceIsInstalled() { return std::system("command -v apitrace >/dev/null") == 0; }

// Runs CallLoop, with `prefix` in front, and returns the nanoseconds that it printed; 0 if it printed none.
double callLoop(const std::string& prefix, const std::string& kind) {
    const std::string command =
        prefix + " '" CALL_LOOP "' " + kind + " " + std::to_string(callCount) + " 2>&1";
    double nanoseconds = 0;
    if (FILE* output = popen(command.c_str(), "r")) {
        char text[256];
        while (std::fgets(text, sizeof(text), output))
            std::sscanf(text, "%lf", &nanoseconds);
        pclose(output);
    }
    return nanoseconds;
}

std::string apitrace() { return "apitrace trace --api egl --output '" + folder + "/calls.trace'"; }

void report(benchmark::State& state, double nanoseconds) {
    for (auto _ : state)
        state.SetIterationTime(nanoseconds / 1e9);
    if (nanoseconds <= 0)
        state.SkipWithError("no figure");
}

void bareCalls(benchmark::State& state, const std::string& kind) { report(state, callLoop("", kind)); }

void apitraceCalls(benchmark::State& state, const std::string& kind) {
    report(state, callLoop(apitrace(), kind));
    std::filesystem::remove(folder + "/calls.trace");
}

double childNanoseconds() {
    rusage usage;
    getrusage(RUSAGE_CHILDREN, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e9 +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e3;
}

void apitraceDump(benchmark::State& state, const std::string& kind) {
    callLoop(apitrace(), kind);
    const double start = childNanoseconds();
    const std::string command =
        "apitrace dump --color=never '" + folder + "/calls.trace' >'" + folder + "/dump.txt'";
    const bool dumped = std::system(command.c_str()) == 0;
    report(state, dumped ? (childNanoseconds() - start) / callCount : 0);
    std::filesystem::remove(folder + "/calls.trace");
}

#endif

// The comparison is of equal texts.
template <class Calls>
bool hasPlainText(const Calls& calls) {
    std::ostringstream ours;
    std::ostringstream plain;
    const Tracing tracing(ours);
    for (long i = 0; i < 10000; ++i) {
        calls.call(OpenGLInterceptor::Instance(), i);
        calls.insert(plain, i);
    }
    if (ours.view() == plain.view())
        return true;
    std::fprintf(stderr, "%s: the tracer's text is not that of plain insertions\n", calls.name.c_str());
    return false;
}

// Nothing but the streams' own buffers, which files have from the start, may be allocated.
template <class Calls>
bool allocatesNothing(const Calls& calls) {
    std::ofstream out(folder + "/counted.txt");
    std::ofstream text(folder + "/counted.inl");
    std::ofstream data(folder + "/counted.bin", std::ios::binary);
    const Recording recording(text, data, true);
    const Tracing tracing(out);
    const unsigned long before = allocations();
    for (long i = 0; i < callCount; ++i)
        calls.call(OpenGLInterceptor::Instance(), i);
    const unsigned long count = allocations() - before;
    std::printf("%s: %lu allocations in %ld traced and recorded calls\n", calls.name.c_str(), count,
                callCount);
    return count == 0;
}

// The aims are ratios to apitrace, which Windows doesn't have; 0 for none.
template <class Calls>
void registerCalls(const Calls& calls, [[maybe_unused]] bool withApitrace, [[maybe_unused]] double aim,
                   [[maybe_unused]] double largeBufferAim, std::vector<Bench::Comparison>& comparisons) {
    const std::string& name = calls.name;
    const auto add = [&](const std::string& way, auto function, const auto& argument) {
        return benchmark::RegisterBenchmark((name + way).c_str(),
                                            [=](benchmark::State& state) { function(state, argument); });
    };
    add(": checked", checkedCalls<Calls>, calls)->Iterations(callCount);
    add(": OpenGLTracer", tracedCalls<Calls>, calls)->Iterations(callCount);
    add(": OpenGLTracer, 64 KiB buffer", tracedCallsLargeBuffer<Calls>, calls)->Iterations(callCount);
    add(": OpenGLRekorder", recordedCalls<false, Calls>, calls)->Iterations(callCount);
    add(": OpenGLRekorder, line comments", recordedCalls<true, Calls>, calls)->Iterations(callCount);
    add(": plain insertions", insertedCalls<Calls>, calls)->Iterations(callCount);
    comparisons.push_back({name + ": OpenGLTracer", name + ": plain insertions"});
#if !defined(_WIN32)
    add(": bare", bareCalls, calls.kind)->Iterations(1)->UseManualTime();
    if (!withApitrace)
        return;
    add(": apitrace trace", apitraceCalls, calls.kind)->Iterations(1)->UseManualTime();
    add(": apitrace dump", apitraceDump, calls.kind)->Iterations(1)->UseManualTime();
    comparisons.push_back({name + ": OpenGLTracer", name + ": apitrace trace", aim});
    comparisons.push_back({name + ": OpenGLTracer", name + ": apitrace trace", 0,
                           Bench::Comparison::By::ratio, name + ": checked", name + ": bare"});
    comparisons.push_back(
        {name + ": OpenGLTracer, 64 KiB buffer", name + ": apitrace trace", largeBufferAim});
    comparisons.push_back({name + ": OpenGLTracer", name + ": apitrace dump"});
    comparisons.push_back({name + ": OpenGLRekorder", name + ": apitrace trace", aim});
    comparisons.push_back({name + ": OpenGLRekorder, line comments", name + ": apitrace trace"});
#endif
}

int measure(int argc, char** argv) {
    const BindTexture bind;
    const Color4f shortColors("short");
    const Color4f randomColors("random");
    const Color4f anyColors("any");

    makeHeadlessContextCurrent();
    for (long i = 0; i < long(CallValues::textureCount); ++i)
        glBindTexture(GL_TEXTURE_2D, BindTexture::texture(i));
    if (!hasPlainText(bind) || !hasPlainText(shortColors) || !hasPlainText(randomColors) ||
        !hasPlainText(anyColors))
        return 1;

    const bool withApitrace = apitraceIsInstalled();
    std::vector<Bench::Comparison> comparisons;
    registerCalls(bind, withApitrace, 0.35, 0.35, comparisons);
    registerCalls(shortColors, withApitrace, 1, 0.65, comparisons);
    registerCalls(randomColors, withApitrace, 1, 0.65, comparisons);
    registerCalls(anyColors, withApitrace, 0, 0, comparisons);
    int result = Bench::run(argc, argv, comparisons);

    if (!allocationsCount)
        return result;
    if (!allocationsAreCounted()) {
        std::fprintf(stderr, "Allocations are not counted.\n");
        result = 1;
    }
    for (const Color4f& colors : {shortColors, randomColors, anyColors})
        if (!allocatesNothing(colors))
            result = 1;
    if (!allocatesNothing(bind))
        result = 1;
    return result;
}

} // namespace

int main(int argc, char** argv) {
    const Bench::TemporaryFolder temporary;
    folder = temporary.path();
    return measure(argc, argv);
}
