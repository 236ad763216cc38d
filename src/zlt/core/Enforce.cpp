#include "zlt/core/Enforce.h"

#include "zlt/core/Exceptions.h"

namespace ZLT::Detail {

void raiseInternal(const char* file, int line, const char* text) {
    throw InternalException(file, line, text);
}

} // namespace ZLT::Detail
