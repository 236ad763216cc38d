#include "Scene.h"

#include <stdexcept>

std::unique_ptr<Scene> Scene::make(const std::string& name, int width, int height) {
    if (name == "objects")
        return makeObjects(width, height);
    if (name == "matrices")
        return makeMatrices(width, height);
    if (name == "shaders")
        return makeShaders(width, height);
    if (name == "layers")
        return makeLayers(width, height);
    throw std::runtime_error("no scene is named " + name);
}
