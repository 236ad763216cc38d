#include "gl.h"

#include <cstring>

// For a function that the driver lacks.
template <class Result, class... Parameters>
static Result APIENTRY nothing(Parameters...) {
    return Result();
}

template <class Result, class... Parameters>
static void leave_out(Result(APIENTRY*& function)(Parameters...)) {
    function = nothing<Result, Parameters...>;
}

#define GL_1_1_FUNCTION(result, name, parameters)
#define GL_FUNCTION(result, name, parameters) result(APIENTRY* loaded::name) parameters = nullptr;
#include "gl_functions.inl"
#undef GL_FUNCTION

void gl_load(void* (*address_of)(const char* name), void (*missing)(const char* name)) {
    static bool is_loaded = false;
    if (is_loaded)
        return;
    is_loaded = true;
    (void)address_of;
    (void)missing;
#define GL_FUNCTION(result, name, parameters)                                                                \
    if (void* const address = address_of(#name)) {                                                           \
        std::memcpy(&loaded::name, &address, sizeof address);                                                \
    } else {                                                                                                 \
        missing(#name);                                                                                      \
        leave_out(loaded::name);                                                                             \
    }
#include "gl_functions.inl"
#undef GL_FUNCTION
#undef GL_1_1_FUNCTION
}
