#pragma once

/// The name of a GL value by a `switch` over all values that have one.
const char* switchTokenName(unsigned int value);

/// By glbinding's map.
const char* glbindingTokenName(unsigned int value);
