#include "extensionator/EntryPoint.h"

#include "zlt/core/Enforce.h"

#include <string>

namespace ZLT::OGL {

void raiseMissing(const char* function) {
    ZLT_RAISE((std::string("The current context has no ") + function).c_str());
}

} // namespace ZLT::OGL
