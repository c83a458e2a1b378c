#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/xml/LumXmlParser.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"

#include <iostream>
#include <vector>

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    bool isTokens = false;
    std::vector<int> features;
    std::string encoding, file;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.flag("--tokens", arguments.isTokens, "Report every token as a separate event");
    syntax.option("--feature", arguments.features, 0, 5, "Turn on the parser feature of that number; may be repeated");
    syntax.option("--encoding", arguments.encoding, "The encoding, if known from outside the document");
    syntax.required("file", arguments.file, fileHelp);
}

Json attributesOf(const LumXmlParser& parser) {
    Json::Array attributes;
    for (int i = 0; i < parser.getAttributeCount(); ++i) {  // the count is -1 at an end tag
        attributes.push_back({{"prefix", toUtf8(parser.getAttributePrefix(i))},
                              {"name", toUtf8(parser.getAttributeName(i))},
                              {"namespace", toUtf8(parser.getAttributeNamespace(i))},
                              {"value", toUtf8(parser.getAttributeValue(i))}});
    }
    return attributes;
}

/// @param isEmptyElement  whether a tag is that of an empty element, including the end tag that is made up for it.
void printEvent(const LumXmlParser& parser, bool isEmptyElement) {
    const LumXmlParser::EventType event = parser.getEventType();
    Json line = {{"event", toUtf8(LumXmlParser::getEventTypeStr(event))},
                 {"depth", parser.getDepth()},
                 {"line", parser.getLineNumber()},
                 {"column", parser.getColumnNumber()}};
    if (event == LumXmlParser::START_TAG || event == LumXmlParser::END_TAG) {
        line.add("prefix", toUtf8(parser.getPrefix()));
        line.add("name", toUtf8(parser.getName()));
        line.add("namespace", toUtf8(parser.getNamespace()));
        line.add("empty", isEmptyElement);
        line.add("attributes", attributesOf(parser));
    } else {
        line.add("text", toUtf8(parser.getText()));
    }
    printJson(line);
}

void run(const Arguments& arguments) {
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    for (const int feature : arguments.features) parser->setFeature(static_cast<LumXmlParser::Feature>(feature), true);
    if (arguments.file == "-") {
        parser->setInput(std::cin, fromArgument(arguments.encoding), {});
    } else {
        parser->setInput(toUri(arguments.file), fromArgument(arguments.encoding), {});
    }
    LumXmlParser::EventType event;
    bool isEmptyElement = false;
    do {
        event = arguments.isTokens ? parser->nextToken() : parser->next();
        if (event == LumXmlParser::START_TAG) {
            isEmptyElement = parser->isEmptyElementTag();
            printEvent(*parser, isEmptyElement);
        } else {
            printEvent(*parser, isEmptyElement);
            isEmptyElement = false;
        }
    } while (event != LumXmlParser::END_DOCUMENT);
}

}  // namespace

Command makeEventsCommand() {
    return makeCommand("events", "Print the events of the XML parser, one JSON object per event", describe, run);
}

}  // namespace lum
