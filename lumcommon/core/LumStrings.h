#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

namespace LumCommon {

/// The shared empty string.
class LUM_API LumEmptyString : public UnicodeString {
public:
    static const LumEmptyString EMPTY_VALUE;
};

/// The shared bogus string: "there is no value", as opposed to an empty one. Test with isBogus().
class LUM_API LumBogusString : public UnicodeString {
public:
    LumBogusString();
    static const LumBogusString BOGUS_VALUE;
};

}  // namespace LumCommon
