#include "Summary.h"

#include "intercept/Annotations.h"

#include <vector>

namespace ZLT::Interception {

namespace {

struct Sums {
    unsigned long long calls = 0, frames = 0;
    unsigned contexts = 0, threads = 0, processes = 0;
    std::vector<unsigned long long> later = std::vector<unsigned long long>(laterCount());
};

Sums sumsOf(const ChannelReader& channel) {
    Sums sums;
    for (std::size_t number = 0; number < channel.processCount(); ++number) {
        const ProcessSlot& slot = channel.process(number);
        for (const ThreadSlot& thread : slot.perThread)
            sums.calls += thread.calls.load();
        sums.frames += slot.frames.load();
        sums.contexts += slot.contexts.load();
        sums.threads += slot.threads.load();
        sums.processes += slot.reached.load();
        for (std::size_t i = 0; i < sums.later.size(); ++i)
            sums.later[i] += slot.later[i].load();
    }
    return sums;
}

} // namespace

std::string laterCallsOf(const ChannelReader& channel) {
    const Sums sums = sumsOf(channel);
    const bool isCapture = channel.channel().options.mode == Mode::Capture;
    std::string later;
    for (std::size_t i = 0; i < sums.later.size(); ++i)
        if (sums.later[i] > 0 && !(isCapture && isAnnotation(laterName(i))))
            later += (later.empty() ? "" : ", ") + std::string(laterName(i)) + " (" +
                     counted(sums.later[i], "call") + ')';
    return later;
}

std::string summaryOf(const ChannelReader& channel, const std::string& program, bool isScript) {
    if (channel.processCount() == 0)
        return program + " was not watched: it could not be entered.\n";
    const Sums sums = sumsOf(channel);
    const std::string later = laterCallsOf(channel);
    std::string text;
    if (sums.processes == 0 && later.empty()) {
        text = program + " called no OpenGL.";
        if (slotCount > 1 && !channel.channel().options.children)
            text += isScript ? " It is a script: --children follows the programs that it starts."
                             : " If it starts other programs, --children follows them.";
        return text + '\n';
    }
    text = counted(sums.calls, "call") + ", " + counted(sums.contexts, "context") + ", " +
           counted(sums.threads, "thread") + ", " + counted(sums.frames, "frame");
    if (sums.processes > 1)
        text += ", " + counted(sums.processes, "program");
    text += ".\n";
    if (!later.empty())
        text += "Called but not looked at, since they came after OpenGL 3.0: " + later + ".\n";
    return text;
}

} // namespace ZLT::Interception
