// Plays a capture with a layer that gives every object another name than it had, and every uniform variable
// another location: othernames FILE. Prints what differs first; the status is 1 then.

#include "capture/CaptureFile.h"
#include "capture/CapturePlayer.h"
#include "capture/DriverCalls.h"
#include "capture/PlatformPlaySystem.h"
#include "extensionator/OpenGLForwarder.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace {

using namespace ZLT::Capture;

class OtherNames : public ZLT::OGL::OpenGLForwarder {
public:
    using Forwarder = ZLT::OGL::OpenGLForwarder;
    static constexpr int other = 1000;

    // As many names as are asked for, behind some that nobody gets.
    template <class Generate>
    void generate(int n, unsigned int* names, const Generate& make) {
        constexpr int burnt = 3;
        std::vector<unsigned int> more(static_cast<std::size_t>(n) + burnt);
        make(n + burnt, more.data());
        for (int i = 0; i < n; ++i)
            names[i] = more[static_cast<std::size_t>(i) + burnt];
        ++renamed;
    }

#define GENERATE(Name)                                                                                       \
    void cgmGen##Name(const char* file, unsigned int line, int n, unsigned int* names) override {            \
        generate(n, names,                                                                                   \
                 [&](int count, unsigned int* to) { Forwarder::cgmGen##Name(file, line, count, to); });      \
    }
    GENERATE(Textures)
    GENERATE(Buffers)
    GENERATE(ProgramsARB)
    GENERATE(Framebuffers)
    GENERATE(RenderbuffersEXT)
    GENERATE(Queries)
#undef GENERATE
    unsigned int cgmGenLists(const char* file, unsigned int line, int range) override {
        Forwarder::cgmGenLists(file, line, 7);
        return Forwarder::cgmGenLists(file, line, range);
    }
    unsigned int cgmCreateShader(const char* file, unsigned int line, unsigned int type) override {
        Forwarder::cgmCreateShader(file, line, type);
        return Forwarder::cgmCreateShader(file, line, type);
    }
    unsigned int cgmCreateProgram(const char* file, unsigned int line) override {
        Forwarder::cgmCreateProgram(file, line);
        return Forwarder::cgmCreateProgram(file, line);
    }

    int cgmGetUniformLocation(const char* file, unsigned int line, unsigned int program,
                              const char* name) override {
        const int location = Forwarder::cgmGetUniformLocation(file, line, program, name);
        return location < 0 ? location : location + other;
    }
    void cgmUniform1f(const char* file, unsigned int line, int location, float v0) override {
        Forwarder::cgmUniform1f(file, line, location - other, v0);
    }
    void cgmUniform1i(const char* file, unsigned int line, int location, int v0) override {
        Forwarder::cgmUniform1i(file, line, location - other, v0);
    }
    void cgmUniform2f(const char* file, unsigned int line, int location, float v0, float v1) override {
        Forwarder::cgmUniform2f(file, line, location - other, v0, v1);
    }
    void cgmUniform2fv(const char* file, unsigned int line, int location, int count,
                       const float* value) override {
        Forwarder::cgmUniform2fv(file, line, location - other, count, value);
    }
    void cgmUniform4fv(const char* file, unsigned int line, int location, int count,
                       const float* value) override {
        Forwarder::cgmUniform4fv(file, line, location - other, count, value);
    }
    void cgmUniformMatrix3fv(const char* file, unsigned int line, int location, int count,
                             unsigned char transpose, const float* value) override {
        Forwarder::cgmUniformMatrix3fv(file, line, location - other, count, transpose, value);
    }
    void cgmUniformMatrix2x3fv(const char* file, unsigned int line, int location, int count,
                               unsigned char transpose, const float* value) override {
        Forwarder::cgmUniformMatrix2x3fv(file, line, location - other, count, transpose, value);
    }
    void cgmGetUniformfv(const char* file, unsigned int line, unsigned int program, int location,
                         float* params) override {
        Forwarder::cgmGetUniformfv(file, line, program, location - other, params);
    }

    int renamed = 0;
};

class Listener : public PlayListener {
public:
    void differs(const CapturedCall& call, const std::string& what) override {
        if (first.empty())
            first = call.function->name + ": " + what + " differs";
    }
    std::string first;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    try {
        CaptureFile file(argv[1]);
        DriverCalls driver;
        OtherNames names;
        names.setInterceptor(&driver);
        Listener listener;
        PlatformPlaySystem system(false, driver);
        CapturePlayer player(file, system, names, listener, {true});
        while (player.playFrame())
            continue;
        std::printf("%llu compared, %s, %s\n", static_cast<unsigned long long>(player.comparedCount()),
                    names.renamed > 0 ? "renamed" : "no names",
                    listener.first.empty() ? "equal" : listener.first.c_str());
        return listener.first.empty() ? 0 : 1;
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 3;
    }
}
