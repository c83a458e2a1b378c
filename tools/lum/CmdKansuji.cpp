#include <lumcommon/format/LumUtil.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string text, style, digits = "kanji";
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("text", arguments.text, "The text whose digits are converted")->required();
    command.add_option("--style", arguments.style, "grouping, readable; anything else: digit by digit");
    command.add_option("--digits", arguments.digits, "kanji, latin, or the ten characters to use");
}

void run(const Arguments& arguments) {
    printLine(toUtf8(LumUtil::convertKansuji(fromArgument(arguments.text), LumName(fromArgument(arguments.style)),
                                             LumName(fromArgument(arguments.digits)))));
}

}  // namespace

void addKansujiCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "kansuji", "Write the digits of a text as Japanese numerals", describe, run);
}

}  // namespace lum
