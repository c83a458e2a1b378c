#include <lumcommon/lang/LumLang.h>

#include <algorithm>
#include <array>

namespace LumCommon {

namespace {

struct Code {
    std::string_view bibliographic;
    std::string_view terminology;
};

constexpr Code CODES[] = {
#define LUM_CODE(bibliographic, terminology) {bibliographic, terminology},
#include <lumcommon/lang/BibliographicCodes.inc>
#undef LUM_CODE
};

static_assert(std::size(CODES) == ISO639Bibliographic::COUNT);
static_assert(std::ranges::is_sorted(CODES, {}, &Code::bibliographic));

constexpr std::size_t CODE_LENGTH = 3;
constexpr std::int32_t LONGEST_CODE = 4;  // "none"

constexpr bool isAsciiLetter(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }

const Code* findCode(std::string_view code) {
    const Code* found = std::ranges::lower_bound(CODES, code, {}, &Code::bibliographic);
    return found != std::end(CODES) && found->bibliographic == code ? found : nullptr;
}

char16_t getUnit(std::string_view text, std::size_t index) { return static_cast<unsigned char>(text[index]); }
char16_t getUnit(const UnicodeString& text, std::size_t index) { return text[static_cast<std::int32_t>(index)]; }

/// How many characters at the start of a tag may be a bibliographic code.
template <class Text>
std::size_t getCodeLength(const Text& tag, std::size_t length) {
    return length > CODE_LENGTH && !isAsciiLetter(getUnit(tag, CODE_LENGTH)) ? CODE_LENGTH : length;
}

std::string toBytes(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

std::string toLocaleId(const UnicodeString& tag) { return ISO639Bibliographic::get(toBytes(tag).c_str()); }

}  // namespace

const ISO639Bibliographic s_ISO639Bibliographic;

std::string ISO639Bibliographic::get(const char* text) {
    const std::string_view tag(text ? text : "");
    const std::string_view code = tag.substr(0, getCodeLength(tag, tag.size()));
    const Code* found = findCode(code);
    std::string result(found ? found->terminology : code);
    result += tag.substr(code.size());
    return result;
}

UnicodeString ISO639Bibliographic::get(const UnicodeString& tag) {
    const auto length = static_cast<std::int32_t>(getCodeLength(tag, static_cast<std::size_t>(tag.length())));
    const Code* found = length <= LONGEST_CODE ? findCode(toBytes(tag.tempSubString(0, length))) : nullptr;
    if (!found) return tag;
    return UnicodeString(tag).replace(0, length, UnicodeString::fromUTF8(found->terminology));
}

LumLang::LumLang(const UnicodeString& tag) : icu::Locale(toLocaleId(tag).c_str()) {}

LumLang::LumLang(const char* tag) : icu::Locale(ISO639Bibliographic::get(tag).c_str()) {}

LumLang::LumLang(const UnicodeString& languageCode, const UnicodeString& countryCode)
    : icu::Locale(toLocaleId(languageCode).c_str(), toBytes(countryCode).c_str()) {}

LumLang::LumLang(LumName name) : LumLang(name.getString()) {}

void LumLang::cleanup() {}

}  // namespace LumCommon
