#pragma once

#include "RecordingStream.h"

// What the statements read, and the statements.
extern RecordingStream* pBinaryInputStream;
void replayRecordedCalls();
