#include "intercept/DriverEnd.h"

#include "extensionator/OpenGLErrorChecker.inl"
#include "intercept/Contexts.h"
#include "intercept/Program.h"
#include "intercept/RealFunctions.h"
#include "intercept/Thread.h"

namespace ZLT::Interception {

namespace {

// The rule of the checker, behind a call that changed the balance.
void raisePending(const char* file, unsigned int line) {
    if (const unsigned int code = glGetError())
        OGL::Detail::raiseGLError(file, line, code);
}

// Before lists are called: afterwards the context may be between begin and end.
void learnListBase() {
    if (program().options().mode != Mode::Check || !thread.context ||
        !thread.context->balance.wantsBase(*thread.context->lists))
        return;
    GLint base = 0;
    glGetIntegerv(GL_LIST_BASE, &base);
    thread.context->balance.setBase(static_cast<std::uint32_t>(base));
}

using Step = DisplayLists::Step;

void compiled(Step step) {
    if (thread.context)
        thread.context->balance.compiled(step);
}

// The modes of GL 1.1, those with adjacency and patches: another one is an error, and nothing was begun.
constexpr unsigned int lastMode = 0xE;

} // namespace

void DriverEnd::cgmBegin(const char* file, unsigned int line, unsigned int mode) {
    glBegin(mode);
    if (thread.context && mode <= lastMode)
        thread.context->balance.begun();
    raisePending(file, line);
}

void DriverEnd::cgmEnd(const char* file, unsigned int line) {
    glEnd();
    if (thread.context)
        thread.context->balance.ended();
    raisePending(file, line);
}

void DriverEnd::cgmNewList(const char* file, unsigned int line, unsigned int list, unsigned int mode) {
    glNewList(list, mode);
    if (thread.context && list != 0 && (mode == GL_COMPILE || mode == GL_COMPILE_AND_EXECUTE))
        thread.context->balance.listBegun(list, mode == GL_COMPILE_AND_EXECUTE);
    raisePending(file, line);
}

void DriverEnd::cgmEndList(const char* file, unsigned int line) {
    glEndList();
    if (thread.context)
        thread.context->balance.listEnded(*thread.context->lists);
    raisePending(file, line);
}

void DriverEnd::cgmCallList(const char* file, unsigned int line, unsigned int list) {
    learnListBase();
    glCallList(list);
    if (thread.context)
        thread.context->balance.listCalled(*thread.context->lists, list);
    raisePending(file, line);
}

void DriverEnd::cgmCallLists(const char* file, unsigned int line, int n, unsigned int type,
                             const void* lists) {
    learnListBase();
    glCallLists(n, type, lists);
    if (thread.context && n > 0)
        thread.context->balance.listsCalled(*thread.context->lists, static_cast<std::uint32_t>(n), type,
                                            lists);
    raisePending(file, line);
}

void DriverEnd::cgmDeleteLists(const char* file, unsigned int line, unsigned int list, int range) {
    glDeleteLists(list, range);
    if (thread.context && range > 0)
        thread.context->lists->erase(list, static_cast<std::uint32_t>(range));
    raisePending(file, line);
}

void DriverEnd::cgmListBase(const char* file, unsigned int line, unsigned int base) {
    compiled({Step::SetBase, base});
    OpenGLErrorChecker::cgmListBase(file, line, base);
}

void DriverEnd::cgmPushAttrib(const char* file, unsigned int line, unsigned int mask) {
    compiled({mask & GL_LIST_BIT ? Step::PushBase : Step::PushOther});
    OpenGLErrorChecker::cgmPushAttrib(file, line, mask);
}

void DriverEnd::cgmPopAttrib(const char* file, unsigned int line) {
    compiled({Step::Pop});
    OpenGLErrorChecker::cgmPopAttrib(file, line);
}

unsigned int errorForLayers() {
    // Without a context some drivers answer with an error, however often they are asked.
    const bool mayAsk = thread.context && !thread.context->balance.isInside();
    return program().options().mode == Mode::Check && mayAsk ? realGetError() : 0;
}

unsigned int DriverEnd::cgmGetError(const char*, unsigned int) { return realGetError(); }

} // namespace ZLT::Interception
