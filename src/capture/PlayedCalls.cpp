// What a played call means beside itself.

#include "capture/CapturePlay.h"
#include "capture/PlayedEntries.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace ZLT::Capture {

using namespace Playing;

unsigned int CapturePlay::bufferNow(unsigned int buffer) {
    const auto surface = surfaces.find(context().draw);
    if (surface == surfaces.end() || !surface->second.shape.isDoubleBuffered ||
        !system.hasOneBuffer(surface->second.handle))
        return buffer;
    switch (buffer) {
    case GL_BACK:
        return GL_FRONT;
    case GL_BACK_LEFT:
        return GL_FRONT_LEFT;
    case GL_BACK_RIGHT:
        return GL_FRONT_RIGHT;
    default:
        return buffer;
    }
}

Surface* CapturePlay::surfaceToAccumulate() {
    const Context& now = context();
    const auto surface = surfaces.find(now.draw);
    if (now.hasAccumulation || surface == surfaces.end() || surface->second.shape.accumulation == 0)
        return nullptr;
    return &surface->second;
}

bool CapturePlay::isReplaced(std::uint32_t entry) {
    Surface* const surface =
        entry == Entry::Accum || (entry == Entry::Clear && (arguments[0] & GL_ACCUM_BUFFER_BIT))
            ? surfaceToAccumulate()
            : nullptr;
    if (!surface)
        return false;
    const SurfaceShape& shape = surface->shape;
    // Mesa accumulates linear values of surfaces that can be sRGB, whether they are or not.
    surface->accumulation.setSrgb(shape.isSrgb && context().driver.find("Mesa") != std::string::npos);
    if (entry == Entry::Accum) {
        surface->accumulation.accumulate(context().facts, shape.width, shape.height, call.u32(0),
                                         call.values[1].asFloat());
        return true;
    }
    surface->accumulation.clear(context().facts, shape.width, shape.height);
    arguments[0] &= ~std::uint64_t(GL_ACCUM_BUFFER_BIT);
    return false;
}

void CapturePlay::begin(std::uint32_t entry) {
    switch (entry) {
    case Entry::DrawBuffer:
    case Entry::ReadBuffer:
        arguments[0] = bufferNow(static_cast<unsigned int>(arguments[0]));
        break;
    case Entry::DrawBuffers:
    case Entry::DrawBuffersARB:
    case Entry::DrawBuffersATI:
        if (call.values[1].isMemory()) {
            char* const buffers = scratchOf(call.values[1].bytes.size());
            for (std::size_t i = 0; i + 4 <= call.values[1].bytes.size(); i += 4) {
                const unsigned int buffer = bufferNow(wordAt(call.values[1].bytes, i));
                std::memcpy(buffers + i, &buffer, sizeof buffer);
            }
            arguments[1] = addressOf(buffers);
        }
        break;
    case Entry::LinkProgram:
    case Entry::LinkProgramARB:
        if (linked)
            placeAttributes();
        break;
    case Entry::GetShaderSource:
    case Entry::GetShaderSourceARB:
    case Entry::GetProgramInfoLog:
    case Entry::GetShaderInfoLog:
    case Entry::GetInfoLogARB:
        // As much as there is room for.
        arguments[1] = std::min<std::uint64_t>(arguments[1], 1 << 20);
        break;
    default:
        break;
    }
}

void CapturePlay::placeAttributes() {
    const auto program = static_cast<unsigned int>(arguments[0]);
    const bool isObject = call.function->name.ends_with("ARB");
    linked->each([&](bool isUniform, std::int64_t location, const std::string& name) {
        if (isUniform)
            return;
        if (isObject)
            gl.cgmBindAttribLocationARB(here, 0, program, static_cast<unsigned int>(location), name.c_str());
        else
            gl.cgmBindAttribLocation(here, 0, program, static_cast<unsigned int>(location), name.c_str());
    });
}

void CapturePlay::learnUniforms() {
    const auto program = static_cast<unsigned int>(arguments[0]);
    const bool isObject = call.function->name.ends_with("ARB");
    auto& locations = context().group->locations[linked->program];
    locations.clear();
    linked->each([&](bool isUniform, std::int64_t location, const std::string& name) {
        if (!isUniform)
            return;
        const int now = isObject ? gl.cgmGetUniformLocationARB(here, 0, program, name.c_str())
                                 : gl.cgmGetUniformLocation(here, 0, program, name.c_str());
        if (now >= 0)
            locations[location] = now;
    });
    linked.reset();
}

void CapturePlay::keepListNames(std::uint64_t result) {
    const std::uint64_t captured = call.result.bits;
    const std::int32_t range = call.i32(0);
    if (captured == 0 || captured == result || range <= 0)
        return;
    gl.cgmDeleteLists(here, 0, static_cast<unsigned int>(result), range);
    if (context().facts.isCompiling)
        return;
    for (std::int32_t i = 0; i < std::min(range, 1 << 14); ++i) {
        gl.cgmNewList(here, 0, static_cast<unsigned int>(captured) + static_cast<unsigned int>(i),
                      GL_COMPILE);
        gl.cgmEndList(here, 0);
    }
}

