#include "capture/PlayedNames.h"

namespace ZLT::Capture {

ObjectKind kindOf(std::string_view object) {
    using enum ObjectKind;
    static const std::map<std::string_view, ObjectKind> kinds = {{"texture", Texture},
                                                                 {"buffer", Buffer},
                                                                 {"display list", List},
                                                                 {"program", Program},
                                                                 {"shader", Program},
                                                                 {"assembly program", AssemblyProgram},
                                                                 {"framebuffer", Framebuffer},
                                                                 {"renderbuffer", Renderbuffer},
                                                                 {"query", Query},
                                                                 {"sync", Sync},
                                                                 {"vertex array", VertexArray},
                                                                 {"fence", Fence},
                                                                 {"occlusion query", OcclusionQuery},
                                                                 {"fragment shader", FragmentShader},
                                                                 {"vertex shader", VertexShader},
                                                                 {"symbol", Symbol},
                                                                 {"async marker", AsyncMarker},
                                                                 {"buffer region", BufferRegion},
                                                                 {"uniform location", UniformLocation}};
    if (object.empty()) // as of most parameters
        return None;
    const auto found = kinds.find(object);
    return found == kinds.end() ? None : found->second;
}

bool isOfContext(ObjectKind kind) {
    using enum ObjectKind;
    return kind == Framebuffer || kind == Query || kind == VertexArray || kind == Fence ||
           kind == OcclusionQuery;
}

std::optional<std::uint64_t> NameTable::find(ObjectKind kind, std::uint64_t captured) const {
    const auto names = names_.find(kind);
    if (names == names_.end())
        return std::nullopt;
    const auto found = names->second.find(captured);
    return found == names->second.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::uint64_t> NameTable::findCaptured(ObjectKind kind, std::uint64_t now) const {
    const auto names = names_.find(kind);
    if (names != names_.end())
        for (const auto& [captured, stands] : names->second)
            if (stands == now)
                return captured;
    return std::nullopt;
}

} // namespace ZLT::Capture
