#include "intercept/checks/MoreChecks.h"

#include "extensionator/OpenGLEntry.h"
#include "extensionator/OpenGLWatcher.h"
#include "intercept/Contexts.h"
#include "intercept/ErrorReports.h"
#include "intercept/Thread.h"
#include "intercept/checks/ArrayCalls.h"
#include "intercept/checks/BufferIndices.h"
#include "intercept/checks/CheckedContext.h"
#include "intercept/checks/DrawBounds.h"
#include "intercept/checks/FramebufferCheck.h"
#include "intercept/checks/ReadPointers.h"
#include "intercept/checks/TextureCheck.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <string_view>
#include <vector>

namespace ZLT::Interception {

namespace {

using Entry = OGL::OpenGLEntry::Number;

// A name that a call uses and that is none. It is told when GL has taken it.
struct WrongName {
    ObjectKind kind;
    std::uint32_t name;
    bool isDeleted;
};
// Never destroyed: objects of the program end after those of the thread.
std::vector<WrongName>& wrongNames() {
    thread_local auto& names = *new std::vector<WrongName>;
    return names;
}

bool has(const CheckedContext& context, std::uint8_t changes) { return (context.unknown & changes) != 0; }

constexpr std::uint8_t changesSamples = changesProgram | changesUnits | changesBindings | changesTextures;

class MoreChecks : public OGL::OpenGLWatcher {
protected:
    bool before(const OGL::OpenGLCall& call) override {
        const EntryFacts& facts = factsOf(call.number());
        if (!facts.matter() || !thread.context) [[likely]]
            return true;
        try {
            CheckedContext& context = checkedContext();
            if (!context.asked.isKnown)
                return true;
            if (facts.namesObjects)
                lookAtNames(context, call);
            if (facts.readsMemory)
                if (const std::string fault = unreadableOf(call); !fault.empty())
                    tellFinding(call, unreadablePointer, fault);
            if (facts.draw.form != DrawForm::None)
                lookAtDraw(context, call, facts.draw);
        } catch (const std::exception& failure) {
            tellFailure(failure);
        }
        return true;
    }

    void after(const OGL::OpenGLCall& call) override {
        const EntryFacts& facts = factsOf(call.number());
        if ((facts.changes == 0 && !facts.isToggle && !facts.namesObjects) || !thread.context) [[likely]]
            return;
        try {
            CheckedContext& context = checkedContext();
            if (!context.asked.isKnown)
                return;
            noticeChanges(context, call, facts);
            if (facts.namesObjects)
                noticeNames(context, call);
            if (facts.isToggle && thread.context->balance.executes())
                noticeState(context, call);
        } catch (const std::exception& failure) {
            tellFailure(failure);
        }
    }

    // It may have changed a part all the same.
    void failed(const OGL::OpenGLCall& call) override {
        wrongNames().clear();
        if (factsOf(call.number()).changes != 0 && thread.context)
            checkedContext().unknown |= changesAll;
    }

private:
    static void lookAtNames(CheckedContext& context, const OGL::OpenGLCall& call) {
        using State = ObjectNames::State;
        wrongNames().clear();
        for (const NamedObject& object : objectsNamedBy(call.number())) {
            const auto name = static_cast<std::uint32_t>(call.values()[object.parameter].bits);
            if (object.role != NameRole::Used || name == 0)
                continue;
            CheckedGroup& group = *context.group;
            ObjectNames& known = context.namesOf(object.kind);
            State state = State::Unknown;
            {
                const std::lock_guard guard(group.lock);
                state = known.stateOf(object.kind, name);
            }
            if (state == State::Made || state == State::MadeUp || !mayAskDriver())
                continue;
            // Made by a function that we don't know, or before we saw the group.
            const auto is = context.functions.isObject[static_cast<int>(object.kind)];
            const bool isThere = !is || is(name);
            if (!isThere && (state == State::Deleted || group.isKnownFromStart)) {
                wrongNames().push_back({object.kind, name, state == State::Deleted});
                continue;
            }
            const GroupGuard guard(group);
            known.set(object.kind, name, State::Made);
        }
    }

    static void noticeNames(CheckedContext& context, const OGL::OpenGLCall& call) {
        using State = ObjectNames::State;
        CheckedGroup& group = *context.group;
        for (const WrongName& wrong : wrongNames()) {
            const std::string text = std::string(nameOf(wrong.kind)) + ' ' + std::to_string(wrong.name);
            if (wrong.isDeleted)
                tellFinding(call, deletedName, text + " was deleted, and is a new one from here on");
            else
                tellFinding(call, neverMade, text + " was never made by glGen, and is made here");
            const GroupGuard guard(group);
            context.namesOf(wrong.kind).set(wrong.kind, wrong.name, State::MadeUp);
        }
        wrongNames().clear();
        for (const NamedObject& object : objectsNamedBy(call.number())) {
            if (object.role == NameRole::Used)
                continue;
            const auto count = static_cast<std::int32_t>(call.values()[0].bits);
            const auto* const names = reinterpret_cast<const std::uint32_t*>(
                static_cast<std::uintptr_t>(call.values()[object.parameter].bits));
            const GroupGuard guard(group);
            for (std::int32_t i = 0; names && i < count; ++i)
                if (object.role == NameRole::Made)
                    context.namesOf(object.kind).set(object.kind, names[i], State::Made);
                else
                    remove(context, object.kind, names[i]);
        }
    }