std::uint64_t CapturePlay::mapSize(std::uint32_t entry) {
    const auto first = static_cast<unsigned int>(arguments[0]);
    if (entry == Entry::MapBufferRange)
        return arguments[2];
    int size = 0;
    if (entry == Entry::MapNamedBufferEXT)
        gl.cgmGetNamedBufferParameterivEXT(here, 0, first, GL_BUFFER_SIZE, &size);
    else if (entry == Entry::MapObjectBufferATI)
        gl.cgmGetObjectBufferivATI(here, 0, first, GL_OBJECT_BUFFER_SIZE_ATI, &size);
    else
        gl.cgmGetBufferParameteriv(here, 0, first, GL_BUFFER_SIZE, &size);
    return static_cast<std::uint64_t>(size);
}

void CapturePlay::finish(std::uint32_t entry, std::uint64_t result) {
    Context& now = context();
    switch (entry) {
    case Entry::Begin:
        now.facts.isInside = true;
        break;
    case Entry::End:
        now.facts.isInside = false;
        break;
    case Entry::NewList:
        now.facts.isCompiling = true;
        break;
    case Entry::EndList:
        now.facts.isCompiling = false;
        break;
    case Entry::CallList:
    case Entry::CallLists:
        now.isProgramKnown = false;
        break;
    case Entry::UseProgram:
    case Entry::UseProgramObjectARB:
        now.program = call.values[0].bits;
        now.isProgramKnown = true;
        break;
    case Entry::LinkProgram:
    case Entry::LinkProgramARB:
        if (linked)
            learnUniforms();
        break;
    case Entry::MapBuffer:
    case Entry::MapBufferARB:
    case Entry::MapBufferRange:
    case Entry::MapNamedBufferEXT:
    case Entry::MapObjectBufferATI:
        now.maps[call.result.bits] = {reinterpret_cast<char*>(result), // NOLINT(performance-no-int-to-ptr)
                                      mapSize(entry)};
        break;
    case Entry::GenLists:
        keepListNames(result);
        break;
    default:
        break;
    }
}

void CapturePlay::learnNames(std::uint64_t result) {
    const Function& function = *call.function;
    if (&context() == &none)
        return;
    if (const ObjectKind kind = kindOf(function.result.object);
        kind != ObjectKind::None && kind != ObjectKind::List && kind != ObjectKind::UniformLocation &&
        call.result.bits != 0 && result != 0) {
        const bool isRange = kind == ObjectKind::FragmentShader || kind == ObjectKind::VertexShader ||
                             kind == ObjectKind::AsyncMarker || kind == ObjectKind::Symbol;
        const std::uint64_t range = isRange && !call.values.empty()
                                        ? std::clamp<std::uint64_t>(call.values.back().bits, 1, 1 << 16)
                                        : 1;
        for (std::uint64_t i = 0; i < range; ++i)
            tableOf(kind).set(kind, call.result.bits + i, result + i);
    }
    for (const Written& one : written) {
        const ObjectKind kind = kindOf(function.parameters[one.parameter].object);
        const CapturedValue& value = call.values[one.parameter];
        if (kind == ObjectKind::None)
            continue;
        for (std::size_t i = 0; i + 4 <= value.bytes.size(); i += 4)
            if (const std::uint32_t captured = wordAt(value.bytes, i))
                tableOf(kind).set(kind, captured, wordAt({one.memory.get(), i + 4}, i));
    }
    if (function.name.find("Delete") == std::string::npos)
        return;
    for (std::size_t i = 0; i < function.parameters.size(); ++i)
        if (const ObjectKind kind = kindOf(function.parameters[i].object); kind != ObjectKind::None)
            forgetNames(i, kind);
}

void CapturePlay::compareWritten() {
    for (const Written& one : written) {
        const Parameter& parameter = call.function->parameters[one.parameter];
        const CapturedValue& value = call.values[one.parameter];
        if (!isReadBack(*call.function, parameter) || value.bytes.empty())
            continue;
        ++compared;
        const char* const now = one.memory.get() + value.skipped;
        bool isWritten = false;
        std::size_t differing = value.bytes.size();
        for (std::size_t i = 0; i < value.bytes.size(); ++i) {
            // Bytes between the rows stay as they were.
            const bool isUntouched = now[i] == static_cast<char>(~value.bytes[i]);
            isWritten = isWritten || !isUntouched;
            if (!isUntouched && now[i] != value.bytes[i])
                differing = std::min(differing, i);
        }
        if (!isWritten)
            listener.differs(call, "what was read back, of which nothing came now,");
        else if (differing < value.bytes.size())
            listener.differs(call, "byte " + std::to_string(differing) + " of what was read back");
    }
}

void CapturePlay::playCall() {
    const std::uint32_t entry = call.function->number - firstEntry;
    PlayEntry* const play = playerOf(entry);
    if (!play)
        return;
    ++calls;
    prepare();
    begin(entry);
    std::uint64_t result = 0;
    const std::string& site = file.siteOf(call);
    if (!arrays.empty() && (entry == Entry::ArrayElement || entry == Entry::ArrayElementEXT)) {
        playElement(gl, arrays);
    } else if (!isReplaced(entry)) {
        const ArraysForDraw forDraw(gl, context().facts, arrays);
        if (options.follows) {
            const auto start = std::chrono::steady_clock::now();
            play(gl, site.c_str(), 0, arguments.data(), result);
            callTime = static_cast<std::uint64_t>((std::chrono::steady_clock::now() - start).count());
        } else {
            play(gl, site.c_str(), 0, arguments.data(), result);
        }
    }
    arrays.clear();
    learnNames(result);
    finish(entry, result);
    if (options.verifies)
        compareWritten();
}

} // namespace ZLT::Capture
