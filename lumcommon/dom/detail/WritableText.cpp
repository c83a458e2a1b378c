#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/HexText.h>
#include <lumcommon/dom/detail/PlainText.h>
#include <lumcommon/dom/detail/WritableText.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <unicode/utf16.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

using View = std::u16string_view;

constexpr std::size_t longestTold = 64;  // units of what is wrong that a message repeats

[[noreturn]] void fail(View before, View told, View after) {
    UnicodeString message(u"SYSTEM ERROR: ");
    append(append(append(message, before), told.substr(0, longestTold)), told.size() > longestTold ? u"..." : u"");
    append(message, after);
    throw LumError(static_cast<std::uint16_t>(LumErrorCodeLumLIB::NotWritable), message,
                   textOf(u"LumCommon::XmlSerializerImpl::checkText"), -1, -1, UnicodeString());
}

/// The number of units of the name, without a colon, that the text begins with.
std::size_t measureName(View text) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t next = at;
        UChar32 c = 0;
        U16_NEXT(text.data(), next, text.size(), c);
        if (at == 0 ? !isXmlNameStart(c) : !isXmlNameChar(c)) break;
        at = next;
    }
    return at;
}

bool isDropped(char16_t c) noexcept { return c < ' ' && !isPlain(c, TEXT_RAW); }

/// Whether the text, as it is written, has `mark` in it; or would have, with `after` after it.
bool holds(View text, View mark, View after = {}) noexcept {
    std::size_t matched = 0;
    for (const View part : {text, after}) {
        for (const char16_t c : part) {
            if (isDropped(c)) continue;
            // In the marks there are, only the first character repeats.
            while (matched > 0 && mark[matched] != c) matched = mark[matched - 1] == c ? matched - 1 : 0;
            if (mark[matched] == c && ++matched == mark.size()) return true;
        }
    }
    return false;
}

}  // namespace

bool isNCName(View text) noexcept { return !text.empty() && measureName(text) == text.size(); }

bool isQualifiedName(View text) noexcept {
    const std::size_t size = measureName(text);
    if (size == 0 || size == text.size()) return size > 0;
    return text[size] == ':' && isNCName(text.substr(size + 1));
}

void failName(View name) { fail(u"'", name, u"' is not a name of XML."); }

void failCharacter(char16_t unit) {
    const char16_t digits[] = {hexDigit(unit >> 12), hexDigit(unit >> 8), hexDigit(unit >> 4), hexDigit(unit)};
    fail(u"XML has no character U+", {digits, 4}, u".");
}

void checkNCName(View name) {
    if (!isNCName(name)) failName(name);
}

void checkComment(View text) {
    if (holds(text, u"--", u"-")) fail(u"A comment holds '--' or ends with '-': ", text, u"");
}

void checkCData(View text) {
    if (holds(text, u"]]>")) fail(u"A CDATA section holds ']]>': ", text, u"");
}

void checkInstruction(View content) {
    const View target = content.substr(0, measureName(content));
    const bool isXml = target.size() == 3 && equalsIgnoringAsciiCase(target, u"xml");
    const bool isEnded = target.size() == content.size() || isXmlSpace(content[target.size()]);
    if (target.empty() || isXml || !isEnded) fail(u"A processing instruction has no target: ", content, u"");
    if (holds(content, u"?>")) fail(u"A processing instruction holds '?>': ", content, u"");
}

void checkSpace(View text) {
    if (!std::ranges::all_of(text, isXmlSpace)) fail(u"Not white space: ", text, u"");
}

void checkStandalone(View text) {
    if (text != u"yes" && text != u"no") fail(u"'", text, u"' is neither yes nor no.");
}

}  // namespace LumCommon::detail
