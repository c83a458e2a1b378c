#pragma once

#include "support/XmlEvents.h"

namespace LumTest {

using Feature = LumXmlParser::Feature;

/// A document that is not well-formed, with a bar behind the last character read when the error is found.
struct ErrorRow {
    unsigned code;
    const char* document;
    const char* message;
    LumXmlParser::EventType event;  ///< that the message names
    /// Characters of a literal that were looked at again behind the bar; negative for bytes before it that are no
    /// characters: those that tell the encoding.
    int rescanned = 0;
    Setup setup = {};
};

inline Setup define(const char* name, const char* text) { return {.entities = {{name, text}}}; }
inline Setup turnOn(Feature feature) { return {.features = {feature}}; }

inline constexpr auto atStart = LumXmlParser::START_DOCUMENT;
inline constexpr auto inTag = LumXmlParser::START_TAG;
inline constexpr auto inEndTag = LumXmlParser::END_TAG;
inline constexpr auto inText = LumXmlParser::TEXT;
inline constexpr auto inRef = LumXmlParser::ENTITY_REF;
inline constexpr auto inPi = LumXmlParser::PROCESSING_INSTRUCTION;
inline constexpr auto inComment = LumXmlParser::COMMENT;
inline constexpr auto inCData = LumXmlParser::CDSECT;
inline constexpr auto inSpace = LumXmlParser::IGNORABLE_WHITESPACE;
inline constexpr auto inDocType = LumXmlParser::DOCDECL;

inline const std::vector<ErrorRow> errorRows = {
    // Elements
    {0x1801, "<a>|", "Missing end tag.", inTag},
    {0x1801, "<a><b></b>|", "Missing end tag.", inEndTag},
    {0x1801, "<a><!-- -->|", "Missing end tag.", inComment},
    {0x1802, "<a/><b|/>", "Only one top level element is allowed.", inTag},
    {0x1804, "<1|a/>", "Invalid start tag name.", inTag},
    {0x1804, "<a:>|</a>", "Invalid start tag name.", inTag},
    {0x1804, "<:|a/>", "Invalid start tag name.", inTag},
    {0x1805, "<a></>|", "Invalid end tag name.", inEndTag},
    {0x1806, "<a></b>|", "End tag 'b' does not match the start tag 'a'.", inEndTag},
    {0x1806, "<p:a xmlns:p='u' xmlns:q='u'></q:a>|", "End tag 'q:a' does not match the start tag 'p:a'.", inEndTag},
    {0x1806, "<a/></a>|", "End tag 'a' does not match the start tag ''.", inEndTag},
    {0x1807, "<p:a/>|", "Undeclared namespace prefix: p", inTag, 0, turnOn(Feature::FEATURE_ALLOW_UNDECLARED_PREFIX)},
    {0x1807, "<a p:b='1'>|</a>", "Undeclared namespace prefix: p", inTag},
    {0x1807, "<a><b xmlns:p='u'/><p:c>|</p:c></a>", "Undeclared namespace prefix: p", inTag},
    {0x1808, "<a b='1' c='' b='2'/>|", "Duplicate attribute: b", inTag},
    {0x1808, "<a xmlns:p='u' xmlns:q='u' p:b='1' q:b='2'>|", "Duplicate attribute: q:b", inTag},
    {0x1808, "<a xmlns:p='u' xmlns:p='v'>|", "Duplicate attribute: xmlns:p", inTag},
    {0x1809, "<a 1b |='x'/>", "Invalid attribute name: 1b", inTag},
    {0x1809, "<a 'x y'| b=''/>", "Invalid attribute name: 'x y'", inTag},
    {0x1809, "<a \"x>|", "Invalid attribute name: \"x>", inTag},
    {0x1809, "<a |", "Invalid attribute name: ", inTag},
    {0x180A, "<a b>|</a>", "Missing '=' after attribute name.", inTag},
    {0x180B, "<a b='1'c|='2'/>", "Missing whitespace between attributes.", inTag},
    {0x180C, "<a b='1'?|>", "Unexpected character: ?", inTag},
    {0x180C, "<a/x|>", "Unexpected character: x", inTag},
    {0x180C, "<a></a b|>", "Unexpected character: b", inEndTag},
    {0x180D, "< |a/>", "Unexpected whitespace after '<'.", inTag},
    {0x180D, "<a/ |>", "Unexpected whitespace after '/'.", inTag},
    {0x180D, "<a></\t|a>", "Unexpected whitespace after '</'.", inEndTag},
    // Text
    {0x180E, "A|<a/>", "Unexpected text at top level of the document: U+0041 (A)", inText},
    {0x180E, "<a/>\xF0\x9F\x98\x80|", "Unexpected text at top level of the document: U+1F600 (\xF0\x9F\x98\x80)",
     inText},
    {0x1810, "<a>]]]>|</a>", "Unexpected ']]>'.", inText},
    {0x1811, "<a><![CDATA[x]]|", "Unexpected end of input while looking for CDATA section terminator ']]>'.", inCData},
    {0x1811, "<a><![IGNORE[x] >|", "Unexpected end of input while looking for CDATA section terminator ']]>'.", inTag},
    {0x1812, "<a/><!--x--|", "Unexpected end of input while looking for comment terminator '-->'.", inComment},
    {0x1813, "<!--x--y|--><a/>", "Unexpected character after -- in comment", inComment},
    {0x1813, "<!-----|-><a/>", "Unexpected character after -- in comment", inComment},
    // References
    {0x181B, "<a>&;|</a>", "Empty entity name.", inRef},
    {0x181B, "<a b='&1;'|/>", "Empty entity name.", inTag, 2},
    {0x181C, "<a>&b |;</a>", "Invalid character in entity reference: &b ;", inRef},
    {0x181C, "<a b='&c.d!;'|/>", "Invalid character in entity reference: &c.d!;", inTag, 5},
    {0x181E, "<a b='x&c;'|/>", "Reference to undefined entity: &c;", inTag, 4},
    {0x181E, "<a b='&e;'|/>", "Reference to undefined entity: &f;", inTag, 3, define("e", "1&f;2")},
    {0x1830, "<a b='x<y'|/>", "Unexpected '<' in attribute value.", inTag, 2},
    {0x1830, "<a b='x&e;y'|/>", "Unexpected '<' in attribute value.", inTag, 4, define("e", "1<2")},
    {0x1831, "<a>&#65 |;</a>", "Unexpected whitespace in character reference: &#65 ;", inRef},
    {0x1831, "<a b='&# ;'|/>", "Unexpected whitespace in character reference: &# ;", inTag, 3},
    {0x1832, "<a>&#x4G|;</a>", "Invalid character in character reference: &#x4G;", inRef},
    {0x1832, "<a>&#6A|;</a>", "Invalid character in character reference: &#6A;", inRef},
    {0x1832, "<a>&#X|41;</a>", "Invalid character in character reference: &#X;", inRef},
    {0x1833, "<a>&#0;|</a>", "Invalid unicode character: &#0;", inRef},
    {0x1833, "<a>&#xD800;|</a>", "Invalid unicode character: &#xD800;", inRef},
    {0x1833, "<a>&#xFFFE;|</a>", "Invalid unicode character: &#xFFFE;", inRef},
    {0x1833, "<a>&#x110000;|</a>", "Invalid unicode character: &#x110000;", inRef},
    {0x1833, "<a>&#4294967361;|</a>", "Invalid unicode character: &#4294967361;", inRef},  // 2^32 + 65
    {0x1833, "<a b='&#8;'|/>", "Invalid unicode character: &#8;", inTag, 4},
    // Declarations and instructions
    {0x1821, " <?xml |version='1.0'?><a/>", "Unexpected XML declaration.", inSpace},
    {0x1822, "<?xml encoding=|'UTF-8'?><a/>", "Missing 'version=' after '<?xml ' in XML declaration.", atStart},
    {0x1823, "<?xml version '|1.0'?><a/>", "Missing '=' after '<?xml version' in XML declaration.", atStart},
    {0x1823, "<?xml version='1.0' encoding?|><a/>", "Missing '=' after 'encoding' in XML declaration.", atStart},
    {0x1823, "<?xml version='1.0' standalone?|><a/>", "Missing '=' after 'standalone' in XML declaration.", atStart},
    {0x1824, "<?xml?|><a/>", "Missing whitespace after '<?xml' in XML declaration.", atStart},
    {0x1825, "<?xml version='1.0'encoding=|'UTF-8'?><a/>", "Missing whitespace before 'encoding=' in XML declaration.",
     atStart},
    {0x1825, "<?xml version='1.0' encoding='UTF-8'standalone=|'yes'?><a/>",
     "Missing whitespace before 'standalone=' in XML declaration.", atStart},
    {0x1826, "<?xml version='1.2'|?><a/>", "Unsupported XML version: 1.2", atStart},
    {0x1827, "<?xml version='1.0' standalone='true'|?><a/>", "Invalid standalone declaration in XML declaration.",
     atStart},
    {0x180C, "<?xml version='1.0' !|?><a/>", "Unexpected character: !", atStart},
    {0x180C, "<?xml version='1.0' encoding='UTF-8' ?x|><a/>", "Unexpected character: x", atStart},
    {0x1828, "<a><![CDATA |[x]]></a>", "Invalid syntax in CDATA section.", inTag},
    {0x1829, "<a>x<!-y|--></a>", "Invalid syntax in comment.", inText},
    {0x182A, "<a><!ELEMENT |b></a>", "Unexpected '<!ELEMENT'.", inTag},
    {0x182A, "<a><!>|</a>", "Unexpected '<!'.", inTag},
    {0x182B, "<?XML |version='1.0'?><a/>", "The name 'xml' must be lower case: <?XML", inPi},
    {0x182C, "<a><?p?|></a>", "Missing whitespace after PI target: <?p", inPi},
    {0x182C, "<?p:|q r?><a/>", "Missing whitespace after PI target: <?p", inPi},
    {0x182D, "<a><?p q?|", "Unexpected end of input while looking for PI terminator '?>'.", inPi},
    {0x182E, "<a b=1|/>", "Missing quotation character (\" or ').", inTag},
    {0x182F, "<a b='x\"></a>|", "Unexpected end of input while looking for literal terminator (').", inTag},
    {0x182F, "<a b=\"x|", "Unexpected end of input while looking for literal terminator (\").", inTag},
    // Document type declarations
    {0x1803, "<!DOCTYPE >|<a/>", "Invalid root tag name after '<!DOCTYPE'.", inDocType},
    {0x1814, "<a/><!DOCTYPE |a>", "Unexpected DOCTYPE declaration outside of prolog.", inDocType},
    {0x1815, "<!DOCTYPE a><!DOCTYPE |a><a/>", "Cannot have multiple DOCTYPE declarations.", inDocType},
    {0x1816, "<!DOCTYPE>|<a/>", "Missing whitespace after '<!DOCTYPE'.", inDocType},
    {0x1816, "<!DOCTYPE p:a|", "Missing whitespace after '<!DOCTYPE p:a'.", inDocType},
    {0x1816, "<!DOCTYPE a SYSTEM'|s'><a/>", "Missing whitespace after '<!DOCTYPE a SYSTEM'.", inDocType, 0,
     turnOn(Feature::FEATURE_SKIP_EXTERNAL_DTD)},
    {0x1816, "<!DOCTYPE a PUBLIC 'p''|s'><a/>", "Missing whitespace after '<!DOCTYPE a PUBLIC \"p\"'.", inDocType, 0,
     turnOn(Feature::FEATURE_SKIP_EXTERNAL_DTD)},
    {0x1816, "<!DOCTYPE a [<!ENTITY>|]><a/>", "Missing whitespace after '<!ENTITY'.", inDocType},
    {0x1816, "<!DOCTYPE a [<!ENTITY %p| 'x'>]><a/>", "Missing whitespace after '<!ENTITY %'.", inDocType},
    {0x1816, "<!DOCTYPE a [<!ENTITY e'|x'>]><a/>", "Missing whitespace after '<!ENTITY e'.", inDocType},
    {0x1816, "<!DOCTYPE a [<!ENTITY e SYSTEM \"s\" NDATA>|]><a/>",
     "Missing whitespace after '<!ENTITY e ... \"s\" NDATA'.", inDocType},
    {0x1817, "<!DOCTYPE a system |'s'><a/>", "ExternalID is expected after '<!DOCTYPE a'.", inDocType},
    {0x1817, "<!DOCTYPE a [<!ENTITY e x>|]><a/>", "ExternalID is expected after '<!ENTITY e'.", inDocType},
    {0x1818, "<!DOCTYPE a PUBLIC p| 's'><a/>", "PubidLiteral is expected after '<!DOCTYPE a PUBLIC'.", inDocType, 0,
     turnOn(Feature::FEATURE_SKIP_EXTERNAL_DTD)},
    {0x1819, "<!DOCTYPE a SYSTEM s|><a/>", "SystemLiteral is expected after '<!DOCTYPE a SYSTEM|PUBLIC'.", inDocType},
    {0x1819, "<!DOCTYPE a [<!ENTITY % p SYSTEM s|>]><a/>",
     "SystemLiteral is expected after '<!ENTITY p SYSTEM|PUBLIC'.", inDocType},
    {0x182F, "<!DOCTYPE a SYSTEM 's><a/>|", "Unexpected end of input while looking for literal terminator (').",
     inDocType, 0, turnOn(Feature::FEATURE_SKIP_EXTERNAL_DTD)},
    {0x181A, "<!DOCTYPE a [|", "Unexpected end of input in DOCTYPE declaration.", inDocType},
    {0x181A, "<!DOCTYPE a [<!-- ]> ->|", "Unexpected end of input in DOCTYPE declaration.", inDocType},
    {0x181A, "<!DOCTYPE a [<?p ]> ?|", "Unexpected end of input in DOCTYPE declaration.", inDocType},
    {0x181A, "<!DOCTYPE a [<!ATTLIST a b CDATA ']>\">|", "Unexpected end of input in DOCTYPE declaration.", inDocType},
    {0x181A, "<!DOCTYPE a [<![IGNORE[ ]> ]]|", "Unexpected end of input in DOCTYPE declaration.", inDocType},
    {0x181A, "<!DOCTYPE a [<!ENTITY e 'x\">]>|", "Unexpected end of input in ENTITY declaration.", inDocType},
    {0x181B, "<!DOCTYPE a [%;|]><a/>", "Empty entity name.", inDocType},
    {0x181C, "<!DOCTYPE a [%p |;]><a/>", "Invalid character in entity reference: %p ;", inDocType},
    {0x181D, "<!DOCTYPE a [<!ENTITY p ''>%p;|]><a/>", "Reference to undefined entity: %p;", inDocType},
    {0x181F, "<!DOCTYPE a [<!ENTITY 1| 'x'>]><a/>", "Entity name is expected after '!ENTITY '.", inDocType},
    {0x1820, "<!DOCTYPE a [<!ENTITY e SYSTEM 's' ndata |n>]><a/>", "NDATA is expected after '<!ENTITY e ... \"s\"'.",
     inDocType},
    {0x180C, "<!DOCTYPE a [<!ENTITY e 'x' y|>]><a/>", "Unexpected character: y", inDocType},
    {0x180C, "<!DOCTYPE a [<!ENTITY % p SYSTEM 's' N|DATA n>]><a/>", "Unexpected character: N", inDocType},
    {0x1833, "<!DOCTYPE a [<!ENTITY % p '&#0;'|>]><a/>", "Invalid unicode character: &#0;", inDocType, 4},
    {0x1837, "<!DOCTYPE a [<!ENTITY % p 'x%p;'>%p;|]><a/>", "XML parser error.", inDocType},
    // Encodings
    {0x1834, "\xEF|x<a/>", "Invalid character.", atStart, -1},
    {0x1834, "\xFE\xFE|", "Invalid character.", atStart, -2},
    {0x1834, "<a>\xEF\xBF\xBF|x</a>", "Invalid character.", inTag},
};

}  // namespace LumTest
