#include <lumcommon/lang/LumScript.h>

#include "Command.h"
#include "Output.h"

#include <nlohmann/json.hpp>

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string text;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("text", arguments.text, "A script code, a language tag, or text in the script")->required();
}

void run(const Arguments& arguments) {
    const UnicodeString text = fromArgument(arguments.text);
    const LumScript named(text);
    const bool isNamed = named != LumScript::UNKNOWN;
    const LumScript script = isNamed ? named : LumScript::getScriptFromText(text);
    printJson({{"script", toUtf8(script.getScriptCode())},
               {"code", script.getCode()},
               {"letter", toUtf8(script.getA())},
               {"named", isNamed}});
}

}  // namespace

void addScriptCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "script", "Print the script that a text names, or else is written in, as JSON", describe,
               run);
}

}  // namespace lum
