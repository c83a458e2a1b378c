#pragma once

#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/detail/EventText.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace LumCommon::detail {

/// What the look-ahead knows of the next token.
enum class TokenKind : int {
    Unknown = 0,
    InCallback = 1,  ///< unknown, while a callback looks at an error
    EmptyTag = 2,    ///< unknown, and the current start tag is an empty-element tag
    StartTag = 3,
    EndTag = 4,
    Text = 5,
    Reference = 6,
    Instruction = 7,
    Declaration = 8,
    End = 9,
};

/// What "<" and the character after it begin.
constexpr TokenKind kindOfMarkup(std::int32_t second) noexcept {
    switch (second) {
        case '/':
            return TokenKind::EndTag;
        case '?':
            return TokenKind::Instruction;
        case '!':
            return TokenKind::Declaration;
        default:
            return TokenKind::StartTag;
    }
}

constexpr bool isLookedUp(TokenKind kind) noexcept { return kind > TokenKind::EmptyTag; }

/// The current event as its readers fill it in: each sets the type before it reads, as errors name it.
class ParserEvent : public WindowBorrower {
public:
    LumXmlParser::EventType type = LumXmlParser::START_DOCUMENT;
    TokenKind next = TokenKind::Unknown;
    EventText text;             // of the event, after that of the events that it is joined with
    std::size_t textStart = 0;  // of the current token in it
    LumName entityName;
    std::int32_t entityChar = 0;  // of a character reference

    void reset() noexcept {
        type = LumXmlParser::START_DOCUMENT;
        next = TokenKind::Unknown;
        text.clear();
        setTextStart(0);
        entityName = LumName();
    }
    void setTextStart(std::size_t start) noexcept {
        textStart = start;
        isViewed_ = false;
    }
    /// Takes the current token's text back.
    void dropToken() noexcept {
        text.truncate(textStart);
        isViewed_ = false;
    }
    /// Before the next character of the text is written by hand.
    void forgetView() noexcept { isViewed_ = false; }
    /// Valid until the next event is read.
    std::u16string_view textView() const noexcept {
        std::u16string_view view = text.view();
        view.remove_prefix(std::min(textStart, view.size()));
        return view;
    }
    bool isWhitespace() const noexcept {
        const std::u16string_view units = textView();
        return std::all_of(units.begin(), units.end(), [](char16_t unit) { return isXmlSpace(unit); });
    }

    /// Of a reference: "#x" and a number for a character.
    LumName referenceName() const {
        if (!entityName.isNull()) return entityName;
        char name[16];
        const int size = std::snprintf(name, sizeof name, "#x%X", static_cast<unsigned>(entityChar));
        return LumName(checked(UnicodeString(name, size, US_INV)));
    }

    /// The text as a string, once one of the functions below has made it.
    bool isViewed() const noexcept { return isViewed_; }
    const UnicodeString& view() const noexcept { return view_; }
    void viewText() const {
        const std::u16string_view units = textView();
        const auto size = static_cast<std::int32_t>(units.size());
        if (size == 0) {
            view_.remove();
        } else if (next == TokenKind::InCallback) {
            view_ = textOf(units);  // the text is being read, and may grow and move
        } else {
            view_.setTo(false, units.data(), size);
        }
        isViewed_ = true;
    }
    void viewValue(const UnicodeString& value) const {
        assign(view_, value);
        isViewed_ = true;
    }

private:
    void windowMoves() override {
        if (!text.isBorrowed()) return;
        const bool isLent = isViewed_ && view_.getBuffer() == textView().data();
        text.takeOver();
        if (isLent) viewText();
    }

    mutable UnicodeString view_;
    mutable bool isViewed_ = false;
};

}  // namespace LumCommon::detail
