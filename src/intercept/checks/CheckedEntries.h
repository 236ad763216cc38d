#pragma once

#include <cstdint>

/// @file
/// What the checks have to know of each entry, from its name and the tables.

namespace ZLT::Interception {

/// What a call changes of what the checks have learned. A call that nothing is known of changes all.
enum Change : std::uint8_t {
    changesArrays = 1,       ///< which arrays there are
    changesBuffers = 2,      ///< what is in buffers, and their sizes
    changesUnits = 4,        ///< what is enabled in texture units, and which is active
    changesBindings = 8,     ///< which textures are bound
    changesTextures = 16,    ///< images and parameters of textures
    changesProgram = 32,     ///< the program, and the units of its samplers
    changesFramebuffer = 64, ///< the framebuffer and what is attached to it
    changesAll = 127,
};

/// How a call draws.
enum class DrawForm : std::uint8_t {
    None,
    Arrays,       ///< vertices one after the other
    Elements,     ///< by indices
    ManyArrays,   ///< several at once
    ManyElements, ///< the same by indices
    ArrayElement, ///< one vertex
    Immediate,    ///< glBegin
    Pixels,       ///< no vertices of arrays, and no textures: glClear
    Rectangle,    ///< no vertices of arrays: glRectf, glDrawPixels
};

/// Which arguments a draw is made of, by their places; -1 for none.
struct DrawArguments {
    DrawForm form = DrawForm::None;
    std::int8_t first = -1, count = -1, type = -1, indices = -1, instances = -1, start = -1;
};

struct EntryFacts {
    std::uint8_t changes = 0; ///< of Change
    bool isToggle = false;    ///< glEnable, glDisable, glActiveTexture: the argument says what changes
    bool readsMemory = false; ///< see ReadPointers
    bool namesObjects = false;
    DrawArguments draw;

    bool matter() const {
        return changes != 0 || isToggle || readsMemory || namesObjects || draw.form != DrawForm::None;
    }
};

/// Of the entry with this number.
const EntryFacts& factsOf(unsigned int entry);

/// What a call of the function changes, by its name without `gl`.
std::uint8_t changesOf(const char* name);

} // namespace ZLT::Interception
