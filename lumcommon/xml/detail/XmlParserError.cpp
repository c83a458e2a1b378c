#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace LumCommon::detail {

namespace {

struct ErrorRow {
    std::uint16_t code;
    std::u16string_view text;
};

constexpr ErrorRow errorRows[] = {
#define XML_ERROR(code, text) {code, u"" text},
#include <lumcommon/xml/XmlParserErrors.inc>
#undef XML_ERROR
};
static_assert(std::ranges::adjacent_find(errorRows, std::ranges::greater_equal{}, &ErrorRow::code) ==
              std::end(errorRows));

// Only these have a second form.
constexpr bool hasSecondForm(std::uint16_t baseCode) {
    return baseCode == 0x1806 || baseCode == 0x181D || baseCode == 0x181E;
}

}  // namespace

UnicodeString makeXmlErrorMessage(std::uint16_t code, const UnicodeString& a, const UnicodeString& b) {
    const auto baseCode = static_cast<std::uint16_t>(code & ~0x0600);
    const std::uint16_t key = hasSecondForm(baseCode) ? baseCode : code;
    const auto* const row = std::ranges::lower_bound(errorRows, key, {}, &ErrorRow::code);
    if (row == std::end(errorRows) || row->code != key) return u"XML parser error.";
    UnicodeString message;
    std::u16string_view rest = row->text;
    for (std::size_t brace = rest.find(u'{'); brace != rest.npos; brace = rest.find(u'{')) {
        append(message, rest.substr(0, brace));
        append(message, rest[brace + 1] == u'A' ? a : b);
        rest.remove_prefix(brace + 3);
    }
    append(message, rest);
    return message;
}

}  // namespace LumCommon::detail
