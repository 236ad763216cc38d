#include "HandWrittenChecker.h"

#include "extensionator/ExtensionManager.h"
#include "extensionator/Load.h"

#include <stdexcept>
#include <string>

namespace {

class Checker : public HandWrittenInterceptor {
public:
    void bindTexture(const char* file, unsigned int line, GLenum target, GLuint texture) override {
        glBindTexture(target, texture);
        check(file, line);
    }
    void activeTexture(const char* file, unsigned int line, GLenum texture) override {
        activeTexture_(texture);
        check(file, line);
    }
    void activeTextureByTable(const char* file, unsigned int line, GLenum texture) override {
        ZLT::OGL::ExtensionManager::Instance()->table().glActiveTexture(texture);
        check(file, line);
    }

private:
    [[noreturn]] static void raise(const char* file, unsigned int line, GLenum code) {
        throw std::runtime_error(file + (":" + std::to_string(line)) + ": " + std::to_string(code));
    }
    static void check(const char* file, unsigned int line) {
        if (const GLenum code = glGetError()) [[unlikely]]
            raise(file, line, code);
    }

    ActiveTexture activeTexture_ = activeTextureFunction();
};

} // namespace

HandWrittenInterceptor* handWrittenChecker() {
    static Checker checker;
    return &checker;
}

ActiveTexture activeTextureFunction() { return ZLT::OGL::functionAddress<ActiveTexture>("glActiveTexture"); }
