#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/XmlChars.h>

namespace LumCommon::detail {

class ErrorReporter;
class NameReader;
class ParserPolicy;
class XmlDeclReader;

/// Who is asked where the input ends.
class EntityEnds {
public:
    EntityEnds() = default;
    EntityEnds(const EntityEnds&) = delete;
    EntityEnds& operator=(const EntityEnds&) = delete;
    virtual ~EntityEnds() = default;

    /// Continues after an entity whose end it was; false when it was another end.
    virtual bool leaveEntity() = 0;
};

/// Reads character data, CDATA sections, comments and processing instructions into the event, and knows what kind of
/// token comes next.
class MarkupReader {
public:
    MarkupReader(ParserEvent& event, InputStack& inputs, NameReader& names, XmlDeclReader& declarations,
                 const ParserPolicy& policy, ErrorReporter& errors)
        : event_(event),
          inputs_(inputs),
          names_(names),
          declarations_(declarations),
          policy_(policy),
          errors_(errors) {}

    /// Without it every end is that of the document.
    void askAtEnds(EntityEnds& ends) noexcept { ends_ = &ends; }
    /// The kind of the next token, whose beginning is then read, except for a start tag's name and text.
    TokenKind lookAhead();
    /// The same where a look at the window tells; Unknown, and nothing read, otherwise.
    TokenKind lookAtWindow();

    void readText();
    /// Outside of all elements: white space is a separate event, and other text is wrong.
    void readTopLevelText();
    /// False for an XML declaration, which makes no event.
    bool readInstruction();
    /// After "<!--".
    void readComment();
    /// Tells that a character stands where outside of all elements only white space may.
    void reportTopLevel(std::int32_t c);
    /// What stands after "<!".
    enum class Declaration : int {
        Passed,   ///< read, and makes no event
        Comment,  ///< read
        Section,  ///< of CDATA; read
        DocType,  ///< only "DOCTYPE" has been read
    };
    Declaration readDeclaration();

private:
    TokenKind lookAheadSlow();
    // Text that does not lie in the window as one run, or follows other text; up to `plainEnd` it is known to be text.
    void readJoinedText(const char16_t* plainEnd);
    Declaration readDeclarationStart();
    void readCData();
    void skipSection();  // other than CDATA
    void readInstruction(const UnicodeString& target);
    bool isAtInstructionEnd();

    ParserEvent& event_;
    InputStack& inputs_;
    NameReader& names_;
    XmlDeclReader& declarations_;
    const ParserPolicy& policy_;
    ErrorReporter& errors_;
    EntityEnds* ends_ = nullptr;
};

inline TokenKind MarkupReader::lookAtWindow() {
    if (isLookedUp(event_.next)) return event_.next;
    XmlCursor& cursor = inputs_.cursor();
    const char16_t* const start = cursor.cur;
    if (cursor.end - start < 2 || U16_IS_SURROGATE(start[0]) || start[0] == notACharacter) return TokenKind::Unknown;
    if (start[0] != '<') {
        cursor.touch(start + 1);
        if (start[0] != '&') return event_.next = TokenKind::Text;
        cursor.cur = start + 1;
        return event_.next = TokenKind::Reference;
    }
    if (U16_IS_SURROGATE(start[1])) return TokenKind::Unknown;
    cursor.touch(start + 2);
    event_.next = kindOfMarkup(start[1]);
    cursor.cur = start + (event_.next == TokenKind::StartTag ? 1 : 2);
    return event_.next;
}

inline TokenKind MarkupReader::lookAhead() {
    const TokenKind kind = lookAtWindow();
    return kind == TokenKind::Unknown ? lookAheadSlow() : kind;
}

inline void MarkupReader::readText() {
    event_.next = TokenKind::Unknown;
    event_.type = LumXmlParser::TEXT;
    XmlCursor& cursor = inputs_.cursor();
    const char16_t* const start = cursor.cur;
    if (!inputs_.lends() || !event_.text.empty()) return readJoinedText(start);
    const char16_t* found = findTextEnd(start, cursor.end);
    while (found != cursor.end && *found == ']') {
        // A bracket alone is text like any other.
        if (found + 1 == cursor.end || found[1] == ']') return readJoinedText(found);
        found = findTextEnd(found + 1, cursor.end);
    }
    if (found == cursor.end || static_cast<std::size_t>(found - start) > event_.text.limit()) {
        return readJoinedText(found);
    }
    event_.text.borrow({start, static_cast<std::size_t>(found - start)});
    cursor.cur = found;
    cursor.touch(found + 1);
}

}  // namespace LumCommon::detail
