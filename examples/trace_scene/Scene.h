#pragma once

/// A lit, textured, depth-tested scene with display lists, drawn through the chain by immediate mode. A
/// context must be current on the calling thread from construction to destruction.
class Scene {
public:
    /// Makes the textures and lists, and sets the state that stays: lights, depth test, fog.
    Scene(int width, int height);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Draws one frame, several hundred calls.
    /// @param degrees  how far the ring of objects has turned
    void draw(float degrees);

private:
    unsigned int texture_ = 0;
    unsigned int lists_ = 0;
};
