#include <lumcommon/values/LumValue.h>

#include "Command.h"
#include "Output.h"

#include <nlohmann/json.hpp>

namespace lum {
namespace {

using LumCommon::LumValue;

struct Arguments {
    std::string text;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("text", arguments.text, "The text of a property")->required();
}

void run(const Arguments& arguments) {
    const LumValue value = LumValue::parse(fromArgument(arguments.text));
    printJson({{"kind", static_cast<unsigned>(value.getKind())},
               {"unit", static_cast<unsigned>(value.getUnit())},
               {"string", toUtf8(value.toString())}});
}

}  // namespace

void addValueCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "value", "Print the value of a property's text as JSON", describe, run);
}

}  // namespace lum
