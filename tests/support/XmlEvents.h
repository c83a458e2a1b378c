#pragma once

#include <lumcommon/core/LumError.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/xml/LumXmlParser.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/EscapedRows.h"
#include "support/ExpectError.h"
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
inline std::string hexadecimal(unsigned number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%04X", number);
    return digits;
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
            shown += "\\u" + hexadecimal(static_cast<unsigned>(c));
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
    std::string shown = uri.isNull() ? "" : "{" + utf8(uri.getString()) + "}";
    if (!prefix.isNull()) shown += utf8(prefix.getString()) + ":";
    return shown + utf8(name.getString());
}

/// The event as text: type, depth and data, for instance
///     START_TAG 1 {uri}p:name {uri}p:attribute="value" /        (the slash: an empty element)
///     TEXT 1 "a b" and TEXT 1 " " ws                            (ws: isWhitespace() says so)
///     ENTITY_REF 1 amp "&#38;"
inline std::string describe(const LumXmlParser& parser) {
    const LumXmlParser::EventType type = parser.getEventType();
    std::string shown = utf8(LumXmlParser::getEventTypeStr(type)) + " " + std::to_string(parser.getDepth());
    if (type == LumXmlParser::START_TAG || type == LumXmlParser::END_TAG) {
        shown += " " + showName(parser.getPrefix(), parser.getName(), parser.getNamespace());
        for (int i = 0; i < parser.getAttributeCount(); ++i) {
            shown +=
                " " +
                showName(parser.getAttributePrefix(i), parser.getAttributeName(i), parser.getAttributeNamespace(i)) +
                "=" + escape(parser.getAttributeValue(i));
        }
        if (type == LumXmlParser::START_TAG && parser.isEmptyElementTag()) shown += " /";
    } else if (type != LumXmlParser::START_DOCUMENT && type != LumXmlParser::END_DOCUMENT) {
        if (type == LumXmlParser::ENTITY_REF) shown += " " + utf8(parser.getName().getString());
        shown += " " + escape(parser.getText());
        const bool isText = type == LumXmlParser::TEXT || type == LumXmlParser::CDSECT;
        if ((isText || type == LumXmlParser::IGNORABLE_WHITESPACE) && parser.isWhitespace()) shown += " ws";
    }
    return shown;
}

enum class Pull { events, tokens };  // next() or nextToken()

inline LumXmlParser::EventType pull(LumXmlParser& parser, Pull how) {
    return how == Pull::events ? parser.next() : parser.nextToken();
}
inline Position getPosition(const LumXmlParser& parser) { return {parser.getLineNumber(), parser.getColumnNumber()}; }

/// What a parser is told besides the document.
struct ParserSetup {
    std::vector<LumXmlParser::Feature> features = {};
    std::string encoding = {};
    std::string baseUri = {};
    std::vector<std::pair<std::string, std::string>> entities =
        {};  // defined after setInput, which forgets earlier ones
    void (*onError)(const LumError& error, void* data) = nullptr;
    void* onErrorData = nullptr;
    bool goesOn = false;  // recordEvents() notes errors and lets the parser go on
};

/// What a parser is told, in the words of a data file: features, and entities as name=text without a space.
inline ParserSetup readSetup(const std::string& words) {
    static constexpr const char* features[] = {"skip-dtd",          "ignore-undefined", "undeclared-prefix",
                                               "ignore-dtd-errors", "ignore-encoding",  "builtin-only",
                                               "conforming",        "no-external"};
    ParserSetup setup;
    std::istringstream in(words);
    for (std::string word; std::getline(in, word, ' ');) {
        const std::size_t equals = word.find('=');
        const auto feature = std::find(std::begin(features), std::end(features), word);
        if (equals != std::string::npos) {
            setup.entities.emplace_back(word.substr(0, equals), word.substr(equals + 1));
        } else if (feature != std::end(features)) {
            setup.features.push_back(static_cast<LumXmlParser::Feature>(feature - std::begin(features)));
        } else {
            EXPECT_EQ(word, "go-on");
            setup.goesOn = true;
        }
    }
    return setup;
}

inline LumPtr<LumXmlParser> openParser(std::istream& in, const ParserSetup& setup = {},
                                       LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser()) {
    for (const LumXmlParser::Feature feature : setup.features) parser->setFeature(feature, true);
    parser->setCallbackError(setup.onError, setup.onErrorData);
    parser->setInput(in, fromUtf8(setup.encoding), fromUtf8(setup.baseUri));
    for (const auto& [name, text] : setup.entities)
        parser->defineEntityReplacementText(LumName(fromUtf8(name)), fromUtf8(text));
    return parser;
}

/// All events up to the end of the document; an error is the last record. Where the parser goes on, its errors are
/// records too, with the event and the position that the parser tells at the time.
inline std::vector<EventRecord> recordEvents(std::string_view document, Pull how, ParserSetup setup = {},
                                             std::size_t pieceBytes = wholeInput) {
    constexpr std::size_t tooManyRecords = 1000000;
    struct Story {
        std::vector<EventRecord> records;
        LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    } story;
    if (setup.goesOn) {
        setup.onErrorData = &story;
        setup.onError = [](const LumError& error, void* data) {
            auto& [records, parser] = *static_cast<Story*>(data);
            const std::string event = utf8(LumXmlParser::getEventTypeStr(parser->getEventType()));
            records.push_back({"told " + describe(error) + ", " + event, getPosition(*parser)});
            if (records.size() > 1000) throw LumError(error);
        };
    }
    PieceStream in(document, pieceBytes);
    try {
        openParser(in, setup, story.parser);
        LumXmlParser::EventType type = LumXmlParser::START_DOCUMENT;
        while (type != LumXmlParser::END_DOCUMENT && story.records.size() < tooManyRecords) {
            type = pull(*story.parser, how);
            story.records.push_back({describe(*story.parser), getPosition(*story.parser)});
        }
    } catch (const LumError& error) {
        story.records.push_back({"error " + describe(error), {}});
    }
    return story.records;
}

