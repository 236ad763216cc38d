#pragma once

#include "Export.h"
#include "ogl/Object.h"

#include <cstdint>

namespace ZLT::OGL {

/// A GL buffer object of fixed size. It plays one role at a time: source of pixels (unpack), destination
/// of pixels (pack), vertex data or indices; convertToPackBuffer() and its siblings move it between roles.
///
/// map(), unmap(), subData() and getSubData() act on what is bound at target(), and don't bind: call
/// bind() first.
class ZLT_OGL_API Buffer : public Object {
public:
    /// The roles; enumerators are the GL tokens without their `GL_`.
    enum class Type : unsigned int {
        PIXEL_UNPACK_BUFFER = 0,
        PIXEL_PACK_BUFFER = 1,
        ARRAY_BUFFER = 2,
        ELEMENT_ARRAY_BUFFER = 3,
    };
    /// The hint for the driver about how the contents are used.
    enum class Usage : unsigned int {
        STREAM_DRAW = 0,
        STREAM_READ = 1,
        STREAM_COPY = 2,
        STATIC_DRAW = 3,
        STATIC_READ = 4,
        STATIC_COPY = 5,
        DYNAMIC_DRAW = 6,
        DYNAMIC_READ = 7,
        DYNAMIC_COPY = 8,
    };

    /// Whether the current context has buffers, for pixels as well.
    static bool isSupported();

    /// Makes the buffer and its storage; what was bound in its role is bound again afterwards.
    /// @param size  in bytes, at least 1
    /// @param type  the role. A buffer for indices begins as one for unpacking: call
    ///              convertToElementArrayBuffer(). So does a value outside the enumeration.
    /// @param data  `size` bytes to begin with, or null: undefined contents
    /// @throws InternalException "ExtensionManager::Instance()->isSupported(GL_ARB_PIXEL_BUFFER_OBJECT)"
    ///         or "...(GL_ARB_VERTEX_BUFFER_OBJECT)" without these, "Range error: nSize > 0", "n_ObjectID
    ///         != 0" when the driver gives no name. For a value outside Usage as Usage2GL(); the name is
    ///         lost and stays bound then.
    Buffer(std::int64_t size, Type type, Usage usage, const void* data);
    /// Deletes the GL buffer, mapped or not.
    ~Buffer() noexcept(false) override;

    /// In bytes.
    std::uint64_t size() const { return static_cast<std::uint64_t>(size_); }
    Usage usagePolicy() const { return usage_; }
    /// Whether this object has mapped it; what others do to the GL buffer isn't seen.
    bool isMapped() const { return isMapped_; }

    /// Binds it in the role that it has.
    void bind();
    /// @name Bind no buffer in a role
    /// @{
    static void bindDefaultUnpackBuffer();
    static void bindDefaultPackBuffer();
    static void bindDefaultArrayBuffer();
    static void bindDefaultElementArrayBuffer();
    /// @}

    /// @name Roles
    /// Converting binds nothing, and keeps the contents.
    /// @throws InternalException "Buffer::convertToUnpackBuffer cannot convert buffer target while bound",
    ///         and so on for the others, while it is bound in the role that it has (even if that is the one
    ///         wanted)
    /// @{
    bool isUnpackBuffer() const;
    bool isPackBuffer() const;
    bool isArrayBuffer() const;
    bool isElementArrayBuffer() const;
    void convertToUnpackBuffer();
    void convertToPackBuffer();
    void convertToArrayBuffer();
    void convertToElementArrayBuffer();
    /// @}

    /// Maps all of it into client memory, until unmap().
    /// @param access  `GL_READ_ONLY`, `GL_WRITE_ONLY` or `GL_READ_WRITE`
    /// @return the driver's pointer; null when it can't, and the buffer counts as mapped even then
    /// @throws InternalException "Buffer is already mapped (this will cause a GL error)"
    void* map(unsigned int access);
    /// @throws InternalException "Buffer must be mapped before umapping it (this will cause a GL error)",
    ///         or "Cannot unmap buffer" when the driver has lost the contents; it counts as mapped then
    void unmap();

    /// Writes `size` bytes at `offset`. GL reports a range past the end.
    /// @throws InternalException, in this order: "Buffer::subData buffer cannot be mapped",
    ///         "Buffer::subData pointer to data must not be NULL", "Buffer::subData offset must not be
    ///         negative"
    void subData(std::int64_t offset, std::int64_t size, const void* data);
    /// Reads `size` bytes at `offset`.
    /// @throws InternalException as subData(), with its own name
    void getSubData(std::int64_t offset, std::int64_t size, void* data);

    /// @name Translation
    /// @throws InternalException "!\"Buffer type enums are not all properly translated.\"", for a usage too
    /// @{
    static unsigned int Type2GL(Type type);
    static unsigned int Usage2GL(Usage usage);
    static Type GL2Type(unsigned int token);
    static Usage GL2Usage(unsigned int token);
    /// @}

    /// Does nothing: the place for a check that this buffer is bound.
    void verifyCurrentBufferObject() const {}

private:
    void convertTo(Type type, const char* refusal);

    std::int64_t size_;
    Usage usage_;
    bool isMapped_ = false;
};

} // namespace ZLT::OGL
