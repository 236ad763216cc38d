// A texture image of 1,024 x 1,024 pixels recorded to a file, against the same bytes written to the same file
// with one write. The driver does nothing.

#include "Comparison.h"
#include "TemporaryFolder.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/OpenGLRekorder.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

#if defined(_WIN32)
constexpr const char* nowhere = "NUL";
#else
constexpr const char* nowhere = "/dev/null";
constexpr int O_BINARY = 0;
#endif
constexpr int size = 1024;
std::string path;

const std::vector<char>& pixels() {
    static const std::vector<char> pixels(std::size_t(size) * size * 4, 'x');
    return pixels;
}

// Each round starts the file anew, so that both write to an empty one.
void recorded(benchmark::State& state) {
    std::ofstream text(nowhere);
    for (auto _ : state) {
        std::ofstream data(path, std::ios::binary | std::ios::trunc);
        ZLT::OGL::OpenGLRekorder recorder(text, data, nullptr, false);
        ZLT::OGL::OpenGLInterceptor::Instance()->addInterceptor(&recorder);
        CGM(TexImage2D, GL_TEXTURE_2D, 0, GL_RGBA8, size, size, 0, GL_RGBA, GL_UNSIGNED_BYTE,
            pixels().data());
        ZLT::OGL::OpenGLInterceptor::Instance()->popInterceptor();
        data.close();
        if (!data)
            state.SkipWithError("the data was not written");
    }
}
BENCHMARK(recorded)->Name("glTexImage2D recorded")->Unit(benchmark::kMicrosecond);

void written(benchmark::State& state) {
    for (auto _ : state) {
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_BINARY, 0666);
        if (write(file, pixels().data(), pixels().size()) != static_cast<ssize_t>(pixels().size()))
            state.SkipWithError("the data was not written");
        close(file);
    }
}
BENCHMARK(written)->Name("one write")->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    const Bench::TemporaryFolder folder;
    path = folder.path() + "/recording.bin";
    return Bench::run(argc, argv, {{"glTexImage2D recorded", "one write", 1.05}});
}
