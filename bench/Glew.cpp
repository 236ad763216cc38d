#include "Glew.h"

#include <GL/glew.h>

bool initializeGlew() {
    // For all that the driver has, whatever its profile.
    glewExperimental = GL_TRUE;
    // It reads the driver first and GLX next, which has no context here.
    const GLenum result = glewInit();
    return (result == GLEW_OK || result == GLEW_ERROR_NO_GLX_DISPLAY) && glUniform4f != nullptr;
}
