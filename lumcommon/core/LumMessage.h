#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

namespace LumCommon {

/// A formatted message: ICU's MessageFormat over a pattern with the placeholders {0} to {3}.
/// A malformed pattern gives the empty string. The pattern must be the program's own text, never input; the arguments
/// may be any text and are inserted as they are.
class LUM_API LumMessage : public UnicodeString {
public:
    /// Puts the arguments into the places {0} to {3} of `pattern`.
    explicit LumMessage(const UnicodeString& pattern, const UnicodeString& a0 = UnicodeString(),
                        const UnicodeString& a1 = UnicodeString(), const UnicodeString& a2 = UnicodeString(),
                        const UnicodeString& a3 = UnicodeString());
};

}  // namespace LumCommon
