#pragma once

#include "Export.h"
#include "ogl/GLSLObject.h"

#include <concepts>
#include <type_traits>

namespace ZLT::OGL::internal {

template <class... Values>
inline constexpr bool isScalarArray = false;
template <std::convertible_to<int> Count, class T>
inline constexpr bool isScalarArray<Count, T*> =
    std::convertible_to<T*, const int*> || std::convertible_to<T*, const float*>;
/// A pointer among the values of a uniform, which would become a boolean.
template <class... Values>
concept PointerAsBoolean = (std::is_pointer_v<Values> || ...) && !isScalarArray<Values...>;

} // namespace ZLT::OGL::internal

namespace ZLT::OGL {

class Shader;

/// A GLSL program of OpenGL 2.0, and its uniforms.
///
///     Program program;
///     program.loadVertexShader(1, &vertexText, nullptr);
///     program.loadFragmentShader(1, &fragmentText, nullptr);
///     program.link(true);       // throws the driver's log
///     program.enable();
///     program.setUniform("brightness", 0.5f);
///
/// A uniform is named by its location or by its name; a name is looked up at each call. The plain forms
/// throw InternalException "Program must be enabled to set uniform parameter" when another program is
/// current, which costs one query to the driver (scalars and samplers by name: two). Arrays of scalars
/// and vectors by name don't check. The `_Unsafe` forms don't check either: the value goes to whatever
/// program is current. They skip a uniform that doesn't exist (location -1), which the plain forms pass to GL
/// to be ignored; arrays of floats, and arrays of scalars and vectors by name, are passed to GL here too.
class ZLT_OGL_API Program : public GLSLObject {
public:
    /// Whether the current context has programs.
    static bool isSupported();

    /// @throws InternalException "ExtensionManager::Instance()->isSupported(OPEN_GL_2_0)" without them,
    ///         "_hObject != 0" when GL makes none
    Program();
    Program(const Program& other) = default;
    Program& operator=(const Program& other) = default;
    /// Deletes the GL program; while it is current, GL keeps it.
    /// @throws InternalException "_hObject != 0"
    ~Program() noexcept(false) override;

    /// @name Shaders
    /// @{

    /// Attaches a shader that has a source, compiled or not.
    /// @throws InternalException "Shader must be loaded before attaching", "Enforce shader != NULL"
    void attach(Shader* shader);
    /// @param shader  not null; one that isn't attached is reported by GL
    void detach(const Shader* shader);
    void detachAllShaders();
    /// At most four times those among the first 64 shaders.
    void detachAllVertexShaders();
    /// At most four times those among the first 64 shaders.
    void detachAllFragmentShaders();
    /// Makes a shader from a source in `count` pieces, compiles and attaches it; it lives as long as it is
    /// attached. An error in the source is reported when the program is linked.
    /// @param lengths  the length of each piece in bytes, negative for one that ends with a 0; null: all do
    /// @throws InternalException as attach(), for an empty source; the shader is lost then
    void loadVertexShader(unsigned int count, const char** strings, int* lengths);
    void loadFragmentShader(unsigned int count, const char** strings, int* lengths);
    /// @}

    /// @name Linking
    /// @{

    /// @param checkErrors  false: a failure shows in isLinked()
    /// @throws InternalException "Program Link Error: \n" and the driver's log, "Unknown Program Link
    ///         Error\n" without a log; "Program Link Error(Falling to Software): \n" and the log when the
    ///         driver says of a program that it has linked that it will "run in software": it can be
    ///         enabled all the same
    void link(bool checkErrors);
    /// Does nothing, and nothing calls it.
    void postLinkInit() {}
    bool isLinked() const;
    /// Whether it could run in the current state.
    bool validate() const;
    /// The bytes of the driver's log, with the 0 at its end; 0 without a log.
    int getInfoLogLength() const;
    /// @param maxLength  the bytes that `buffer` holds; the log is cut to that, and ends with a 0
    void getInfoLog(int maxLength, char* buffer);
    /// @}

    /// Makes it the current program.
    /// @throws InternalException "Program must be linked before being enabled"
    void enable();
    /// Makes the fixed pipeline current, whichever program was current.
    void disable();
    /// Whether it is the current program of the calling thread's context.
    bool isEnabled() const;

