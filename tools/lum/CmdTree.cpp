#include <lumcommon/values/LumValue.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"
#include "Progress.h"
#include "Terminal.h"
#include "Words.h"
#include "XmlSource.h"

#include <algorithm>

namespace LumTool {
namespace {

using namespace LumCommon;

struct Arguments {
    XmlSource source;
    int most = 60;
};

void describe(Syntax& syntax, Arguments& arguments) {
    arguments.source.describe(syntax);
    syntax.option("--text", arguments.most, "Show so many characters of a text at most; 0 for all");
    arguments.source.describeFile(syntax);
    syntax.footer(
        "An element has a line, and below it, further in, its attributes (with @, and what kind of value each has as a "
        "property), its texts in quotes, and its elements. Control characters are shown as escapes.");
}

std::string shown(const UnicodeString& text, int most) {
    const int32_t end = most > 0 ? text.moveIndex32(0, most) : text.length();
    UnicodeString head(text, 0, end);
    return '"' + harmless(toUtf8(checked(head))) + (end < text.length() ? "\"..." : "\"");
}

std::string qualified(LumName prefix, LumName name) {
    return harmless(prefix.isNull() ? toUtf8(name) : toUtf8(prefix) + ":" + toUtf8(name));
}

class TreePrinter {
public:
    TreePrinter(LumXmlParser& parser, int most) : parser_(parser), most_(most) {}

    void printStart() {
        printIndented(parser_.getDepth() - 1,
                      painted(Look::ELEMENT, qualified(parser_.getPrefix(), parser_.getName())));
        for (int i = 0; i < parser_.getAttributeCount(); ++i) {
            const UnicodeString& value = parser_.getAttributeValue(i);
            const std::string name = "@" + qualified(parser_.getAttributePrefix(i), parser_.getAttributeName(i));
            const bool isDeclaration = parser_.getAttributeNamespace(i) == NAME_NS_XMLNS;
            const std::string type = isDeclaration ? "namespace" : typeOf(LumValue::parse(value));
            printIndented(parser_.getDepth(), painted(Look::ATTRIBUTE, name) + " " + shown(value, most_) + "  " +
                                                  painted(Look::TYPE, type));
        }
    }
    void printText() {
        if (!parser_.isWhitespace()) {
            printIndented(parser_.getDepth(), painted(Look::TEXT, shown(parser_.getText(), most_)));
        }
    }

private:
    /// Very deep elements are not moved further in: a line would be as long as the document is deep.
    static void printIndented(int depth, const std::string& text) {
        constexpr int deepest = 100;
        printLine(std::string(2 * static_cast<std::size_t>(std::min(depth, deepest)), ' ') + text);
    }

    LumXmlParser& parser_;
    const int most_;
};

void run(const Arguments& arguments) {
    if (arguments.most < 0) throw UsageError("--text: a number of characters cannot be negative");
    withReasons(arguments.source.file, [&] {
        const Progress progress(arguments.source.file, Progress::Output::Standard);
        const LumPtr<LumXmlParser> parser = arguments.source.open();
        TreePrinter printer(*parser, arguments.most);
        for (;;) {
            switch (parser->next()) {
                case LumXmlParser::START_TAG:
                    printer.printStart();
                    break;
                case LumXmlParser::TEXT:
                    printer.printText();
                    break;
                case LumXmlParser::END_DOCUMENT:
                    return;
                default:
                    break;
            }
        }
    });
}

}  // namespace

Command makeTreeCommand() {
    return makeCommand("tree", "Print an XML document as an indented tree with the kinds of its values", describe, run);
}

}  // namespace LumTool
