#pragma once

#include <lumcommon/core/Api.h>

#include <cstdint>

namespace LumCommon {

/// The codes of the errors that an XML parser reports (LumError::code), each with its cause.
///
///     catch (const LumError& error) {
///         if (error.code == LumXmlErrorCode::UndefinedEntity) ...
///     }
namespace LumXmlErrorCode {

/// One row for each code; the codes of other subsystems are in LumErrorCodeLumLIB and LumErrorCodeIO.
enum Code : std::uint16_t {
    MissingEndTag = 0x1801,             ///< the input ends while elements are open
    SecondRoot = 0x1802,                ///< an element follows the root element
    DocTypeName = 0x1803,               ///< no name follows "<!DOCTYPE"
    StartTagName = 0x1804,              ///< no name, or half of one, follows "<"
    EndTagName = 0x1805,                ///< no name, or half of one, follows "</"
    EndTagMismatch = 0x1806,            ///< an end tag has another name than the element that is open
    UndeclaredPrefix = 0x1807,          ///< the prefix of an element or attribute is bound to no namespace
    DuplicateAttribute = 0x1808,        ///< two attributes of a tag have one local name and namespace
    AttributeName = 0x1809,             ///< something else stands where an attribute is expected
    AttributeEquals = 0x180A,           ///< no "=" follows the name of an attribute
    AttributeSpace = 0x180B,            ///< no white space stands before an attribute
    UnexpectedChar = 0x180C,            ///< a character stands where the grammar has no room for it
    UnexpectedSpace = 0x180D,           ///< white space follows "<", "</" or the "/" of "/>"
    TopLevelText = 0x180E,              ///< text, or a reference to it, outside of the root element
    UnknownSection = 0x180F,            ///< a section other than CDATA outside of the external definition
    CDataEndInText = 0x1810,            ///< "]]>" in text
    CDataUnterminated = 0x1811,         ///< a section does not end
    CommentUnterminated = 0x1812,       ///< a comment does not end
    CommentHyphens = 0x1813,            ///< "--" in a comment
    DocTypePlace = 0x1814,              ///< a document type declaration follows the root element
    SecondDocType = 0x1815,             ///< a second document type declaration
    DeclSpace = 0x1816,                 ///< white space is missing in a declaration
    DeclExternalId = 0x1817,            ///< neither SYSTEM nor PUBLIC
    DeclPublicId = 0x1818,              ///< the public identifier is missing
    DeclSystemId = 0x1819,              ///< the system identifier is missing
    DeclUnterminated = 0x181A,          ///< a declaration does not end, or not in the input in which it begins
    EntityNameEmpty = 0x181B,           ///< no name follows "&" or "%"
    EntityRefChar = 0x181C,             ///< a reference does not end with ";"
    UndefinedParameterEntity = 0x181D,  ///< a parameter entity that is not declared; a callback hears 0x1E1D
    UndefinedEntity = 0x181E,           ///< an entity that is not declared; a callback hears 0x1E1E
    EntityDeclName = 0x181F,            ///< the name is missing in the declaration of an entity
    EntityDeclNData = 0x1820,           ///< something else stands where NDATA or the end of the declaration is expected
    XmlDeclPlace = 0x1821,              ///< an XML declaration elsewhere than at the beginning
    XmlDeclVersion = 0x1822,            ///< no version in an XML declaration
    XmlDeclEquals = 0x1823,             ///< no "=" in an XML declaration
    XmlDeclSpaceAfter = 0x1824,         ///< no white space follows "<?xml"
    XmlDeclSpaceBefore = 0x1825,        ///< no white space before a part of the XML declaration
    XmlVersion = 0x1826,                ///< a version of XML that is not supported
    XmlStandalone = 0x1827,             ///< standalone is neither "yes" nor "no"
    CDataSyntax = 0x1828,               ///< "[" is missing after "<![CDATA"
    CommentSyntax = 0x1829,             ///< "<!-" does not begin a comment
    MarkupDecl = 0x182A,                ///< "<!" begins nothing that is known
    PiXmlCase = 0x182B,                 ///< the target "xml" in other letters
    PiSpace = 0x182C,                   ///< no white space follows the target of an instruction
    PiUnterminated = 0x182D,            ///< an instruction does not end
    LiteralQuote = 0x182E,              ///< no quote where a literal is expected
    LiteralUnterminated = 0x182F,       ///< a literal does not end
    LessThanInValue = 0x1830,           ///< "<" in an attribute value, as written or by an entity
    CharRefSpace = 0x1831,              ///< white space in a character reference
    CharRefDigit = 0x1832,              ///< no digit where a character reference needs one
    CharRefChar = 0x1833,               ///< a reference to what is no character of XML
    InvalidChar = 0x1834,               ///< a character that may not stand there, or bytes that are none
    Encoding = 0x1835,                  ///< an encoding that is not known, or no name of one
    NoDocument = 0x1836,                ///< a document without an element
    ExpansionLimit = 0x1837,            ///< entities expand to far more than what was read, or contain themselves
    NestingLimit = 0x1838,              ///< too many external inputs are open at once
    EncodingConflict = 0x1839,          ///< a declared encoding contradicts the byte order mark
    ExternalRefused = 0x183A,           ///< a resource that must not be opened, by the feature or the resolver

