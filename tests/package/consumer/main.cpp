// A client as a stranger writes it: a context, a layer in front, calls, the trace they left, objects, and
// the library's exceptions, caught by each of their bases.

#include <AutoInitializer.h>
#include <ExceptionOGL.h>
#include <extensionator/OpenGLInterceptor.h>
#include <extensionator/OpenGLTracer.h>
#include <extensionator/TextureState.h>
#include <extensionator/TokenName.h>
#include <extensionator/win/WglFunctions.h>
#include <ogl/Buffer.h>
#include <ogl/BufferFormat.h>
#include <ogl/ContextOffscreen.h>
#include <ogl/ContextWindowed.h>
#include <ogl/ContextWrapped.h>
#include <ogl/Framebuffer.h>
#include <ogl/Program.h>
#include <ogl/Renderbuffer.h>
#include <ogl/StateObject.h>
#include <ogl/Texture1D.h>
#include <ogl/Texture1DArray.h>
#include <ogl/Texture2D.h>
#include <ogl/Texture2DArray.h>
#include <ogl/Texture3D.h>
#include <ogl/TextureRECT.h>
#include <ogl/TextureUnit.h>
#include <zlt/core/Core.h>
#include <zlt/core/Exceptions.h>

#if defined(_WIN32)
#include <windows.h>
#endif

#include <GL/gl.h>

#include <algorithm>
#include <iostream>
#include <sstream>

namespace {

template <typename Base, typename Call>
bool caughtAs(Call call) {
    try {
        call();
    } catch (const Base& error) {
        return *error.what() != 0;
    } catch (...) {
    }
    return false;
}

template <typename Error, typename Call>
bool caughtByEachBase(const char* name, Call call) {
    if (caughtAs<Error>(call) && caughtAs<ZLT::LogicalException>(call) &&
        caughtAs<ZLT::ExceptionBase>(call) && caughtAs<std::exception>(call)) {
        return true;
    }
    std::cout << name << " is not caught by each of its bases\n";
    return false;
}

} // namespace

int main() {
    using namespace ZLT::OGL;
    std::ostringstream trace;
    bool kept = false;
    bool caught = false;
    try {
        ZLT::Core::Library::initialize();
        {
            const AutoInitializer library;
            const ContextOffscreen context;
            context.makeCurrent();
            OpenGLTracer tracer(trace);
            OpenGLInterceptor::Instance()->addInterceptor(&tracer);
            CGM(BindTexture, GL_TEXTURE_2D, 5);
            CGM(ActiveTexture, 0x84C1);
            OpenGLInterceptor::Instance()->popInterceptor();
            std::cout << "unit " << TextureState::activeTextureUnit() << " of "
                      << ExtensionManager::Instance()->numberOfTextureUnits() << " on "
                      << context.deviceName() << '\n';

            const unsigned char sent[] = {10, 20, 30, 40};
            unsigned char read[4] = {};
            TextureState::setActiveTextureUnit(0);
            Texture2D texture(Texture::InternalFormat::RGBA8, 1, 1, false, nullptr);
            TextureUnit::Unit(0)->bind(&texture);
            texture.subImage(0, 0, 0, 1, 1, Texture::Format::RGBA, Texture::Type::UNSIGNED_BYTE, sent,
                             PixelUnpackParameters());
            texture.getPixelData(read, 0, Texture::Format::RGBA, Texture::Type::UNSIGNED_BYTE, 1);
            kept = std::equal(sent, sent + 4, read);
            caught =
                caughtByEachBase<ExceptionOGL>("ExceptionOGL", [] { CGM(Enable, GL_RGBA); }) &&
                caughtByEachBase<ZLT::InternalException>("InternalException", [&] {
                    texture.getPixelData(read, 0, Texture::Format::RGBA, Texture::Type::UNSIGNED_BYTE, 3);
                });
        }
        ZLT::Core::Library::terminate(&std::cout);
    } catch (const ZLT::LogicalException& error) {
        error.write(std::cout);
        std::cout << '\n';
        return 1;
    }
    std::cout << trace.str();
    const bool bound = trace.str().find(": glBindTexture(GL_TEXTURE_2D, 5)\n") != std::string::npos;
    const bool activated = trace.str().find(": glActiveTexture(GL_TEXTURE1)\n") != std::string::npos;
    return bound && activated && kept && caught ? 0 : 1;
}
