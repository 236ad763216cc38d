#include "intercept/checks/ArrayCalls.h"

#include "extensionator/OpenGLCall.h"
#include "extensionator/OpenGLEntry.h"
#include "intercept/ErrorReports.h"

#include <algorithm>

namespace ZLT::Interception {

namespace {

using Capture::ArrayKind;
using Capture::ClientArray;
using Entry = OGL::OpenGLEntry::Number;

// The places of the arguments; -1 where an array has none of it.
struct PointerRow {
    unsigned int entry;
    ArrayKind kind;
    int size, type, stride, pointer;
};
constexpr PointerRow pointerRows[] = {
    {Entry::VertexPointer, ArrayKind::Vertex, 0, 1, 2, 3},
    {Entry::NormalPointer, ArrayKind::Normal, -1, 0, 1, 2},
    {Entry::ColorPointer, ArrayKind::Color, 0, 1, 2, 3},
    {Entry::SecondaryColorPointer, ArrayKind::SecondaryColor, 0, 1, 2, 3},
    {Entry::FogCoordPointer, ArrayKind::FogCoord, -1, 0, 1, 2},
    {Entry::IndexPointer, ArrayKind::Index, -1, 0, 1, 2},
    {Entry::EdgeFlagPointer, ArrayKind::EdgeFlag, -1, -1, 0, 1},
    {Entry::TexCoordPointer, ArrayKind::TexCoord, 0, 1, 2, 3},
    {Entry::VertexAttribPointer, ArrayKind::Attribute, 1, 2, 4, 5},
    {Entry::VertexAttribPointerARB, ArrayKind::Attribute, 1, 2, 4, 5},
};

struct StateRow {
    unsigned int state;
    ArrayKind kind;
};
constexpr StateRow stateRows[] = {
    {GL_VERTEX_ARRAY, ArrayKind::Vertex},      {GL_NORMAL_ARRAY, ArrayKind::Normal},
    {GL_COLOR_ARRAY, ArrayKind::Color},        {GL_SECONDARY_COLOR_ARRAY, ArrayKind::SecondaryColor},
    {GL_FOG_COORD_ARRAY, ArrayKind::FogCoord}, {GL_INDEX_ARRAY, ArrayKind::Index},
    {GL_EDGE_FLAG_ARRAY, ArrayKind::EdgeFlag}, {GL_TEXTURE_COORD_ARRAY, ArrayKind::TexCoord}};

std::uint32_t clientUnit(const CheckedContext& context) {
    return context.asked.textureUnits > 1
               ? static_cast<std::uint32_t>(context.integer(GL_CLIENT_ACTIVE_TEXTURE) - GL_TEXTURE0)
               : 0;
}

auto findArray(std::vector<ClientArray>& arrays, ArrayKind kind, std::uint32_t index) {
    return std::ranges::find_if(
        arrays, [=](const ClientArray& array) { return array.kind == kind && array.index == index; });
}

void setPointer(CheckedContext& context, const PointerRow& row, const OGL::CallValue* values) {
    const std::uint32_t index = row.kind == ArrayKind::TexCoord ? clientUnit(context)
                                : row.kind == ArrayKind::Attribute
                                    ? static_cast<std::uint32_t>(values[0].bits)
                                    : 0;
    for (std::vector<ClientArray>* const arrays : {&context.asked.enabled, &context.switchedOff}) {
        const auto array = findArray(*arrays, row.kind, index);
        if (array == arrays->end())
            continue;
        if (row.size >= 0)
            array->size = static_cast<std::int32_t>(values[row.size].bits);
        if (row.type >= 0)
            array->type = static_cast<std::uint32_t>(values[row.type].bits);
        array->stride = static_cast<std::int32_t>(values[row.stride].bits);
        array->pointer = reinterpret_cast<const char*>(static_cast<std::uintptr_t>(values[row.pointer].bits));
        array->buffer = context.asked.hasBuffers
                            ? static_cast<std::uint32_t>(context.integer(GL_ARRAY_BUFFER_BINDING))
                            : 0;
    }
}

// @return whether that array is known
bool turn(CheckedContext& context, ArrayKind kind, std::uint32_t index, bool isOn) {
    std::vector<ClientArray>& from = isOn ? context.switchedOff : context.asked.enabled;
    std::vector<ClientArray>& to = isOn ? context.asked.enabled : context.switchedOff;
    const auto array = findArray(from, kind, index);
    if (array == from.end())
        return !isOn || findArray(to, kind, index) != to.end();
    to.push_back(*array);
    from.erase(array);
    return true;
}

} // namespace

bool noticeArrays(CheckedContext& context, const OGL::OpenGLCall& call) {
    if (!context.asked.areArraysKnown || context.unknown & changesArrays || !mayAskDriver())
        return false;
    const OGL::CallValue* const values = call.values();
    const auto* const row = std::ranges::find(pointerRows, call.number(), &PointerRow::entry);
    if (row != std::end(pointerRows)) {
        setPointer(context, *row, values);
        return true;
    }
    const auto value = static_cast<std::uint32_t>(values ? values[0].bits : 0);
    const unsigned int entry = call.number();
    if (entry == Entry::EnableVertexAttribArray || entry == Entry::EnableVertexAttribArrayARB)
        return turn(context, ArrayKind::Attribute, value, true);
    if (entry == Entry::DisableVertexAttribArray || entry == Entry::DisableVertexAttribArrayARB)
        return turn(context, ArrayKind::Attribute, value, false);
    if (entry != Entry::EnableClientState && entry != Entry::DisableClientState)
        return false;
    const auto* const state = std::ranges::find(stateRows, value, &StateRow::state);
    return state != std::end(stateRows) &&
           turn(context, state->kind, state->kind == ArrayKind::TexCoord ? clientUnit(context) : 0,
                entry == Entry::EnableClientState);
}

} // namespace ZLT::Interception
