#include <lumcommon/format/LumUtil.h>

#include "Command.h"
#include "Output.h"

namespace LumTool {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string text, style, digits = "kanji";
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("text", arguments.text, "The text whose digits to convert");
    syntax.option("--style", arguments.style, "grouping or readable; digit by digit if omitted");
    syntax.option("--digits", arguments.digits, "kanji, latin, or the ten characters to use, from zero to nine");
}

void run(const Arguments& arguments) {
    const std::string &style = arguments.style, &digits = arguments.digits;
    if (!style.empty() && style != "grouping" && style != "readable") {
        throw UsageError("--style: there is no style \"" + style + "\"; there are grouping and readable");
    }
    constexpr int digitCount = 10;
    if (digits != "kanji" && digits != "latin" && fromArgument(digits).countChar32() != digitCount) {
        throw UsageError("--digits: " + digits + " is neither kanji nor latin nor ten characters");
    }
    printLine(toUtf8(LumUtil::convertKansuji(fromArgument(arguments.text), LumName(fromArgument(arguments.style)),
                                             LumName(fromArgument(arguments.digits)))));
}

}  // namespace

Command makeKansujiCommand() {
    return makeCommand("kansuji", "Convert the digits of a text to Japanese numerals", describe, run);
}

}  // namespace LumTool
