// The calls with a form of their own, in all branches.

#include "FakeGL.h"
#include "RecordText.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLRekorder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <set>
#include <sstream>
#include <vector>

using namespace ZLT::OGL;

namespace {

const float floats[16] = {1, -1, 0.5f, 1e-5f, 4, -0.0f, 1e20f, std::numeric_limits<float>::infinity(), 0.1f};
const int ints[16] = {3, -4, 2147483647, -2147483647 - 1, 5};
const double doubles[16] = {0.1, -2, 1e300};
// The recorder reads 8 bytes for each: twice as many as it is told.
unsigned int names[8] = {7, 8, 4000000000u, 0x11111111, 0x22222222, 0x33333333, 44, 55};
const unsigned char pixels[1024] = {1, 2, 3, 4, 5, 6, 250, 251, 252, 253};
const char *strings[] = {"void main", "{ } // a longer one.", "third"}, *cut[] = {"abc\0def", "xyz"};
const int lengths[] = {7, 2};
char log[64];
unsigned char booleans[16];
int length;
unsigned int type;
float* const unread = nullptr;

struct Row {
    const char* name;
    void (*call)(OpenGLInterceptor& gl);
    std::string text;
    std::string data{};
};
#define CALL(name, ...) #name, [](OpenGLInterceptor & gl) { gl.cgm##name("a.cpp", 7, __VA_ARGS__); }

#define UNIFORMS(name, type, size)                                                                           \
    {CALL(Uniform##name, 4, 2, type##s),                                                                     \
     dataBlock("glUniform" #name "(4, 2, reinterpret_cast<const GL" #type " *>(&data[0]));"),                \
     narrow(type##s, size)},                                                                                 \
    {                                                                                                        \
        CALL(Uniform##name##ARB, -1, 2, type##s),                                                            \
            dataBlock("glUniform" #name "ARB(-1, 2, reinterpret_cast<const GL" #type " *>(&data[0]));"),     \
            narrow(type##s, size)                                                                            \
    }

#define COORDINATES(name, type, bits, values)                                                                \
    {CALL(MultiTexCoord##name, 0x84C1, type##s),                                                             \
     "{\n    int tmp_i[] = { " bits " }; // " values "\n    glMultiTexCoord" #name                           \
     "(GL_TEXTURE1, reinterpret_cast<" #type " *>(&tmp_i[0]) );@\n}\n"},                                     \
    {                                                                                                        \
        CALL(MultiTexCoord##name##ARB, 0x84C1, type##s),                                                     \
            "{\n    int tmp_i[] = { " bits " }; // " values "\n    glMultiTexCoord" #name                    \
            "ARB(GL_TEXTURE1, reinterpret_cast<" #type " *>(&tmp_i[0]) );@\n}\n"                             \
    }

// The statements around a shader's strings. S: function and object, C: count, L: lengths, F: strings freed.
std::string source(const char* object, const char* count, const char* freed, const void* lengths = nullptr) {
    std::string text = R"({
    pBinaryInputStream->seekg(%);
    char *data[#];
    std::vector<GLint> lengths_data;
    if (~) lengths_data.resize(#);
    for (GLsizei n = 0; n < #; n++)
    {
        GLint nSize = 0;
        pBinaryInputStream->read((char *)&nSize, sizeof(nSize));
        if (~) lengths_data[n] = nSize;
        data[n] = new char[nSize];
        pBinaryInputStream->read(data[n], nSize);
    };
    if (~)
        $, #, (const GLchar **)data, &lengths_data[0]);@
    else
        $, #, (const GLchar **)data, NULL);@
    for (GLsizei n = 0; n < `; n++)
    {
        delete[] data[n];
    }
}
)";
    char digits[17];
    std::snprintf(digits, sizeof(digits), "%016llX",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(lengths)));
    text = replaced(replaced(text, '#', count), '~', digits);
    return replaced(replaced(text, '$', object), '`', freed);
}

std::vector<Row> makeRows() {
    return {
        // Images. Without pixels nothing is looked at, and no comment is written.
        {CALL(TexImage2D, 0x0DE1, 1, 0x8058, 4, 2, 0, 0x1903, 0x1403, nullptr),
         "glTexImage2D(GL_TEXTURE_2D, 1, 32856, 4, 2, 0, GL_RED, GL_UNSIGNED_SHORT, 0000000000000000);\n"},
        {CALL(TexImage2D, 0x0DE1, 0, 4, 16, 16, 1, 0x1908, 0x1401, pixels),
         dataBlock("glTexImage2D(GL_TEXTURE_2D, 0, 4, 16, 16, 1, GL_RGBA, GL_UNSIGNED_BYTE, &data[0]);"),
         narrow(pixels, 1024)},
        {CALL(TexImage2D, 0x0DE1, -1, -3, 2, 2, 0, 0x80E0, 0x1406, pixels),
         dataBlock("glTexImage2D(GL_TEXTURE_2D, -1, -3, 2, 2, 0, GL_BGR, GL_FLOAT, &data[0]);"),
         narrow(pixels, 48)},
        {CALL(TexImage2D, 0x0DE1, 0, 0, 3, 1, 0, 0x8051, 0x1401, pixels),
         dataBlock("glTexImage2D(GL_TEXTURE_2D, 0, 0, 3, 1, 0, GL_RGB8, GL_UNSIGNED_BYTE, &data[0]);"),
         narrow(pixels, 9)},
        // The size is the product in 32 bits.
        {CALL(TexImage2D, 0x0DE1, 0, 0, -2, -1, 0, 0x80E1, 0x8367, pixels),
         dataBlock("glTexImage2D(GL_TEXTURE_2D, 0, 0, -2, -1, 0, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, "
                   "&data[0]);"),
         narrow(pixels, 8)},
        {CALL(TexImage2D, 0x0DE1, 0, 0, 65536, 65536, 0, 0x1907, 0x1401, pixels),
         dataBlock("glTexImage2D(GL_TEXTURE_2D, 0, 0, 65536, 65536, 0, GL_RGB, GL_UNSIGNED_BYTE, "
                   "&data[0]);"),
         narrow(pixels, 0)},
        {CALL(TexImage2D, 0x0DE1, 0, 0, 1, 1, 0, 0x1908, 0x1403, pixels),
         "WARNING!!! Encountered unsupported type and / or format (type=5123, format=6408).\n"},
        {CALL(TexSubImage2D, 0x0DE1, 2, -3, 4, 5, 1, 0x190A, 0x1401, pixels),
         dataBlock("glTexSubImage2D(GL_TEXTURE_2D, 2, -3, 4, 5, 1, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, "
                   "&data[0]);"),
         narrow(pixels, 10)},
        {CALL(TexSubImage2D, 0x0DE1, 0, 0, 0, 1, 1, 0x1903, 0x1401, pixels),
         "WARNING!!! Encountered unsupported type and / or format (type=5121, format=6403).\n"},
        {CALL(TexSubImage2D, 0x0DE1, 0, 0, 0, 0, 1, 0x1906, 0x1401, nullptr),
         dataBlock("glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 1, GL_ALPHA, GL_UNSIGNED_BYTE, &data[0]);"),
         narrow(pixels, 0)},
        {CALL(ReadPixels, 1, -2, 3, 4, 0x1908, 0x1401, nullptr),
         "//glReadPixels(1, -2, 3, 4, GL_RGBA, GL_UNSIGNED_BYTE, 0000000000000000);@\n"},

        // Matrices and uniforms.
        {CALL(LoadMatrixf, floats), dataBlock("glLoadMatrixf((GLfloat *)&data[0]);"), narrow(floats, 64)},
        {CALL(MultMatrixf, floats), dataBlock("glMultMatrixf(reinterpret_cast<const GLfloat *>(&data[0]));"),
         narrow(floats, 64)},
        {CALL(MultMatrixd, doubles),
         dataBlock("glMultMatrixd(reinterpret_cast<const GLdouble *>(&data[0]));"), narrow(doubles, 128)},
        UNIFORMS(1fv, float, 8),
        UNIFORMS(2fv, float, 16),
        UNIFORMS(3fv, float, 24),
        UNIFORMS(4fv, float, 32),
        UNIFORMS(1iv, int, 8),
        UNIFORMS(2iv, int, 16),
        UNIFORMS(3iv, int, 24),
        UNIFORMS(4iv, int, 32),
        {CALL(Uniform3fv, 4, 0, nullptr),
         dataBlock("glUniform3fv(4, 0, reinterpret_cast<const GLfloat *>(&data[0]));"), narrow(floats, 0)},
        {CALL(UniformMatrix2fv, 4, 2, 1, floats),
         dataBlock("glUniformMatrix2fv(4, 2, GL_TRUE, reinterpret_cast<const GLfloat *>(&data[0]));",
                   "unsigned int nSize;"),
         narrow(floats, 32)},
        {CALL(UniformMatrix2fvARB, -5, 1, 0, floats),
         dataBlock("glUniformMatrix2fvARB(-5, 1, GL_FALSE, reinterpret_cast<const GLfloat *>(&data[0]));",
                   "unsigned int nSize;"),
         narrow(floats, 16)},

        // Short vectors in the text.
        {CALL(Vertex2fv, floats), "{\n    int tmp_i[] = { 1065353216, -1082130432 }; // 1, -1\n"
                                  "    glVertex2fv( reinterpret_cast<float *>(&tmp_i[0]) );@\n}\n"},
        COORDINATES(1fv, float, "1065353216", "1"),
        COORDINATES(2fv, float, "1065353216, -1082130432", "1, -1"),
        COORDINATES(3fv, float, "1065353216, -1082130432, 1056964608", "1, -1, 0.5"),
        COORDINATES(4fv, float, "1065353216, -1082130432, 1056964608, 925353388", "1, -1, 0.5, 1e-05"),
        COORDINATES(1iv, int, "3", "3"),
        COORDINATES(2iv, int, "3, -4", "3, -4"),
        COORDINATES(3iv, int, "3, -4, 2147483647", "3, -4, 2147483647"),
        COORDINATES(4iv, int, "3, -4, 2147483647, -2147483648", "3, -4, 2147483647, -2147483648"),
        // Values in an array of int, and no comment behind it.
        {CALL(TexParameterfv, 0x0DE1, 0x1004, floats + 4),
         "{\n    int tmp_i[] = { 4, -0, 1e+20, inf };\n"
         "    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, "
         "reinterpret_cast<float *>(&tmp_i[0]) );@\n}\n"},

        // Names that are made, and queries.
        {CALL(GenTextures, 3, names),
         "{\n    GLuint textures[3];\n    glGenTextures(3, &textures[0]);@\n}\n"},
        {CALL(GenQueries, 0, names), "{\n    GLuint ids[0];\n    glGenQueries(0, &ids[0]);@\n}\n"},
        {CALL(GenFramebuffersEXT, -1, names),
         "{\n    GLuint framebuffers[-1];\n    glGenFramebuffersEXT(-1, &framebuffers[0]);@\n}\n"},
        {CALL(GetBooleanv, 0x0BA6, booleans),
         "{\n    GLboolean data[4 * 4];\n    glGetBooleanv(GL_MODELVIEW_MATRIX, &data[0]);@\n}\n"},
        {CALL(GetFloatv, 0x0BA6, unread),
         "{\n    GLfloat data[4 * 4];\n    glGetFloatv(GL_MODELVIEW_MATRIX, &data[0]);@\n}\n"},
        {CALL(GetIntegerv, 0x0D33, &length),
         "{\n    GLint data[4 * 4];\n    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &data[0]);@\n}\n"},
        {CALL(GetObjectParameterfvARB, 4000000000u, 0x8B81, unread),
         "{\n    GLfloat data[4 * 4];\n"
         "    glGetObjectParameterfvARB((GLhandleARB)4000000000, GL_COMPILE_STATUS, &data[0]);@\n}\n"},
        {CALL(GetObjectParameterivARB, 9, 0x8B81, &length),
         "{\n    GLint data[4 * 4];\n"
         "    glGetObjectParameterivARB((GLhandleARB)9, GL_COMPILE_STATUS, &data[0]);@\n}\n"},
        {CALL(GetTexLevelParameterfv, 0x0DE1, -2, 0x805C, unread),
         "{\n    GLfloat data;\n"
         "    glGetTexLevelParameterfv(GL_TEXTURE_2D, -2, GL_TEXTURE_RED_SIZE, &data);@\n}\n"},
        {CALL(GetTexLevelParameteriv, 0x0DE1, 1, 0x805C, &length),
         "{\n    GLint data;\n"
         "    glGetTexLevelParameteriv(GL_TEXTURE_2D, 1, GL_TEXTURE_RED_SIZE, &data);@\n}\n"},
        {CALL(GetProgramiv, 4000000000u, 0x8B82, &length),
         "{\n    int data;\n    glGetProgramiv(4000000000, GL_LINK_STATUS, &data);@\n}\n"},
        {CALL(GetShaderiv, 5, 0x8B81, &length),
         "{\n    GLint data;\n    glGetShaderiv(5, GL_COMPILE_STATUS, &data);@\n}\n"},
        {CALL(GetProgramInfoLog, 5, 64, &length, log),
         "{\n    std::vector<char> data(64);\n    glGetProgramInfoLog(5, 64, NULL, &data[0]);@\n}\n"},
        {CALL(GetInfoLogARB, 5, 64, &length, log),
         "{\n    GLcharARB data[65];\n    GLsizei length;\n"
         "    glGetInfoLogARB((GLhandleARB)5, 64, &length, &data[0]);@\n}\n"},
        {CALL(GetInfoLogARB, 5, -1, nullptr, log),
         "{\n    GLcharARB data[0];\n    GLsizei length;\n"
         "    glGetInfoLogARB((GLhandleARB)5, -1, NULL, &data[0]);@\n}\n"},
        {CALL(GetActiveUniformARB, 5, 4000000000u, 32, nullptr, &length, &type, log),
         "{\n    GLcharARB data[33];\n    GLsizei length;\n    GLint size;\n    GLenum type;\n"
         "    glGetActiveUniformARB((GLhandleARB)5, 4000000000, 32, &length, &size, &type, "
         "&data[0]);@\n}\n"},
        {CALL(GetAttachedShaders, 5, 2, &length, names),
         "{\n    GLsizei count[2];\n    GLuint shaders[2];\n"
         "    glGetAttachedShaders(5, 2, &count[0], &shaders[0]);@\n}\n"},
        {CALL(GetAttachedObjectsARB, 5, 3, nullptr, names),
         "{\n    GLsizei count[3];\n    GLuint obj[3];\n"
         "    glGetAttachedObjectsARB((GLhandleARB)5, 3, &count[0], &obj[0]);@\n}\n"},

        // Names that go, and their texts: lengths of 8 bytes.
        {CALL(DeleteTextures, 3, names),
         dataBlock("glDeleteTextures(3, reinterpret_cast<const GLuint *>(&data[0]));"), wide(names, 24)},
        {CALL(DeleteTextures, 0, nullptr),
         dataBlock("glDeleteTextures(0, reinterpret_cast<const GLuint *>(&data[0]));"), wide(names, 0)},
        {CALL(DeleteQueries, 1, names + 2),
         dataBlock("glDeleteQueries(1, reinterpret_cast<const GLuint *>(&data[0]));"), wide(names + 2, 8)},
        {CALL(DeleteFramebuffersEXT, 2, names),
         dataBlock("glDeleteFramebuffersEXT(2, reinterpret_cast<const GLuint *>(&data[0]));"),
         wide(names, 16)},
        {CALL(DrawBuffersARB, 4, names),
         dataBlock("glDrawBuffersARB(4, reinterpret_cast<const GLenum *>(&data[0]));"), wide(names, 32)},
        {CALL(GetUniformLocation, 4000000000u, "light"),
         dataBlock("glGetUniformLocation(4000000000, &data[0]);"), wide("light", 6)},
        {CALL(GetUniformLocationARB, 5, ""), dataBlock("glGetUniformLocationARB((GLhandleARB)5, &data[0]);"),
         wide("", 1)},
        {CALL(ShaderSource, 5, 2, strings, nullptr), source("glShaderSource(5", "2", "2"),
         wide("void main", 10) + wide("{ } // a longer one.", 21)},
        {CALL(ShaderSource, 5, 2, cut, lengths), source("glShaderSource(5", "2", "2", lengths),
         wide("abc\0def", 7) + wide("xy", 2)},
        {CALL(ShaderSource, 5, 0, nullptr, lengths), source("glShaderSource(5", "0", "0", lengths)},
        {CALL(ShaderSource, 5, -1, nullptr, nullptr), source("glShaderSource(5", "-1", "-1")},
        {CALL(ShaderSourceARB, 5, 3, strings, nullptr), source("glShaderSourceARB((GLhandleARB)5", "3", "1"),
         wide("void main", 10) + wide("{ } // a longer one.", 21) + wide("third", 6)},
        {CALL(ShaderSourceARB, 5, 1, cut, lengths),
         source("glShaderSourceARB((GLhandleARB)5", "1", "1", lengths), wide("abc\0def", 7)},
        {CALL(ShaderSourceARB, 5, 0, nullptr, nullptr), source("glShaderSourceARB((GLhandleARB)5", "0", "1")},
    };
}

TEST(RekorderForms, EachIsWrittenAsItStandsHereAndThenCalled) {
    const std::vector<Row> rows = makeRows();
    for (const std::string comment : {"", "\t\t// a.cpp, line 7"}) {
        OpenGLErrorChecker checker;
        std::ostringstream text, data;
        OpenGLRekorder recorder(text, data, &checker, !comment.empty());
        std::set<std::string> covered;
        for (const Row& row : rows) {
            SCOPED_TRACE(row.text);
            covered.insert(row.name);
            FakeGL::reset();
            row.call(checker);
            const std::vector<FakeGL::Call> bareCalls = FakeGL::calls();
            EXPECT_EQ(std::string("gl") + row.name, bareCalls.at(0).function);

            FakeGL::reset();
            text.str("");
            const std::size_t position = data.str().size();
            std::string textOnCall, dataOnCall;
            FakeGL::setHook([&](const FakeGL::Call&) {
                textOnCall = text.str();
                dataOnCall = data.str();
            });
            row.call(recorder);
            EXPECT_EQ(bareCalls, FakeGL::calls());
            EXPECT_EQ(replaced(replaced(row.text, '@', comment), '%', std::to_string(position)), text.str());
            EXPECT_EQ(row.data, data.str().substr(position));
            EXPECT_EQ(text.str(), textOnCall);
            EXPECT_EQ(data.str(), dataOnCall);
        }
        EXPECT_EQ(67u, covered.size());
    }
}

struct Factor {
    unsigned int token;
    std::uint32_t bytes;
};
const Factor types[] = {{0x1401, 1}, {0x1406, 4}, {0x8035, 1}, {0x8367, 1}, {0x1400, 0},
                        {0x1403, 0}, {0x1405, 0}, {0x140B, 0}, {0x8032, 0}, {0x84FA, 0}};
const Factor formats[] = {{0x1906, 1}, {0x1909, 1}, {0x8049, 1}, {0x190A, 2}, {0x1907, 3}, {0x80E0, 3},
                          {0x8051, 3}, {0x1908, 4}, {0x80E1, 4}, {0x8058, 4}, {0x1903, 0}, {0x1902, 0},
                          {0x8040, 0}, {0x8054, 0}, {0x805B, 0}, {0x1900, 0}};

TEST(RekorderForms, APixelIsAsLargeAsItsFormatTimesItsType) {
    OpenGLErrorChecker checker;
    FakeGL::reset();
    for (const Factor& type : types)
        for (const Factor& format : formats)
            for (const bool part : {false, true}) {
                std::ostringstream text, data;
                OpenGLRekorder recorder(text, data, &checker, true);
                if (part)
                    recorder.cgmTexSubImage2D("a.cpp", 7, 1, 0, 0, 0, 2, 3, format.token, type.token, pixels);
                else
                    recorder.cgmTexImage2D("a.cpp", 7, 1, 0, 4, 2, 3, 0, format.token, type.token, pixels);
                if (const std::uint32_t size = 6 * type.bytes * format.bytes) {
                    EXPECT_EQ(narrow(pixels, size), data.str());
                    EXPECT_EQ(0u, text.str().find("{\n    pBinaryInputStream->seekg(0);\n"));
                } else {
                    std::ostringstream warning;
                    warning << "WARNING!!! Encountered unsupported type and / or format (type=" << type.token
                            << ", format=" << format.token << ").\n";
                    EXPECT_EQ("", data.str());
                    EXPECT_EQ(warning.str(), text.str());
                }
            }
}

} // namespace
