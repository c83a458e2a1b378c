#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/format/xls/detail/XlsCodeScan.h>
#include <lumcommon/format/xls/detail/XlsDateNames.h>
#include <lumcommon/format/xls/detail/XlsTables.h>

#include <algorithm>
#include <charconv>
#include <string>

namespace LumCommon::detail {

namespace {

std::u16string_view trimmed(std::u16string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

/// Lossless for the characters of numbers and language tags.
std::string toAscii(std::u16string_view text) {
    std::string result;
    for (const char16_t c : text) result.push_back(c < 0x80 ? static_cast<char>(c) : '?');
    return result;
}

void appendBracketed(UnicodeString& text, std::u16string_view content) {
    append(text, u'[');
    append(text, content);
    append(text, u']');
}

}  // namespace

int XlsCodeScan::run() {
    const auto length = static_cast<std::int32_t>(code_.size());
    while (at_ < length) {
        if (code_[static_cast<std::size_t>(at_)] == ';') {
            if (count_ == 4) break;
            ++count_;
            ++at_;
        } else {
            element();
        }
    }
    for (int i = 0; i < count_; ++i) {
        for (const XlsRawPiece& piece : sections_[i].pieces) {
            isJapanese_ = isJapanese_ || (piece.token == XlsToken::LETTERS && (piece.unit == 'g' || piece.unit == 'r'));
        }
    }
    return count_;
}

void XlsCodeScan::add(XlsToken token, char32_t unit, std::int32_t length, std::int32_t count) {
    raw().pieces.push_back({token, unit, at_, at_ + length, count});
    at_ += length;
}

void XlsCodeScan::literal(std::int32_t begin, std::int32_t end) {
    if (begin != end) raw().pieces.push_back({XlsToken::LITERAL, 0, begin, end, 1});
}

void XlsCodeScan::run(XlsToken token, char32_t unit) {
    std::size_t end = static_cast<std::size_t>(at_);
    while (end < code_.size() && toLowerAscii(code_[end]) == unit) ++end;
    const std::int32_t length = static_cast<std::int32_t>(end) - at_;
    add(token, unit, length, length);
}

bool XlsCodeScan::startsWith(std::u16string_view word, bool ignoreCase) const {
    const std::u16string_view here = code_.substr(static_cast<std::size_t>(at_), word.size());
    return ignoreCase ? equalsIgnoringAsciiCase(here, word) : here == word;
}

void XlsCodeScan::element() {
    const char16_t c = code_[static_cast<std::size_t>(at_)];
    switch (c) {
        case '0':
            return run(XlsToken::DIGIT_0, c);
        case '#':
            return run(XlsToken::DIGIT_OPTIONAL, c);
        case '?':
            return run(XlsToken::DIGIT_SPACED, c);
        case '.':
            return add(XlsToken::POINT, c, 1);
        case ',':
            return add(XlsToken::COMMA, c, 1);
        case '%':
            return add(XlsToken::PERCENT, c, 1);
        case '/':
            return add(XlsToken::SLASH, c, 1);
        case '@':
            return add(XlsToken::AT, c, 1);
        case '\\':
            return withCharacter(XlsToken::LITERAL);
        case '_':
            return withCharacter(XlsToken::SKIP);
        case '*':
            return withCharacter(XlsToken::FILL);
        case '"':
            return quoted();
        case '[':
            return bracket();
        default:
            break;
    }
    if (c >= '1' && c <= '9') return add(XlsToken::DIGIT_LITERAL, c, 1);
    letter(toLowerAscii(c));
}

void XlsCodeScan::letter(char16_t lower) {
    constexpr std::u16string_view general = u"General";
    switch (lower) {
        case 'g':
            if (startsWith(general, true)) return add(XlsToken::GENERAL, 0, static_cast<std::int32_t>(general.size()));
            for (const std::u16string_view word : xlsLocalGenerals) {
                if (!rules_.readsLocalWords || !startsWith(word, true)) continue;
                return add(XlsToken::GENERAL, 0, static_cast<std::int32_t>(word.size()));
            }
            [[fallthrough]];
        case 'y':
        case 'm':
        case 'd':
        case 'h':
        case 's':
        case 'r':
            return run(XlsToken::LETTERS, lower);
        case 'e': {
            const auto next = static_cast<std::size_t>(at_) + 1;
            if (next < code_.size() && (code_[next] == '+' || code_[next] == '-')) {
                return add(XlsToken::EXPONENT, code_[next], 2);
            }
            return run(XlsToken::LETTERS_E, lower);
        }
        case 'a':
            for (int form = 1; form < XLS_AMPM_CHINESE; ++form) {
                if (startsWith(xlsAmPm(form), rules_.capitalizesAmPm && form <= XLS_AMPM_WORDS)) return amPm(form);
            }
            if (rules_.readsAllDateLetters && startsWith(u"aaa", true)) return run(XlsToken::LETTERS, lower);
            break;
        case 'b':
            if (!rules_.readsAllDateLetters) break;
            if (!startsWith(u"b1", true) && !startsWith(u"b2", true)) return run(XlsToken::LETTERS, lower);
            at_ += 2;  // marks of a calendar
            return;
        case u'\u4E0A':
            if (rules_.readsLocalWords && startsWith(xlsAmPm(XLS_AMPM_CHINESE), false)) return amPm(XLS_AMPM_CHINESE);
            break;
        default:
            break;
    }
    literal(at_, at_ + 1);
    ++at_;
}

void XlsCodeScan::quoted() {
    const std::int32_t begin = at_ + 1;
    const std::size_t close = std::min(code_.find(u'"', static_cast<std::size_t>(begin)), code_.size());
    literal(begin, static_cast<std::int32_t>(close));
    at_ = static_cast<std::int32_t>(std::min(close + 1, code_.size()));
}

void XlsCodeScan::withCharacter(XlsToken token) {
    const std::int32_t begin = ++at_;
    const auto length = static_cast<std::int32_t>(code_.size());
    if (begin == length) return;
    UChar32 character = 0;
    U16_NEXT(code_.data(), at_, length, character);
    raw().pieces.push_back({token, static_cast<char32_t>(character), begin, at_, 1});
}

void XlsCodeScan::bracket() {
    const std::int32_t begin = at_ + 1;
    // After the last closing bracket, do not search the rest of the code for each opening one.
    if (lastClose_ == code_.npos || static_cast<std::size_t>(at_) > lastClose_) {
        literal(at_, begin);
        ++at_;
        return;
    }
    const std::size_t close = code_.find(u']', static_cast<std::size_t>(begin));
    at_ = static_cast<std::int32_t>(close) + 1;
    const std::u16string_view content =
        code_.substr(static_cast<std::size_t>(begin), close - static_cast<std::size_t>(begin));
    if (content.empty()) return;
    if (content.front() == xlsKeyword(XLS_CURRENCY).front()) return currency(begin, content);
    for (int keyword = XLS_HOURS; keyword <= XLS_SECONDS; ++keyword) {
        const char16_t letter = xlsKeyword(keyword).front();
        if (!std::ranges::all_of(content, [&](char16_t c) { return toLowerAscii(c) == letter; })) continue;
        raw().pieces.push_back({XlsToken::ELAPSED, letter, begin, static_cast<std::int32_t>(close),
                                static_cast<std::int32_t>(content.size())});
        return;
    }
    if (!color(content) && !condition(content)) styleBracket(content);
}

bool XlsCodeScan::color(std::u16string_view content) {
    int number = 0;
    for (int keyword = XLS_BLACK; keyword <= XLS_CYAN; ++keyword) {
        if (equalsIgnoringAsciiCase(content, xlsKeyword(keyword))) number = keyword + 1;
    }
    const std::u16string_view word = xlsKeyword(XLS_COLOR);
    if (number == 0) {
        if (!startsWithIgnoringAsciiCase(content, word)) return false;
        const std::string digits = toAscii(trimmed(content.substr(word.size())));
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (error != std::errc() || end != digits.data() + digits.size()) return false;
        if (number < 1 || number > XLS_PALETTE_COLORS) return false;
    }
    if (current().color != 0) return true;
    current().color = number;
    if (number <= XLS_CYAN + 1) {
        appendBracketed(raw().prefix, xlsKeyword(number - 1));
    } else {
        appendBracketed(raw().prefix, std::u16string(word) + static_cast<char16_t>('0' + number / 10) +
                                          static_cast<char16_t>('0' + number % 10));
    }
    return true;
}

bool XlsCodeScan::condition(std::u16string_view content) {
    for (int keyword = XLS_FIRST_OPERATOR; keyword <= XLS_LAST_OPERATOR; ++keyword) {
        const std::u16string_view word = xlsKeyword(keyword);
        if (!content.starts_with(word)) continue;
        std::string digits = toAscii(trimmed(content.substr(word.size())));
        if (digits.starts_with('+')) digits.erase(0, 1);
        double operand = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), operand);
        if (error != std::errc() || end != digits.data() + digits.size() || !(operand - operand == 0)) return false;
        if (current().condition != 0) return true;
        current().condition = keyword - XLS_FIRST_OPERATOR + 1;
        current().operand = operand;
        char text[32];
        const auto last = std::to_chars(text, text + sizeof text, operand).ptr;
        appendBracketed(raw().prefix, std::u16string(word) + std::u16string(text, last));
        return true;
    }
    return false;
}

