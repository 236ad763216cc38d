#include "OtherTokenNames.h"

#include <glbinding/Meta.h>
#include <glbinding/gl/enum.h>

#include <string>

const char* glbindingTokenName(unsigned int value) {
    return glbinding::Meta::getString(static_cast<gl::GLenum>(value)).c_str();
}
