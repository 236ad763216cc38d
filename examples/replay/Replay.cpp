#include "Replay.h"

#include "PlainWindow.h"
#include "ogl/ContextWrapped.h"

#include <bit>
#include <deque>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

RecordingStream* pBinaryInputStream = nullptr;
std::map<HDC, HDC> hdc_map_;
HDC hDC_Ours = nullptr;

namespace {

int width = 0;
int height = 0;
std::vector<std::unique_ptr<PlainWindow>> windows;
std::deque<HGLRC> unnamedContexts;
std::map<HGLRC, HGLRC> contexts; // recorded to own
// By these the library knows the own ones, so that calls past GL 1.1 find their functions.
std::map<HGLRC, std::unique_ptr<ZLT::OGL::ContextWrapped>> wrappers;
std::map<std::string, int> unsupported;
std::optional<Picture> lastSwapped;

HDC ownDevice(HDC recorded) {
    const auto found = hdc_map_.find(recorded);
    return found == hdc_map_.end() ? nullptr : found->second;
}

HGLRC ownContext(HGLRC recorded) {
    if (!recorded)
        return nullptr;
    const auto found = contexts.find(recorded);
    if (found != contexts.end())
        return found->second;
    if (unnamedContexts.empty())
        return nullptr;
    const HGLRC own = unnamedContexts.front();
    unnamedContexts.pop_front();
    contexts[recorded] = own;
    return own;
}

// The statements drop the results, and every call behind a failed one would go nowhere.
void require(bool succeeded, const char* what) {
    if (!succeeded)
        throw std::runtime_error(std::string("the replay cannot ") + what + ", error " +
                                 std::to_string(GetLastError()));
}

} // namespace

float makeFloat(std::int32_t bits) { return std::bit_cast<float>(bits); }

void OpenGLRekorderUnsupported(const char* text) { ++unsupported[text]; }

void addCurrentAppDC(HDC recorded) { GLRekorderCreateWindow(recorded); }

void GLRekorderCreateWindow(HDC recorded) {
    if (hdc_map_.contains(recorded))
        return;
    windows.push_back(std::make_unique<PlainWindow>(width, height));
    windows.back()->setPixelFormat();
    hdc_map_[recorded] = windows.back()->device();
}

int GLRekorderMakeCurrent(HDC recordedDevice, HGLRC recordedContext) {
    const HGLRC own = ownContext(recordedContext);
    require(!recordedContext || own, "find the recorded context");
    require(wglMakeCurrent(ownDevice(recordedDevice), own), "make the recorded context current");
    if (own && !wrappers.contains(own))
        wrappers[own] = std::make_unique<ZLT::OGL::ContextWrapped>();
    return TRUE;
}

int GLRekorderSwapBuffers(HDC recorded) {
    if (wglGetCurrentContext())
        lastSwapped = readFrame(width, height);
    return SwapBuffers(ownDevice(recorded));
}

namespace replay {

void begin(int windowWidth, int windowHeight, RecordingStream& stream) {
    width = windowWidth;
    height = windowHeight;
    pBinaryInputStream = &stream;
}

Picture end() {
    Picture shown = lastSwapped              ? *lastSwapped
                    : wglGetCurrentContext() ? readFrame(width, height)
                                             : Picture();
    wrappers.clear();
    return shown;
}

void writeUnsupported(std::ostream& out) {
    for (const auto& [text, count] : unsupported)
        out << count << " times: " << text << '\n';
}

HGLRC createContext(HDC own) {
    const HGLRC context = wglCreateContext(own);
    require(context, "create a context");
    unnamedContexts.push_back(context);
    return context;
}

int deleteContext(HGLRC recorded) {
    const HGLRC own = ownContext(recorded);
    wrappers.erase(own);
    const int deleted = wglDeleteContext(own);
    contexts.erase(recorded); // the recorded number may come back for another one
    return deleted;
}

int copyContext(HGLRC source, HGLRC destination, UINT mask) {
    const HGLRC ownSource = ownContext(source);
    return wglCopyContext(ownSource, ownContext(destination), mask);
}

HGLRC createLayerContext(HDC recorded, int layer) {
    const HGLRC context = wglCreateLayerContext(ownDevice(recorded), layer);
    if (context)
        unnamedContexts.push_back(context);
    return context;
}

int swapLayerBuffers(HDC recorded, UINT planes) { return wglSwapLayerBuffers(ownDevice(recorded), planes); }

int shareLists(HGLRC first, HGLRC second) {
    const HGLRC ownFirst = ownContext(first);
    return wglShareLists(ownFirst, ownContext(second));
}

} // namespace replay
