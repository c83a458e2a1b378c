#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/names/detail/NameIntern.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/NameCache.h>
#include <lumcommon/xml/detail/UnitBuffer.h>

#include <unordered_set>

namespace LumCommon::detail {

class ErrorReporter;

struct QName {
    LumName prefix;
    LumName localName;

    UnicodeString toString() const;
};

/// Reads names, and knows those that it has read.
class NameReader {
public:
    NameReader(InputStack& inputs, ErrorReporter& errors) : inputs_(inputs), errors_(errors) {}

    /// For another document. Names may be forgotten.
    /// @param isStrict  a character that the names of XML leave out in the ranges of letters is an error.
    void start(const LumXmlLimits& limits, bool isStrict);
    /// Interns a name that the document uses.   Throws LimitExceeded.
    LumNameEnum intern(const char16_t* text, std::size_t size) {
        const LumNameEnum name = internName(text, size);
        if (mostNames_ != LumXmlLimits::off) count(name);
        return name;
    }

    /// A name without a colon; null, and nothing read, when the input does not continue with one.
    LumName readNCName();
    /// The same as text.
    UnicodeString readNCNameText();
    /// Reports what the names of XML leave out, where that is wrong. All names that are read are looked at.
    void checkCharacters(const char16_t* text, std::size_t size);
    /// False when a part of the name is missing.
    bool readQName(QName& name);
    /// A name seen before that begins at `p` and is followed, before `end`, by what ends a name in most tags; null when
    /// a look at that does not settle it. Reads nothing.
    const CachedName* match(const char16_t* p, const char16_t* end) noexcept {
        if (const CachedName* const guess = last_->following;
            guess && guess->begins(p, end) && endsName(p[guess->size])) {
            return last_ = guess;
        }
        if (const CachedName* const guess = last_->followingElse;
            guess && guess->begins(p, end) && endsName(p[guess->size])) {
            return follow(guess);
        }
        return find(p, end);
    }
    /// A name that lies in the window as a whole; null, and nothing read, when it takes more than a look at the window.
    const CachedName* readQNameFast() {
        XmlCursor& cursor = inputs_.cursor();
        const CachedName* const name = match(cursor.cur, cursor.end);
        if (!name) return readNewQName();
        cursor.cur += name->size;
        cursor.touch(cursor.cur + 1);
        return name;
    }

private:
    void scanNCName();
    const CachedName* keep(const char16_t* text, std::size_t size, LumNameEnum prefix, LumNameEnum localName);
    void count(LumNameEnum name);
    const CachedName* find(const char16_t* p, const char16_t* end) noexcept;
    const CachedName* readNewQName();
    const CachedName* follow(const CachedName* name) noexcept {
        last_->followingElse = last_->following;
        last_->following = name;
        return last_ = name;
    }

    InputStack& inputs_;
    ErrorReporter& errors_;
    bool isStrict_ = false;
    NameCache cache_;
    const CachedName first_{};  // stands before the first name
    const CachedName* last_ = &first_;
    UnitBuffer buffer_{XmlError::NameLimit};
    std::uint64_t mostNames_ = LumXmlLimits::off;       // of met_
    std::unordered_set<std::uint32_t, KeyedHash> met_;  // while there is a limit
};

}  // namespace LumCommon::detail
