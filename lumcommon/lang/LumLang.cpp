#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/lang/LumLang.h>

#include <algorithm>
#include <iterator>
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

std::string toBytes(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

std::string toLocaleId(const UnicodeString& tag) { return toBytes(ISO639Bibliographic::get(tag)); }

}  // namespace

const ISO639Bibliographic s_ISO639Bibliographic;

UnicodeString ISO639Bibliographic::get(const UnicodeString& tag) {
    const bool endsEarly = tag.length() > CODE_LENGTH && !detail::isAsciiLetter(tag[CODE_LENGTH]);
    const std::int32_t length = endsEarly ? CODE_LENGTH : tag.length();
    const Code* found = findCode({tag.getBuffer(), static_cast<std::size_t>(length)});
    if (!found) return tag;
    const std::u16string_view code = found->terminology;
    return UnicodeString(tag).replace(0, length, code.data(), static_cast<std::int32_t>(code.size()));
}

LumLang::LumLang(const UnicodeString& tag) : icu::Locale(toLocaleId(tag).c_str()) {}

LumLang::LumLang(const char* tag) : LumLang(UnicodeString::fromUTF8(tag ? tag : "")) {}

LumLang::LumLang(const UnicodeString& languageCode, const UnicodeString& countryCode)
    : icu::Locale(toLocaleId(languageCode).c_str(), toBytes(countryCode).c_str()) {}

LumLang::LumLang(LumName name) : LumLang(name.getString()) {}

void LumLang::cleanup() {}

}  // namespace LumCommon