    /// Takes effect at the next link.
    void setAttributeLocation(unsigned int index, const char* name);
    /// -1 for one that doesn't exist. The program must be linked, which GL checks.
    int getAttributeLocation(const char* name);

    /// @name Uniforms: queries
    /// @throws InternalException "Program must be linked to get active uniform count" where it must be
    /// @{

    /// -1 for one that doesn't exist, or on which nothing depends. The program must be linked, which isn't
    /// checked.
    int getUniformLocation(const char* name) const;
    /// It must be linked.
    unsigned int getActiveUniformCount() const;
    /// Of the uniform with this number, from 0: its GL type, its length if it is an array (1 otherwise),
    /// its name. It must be linked.
    /// @param bufferSize  the bytes that `name` holds; see getMaxUniformStringLength()
    void getActiveUniform(unsigned int index, int bufferSize, int* size, unsigned int* type,
                          char* name) const;
    /// Of the longest name, with the 0 at its end. It must be linked.
    int getMaxUniformStringLength() const;
    /// Does nothing: the place for a check of a uniform's type.
    void assertActiveUniformType(int location, unsigned int type, unsigned int otherType) const;
    /// @}

    /// @name Uniforms: booleans
    /// Booleans, as integers 0 and 1.
    /// @{
    void setUniform(int location, bool x);
    void setUniform(const char* name, bool x);
    void setUniform_Unsafe(int location, bool x);
    void setUniform_Unsafe(const char* name, bool x);
    void setUniform(int location, bool x, bool y);
    void setUniform(const char* name, bool x, bool y);
    void setUniform_Unsafe(int location, bool x, bool y);
    void setUniform_Unsafe(const char* name, bool x, bool y);
    void setUniform(int location, bool x, bool y, bool z);
    void setUniform(const char* name, bool x, bool y, bool z);
    void setUniform_Unsafe(int location, bool x, bool y, bool z);
    void setUniform_Unsafe(const char* name, bool x, bool y, bool z);
    void setUniform(int location, bool x, bool y, bool z, bool w);
    void setUniform(const char* name, bool x, bool y, bool z, bool w);
    void setUniform_Unsafe(int location, bool x, bool y, bool z, bool w);
    void setUniform_Unsafe(const char* name, bool x, bool y, bool z, bool w);
    /// A pointer is not taken for a boolean: arrays are of int or float, with their length in front.
    template <class Uniform, class... Values>
    requires internal::PointerAsBoolean<Values...>
    void setUniform(Uniform uniform, Values... values) = delete;
    template <class Uniform, class... Values>
    requires internal::PointerAsBoolean<Values...>
    void setUniform_Unsafe(Uniform uniform, Values... values) = delete;
    /// @}

    /// @name Uniforms: bytes
    /// Bytes, as integers.
    /// @{
    void setUniform(int location, unsigned char x);
    void setUniform(const char* name, unsigned char x);
    void setUniform_Unsafe(int location, unsigned char x);
    void setUniform_Unsafe(const char* name, unsigned char x);
    void setUniform(int location, unsigned char x, unsigned char y);
    void setUniform(const char* name, unsigned char x, unsigned char y);
    void setUniform_Unsafe(int location, unsigned char x, unsigned char y);
    void setUniform_Unsafe(const char* name, unsigned char x, unsigned char y);
    void setUniform(int location, unsigned char x, unsigned char y, unsigned char z);
    void setUniform(const char* name, unsigned char x, unsigned char y, unsigned char z);
    void setUniform_Unsafe(int location, unsigned char x, unsigned char y, unsigned char z);
    void setUniform_Unsafe(const char* name, unsigned char x, unsigned char y, unsigned char z);
    void setUniform(int location, unsigned char x, unsigned char y, unsigned char z, unsigned char w);
    void setUniform(const char* name, unsigned char x, unsigned char y, unsigned char z, unsigned char w);
    void setUniform_Unsafe(int location, unsigned char x, unsigned char y, unsigned char z, unsigned char w);
    void setUniform_Unsafe(const char* name, unsigned char x, unsigned char y, unsigned char z,
                           unsigned char w);
    /// @}

