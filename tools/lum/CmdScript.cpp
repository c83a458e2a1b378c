#include <lumcommon/lang/LumScript.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string text;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("text", arguments.text, "A script code, a language tag, or text in the script");
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

Command makeScriptCommand() {
    return makeCommand("script", "Print the script that a text names, or else is written in, as JSON", describe, run);
}

}  // namespace lum
