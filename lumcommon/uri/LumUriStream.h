#pragma once

// Only forwards: the class is declared in uri/open/.
#include <lumcommon/uri/open/LumUriStream.h>
