#pragma once

#include "Export.h"
#include "ogl/GLSLObject.h"

namespace ZLT::OGL {

/// A GLSL shader of OpenGL 2.0.
class ZLT_OGL_API Shader : public GLSLObject {
public:
    enum ShaderType : int {
        FRAGMENT_SHADER = 0,
        VERTEX_SHADER = 1,
    };

    /// Whether the current context has shaders.
    static bool isSupported();

    /// @throws InternalException "ExtensionManager::Instance()->isSupported(OPEN_GL_2_0)" without them,
    ///         "!\"Type enums are not all properly translated.\"" for a type outside the enumeration
    explicit Shader(ShaderType type);
    Shader(const Shader& other) = default;
    Shader& operator=(const Shader& other) = default;
    /// Deletes the GL shader; while it is attached, GL keeps it.
    /// @throws InternalException "_hObject != 0" when GL had made none
    ~Shader() noexcept(false) override;

    /// Sets the source, in `count` pieces.
    /// @param lengths  the length of each piece in bytes, negative for one that ends with a 0; null: all do
    void load(unsigned int count, const char** strings, int* lengths);
    /// @param checkErrors  false: a failure shows in isCompiled(), and when a program is linked
    /// @throws InternalException "Program Compile Error: \n" and the driver's log, "Unknown Compile
    ///         Error." without a log
    void compile(bool checkErrors);

    bool isCompiled() const;
    /// Whether it has a source that is not empty.
    bool isLoaded() const;

    /// The bytes of the driver's log, with the 0 at its end; 0 without a log.
    int getInfoLogLength() const;
    /// @param maxLength  the bytes that `buffer` holds; the log is cut to that, and ends with a 0
    void getInfoLog(int maxLength, char* buffer);
};

} // namespace ZLT::OGL
