#pragma once

// Forwards to values/, where the class is defined, for programs that include it by this path.
#include <lumcommon/values/LumNamedValueMap.h>
