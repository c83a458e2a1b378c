#include <lumcommon/xml/detail/DefinitionTokens.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <iterator>
#include <string_view>

namespace LumCommon::detail {

namespace {

// A blank stands for white space that may be there. "<" is the first character of each, and no other.
constexpr struct {
    std::u16string_view text;
    DefinitionToken token;
} openings[] = {
    {u"<!--", DefinitionToken::Comment},
    {u"<?", DefinitionToken::Instruction},
    {u"<!ENTITY", DefinitionToken::EntityDecl},
    {u"<![ IGNORE [", DefinitionToken::IgnoredSection},
};

/// How much of `text` is matched when `matched` of it were and `c` follows; 0 when that is something else.
unsigned match(std::u16string_view text, unsigned matched, std::int32_t c) noexcept {
    if (text[matched] == ' ') {
        if (isXmlSpace(c)) return matched;
        ++matched;
    }
    return text[matched] == c ? matched + 1 : 0;
}

}  // namespace

DefinitionToken DefinitionTokenizer::add(std::int32_t c) noexcept {
    static_assert(std::size(openings) == openingCount);
    if (c < 0) return DefinitionToken::End;
    if (c == '%') return DefinitionToken::Reference;
    if (c == '<') {
        isOpening_ = true;
        for (unsigned& matched : matched_) matched = 1;
        return DefinitionToken::MarkupStart;
    }
    if (isOpening_) {
        isOpening_ = false;
        for (int i = 0; i < openingCount; ++i) {
            if (matched_[i] == 0) continue;
            matched_[i] = match(openings[i].text, matched_[i], c);
            if (matched_[i] == openings[i].text.size()) {
                isOpening_ = false;
                return openings[i].token;
            }
            isOpening_ |= matched_[i] != 0;
        }
    }
    if (c == '>') return DefinitionToken::MarkupEnd;
    return c == '"' || c == '\'' ? DefinitionToken::Quote : DefinitionToken::Character;
}

void DefinitionTokenizer::startAfterBang() noexcept {
    startEmpty();
    add('<');
    add('!');
}

}  // namespace LumCommon::detail
