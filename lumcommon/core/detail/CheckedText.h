#pragma once

#include <lumcommon/core/Text.h>

#include <unicode/utypes.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <utility>

/// Strings that are what they should be, or std::bad_alloc.
///
/// ICU's strings do not throw: one that finds no memory becomes bogus, silently, and what was in it is lost. Wherever
/// the library makes, copies or extends a string that may need memory, it does so by these functions, so that no text
/// is lost without a word.
/// Errors: std::bad_alloc; also for a text of more than 2^31-1 units, which no string can hold.
namespace LumCommon::detail {

/// The units of `text`; empty for a bogus string. Valid until `text` changes.
inline std::u16string_view viewOf(const UnicodeString& text) noexcept {
    return text.isEmpty() ? std::u16string_view()
                          : std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

/// Returns `text`: the result of an operation that is bogus only where memory ran out.
inline UnicodeString checked(UnicodeString&& text) {
    if (text.isBogus()) throw std::bad_alloc();
    return std::move(text);
}

/// The same after an operation that has changed `text`, or of a copy that another object has made.
template <class Text>
Text& checked(Text& text) {
    if (text.isBogus()) throw std::bad_alloc();
    return text;
}

inline std::int32_t checkedLength(std::size_t units) {
    if (units > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) throw std::bad_alloc();
    return static_cast<std::int32_t>(units);
}

/// After a call of ICU: throws when memory ran out in it. Other errors are the caller's.
inline void checkMemory(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
}

/// A copy of its own.
inline UnicodeString textOf(std::u16string_view text) {
    return checked(UnicodeString(text.data(), checkedLength(text.size())));
}

/// The text in UTF-8; U+FFFD for unpaired surrogates.
std::string utf8Of(const UnicodeString& text);

/// A copy, bogus when `text` is.
inline UnicodeString copyOf(const UnicodeString& text) {
    UnicodeString copy(text);
    if (copy.isBogus() && !text.isBogus()) throw std::bad_alloc();
    return copy;
}

/// Replaces `to` by a copy, bogus when `text` is. When this throws, `to` is unchanged.
inline void assign(UnicodeString& to, const UnicodeString& text) {
    UnicodeString copy = copyOf(text);
    to.swap(copy);
}

// Appending to a text that is not bogus. When these throw, it is.

inline UnicodeString& append(UnicodeString& to, std::u16string_view text) {
    return checked(to.append(text.data(), checkedLength(text.size())));
}
inline UnicodeString& append(UnicodeString& to, const char16_t* text) { return append(to, std::u16string_view(text)); }
/// A bogus `text` counts as empty.
inline UnicodeString& append(UnicodeString& to, const UnicodeString& text) { return checked(to.append(text)); }
inline UnicodeString& append(UnicodeString& to, char16_t unit) { return checked(to.append(unit)); }
inline UnicodeString& append(UnicodeString& to, char32_t codePoint) {
    return checked(to.append(static_cast<UChar32>(codePoint)));
}

/// The texts, one after the other: strings, views, literals and single units.
template <class... Texts>
UnicodeString joined(const Texts&... texts) {
    UnicodeString whole;
    (append(whole, texts), ...);
    return whole;
}

/// Malformed bytes become U+FFFD.
inline UnicodeString fromUtf8(std::string_view bytes) {
    return checked(UnicodeString::fromUTF8(icu::StringPiece(bytes.data(), checkedLength(bytes.size()))));
}

}  // namespace LumCommon::detail
