#include "WindowContext.h"

#include "ogl/BufferFormat.h"
#include "zlt/core/Exceptions.h"

using namespace ZLT::OGL;

std::unique_ptr<ContextWindowed> makeContext(HWND window) {
    const BufferFormat format(BufferFormat::RGB8_D24);
    try {
        return std::make_unique<ContextWindowed>(window, format, Context::eDoubleBuffered,
                                                 Context::teMultisample(4), nullptr);
    } catch (const ZLT::LogicalException&) {
        return std::make_unique<ContextWindowed>(window, format, Context::eDoubleBuffered,
                                                 Context::eNoMultisample, nullptr);
    }
}
