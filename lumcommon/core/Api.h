#pragma once

/// LUM_API marks what the shared library exports; everything else is hidden.
#if defined(__GNUC__)
#define LUM_API __attribute__((visibility("default")))
#else
#define LUM_API
#endif
