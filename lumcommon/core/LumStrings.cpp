#include <lumcommon/core/LumStrings.h>

namespace LumCommon {

const LumEmptyString LumEmptyString::EMPTY_VALUE{};

LumBogusString::LumBogusString() { setToBogus(); }

const LumBogusString LumBogusString::BOGUS_VALUE{};

}  // namespace LumCommon
