// The calls with a form of their own, in all branches.

#include "RecordRows.h"

#include "RecordText.h"

#include <iomanip>
#include <limits>
#include <sstream>

namespace ZLT::OGL {

const unsigned char recordedPixels[1024] = {1, 2, 3, 4, 5, 6, 250, 251, 252, 253};

namespace {

const float floats[16] = {1, -1, 0.5f, 1e-5f, 4, -0.0f, 1e20f, std::numeric_limits<float>::infinity(), 0.1f};
const float zeros[4] = {};
const int ints[16] = {3, -4, 2147483647, -2147483647 - 1, 5};
const double doubles[16] = {0.1, -2, 1e300};
// The recorder reads 8 bytes for each: twice as many as it is told.
unsigned int names[8] = {7, 8, 4000000000u, 0x11111111, 0x22222222, 0x33333333, 44, 55};
const auto* const pixels = recordedPixels;
const char *strings[] = {"void main", "{ } // a longer one.", "third"}, *cut[] = {"abc\0def", "xyz"};
const int lengths[] = {7, 2};
char log[64];
unsigned char booleans[16];
int length;
unsigned int type;
float* const unread = nullptr;

#define CALL(name, ...) #name, [](OpenGLInterceptor & gl) { gl.cgm##name("a.cpp", 7, __VA_ARGS__); }

// What a block with these declarations makes of the call.
std::string declaring(const std::string& declarations, const std::string& call) {
    return "{\n    " + replaced(declarations, '|', "\n    ") + "\n    " + call + "@\n}\n";
}

// Makes room for what comes back: the declarations, the arguments as written, the arguments.
#define QUERY(name, declarations, written, ...)                                                              \
    { CALL(name, __VA_ARGS__), declaring(declarations, "gl" #name "(" written ");") }

// Reads its data: the record, the arguments as written, the arguments.
#define READ(name, record, written, ...)                                                                     \
    { CALL(name, __VA_ARGS__), dataBlock("gl" #name "(" written ");"), record }

#define UNIFORM(name, type, size)                                                                            \
    {                                                                                                        \
        CALL(Uniform##name, -4, 2, type##s),                                                                 \
            dataBlock("glUniform" #name "(-4, 2, reinterpret_cast<const GL" #type " *>(&data[0]));"),        \
            narrow(type##s, size)                                                                            \
    }

#define COORDINATE(name, type, values)                                                                       \
    {                                                                                                        \
        CALL(MultiTexCoord##name, 0x84C1, type##s),                                                          \
            "{\n    int tmp_i[] = " values "\n    glMultiTexCoord" #name                                     \
            "(GL_TEXTURE1, reinterpret_cast<" #type " *>(&tmp_i[0]) );@\n}\n"                                \
    }

#define UNIFORMS(name, type, size) UNIFORM(name, type, size), UNIFORM(name##ARB, type, size)
#define COORDINATES(name, type, values) COORDINATE(name, type, values), COORDINATE(name##ARB, type, values)

// The statements around a shader's strings: function and object, count, how many are freed, lengths.
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
    std::ostringstream condition;
    condition << std::hex << std::uppercase << std::setw(16) << std::setfill('0')
              << reinterpret_cast<std::uintptr_t>(lengths);
    text = replaced(replaced(text, '#', count), '~', condition.str());
    return replaced(replaced(text, '$', object), '`', freed);
}

} // namespace

std::vector<RecordRow> recordRows() {
    return {
        // Images. Without pixels nothing is looked at, and no comment is written.
        {CALL(TexImage2D, 0x0DE1, 1, 0x8058, 4, 2, 0, 0x1903, 0x1403, nullptr),
         "glTexImage2D(GL_TEXTURE_2D, 1, 32856, 4, 2, 0, GL_RED, GL_UNSIGNED_SHORT, 0000000000000000);\n"},
        READ(TexImage2D, narrow(pixels, 1024),
             "GL_TEXTURE_2D, 0, 4, 16, 16, 1, GL_RGBA, GL_UNSIGNED_BYTE, &data[0]", 0x0DE1, 0, 4, 16, 16, 1,
             0x1908, 0x1401, pixels),
        READ(TexSubImage2D, narrow(pixels, 10),
             "GL_TEXTURE_2D, 2, -3, 4, 5, 1, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, &data[0]", 0x0DE1, 2, -3,
             4, 5, 1, 0x190A, 0x1401, pixels),
        // Matrices and uniforms.
        READ(LoadMatrixf, narrow(floats, 64), "(GLfloat *)&data[0]", floats),
        READ(MultMatrixf, narrow(floats, 64), "reinterpret_cast<const GLfloat *>(&data[0])", floats),
        READ(MultMatrixd, narrow(doubles, 128), "reinterpret_cast<const GLdouble *>(&data[0])", doubles),
        UNIFORMS(1fv, float, 8),
        UNIFORMS(2fv, float, 16),
        UNIFORMS(3fv, float, 24),
        UNIFORMS(4fv, float, 32),
        UNIFORMS(1iv, int, 8),
        UNIFORMS(2iv, int, 16),
        UNIFORMS(3iv, int, 24),
        UNIFORMS(4iv, int, 32),
        {CALL(UniformMatrix2fv, 4, 2, 1, floats),
         dataBlock("glUniformMatrix2fv(4, 2, GL_TRUE, reinterpret_cast<const GLfloat *>(&data[0]));",
                   "unsigned int nSize;"),
         narrow(floats, 32)},
        {CALL(UniformMatrix2fvARB, -5, 1, 0, floats),
         dataBlock("glUniformMatrix2fvARB(-5, 1, GL_FALSE, reinterpret_cast<const GLfloat *>(&data[0]));",
                   "unsigned int nSize;"),
         narrow(floats, 16)},
        // Short vectors in the text.
        {CALL(Vertex2fv, floats), declaring("int tmp_i[] = { 1065353216, -1082130432 }; // 1, -1",
                                            "glVertex2fv( reinterpret_cast<float *>(&tmp_i[0]) );")},
        COORDINATES(1fv, float, "{ 1065353216 }; // 1"),
        COORDINATES(2fv, float, "{ 1065353216, -1082130432 }; // 1, -1"),
        COORDINATES(3fv, float, "{ 1065353216, -1082130432, 1056964608 }; // 1, -1, 0.5"),
        COORDINATES(4fv, float, "{ 1065353216, -1082130432, 1056964608, 925353388 }; // 1, -1, 0.5, 1e-05"),
        COORDINATES(1iv, int, "{ 3 }; // 3"),
        COORDINATES(2iv, int, "{ 3, -4 }; // 3, -4"),
        COORDINATES(3iv, int, "{ 3, -4, 2147483647 }; // 3, -4, 2147483647"),
        COORDINATES(4iv, int, "{ 3, -4, 2147483647, -2147483648 }; // 3, -4, 2147483647, -2147483648"),
        // Values in an array of int, and no comment behind it.
        {CALL(TexParameterfv, 0x0DE1, 0x1004, zeros),
         declaring("int tmp_i[] = { 0, 0, 0, 0 };",
                   "glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, reinterpret_cast<float "
                   "*>(&tmp_i[0]) );")},
        // Names that are made, and queries.
        QUERY(GenTextures, "GLuint textures[3];", "3, &textures[0]", 3, names),
        QUERY(GenQueries, "GLuint ids[2];", "2, &ids[0]", 2, names),
        QUERY(GenFramebuffersEXT, "GLuint framebuffers[1];", "1, &framebuffers[0]", 1, names),
        QUERY(GetBooleanv, "GLboolean data[4 * 4];", "GL_MODELVIEW_MATRIX, &data[0]", 0x0BA6, booleans),
        QUERY(GetFloatv, "GLfloat data[4 * 4];", "GL_MODELVIEW_MATRIX, &data[0]", 0x0BA6, unread),
        QUERY(GetIntegerv, "GLint data[4 * 4];", "GL_MAX_TEXTURE_SIZE, &data[0]", 0x0D33, &length),
        QUERY(GetObjectParameterfvARB, "GLfloat data[4 * 4];",
              "(GLhandleARB)4000000000, GL_COMPILE_STATUS, &data[0]", 4000000000u, 0x8B81, unread),
        QUERY(GetObjectParameterivARB, "GLint data[4 * 4];", "(GLhandleARB)9, GL_COMPILE_STATUS, &data[0]", 9,
              0x8B81, &length),
        QUERY(GetTexLevelParameterfv, "GLfloat data;", "GL_TEXTURE_2D, -2, GL_TEXTURE_RED_SIZE, &data",
              0x0DE1, -2, 0x805C, unread),
        QUERY(GetTexLevelParameteriv, "GLint data;", "GL_TEXTURE_2D, 1, GL_TEXTURE_RED_SIZE, &data", 0x0DE1,
              1, 0x805C, &length),
        QUERY(GetProgramiv, "int data;", "4000000000, GL_LINK_STATUS, &data", 4000000000u, 0x8B82, &length),
        QUERY(GetShaderiv, "GLint data;", "5, GL_COMPILE_STATUS, &data", 5, 0x8B81, &length),
        QUERY(GetProgramInfoLog, "std::vector<char> data(64);", "5, 64, NULL, &data[0]", 5, 64, &length, log),
        QUERY(GetInfoLogARB, "GLcharARB data[65];|GLsizei length;", "(GLhandleARB)5, 64, &length, &data[0]",
              5, 64, &length, log),
        QUERY(GetActiveUniformARB, "GLcharARB data[33];|GLsizei length;|GLint size;|GLenum type;",
              "(GLhandleARB)5, 4000000000, 32, &length, &size, &type, &data[0]", 5, 4000000000u, 32, nullptr,
              &length, &type, log),
        QUERY(GetAttachedShaders, "GLsizei count[2];|GLuint shaders[2];", "5, 2, &count[0], &shaders[0]", 5,
              2, &length, names),
        QUERY(GetAttachedObjectsARB, "GLsizei count[3];|GLuint obj[3];",
              "(GLhandleARB)5, 3, &count[0], &obj[0]", 5, 3, nullptr, names),
        // Names that go, and their texts: lengths of 8 bytes.
        READ(DeleteTextures, wide(names, 24), "3, reinterpret_cast<const GLuint *>(&data[0])", 3, names),
        READ(DeleteQueries, wide(names + 2, 8), "1, reinterpret_cast<const GLuint *>(&data[0])", 1,
             names + 2),
        READ(DeleteFramebuffersEXT, wide(names, 16), "2, reinterpret_cast<const GLuint *>(&data[0])", 2,
             names),
        READ(DrawBuffersARB, wide(names, 32), "4, reinterpret_cast<const GLenum *>(&data[0])", 4, names),
        READ(GetUniformLocation, wide("light", 6), "4000000000, &data[0]", 4000000000u, "light"),
        READ(GetUniformLocationARB, wide("", 1), "(GLhandleARB)5, &data[0]", 5, ""),
        {CALL(ShaderSource, 5, 2, strings, nullptr), source("glShaderSource(5", "2", "2"),
         wide("void main", 10) + wide("{ } // a longer one.", 21)},
        {CALL(ShaderSource, 5, 2, cut, lengths), source("glShaderSource(5", "2", "2", lengths),
         wide("abc\0def", 7) + wide("xy", 2)},
        {CALL(ShaderSourceARB, 5, 1, cut, lengths),
         source("glShaderSourceARB((GLhandleARB)5", "1", "1", lengths), wide("abc\0def", 7)},
    };
}

std::vector<RecordRow> rowsThatCannotBeReplayed() {
    return {
        {CALL(ReadPixels, 1, -2, 3, 4, 0x1908, 0x1401, nullptr),
         "//glReadPixels(1, -2, 3, 4, GL_RGBA, GL_UNSIGNED_BYTE, 0000000000000000);@\n"},
        // The size is the product in 32 bits.
        READ(TexImage2D, narrow(pixels, 0),
             "GL_TEXTURE_2D, 0, 0, 65536, 65536, 0, GL_RGB, GL_UNSIGNED_BYTE, &data[0]", 0x0DE1, 0, 0, 65536,
             65536, 0, 0x1907, 0x1401, pixels),
        {CALL(TexImage2D, 0x0DE1, 0, 0, 1, 1, 0, 0x1908, 0x1403, pixels),
         "WARNING!!! Encountered unsupported type and / or format (type=5123, format=6408).\n"},
        {CALL(TexSubImage2D, 0x0DE1, 0, 0, 0, 1, 1, 0x1903, 0x1401, pixels),
         "WARNING!!! Encountered unsupported type and / or format (type=5121, format=6403).\n"},
        READ(TexSubImage2D, narrow(pixels, 0),
             "GL_TEXTURE_2D, 0, 0, 0, 0, 1, GL_ALPHA, GL_UNSIGNED_BYTE, &data[0]", 0x0DE1, 0, 0, 0, 0, 1,
             0x1906, 0x1401, nullptr),
        {CALL(TexParameterfv, 0x0DE1, 0x1004, floats + 4),
         declaring("int tmp_i[] = { 4, -0, 1e+20, inf };",
                   "glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, reinterpret_cast<float "
                   "*>(&tmp_i[0]) );")},
        QUERY(GetInfoLogARB, "GLcharARB data[0];|GLsizei length;", "(GLhandleARB)5, -1, NULL, &data[0]", 5,
              -1, nullptr, log),
        {CALL(ShaderSource, 5, 0, nullptr, lengths), source("glShaderSource(5", "0", "0", lengths)},
        {CALL(ShaderSourceARB, 5, 3, strings, nullptr), source("glShaderSourceARB((GLhandleARB)5", "3", "1"),
         wide("void main", 10) + wide("{ } // a longer one.", 21) + wide("third", 6)},
        {CALL(ShaderSourceARB, 5, 0, nullptr, nullptr), source("glShaderSourceARB((GLhandleARB)5", "0", "1")},
    };
}

} // namespace ZLT::OGL
