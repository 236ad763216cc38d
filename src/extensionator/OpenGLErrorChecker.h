#pragma once

#include "extensionator/OpenGLInterceptor.h"

namespace ZLT::OGL {

/// The last layer of the chain: calls the driver, then `glGetError`, and throws ExceptionOGL with the
/// client's file and line when that reports an error. OpenGLInterceptor::Instance() makes the one that ends
/// the chain.
///
/// Each entry needs a current context. An entry outside GL 1.1 goes through the table of the context's
/// ExtensionManager: the library must know the context, and one whose version or extension isn't loaded is a
/// call through a null pointer, so check isSupported() first. A call reads one error; others that the driver
/// holds stay set for later calls, and an error that was left over from a call outside the chain is reported
/// by the next call inside it, with that call's file and line.
///
/// Between `cgmBegin` and `cgmEnd`, where `glGetError` is not allowed, nothing is checked; `cgmEnd` reports
/// what went wrong since. A second `cgmBegin`, and a `cgmEnd` without `cgmBegin`, throw "Unbalanced
/// glBegin()!" and "Unbalanced glEnd()!" with error number 0 and don't reach the driver. There is one balance
/// for the process: two threads that draw in immediate mode at the same time confuse it.
///
/// `cgmGetError` follows the same rule: it returns a pending error, and throws when a second one was pending,
/// on that second one.
class ZLT_OGL_API OpenGLErrorChecker : public OpenGLInterceptor {
public:
    OpenGLErrorChecker();
    ~OpenGLErrorChecker() override;

#include "extensionator/LayerEntries.inl"

private:
    // Throws on a pending GL error, unless inside begin and end (OpenGLErrorChecker.inl).
    void check(const char* file, unsigned int line) const;

    // Not a switch for checking: nothing but cgmBegin and cgmEnd writes it.
    bool insideBeginEnd_;
};

} // namespace ZLT::OGL
