#pragma once

#include "capture/CapturePlay.h"
#include "capture/exporting/MadeCalls.h"
#include "capture/exporting/MatrixLog.h"

#include <array>
#include <functional>
#include <string>
#include <unordered_map>

/// @file
/// Reads the state of a context that a capture was played in, as calls that bring a new context there.

namespace ZLT::Capture {

/// What the capture says of the state, which GL can't be asked for.
struct KnownState {
    std::unordered_map<std::uint64_t, std::uint32_t> textureTargets; ///< by their captured names
    std::unordered_map<std::uint64_t, std::uint32_t> assemblyTargets, queryTargets;
    std::vector<std::uint32_t> attributeMasks, clientMasks; ///< of the stacks
    MatrixLog matrices;
};

/// Of the current context, whose pixels come and go as they are. Names are those of the capture.
class StateReader {
public:
    /// @param missing  is told what can't be carried over
    StateReader(CapturePlay& play, Playing::Context& context, const KnownState& known, MadeCalls& to,
                std::function<void(const std::string&)> missing);

    // ContextState.cpp: everything that is no object. Pops what is on the stacks.
    void addContextState();

    // ObjectState.cpp: objects, by their captured names.
    void addTexture(std::uint64_t name);
    void addDefaultTextures();
    void addBuffer(std::uint64_t name);
    void addAssemblyProgram(std::uint64_t name);
    void addRenderbuffer(std::uint64_t name);
    void addFramebuffer(std::uint64_t name);
    void addVertexArray(std::uint64_t name);
    void addQuery(std::uint64_t name);
    /// What the surface shows, its depth and stencil.
    void addPixels(const SurfaceShape& shape);

private:
    // ContextState.cpp
    void addStacks();
    void addLevel();
    void addClientLevel();
    void addCapabilities();
    void addFragmentState();
    void addRasterState();
    void addPixelTransfer();
    void addPixelStore();
    void addImaging();
    void addHints();
    // VertexState.cpp
    void addMatrices();
    void addStack(std::uint32_t mode, std::uint32_t depthName, std::uint32_t matrixName,
                  std::uint32_t unit = 0);
    /// Whether these calls make the matrix, which they replace.
    bool isMadeBy(const MadeMatrix& made, const std::array<float, 16>& matrix,
                  std::uint32_t matrixName) const;
    void play(const CapturedCall& call) const;
    void addUnit();
    void addLighting();
    void addTextureUnits();
    void addEvaluators();
    void addCurrentValues();
    // ArrayState.cpp
    void addCurrentArrays();
    void addPixelBuffers();
    void addArrays(); ///< of what is bound
    void addFixedArrays();
    void addAttributes();
    void addBindings();
    // ObjectState.cpp
    void addTextureImages(std::uint32_t target);
    void addTextureImage(std::uint32_t target, int level);
    void addTextureParameters(std::uint32_t target);
    void addTextureObject(std::uint32_t target);
    void addAttachment(std::uint32_t target, std::uint32_t point);
    void addDrawBuffers(bool isWindow);
    struct CarriedPixels {
        std::uint32_t attachment, mask, internal, format, type;
    };
    void carry(const CarriedPixels& pixels, int width, int height, const std::string& bytes,
               std::uint64_t renderbuffer); ///< 0 for the window

    /// What `add` adds, behind the selection of the unit if it is anything.
    void addToUnit(const char* selection, std::uint32_t unit, const std::function<void()>& add);
    int integer(std::uint32_t name) const { return facts_.integer(name); }
    std::uint32_t token(std::uint32_t name) const { return static_cast<std::uint32_t>(facts_.integer(name)); }
    std::array<float, 16> floats(std::uint32_t name) const;
    bool isEnabled(std::uint32_t name) const;
    bool isVersion(int major, int minor) const { return facts_.isVersion(major, minor); }
    bool has(const char* extension) const { return facts_.has(extension); }
    /// Whether the question before could be answered.
    bool isAnswered() const;
    void forgetErrors() const { (void)isAnswered(); }
    std::uint64_t capturedName(ObjectKind kind, std::uint64_t now) const;
    std::uint32_t nameNow(ObjectKind kind, std::uint64_t captured) const;
    /// Adds the call unless the values are those of a new context. Above what was pushed all are added, since
    /// there nothing is new.
    void addUnless(bool isDefault, const char* function, const auto&... arguments) {
        if (!isDefault || isFull_)
            to_.add(function, arguments...);
    }

    CapturePlay& play_;
    Playing::Context& context_;
    const CapturedContext& facts_;
    OGL::OpenGLInterceptor& gl_;
    const KnownState& known_;
    MadeCalls& to_;
    std::function<void(const std::string&)> missing_;
    bool isCore_;
    bool isFull_ = false;
    int units_; ///< with coordinates
};

} // namespace ZLT::Capture
