#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/xml/LumXmlErrorCode.h>

#include <cstdint>

namespace LumCommon::detail {

namespace XmlError = LumXmlErrorCode;

/// Thrown inside a parser where a limit is exceeded. The parser reports the error and ends the document; nobody between
/// goes on, whatever errors it forgives.
struct LimitExceeded {
    XmlError::Code code;
};

/// What a listener hears in the place of the code: errors that are often accepted have a form of their own.
constexpr std::uint16_t heardCode(XmlError::Code code) noexcept {
    const bool isUndefined = code == XmlError::UndefinedParameterEntity || code == XmlError::UndefinedEntity;
    return static_cast<std::uint16_t>(isUndefined ? code | 0x0600 : code);
}

/// The message of a code, in either form; "XML parser error." for codes without one.
UnicodeString makeXmlErrorMessage(std::uint16_t code, const UnicodeString& a, const UnicodeString& b);

}  // namespace LumCommon::detail
