#include <lumcommon/xml/LumXmlParser.h>

#include "Command.h"
#include "Input.h"
#include "JsonLines.h"
#include "Output.h"
#include "Progress.h"
#include "XmlSource.h"

#include <array>
#include <cstring>
#include <string>
#include <vector>

namespace LumTool {
namespace {

using namespace LumCommon;

struct Arguments {
    bool isTokens = false;
    std::vector<std::string> features;
    std::string encoding;
    XmlSource source;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.flag("--tokens", arguments.isTokens, "Report every token as a separate event");
    syntax.option("--feature", arguments.features, featureHelp());
    arguments.source.describe(syntax);
    syntax.option("--encoding", arguments.encoding, "The encoding, if known from outside the document");
    arguments.source.describeFile(syntax);
}

/// What stands in a line before the column, in two pieces that many events share.
class LineHeads {
public:
    char* put(char* out, const LumXmlParser& parser, LumXmlParser::EventType event) {
        const int depth = parser.getDepth(), line = parser.getLineNumber();
        auto& head = heads_[static_cast<std::size_t>(event)][static_cast<std::size_t>(depth) % keptDepths];
        if (head.number != depth) [[unlikely]] {
            head.assign("{\"event\":" + Json(toUtf8(LumXmlParser::getEventTypeStr(event))).toString() + ",\"depth\":",
                        depth);
        }
        if (line_.number != line) line_.assign(",\"line\":", line, ",\"column\":");
        return JsonLines::put(line_.put(head.put(out)), parser.getColumnNumber());
    }
    static constexpr std::size_t room = 128;

private:
    static constexpr std::size_t keptDepths = 64;

    template <std::size_t room>
    struct Piece {
        int number = -1;
        std::uint32_t length = 0;
        char text[room];

        void assign(const std::string& before, int value, const char* after = "") {
            number = value;
            length = static_cast<std::uint32_t>((before + std::to_string(value) + after).copy(text, sizeof text));
        }
        char* put(char* out) const {
            std::memcpy(out, text, sizeof text);  // a constant size takes no call
            return out + length;
        }
    };

    std::array<std::array<Piece<56>, keptDepths>, LumXmlParser::DOCDECL + 1> heads_;
    Piece<32> line_;
};

enum Frame : unsigned { START, EMPTY_START, END, EMPTY_END, ATTRIBUTE };
constexpr JsonLines::Frame frames[] = {
    {",", ",\"empty\":false,\"attributes\":["},
    {",", ",\"empty\":true,\"attributes\":["},
    {",", ",\"empty\":false,\"attributes\":[]}"},
    {",", ",\"empty\":true,\"attributes\":[]}"},
    {"{", ",\"value\":"},
};

char* putTagNames(JsonLines& lines, char* out, unsigned frame, const LumXmlParser& parser) {
    return lines.addNames(out, frame, frames[frame], parser.getPrefix(), parser.getName(), parser.getNamespace());
}

char* putAttributes(JsonLines& lines, char* out, const LumXmlParser& parser) {
    const int count = parser.getAttributeCount();
    for (int i = 0; i < count; ++i) {
        out = lines.addNames(out, ATTRIBUTE, frames[ATTRIBUTE], parser.getAttributePrefix(i),
                             parser.getAttributeName(i), parser.getAttributeNamespace(i));
        out = JsonLines::put(lines.quote(out, parser.getAttributeValue(i)), "},");
    }
    return count > 0 ? out - 1 : out;  // no comma after the last
}

/// @param isEmptyElement  whether a tag is that of an empty element, including the end tag that is made up for it.
void addEvent(JsonLines& lines, LineHeads& heads, const LumXmlParser& parser, LumXmlParser::EventType event,
              bool isEmptyElement) {
    char* out = heads.put(lines.room(lines.begin(), LineHeads::room), parser, event);
    if (event == LumXmlParser::START_TAG) {
        out = putTagNames(lines, out, isEmptyElement ? EMPTY_START : START, parser);
        out = JsonLines::put(putAttributes(lines, out, parser), "]}");
    } else if (event == LumXmlParser::END_TAG) {
        out = putTagNames(lines, out, isEmptyElement ? EMPTY_END : END, parser);
    } else {
        out = JsonLines::put(lines.quote(JsonLines::put(out, ",\"text\":"), parser.getText()), "}");
    }
    lines.endLine(out);
}

void printEvents(const Arguments& arguments) {
    const LumPtr<LumXmlParser> parser = arguments.source.open(arguments.features, arguments.encoding);
    JsonLines lines;
    LineHeads heads;
    LumXmlParser::EventType event;
    bool isEmptyElement = false;
    do {
        event = arguments.isTokens ? parser->nextToken() : parser->next();
        if (event == LumXmlParser::START_TAG) isEmptyElement = parser->isEmptyElementTag();
        addEvent(lines, heads, *parser, event, isEmptyElement);
        if (event != LumXmlParser::START_TAG) isEmptyElement = false;
    } while (event != LumXmlParser::END_DOCUMENT);
    lines.flush();
}

void run(const Arguments& arguments) {
    const Progress progress(arguments.source.file, Progress::Output::Standard);
    withReasons(arguments.source.file, [&] { printEvents(arguments); });
}

}  // namespace

Command makeEventsCommand() {
    return makeCommand("events", "Print the events of the XML parser, one JSON object per event", describe, run);
}

}  // namespace LumTool
