#include <lumcommon/format/LumUtil.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string text, style, digits = "kanji";
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("text", arguments.text, "The text whose digits to convert");
    syntax.option("--style", arguments.style, "grouping or readable; anything else converts digit by digit");
    syntax.option("--digits", arguments.digits, "kanji, latin, or the ten characters to use");
}

void run(const Arguments& arguments) {
    printLine(toUtf8(LumUtil::convertKansuji(fromArgument(arguments.text), LumName(fromArgument(arguments.style)),
                                             LumName(fromArgument(arguments.digits)))));
}

}  // namespace

Command makeKansujiCommand() {
    return makeCommand("kansuji", "Convert the digits of a text to Japanese numerals", describe, run);
}

}  // namespace lum