/// With the attributes sorted, as their order tells nothing.
inline std::string startTag(const std::string& name, std::vector<std::string>& attributes) {
    std::sort(attributes.begin(), attributes.end());
    std::string tag = "<" + name;
    for (const std::string& attribute : attributes) tag += " " + attribute;
    return tag + ">";
}

/// Tags and text as they are read, without declarations of namespaces; an error by its code:
///     <{uri}name {uri}attribute='value'>text</{uri}name>!1837
inline std::string tell(std::string_view document, const ParserSetup& setup = {}, std::size_t pieceBytes = wholeInput) {
    std::string told;
    PieceStream in(document, pieceBytes);
    try {
        const LumPtr<LumXmlParser> parser = openParser(in, setup);
        for (LumXmlParser::EventType type; (type = parser->next()) != LumXmlParser::END_DOCUMENT;) {
            const std::string name = showName(LumName(), parser->getName(), parser->getNamespace());
            if (type == LumXmlParser::TEXT) told += utf8(parser->getText());
            if (type == LumXmlParser::END_TAG) told += "</" + name + ">";
            if (type != LumXmlParser::START_TAG) continue;
            std::vector<std::string> attributes;
            for (int i = 0; i < parser->getAttributeCount(); ++i) {
                const LumName uri = parser->getAttributeNamespace(i);
                if (uri == LumName(LumCommon::NAME_NS_XMLNS)) continue;
                attributes.push_back(showName(LumName(), parser->getAttributeName(i), uri) + "='" +
                                     utf8(parser->getAttributeValue(i)) + "'");
            }
            told += startTag(name, attributes);
        }
    } catch (const LumError& error) {
        told += "!" + hexadecimal(static_cast<unsigned>(error.code));
    }
    return told;
}

/// A document with a caret after the furthest character that has been read at each event, and where the carets stand.
struct MarkedDocument {
    std::string bytes;
    std::vector<Position> positions;
    Position end;
};

/// Cuts out the carets and counts characters and lines up to each; lines end with line feeds, or the row tells
/// positions in numbers. A "<" at the very start does not count: it was read to recognise the encoding, not as a
/// character.
inline MarkedDocument readMarks(std::string_view marked) {
    MarkedDocument document;
    document.end = {1, marked.starts_with("<") ? -1 : 0};
    for (const char byte : marked) {
        if (byte == '^') {
            document.positions.push_back(document.end);
            continue;
        }
        document.bytes += byte;
        if (byte == '\n') {
            document.end = {document.end.line + 1, 0};
        } else if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80) {
            ++document.end.column;
        }
    }
    return document;
}

/// A document of a data file and what reading it yields.
struct EventRow {
    std::string fault;
    ParserSetup setup;
    std::vector<Pull> ways;
    std::string document;
    std::vector<EventRecord> records;  // without positions where the row tells none
};

/// Rows of several lines: "= fault", "with" what the parser is told, then "next", "token" or "both" with the document
/// as one way of pulling it or both need it, and an event a line, with " at line:column" or not. A caret stands after
/// the furthest character that is read at each event: nextToken() looks no further than the token needs, next() looks
/// past text for more text.
inline std::vector<EventRow> readEventRows(const std::string& file) {
    std::ifstream in(LUM_TEST_DATA + ("/" + file));
    std::vector<EventRow> rows;
    std::string fault, setup;
    MarkedDocument marked;
    for (std::string line; std::getline(in, line);) {
        const std::size_t space = line.find(' ');
        const std::string word = line.substr(0, space), rest = space == std::string::npos ? "" : line.substr(space + 1);
        if (word == "=") {
            fault = rest;
            setup.clear();
        } else if (word == "with") {
            setup = unescape(rest);
        } else if (word == "next" || word == "token" || word == "both") {
            marked = readMarks(unescape(rest));
            rows.push_back({fault, readSetup(setup), {}, marked.bytes, {}});
            if (word != "token") rows.back().ways.push_back(Pull::events);
            if (word != "next") rows.back().ways.push_back(Pull::tokens);
        } else if (word.empty() && !line.empty()) {
            EventRecord record{unescape(line.substr(2)), {}};
            const std::size_t at = record.event.rfind(" at "), index = rows.back().records.size();
            if (index < marked.positions.size()) record.position = marked.positions[index];
            if (at != std::string::npos && std::sscanf(record.event.c_str() + at, " at %d:%d", &record.position.line,
                                                       &record.position.column) == 2)
                record.event.resize(at);
            if (record.event == "END_DOCUMENT 0" && !marked.positions.empty()) record.position = marked.end;
            rows.back().records.push_back(record);
        }
    }
    EXPECT_FALSE(rows.empty()) << file;
    return rows;
}

}  // namespace LumTest
