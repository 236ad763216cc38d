#pragma once

#include "FakeObjects.h"
#include "StartedLibrary.h"
#include "ogl/Buffer.h"
#include "ogl/Texture1D.h"
#include "ogl/Texture1DArray.h"
#include "ogl/Texture2D.h"
#include "ogl/Texture2DArray.h"
#include "ogl/Texture3D.h"
#include "ogl/TextureRECT.h"
#include "ogl/TextureUnit.h"

#include <gtest/gtest.h>

#include <GL/gl.h>
#include <GL/glext.h>

namespace ZLT::OGL {

inline const std::string usual =
    "GL_APPLE_client_storage GL_ARB_pixel_buffer_object GL_ARB_vertex_buffer_object";

/// OnDriver, started, on a driver with 4 texture units; and the objects of that GL.
struct ObjectsOnDriver : OnDriver {
    FakeObjects gl;

    explicit ObjectsOnDriver(const std::string& version = "3.0", const std::string& names = usual)
        : OnDriver({"Vendor", version, names, {}, {}, {{GL_MAX_TEXTURE_UNITS, 4}}, {}}) {
        manager();
        calls();
    }

    /// Of FakeObjects, in one line and shorter: "BindTexture(2D,5) TexEnvi(ENV,ENV_MODE,ADD)".
    std::string calls(bool questions = false) {
        std::string all;
        for (std::string call : questions ? gl.takeAllCalls() : gl.takeCalls()) {
            for (const std::string part : {"GL_", "TEXTURE_", " "})
                for (std::size_t at; (at = call.find(part)) != std::string::npos;)
                    call.erase(at, part.size());
            all.append(all.empty() ? "" : " ").append(call, 2);
        }
        return all;
    }
};

/// Memory that nobody looks at: "4096" among the calls.
inline void* const memory = reinterpret_cast<void*>(4096); // NOLINT(performance-no-int-to-ptr)

} // namespace ZLT::OGL

#define EXPECT_FAILURE(text, ...) EXPECT_EQ(text, failureOf([&] { __VA_ARGS__; }))
#define EXPECT_CALLS(text) EXPECT_EQ(text, calls())
