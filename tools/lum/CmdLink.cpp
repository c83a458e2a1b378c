#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumValue.h>

#include "Command.h"
#include "Output.h"

namespace LumTool {
namespace {

using LumCommon::LumNamedValue;
using LumCommon::LumNamedValueMapIterator;
using LumCommon::LumValue;
using LumCommon::UnicodeString;

struct LinkKind {
    const char* name;
    LumValue (*parse)(const UnicodeString& text);
};

constexpr LinkKind linkKinds[] = {
    {"pdf", LumValue::parsePDFOpenParameters},
    {"destination", LumValue::parseDestinationType},
    {"xlink", LumValue::parseXlinkHref},
    {"internal", [](const UnicodeString& text) { return LumValue::parseInternalDestination(text, 0); }},
    {"excel", LumValue::parseExcelOpenParameters},
    {"fragment", [](const UnicodeString& text) { return LumValue::parseUriFragmentParameters(text, false); }},
};

struct Arguments {
    std::string kind, text;
};

void describe(Syntax& syntax, Arguments& arguments) {
    std::vector<std::string> names;
    for (const LinkKind& kind : linkKinds) names.emplace_back(kind.name);
    syntax.required("kind", arguments.kind, names, "How to read the text");
    syntax.required("text", arguments.text, "The link or destination");
    syntax.footer(
        "Prints one object: \"value\" is the unnamed value (null if there is none), every other member is an item "
        "under its name; all are given as text. An item that is itself named \"value\" is printed as \"#value\".");
}

Json printed(const LumValue& value) {
    if (value.isNull()) return nullptr;
    return toUtf8(value.toString());
}

void run(const Arguments& arguments) {
    const LinkKind* kind = linkKinds;
    while (kind->name != arguments.kind) ++kind;
    const LumValue value = kind->parse(fromArgument(arguments.text));
    Json object{{"value", printed(value.getNamedItem(LumCommon::NAME_NULL))}};
    if (value.getNamedValueMap()) {
        for (LumNamedValueMapIterator items(value.getNamedValueMap()); items.hasNext();) {
            const LumNamedValue item = items.next();
            if (item.getName().isNull()) continue;
            const std::string name = toUtf8(item.getName());
            object.add(name == "value" ? "#value" : name, printed(item));
        }
    }
    printJson(object);
}

}  // namespace

Command makeLinkCommand() {
    return makeCommand("link", "Print the items of a link or destination as JSON", describe, run);
}

}  // namespace LumTool
