#pragma once

/// Makes the recorded calls, once. replay::begin() comes first.
void replayRecordedCalls();
