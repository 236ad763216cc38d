// What is kept of the frames in front of the first one of a project: what made the objects that GL can't be
// asked for, in their last form.

#include "capture/exporting/ExportedState.h"
#include "extensionator/OpenGLEntry.h"

#include <algorithm>
#include <cstring>

namespace ZLT::Capture {

using namespace Exporting;
namespace Entry = OGL::OpenGLEntry;

void ProjectExport::skimNames() {
    const Function& function = *call.function;
    const auto meet = [this](ObjectKind kind, std::uint64_t name) {
        if (makerOfUnknown(kind, name))
            scopeOf(kind).known[kind].insert(name);
    };
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const ObjectKind kind = kindOf(function.parameters[i].object);
        const CapturedValue& value = call.values[i];
        if (kind == ObjectKind::None || kind == ObjectKind::List || kind == ObjectKind::UniformLocation ||
            kind == ObjectKind::Sync || value.form == 'o')
            continue;
        if (value.form != 'p') {
            meet(kind, value.bits);
            continue;
        }
        for (std::size_t at = 0; at + 4 <= value.bytes.size(); at += 4) {
            std::uint32_t name;
            std::memcpy(&name, value.bytes.data() + at, sizeof name);
            meet(kind, name);
        }
    }
    const ObjectKind kind = kindOf(function.result.object);
    if (kind == ObjectKind::Sync && call.result.bits != 0) {
        syncs[call.result.bits] = ++syncCount;
        context().group->kept.syncs.insert(call.result.bits);
    } else if (kind == ObjectKind::Program && call.result.bits != 0) {
        if (function.name.starts_with("glCreateShader"))
            context().group->shaders.insert(call.result.bits);
        else
            context().group->shaders.erase(call.result.bits);
    }
}

void ProjectExport::keepShader() {
    KeptObjects& kept = context().group->kept;
    const std::uint32_t entry = call.function->number - firstEntry;
    const std::uint64_t name = call.values.empty() ? 0 : call.values[0].bits;
    switch (entry) {
    case Entry::CreateShader:
    case Entry::CreateShaderObjectARB:
        if (call.result.bits != 0)
            kept.shaders[call.result.bits] = {call, std::nullopt, nullptr, false};
        break;
    case Entry::ShaderSource:
    case Entry::ShaderSourceARB:
        if (const auto its = kept.shaders.find(name); its != kept.shaders.end())
            its->second.source = call;
        break;
    case Entry::CompileShader:
    case Entry::CompileShaderARB:
        if (const auto its = kept.shaders.find(name); its != kept.shaders.end())
            its->second.compiled = std::make_shared<const KeptSource>(KeptSource{its->second.source, call});
        break;
    case Entry::DeleteShader:
    case Entry::DeleteObjectARB:
        if (const auto its = kept.shaders.find(name); its != kept.shaders.end()) {
            its->second.isDeleted = std::ranges::any_of(kept.programs, [&](const auto& program) {
                return std::ranges::count(program.second.attached, name) > 0;
            });
            if (!its->second.isDeleted)
                kept.shaders.erase(its);
        }
        break;
    default:
        break;
    }
}

