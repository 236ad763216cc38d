// Record PATH: records calls on the scripted GL to PATH.inl and PATH.bin, and writes to PATH.calls what
// reached it.

#include "CallLog.h"
#include "Entries.h"
#include "extensionator/OpenGLRekorder.h"

#include <algorithm>
#include <cmath>
#include <fstream>

using namespace ZLT::OGL;

namespace {

const char* const file = "ogl\\Texture";

// Bytes by value stand in the text as raw characters, which are no C++, and a replay leaves out the
// statements that show an address.
bool isWritable(const Entry& entry) {
    return !entry.takesPointer && std::ranges::none_of(entry.types, [](const std::string& type) {
        return type == "GLbyte" || type == "GLubyte" || type == "GLsync" || type.ends_with('*');
    });
}

// Once for each statement that needs no pointer, in no glBegin but its own.
void recordValues() {
    sampleWritableValues();
    for (const Entry& entry : entries()) {
        if (!isWritable(entry))
            continue;
        Attempt attempt;
        if (entry.name == "End")
            OpenGLInterceptor::Instance()->cgmBegin(file, 1, 4);
        entry.viaChain(attempt, file, 2);
        if (entry.name == "Begin")
            OpenGLInterceptor::Instance()->cgmEnd(file, 3);
    }
}

// The forms that carry data or make room for it. Not glReadPixels, which is a comment.
void recordData(OpenGLInterceptor& gl) {
    const float floats[16] = {0.1f, -0.0f, 1e-45f, INFINITY, -3e38f, 1.0f / 3};
    const float colour[4] = {0.5f, 0, 0, 1};
    const int ints[8] = {1, -2, 2147483647, -2147483647 - 1};
    const double doubles[16] = {1.0 / 3};
    unsigned int names[4] = {7, 8};
    int number = 0;
    unsigned int type = 0;
    unsigned char booleans[16];
    char text[64];
    float queried[16];
    const char* const strings[] = {"void main() {\n", "}", "third"};
    const auto** const sources = const_cast<const char**>(strings);
    const int lengths[] = {4, 1};

    gl.cgmColor4f(file, 10, floats[0], floats[1], floats[2], floats[4]);
    gl.cgmColor4f(file, 10, floats[3], -floats[3], NAN, floats[5]);
    gl.cgmTexImage2D(file, 11, 0x0DE1, 0, 0x8058, 2, 2, 0, 0x1907, 0x1406, floats);
    gl.cgmTexImage2D(file, 12, 0x0DE1, 0, 4, 2, 2, 0, 0x1903, 0x1403, nullptr);
    gl.cgmTexSubImage2D(file, 13, 0x0DE1, 0, 1, 2, 3, 1, 0x190A, 0x1401, floats);
    gl.cgmLoadMatrixf(file, 14, floats);
    gl.cgmMultMatrixf(file, 14, floats);
    gl.cgmMultMatrixd(file, 14, doubles);
    gl.cgmUniformMatrix2fv(file, 15, 4, 2, 1, floats);
    gl.cgmUniformMatrix2fvARB(file, 15, 4, 2, 0, floats);
    gl.cgmDrawBuffersARB(file, 16, 2, names);
    gl.cgmVertex2fv(file, 17, floats);
    gl.cgmTexParameterfv(file, 18, 0x0DE1, 0x1004, colour);
#define ZLT_RECORD(form, values)                                                                             \
    gl.cgmUniform##form(file, 19, 3, 2, values);                                                             \
    gl.cgmUniform##form##ARB(file, 19, 3, 2, values);                                                        \
    gl.cgmMultiTexCoord##form(file, 20, 0x84C0, values);                                                     \
    gl.cgmMultiTexCoord##form##ARB(file, 20, 0x84C1, values);
    ZLT_RECORD(1fv, floats)
    ZLT_RECORD(2fv, floats)
    ZLT_RECORD(3fv, floats)
    ZLT_RECORD(4fv, floats)
    ZLT_RECORD(1iv, ints)
    ZLT_RECORD(2iv, ints)
    ZLT_RECORD(3iv, ints)
    ZLT_RECORD(4iv, ints)

    gl.cgmGenTextures(file, 21, 3, names);
    gl.cgmGenQueries(file, 21, 2, names);
    gl.cgmGenFramebuffersEXT(file, 21, 1, names);
    gl.cgmGetBooleanv(file, 22, 0x0BA6, booleans);
    gl.cgmGetFloatv(file, 22, 0x0BA6, queried);
    gl.cgmGetIntegerv(file, 22, 0x0D33, &number);
    gl.cgmGetObjectParameterfvARB(file, 23, 5, 0x8B81, queried);
    gl.cgmGetObjectParameterivARB(file, 23, 5, 0x8B81, &number);
    gl.cgmGetTexLevelParameterfv(file, 24, 0x0DE1, 1, 0x1003, queried);
    gl.cgmGetTexLevelParameteriv(file, 24, 0x0DE1, 1, 0x1003, &number);
    gl.cgmGetProgramiv(file, 25, 5, 0x8B82, &number);
    gl.cgmGetShaderiv(file, 25, 5, 0x8B81, &number);
    gl.cgmGetProgramInfoLog(file, 26, 5, 64, nullptr, text);
    gl.cgmGetInfoLogARB(file, 26, 5, 64, &number, text);
    gl.cgmGetInfoLogARB(file, 26, 5, 64, nullptr, text);
    gl.cgmGetActiveUniformARB(file, 27, 5, 6, 64, &number, &number, &type, text);
    gl.cgmGetAttachedShaders(file, 28, 5, 2, &number, names);
    gl.cgmGetAttachedObjectsARB(file, 28, 5, 2, &number, names);
    gl.cgmDeleteTextures(file, 29, 2, names);
    gl.cgmDeleteQueries(file, 29, 2, names);
    gl.cgmDeleteFramebuffersEXT(file, 29, 2, names);
    gl.cgmGetUniformLocation(file, 30, 5, "light");
    gl.cgmGetUniformLocationARB(file, 30, 5, "light");
    gl.cgmShaderSource(file, 31, 5, 3, sources, nullptr);
    gl.cgmShaderSource(file, 31, 5, 2, sources, lengths);
    gl.cgmShaderSourceARB(file, 32, 5, 1, sources, nullptr);
    gl.cgmShaderSourceARB(file, 32, 5, 1, sources, lengths);
}

} // namespace

int main(int, char** argv) {
    const std::string path = argv[1];
    std::ofstream text(path + ".inl", std::ios::binary), data(path + ".bin", std::ios::binary);
    std::ofstream calls(path + ".calls", std::ios::binary);
    for (std::ofstream* out : {&text, &data, &calls})
        out->exceptions(std::ios::failbit | std::ios::badbit);
    OpenGLRekorder recorder(text, data, nullptr, true);
    OpenGLInterceptor::Instance()->addInterceptor(&recorder);
    logCallsTo(calls);
    recordValues();
    recordData(recorder);
    recorder.popInterceptor();
    OpenGLInterceptor::destroy();
    FakeGL::reset();
}
