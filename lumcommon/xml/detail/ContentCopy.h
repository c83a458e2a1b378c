#pragma once

#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/XmlChars.h>

namespace LumCommon::detail {

/// Copies what comes before the next `mark`, which is then the next character. False at the end of input.
/// A U+FFFF on the way is error 0x1834, and left out when the error listener goes on.
inline bool copyContent(InputStack& inputs, ErrorReporter& errors, char16_t mark, UnitBuffer& out) {
    while (inputs.copyUpTo(mark, out)) {
        if (inputs.isNext(mark)) return true;
        inputs.readChar();
        errors.report(XmlError::InvalidChar);
    }
    return false;
}

}  // namespace LumCommon::detail
