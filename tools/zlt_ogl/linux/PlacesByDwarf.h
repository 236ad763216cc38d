#pragma once

#include "Places.h"

/// The function of the module, which the command looks up by this name.
extern "C" __attribute__((visibility("default"))) ZLT::Interception::PlaceFinder* zlt_make_place_finder();
