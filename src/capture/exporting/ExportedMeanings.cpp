// What calls mean beside themselves, in an exported project.

#include "capture/exporting/ExportedState.h"
#include "extensionator/OpenGLEntry.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace ZLT::Capture {

using namespace Exporting;
namespace Entry = OGL::OpenGLEntry;

namespace {

std::string text(std::int64_t value) { return std::to_string(value); }

// Asked at every call, and so answered once for each function.
bool changesArrays(const Function& function) {
    static const std::vector<bool> known = [] {
        std::vector<bool> all(firstEntry);
        while (const Function* const one = functionOf(static_cast<std::uint32_t>(all.size()))) {
            bool changes = false;
            for (const char* const part :
                 {"Pointer", "InterleavedArrays", "ClientAttrib", "VertexArray", "ArrayObject"})
                changes =
                    changes || (one->name.find(part) != std::string::npos && !one->name.starts_with("glGet"));
            all.push_back(changes);
        }
        return all;
    }();
    return function.number < known.size() && known[function.number];
}

} // namespace

bool ProjectExport::isReplaced() {
    const std::uint32_t entry = call.function->number - firstEntry;
    if (entry == Entry::GenLists && call.result.bits != 0 && call.i32(0) > 0) {
        line += "    make_lists(list(" + std::to_string(call.result.bits) + "), " + text(call.i32(0)) + ')';
        endStatement();
        return true;
    }
    if ((entry == Entry::ArrayElement || entry == Entry::ArrayElementEXT) && !arrays.empty()) {
        addElement();
        return true;
    }
    return false;
}

void ProjectExport::addElement() {
    // Between glBegin and glEnd no array can be pointed anywhere.
    for (const ElementCall& one : elementCalls(arrays)) {
        line += "    " + nameOfFunction(one.function->name) + '(';
        if (one.index) {
            if (one.function->parameters[0].form == 'e')
                constants.append(line, *one.index);
            else
                appendNumber(line, std::uint64_t(*one.index));
            line += ", ";
        }
        const Parameter& last = one.function->parameters.back();
        if (last.form == 'p')
            appendList(last.element, one.bytes);
        else
            line += one.bytes[0] != 0 ? '1' : '0';
        line += ')';
        endStatement();
    }
}

void ProjectExport::begin() {
    const std::uint32_t entry = call.function->number - firstEntry;
    Context& now = context();
    if (entry == Entry::Begin)
        now.isInside = call.u32(0) <= GL_TRIANGLE_STRIP_ADJACENCY || call.u32(0) == GL_PATCHES;
    if ((entry == Entry::LinkProgram || entry == Entry::LinkProgramARB) && linked)
        placeAttributes();
    if (!arrays.empty() && entry != Entry::ArrayElement && entry != Entry::ArrayElementEXT)
        pointArrays();
    switch (entry) {
    case Entry::GetShaderSource:
    case Entry::GetShaderSourceARB:
    case Entry::GetProgramInfoLog:
    case Entry::GetShaderInfoLog:
    case Entry::GetInfoLogARB:
        // As much as there is room for.
        call.values[1].bits = std::min<std::uint64_t>(call.values[1].bits, 1 << 20);
        break;
    case Entry::MapBuffer:
    case Entry::MapBufferARB:
    case Entry::MapBufferRange:
    case Entry::MapNamedBufferEXT:
    case Entry::MapObjectBufferATI:
        maps[call.result.bits] = ++mapCount;
        assignment = use({}, "mapped") + '[' + std::to_string(mapCount) + "] = ";
        break;
    default:
        break;
    }
}

