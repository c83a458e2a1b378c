#include <lumcommon/containers/OlePropertySet.h>
#include <lumcommon/containers/OleSummaryInformation.h>
#include <lumcommon/values/LumValue.h>

#include "Command.h"
#include "OleInput.h"
#include "Output.h"

#include <nlohmann/json.hpp>

namespace lum {
namespace {

using namespace LumCommon;
using nlohmann::ordered_json;

struct Arguments {
    std::string file;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("file", arguments.file, "A compound file: a file, a URI, or - for standard input")->required();
}

ordered_json propertiesOf(OleCompFile& file) {
    constexpr unsigned lastId = 19;
    ordered_json properties = ordered_json::object();
    OleSummaryInformation information;
    if (information.initSummaryInformation(&file) != 1) return properties;
    for (unsigned id = 1; id <= lastId; ++id) {
        LumValue value;
        if (information.getProperty(id, value) != 1) continue;
        ordered_json& property = properties[std::to_string(id)];
        if (value.getKind() == KIND_INTEGER) {
            property = value.getIntegerValue();
        } else {
            property = toUtf8(value.toString());
        }
    }
    return properties;
}

ordered_json hyperLinksOf(OleCompFile& file) {
    ordered_json links = ordered_json::array();
    OleSummaryInformation information;
    std::vector<UnicodeString> found;
    if (information.initDocumentSummaryInformation(&file) != 1) return links;
    information.getHyperLinks(found);
    for (const UnicodeString& link : found) links.push_back(toUtf8(link));
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

void addPropsCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "props", "Print the properties of an office document as JSON", describe, run);
}

}  // namespace lum
