#include "extensionator/RecordBlocks.h"

#include <bit>
#include <cstdint>

namespace ZLT::OGL::RecordForms {

namespace {

struct FloatBits : Number<std::int32_t> {
    explicit FloatBits(float value) : Number(std::bit_cast<std::int32_t>(value)) {}
};
std::ostream& operator<<(std::ostream& out, FloatBits form) { return out << Number(form.value); }

void writeTexCoordCall(std::ostream& out, const char* function, unsigned int target, const char* pointer,
                       CallEnd end) {
    out << "    " << function << '(' << Enumerant(target) << ", reinterpret_cast<" << pointer
        << ">(&tmp_i[0]) " << end << "}\n";
}

} // namespace

void writeUniforms(std::ostream& out, unsigned int position, const char* function, int location, int count,
                   const char* cast, CallEnd end) {
    out << DataBlock(position) << "    " << function << '(' << Number(location) << comma << Number(count)
        << ", reinterpret_cast<const " << cast << " *>(&data[0])" << end << "}\n";
}

void writeUniformMatrices(std::ostream& out, unsigned int position, const char* function, int location,
                          int count, unsigned char transpose, CallEnd end) {
    // The size has no initialiser here, unlike in every other block. The format is so.
    out << DataBlock(position, false) << "    " << function << '(' << Number(location) << comma
        << Number(count) << comma << Boolean(transpose) << ", reinterpret_cast<const GLfloat *>(&data[0])"
        << end << "}\n";
}

void writeInlineArray(std::ostream& out, const float* values, int count) {
    out << "{\n    int tmp_i[] = { ";
    writeList<FloatBits>(out, values, count);
    out << " }; // ";
    writeList<Number<float>>(out, values, count);
    out << '\n';
}

void writeInlineArray(std::ostream& out, const int* values, int count) {
    out << "{\n    int tmp_i[] = { ";
    writeList<Number<int>>(out, values, count);
    out << " }; // ";
    writeList<Number<int>>(out, values, count);
    out << '\n';
}

void writeMultiTexCoord(std::ostream& out, const char* function, unsigned int target, const float* values,
                        int count, CallEnd end) {
    writeInlineArray(out, values, count);
    writeTexCoordCall(out, function, target, "float *", end);
}

void writeMultiTexCoord(std::ostream& out, const char* function, unsigned int target, const int* values,
                        int count, CallEnd end) {
    writeInlineArray(out, values, count);
    writeTexCoordCall(out, function, target, "int *", end);
}

} // namespace ZLT::OGL::RecordForms
