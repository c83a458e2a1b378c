#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/xml/LumXmlParser.h>

#include "Command.h"
#include "Input.h"
#include "JsonLines.h"
#include "Limits.h"
#include "Output.h"

#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    bool isTokens = false;
    bool isConforming = false;
    std::vector<int> features;
    std::vector<std::string> limits;
    std::string encoding, file;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.flag("--conforming", arguments.isConforming, "Read XML 1.0 as the standard says, and nothing else");
    syntax.flag("--tokens", arguments.isTokens, "Report every token as a separate event");
    syntax.option("--feature", arguments.features, 0, 7, "Turn on the parser feature of that number; may be repeated");
    addLimitOptions(syntax, arguments.limits);
    syntax.option("--encoding", arguments.encoding, "The encoding, if known from outside the document");
    syntax.required("file", arguments.file, fileHelp);
}

void addTag(JsonLines& lines, const LumXmlParser& parser, bool isEmptyElement) {
    lines.add(",");
    lines.addNames(parser.getPrefix(), parser.getName(), parser.getNamespace());
    if (isEmptyElement) {
        lines.add(",\"empty\":true,\"attributes\":[");
    } else {
        lines.add(",\"empty\":false,\"attributes\":[");
    }
    const int count = parser.getAttributeCount();  // -1 at an end tag
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            lines.add(",{");
        } else {
            lines.add("{");
        }
        lines.addNames(parser.getAttributePrefix(i), parser.getAttributeName(i), parser.getAttributeNamespace(i));
        lines.add(",\"value\":");
        lines.quote(parser.getAttributeValue(i));
        lines.add("}");
    }
    lines.add("]");
}

/// How the line of an event begins.
const std::string& headOf(LumXmlParser::EventType event) {
    static std::map<LumXmlParser::EventType, std::string> heads;
    std::string& head = heads[event];
    if (head.empty()) {
        head = "{\"event\":" + Json(toUtf8(LumXmlParser::getEventTypeStr(event))).toString() + ",\"depth\":";
    }
    return head;
}

/// @param isEmptyElement  whether a tag is that of an empty element, including the end tag that is made up for it.
void addEvent(JsonLines& lines, const LumXmlParser& parser, LumXmlParser::EventType event, bool isEmptyElement) {
    lines.add(headOf(event));
    lines.add(parser.getDepth());
    lines.add(",\"line\":");
    lines.add(parser.getLineNumber());
    lines.add(",\"column\":");
    lines.add(parser.getColumnNumber());
    if (event == LumXmlParser::START_TAG || event == LumXmlParser::END_TAG) {
        addTag(lines, parser, isEmptyElement);
    } else {
        lines.add(",\"text\":");
        lines.quote(parser.getText());
    }
    lines.add("}");
    lines.endLine();
}

void run(const Arguments& arguments) {
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    if (commonOptions().isUntrusted) parser->setUntrusted();
    if (arguments.isConforming) parser->setFeature(LumXmlParser::FEATURE_CONFORMING, true);
    for (const int number : arguments.features) {
        const auto feature = static_cast<LumXmlParser::Feature>(number);
        parser->setFeature(feature, true);
        if (!parser->getFeature(feature)) throw UsageError("--feature: there is none of this number");
    }
    parser->setLimits(readLimits(arguments.limits, parser->getLimits()));
    if (arguments.file == "-") {
        parser->setInput(std::cin, fromArgument(arguments.encoding), {});
    } else {
        parser->setInput(toUri(arguments.file), fromArgument(arguments.encoding), {});
    }
    JsonLines lines;
    LumXmlParser::EventType event;
    bool isEmptyElement = false;
    do {
        event = arguments.isTokens ? parser->nextToken() : parser->next();
        if (event == LumXmlParser::START_TAG) isEmptyElement = parser->isEmptyElementTag();
        addEvent(lines, *parser, event, isEmptyElement);
        if (event != LumXmlParser::START_TAG) isEmptyElement = false;
    } while (event != LumXmlParser::END_DOCUMENT);
    lines.flush();
}

}  // namespace

Command makeEventsCommand() {
    return makeCommand("events", "Print the events of the XML parser, one JSON object per event", describe, run);
}

}  // namespace lum
