#include "OtherTokenNames.h"

const char* switchTokenName(unsigned int value) {
    switch (value) {
#define ZLT_GL_TOKEN(value, name)                                                                            \
    case value:                                                                                              \
        return name;
#include "extensionator/TokenRows.inl"
#undef ZLT_GL_TOKEN
    default:
        return "Unknown Token";
    }
}