    /// @name Uniforms: integers
    /// Integers.
    /// @{
    void setUniform(int location, int x);
    void setUniform(const char* name, int x);
    void setUniform_Unsafe(int location, int x);
    void setUniform_Unsafe(const char* name, int x);
    void setUniform(int location, int x, int y);
    void setUniform(const char* name, int x, int y);
    void setUniform_Unsafe(int location, int x, int y);
    void setUniform_Unsafe(const char* name, int x, int y);
    void setUniform(int location, int x, int y, int z);
    void setUniform(const char* name, int x, int y, int z);
    void setUniform_Unsafe(int location, int x, int y, int z);
    void setUniform_Unsafe(const char* name, int x, int y, int z);
    void setUniform(int location, int x, int y, int z, int w);
    void setUniform(const char* name, int x, int y, int z, int w);
    void setUniform_Unsafe(int location, int x, int y, int z, int w);
    void setUniform_Unsafe(const char* name, int x, int y, int z, int w);
    /// @}

    /// @name Uniforms: floats
    /// Floats.
    /// @{
    void setUniform(int location, float x);
    void setUniform(const char* name, float x);
    void setUniform_Unsafe(int location, float x);
    void setUniform_Unsafe(const char* name, float x);
    void setUniform(int location, float x, float y);
    void setUniform(const char* name, float x, float y);
    void setUniform_Unsafe(int location, float x, float y);
    void setUniform_Unsafe(const char* name, float x, float y);
    void setUniform(int location, float x, float y, float z);
    void setUniform(const char* name, float x, float y, float z);
    void setUniform_Unsafe(int location, float x, float y, float z);
    void setUniform_Unsafe(const char* name, float x, float y, float z);
    void setUniform(int location, float x, float y, float z, float w);
    void setUniform(const char* name, float x, float y, float z, float w);
    void setUniform_Unsafe(int location, float x, float y, float z, float w);
    void setUniform_Unsafe(const char* name, float x, float y, float z, float w);
    /// @}

    /// @name Uniforms: samplers
    /// The texture unit of a sampler, from 0: the same as setUniform() of an int.
    /// @{
    void setUniformSampler1D(int location, int unit);
    void setUniformSampler1D(const char* name, int unit);
    void setUniformSampler1D_Unsafe(int location, int unit);
    void setUniformSampler1D_Unsafe(const char* name, int unit);
    void setUniformSampler2D(int location, int unit);
    void setUniformSampler2D(const char* name, int unit);
    void setUniformSampler2D_Unsafe(int location, int unit);
    void setUniformSampler2D_Unsafe(const char* name, int unit);
    void setUniformSampler3D(int location, int unit);
    void setUniformSampler3D(const char* name, int unit);
    void setUniformSampler3D_Unsafe(int location, int unit);
    void setUniformSampler3D_Unsafe(const char* name, int unit);
    void setUniformSampler2DRECT(int location, int unit);
    void setUniformSampler2DRECT(const char* name, int unit);
    void setUniformSampler2DRECT_Unsafe(int location, int unit);
    void setUniformSampler2DRECT_Unsafe(const char* name, int unit);
    /// @}

    /// @name Uniforms: arrays of matrices
    /// `count` square matrices, one after the other, by columns; by rows if `transpose` is not 0.
    /// @{
    void setUniformMatrices2(int location, int count, const float* values, unsigned char transpose);
    void setUniformMatrices2(const char* name, int count, const float* values, unsigned char transpose);
    void setUniformMatrices2_Unsafe(int location, int count, const float* values, unsigned char transpose);
    void setUniformMatrices2_Unsafe(const char* name, int count, const float* values,
                                    unsigned char transpose);
    void setUniformMatrices3(int location, int count, const float* values, unsigned char transpose);
    void setUniformMatrices3(const char* name, int count, const float* values, unsigned char transpose);
    void setUniformMatrices3_Unsafe(int location, int count, const float* values, unsigned char transpose);
    void setUniformMatrices3_Unsafe(const char* name, int count, const float* values,
                                    unsigned char transpose);
    void setUniformMatrices4(int location, int count, const float* values, unsigned char transpose);
    void setUniformMatrices4(const char* name, int count, const float* values, unsigned char transpose);
    void setUniformMatrices4_Unsafe(int location, int count, const float* values, unsigned char transpose);
    void setUniformMatrices4_Unsafe(const char* name, int count, const float* values,
                                    unsigned char transpose);
    /// @}

