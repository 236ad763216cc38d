#pragma once

/// Makes a desktop GL context without window or surface and makes it current in the calling thread, for the
/// rest of the process. Ends the process with a sentence when there is none.
void makeHeadlessContextCurrent();
