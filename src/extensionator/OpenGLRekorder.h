#pragma once

#include "extensionator/OpenGLInterceptorDecorator.h"

#include <iosfwd>

namespace ZLT::OGL {

/// A layer that records the calls as source text, to be compiled into a program that replays them:
///
///     glBindTexture(GL_TEXTURE_2D, 5);		// scene.cpp, line 41
///
/// Bulk data goes to a second, binary stream, from which the text reads it back. docs/recording-format.md
/// gives the whole format; examples/replay is a program around a recording. The text is the statements alone,
/// in call order, without a function around them.
///
/// A call is written before it is passed on, so a recording holds calls that fail, and nothing of what a
/// call returned: in later calls, names and locations are the numbers that they had. Of the 1,833 functions
/// 856 take no pointers and are recorded by their values, floats exactly and doubles with the digits that the
/// stream shows. 67 have a form of their own: 2D images of bytes and floats, float matrices, uniform
/// arrays, a few short vectors, names that are made, looked up and deleted, shader source, queries. Each of
/// the other 910 leaves a marker, `OpenGLRekorderUnsupported("...")`. Whatever was written, the call is
/// passed on to the driver. An image of another type or format leaves a line that does not compile;
/// docs/recording-format.md says what else is lost.
///
/// What the recorder reads of the caller's memory, without checking for null unless stated:
/// - `cgmTexImage2D` (null is allowed) and `cgmTexSubImage2D`: width * height pixels, tightly packed,
///   whatever the pixel store says; an offset into a bound unpack buffer is read as an address;
/// - `cgmDeleteTextures`, `cgmDeleteQueries`, `cgmDeleteFramebuffersEXT`, `cgmDrawBuffersARB`: 8 bytes for
///   each element, which is twice the array;
/// - `cgmTexParameterfv`: four floats, even for a parameter of one value;
/// - matrices: 16 values; uniform arrays: `count` elements; names and shader source: up to the zero byte,
///   or the given length.
///
/// Counts below zero, which GL refuses with an error, are not caught: of a uniform array or an image a huge
/// number of bytes is read. In a deletion, in `cgmDrawBuffersARB` and as the length of a shader's string
/// (where GL takes -1 for a string with a zero byte) they put a length without payload on the binary stream,
/// and set its `badbit`, so that later records are lost.
///
/// The recorder takes no lock and counts its bytes, in 32 bits: one thread at a time may record, and
/// positions wrap at 4 GiB. It neither tests nor flushes the streams. An exception of a stream that is set to
/// throw leaves the entry, and the call is not made.
class ZLT_OGL_API OpenGLRekorder : public OpenGLInterceptorDecorator {
public:
    /// Writes nothing yet.
    /// @param text          gets the statements; not owned
    /// @param data          gets the records; not owned. A binary stream at its beginning, which nobody else
    ///                      may write to: the text holds positions in it
    /// @param next          the next layer; addInterceptor() replaces it. No call may pass while it is null
    /// @param lineComments  whether each statement shows the caller's file and line
    OpenGLRekorder(std::ostream& text, std::ostream& data, OpenGLInterceptor* next, bool lineComments);
    /// Neither flushes nor closes the streams.
    ~OpenGLRekorder() override;

    /// The stream of statements.
    std::ostream* outputStream();
    const std::ostream* outputStream() const;
    /// Writes statements to `out` from the next call on.
    void setOutputStream(std::ostream& out);

    /// The stream of records.
    std::ostream* binaryOutputStream();
    const std::ostream* binaryOutputStream() const;
    /// Writes records to `out` from the next call on. Positions continue from where they were.
    void setBinaryOutputStream(std::ostream& out);

#include "extensionator/LayerEntries.inl"

private:
    // Each puts one record on the binary stream, the length with 4 or 8 bytes in front, and returns its
    // position.
    unsigned int writeRecord(const void* payload, unsigned int size);
    unsigned int writeWideRecord(const void* payload, long long size);

    std::ostream* outputStream_;
    std::ostream* binaryOutputStream_;
    // Bytes put on the binary stream, the only source of the positions in the text. Wraps at 2^32.
    unsigned int binaryOffset_;
    bool lineComments_;
};

} // namespace ZLT::OGL
