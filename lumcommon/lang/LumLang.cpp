#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/lang/LumLang.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <string>
#include <vector>

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

icu::Locale makeLocale(const std::string& language, const std::string& country = {}) {
    const auto make = [&] { return icu::Locale(language.c_str(), country.empty() ? nullptr : country.c_str()); };
    icu::Locale locale = make();
    if (!locale.isBogus()) return locale;
    // ICU does not tell an identifier without sense from one that it has found no memory for. A second try does, once
    // there is memory.
    const std::vector<char> needed(4096 + 8 * (language.size() + country.size()));
    return make();
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
