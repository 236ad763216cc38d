// Makes the calls of TraceBench with nothing in front of GL, so that a tracer from outside can stand there,
// and prints how many nanoseconds of processor time one took: CallLoop bind|asked|short|random|any COUNT.
// With `asked` glGetError follows each.

#include "CallValues.h"
#include "HeadlessContext.h"

#include <GL/gl.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

double threadNanoseconds() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: CallLoop bind|asked|short|random|any COUNT\n");
        return 1;
    }
    const std::string kind = argv[1];
    const long count = std::atol(argv[2]);
    makeHeadlessContextCurrent();
    for (GLuint texture = 1; texture <= CallValues::textureCount; ++texture)
        glBindTexture(GL_TEXTURE_2D, texture);
    const std::vector<float> values = CallValues::floats(kind);

    const double start = threadNanoseconds();
    if (kind == "asked") {
        for (long i = 0; i < count; ++i) {
            glBindTexture(GL_TEXTURE_2D, 1 + static_cast<GLuint>(i) % CallValues::textureCount);
            glGetError();
        }
    } else if (kind == "bind") {
        for (long i = 0; i < count; ++i)
            glBindTexture(GL_TEXTURE_2D, 1 + static_cast<GLuint>(i) % CallValues::textureCount);
    } else {
        for (long i = 0; i < count; ++i) {
            const float* value = &values[static_cast<std::size_t>(i) * 4 % CallValues::floatCount];
            glColor4f(value[0], value[1], value[2], value[3]);
        }
    }
    std::printf("%.3f\n", (threadNanoseconds() - start) / static_cast<double>(count));
    return 0;
}
