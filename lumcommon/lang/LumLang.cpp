#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/lang/LumLang.h>

#include <unicode/uloc.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <new>
#include <string>

namespace LumCommon {

namespace {

struct Code {
    std::u16string_view bibliographic;
    std::u16string_view terminology;
};

constexpr Code CODES[] = {
#define LUM_CODE(bibliographic, terminology) {u##bibliographic, u##terminology},
#include <lumcommon/lang/BibliographicCodes.inc>
#undef LUM_CODE
};

static_assert(std::size(CODES) == ISO639Bibliographic::COUNT);
static_assert(std::ranges::is_sorted(CODES, {}, &Code::bibliographic));

constexpr std::int32_t CODE_LENGTH = 3;

const Code* findCode(std::u16string_view code) {
    const Code* found = std::ranges::lower_bound(CODES, code, {}, &Code::bibliographic);
    return found != std::end(CODES) && found->bibliographic == code ? found : nullptr;
}

std::string toLocaleId(const UnicodeString& tag) { return detail::utf8Of(ISO639Bibliographic::get(tag)); }

/// Whether ICU can parse the identifier; if so, a locale that is bogus nevertheless has found no memory.
bool isReadable(const std::string& id) {
    std::array<char, ULOC_FULLNAME_CAPACITY + 1> name{};
    UErrorCode error = U_ZERO_ERROR;
    uloc_getName(id.c_str(), name.data(), ULOC_FULLNAME_CAPACITY, &error);
    if (U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR) return error == U_MEMORY_ALLOCATION_ERROR;
    return std::strcspn(name.data(), "_@.") < ULOC_LANG_CAPACITY;
}

icu::Locale makeLocale(const std::string& language, const std::string& country = {}) {
    icu::Locale locale(language.c_str(), country.empty() ? nullptr : country.c_str());
    if (locale.isBogus() && isReadable(country.empty() ? language : language + '_' + country)) throw std::bad_alloc();
    return locale;
}

}  // namespace

const ISO639Bibliographic s_ISO639Bibliographic;

UnicodeString ISO639Bibliographic::get(const UnicodeString& tag) {
    const bool endsEarly = tag.length() > CODE_LENGTH && !detail::isAsciiLetter(tag[CODE_LENGTH]);
    const std::int32_t length = endsEarly ? CODE_LENGTH : tag.length();
    const Code* found = findCode({tag.getBuffer(), static_cast<std::size_t>(length)});
    if (!found) return detail::copyOf(tag);
    UnicodeString result = detail::textOf(found->terminology);
    detail::append(result, detail::viewOf(tag).substr(static_cast<std::size_t>(length)));
    return result;
}

LumLang::LumLang(const UnicodeString& tag) : icu::Locale(makeLocale(toLocaleId(tag))) {}

LumLang::LumLang(const char* tag) : LumLang(detail::checked(UnicodeString::fromUTF8(tag ? tag : ""))) {}

LumLang::LumLang(const UnicodeString& languageCode, const UnicodeString& countryCode)
    : icu::Locale(makeLocale(toLocaleId(languageCode), detail::utf8Of(countryCode))) {}

LumLang::LumLang(const LumLang& other) : icu::Locale(other) {
    // ICU copies what it has memory for and says nothing.
    const bool isComplete = (getName() || !other.getName()) && (getBaseName() || !other.getBaseName());
    if (!isComplete || isBogus() != other.isBogus()) throw std::bad_alloc();
}

LumLang& LumLang::operator=(const LumLang& other) { return *this = LumLang(other); }

LumLang::LumLang(LumName name) : LumLang(name.getString()) {}

void LumLang::cleanup() {}

}  // namespace LumCommon
