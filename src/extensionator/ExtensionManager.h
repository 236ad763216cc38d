#pragma once

#include "extensionator/FunctionTable.h"

namespace ZLT::OGL {

/// Where the checker finds the functions outside GL 1.1. One table for the process, loaded by the first call
/// that is made with a context current: right for the one driver that most processes meet, and not for
/// contexts of two drivers on Windows, whose addresses may differ.
class ExtensionManager {
public:
    /// The manager of the calling thread's current context. With no context current its table is all null.
    static ExtensionManager* Instance();

    /// The entry points; null where the driver gave none.
    const FunctionTable& table() const { return table_; }

private:
    enum class Source { none, driver };
    explicit ExtensionManager(Source source);

    FunctionTable table_{};
};

} // namespace ZLT::OGL
