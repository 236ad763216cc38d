#include "ogl/Shader.h"

#include "extensionator/EntryPoint.h"
#include "ogl/internal/InfoLog.h"
#include "ogl/internal/TearDown.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

namespace {

GLint parameterOf(unsigned int shader, GLenum name) {
    GLint value = 0;
    ZLT_GL(glGetShaderiv)(shader, name, &value);
    return value;
}

} // namespace

bool Shader::isSupported() { return ExtensionManager::Instance()->isSupported(OPEN_GL_2_0); }

Shader::Shader(ShaderType type) {
    ZLT_ASSERT(ExtensionManager::Instance()->isSupported(OPEN_GL_2_0));
    switch (type) {
    case FRAGMENT_SHADER:
        _hObject = ZLT_GL(glCreateShader)(GL_FRAGMENT_SHADER);
        break;
    case VERTEX_SHADER:
        _hObject = ZLT_GL(glCreateShader)(GL_VERTEX_SHADER);
        break;
    default:
        ZLT_UNREACHABLE("Type enums are not all properly translated.");
    }
}

Shader::~Shader() noexcept(false) {
    internal::tearDown(exceptions_, [&] {
        ZLT_ASSERT(_hObject != 0);
        ZLT_GL(glDeleteShader)(_hObject);
    });
}

void Shader::load(unsigned int count, const char** strings, int* lengths) {
    ZLT_GL(glShaderSource)(_hObject, static_cast<GLsizei>(count), strings, lengths);
}

void Shader::compile(bool checkErrors) {
    ZLT_GL(glCompileShader)(_hObject);
    if (!checkErrors || isCompiled())
        return;
    // Not 0, where a link asks for more than 1: an empty log is quoted here.
    if (const int length = getInfoLogLength(); length != 0)
        ZLT_RAISE(
            internal::withInfoLog("Program Compile Error: \n", length, _hObject, ZLT_GL(glGetShaderInfoLog))
                .c_str());
    ZLT_RAISE("Unknown Compile Error.");
}

bool Shader::isCompiled() const { return parameterOf(_hObject, GL_COMPILE_STATUS) != 0; }
bool Shader::isLoaded() const { return parameterOf(_hObject, GL_SHADER_SOURCE_LENGTH) > 1; }

int Shader::getInfoLogLength() const { return parameterOf(_hObject, GL_INFO_LOG_LENGTH); }

void Shader::getInfoLog(int maxLength, char* buffer) {
    GLsizei length = 0;
    ZLT_GL(glGetShaderInfoLog)(_hObject, maxLength, &length, buffer);
}

} // namespace ZLT::OGL
