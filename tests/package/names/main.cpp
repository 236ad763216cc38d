// A client that needs nothing of zlt_core itself, and links zlt_ogl alone.

#include <extensionator/TokenName.h>

#include <string_view>

int main() { return ZLT::OGL::boolToString(1) == std::string_view("GL_TRUE") ? 0 : 1; }