    /// @name Uniforms: matrices
    /// One square matrix.
    /// @{
    void setUniformMatrix2(int location, const float* values, unsigned char transpose);
    void setUniformMatrix2(const char* name, const float* values, unsigned char transpose);
    void setUniformMatrix2_Unsafe(int location, const float* values, unsigned char transpose);
    void setUniformMatrix2_Unsafe(const char* name, const float* values, unsigned char transpose);
    void setUniformMatrix3(int location, const float* values, unsigned char transpose);
    void setUniformMatrix3(const char* name, const float* values, unsigned char transpose);
    void setUniformMatrix3_Unsafe(int location, const float* values, unsigned char transpose);
    void setUniformMatrix3_Unsafe(const char* name, const float* values, unsigned char transpose);
    void setUniformMatrix4(int location, const float* values, unsigned char transpose);
    void setUniformMatrix4(const char* name, const float* values, unsigned char transpose);
    void setUniformMatrix4_Unsafe(int location, const float* values, unsigned char transpose);
    void setUniformMatrix4_Unsafe(const char* name, const float* values, unsigned char transpose);
    /// @}

    /// @name Uniforms: arrays
    /// Arrays of `count` scalars or vectors of 2, 3 and 4 components; a uniform that is no array takes a
    /// count of 1. setUniform4() of floats sets vectors of three components.
    /// @{
    void setUniform(int location, int count, const int* values);
    void setUniform(const char* name, int count, const int* values);
    void setUniform_Unsafe(int location, int count, const int* values);
    void setUniform_Unsafe(const char* name, int count, const int* values);
    void setUniform(int location, int count, const float* values);
    void setUniform(const char* name, int count, const float* values);
    void setUniform_Unsafe(int location, int count, const float* values);
    void setUniform_Unsafe(const char* name, int count, const float* values);
    void setUniform2(int location, int count, const int* values);
    void setUniform2(const char* name, int count, const int* values);
    void setUniform2_Unsafe(int location, int count, const int* values);
    void setUniform2_Unsafe(const char* name, int count, const int* values);
    void setUniform2(int location, int count, const float* values);
    void setUniform2(const char* name, int count, const float* values);
    void setUniform2_Unsafe(int location, int count, const float* values);
    void setUniform2_Unsafe(const char* name, int count, const float* values);
    void setUniform3(int location, int count, const int* values);
    void setUniform3(const char* name, int count, const int* values);
    void setUniform3_Unsafe(int location, int count, const int* values);
    void setUniform3_Unsafe(const char* name, int count, const int* values);
    void setUniform3(int location, int count, const float* values);
    void setUniform3(const char* name, int count, const float* values);
    void setUniform3_Unsafe(int location, int count, const float* values);
    void setUniform3_Unsafe(const char* name, int count, const float* values);
    void setUniform4(int location, int count, const int* values);
    void setUniform4(const char* name, int count, const int* values);
    void setUniform4_Unsafe(int location, int count, const int* values);
    void setUniform4_Unsafe(const char* name, int count, const int* values);
    void setUniform4(int location, int count, const float* values);
    void setUniform4(const char* name, int count, const float* values);
    void setUniform4_Unsafe(int location, int count, const float* values);
    void setUniform4_Unsafe(const char* name, int count, const float* values);
    /// @}

private:
    // The rules in which the setters differ.
    enum class Row { Scalar, Matrix, Integers, Floats };
    template <Row row, class Set>
    void checked(int location, const Set& set);
    template <Row row, class Set>
    void checked(const char* name, const Set& set);
    template <Row row, class Set>
    void unsafe(int location, const Set& set);
    template <Row row, class Set>
    void unsafe(const char* name, const Set& set);

    void requireEnabled() const;
    void requireLinked() const;
    int parameter(unsigned int name) const;
    void detachAll(unsigned int shaderType);
    template <class Kind>
    void loadShader(unsigned int count, const char** strings, int* lengths);
};

} // namespace ZLT::OGL
