// Queries, object names and shaders. A query is repeated in the replay, into a local that nothing reads. What
// is captured and how is uneven, and is the format: replays are written for it. Each oddity is named where it
// stands.

#include "extensionator/OpenGLRekorder.h"

#include "extensionator/RecordForms.h"

#include <cstring>

namespace ZLT::OGL {

using namespace RecordForms;

namespace {

// Room for any of the state vectors, also where one value is asked for.
constexpr const char* booleans16 = "{\n    GLboolean data[4 * 4];\n";
constexpr const char* floats16 = "{\n    GLfloat data[4 * 4];\n";
constexpr const char* ints16 = "{\n    GLint data[4 * 4];\n";

// An array whose size is an argument of the call: "    GLuint ids[3];\n".
struct LocalArray {
    LocalArray(const char* declarator, int size) : declarator(declarator), size(size) {}
    const char* declarator;
    int size;
};
std::ostream& operator<<(std::ostream& out, LocalArray array) {
    return out << "    " << array.declarator << '[' << Number(array.size) << "];\n";
}

// For the zero byte of a name; wraps as the sizes in GL's other arguments do.
int withZeroByte(int length) { return static_cast<int>(static_cast<unsigned int>(length) + 1); }

void writeGeneration(std::ostream& out, const char* function, const char* array, int n, CallEnd end) {
    out << "{\n    GLuint " << array << '[' << Number(n) << "];\n    " << function << '(' << Number(n)
        << ", &" << array << "[0]" << end << "}\n";
}

void writeDeletion(std::ostream& out, unsigned int position, const char* function, int n, CallEnd end) {
    out << DataBlock(position) << "    " << function << '(' << Number(n)
        << ", reinterpret_cast<const GLuint *>(&data[0])" << end << "}\n";
}

// The name of a uniform with its zero byte.
long long nameSize(const char* name) { return static_cast<long long>(std::strlen(name)) + 1; }

// A length that was given counts as it is, also a negative one, which means "up to the zero byte" to GL.
long long sourceSize(const char** strings, const int* lengths, int index) {
    return lengths ? lengths[index] : nameSize(strings[index]);
}

// The text decides by the recorded address of the lengths which of the two calls a replay makes. `freed` is
// how many strings it frees.
template <class Object, class Freed>
void writeShaderSource(std::ostream& out, unsigned int position, const char* function, Object object,
                       int count, const int* lengths, Freed freed, CallEnd end) {
    const Pointer given(lengths);
    out << "{\n    pBinaryInputStream->seekg(" << Number(position) << ");\n"
        << "    char *data[" << Number(count) << "];\n"
        << "    std::vector<GLint> lengths_data;\n"
        << "    if (" << given << ") lengths_data.resize(" << Number(count) << ");\n"
        << "    for (GLsizei n = 0; n < " << Number(count) << "; n++)\n"
        << "    {\n"
           "        GLint nSize = 0;\n"
           "        pBinaryInputStream->read((char *)&nSize, sizeof(nSize));\n"
        << "        if (" << given << ") lengths_data[n] = nSize;\n"
        << "        data[n] = new char[nSize];\n"
           "        pBinaryInputStream->read(data[n], nSize);\n"
           "    };\n"
        << "    if (" << given << ")\n"
        << "        " << function << '(' << object << comma << Number(count)
        << ", (const GLchar **)data, &lengths_data[0]" << end << "    else\n"
        << "        " << function << '(' << object << comma << Number(count)
        << ", (const GLchar **)data, NULL" << end << "    for (GLsizei n = 0; n < " << freed << "; n++)\n"
        << "    {\n"
           "        delete[] data[n];\n"
           "    }\n"
           "}\n";
}

} // namespace

void OpenGLRekorder::cgmGenTextures(const char* file, unsigned int line, int n, unsigned int* textures) {
    writeGeneration(*outputStream_, "glGenTextures", "textures", n, CallEnd(lineComments_, file, line));
    interceptor()->cgmGenTextures(file, line, n, textures);
}

void OpenGLRekorder::cgmGenQueries(const char* file, unsigned int line, int n, unsigned int* ids) {
    writeGeneration(*outputStream_, "glGenQueries", "ids", n, CallEnd(lineComments_, file, line));
    interceptor()->cgmGenQueries(file, line, n, ids);
}

void OpenGLRekorder::cgmGenFramebuffersEXT(const char* file, unsigned int line, int n,
                                           unsigned int* framebuffers) {
    writeGeneration(*outputStream_, "glGenFramebuffersEXT", "framebuffers", n,
                    CallEnd(lineComments_, file, line));
    interceptor()->cgmGenFramebuffersEXT(file, line, n, framebuffers);
}

void OpenGLRekorder::cgmGetBooleanv(const char* file, unsigned int line, unsigned int pname,
                                    unsigned char* params) {
    *outputStream_ << booleans16 << "    glGetBooleanv(" << Enumerant(pname) << ", &data[0]"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetBooleanv(file, line, pname, params);
}

void OpenGLRekorder::cgmGetFloatv(const char* file, unsigned int line, unsigned int pname, float* params) {
    *outputStream_ << floats16 << "    glGetFloatv(" << Enumerant(pname) << ", &data[0]"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetFloatv(file, line, pname, params);
}

void OpenGLRekorder::cgmGetIntegerv(const char* file, unsigned int line, unsigned int pname, int* params) {
    *outputStream_ << ints16 << "    glGetIntegerv(" << Enumerant(pname) << ", &data[0]"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetIntegerv(file, line, pname, params);
}

void OpenGLRekorder::cgmGetObjectParameterfvARB(const char* file, unsigned int line, unsigned int obj,
                                                unsigned int pname, float* params) {
    *outputStream_ << floats16 << "    glGetObjectParameterfvARB(" << Handle(obj) << comma << Enumerant(pname)
                   << ", &data[0]" << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetObjectParameterfvARB(file, line, obj, pname, params);
}

void OpenGLRekorder::cgmGetObjectParameterivARB(const char* file, unsigned int line, unsigned int obj,
                                                unsigned int pname, int* params) {
    *outputStream_ << ints16 << "    glGetObjectParameterivARB(" << Handle(obj) << comma << Enumerant(pname)
                   << ", &data[0]" << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetObjectParameterivARB(file, line, obj, pname, params);
}

void OpenGLRekorder::cgmGetTexLevelParameterfv(const char* file, unsigned int line, unsigned int target,
                                               int level, unsigned int pname, float* params) {
    *outputStream_ << "{\n    GLfloat data;\n    glGetTexLevelParameterfv(" << Enumerant(target) << comma
                   << Number(level) << comma << Enumerant(pname) << ", &data"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetTexLevelParameterfv(file, line, target, level, pname, params);
}

void OpenGLRekorder::cgmGetTexLevelParameteriv(const char* file, unsigned int line, unsigned int target,
                                               int level, unsigned int pname, int* params) {
    *outputStream_ << "{\n    GLint data;\n    glGetTexLevelParameteriv(" << Enumerant(target) << comma
                   << Number(level) << comma << Enumerant(pname) << ", &data"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetTexLevelParameteriv(file, line, target, level, pname, params);
}

// int here and GLint below: replays are written for it.
void OpenGLRekorder::cgmGetProgramiv(const char* file, unsigned int line, unsigned int program,
                                     unsigned int pname, int* params) {
    *outputStream_ << "{\n    int data;\n    glGetProgramiv(" << Number(program) << comma << Enumerant(pname)
                   << ", &data" << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetProgramiv(file, line, program, pname, params);
}

void OpenGLRekorder::cgmGetShaderiv(const char* file, unsigned int line, unsigned int shader,
                                    unsigned int pname, int* params) {
    *outputStream_ << "{\n    GLint data;\n    glGetShaderiv(" << Number(shader) << comma << Enumerant(pname)
                   << ", &data" << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetShaderiv(file, line, shader, pname, params);
}

// The log of a program has a form of its own, that of a shader is a marker: replays are written for it.
void OpenGLRekorder::cgmGetProgramInfoLog(const char* file, unsigned int line, unsigned int program,
                                          int bufSize, int* length, char* infoLog) {
    *outputStream_ << "{\n    std::vector<char> data(" << Number(bufSize) << ");\n    glGetProgramInfoLog("
                   << Number(program) << comma << Number(bufSize) << ", NULL, &data[0]"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetProgramInfoLog(file, line, program, bufSize, length, infoLog);
}

void OpenGLRekorder::cgmGetInfoLogARB(const char* file, unsigned int line, unsigned int obj, int maxLength,
                                      int* length, char* infoLog) {
    *outputStream_ << "{\n"
                   << LocalArray("GLcharARB data", withZeroByte(maxLength))
                   << "    GLsizei length;\n    glGetInfoLogARB(" << Handle(obj) << comma << Number(maxLength)
                   << (length ? ", &length" : ", NULL") << ", &data[0]" << CallEnd(lineComments_, file, line)
                   << "}\n";
    interceptor()->cgmGetInfoLogARB(file, line, obj, maxLength, length, infoLog);
}

// Likewise the uniforms of a program object have a form, and those of a program are a marker.
void OpenGLRekorder::cgmGetActiveUniformARB(const char* file, unsigned int line, unsigned int programObj,
                                            unsigned int index, int maxLength, int* length, int* size,
                                            unsigned int* type, char* name) {
    *outputStream_ << "{\n"
                   << LocalArray("GLcharARB data", withZeroByte(maxLength))
                   << "    GLsizei length;\n    GLint size;\n    GLenum type;\n    glGetActiveUniformARB("
                   << Handle(programObj) << comma << Number(index) << comma << Number(maxLength)
                   << ", &length, &size, &type, &data[0]" << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetActiveUniformARB(file, line, programObj, index, maxLength, length, size, type, name);
}

// GL writes one count; the local has maxCount of them: replays are written for it.
void OpenGLRekorder::cgmGetAttachedShaders(const char* file, unsigned int line, unsigned int program,
                                           int maxCount, int* count, unsigned int* shaders) {
    *outputStream_ << "{\n"
                   << LocalArray("GLsizei count", maxCount) << LocalArray("GLuint shaders", maxCount)
                   << "    glGetAttachedShaders(" << Number(program) << comma << Number(maxCount)
                   << ", &count[0], &shaders[0]" << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetAttachedShaders(file, line, program, maxCount, count, shaders);
}

void OpenGLRekorder::cgmGetAttachedObjectsARB(const char* file, unsigned int line, unsigned int containerObj,
                                              int maxCount, int* count, unsigned int* obj) {
    *outputStream_ << "{\n"
                   << LocalArray("GLsizei count", maxCount) << LocalArray("GLuint obj", maxCount)
                   << "    glGetAttachedObjectsARB(" << Handle(containerObj) << comma << Number(maxCount)
                   << ", &count[0], &obj[0]" << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmGetAttachedObjectsARB(file, line, containerObj, maxCount, count, obj);
}

// Deletions count 8 bytes for each name though a name has 4: the record holds what lies behind the array as
// well, and replays are written for it.

void OpenGLRekorder::cgmDeleteTextures(const char* file, unsigned int line, int n,
                                       const unsigned int* textures) {
    const unsigned int position = writeWideRecord(textures, n * 8LL);
    writeDeletion(*outputStream_, position, "glDeleteTextures", n, CallEnd(lineComments_, file, line));
    interceptor()->cgmDeleteTextures(file, line, n, textures);
}

void OpenGLRekorder::cgmDeleteQueries(const char* file, unsigned int line, int n, const unsigned int* ids) {
    const unsigned int position = writeWideRecord(ids, n * 8LL);
    writeDeletion(*outputStream_, position, "glDeleteQueries", n, CallEnd(lineComments_, file, line));
    interceptor()->cgmDeleteQueries(file, line, n, ids);
}

void OpenGLRekorder::cgmDeleteFramebuffersEXT(const char* file, unsigned int line, int n,
                                              const unsigned int* framebuffers) {
    const unsigned int position = writeWideRecord(framebuffers, n * 8LL);
    writeDeletion(*outputStream_, position, "glDeleteFramebuffersEXT", n, CallEnd(lineComments_, file, line));
    interceptor()->cgmDeleteFramebuffersEXT(file, line, n, framebuffers);
}

int OpenGLRekorder::cgmGetUniformLocation(const char* file, unsigned int line, unsigned int program,
                                          const char* name) {
    const unsigned int position = writeWideRecord(name, nameSize(name));
    *outputStream_ << DataBlock(position) << "    glGetUniformLocation(" << Number(program) << ", &data[0]"
                   << CallEnd(lineComments_, file, line) << "}\n";
    return interceptor()->cgmGetUniformLocation(file, line, program, name);
}

int OpenGLRekorder::cgmGetUniformLocationARB(const char* file, unsigned int line, unsigned int programObj,
                                             const char* name) {
    const unsigned int position = writeWideRecord(name, nameSize(name));
    *outputStream_ << DataBlock(position) << "    glGetUniformLocationARB(" << Handle(programObj)
                   << ", &data[0]" << CallEnd(lineComments_, file, line) << "}\n";
    return interceptor()->cgmGetUniformLocationARB(file, line, programObj, name);
}

void OpenGLRekorder::cgmShaderSource(const char* file, unsigned int line, unsigned int shader, int count,
                                     const char** string, const int* length) {
    const unsigned int position = binaryOffset_;
    for (int i = 0; i < count; ++i)
        writeWideRecord(string[i], sourceSize(string, length, i));
    writeShaderSource(*outputStream_, position, "glShaderSource", Number(shader), count, length,
                      Number(count), CallEnd(lineComments_, file, line));
    interceptor()->cgmShaderSource(file, line, shader, count, string, length);
}

// Frees one string whatever the count, unlike above: replays are written for it.
void OpenGLRekorder::cgmShaderSourceARB(const char* file, unsigned int line, unsigned int shaderObj,
                                        int count, const char** string, const int* length) {
    const unsigned int position = binaryOffset_;
    for (int i = 0; i < count; ++i)
        writeWideRecord(string[i], sourceSize(string, length, i));
    writeShaderSource(*outputStream_, position, "glShaderSourceARB", Handle(shaderObj), count, length, "1",
                      CallEnd(lineComments_, file, line));
    interceptor()->cgmShaderSourceARB(file, line, shaderObj, count, string, length);
}

} // namespace ZLT::OGL
