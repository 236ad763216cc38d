#pragma once

/// Makes a desktop GL context without window or surface (on Windows, one of the library's) and makes it
/// current in the calling thread, for the rest of the process. Ends the process with a sentence when there is
/// none.
void makeHeadlessContextCurrent();
