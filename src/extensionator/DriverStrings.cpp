#include "extensionator/DriverStrings.h"

#include "extensionator/Load.h"
#include "platform/GL.h"

namespace ZLT::OGL {

String driverString(unsigned int name) {
    const auto* text = reinterpret_cast<const char*>(glGetString(name));
    return text ? text : "";
}

String driverExtensions(unsigned int majorVersion) {
    if (const auto* text = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)))
        return text;
    if (majorVersion < 3)
        return "";
    glGetError(); // the null string was an error, and it was ours
    const auto getStringi = functionAddress<PFNGLGETSTRINGIPROC>("glGetStringi");
    if (!getStringi)
        return "";
    GLint count = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    String names;
    for (GLint i = 0; i < count; ++i)
        if (const auto* name = reinterpret_cast<const char*>(getStringi(GL_EXTENSIONS, GLuint(i))))
            (names += name) += ' ';
    return names;
}

} // namespace ZLT::OGL
