#pragma once

#include "intercept/RealFunctions.h"

#include <algorithm>
#include <iterator>
#include <string_view>

/// @file
/// What a program says of its calls: debug groups, labels and markers. Their functions came after OpenGL 3.0,
/// and a capture has them all the same.

namespace ZLT::Interception {

inline constexpr std::string_view annotationNames[] = {
    "glPushDebugGroup",        "glPushDebugGroupKHR",    "glPopDebugGroup",      "glPopDebugGroupKHR",
    "glPushGroupMarkerEXT",    "glPopGroupMarkerEXT",    "glDebugMessageInsert", "glDebugMessageInsertARB",
    "glDebugMessageInsertKHR", "glInsertEventMarkerEXT", "glObjectLabel",        "glObjectLabelKHR",
    "glLabelObjectEXT"};

inline bool isAnnotation(std::string_view name) {
    return std::ranges::find(annotationNames, name) != std::end(annotationNames);
}

/// A function that says something.
struct Annotation {
    RealFunction ours; ///< in front of it
    RealFunction real; ///< which ours calls
};

/// By its name; null for a function that says nothing.
Annotation* annotationNamed(std::string_view name);

} // namespace ZLT::Interception
