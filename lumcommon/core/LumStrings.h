#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

namespace LumCommon {

/// The shared empty string.
class LUM_API LumEmptyString : public UnicodeString {
public:
    /// The one object that references can be made to; it lives as long as the process.
    static const LumEmptyString EMPTY_VALUE;
};

/// The shared bogus string: "there is no value", as opposed to an empty one. Test with isBogus().
class LUM_API LumBogusString : public UnicodeString {
public:
    /// A new bogus string, which can be assigned like any other.
    LumBogusString();
    /// The one object that references can be made to; it lives as long as the process.
    static const LumBogusString BOGUS_VALUE;
};

}  // namespace LumCommon
