#pragma once

/// Fetches all entry points of the current context's driver by glewInit(); false when they are not there
/// afterwards.
bool initializeGlew();
