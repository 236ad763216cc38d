// Record PATH: records calls on the scripted GL to PATH.inl and PATH.bin.

#include "Entries.h"
#include "RecordRows.h"
#include "StartedLibrary.h"
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

} // namespace

int main(int, char** argv) {
    const LibraryWithAllOfGL library;
    const std::string path = argv[1];
    std::ofstream text(path + ".inl", std::ios::binary), data(path + ".bin", std::ios::binary);
    for (std::ofstream* out : {&text, &data})
        out->exceptions(std::ios::failbit | std::ios::badbit);
    OpenGLRekorder recorder(text, data, nullptr, true);
    OpenGLInterceptor::Instance()->addInterceptor(&recorder);
    recordValues();
    recorder.cgmColor4f(file, 4, INFINITY, -NAN, -0.0f, 1e-45f);
    for (const RecordRow& row : recordRows())
        row.call(recorder);
    recorder.popInterceptor();
    OpenGLInterceptor::destroy();
    FakeGL::reset();
}
