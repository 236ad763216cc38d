#include "ogl/Object.h"

#include "platform/GL.h"

namespace ZLT::OGL {

Object::Object(unsigned int target, unsigned int binding) : target_(target), binding_(binding) {}

Object::~Object() noexcept(false) = default;

unsigned int Object::getBoundID() const {
    GLint name = 0;
    glGetIntegerv(binding_, &name);
    return static_cast<unsigned int>(name);
}

bool Object::isBound() const { return getBoundID() == n_ObjectID; }

void Object::changeTarget(unsigned int target, unsigned int binding) {
    target_ = target;
    binding_ = binding;
}

} // namespace ZLT::OGL
