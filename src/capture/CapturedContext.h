#pragma once

#include "capture/DriverFunctions.h"
#include "capture/Records.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

/// @file
/// What a capture knows of one context: what it has asked, and what can't be asked at the time.

namespace ZLT::Capture {

/// One array that a draw reads from the client's memory.
struct ClientArray {
    ArrayKind kind;
    std::uint32_t index = 0; ///< texture unit, attribute
    std::int32_t size = 0;   ///< components
    std::uint32_t type = 0;
    std::int32_t stride = 0; ///< as GL has it: 0 for tightly packed
    std::uint32_t flags = 0; ///< of ArrayFlag
    std::uint32_t divisor = 0;
    std::uint32_t buffer = 0; ///< where it lies, and the pointer is an offset; 0 for the client's memory
    const char* pointer = nullptr;

    std::size_t elementSize() const;
    std::size_t step() const { return stride != 0 ? static_cast<std::size_t>(stride) : elementSize(); }
};

/// Memory that the program gave to the driver, to be written later.
struct LentMemory {
    const void* address = nullptr;
    std::size_t size = 0;
};

class CapturedContext {
public:
    /// Asks the driver. The context is current.
    void learn();

    bool has(const char* extension) const;
    bool isVersion(int major, int minor) const { return version >= 10 * major + minor; }
    /// The driver may be asked: a context is current, and it is not between glBegin and glEnd.
    bool mayAsk() const { return isKnown && !isInside; }
    int integer(unsigned int name) const;

    std::uint32_t number = 0; ///< from 1; 0 stands for none
    bool isKnown = false;
    DriverFunctions functions;
    int version = 0; ///< 21 for 2.1
    bool isCore = false;
    bool hasBuffers = false;      ///< vertex buffer objects
    bool hasPixelBuffers = false; ///< pixel buffer objects
    bool hasVolumes = false;      ///< 3D images, with their pixel store parameters
    bool hasFramebuffers = false;
    bool hasOneBuffer = false; ///< it draws to the front
    bool isSwapped = false;    ///< its frames end with swaps all the same
    int textureUnits = 1;
    int attributes = 0;

    bool isInside = false;    ///< between glBegin and glEnd
    bool isCompiling = false; ///< a display list is open
    bool areArraysKnown = false;
    std::vector<ClientArray> arrays; ///< those that are enabled, and in the client's memory
    bool hasBufferArrays = false;    ///< others are enabled, and in buffers
    /// Whether `enabled` is wanted as well: all that are enabled, also in buffers and with null pointers.
    bool listsEnabled = false;
    std::vector<ClientArray> enabled;
    LentMemory feedback, selection;
    unsigned int mode = 0;                                    ///< GL_RENDER, GL_FEEDBACK, GL_SELECT
    std::unordered_map<std::uint32_t, std::uint32_t> symbols; ///< of EXT_vertex_shader, with their data types

    std::unordered_map<std::uint32_t, const void*> mappedObjects; ///< of ATI_vertex_array_object

    /// Asks which arrays are enabled, if that is not known.
    void learnArrays();
    /// The buffer that indices come from; 0 for the client's memory.
    unsigned int elementBuffer() const;

private:
    void add(const ClientArray& array);
    void addFixedArrays();
    void addAttributes();
    std::string extensions_;
};

/// Bytes of a value of the type, GL_FLOAT for example; 0 for what is no type.
std::size_t sizeOfType(unsigned int type);

} // namespace ZLT::Capture
