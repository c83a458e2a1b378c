#pragma once

#include <lumcommon/core/LumError.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/xml/LumXmlParser.h>

#include <cstdio>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/PieceStream.h"

namespace LumTest {

using LumCommon::LumError;
using LumCommon::LumName;
using LumCommon::LumPtr;
using LumCommon::LumXmlParser;
using LumCommon::LumXmlUtil;
using LumCommon::UnicodeString;

inline UnicodeString fromUtf8(std::string_view text) {
    return UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}
inline std::string toUtf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}
/// Printable ASCII as it is, everything else by number: what differs in a failed comparison can be seen.
inline std::string escape(const UnicodeString& text) {
    if (text.isBogus()) return "bogus";
    std::string shown = "\"";
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 c = text.char32At(i);
        if (c >= 0x20 && c < 0x7F) {
            shown += static_cast<char>(c);
        } else {
            char number[16];
            std::snprintf(number, sizeof number, "\\u%04X", static_cast<unsigned>(c));
            shown += number;
        }
    }
    return shown + "\"";
}

struct Position {
    int line = -1;
    int column = -1;
    friend bool operator==(const Position&, const Position&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Position& p) { return out << p.line << ':' << p.column; }
};

/// What the accessors say about one event.
struct EventRecord {
    std::string event;  ///< see describe()
    Position position;
    friend bool operator==(const EventRecord&, const EventRecord&) = default;
    friend std::ostream& operator<<(std::ostream& out, const EventRecord& r) {
        return out << r.event << " at " << r.position;
    }
};

inline std::string showName(LumName prefix, LumName name, LumName uri) {
    std::string shown = uri.isNull() ? "" : "{" + toUtf8(uri.getString()) + "}";
    if (!prefix.isNull()) shown += toUtf8(prefix.getString()) + ":";
    return shown + toUtf8(name.getString());
}

/// The event as text: type, depth and data, for instance
///     START_TAG 1 {uri}p:name {uri}p:attribute="value" /        (the slash: an empty element)
///     TEXT 1 "a b" and TEXT 1 " " ws                            (ws: isWhitespace() says so)
///     ENTITY_REF 1 amp "&#38;"
inline std::string describe(const LumXmlParser& parser) {
    const LumXmlParser::EventType type = parser.getEventType();
    std::string shown = toUtf8(LumXmlParser::getEventTypeStr(type)) + " " + std::to_string(parser.getDepth());
    switch (type) {
        case LumXmlParser::START_TAG:
        case LumXmlParser::END_TAG:
            shown += " " + showName(parser.getPrefix(), parser.getName(), parser.getNamespace());
            for (int i = 0; i < parser.getAttributeCount(); ++i) {
                shown += " " +
                         showName(parser.getAttributePrefix(i), parser.getAttributeName(i),
                                  parser.getAttributeNamespace(i)) +
                         "=" + escape(parser.getAttributeValue(i));
            }
            if (type == LumXmlParser::START_TAG && parser.isEmptyElementTag()) shown += " /";
            break;
        case LumXmlParser::TEXT:
        case LumXmlParser::CDSECT:
        case LumXmlParser::IGNORABLE_WHITESPACE:
            shown += " " + escape(parser.getText()) + (parser.isWhitespace() ? " ws" : "");
            break;
        case LumXmlParser::ENTITY_REF:
            shown += " " + toUtf8(parser.getName().getString()) + " " + escape(parser.getText());
            break;
        case LumXmlParser::PROCESSING_INSTRUCTION:
        case LumXmlParser::COMMENT:
        case LumXmlParser::DOCDECL:
            shown += " " + escape(parser.getText());
            break;
        default:
            break;
    }
    return shown;
}

enum class Pull { events, tokens };  // next() or nextToken()

inline LumXmlParser::EventType pull(LumXmlParser& parser, Pull how) {
    return how == Pull::events ? parser.next() : parser.nextToken();
}
inline Position getPosition(const LumXmlParser& parser) { return {parser.getLineNumber(), parser.getColumnNumber()}; }

/// What a parser is told besides the document.
struct Setup {
    std::vector<LumXmlParser::Feature> features = {};
    std::string encoding = {};
    std::string baseUri = {};
    std::vector<std::pair<std::string, std::string>> entities =
        {};  // defined after setInput, which forgets earlier ones
};

inline LumPtr<LumXmlParser> openParser(std::istream& in, const Setup& setup = {}) {
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    for (const LumXmlParser::Feature feature : setup.features) parser->setFeature(feature, true);
    parser->setInput(in, fromUtf8(setup.encoding), fromUtf8(setup.baseUri));
    for (const auto& [name, text] : setup.entities)
        parser->defineEntityReplacementText(LumName(fromUtf8(name)), fromUtf8(text));
    return parser;
}

/// All events up to the end of the document; an error is the last record, with the position in its message.
inline std::vector<EventRecord> recordEvents(std::string_view document, Pull how, const Setup& setup = {},
                                             std::size_t pieceBytes = wholeInput) {
    std::vector<EventRecord> records;
    PieceStream in(document, pieceBytes);
    try {
        const LumPtr<LumXmlParser> parser = openParser(in, setup);
        LumXmlParser::EventType type = LumXmlParser::START_DOCUMENT;
        while (type != LumXmlParser::END_DOCUMENT) {
            type = pull(*parser, how);
            records.push_back({describe(*parser), getPosition(*parser)});
        }
    } catch (const LumError& error) {
        records.push_back({"error " + toUtf8(error.getMessage()), {}});
    }
    return records;
}

inline std::vector<std::string> getDescriptions(const std::vector<EventRecord>& records) {
    std::vector<std::string> events;
    for (const EventRecord& record : records) events.push_back(record.event);
    return events;
}

/// A document with a bar behind the furthest character that has been read at each event, and where the bars stand.
struct MarkedDocument {
    std::string bytes;
    std::vector<Position> positions;
    Position end;
};

/// Cuts out the bars and counts characters and lines up to each.
/// A "<" at the very start does not count: it was read to recognise the encoding, not as a character.
inline MarkedDocument readMarks(std::string_view marked) {
    MarkedDocument document;
    Position here{1, marked.substr(0, 1) == "<" ? -1 : 0};
    bool afterReturn = false;
    for (std::size_t i = 0; i < marked.size(); ++i) {
        const auto byte = static_cast<unsigned char>(marked[i]);
        if (byte == '|') {
            document.positions.push_back(here);
            continue;
        }
        document.bytes += marked[i];
        const bool nextLine = byte == 0x85 && i > 0 && static_cast<unsigned char>(marked[i - 1]) == 0xC2;
        const bool lineSeparator = byte == 0xA8 && i > 1 && marked.substr(i - 2, 2) == "\xE2\x80";
        const bool completesReturn = afterReturn && (byte == '\n' || nextLine);
        if (byte == '\r' || ((byte == '\n' || nextLine || lineSeparator) && !completesReturn)) {
            here = {here.line + 1, 0};
        } else if (!completesReturn && (byte & 0xC0) != 0x80 && !(byte == 0xC2 && marked.substr(i + 1, 1) == "\x85") &&
                   marked.substr(i, 3) != "\xE2\x80\xA8") {
            ++here.column;
        }
        afterReturn = byte == '\r' || (afterReturn && byte == 0xC2);
    }
    document.end = here;
    return document;
}

}  // namespace LumTest
