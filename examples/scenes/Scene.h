#pragma once

#include <memory>
#include <string>

/// A picture drawn through the chain. Each scene uses, of the calls that carry data, only those that a
/// recording captures, so that its recording shows the same picture. A context must be current on the calling
/// thread from construction to destruction.
class Scene {
public:
    /// By name: "objects" (lit and textured display lists, fog), "matrices" (immediate mode, matrices, a
    /// texture that is changed), "shaders" (programs and uniforms), "layers" (display lists, blending,
    /// scissor).
    /// @throws std::runtime_error for another name
    static std::unique_ptr<Scene> make(const std::string& name, int width, int height);

    virtual ~Scene() = default;
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Draws one frame.
    virtual void draw() = 0;

protected:
    Scene() = default;
};

std::unique_ptr<Scene> makeObjects(int width, int height);
std::unique_ptr<Scene> makeMatrices(int width, int height);
std::unique_ptr<Scene> makeShaders(int width, int height);
std::unique_ptr<Scene> makeLayers(int width, int height);
