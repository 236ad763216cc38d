#include "Recording.h"

#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/win/wglErrorChecker.h"
#include "extensionator/win/wglInterceptor.h"

#include <stdexcept>

using namespace ZLT::OGL;

namespace {

// For the one call that creates the context in the recording: in this program the toolkit has created it.
class CreatedAlready : public wglErrorChecker {
public:
    HGLRC wcgmCreateContext(const char*, unsigned int, HDC) override { return wglGetCurrentContext(); }
};

std::ofstream create(const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
    return file;
}

} // namespace

Recording::Recording(const std::filesystem::path& folder)
    : text_(create(folder / "recording.inl")), data_(create(folder / "recording.bin")),
      contexts_(text_, data_, context_.deviceContext(), nullptr, true), calls_(text_, data_, nullptr, true) {
    text_.precision(17); // the digits that a double needs to come back as it was
    CreatedAlready toolkit;
    contexts_.setInterceptor(&toolkit);
    const HGLRC context = contexts_.wcgmCreateContext(__FILE__, __LINE__, device());
    // From here on the next layer is the chain's checker.
    wglInterceptor::Instance()->addInterceptor(&contexts_);
    CWGM(MakeCurrent, device(), context);
    OpenGLInterceptor::Instance()->addInterceptor(&calls_);
}

Recording::~Recording() {
    OpenGLInterceptor::Instance()->popInterceptor();
    wglInterceptor::Instance()->popInterceptor();
}
