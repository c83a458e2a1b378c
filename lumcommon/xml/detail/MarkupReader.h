#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/xml/detail/ParserEvent.h>

namespace LumCommon::detail {

class ErrorReporter;
class InputStack;
class NameReader;
class XmlDeclReader;

/// Reads character data, CDATA sections, comments and processing instructions into the event, and knows what kind of
/// token comes next.
class MarkupReader {
public:
    MarkupReader(ParserEvent& event, InputStack& inputs, NameReader& names, XmlDeclReader& declarations,
                 ErrorReporter& errors) noexcept
        : event_(event), inputs_(inputs), names_(names), declarations_(declarations), errors_(errors) {}

    /// The kind of the next token, whose beginning is then read, except for a start tag's name and text.
    TokenKind lookAhead();

    void readText();
    /// Outside of all elements: white space is an event of its own, and other text is wrong.
    void readTopLevelText();
    void readCData();
    void readComment();
    /// False for an XML declaration, which is no event.
    bool readInstruction();
    /// Passes over a marked section that is no CDATA section.
    void skipSection();

private:
    TokenKind lookAheadSlow();
    void readInstruction(const UnicodeString& target);

    ParserEvent& event_;
    InputStack& inputs_;
    NameReader& names_;
    XmlDeclReader& declarations_;
    ErrorReporter& errors_;
};

}  // namespace LumCommon::detail
