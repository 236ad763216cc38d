#include "ogl/Buffer.h"

#include "extensionator/EntryPoint.h"
#include "ogl/internal/TearDown.h"
#include "ogl/internal/TokenMap.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

namespace {

constexpr const char* notTranslated = "!\"Buffer type enums are not all properly translated.\"";

constexpr auto types = internal::tokenMap<Buffer::Type>(
    __LINE__, notTranslated,
    {GL_PIXEL_UNPACK_BUFFER, GL_PIXEL_PACK_BUFFER, GL_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER});
constexpr auto bindings =
    internal::tokenMap<Buffer::Type>(__LINE__, notTranslated,
                                     {GL_PIXEL_UNPACK_BUFFER_BINDING, GL_PIXEL_PACK_BUFFER_BINDING,
                                      GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING});
constexpr auto usages = internal::tokenMap<Buffer::Usage>(
    __LINE__, notTranslated,
    {GL_STREAM_DRAW, GL_STREAM_READ, GL_STREAM_COPY, GL_STATIC_DRAW, GL_STATIC_READ, GL_STATIC_COPY,
     GL_DYNAMIC_DRAW, GL_DYNAMIC_READ, GL_DYNAMIC_COPY});

} // namespace

bool Buffer::isSupported() {
    const ExtensionManager* current = ExtensionManager::Instance();
    return current->isSupported(GL_ARB_PIXEL_BUFFER_OBJECT) &&
           current->isSupported(GL_ARB_VERTEX_BUFFER_OBJECT);
}

Buffer::Buffer(std::int64_t nSize, Type type, Usage usage, const void* data)
    : Object(GL_PIXEL_UNPACK_BUFFER, GL_PIXEL_UNPACK_BUFFER_BINDING), size_(nSize), usage_(usage) {
    ZLT_ASSERT(ExtensionManager::Instance()->isSupported(GL_ARB_PIXEL_BUFFER_OBJECT));
    ZLT_ASSERT(ExtensionManager::Instance()->isSupported(GL_ARB_VERTEX_BUFFER_OBJECT));
    ZLT_RANGE(nSize > 0);
    ZLT_GL(glGenBuffers)(1, &n_ObjectID);
    ZLT_ASSERT(n_ObjectID != 0);
    switch (type) {
    case Type::PIXEL_UNPACK_BUFFER:
        convertToUnpackBuffer();
        break;
    case Type::PIXEL_PACK_BUFFER:
        convertToPackBuffer();
        break;
    case Type::ARRAY_BUFFER:
        convertToArrayBuffer();
        break;
    case Type::ELEMENT_ARRAY_BUFFER:
        // Not the element array: existing clients convert it.
        changeTarget(GL_PIXEL_UNPACK_BUFFER, GL_PIXEL_UNPACK_BUFFER_BINDING);
        break;
    }
    const unsigned int previous = getBoundID();
    bind();
    ZLT_GL(glBufferData)(target(), static_cast<GLsizeiptr>(nSize), data, Usage2GL(usage));
    ZLT_GL(glBindBuffer)(target(), previous);
}

Buffer::~Buffer() noexcept(false) {
    internal::tearDown(exceptions_, [&] { ZLT_GL(glDeleteBuffers)(1, &n_ObjectID); });
}

void Buffer::bind() { ZLT_GL(glBindBuffer)(target(), objectID()); }

void Buffer::bindDefaultUnpackBuffer() { ZLT_GL(glBindBuffer)(GL_PIXEL_UNPACK_BUFFER, 0); }
void Buffer::bindDefaultPackBuffer() { ZLT_GL(glBindBuffer)(GL_PIXEL_PACK_BUFFER, 0); }
void Buffer::bindDefaultArrayBuffer() { ZLT_GL(glBindBuffer)(GL_ARRAY_BUFFER, 0); }
void Buffer::bindDefaultElementArrayBuffer() { ZLT_GL(glBindBuffer)(GL_ELEMENT_ARRAY_BUFFER, 0); }

bool Buffer::isUnpackBuffer() const { return target() == GL_PIXEL_UNPACK_BUFFER; }
bool Buffer::isPackBuffer() const { return target() == GL_PIXEL_PACK_BUFFER; }
bool Buffer::isArrayBuffer() const { return target() == GL_ARRAY_BUFFER; }
bool Buffer::isElementArrayBuffer() const { return target() == GL_ELEMENT_ARRAY_BUFFER; }

void Buffer::convertTo(Type type, const char* refusal) {
    if (isBound())
        ZLT_RAISE(refusal);
    changeTarget(types.toGL(type), bindings.toGL(type));
}

void Buffer::convertToUnpackBuffer() {
    convertTo(Type::PIXEL_UNPACK_BUFFER,
              "Buffer::convertToUnpackBuffer cannot convert buffer target while bound");
}
void Buffer::convertToPackBuffer() {
    convertTo(Type::PIXEL_PACK_BUFFER,
              "Buffer::convertToPackBuffer cannot convert buffer target while bound");
}
void Buffer::convertToArrayBuffer() {
    convertTo(Type::ARRAY_BUFFER, "Buffer::convertToArrayBuffer cannot convert buffer target while bound");
}
void Buffer::convertToElementArrayBuffer() {
    convertTo(Type::ELEMENT_ARRAY_BUFFER,
              "Buffer::convertToElementArrayBuffer cannot convert buffer target while bound");
}

void* Buffer::map(unsigned int access) {
    verifyCurrentBufferObject();
    if (isMapped_)
        ZLT_RAISE("Buffer is already mapped (this will cause a GL error)");
    void* memory = ZLT_GL(glMapBuffer)(target(), access);
    isMapped_ = true;
    return memory;
}

void Buffer::unmap() {
    verifyCurrentBufferObject();
    if (!isMapped_)
        ZLT_RAISE("Buffer must be mapped before umapping it (this will cause a GL error)");
    if (!ZLT_GL(glUnmapBuffer)(target()))
        ZLT_RAISE("Cannot unmap buffer");
    isMapped_ = false;
}

void Buffer::subData(std::int64_t offset, std::int64_t size, const void* data) {
    verifyCurrentBufferObject();
    if (isMapped_)
        ZLT_RAISE("Buffer::subData buffer cannot be mapped");
    if (!data)
        ZLT_RAISE("Buffer::subData pointer to data must not be NULL");
    if (offset < 0)
        ZLT_RAISE("Buffer::subData offset must not be negative");
    ZLT_GL(glBufferSubData)(target(), static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(size), data);
}

void Buffer::getSubData(std::int64_t offset, std::int64_t size, void* data) {
    verifyCurrentBufferObject();
    if (isMapped_)
        ZLT_RAISE("Buffer::getSubData buffer cannot be mapped");
    if (!data)
        ZLT_RAISE("Buffer::getSubData pointer to data must not be NULL");
    if (offset < 0)
        ZLT_RAISE("Buffer::getSubData offset must not be negative");
    ZLT_GL(glGetBufferSubData)(target(), static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(size), data);
}

unsigned int Buffer::Type2GL(Type type) { return types.toGL(type); }
unsigned int Buffer::Usage2GL(Usage usage) { return usages.toGL(usage); }
Buffer::Type Buffer::GL2Type(unsigned int token) { return types.fromGL(token); }
Buffer::Usage Buffer::GL2Usage(unsigned int token) { return usages.fromGL(token); }

} // namespace ZLT::OGL
