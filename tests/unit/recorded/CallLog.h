#pragma once

#include <ostream>

/// Writes each call of the scripted GL to `out`, as long as no FakeGL::reset() comes: its arguments, and in
/// place of addresses the data behind them where a recording captures it.
void logCallsTo(std::ostream& out);
