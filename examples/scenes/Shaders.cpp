#include "Scene.h"

#include "extensionator/OpenGLInterceptor.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <array>
#include <stdexcept>
#include <string>

namespace {

constexpr const char* vertexSource = "uniform mat2 turn;\n"
                                     "varying vec2 place;\n"
                                     "void main() {\n"
                                     "    place = turn * gl_Vertex.xy;\n"
                                     "    gl_Position = gl_Vertex;\n"
                                     "}\n";

// In two strings, as programs that put definitions in front have it.
constexpr std::array fragmentSource = {
    "#define CENTRES 4\n", "uniform vec3 centres[CENTRES];\n"
                           "uniform vec4 inner;\n"
                           "uniform float scale;\n"
                           "uniform int rings;\n"
                           "varying vec2 place;\n"
                           "void main() {\n"
                           "    float field = 0.0;\n"
                           "    for (int i = 0; i < CENTRES; ++i)\n"
                           "        field += centres[i].z / (0.02 + distance(place, centres[i].xy));\n"
                           "    float band = fract(field * scale * float(rings));\n"
                           "    gl_FragColor = mix(vec4(0.05, 0.1, 0.2, 1.0), inner, band);\n"
                           "}\n"};

class Shaders : public Scene {
public:
    Shaders(int width, int height) : program_(CGM(CreateProgram)) {
        CGM(Viewport, 0, 0, width, height);
        const char* vertex = vertexSource;
        attach(GL_VERTEX_SHADER, 1, &vertex, nullptr);
        std::array strings = fragmentSource;
        // Lengths that are given leave out the zero byte.
        const std::array lengths = {static_cast<int>(std::char_traits<char>::length(strings[0])),
                                    static_cast<int>(std::char_traits<char>::length(strings[1]))};
        attach(GL_FRAGMENT_SHADER, 2, strings.data(), lengths.data());
        CGM(LinkProgram, program_);
        int linked = 0;
        CGM(GetProgramiv, program_, GL_LINK_STATUS, &linked);
        if (!linked)
            throw std::runtime_error("the program does not link");
    }
    ~Shaders() override {
        try {
            CGM(UseProgram, 0);
            CGM(DeleteProgram, program_);
        } catch (...) {
            // A destructor lets nothing out; the name goes with the context.
        }
    }

    void draw() override {
        constexpr std::array centres = {-0.5f, 0.2f,  0.2f, 0.4f,  0.5f,  0.15f,
                                        0.3f,  -0.5f, 0.1f, -0.7f, -0.6f, 0.25f};
        constexpr std::array inner = {0.95f, 0.75f, 0.25f, 1.0f};
        constexpr std::array turn = {0.8f, 0.6f, -0.6f, 0.8f};
        constexpr float scale = 0.75f;
        constexpr int rings = 2;
        CGM(UseProgram, program_);
        CGM(Uniform3fv, location("centres"), 4, centres.data());
        CGM(Uniform4fv, location("inner"), 1, inner.data());
        CGM(Uniform1fv, location("scale"), 1, &scale);
        CGM(Uniform1iv, location("rings"), 1, &rings);
        CGM(UniformMatrix2fv, location("turn"), 1, GL_FALSE, turn.data());
        CGM(Rectf, -1.0f, -1.0f, 1.0f, 1.0f);
        CGM(Finish);
    }

private:
    void attach(unsigned int type, int count, const char** strings, const int* lengths) const {
        const unsigned int shader = CGM(CreateShader, type);
        CGM(ShaderSource, shader, count, strings, lengths);
        CGM(CompileShader, shader);
        CGM(AttachShader, program_, shader);
        CGM(DeleteShader, shader);
    }
    int location(const char* name) const { return CGM(GetUniformLocation, program_, name); }

    unsigned int program_;
};

} // namespace

std::unique_ptr<Scene> makeShaders(int width, int height) { return std::make_unique<Shaders>(width, height); }
