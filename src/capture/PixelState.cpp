#include "capture/PixelState.h"

namespace ZLT::Capture {

PlainTransfer::PlainTransfer(const CapturedContext& context) {
    if (context.isCore)
        return;
    glPushAttrib(GL_PIXEL_MODE_BIT | GL_ENABLE_BIT);
    isPushed_ = true;
    for (const unsigned int name : {GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE})
        glPixelTransferf(name, 1);
    for (const unsigned int name : {GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS})
        glPixelTransferf(name, 0);
    glPixelTransferi(GL_MAP_COLOR, GL_FALSE);
    if (!context.has("GL_ARB_imaging"))
        return;
    for (const unsigned int name :
         {GL_COLOR_TABLE, GL_POST_CONVOLUTION_COLOR_TABLE, GL_POST_COLOR_MATRIX_COLOR_TABLE,
          GL_CONVOLUTION_1D, GL_CONVOLUTION_2D, GL_SEPARABLE_2D, GL_HISTOGRAM, GL_MINMAX})
        glDisable(name);
    for (const unsigned int name : {GL_POST_COLOR_MATRIX_RED_SCALE, GL_POST_COLOR_MATRIX_GREEN_SCALE,
                                    GL_POST_COLOR_MATRIX_BLUE_SCALE, GL_POST_COLOR_MATRIX_ALPHA_SCALE})
        glPixelTransferf(name, 1);
    for (const unsigned int name : {GL_POST_COLOR_MATRIX_RED_BIAS, GL_POST_COLOR_MATRIX_GREEN_BIAS,
                                    GL_POST_COLOR_MATRIX_BLUE_BIAS, GL_POST_COLOR_MATRIX_ALPHA_BIAS})
        glPixelTransferf(name, 0);
}

PlainTransfer::~PlainTransfer() {
    if (isPushed_)
        glPopAttrib();
}

namespace {

struct StoreParameter {
    unsigned int unpack, pack;
    int plain;
};
constexpr StoreParameter storeParameters[] = {
    {GL_UNPACK_ALIGNMENT, GL_PACK_ALIGNMENT, 1},   {GL_UNPACK_ROW_LENGTH, GL_PACK_ROW_LENGTH, 0},
    {GL_UNPACK_SKIP_ROWS, GL_PACK_SKIP_ROWS, 0},   {GL_UNPACK_SKIP_PIXELS, GL_PACK_SKIP_PIXELS, 0},
    {GL_UNPACK_SWAP_BYTES, GL_PACK_SWAP_BYTES, 0}, {GL_UNPACK_LSB_FIRST, GL_PACK_LSB_FIRST, 0}};

} // namespace

PlainStore::PlainStore(const CapturedContext& context, bool isUnpack)
    : context_(context), isUnpack_(isUnpack) {
    if (context.hasPixelBuffers) {
        buffer_ = static_cast<unsigned int>(
            context.integer(isUnpack ? GL_PIXEL_UNPACK_BUFFER_BINDING : GL_PIXEL_PACK_BUFFER_BINDING));
        if (buffer_ != 0)
            context.functions.bindBuffer(isUnpack ? GL_PIXEL_UNPACK_BUFFER : GL_PIXEL_PACK_BUFFER, 0);
    }
    int* before = before_;
    for (const StoreParameter& parameter : storeParameters) {
        const unsigned int name = isUnpack ? parameter.unpack : parameter.pack;
        *before++ = context.integer(name);
        glPixelStorei(name, parameter.plain);
    }
}

PlainStore::~PlainStore() {
    const int* before = before_;
    for (const StoreParameter& parameter : storeParameters)
        glPixelStorei(isUnpack_ ? parameter.unpack : parameter.pack, *before++);
    if (buffer_ != 0)
        context_.functions.bindBuffer(isUnpack_ ? GL_PIXEL_UNPACK_BUFFER : GL_PIXEL_PACK_BUFFER, buffer_);
}

} // namespace ZLT::Capture
