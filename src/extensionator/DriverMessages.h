#pragma once

#include "extensionator/OpenGLErrorSinks.h"

#include <vector>

/// @file
/// The driver's own messages, by `GL_KHR_debug` or `GL_ARB_debug_output`. The driver's callback only stores:
/// what it stored waits on its thread until it is taken.

namespace ZLT::OGL::Detail {

/// Who is asked which messages to keep; there is one at a time, the reporter that was made last.
class MessageReceiver {
public:
    /// Whether the message is worth keeping. Called inside of the driver.
    virtual bool wants(const OpenGLDriverMessage& message) = 0;
    /// Whether a message of this severity that is no error may be dropped without a look at it.
    virtual bool dropsNotifications() const = 0;

protected:
    ~MessageReceiver() = default;
};
void addReceiver(MessageReceiver& receiver);
void removeReceiver(MessageReceiver& receiver);

/// Has the messages of the current context come here, if the context has any. Leaves no error behind.
void listenToDriver();
/// Gives the current context back to the callback that it had before.
void stopListening();
/// What the calling thread's driver said since the last time.
std::vector<OpenGLDriverMessage> takeMessages();

} // namespace ZLT::OGL::Detail
