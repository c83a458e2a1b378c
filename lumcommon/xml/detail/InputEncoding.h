#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/xml/detail/XmlInput.h>

namespace LumCommon::detail {

class ParserPolicy;

/// Reads `input` in the encoding of that name from now on, unless its bytes have shown a form of Unicode that no
/// charset can be in; an empty name changes nothing but the name that the input shows.
/// @return false when the name is unknown, or not one of the built-in ones where only those are taken.
[[nodiscard]] bool selectEncoding(XmlInput& input, const UnicodeString& name, const ParserPolicy& policy);

}  // namespace LumCommon::detail
