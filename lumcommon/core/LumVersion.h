#pragma once

/// The version of these headers, for `#if`; getLibVersion() tells that of the library that runs. This is the only place
/// that names it: the build reads it here. Nothing is included, so asking costs nothing.
#define LUM_VERSION_MAJOR 3
#define LUM_VERSION_MINOR 9
#define LUM_VERSION_PATCH 0

/// One number that grows with every version: major * 10000 + minor * 100 + patch, 30900 for 3.9.0.
#define LUM_VERSION (LUM_VERSION_MAJOR * 10000 + LUM_VERSION_MINOR * 100 + LUM_VERSION_PATCH)

/// The same as a text: "3.9.0".
#define LUM_VERSION_STRING \
    LUM_VERSION_TEXT(LUM_VERSION_MAJOR) "." LUM_VERSION_TEXT(LUM_VERSION_MINOR) "." LUM_VERSION_TEXT(LUM_VERSION_PATCH)
/// Steps on the way to LUM_VERSION_STRING: a number as a text, once its own macro is replaced.
#define LUM_VERSION_TEXT(number) LUM_VERSION_TEXT_OF(number)
#define LUM_VERSION_TEXT_OF(number) #number
