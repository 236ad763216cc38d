// Prints which calls a frame makes, the most frequent first, and what it gets wrong: a watcher and an error
// reporter in front of code that knows nothing of them.

#include "PlainWindow.h"
#include "Run.h"
#include "Scene.h"
#include "WindowContext.h"
#include "extensionator/OpenGLErrorReporter.h"
#include "extensionator/OpenGLWatcher.h"
#include "extensionator/ScopedInterceptor.h"

#include <GL/gl.h>

#include <algorithm>
#include <iostream>
#include <vector>

using namespace ZLT::OGL;

namespace {

class CallCounter : public OpenGLWatcher {
public:
    std::vector<int> calls = std::vector<int>(openGLEntryCount());

protected:
    bool before(const OpenGLCall& call) override {
        ++calls[call.number()];
        return true;
    }
};

void countFrame() {
    const PlainWindow window(960, 640);
    const auto context = makeContext(window.handle());
    context->makeCurrent();
    OpenGLErrorReporter reporter(std::cout);
    CallCounter counter;
    const auto scene = Scene::make("objects", 960, 640);
    {
        const ScopedInterceptor reported(reporter), counted(counter.layer());
        scene->draw();
        CGM(Enable, GL_TEXTURE_MAG_FILTER); // a parameter of textures, nothing that can be enabled
    }
    for (int most; (most = *std::ranges::max_element(counter.calls)) > 0;) {
        const auto entry = std::ranges::find(counter.calls, most);
        std::cout << most << '\t' << openGLEntryName(unsigned(entry - counter.calls.begin())) << '\n';
        *entry = 0;
    }
}

} // namespace

int main() {
    return runExample([] {
        countFrame();
        OpenGLInterceptor::destroy();
        return 0;
    });
}
