#pragma once

/// @file
/// The attributes and values of the WGL extensions that the library uses or, on Linux, implements.

// A client may have GL/wglext.h, which defines the same names as macros.
#ifndef WGL_ARB_pixel_format

// WGL_ARB_pixel_format
constexpr int WGL_NUMBER_PIXEL_FORMATS_ARB = 0x2000;
constexpr int WGL_DRAW_TO_WINDOW_ARB = 0x2001;
constexpr int WGL_DRAW_TO_BITMAP_ARB = 0x2002;
constexpr int WGL_ACCELERATION_ARB = 0x2003;
constexpr int WGL_NEED_PALETTE_ARB = 0x2004;
constexpr int WGL_NEED_SYSTEM_PALETTE_ARB = 0x2005;
constexpr int WGL_SWAP_LAYER_BUFFERS_ARB = 0x2006;
constexpr int WGL_SWAP_METHOD_ARB = 0x2007;
constexpr int WGL_NUMBER_OVERLAYS_ARB = 0x2008;
constexpr int WGL_NUMBER_UNDERLAYS_ARB = 0x2009;
constexpr int WGL_TRANSPARENT_ARB = 0x200A;
constexpr int WGL_SHARE_DEPTH_ARB = 0x200C;
constexpr int WGL_SHARE_STENCIL_ARB = 0x200D;
constexpr int WGL_SHARE_ACCUM_ARB = 0x200E;
constexpr int WGL_SUPPORT_GDI_ARB = 0x200F;
constexpr int WGL_SUPPORT_OPENGL_ARB = 0x2010;
constexpr int WGL_DOUBLE_BUFFER_ARB = 0x2011;
constexpr int WGL_STEREO_ARB = 0x2012;
constexpr int WGL_PIXEL_TYPE_ARB = 0x2013;
constexpr int WGL_COLOR_BITS_ARB = 0x2014;
constexpr int WGL_RED_BITS_ARB = 0x2015;
constexpr int WGL_RED_SHIFT_ARB = 0x2016;
constexpr int WGL_GREEN_BITS_ARB = 0x2017;
constexpr int WGL_GREEN_SHIFT_ARB = 0x2018;
constexpr int WGL_BLUE_BITS_ARB = 0x2019;
constexpr int WGL_BLUE_SHIFT_ARB = 0x201A;
constexpr int WGL_ALPHA_BITS_ARB = 0x201B;
constexpr int WGL_ALPHA_SHIFT_ARB = 0x201C;
constexpr int WGL_ACCUM_BITS_ARB = 0x201D;
constexpr int WGL_ACCUM_RED_BITS_ARB = 0x201E;
constexpr int WGL_ACCUM_GREEN_BITS_ARB = 0x201F;
constexpr int WGL_ACCUM_BLUE_BITS_ARB = 0x2020;
constexpr int WGL_ACCUM_ALPHA_BITS_ARB = 0x2021;
constexpr int WGL_DEPTH_BITS_ARB = 0x2022;
constexpr int WGL_STENCIL_BITS_ARB = 0x2023;
constexpr int WGL_AUX_BUFFERS_ARB = 0x2024;
constexpr int WGL_NO_ACCELERATION_ARB = 0x2025;
constexpr int WGL_GENERIC_ACCELERATION_ARB = 0x2026;
constexpr int WGL_FULL_ACCELERATION_ARB = 0x2027;
constexpr int WGL_SWAP_EXCHANGE_ARB = 0x2028;
constexpr int WGL_SWAP_COPY_ARB = 0x2029;
constexpr int WGL_SWAP_UNDEFINED_ARB = 0x202A;
constexpr int WGL_TYPE_RGBA_ARB = 0x202B;
constexpr int WGL_TYPE_COLORINDEX_ARB = 0x202C;
constexpr int WGL_TRANSPARENT_RED_VALUE_ARB = 0x2037;
constexpr int WGL_TRANSPARENT_GREEN_VALUE_ARB = 0x2038;
constexpr int WGL_TRANSPARENT_BLUE_VALUE_ARB = 0x2039;
constexpr int WGL_TRANSPARENT_ALPHA_VALUE_ARB = 0x203A;
constexpr int WGL_TRANSPARENT_INDEX_VALUE_ARB = 0x203B;

// WGL_ARB_pbuffer
constexpr int WGL_DRAW_TO_PBUFFER_ARB = 0x202D;
constexpr int WGL_MAX_PBUFFER_PIXELS_ARB = 0x202E;
constexpr int WGL_MAX_PBUFFER_WIDTH_ARB = 0x202F;
constexpr int WGL_MAX_PBUFFER_HEIGHT_ARB = 0x2030;
constexpr int WGL_PBUFFER_LARGEST_ARB = 0x2033;
constexpr int WGL_PBUFFER_WIDTH_ARB = 0x2034;
constexpr int WGL_PBUFFER_HEIGHT_ARB = 0x2035;
constexpr int WGL_PBUFFER_LOST_ARB = 0x2036;

// WGL_ARB_multisample
constexpr int WGL_SAMPLE_BUFFERS_ARB = 0x2041;
constexpr int WGL_SAMPLES_ARB = 0x2042;

// WGL_ARB_pixel_format_float
constexpr int WGL_TYPE_RGBA_FLOAT_ARB = 0x21A0;

// WGL_ARB_create_context and its profiles
constexpr int WGL_CONTEXT_MAJOR_VERSION_ARB = 0x2091;
constexpr int WGL_CONTEXT_MINOR_VERSION_ARB = 0x2092;
constexpr int WGL_CONTEXT_LAYER_PLANE_ARB = 0x2093;
constexpr int WGL_CONTEXT_FLAGS_ARB = 0x2094;
constexpr int WGL_CONTEXT_PROFILE_MASK_ARB = 0x9126;
constexpr int WGL_CONTEXT_DEBUG_BIT_ARB = 0x0001;
constexpr int WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB = 0x0002;
constexpr int WGL_CONTEXT_CORE_PROFILE_BIT_ARB = 0x0001;
constexpr int WGL_CONTEXT_COMPATIBILITY_PROFILE_BIT_ARB = 0x0002;
constexpr int ERROR_INVALID_VERSION_ARB = 0x2095;
constexpr int ERROR_INVALID_PROFILE_ARB = 0x2096;

#endif
