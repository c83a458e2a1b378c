#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/names/detail/UnitHash.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace LumCommon::detail {

/// The answers that a stack of scopes gives to questions about names, with undo.
///
/// There is one answer to each question, that of the innermost scope; it is null when no scope has answered the
/// question.
/// A scope logs the previous answer when it changes one for the first time, and closing the scope plays its log back.
/// Only the innermost scope changes answers, so the answer without it is the one in its log.
/// Cost: constant on average for every operation; closing a scope, linear in what it has changed.
class ScopeAnswers {
public:
    /// The kinds of questions; a name is a different question in each.
    enum Kind : std::uint32_t {
        NAMESPACE_OF_PREFIX,
        PREFIX_OF_NAMESPACE,
        DECLARED_DEFAULT,  ///< asked with the null name
    };

    void openScope() { scopeStarts_.push_back(log_.size()); }
    /// Must not be called for the first scope, which is always open.
    void closeScope() noexcept;

    LumName get(Kind kind, LumName name) const noexcept;
    /// The answer without the innermost scope.
    LumName getOuter(Kind kind, LumName name) const noexcept;
    /// Makes room so that set() cannot fail for this question. At most `maxPrepared` questions may be prepared before
    /// they are set.
    void prepare(Kind kind, LumName name);
    /// Sets the innermost scope's answer to a prepared question; a question never prepared stays at null.
    void set(Kind kind, LumName name, LumName answer) noexcept;

    static constexpr std::size_t maxPrepared = 4;

private:
    struct Question {
        std::uint64_t key;
        LumName answer;
        std::size_t lastChange = 0;  // one past its latest entry in the log, 0: none
    };
    struct Change {
        std::uint32_t question;
        LumName previousAnswer;
        std::size_t previousChange;
    };
    struct Recent {
        LumName name;
        std::uint32_t question;
    };
    static constexpr std::uint32_t none = 0xFFFFFFFFu;

    static std::uint64_t keyOf(Kind kind, LumName name) noexcept {
        return std::uint64_t{kind} << 32 | std::uint64_t{name.getEnum()};
    }
    /// Seeded, because a document chooses which of its names become prefixes.
    std::size_t placeOf(std::uint64_t key) const noexcept { return hash_(key); }
    std::uint32_t find(Kind kind, LumName name) const noexcept {
        const Recent& recent = recent_[kind];
        return recent.question != none && recent.name == name ? recent.question : findInIndex(kind, name);
    }
    std::uint32_t findInIndex(Kind kind, LumName name) const noexcept;
    void growIndex();
    bool isChangedInScope(const Question& question) const noexcept { return question.lastChange > scopeStarts_.back(); }

    KeyedHash hash_;
    std::vector<Question> questions_;
    std::vector<std::uint32_t> index_ = std::vector<std::uint32_t>(32, none);  // a power of two, at most half full
    // The last question of each kind: successive elements mostly share their prefix and namespace.
    mutable Recent recent_[3] = {{{}, none}, {{}, none}, {{}, none}};
    std::vector<Change> log_;
    std::vector<std::size_t> scopeStarts_ = {0};  // the length of the log when the scope was opened
};

}  // namespace LumCommon::detail
