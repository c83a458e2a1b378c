#pragma once

// The header is in format/xls/; this one keeps its former path working for programs that include it.
#include <lumcommon/format/xls/XlsFormatString.h>