void ProjectExport::keepProgram() {
    Context& now = context();
    KeptObjects& kept = now.group->kept;
    const std::uint32_t entry = call.function->number - firstEntry;
    const std::string& function = call.function->name;
    const std::uint64_t name = call.values.empty() ? 0 : call.values[0].bits;
    if (entry == Entry::CreateProgram || entry == Entry::CreateProgramObjectARB) {
        if (call.result.bits != 0)
            kept.programs[call.result.bits].create = call;
        return;
    }
    if (function.starts_with("glUniform") && !call.values.empty() &&
        call.function->parameters[0].object == "uniform location") {
        if (const auto its = kept.programs.find(now.program); its != kept.programs.end() && now.list == 0)
            its->second.uniforms.insert_or_assign({call.function->number, call.i32(0)},
                                                  std::pair(++kept.order, call));
        return;
    }
    const auto its = kept.programs.find(name);
    if (its == kept.programs.end())
        return;
    KeptProgram& program = its->second;
    switch (entry) {
    case Entry::AttachShader:
    case Entry::AttachObjectARB:
        program.attached.push_back(call.values[1].bits);
        break;
    case Entry::DetachShader:
    case Entry::DetachObjectARB:
        std::erase(program.attached, call.values[1].bits);
        break;
    case Entry::LinkProgram:
    case Entry::LinkProgramARB:
        program.link = call;
        program.places = linked;
        program.uniforms.clear();
        program.linked.clear();
        for (const std::uint64_t shader : program.attached)
            if (const auto part = kept.shaders.find(shader); part != kept.shaders.end())
                program.linked.push_back({shader, part->second.create, part->second.compiled});
        break;
    case Entry::DeleteProgram:
    case Entry::DeleteObjectARB:
        program.isDeleted = std::ranges::any_of(now.group->contexts,
                                                [&](const Context* other) { return other->program == name; });
        if (!program.isDeleted)
            kept.programs.erase(its);
        break;
    default:
        if (function.starts_with("glBindFragDataLocation") || function.starts_with("glProgramParameter") ||
            function.starts_with("glTransformFeedbackVaryings"))
            program.settings.push_back(call);
        else if (function.starts_with("glProgramUniform"))
            program.uniforms.insert_or_assign({call.function->number, call.i32(1)},
                                              std::pair(++kept.order, call));
    }
}

void ProjectExport::keepList() {
    Context& now = context();
    KeptObjects& kept = now.group->kept;
    const std::uint32_t entry = call.function->number - firstEntry;
    if (entry == Entry::GenLists && call.result.bits != 0) {
        for (std::int32_t i = 0; i < std::min(call.i32(0), 1 << 14); ++i) // as a player does it
            kept.emptyLists.insert(call.result.bits + static_cast<std::uint64_t>(i));
    } else if (entry == Entry::DeleteLists) {
        const auto count = static_cast<std::uint64_t>(std::max(call.i32(1), 0));
        const auto within = [&](std::uint64_t list) {
            return list >= call.values[0].bits && list - call.values[0].bits < count;
        };
        std::erase_if(kept.lists, [&](const auto& list) { return within(list.first); });
        std::erase_if(kept.emptyLists, within);
    } else if (entry == Entry::NewList) {
        KeptList& list = kept.lists[call.values[0].bits];
        list = {{}, now.client.unpacking};
        list.calls.push_back({call, {}});
        kept.emptyLists.erase(call.values[0].bits);
    } else if (now.list != 0) {
        kept.lists[now.list].calls.push_back({call, arrays});
    }
}

void ProjectExport::keepTargets() {
    Context& now = context();
    KeptObjects& kept = now.group->kept;
    const std::string& function = call.function->name;
    if (call.values.size() < 2)
        return;
    const std::string_view second = call.function->parameters[1].object;
    if (function.starts_with("glBindTexture"))
        kept.textureTargets[call.values[1].bits] = call.u32(0);
    else if (function.starts_with("glTexture") && call.function->parameters[0].object == "texture")
        kept.textureTargets.try_emplace(call.values[0].bits, call.u32(1));
    else if (function.starts_with("glBindProgram") && second == "assembly program")
        kept.assemblyTargets[call.values[1].bits] = call.u32(0);
    else if (function.starts_with("glBeginQuery") && second == "query")
        now.queryTargets[call.values[1].bits] = call.u32(0);
    else if (function == "glFeedbackBuffer")
        now.feedback = call;
    else if (function == "glSelectBuffer")
        now.selection = call;
    else if (function == "glAccum")
        now.accumulates = true;
}

void ProjectExport::skimCall() {
    if (!contextOf(call.thread)) {
        arrays.clear();
        return;
    }
    Context& now = context();
    if (call.function->number == firstEntry + Entry::Begin)
        now.isInside = call.u32(0) <= GL_TRIANGLE_STRIP_ADJACENCY || call.u32(0) == GL_PATCHES;
    skimNames();
    keepList();
    keepShader();
    keepProgram();
    keepTargets();
    if (now.list == 0 || now.isListExecuted)
        now.matrices.follow(call, [&now](std::uint64_t list, const auto& take) {
            if (const auto its = now.group->kept.lists.find(list); its != now.group->kept.lists.end())
                for (const KeptCall& kept : its->second.calls)
                    take(kept.call);
        });
    arrays.clear();
    learnNames();
    followCall();
}

} // namespace ZLT::Capture