    static void remove(CheckedContext& context, ObjectKind kind, std::uint32_t name) {
        CheckedGroup& group = *context.group;
        context.namesOf(kind).remove(kind, name);
        if (kind == ObjectKind::Buffer)
            group.buffers.erase(name);
        if (kind != ObjectKind::Texture)
            return;
        group.textures.erase(name);
        group.targets.erase(name);
    }

    static void noticeChanges(CheckedContext& context, const OGL::OpenGLCall& call, const EntryFacts& facts) {
        CheckedGroup& group = *context.group;
        context.unknown |= static_cast<std::uint8_t>(facts.changes & ~changesArrays);
        if (facts.changes & changesArrays && !noticeArrays(context, call))
            context.unknown |= changesArrays;
        const std::string_view name = call.name();
        const bool isDelete = name.starts_with("glDelete");
        if (facts.changes & changesBuffers && !isDelete)
            noticeBuffers(context, call);
        if (facts.changes & changesTextures && !isDelete)
            noticeTextures(context, call);
        const bool isLink = name.starts_with("glLinkProgram");
        if (isLink || facts.changes == changesAll) {
            const GroupGuard guard(group);
            if (isLink)
                group.programs.erase(static_cast<std::uint32_t>(call.values()[0].bits));
            else
                group.programs.clear();
        }
        if (call.number() == Entry::BindTexture || call.number() == Entry::BindTextureEXT) {
            const GroupGuard guard(group);
            group.targets[static_cast<std::uint32_t>(call.values()[1].bits)] =
                static_cast<std::uint32_t>(call.values()[0].bits);
        }
        if (!isLink && !(facts.changes & (changesTextures | changesFramebuffer)))
            return;
        const std::uint32_t before = group.changes.fetch_add(1, std::memory_order_relaxed);
        if (context.seenChanges == before)
            context.seenChanges = before + 1;
    }

    static void noticeState(CheckedContext& context, const OGL::OpenGLCall& call) {
        const auto value = static_cast<std::uint32_t>(call.values()[0].bits);
        if (call.number() == Entry::Enable || call.number() == Entry::Disable)
            noticeToggle(context, value, call.number() == Entry::Enable);
        else if (!has(context, changesUnits))
            context.activeUnit = static_cast<std::int32_t>(value) - GL_TEXTURE0;
    }

    // What is found is looked for once more with nothing known from before: it may have been changed by a way
    // that nobody sees.
    template <class Find>
    static bool tellIfFound(CheckedContext& context, const OGL::OpenGLCall& call, const Find& find) {
        if (!find())
            return true;
        if (!mayAskDriver())
            return tellAny(call, find());
        const Asking asking(call);
        context.forget();
        prepare(context);
        return tellAny(call, find());
    }
    static bool tellAny(const OGL::OpenGLCall& call, const Finding& finding) {
        if (finding)
            tellFinding(call, finding.check, finding.reason);
        return !finding;
    }

    static void prepare(CheckedContext& context) {
        if (has(context, changesProgram))
            context.learnProgram();
        if (has(context, changesArrays)) {
            context.asked.areArraysKnown = false;
            context.switchedOff.clear();
        }
        if (has(context, changesUnits)) {
            context.areUnitsKnown = false;
            context.activeUnit = -1;
        }
        context.unknown &= static_cast<std::uint8_t>(~changesArrays);
        context.asked.learnArrays();
    }

    static void lookAtDraw(CheckedContext& context, const OGL::OpenGLCall& call, const DrawArguments& draw) {
        const bool mayAsk = mayAskDriver();
        const bool readsArrays = draw.form < DrawForm::Immediate;
        if (draw.count >= 0 && draw.form <= DrawForm::Elements &&
            static_cast<std::int32_t>(call.values()[draw.count].bits) <= 0)
            return;
        if (!mayAsk) {
            if (readsArrays && !has(context, changesArrays | changesProgram))
                tellIfFound(context, call, [&] { return findOutOfBounds(context, call, draw); });
            return;
        }
        const std::uint32_t changes = context.group->changes.load(std::memory_order_relaxed);
        if (context.seenChanges != changes) {
            context.unknown |= changesSamples | changesFramebuffer;
            context.seenChanges = changes;
        }
        if (context.unknown == 0 || context.unknown == changesBuffers) {
            if (readsArrays)
                tellIfFound(context, call, [&] { return findOutOfBounds(context, call, draw); });
            return;
        }
        const Asking asking(call);
        prepare(context);
        if (readsArrays)
            tellIfFound(context, call, [&] { return findOutOfBounds(context, call, draw); });
        // What is asked now binds textures and units, and would become a part of the list.
        if (!thread.context->balance.executes() || thread.context->balance.compiles())
            return;
        if (has(context, changesFramebuffer) &&
            tellIfFound(context, call, [&] { return findIncompleteFramebuffer(context); }))
            context.unknown &= static_cast<std::uint8_t>(~changesFramebuffer);
        if (draw.form == DrawForm::Pixels || !has(context, changesSamples))
            return;
        if (tellIfFound(context, call, [&] { return findInvalidProgram(context); }) &&
            tellIfFound(context, call, [&] { return findIncompleteTexture(context); }))
            context.unknown &= static_cast<std::uint8_t>(~(changesSamples | changesBuffers));
    }
};

} // namespace

OGL::OpenGLInterceptor& moreChecks(OGL::OpenGLInterceptor& next) {
    // Never destroyed: programs call GL while they end.
    static auto& checks = *new MoreChecks;
    static std::once_flag once;
    std::call_once(once, [&next] { checks.layer().setInterceptor(&next); });
    return checks.layer();
}

} // namespace ZLT::Interception