bool XlsCodeScan::styleBracket(std::u16string_view content) {
    for (int keyword = XLS_DBNUM1; keyword <= XLS_DBNUM3; ++keyword) {
        if (!equalsIgnoringAsciiCase(content, xlsKeyword(keyword))) continue;
        if (current().dbNum != 0) return true;
        current().dbNum = keyword - XLS_DBNUM1 + 1;
        appendBracketed(raw().prefix, xlsKeyword(keyword));
        return true;
    }
    return false;
}

/// A tag is a hexadecimal number of eight digits at most: two for the numerals, two for the calendar, four for the
/// language; or the name of a language, perhaps with the first half of that number after a comma.
XlsCodeScan::Tag XlsCodeScan::parsedTag(std::u16string_view text) const {
    const std::string ascii = toAscii(text);
    const auto isNumber = [](std::string_view digits, unsigned& number) {
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
        return error == std::errc() && end == digits.data() + digits.size();
    };
    Tag tag;
    unsigned number = 0;
    if (isNumber(ascii, number)) {
        tag.language = number & 0xFFFFu;
        number >>= 16;
    } else {
        const std::size_t comma = rules_.readsWholeTags ? std::min(ascii.find(','), ascii.size()) : ascii.size();
        const std::u16string_view name = text.substr(0, comma);
        const bool isJapanese =
            equalsIgnoringAsciiCase(name.substr(0, 2), u"ja") && (name.size() == 2 || name[2] == '-');
        if (isJapanese) {
            tag.language = XLS_JAPANESE;
        } else if (rules_.readsWholeTags) {
            tag.language = xlsLanguageNumber(ascii.substr(0, comma));
        }
        if (comma == ascii.size() || !isNumber(std::string_view(ascii).substr(comma + 1), number)) number = 0;
    }
    if (!rules_.readsWholeTags) return tag;
    tag.namesFirstYear = equalsIgnoringAsciiCase(text, xlsFirstYearNamed);
    tag.numerals = xlsNumeralZero(number >> 8 & 0xFFu) != u'0' ? number >> 8 & 0xFFu : 0;
    tag.calendar = xlsCalendarYears(number & 0xFFu) != 0 ? number & 0xFFu : 0;
    return tag;
}