    // The limits of struct LumXmlLimits, in its order.
    DepthLimit = 0x183B,           ///< too many open elements
    AttributesLimit = 0x183C,      ///< too many attributes in a tag
    TextLimit = 0x183D,            ///< too long a text
    NameLimit = 0x183E,            ///< too long a name
    ValueLimit = 0x183F,           ///< too long a value
    ExternalInputsLimit = 0x1840,  ///< too many external inputs
    ExternalBytesLimit = 0x1841,   ///< too many bytes of external inputs
    InflatedBytesLimit = 0x1842,   ///< too many bytes inflated
    InflationRatioLimit = 0x1843,  ///< too many bytes inflated for each byte read
    TotalBytesLimit = 0x1844,      ///< too many bytes
    TimeLimit = 0x1845,            ///< too much time
    NamesLimit = 0x1846,           ///< too many different names

    // Only with LumXmlParser::FEATURE_CONFORMING.
    InstructionTarget = 0x1847,      ///< no target follows "<?"
    ReservedNamespace = 0x1848,      ///< the prefix or namespace of "xml" or "xmlns" is bound or used as it must not be
    PrefixUnbound = 0x1849,          ///< a prefix is bound to the empty namespace
    EntityNesting = 0x184A,          ///< an element begins in an entity and ends outside of it, or the other way round
    UnparsedEntity = 0x184B,         ///< a reference to an unparsed entity
    ExternalEntityInValue = 0x184C,  ///< a reference in an attribute value leads to an external entity
    StandaloneEntity = 0x184D,       ///< a standalone document refers to an entity that is declared outside of it
    ParameterEntityPlace = 0x184E,   ///< a reference to a parameter entity inside a declaration of the internal subset
    PredefinedEntity = 0x184F,       ///< a predefined entity is declared as something else
    TextDeclEncoding = 0x1850,       ///< a text declaration without an encoding
    SectionPlace = 0x1851,    ///< a conditional section in the internal subset, or one that does not end where it must
    SectionKeyword = 0x1852,  ///< a conditional section is neither INCLUDE nor IGNORE
    PublicIdChar = 0x1853,    ///< a character that a public identifier may not hold
    ElementContent = 0x1854,  ///< the declaration of an element has no proper content model
    AttributeType = 0x1855,   ///< the declaration of an attribute has no proper type
    AttributeDefault = 0x1856,  ///< the declaration of an attribute has no proper default
};

/// The name of a code as it stands above, "MissingEndTag"; null for what is no code of the parser. The codes that a
/// callback hears have the names of their errors. Threads: any; constant data.
LUM_API const char* getName(unsigned code) noexcept;
/// The cause of it as it stands above, "the input ends while elements are open". The same holds.
LUM_API const char* getCause(unsigned code) noexcept;

}  // namespace LumXmlErrorCode

}  // namespace LumCommon
