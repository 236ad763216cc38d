#pragma once

#include "extensionator/NextLayer.h"

/// @file
/// How a layer that treats all entries alike does its work once for all entries of the same types: 375
/// functions instead of 1,833, each with its handling of exceptions.

namespace ZLT::OGL {

/// Where a call came from, and which entry it is among those of its types. It takes the two registers of an
/// entry's own file and line, so that an entry that goes on with it moves no argument.
struct CallPlace {
    const char* file;
    unsigned int line;
    unsigned int index;
};

/// An entry with this result and these parameters, after file and line.
template <class Result, class... Parameters>
struct TypedEntry {
    Result (OpenGLInterceptor::*pointer)(const char*, unsigned int, Parameters...);
    unsigned int number;
};

/// All entries with this result and these parameters.
template <class Result, class... Parameters>
inline constexpr TypedEntry<Result, Parameters...> entriesOf[1] = {};

#include "extensionator/EntriesByType.inl"

} // namespace ZLT::OGL
