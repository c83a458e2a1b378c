#pragma once

// Every public header comes here before its first declaration. A directive #error alone would be followed by hundreds
// of errors about what an older language lacks; a header that does not exist ends the compilation.
#if !defined(__cplusplus) || __cplusplus < 202002L
#error "LumCommon needs C++20: compile with -std=c++20 or newer (CMake: set CMAKE_CXX_STANDARD to 20)"
#include <LumCommon-needs-C++20>
#endif

/// LUM_API marks what the shared library exports; everything else is hidden.
#if defined(__GNUC__)
#define LUM_API __attribute__((visibility("default")))
#else
#define LUM_API
#endif
