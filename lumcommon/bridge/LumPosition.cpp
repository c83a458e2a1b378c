#include <lumcommon/bridge/LumPosition.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/xml/LumXmlParser.h>

#include <cstdint>
#include <limits>
#include <string_view>

namespace LumCommon {
namespace {

using View = std::u16string_view;

/// Takes `label` and the number after it from the end of `text`. -1, with nothing taken, if it does not end so.
int takeNumber(View& text, View label) {
    const std::size_t start = text.find_last_not_of(u"0123456789") + 1;  // 0 if there is nothing else
    if (start == text.size() || !text.substr(0, start).ends_with(label)) return -1;
    std::int64_t number = 0;
    for (const char16_t digit : text.substr(start)) {
        number = number * 10 + (digit - u'0');
        if (number > std::numeric_limits<int>::max()) return -1;
    }
    text = text.substr(0, start - label.size());
    return static_cast<int>(number);
}

/// What the parser writes after a line break: the event, the resource in quotes, line and column, as far as known.
bool readDescription(View text, LumPosition& position) {
    for (int type = LumXmlParser::START_DOCUMENT; type <= LumXmlParser::DOCDECL; ++type) {
        const UnicodeString event = LumXmlParser::getEventTypeStr(type);
        View rest = text;
        if (!rest.starts_with(detail::viewOf(event)) || !rest.ends_with(u'.')) continue;
        rest.remove_prefix(static_cast<std::size_t>(event.length()));
        rest.remove_suffix(1);
        const int column = takeNumber(rest, u", Col ");
        const int line = takeNumber(rest, u", Line ");
        const bool isQuoted = rest.size() >= 4 && rest.starts_with(u", '") && rest.ends_with(u'\'');
        if (!rest.empty() && !isQuoted) continue;
        position = {line, column, isQuoted ? detail::textOf(rest.substr(3, rest.size() - 4)) : UnicodeString()};
        return true;
    }
    return false;
}

/// Only the parser's own messages end with a position. Others may hold the name of a file that looks like one.
bool isOfParser(const LumError& error) {
    return error.source == UnicodeString(u"LumCommon::XmlParserImpl") ||
           error.source == getCommonErrorSource(LumCommonErrorSource::ParserCheckStream);
}

}  // namespace

LumPosition positionOf(const LumError& error) {
    LumPosition position{error.line, error.column, detail::copyOf(error.location)};
    if (position || !isOfParser(error)) return position;
    // The name of a resource may have line breaks as well, so the first description that is one counts.
    const View message = detail::viewOf(error.message);
    for (std::size_t end = message.find(u'\n'); end != View::npos; end = message.find(u'\n', end + 1)) {
        if (readDescription(message.substr(end + 1), position)) break;
    }
    return position;
}

LumPosition positionOf(const LumXmlParser& parser) {
    return {parser.getLineNumber(), parser.getColumnNumber(), detail::checked(parser.getBaseUri())};
}

LumPosition positionOf(const LumNode& node) {
    LumPosition position{node.getSourceLineNumber(), node.getSourceColumnNumber(), UnicodeString()};
    const LumDocument* document = node.getOwnerDocument();
    if (!document && node.isA(LumDocument::TYPE_ID)) document = static_cast<const LumDocument*>(&node);
    if (document) position.location = detail::copyOf(document->getDocumentUri());
    return position;
}

}  // namespace LumCommon
