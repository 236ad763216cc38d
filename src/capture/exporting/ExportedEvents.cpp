// What an exporter does for the records that are no calls.

#include "capture/exporting/ExportedState.h"

namespace ZLT::Capture {

using namespace Exporting;

namespace {

std::string surfaceText(std::uint32_t number) {
    return number == 0 ? "nullptr" : "surface[" + std::to_string(number) + ']';
}

} // namespace

Context* ProjectExport::contextOf(std::uint32_t thread) {
    const auto found = threads.find(thread);
    if (found == threads.end() || found->second.context == 0)
        return nullptr;
    return &contexts[found->second.context];
}

void ProjectExport::makeSurface() {
    SurfaceShape& shape = surfaces[call.u32(0)];
    shape = shapeOf(call);
    addSurface(call.u32(0), shape);
}

void ProjectExport::addSurface(std::uint32_t number, const SurfaceShape& shape) {
    const auto list = [](std::initializer_list<int> values) {
        std::string text;
        for (const int value : values)
            text += (text.empty() ? "" : ", ") + std::to_string(value);
        return '(' + text + ')';
    };
    std::string text = "    create(" + surfaceText(number) + ", Format" + list({shape.width, shape.height}) +
                       ".color" + list({shape.red, shape.green, shape.blue, shape.alpha}) + ".depth" +
                       list({shape.depth}) + ".stencil" + list({shape.stencil});
    if (shape.accumulation != 0)
        text += ".accumulation" + list({shape.accumulation});
    if (shape.samples != 0)
        text += ".samples" + list({shape.samples});
    text += shape.isDoubleBuffered ? ".double_buffered()" : "";
    text += shape.isStereo ? ".stereo()" : "";
    text += shape.isSrgb ? ".srgb()" : "";
    addPlain(text + ");\n");
}

void ProjectExport::makeContext() {
    Context& made = contexts[call.u32(0)];
    made.number = call.u32(0);
    std::shared_ptr<Group>& group = groups[call.u32(1)];
    if (!group) {
        group = std::make_shared<Group>();
        group->number = call.u32(1);
        if (groups.size() > 1)
            group->names.prefix = "group" + std::to_string(group->number) + '.';
    }
    made.group = group;
    if (contexts.size() > 1)
        made.names.prefix = "context" + std::to_string(made.number) + '.';
    group->contexts.push_back(&made);
    made.shape = {call.i32(2), call.i32(3), call.i32(4)};
}

void ProjectExport::writeCurrent(const Context& next) {
    addPlain("    make_current(context[" + std::to_string(next.number) + "], " + surfaceText(next.draw) +
             ", " + surfaceText(next.read) + ");\n");
    current = next.thread;
}

void ProjectExport::createContext(Context& next) {
    if (next.isCreated)
        return;
    std::string text = "    create(context[" + std::to_string(next.number) + "], Version(" +
                       std::to_string(next.shape.version / 10) + ", " +
                       std::to_string(next.shape.version % 10) + ')';
    if (next.shape.profile & GL_CONTEXT_CORE_PROFILE_BIT)
        text += ".core()";
    if (next.shape.flags & GL_CONTEXT_FLAG_FORWARD_COMPATIBLE_BIT)
        text += ".forward_compatible()";
    for (const Context* const other : next.group->contexts)
        if (other->isCreated) {
            text += ", context[" + std::to_string(other->number) + ']';
            break;
        }
    addPlain(text + ");\n");
    next.isCreated = true;
}

void ProjectExport::makeCurrent() {
    const std::uint32_t number = call.u32(0);
    Thread& thread = threads[call.thread];
    if (number == 0 || !contexts.contains(number)) {
        release(call.thread);
        return;
    }
    Context& next = contexts[number];
    if (next.thread != 0 && next.thread != call.thread)
        release(next.thread); // it moved on before its old thread made another call
    if (thread.context != number)
        release(call.thread);
    createContext(next);
    next.thread = call.thread;
    next.draw = call.u32(1);
    next.read = call.u32(2);
    thread.context = number;
    writeCurrent(next);
}

void ProjectExport::release(std::uint32_t thread) {
    Context* const old = contextOf(thread);
    if (!old)
        return;
    Thread& its = threads[thread];
    if (!its.pending.empty() && !isSkimming) {
        switchToThread(thread);
        files.add(its.pending, its.pendingCount);
        its.pending.clear();
        its.pendingCount = 0;
    }
    old->thread = 0;
    its.context = 0;
    if (current == thread) {
        addPlain("    release_current();\n");
        current = 0;
    }
    if (old->isDoomed)
        destroy(*old);
}

void ProjectExport::destroy(Context& old) {
    if (old.isCreated)
        addPlain("    destroy(context[" + std::to_string(old.number) + "]);\n");
    old.isCreated = false;
    std::erase(old.group->contexts, &old);
}

void ProjectExport::swap() {
    const std::uint32_t number = call.u32(0);
    line = "    swap(" + surfaceText(number) + ");\n";
    addLine(1);
    if (!isSkimming)
        files.endFrame(call.frame, hasHash, hash);
    hasHash = false;
}

void ProjectExport::switchToThread(std::uint32_t thread) {
    if (current == thread)
        return;
    if (const Context* const its = contextOf(thread))
        writeCurrent(*its);
}

void ProjectExport::addLine(std::size_t count) {
    if (isSkimming)
        return;
    Thread& thread = threads[call.thread];
    const Context* const its = contextOf(call.thread);
    if (its && its->isInside && threads.size() > 1) {
        thread.pending += line;
        thread.pendingCount += count;
        return;
    }
    switchToThread(call.thread);
    if (!thread.pending.empty()) {
        files.add(thread.pending, thread.pendingCount);
        thread.pending.clear();
        thread.pendingCount = 0;
    }
    files.add(line, count);
}

void ProjectExport::exportEvent() {
    switch (static_cast<Event>(call.function->number)) {
    case Event::Context:
        return makeContext();
    case Event::Surface:
        return makeSurface();
    case Event::Current:
        return makeCurrent();
    case Event::Size:
        surfaces[call.u32(0)].width = call.i32(1);
        surfaces[call.u32(0)].height = call.i32(2);
        return addPlain("    resize(surface[" + std::to_string(call.u32(0)) + "], " +
                        std::to_string(call.i32(1)) + ", " + std::to_string(call.i32(2)) + ");\n");
    case Event::Destroyed:
        if (const auto found = contexts.find(call.u32(0));
            found != contexts.end() && found->second.isCreated) {
            // As in GLX and EGL: one that a thread still has goes when the thread lets it go.
            found->second.isDoomed = found->second.thread != 0;
            if (!found->second.isDoomed)
                destroy(found->second);
        }
        return;
    case Event::Picture:
        hasHash = true;
        hash = call.values[1].bits;
        return;
    case Event::Swap:
        return swap();
    case Event::Array:
        arrays.push_back(arrayOf(call));
        return;
    case Event::Written:
        if (isSkimming)
            return;
        if (const auto found = maps.find(call.values[0].bits);
            found != maps.end() && contextOf(call.thread)) {
            line = "    write(" + use({}, "mapped") + '[' + std::to_string(found->second) + "], " +
                   std::to_string(call.values[1].bits) + ", ";
            appendData(call.values[2]);
            line += ", " + std::to_string(call.values[2].bytes.size()) + ");\n";
            addLine(1);
        }
        return;
    case Event::Returned:
        if (isSkimming)
            return;
        line = call.u32(0) == GL_FEEDBACK ? "    expect_feedback(" : "    expect_selection(";
        appendData(call.values[1]);
        line += ", " + std::to_string(call.values[1].bytes.size()) + ");\n";
        return addLine(1);
    case Event::Linked:
        linked = LinkedPlaces{call.values[0].bits, std::string(call.values[2].bytes), call.u32(1)};
        return;
    case Event::Incomplete:
        facts.missing.insert("The capture is incomplete: " + std::string(call.values[0].bytes) + '.');
        line = "    // Not captured: ";
        appendComment(line, call.values[0].bytes);
        line += '\n';
        return addLine(1);
    default:
        return;
    }
}

void ProjectExport::exportRecord() {
    if (call.function->number < eventCount)
        exportEvent();
    else if (call.function->number != UINT32_MAX)
        isSkimming ? skimCall() : exportCall();
    else
        facts.missing.insert(call.function->name + ", which is not known here, was left out.");
}

ProjectExport::ProjectExport(CaptureFile& from, const ExportOptions& options)
    : file(from), files(options.folder, options.name), lastFrame(options.lastFrame) {
    facts.capture = options.capture;
    facts.info = from.info();
}

bool ProjectExport::exportFrame() {
    const std::uint64_t count = files.frameCount();
    if (count + facts.firstFrame > lastFrame)
        return false;
    while (files.frameCount() == count && file.next(call))
        exportRecord();
    return files.frameCount() != count;
}

void ProjectExport::finish() {
    for (auto& [number, thread] : threads)
        if (!thread.pending.empty()) {
            switchToThread(number);
            files.add(thread.pending, thread.pendingCount);
        }
    files.finish(facts);
}

} // namespace ZLT::Capture
