// Replays the recording that was compiled in: replay TEXT DATA EXPECTED PICTURE. Reads the records from DATA,
// with the positions from TEXT, writes what the replay shows to PICTURE, and says whether it equals EXPECTED.

#include "Png.h"
#include "RecordedCalls.h"
#include "Replay.h"
#include "Run.h"
#include "extensionator/OpenGLInterceptor.h"

#include <iostream>

namespace {

bool run(char** paths) {
    const Picture expected = readPng(paths[2]);
    RecordingStream stream(paths[0], paths[1]);
    replay::begin(expected.width, expected.height, stream);
    try {
        replayRecordedCalls();
    } catch (...) {
        replay::writeUnsupported(std::cout); // what was left out is the likeliest reason
        throw;
    }
    const Picture shown = replay::end();
    ZLT::OGL::OpenGLInterceptor::destroy();
    replay::writeUnsupported(std::cout);
    if (shown.pixels.empty()) {
        std::cout << "The recording left no picture.\n";
        return false;
    }
    writePng(paths[3], shown);
    const bool equal = shown == expected;
    std::cout << "Replayed:  " << paths[3] << '\n'
              << (equal ? "The two pictures are equal.\n" : "The two pictures differ.\n");
    return equal;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: replay TEXT DATA EXPECTED PICTURE\n";
        return 2;
    }
    return runExample([&] { return run(argv + 1) ? 0 : 1; });
}
