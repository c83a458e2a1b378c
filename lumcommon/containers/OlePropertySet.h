#pragma once

// An address: the class stands in another room of the library.
#include <lumcommon/containers/office/OlePropertySet.h>
