#pragma once

#include <lumcommon/names/LumName.h>

namespace LumCommon::detail {

struct QualifiedName {
    LumName prefix;  // null if there is none
    LumName localName;
};

/// Splits at the first ":", unless that is the first character.
inline QualifiedName splitQualifiedName(LumName name) {
    const UnicodeString& text = name.getString();
    const int colon = text.indexOf(u':');
    if (colon == 0) return {LumName(), LumName(text.tempSubString(1))};
    if (colon < 0) return {LumName(), name};
    return {LumName(text.tempSubString(0, colon)), LumName(text.tempSubString(colon + 1))};
}

}  // namespace LumCommon::detail
