#pragma once

#include <lumcommon/core/Text.h>

#include <cstdint>

namespace LumCommon::detail {

/// Codes of the parser, family 0x18xx. The forms with the bits 0x0600 mark errors after which parsing can continue when
/// a callback accepts them; thrown, they lose those bits.
namespace XmlError {
enum Code : std::uint16_t {
    MissingEndTag = 0x1801,
    SecondRoot = 0x1802,
    DocTypeName = 0x1803,
    StartTagName = 0x1804,
    EndTagName = 0x1805,
    EndTagMismatch = 0x1806,
    UndeclaredPrefix = 0x1807,
    DuplicateAttribute = 0x1808,
    AttributeName = 0x1809,
    AttributeEquals = 0x180A,
    AttributeSpace = 0x180B,
    UnexpectedChar = 0x180C,
    UnexpectedSpace = 0x180D,
    TopLevelText = 0x180E,
    CDataEndInText = 0x1810,
    CDataUnterminated = 0x1811,
    CommentUnterminated = 0x1812,
    CommentHyphens = 0x1813,
    DocTypePlace = 0x1814,
    SecondDocType = 0x1815,
    DeclSpace = 0x1816,
    DeclExternalId = 0x1817,
    DeclPublicId = 0x1818,
    DeclSystemId = 0x1819,
    DeclUnterminated = 0x181A,
    EntityNameEmpty = 0x181B,
    EntityRefChar = 0x181C,
    UndefinedParameterEntity = 0x1E1D,
    UndefinedEntity = 0x1E1E,
    EntityDeclName = 0x181F,
    EntityDeclNData = 0x1820,
    XmlDeclPlace = 0x1821,
    XmlDeclVersion = 0x1822,
    XmlDeclEquals = 0x1823,
    XmlDeclSpaceAfter = 0x1824,
    XmlDeclSpaceBefore = 0x1825,
    XmlVersion = 0x1826,
    XmlStandalone = 0x1827,
    CDataSyntax = 0x1828,
    CommentSyntax = 0x1829,
    MarkupDecl = 0x182A,
    PiXmlCase = 0x182B,
    PiSpace = 0x182C,
    PiUnterminated = 0x182D,
    LiteralQuote = 0x182E,
    LiteralUnterminated = 0x182F,
    LessThanInValue = 0x1830,
    CharRefSpace = 0x1831,
    CharRefDigit = 0x1832,
    CharRefChar = 0x1833,
    InvalidChar = 0x1834,
    Encoding = 0x1835,
    ExpansionLimit = 0x1837,  ///< entities expand to far more than what was read
    NestingLimit = 0x1838,    ///< too many external inputs are open at once
    EncodingConflict = 0x1839,
    ExternalRefused = 0x183A,  ///< a resource that must not be opened, by the feature or the resolver
    // Of struct LumXmlLimits, in its order.
    DepthLimit = 0x183B,
    AttributesLimit = 0x183C,
    TextLimit = 0x183D,
    NameLimit = 0x183E,
    ValueLimit = 0x183F,
    ExternalInputsLimit = 0x1840,
    ExternalBytesLimit = 0x1841,
    InflatedBytesLimit = 0x1842,
    InflationRatioLimit = 0x1843,
    TotalBytesLimit = 0x1844,
    TimeLimit = 0x1845,
    NamesLimit = 0x1846,
};
}  // namespace XmlError

/// Thrown inside a parser where a limit is exceeded. The parser reports the error and ends the document; nobody between
/// goes on, whatever errors it forgives.
struct LimitExceeded {
    XmlError::Code code;
};

/// The message of a code, in either form; "XML parser error." for codes without one.
UnicodeString makeXmlErrorMessage(std::uint16_t code, const UnicodeString& a, const UnicodeString& b);

}  // namespace LumCommon::detail
