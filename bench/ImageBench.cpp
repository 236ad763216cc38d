// A texture image of 1,024 x 1,024 pixels recorded to a file, against the same bytes written to the same file
// with one write. The driver does nothing.

#include "Comparison.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/OpenGLRekorder.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int size = 1024;
std::string path;

const std::vector<char>& pixels() {
    static const std::vector<char> pixels(std::size_t(size) * size * 4, 'x');
    return pixels;
}

// Each round starts the file anew, so that both write to an empty one.
void recorded(benchmark::State& state) {
    std::ofstream text("/dev/null");
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
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        if (write(file, pixels().data(), pixels().size()) != static_cast<ssize_t>(pixels().size()))
            state.SkipWithError("the data was not written");
        close(file);
    }
}
BENCHMARK(written)->Name("one write")->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    std::string folder = std::filesystem::temp_directory_path() / "zlt_image_XXXXXX";
    if (!mkdtemp(folder.data())) {
        std::perror(folder.c_str());
        return 1;
    }
    path = folder + "/recording.bin";
    const int result = Bench::run(argc, argv, {{"glTexImage2D recorded", "one write", 1.05}});
    std::filesystem::remove_all(folder);
    return result;
}
