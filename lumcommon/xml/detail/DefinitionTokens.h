#pragma once

#include <cstdint>

namespace LumCommon::detail {

/// What a document type declaration is made of, as far as it has to be understood to find its end and its entities.
enum class DefinitionToken : int {
    End,             ///< of the input
    Character,       ///< of a name, a keyword or a model that is read over
    MarkupStart,     ///< "<"; what it begins may follow as another token
    MarkupEnd,       ///< ">"
    Quote,           ///< begins a literal
    Reference,       ///< "%"
    Comment,         ///< all of "<!--" has been read
    Instruction,     ///< all of "<?"
    EntityDecl,      ///< all of "<!ENTITY"
    IgnoredSection,  ///< all of "<![IGNORE["
};

/// Tells the tokens in a run of characters. One may begin in the replacement text of a parameter entity and end after
/// it, and a reference may stand in the middle of one.
class DefinitionTokenizer {
public:
    /// What the run has come to with one more character.
    DefinitionToken add(std::int32_t c) noexcept;
    /// Begins a run that continues with what stands after "<!".
    void startAfterBang() noexcept;
    void startEmpty() noexcept { isOpening_ = false; }
    /// Whether `unit` cannot be but a character here; it need not be added then.
    bool isCharacter(char16_t unit) const noexcept {
        return !isOpening_ && unit != '<' && unit != '>' && unit != '%' && unit != '"' && unit != '\'';
    }

private:
    static constexpr int openingCount = 4;

    bool isOpening_ = false;  // the run ends with the beginning of a token that opens something
    unsigned matched_[openingCount] = {};
};

}  // namespace LumCommon::detail
