// Names of objects and locations of variables, in an exported project.

#include "capture/exporting/ExportedState.h"

#include <algorithm>
#include <cstring>

namespace ZLT::Capture {

using namespace Exporting;

namespace {

// A name that nothing has, for one that the capture never got: what was an error is one again.
constexpr std::uint64_t nobody = 0x3FFFFFFF;

std::uint32_t wordAt(std::string_view bytes, std::size_t offset) {
    std::uint32_t word;
    std::memcpy(&word, bytes.data() + offset, sizeof word);
    return word;
}

// The calls that make one, for a name that a program made up.
const char* makerOf(ObjectKind kind, std::string_view function) {
    switch (kind) {
    case ObjectKind::Texture:
        return "glGenTextures";
    case ObjectKind::Buffer:
        return function.ends_with("ARB") ? "glGenBuffersARB" : "glGenBuffers";
    case ObjectKind::AssemblyProgram:
        return function.ends_with("NV") ? "glGenProgramsNV" : "glGenProgramsARB";
    case ObjectKind::Framebuffer:
        return function.ends_with("EXT") ? "glGenFramebuffersEXT" : "glGenFramebuffers";
    case ObjectKind::Renderbuffer:
        return function.ends_with("EXT") ? "glGenRenderbuffersEXT" : "glGenRenderbuffers";
    case ObjectKind::Query:
        return function.ends_with("ARB") ? "glGenQueriesARB" : "glGenQueries";
    case ObjectKind::OcclusionQuery:
        return "glGenOcclusionQueriesNV";
    case ObjectKind::Fence:
        return function.ends_with("APPLE") ? "glGenFencesAPPLE" : "glGenFencesNV";
    default:
        return nullptr;
    }
}

// Calls that need no object behind a name.
bool isIndifferent(std::string_view function) {
    return function.starts_with("glDelete") || function.starts_with("glIs") || function.starts_with("glAreT");
}

} // namespace

NameScope& ProjectExport::scopeOf(ObjectKind kind) {
    return isOfContext(kind) ? context().names : context().group->names;
}

NameScope* ProjectExport::findScope(ObjectKind kind, std::uint64_t name) {
    NameScope& own = scopeOf(kind);
    if (own.known[kind].contains(name))
        return &own;
    if (isOfContext(kind)) // some drivers share these too
        for (Context* const other : context().group->contexts)
            if (other->names.known[kind].contains(name))
                return &other->names;
    return nullptr;
}

std::string ProjectExport::use(const NameScope& scope, const std::string& variable) {
    facts.variables.emplace(scope.prefix, variable);
    return scope.prefix + variable;
}

std::string ProjectExport::variableOf(ObjectKind kind, std::uint64_t name, std::string_view object) {
    std::string variable(object);
    if (kind == ObjectKind::Program)
        variable = context().group->shaders.contains(name) ? "shader" : "program";
    std::ranges::replace(variable, ' ', '_');
    return variable;
}

const char* ProjectExport::makerOfUnknown(ObjectKind kind, std::uint64_t name) {
    if (name == 0 || isIndifferent(call.function->name) || context().isInside || findScope(kind, name))
        return nullptr;
    return makerOf(kind, call.function->name);
}

void ProjectExport::appendName(ObjectKind kind, std::uint64_t name, std::string_view object) {
    if (kind == ObjectKind::List) {
        if (name == 0) {
            line += '0';
        } else {
            line += "list(";
            appendNumber(line, name);
            line += ')';
        }
        return;
    }
    if (name == 0) {
        line += '0';
        return;
    }
    if (kind == ObjectKind::Sync) {
        const auto found = syncs.find(name);
        line +=
            found == syncs.end() ? "nullptr" : use({}, "sync") + '[' + std::to_string(found->second) + ']';
        return;
    }
    NameScope* scope = findScope(kind, name);
    const std::string variable = variableOf(kind, name, object);
    if (!scope) {
        const char* const maker = makerOfUnknown(kind, name);
        if (!maker) {
            appendNumber(line, std::uint64_t(static_cast<std::uint32_t>(
                                   kind == ObjectKind::Program ? name + nobody : name)));
            return;
        }
        scope = &scopeOf(kind);
        scope->known[kind].insert(name);
        const std::string its = use(*scope, variable);
        before += std::string("    ") + nameOfFunction(maker) + "(1, " + its + ".made({" +
                  std::to_string(name) + "})); // the program made the name up\n";
        ++statements;
    }
    line += use(*scope, variable);
    line += '[';
    appendNumber(line, std::uint64_t(name));
    line += ']';
}

void ProjectExport::appendNames(ObjectKind kind, const CapturedValue& value, std::string_view object,
                                const char* how) {
    constexpr std::size_t longestList = 64;
    const bool makes = std::string_view(how) == ".made";
    const std::size_t count = value.bytes.size() / 4;
    NameScope& scope = scopeOf(kind);
    // Of shaders and programs each one says what it is.
    const std::string variable = variableOf(kind, count > 0 ? wordAt(value.bytes, 0) : 0, object);
    const std::size_t start = line.size();
    std::string list;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t name = wordAt(value.bytes, i * 4);
        // A name that is made up is made in front of the call.
        if (!makes && name != 0 && kind != ObjectKind::List && !isIndifferent(call.function->name))
            appendName(kind, name, object);
        if (count <= longestList) {
            if (i > 0)
                list += ", ";
            appendNumber(list, std::uint64_t(name));
        }
    }
    line.resize(start);
    if (kind == ObjectKind::List) { // which are what they were
        appendData(value);
        return;
    }
    line += use(scope, variable) + how;
    if (count <= longestList) {
        line += "({" + list + "})";
        return;
    }
    line += '(';
    appendData(value);
    line += ", " + std::to_string(count) + ')';
}

