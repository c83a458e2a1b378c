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
                 ErrorReporter& errors)
        : event_(event), inputs_(inputs), names_(names), declarations_(declarations), errors_(errors) {}

    /// The kind of the next token, whose beginning is then read, except for a start tag's name and text.
    TokenKind lookAhead();

    void readText();
    /// Outside of all elements: white space is a separate event, and other text is wrong.
    void readTopLevelText();
    /// False for an XML declaration, which makes no event.
    bool readInstruction();
    /// What stands after "<!".
    enum class Declaration : int {
        Passed,   ///< read, and makes no event
        Event,    ///< read
        DocType,  ///< only "DOCTYPE" has been read
    };
    Declaration readDeclaration();

private:
    TokenKind lookAheadSlow();
    void readCData();
    void readComment();
    void skipSection();  // other than CDATA
    void readInstruction(const UnicodeString& target);

    ParserEvent& event_;
    InputStack& inputs_;
    NameReader& names_;
    XmlDeclReader& declarations_;
    ErrorReporter& errors_;
};

}  // namespace LumCommon::detail
