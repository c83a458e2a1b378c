#include <lumcommon/containers/OlePropertySet.h>
#include <lumcommon/containers/OleSummaryInformation.h>
#include <lumcommon/values/LumValue.h>

#include "Command.h"
#include "OleInput.h"
#include "Output.h"

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string file;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("file", arguments.file, "A compound file: a file, a URI, or - for standard input");
}

Json propertiesOf(OleCompFile& file) {
    constexpr unsigned lastId = 19;
    Json properties = Json::Object{};
    OleSummaryInformation information;
    if (information.initSummaryInformation(&file) != 1) return properties;
    for (unsigned id = 1; id <= lastId; ++id) {
        LumValue value;
        if (information.getProperty(id, value) != 1) continue;
        const bool isInteger = value.getKind() == KIND_INTEGER;
        properties.add(std::to_string(id), isInteger ? Json(value.getIntegerValue()) : Json(toUtf8(value.toString())));
    }
    return properties;
}

Json hyperLinksOf(OleCompFile& file) {
    Json::Array links;
    OleSummaryInformation information;
    std::vector<UnicodeString> found;
    if (information.initDocumentSummaryInformation(&file) != 1) return links;
    information.getHyperLinks(found);
    for (const UnicodeString& link : found) links.emplace_back(toUtf8(link));
    return links;
}

void run(const Arguments& arguments) {
    OleInput file(arguments.file);
    OlePropertySet strings;
    strings.init(&*file);
    printJson({{"title", toUtf8(strings.getTitle())},
               {"subject", toUtf8(strings.getSubject())},
               {"author", toUtf8(strings.getAuthor())},
               {"keywords", toUtf8(strings.getKeywords())},
               {"properties", propertiesOf(*file)},
               {"hyperlinks", hyperLinksOf(*file)}});
}

}  // namespace

Command makePropsCommand() {
    return makeCommand("props", "Print the properties of an office document as JSON", describe, run);
}

}  // namespace lum
