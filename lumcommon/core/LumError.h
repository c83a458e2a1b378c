#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <cstdint>
#include <exception>
#include <new>

namespace LumCommon {

/// Codes of the common library, family 0x08xx.
enum class LumErrorCodeLumLIB : std::uint16_t {
    OutOfMemory = 0x801,          ///< std::bad_alloc, told as an error
    StdException = 0x802,         ///< another exception of the C++ library, told as an error
    NullArgument = 0x803,         ///< a pointer is null that must not be
    IndexOutOfRange = 0x804,      ///< attribute accessors of the parser
    DifferentDocument = 0x806,    ///< a node is to go into the tree of another document
    NotAnAttribute = 0x807,       ///< a node that is no attribute is to become one
    AttributeInUse = 0x808,       ///< the attribute belongs to an element already
    NotAChild = 0x809,            ///< the node is no child of this one
    NotAllowed = 0x80B,           ///< operation not allowed for this node type or parser state
    StartDocumentOrder = 0x80C,   ///< a document is not started right after its output was set
    AttributeOrder = 0x80D,       ///< an attribute does not follow a start tag or another attribute
    UnexpectedEndTag = 0x80E,     ///< an end tag without an open element
    EndTagMismatch = 0x80F,       ///< an end tag with other names than the open element has
    UnexpectedDocDecl = 0x810,    ///< a document type declaration anywhere but at the start
    UnsupportedNodeType = 0x812,  ///< a node that cannot be saved
    NotWritable = 0x813,          ///< what XML cannot hold, where LumXmlSerializer checks; each message tells what
};

/// Codes of input and output, family 0x10xx.
enum class LumErrorCodeIO : std::uint16_t {
    CannotOpen = 0x1003,            ///< a file or resource cannot be opened, or not created
    UnexpectedEnd = 0x1004,         ///< the input has no content
    NoOutput = 0x1005,              ///< nothing was set to write to
    InputFailed = 0x1006,           ///< reading failed
    OutputFailed = 0x1007,          ///< writing failed
    CannotRemoveTempFile = 0x100D,  ///< a temporary file is still there
    CannotCreateTempFile = 0x100E,  ///< no temporary file could be created
};

/// Whether LumError::code is that one:
///
///     catch (const LumError& error) {
///         if (error.code == LumErrorCodeIO::CannotOpen) ...
///     }
constexpr bool operator==(std::uint16_t code, LumErrorCodeLumLIB known) noexcept {
    return code == static_cast<std::uint16_t>(known);
}
/// The same for the codes of input and output.
constexpr bool operator==(std::uint16_t code, LumErrorCodeIO known) noexcept {
    return code == static_cast<std::uint16_t>(known);
}

/// The operation that raised a common error.
enum class LumCommonErrorSource : int {
    DocumentLoadNextNode = 0,          ///< LumDocument::loadNextNode()
    DocumentDoSave = 1,                ///< LumDocument::doSave()
    AttrNodeMapSetNamedItem = 2,       ///< AttrNodeMap::setNamedItem()
    AttrNodeMapSetNamedItemNS = 3,     ///< AttrNodeMap::setNamedItemNS()
    ElementRemoveAttributeNode = 4,    ///< LumElement::removeAttributeNode()
    NodeSetNodeValue = 5,              ///< LumNode::setNodeValue()
    NodeInsertBefore = 6,              ///< LumNode::insertBefore()
    NodeReplaceChild = 7,              ///< LumNode::replaceChild()
    NodeRemoveChild = 8,               ///< LumNode::removeChild()
    NodeAppendChild = 9,               ///< LumNode::appendChild()
    ParserCheckStream = 10,            ///< the parser, reading its input
    ParserPushStream = 11,             ///< the parser, opening an external entity
    ParserSetInput = 12,               ///< LumXmlParser::setInput()
    ParserIsWhitespace = 13,           ///< LumXmlParser::isWhitespace()
    ParserIsEmptyElementTag = 14,      ///< LumXmlParser::isEmptyElementTag()
    ParserGetAttributeNamespace = 15,  ///< LumXmlParser::getAttributeNamespace()
    ParserGetAttributeName = 16,       ///< LumXmlParser::getAttributeName()
    ParserGetAttributePrefix = 17,     ///< LumXmlParser::getAttributePrefix()
    ParserGetAttributeValue = 18,      ///< LumXmlParser::getAttributeValue()
    SerializerSetOutput = 19,          ///< LumXmlSerializer::setOutput()
    SerializerStartDocument = 20,      ///< LumXmlSerializer::startDocument()
    SerializerAttribute = 21,          ///< LumXmlSerializer::attribute()
    SerializerEndTag = 22,             ///< LumXmlSerializer::endTag()
    SerializerDocDecl = 23,            ///< LumXmlSerializer::docdecl()
    SerializerCheckStream = 24,        ///< the serializer, writing its output
    Unnamed25 = 25,                    ///< an operation without a name
    MemStream = 26,                    ///< the streams in memory
    TempFile = 27,                     ///< LumTempFile
};

/// The only exception type of the library, thrown by value.
///
/// An error raised by this library has line and column -1 and an empty location; an error of the XML parser states its
/// position in the message. Code that passes an error on may fill in all three.
class LUM_API LumError {
public:
    std::uint16_t code;      ///< of one of the enumerations of codes: the family in the high byte
    UnicodeString message;   ///< what getMessage() begins with
    UnicodeString source;    ///< e.g. "LumCommon::LumNode::appendChild"; may be empty
    std::int32_t line;       ///< -1 when unknown
    std::int32_t column;     ///< -1 when unknown
    UnicodeString location;  ///< e.g. the URI of a document; may be empty

    /// The error with these parts, as they are.
    LumError(std::uint16_t code, const UnicodeString& message, const UnicodeString& source, std::int32_t line,
             std::int32_t column, const UnicodeString& location);
    /// Code 0x801, "Out of memory.".
    LumError(const std::bad_alloc& exception, const UnicodeString& source);
    /// Code 0x802, "C++ exception: " and the exception's what(), read in the platform's default encoding.
    LumError(const std::exception& exception, const UnicodeString& source);

    /// The message, followed by the position description on a separate line when there is one.
    UnicodeString getMessage() const;
    /// "Line N, ", "Col N, " and the location, each only when known.
    UnicodeString getPositionDescription() const;
    /// Replaces the message; a position description at its end is cut off, so that
    /// `e.setMessage(prefix + e.getMessage())` does not double it.
    void setMessage(const UnicodeString& text);
    /// Appends `text` on a new line; an empty text changes nothing.
    void appendMessage(const UnicodeString& text);
};

/// The text of an error source, "LumCommon::" included; empty for a value without one.
LUM_API UnicodeString getCommonErrorSource(LumCommonErrorSource source);

/// Throw a LumError with the message of the code.
/// @param arg1  the argument's name ("newChild"); when empty, messages that need a name say "arg".
/// @param code    tells the message.
/// @param source  becomes LumError::source, see getCommonErrorSource().
/// @param arg2    a second argument, where the message has one.
[[noreturn]] LUM_API void throwCommonError(LumErrorCodeLumLIB code, LumCommonErrorSource source,
                                           const UnicodeString& arg1 = UnicodeString(),
                                           const UnicodeString& arg2 = UnicodeString());
/// @param arg  the file or resource, where the message names one.
/// @param code    tells the message.
/// @param source  becomes LumError::source, see getCommonErrorSource().
[[noreturn]] LUM_API void throwCommonError(LumErrorCodeIO code, LumCommonErrorSource source,
                                           const UnicodeString& arg = UnicodeString());

}  // namespace LumCommon
