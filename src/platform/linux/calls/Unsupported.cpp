// What EGL has no counterpart for: each fails as it does on a driver without it.

#include "platform/linux/records/Errors.h"

namespace ZLT::Platform {

BOOL wglCopyContext(HGLRC, HGLRC, UINT) { return fail(ERROR_NOT_SUPPORTED); }
BOOL wglUseFontBitmapsA(HDC, DWORD, DWORD, DWORD) { return fail(ERROR_NOT_SUPPORTED); }
BOOL wglUseFontBitmapsW(HDC, DWORD, DWORD, DWORD) { return fail(ERROR_NOT_SUPPORTED); }
BOOL wglUseFontOutlinesA(HDC, DWORD, DWORD, DWORD, FLOAT, FLOAT, int, LPGLYPHMETRICSFLOAT) {
    return fail(ERROR_NOT_SUPPORTED);
}
BOOL wglUseFontOutlinesW(HDC, DWORD, DWORD, DWORD, FLOAT, FLOAT, int, LPGLYPHMETRICSFLOAT) {
    return fail(ERROR_NOT_SUPPORTED);
}
BOOL wglDescribeLayerPlane(HDC, int, int, UINT, LPLAYERPLANEDESCRIPTOR) { return fail(ERROR_NOT_SUPPORTED); }
int wglSetLayerPaletteEntries(HDC, int, int, int, const COLORREF*) { return fail(ERROR_NOT_SUPPORTED); }
int wglGetLayerPaletteEntries(HDC, int, int, int, COLORREF*) { return fail(ERROR_NOT_SUPPORTED); }
BOOL wglRealizeLayerPalette(HDC, int, BOOL) { return fail(ERROR_NOT_SUPPORTED); }

} // namespace ZLT::Platform
