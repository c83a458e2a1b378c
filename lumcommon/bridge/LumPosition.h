#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

namespace LumCommon {

class LumError;
class LumNode;
class LumXmlParser;

/// A place in a source; what is not known is -1 or empty.
///
///     } catch (const LumError& error) {
///         if (const LumPosition place = positionOf(error)) markLine(place.line, place.column);
///     }
///
/// Threads: as for any value type.
struct LumPosition {
    int line = -1;           ///< from 1
    int column = -1;         ///< the number of characters read on the line
    UnicodeString location;  ///< of the resource, as the parser was given it

    /// Whether a line or a column is known.
    explicit operator bool() const noexcept { return line != -1 || column != -1; }
    /// Whether line and column are the same.
    friend bool operator==(const LumPosition&, const LumPosition&) = default;
};

/// Where an error lies: the fields of the error, if whoever passed it on has filled them in. If not, and the error is
/// one of the XML parser, the position with which the parser has ended its message; programs need not take it apart.
/// Errors: std::bad_alloc.   Cost: linear in the message.   Threads: any.
[[nodiscard]] LUM_API LumPosition positionOf(const LumError& error);
/// What has been read: LumXmlParser::getLineNumber() and getColumnNumber(), and the base URI.
[[nodiscard]] LUM_API LumPosition positionOf(const LumXmlParser& parser);
/// Where a node comes from: LumNode::getSourceLineNumber() and getSourceColumnNumber(), and the URI of its document.
[[nodiscard]] LUM_API LumPosition positionOf(const LumNode& node);

}  // namespace LumCommon
