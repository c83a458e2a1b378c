#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <cstdint>
#include <exception>
#include <new>

namespace LumCommon {

/// Codes of the common library, family 0x08xx.
enum class LumErrorCodeLumLIB : std::uint16_t {
    OutOfMemory = 0x801,
    StdException = 0x802,
    NullArgument = 0x803,
    IndexOutOfRange = 0x804,  ///< attribute accessors of the parser
    DifferentDocument = 0x806,
    NotAnAttribute = 0x807,
    AttributeInUse = 0x808,
    NotAChild = 0x809,
    NotAllowed = 0x80B,  ///< operation not allowed for this node type or parser state
    StartDocumentOrder = 0x80C,
    AttributeOrder = 0x80D,
    UnexpectedEndTag = 0x80E,
    EndTagMismatch = 0x80F,
    UnexpectedDocDecl = 0x810,
    UnsupportedNodeType = 0x812,
    NotWritable = 0x813,  ///< what XML cannot hold, where LumXmlSerializer checks; each message tells what
};

/// Codes of input and output, family 0x10xx.
enum class LumErrorCodeIO : std::uint16_t {
    CannotOpen = 0x1003,
    UnexpectedEnd = 0x1004,
    NoOutput = 0x1005,
    InputFailed = 0x1006,
    OutputFailed = 0x1007,
    CannotRemoveTempFile = 0x100D,
    CannotCreateTempFile = 0x100E,
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
    DocumentLoadNextNode = 0,
    DocumentDoSave = 1,
    AttrNodeMapSetNamedItem = 2,
    AttrNodeMapSetNamedItemNS = 3,
    ElementRemoveAttributeNode = 4,
    NodeSetNodeValue = 5,
    NodeInsertBefore = 6,
    NodeReplaceChild = 7,
    NodeRemoveChild = 8,
    NodeAppendChild = 9,
    ParserCheckStream = 10,
    ParserPushStream = 11,
    ParserSetInput = 12,
    ParserIsWhitespace = 13,
    ParserIsEmptyElementTag = 14,
    ParserGetAttributeNamespace = 15,
    ParserGetAttributeName = 16,
    ParserGetAttributePrefix = 17,
    ParserGetAttributeValue = 18,
    SerializerSetOutput = 19,
    SerializerStartDocument = 20,
    SerializerAttribute = 21,
    SerializerEndTag = 22,
    SerializerDocDecl = 23,
    SerializerCheckStream = 24,
    Unnamed25 = 25,
    MemStream = 26,
    TempFile = 27,
};

/// The only exception type of the library, thrown by value.
///
/// An error raised by this library has line and column -1 and an empty location; an error of the XML parser states its
/// position in the message. Code that passes an error on may fill in all three.
class LUM_API LumError {
public:
    std::uint16_t code;
    UnicodeString message;
    UnicodeString source;    ///< e.g. "LumCommon::LumNode::appendChild"; may be empty
    std::int32_t line;       ///< -1 when unknown
    std::int32_t column;     ///< -1 when unknown
    UnicodeString location;  ///< e.g. the URI of a document; may be empty

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
[[noreturn]] LUM_API void throwCommonError(LumErrorCodeLumLIB code, LumCommonErrorSource source,
                                           const UnicodeString& arg1 = UnicodeString(),
                                           const UnicodeString& arg2 = UnicodeString());
/// @param arg  the file or resource, where the message names one.
[[noreturn]] LUM_API void throwCommonError(LumErrorCodeIO code, LumCommonErrorSource source,
                                           const UnicodeString& arg = UnicodeString());

}  // namespace LumCommon
