#include "ogl/Program.h"

#include "extensionator/EntryPoint.h"
#include "ogl/FragmentShader.h"
#include "ogl/Shader.h"
#include "ogl/VertexShader.h"
#include "ogl/internal/InfoLog.h"
#include "ogl/internal/TearDown.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <string>

namespace ZLT::OGL {

namespace {

// As many handles as are asked for at once.
constexpr GLsizei handleCount = 64;
constexpr int passes = 4;

} // namespace

bool Program::isSupported() { return ExtensionManager::Instance()->isSupported(OPEN_GL_2_0); }

Program::Program() {
    ZLT_ASSERT(ExtensionManager::Instance()->isSupported(OPEN_GL_2_0));
    _hObject = ZLT_GL(glCreateProgram)();
    ZLT_ASSERT(_hObject != 0);
}

Program::~Program() noexcept(false) {
    internal::tearDown(exceptions_, [&] {
        ZLT_ASSERT(_hObject != 0);
        ZLT_GL(glDeleteProgram)(_hObject);
    });
}

int Program::parameter(unsigned int name) const {
    GLint value = 0;
    ZLT_GL(glGetProgramiv)(_hObject, name, &value);
    return value;
}

void Program::attach(Shader* shader) {
    ZLT_ENFORCE(shader != NULL); // NOLINT(modernize-use-nullptr): all such texts are alike
    if (!shader->isLoaded())
        ZLT_RAISE("Shader must be loaded before attaching");
    ZLT_GL(glAttachShader)(_hObject, shader->objectID());
}

void Program::detach(const Shader* shader) { ZLT_GL(glDetachShader)(_hObject, shader->objectID()); }

void Program::detachAllShaders() {
    const auto attached = ZLT_GL(glGetAttachedShaders);
    const auto detachOne = ZLT_GL(glDetachShader);
    GLuint handles[handleCount] = {};
    for (GLsizei count = 0;; count = 0) {
        attached(_hObject, handleCount, &count, handles);
        if (count <= 0)
            return;
        for (GLsizei i = 0; i < count; ++i)
            detachOne(_hObject, handles[i]);
    }
}

void Program::detachAll(unsigned int shaderType) {
    const auto detachOne = ZLT_GL(glDetachShader);
    GLuint handles[handleCount] = {};
    for (int pass = 0; pass < passes; ++pass) {
        GLsizei count = 0;
        ZLT_GL(glGetAttachedShaders)(_hObject, handleCount, &count, handles);
        if (count < 1)
            return;
        for (GLsizei i = 0; i < count; ++i) {
            GLint type = 0;
            ZLT_GL(glGetShaderiv)(handles[i], GL_SHADER_TYPE, &type);
            if (static_cast<unsigned int>(type) == shaderType)
                detachOne(_hObject, handles[i]);
        }
    }
}

void Program::detachAllVertexShaders() { detachAll(GL_VERTEX_SHADER); }
void Program::detachAllFragmentShaders() { detachAll(GL_FRAGMENT_SHADER); }

template <class Kind>
void Program::loadShader(unsigned int count, const char** strings, int* lengths) {
    Kind* shader = new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) Kind;
    shader->load(count, strings, lengths);
    shader->compile(false);
    attach(shader);
    // GL keeps it as long as it is attached.
    ZLTDeleter<Kind>()(shader);
}

void Program::loadVertexShader(unsigned int count, const char** strings, int* lengths) {
    loadShader<VertexShader>(count, strings, lengths);
}
void Program::loadFragmentShader(unsigned int count, const char** strings, int* lengths) {
    loadShader<FragmentShader>(count, strings, lengths);
}

void Program::link(bool checkErrors) {
    ZLT_GL(glLinkProgram)(_hObject);
    if (!checkErrors)
        return;
    const bool linked = isLinked();
    const int length = getInfoLogLength();
    if (!linked) {
        if (length > 1)
            ZLT_RAISE(
                internal::withInfoLog("Program Link Error: \n", length, _hObject, ZLT_GL(glGetProgramInfoLog))
                    .c_str());
        ZLT_RAISE("Unknown Program Link Error\n");
    }
    if (length > 1) {
        const std::string message = internal::withInfoLog("Program Link Error(Falling to Software): \n",
                                                          length, _hObject, ZLT_GL(glGetProgramInfoLog));
        if (message.find("run in software") != std::string::npos)
            ZLT_RAISE(message.c_str());
    }
}

bool Program::isLinked() const { return parameter(GL_LINK_STATUS) != 0; }

bool Program::validate() const {
    ZLT_GL(glValidateProgram)(_hObject);
    return parameter(GL_VALIDATE_STATUS) != 0;
}

int Program::getInfoLogLength() const { return parameter(GL_INFO_LOG_LENGTH); }

void Program::getInfoLog(int maxLength, char* buffer) {
    GLsizei length = 0;
    ZLT_GL(glGetProgramInfoLog)(_hObject, maxLength, &length, buffer);
}

void Program::enable() {
    if (!isLinked())
        ZLT_RAISE("Program must be linked before being enabled");
    ZLT_GL(glUseProgram)(_hObject);
}

void Program::disable() { ZLT_GL(glUseProgram)(0); }

bool Program::isEnabled() const {
    GLint current = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    return static_cast<unsigned int>(current) == _hObject;
}

void Program::setAttributeLocation(unsigned int index, const char* name) {
    ZLT_GL(glBindAttribLocation)(_hObject, index, name);
}

int Program::getAttributeLocation(const char* name) { return ZLT_GL(glGetAttribLocation)(_hObject, name); }

void Program::requireLinked() const {
    if (!isLinked())
        ZLT_RAISE("Program must be linked to get active uniform count"); // whatever is asked for
}

unsigned int Program::getActiveUniformCount() const {
    requireLinked();
    return static_cast<unsigned int>(parameter(GL_ACTIVE_UNIFORMS));
}

void Program::getActiveUniform(unsigned int index, int bufferSize, int* size, unsigned int* type,
                               char* name) const {
    requireLinked();
    GLsizei length = 0;
    ZLT_GL(glGetActiveUniform)(_hObject, index, bufferSize, &length, size, type, name);
}

int Program::getMaxUniformStringLength() const {
    requireLinked();
    return parameter(GL_ACTIVE_UNIFORM_MAX_LENGTH);
}

void Program::assertActiveUniformType(int, unsigned int, unsigned int) const {}

} // namespace ZLT::OGL
