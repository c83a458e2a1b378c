#include <lumcommon/values/LumValue.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using LumCommon::LumValue;

struct Arguments {
    std::string text;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("text", arguments.text, "The text of a property");
}

void run(const Arguments& arguments) {
    const LumValue value = LumValue::parse(fromArgument(arguments.text));
    printJson({{"kind", static_cast<unsigned>(value.getKind())},
               {"unit", static_cast<unsigned>(value.getUnit())},
               {"string", toUtf8(value.toString())}});
}

}  // namespace

Command makeValueCommand() {
    return makeCommand("value", "Print the value of a property's text as JSON", describe, run);
}

}  // namespace lum