void XlsCodeScan::currency(std::int32_t begin, std::u16string_view content) {
    // The symbol extends to the hyphen, after which a tag follows.
    const std::size_t hyphen = std::min(content.find(u'-'), content.size());
    literal(begin + 1, begin + static_cast<std::int32_t>(hyphen));
    if (hyphen == content.size()) return;
    const Tag tag = parsedTag(content.substr(hyphen + 1));
    const unsigned number = tag.numerals << 24 | tag.calendar << 16 | tag.language;
    if (number == 0) return;
    constexpr unsigned primaryLanguage = 0x3FF;
    isJapanese_ = isJapanese_ || (tag.language & primaryLanguage) == (XLS_JAPANESE & primaryLanguage);
    FMT& section = current();
    if (section.locale != 0 || section.numerals != 0 || section.calendar != 0) return;
    section.locale = tag.language;
    section.numerals = static_cast<int>(tag.numerals);
    section.calendar = static_cast<int>(tag.calendar);
    section.namesFirstYear = tag.namesFirstYear;
    if (tag.namesFirstYear) {
        appendBracketed(raw().prefix, u"$-" + std::u16string(xlsFirstYearNamed));
        return;
    }
    char digits[16];
    const auto last = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    appendBracketed(raw().prefix, u"$-" + std::u16string(digits, last));
}

}  // namespace LumCommon::detail
