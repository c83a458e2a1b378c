#pragma once

// Only forwards: the class is declared in containers/office/.
#include <lumcommon/containers/office/OleSummaryInformation.h>