void ProjectExport::learnNames() {
    const Function& function = *call.function;
    if (const ObjectKind kind = kindOf(function.result.object);
        kind != ObjectKind::None && kind != ObjectKind::List && kind != ObjectKind::UniformLocation &&
        kind != ObjectKind::Sync && call.result.bits != 0)
        scopeOf(kind).known[kind].insert(call.result.bits);
    const bool deletes = function.name.find("Delete") != std::string::npos;
    const bool makes = function.name.starts_with("glGen");
    if (!deletes && !makes)
        return;
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const ObjectKind kind = kindOf(function.parameters[i].object);
        const CapturedValue& value = call.values[i];
        // A program lives on while it is used, and its name is not given again before.
        if (kind == ObjectKind::None || kind == ObjectKind::List || (deletes && kind == ObjectKind::Program))
            continue;
        std::unordered_set<std::uint64_t>& known = scopeOf(kind).known[kind];
        if (value.form != 'p' && value.form != 'o') {
            if (deletes)
                known.erase(value.bits);
            continue;
        }
        for (std::size_t at = 0; at + 4 <= value.bytes.size(); at += 4) {
            const std::uint32_t name = wordAt(value.bytes, at);
            if (deletes)
                known.erase(name);
            else if (name != 0)
                known.insert(name);
        }
    }
}

void ProjectExport::appendLocation(std::int64_t location) {
    const Function& function = *call.function;
    std::uint64_t program = context().program;
    if (function.parameters[0].object == "program")
        program = call.values[0].bits;
    else if (context().list != 0 && context().group->lists[context().list].program)
        program = *context().group->lists[context().list].program;
    const auto its = context().group->locations.find(program);
    if (its != context().group->locations.end())
        if (const auto found = its->second.find(location); found != its->second.end()) {
            appendName(ObjectKind::Program, program, "program");
            line += ".location_of(";
            appendText(line, found->second);
            line += ')';
            return;
        }
    appendNumber(line, location);
}

} // namespace ZLT::Capture
