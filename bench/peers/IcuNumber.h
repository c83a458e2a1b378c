#pragma once

#include <unicode/rbnf.h>

#include <stdexcept>
#include <string>

namespace LumBench {

/// ICU's rule-based number format, with ICU's own rules where it has the numerals and rules made here for letters. The
/// rules are parsed once, and the rule set is chosen once as well.
class IcuNumber {
public:
    static constexpr const char* label = "icu";

    /// @param rules  one of ICU's numbering systems ("%hebrew"), or the letters of an alphabet.
    explicit IcuNumber(const icu::UnicodeString& rules)
        : countsFromZero_(!rules.startsWith(u"%")),
          ruleSet_(countsFromZero_ ? icu::UnicodeString(u"%letters") : rules),
          format_(make(rules)) {}

    /// Writes a number of at least 1; with letters, one that takes at most two of them.
    icu::UnicodeString write(int number) const {
        icu::UnicodeString text;
        format_.format(number - countsFromZero_, text);
        return text;
    }

protected:
    /// The same with the rule set looked up by name, as a caller must do if each number may need another one.
    icu::UnicodeString writeByName(int number) const {
        icu::UnicodeString text;
        icu::FieldPosition position;
        UErrorCode status = U_ZERO_ERROR;
        format_.format(number - countsFromZero_, ruleSet_, text, position, status);
        return text;
    }

private:
    static icu::RuleBasedNumberFormat make(const icu::UnicodeString& ruleSet) {
        UErrorCode status = U_ZERO_ERROR;
        UParseError place;
        if (!ruleSet.startsWith(u"%")) {
            const icu::RuleBasedNumberFormat made(makeRules(ruleSet), icu::Locale::getRoot(), place, status);
            require(status);
            return made;
        }
        icu::RuleBasedNumberFormat made(icu::URBNF_NUMBERING_SYSTEM, icu::Locale::getRoot(), status);
        if (U_SUCCESS(status)) made.setDefaultRuleSet(ruleSet, status);
        require(status);
        return made;
    }

    /// Rules for one or two letters. They count from 0, since a rule's remainder is 0 to N - 1, not 1 to N.
    static icu::UnicodeString makeRules(const icu::UnicodeString& letters) {
        const std::string count = std::to_string(letters.length());
        icu::UnicodeString first(u"%letters:\n"), second(u"%%second:\n");
        for (std::int32_t i = 0; i < letters.length(); ++i) {
            const icu::UnicodeString one = icu::UnicodeString::fromUTF8(std::to_string(i) + ": ") + letters[i] + u";\n";
            first.append(one);
            second.append(one);
        }
        for (std::int32_t i = 0; i < letters.length(); ++i) {
            // The last rule would use its base, N * N, as the divisor: ">" lowers that to N.
            const std::string down = i + 1 == letters.length() ? ">" : "";
            const std::string base = std::to_string((i + 1) * letters.length());
            first.append(icu::UnicodeString::fromUTF8(base + "/" + count + down + ": ") + letters[i] +
                         u">%%second>;\n");
        }
        return first + second;
    }

    static void require(UErrorCode status) {
        if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
    }

    bool countsFromZero_;
    icu::UnicodeString ruleSet_;
    icu::RuleBasedNumberFormat format_;
};

class IcuNumberByName : public IcuNumber {
public:
    static constexpr const char* label = "icu-by-name";
    using IcuNumber::IcuNumber;
    icu::UnicodeString write(int number) const { return writeByName(number); }
};

}  // namespace LumBench
