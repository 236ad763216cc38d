#include "extensionator/OpenGLRekorder.h"

#include <ostream>

namespace ZLT::OGL {

OpenGLRekorder::OpenGLRekorder(std::ostream& text, std::ostream& data, OpenGLInterceptor* next,
                               bool lineComments)
    : OpenGLInterceptorDecorator(next), outputStream_(&text), binaryOutputStream_(&data), binaryOffset_(0),
      lineComments_(lineComments) {}
OpenGLRekorder::~OpenGLRekorder() = default;

std::ostream* OpenGLRekorder::outputStream() { return outputStream_; }
const std::ostream* OpenGLRekorder::outputStream() const { return outputStream_; }
void OpenGLRekorder::setOutputStream(std::ostream& out) { outputStream_ = &out; }

std::ostream* OpenGLRekorder::binaryOutputStream() { return binaryOutputStream_; }
const std::ostream* OpenGLRekorder::binaryOutputStream() const { return binaryOutputStream_; }
void OpenGLRekorder::setBinaryOutputStream(std::ostream& out) { binaryOutputStream_ = &out; }

unsigned int OpenGLRekorder::writeRecord(const void* payload, unsigned int size) {
    const unsigned int position = binaryOffset_;
    binaryOutputStream_->write(reinterpret_cast<const char*>(&size), sizeof(size));
    binaryOutputStream_->write(static_cast<const char*>(payload), size);
    binaryOffset_ += static_cast<unsigned int>(sizeof(size)) + size;
    return position;
}

unsigned int OpenGLRekorder::writeWideRecord(const void* payload, long long size) {
    const unsigned int position = binaryOffset_;
    binaryOutputStream_->write(reinterpret_cast<const char*>(&size), sizeof(size));
    binaryOutputStream_->write(static_cast<const char*>(payload), size);
    binaryOffset_ += static_cast<unsigned int>(sizeof(size) + static_cast<unsigned long long>(size));
    return position;
}

} // namespace ZLT::OGL
