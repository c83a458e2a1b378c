#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/detail/EntityTable.h>

#include <cstdint>

namespace LumCommon::detail {

class ErrorReporter;
class InputStack;
class NameReader;
class ParserPolicy;

/// Reads references to characters and entities, after their "&".
class ReferenceReader {
public:
    ReferenceReader(InputStack& inputs, NameReader& names, const EntityTable& entities, const ParserPolicy& policy,
                    ErrorReporter& errors)
        : inputs_(inputs), names_(names), entities_(entities), policy_(policy), errors_(errors) {}

    /// A character reference gives the character, 0 for a wrong one, and leaves `name` null; an entity reference gives
    /// its name.
    std::int32_t read(LumName& name);
    /// The character of a character reference, or of a reference to a predefined entity that means what XML says, that
    /// lies at `position` before `end`; -1, and nothing passed over, when it is another one or wrong.
    std::int32_t matchSimple(const char16_t*& position, const char16_t* end) const;
    /// The same in the window.
    std::int32_t readSimple();
    /// Makes the replacement text of an entity the next input, which has to be left where it ends when markup must not
    /// go beyond it.
    void expand(EntityKind kind, LumName name, const UnicodeString& text);

private:
    std::int32_t readCharacter();

    InputStack& inputs_;
    NameReader& names_;
    const EntityTable& entities_;
    const ParserPolicy& policy_;
    ErrorReporter& errors_;
};

}  // namespace LumCommon::detail