void ProjectExport::pointArrays() {
    Context& now = context();
    std::string pointers;
    std::uint32_t unit = now.client.textureUnit;
    std::size_t count = 0;
    const auto activate = [&](std::uint32_t wanted) {
        if (unit == wanted)
            return;
        const std::string saved = std::exchange(line, {});
        constants.append(line, GL_TEXTURE0 + wanted);
        pointers +=
            "    " + nameOfFunction("glClientActiveTexture") + '(' + std::exchange(line, saved) + ");\n";
        unit = wanted;
        ++count;
    };
    for (const PlayedArray& array : arrays) {
        ClientArray shape;
        shape.size = array.size;
        shape.type = array.type;
        shape.stride = array.stride;
        const std::string saved = std::exchange(line, {});
        const auto write = [&](const char* function, bool hasSize, const std::string& first = "",
                               const char* middle = "") {
            line += "    " + nameOfFunction(function) + '(' + first;
            if (hasSize)
                line += text(array.size) + ", ";
            constants.append(line, array.type);
            line += std::string(", ") + middle + text(array.stride) + ", ";
        };
        switch (array.kind) {
        case ArrayKind::Vertex:
            write("glVertexPointer", true);
            break;
        case ArrayKind::Normal:
            write("glNormalPointer", false);
            break;
        case ArrayKind::Color:
            write("glColorPointer", true);
            break;
        case ArrayKind::SecondaryColor:
            write("glSecondaryColorPointer", true);
            break;
        case ArrayKind::FogCoord:
            write("glFogCoordPointer", false);
            break;
        case ArrayKind::Index:
            write("glIndexPointer", false);
            break;
        case ArrayKind::EdgeFlag:
            line += "    " + nameOfFunction("glEdgeFlagPointer") + '(' + text(array.stride) + ", ";
            break;
        case ArrayKind::TexCoord:
            write("glTexCoordPointer", true);
            break;
        case ArrayKind::Attribute:
            if (array.flags & arrayIsInteger)
                write("glVertexAttribIPointer", true, std::to_string(array.index) + ", ");
            else
                write("glVertexAttribPointer", true, std::to_string(array.index) + ", ",
                      array.flags & arrayIsNormalized ? "GL_TRUE, " : "GL_FALSE, ");
            constants.use("GL_TRUE", 1);
            constants.use("GL_FALSE", 0);
            break;
        case ArrayKind::Weight:
            write("glWeightPointerARB", true);
            break;
        case ArrayKind::MatrixIndex:
            write("glMatrixIndexPointerARB", true);
            break;
        case ArrayKind::Tangent:
            write("glTangentPointerEXT", false);
            break;
        case ArrayKind::Binormal:
            write("glBinormalPointerEXT", false);
            break;
        case ArrayKind::VertexWeight:
            write("glVertexWeightPointerEXT", true);
            break;
        case ArrayKind::Element:
            line += "    " + nameOfFunction("glElementPointerATI") + '(';
            constants.append(line, array.type);
            line += ", ";
            break;
        default:
            line = saved;
            continue;
        }
        // As if the elements in front were there too: nothing of them is read.
        appendData(array.bytes, array.first * shape.step());
        line += ");\n";
        std::string pointer = std::exchange(line, saved);
        // What points there already is left as it is.
        std::string& known = now.arrays[(std::uint64_t(array.kind) << 32) | array.index];
        if (known != pointer) {
            if (array.kind == ArrayKind::TexCoord)
                activate(array.index);
            pointers += pointer;
            known = std::move(pointer);
            ++count;
        }
    }
    if (count == 0)
        return;
    activate(now.client.textureUnit);
    if (now.client.arrayBuffer != 0) {
        // An array of the program's own, while a buffer is bound.
        const std::string saved = std::exchange(line, {});
        appendName(ObjectKind::Buffer, now.client.arrayBuffer, "buffer");
        const std::string buffer = std::exchange(line, saved);
        constants.use("GL_ARRAY_BUFFER", GL_ARRAY_BUFFER);
        pointers = "    " + nameOfFunction("glBindBuffer") + "(GL_ARRAY_BUFFER, 0);\n" + pointers +
                   "    glBindBuffer(GL_ARRAY_BUFFER, " + buffer + ");\n";
        count += 2;
    }
    line += pointers;
    statements += count;
}

void ProjectExport::placeAttributes() {
    // The linker is to put the attributes where it had put them.
    const bool isObject = call.function->name.ends_with("ARB");
    linked->each([&](bool isUniform, std::int64_t location, const std::string& name) {
        if (isUniform)
            return;
        line += "    " + nameOfFunction(isObject ? "glBindAttribLocationARB" : "glBindAttribLocation") + '(';
        appendName(ObjectKind::Program, call.values[0].bits, "program");
        line += ", " + text(location) + ", ";
        appendText(line, name);
        line += ");\n";
        ++statements;
    });
}

void ProjectExport::learnUniforms() {
    auto& locations = context().group->locations[linked->program];
    locations.clear();
    linked->each([&](bool isUniform, std::int64_t location, const std::string& name) {
        if (isUniform)
            locations[location] = name;
    });
    linked.reset();
}

void ProjectExport::followClientState() {
    Context& now = context();
    const std::uint32_t entry = call.function->number - firstEntry;
    const auto takesArrays = [](std::uint64_t mask) { return (mask & GL_CLIENT_VERTEX_ARRAY_BIT) != 0; };
    const auto setDefault = [&](std::uint64_t mask) {
        if (takesArrays(mask))
            now.client.arrayBuffer = now.client.textureUnit = 0;
        if (mask & GL_CLIENT_PIXEL_STORE_BIT)
            now.client.unpacking.clear();
    };
    switch (entry) {
    case Entry::BindBuffer:
    case Entry::BindBufferARB:
        if (call.u32(0) == GL_ARRAY_BUFFER)
            now.client.arrayBuffer = call.values[1].bits;
        break;
    case Entry::DeleteBuffers:
    case Entry::DeleteBuffersARB:
        for (std::size_t at = 0; at + 4 <= call.values[1].bytes.size(); at += 4) {
            std::uint32_t name;
            std::memcpy(&name, call.values[1].bytes.data() + at, sizeof name);
            if (name == now.client.arrayBuffer)
                now.client.arrayBuffer = 0;
        }
        break;
    case Entry::ClientActiveTexture:
    case Entry::ClientActiveTextureARB:
        now.client.textureUnit = call.u32(0) - GL_TEXTURE0;
        break;
    case Entry::PixelStorei:
    case Entry::PixelStoref:
        now.client.unpacking[call.u32(0)] =
            entry == Entry::PixelStorei ? call.i32(1) : static_cast<std::int32_t>(call.values[1].asFloat());
        break;
    case Entry::PushClientAttrib:
    case Entry::PushClientAttribDefaultEXT:
        now.clientStack.emplace_back(call.u32(0), now.client);
        if (entry == Entry::PushClientAttribDefaultEXT)
            setDefault(call.values[0].bits);
        break;
    case Entry::ClientAttribDefaultEXT:
        setDefault(call.values[0].bits);
        break;
    case Entry::PopClientAttrib:
        if (!now.clientStack.empty()) {
            const auto& [mask, kept] = now.clientStack.back();
            if (takesArrays(mask)) {
                now.client.arrayBuffer = kept.arrayBuffer;
                now.client.textureUnit = kept.textureUnit;
            }
            if (mask & GL_CLIENT_PIXEL_STORE_BIT)
                now.client.unpacking = kept.unpacking;
            now.clientStack.pop_back();
        }
        break;
    case Entry::PushAttrib:
        if (now.list == 0 || now.isListExecuted)
            now.attributeMasks.push_back(call.u32(0));
        break;
    case Entry::PopAttrib:
        if ((now.list == 0 || now.isListExecuted) && !now.attributeMasks.empty())
            now.attributeMasks.pop_back();
        break;
    default:
        break;
    }
    if (changesArrays(*call.function)) // how they point may be another then
        now.arrays.clear();
}

void ProjectExport::followCall() {
    const std::uint32_t entry = call.function->number - firstEntry;
    Context& now = context();
    const auto usesProgram = [&](std::uint64_t program) {
        if (now.list != 0)
            now.group->lists[now.list].program = program;
        if (now.list == 0 || now.isListExecuted)
            now.program = program;
    };
    switch (entry) {
    case Entry::End:
        now.isInside = false;
        break;
    case Entry::DeleteSync:
        syncs.erase(call.values[0].bits);
        break;
    case Entry::NewList:
        now.list = call.values[0].bits;
        now.isListExecuted = call.u32(1) == GL_COMPILE_AND_EXECUTE;
        now.group->lists[now.list] = {};
        break;
    case Entry::EndList:
        now.list = 0;
        break;
    case Entry::CallList:
        if (const auto its = now.group->lists.find(call.values[0].bits);
            its != now.group->lists.end() && its->second.program)
            usesProgram(*its->second.program);
        break;
    case Entry::UseProgram:
    case Entry::UseProgramObjectARB:
        usesProgram(call.values[0].bits);
        break;
    case Entry::LinkProgram:
    case Entry::LinkProgramARB:
        if (linked)
            learnUniforms();
        break;
    default:
        break;
    }
    followClientState();
}

} // namespace ZLT::Capture
