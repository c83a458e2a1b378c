#include <lumcommon/format/LumUtil.h>

#include "Command.h"
#include "Language.h"
#include "Output.h"

#include <charconv>
#include <vector>

namespace LumTool {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string format;
    std::vector<std::string> numbers;
    std::string language;
    std::string separator;
    int size = 0;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("format", arguments.format, "The format, such as 001, (a) or I");
    syntax.required("number", arguments.numbers, "The numbers, in decimal");
    syntax.option("--lang", arguments.language, "The language whose alphabet is used");
    syntax.option("--separator", arguments.separator, "The separator between groups of digits");
    syntax.option("--size", arguments.size, "The number of digits in a group; 0 for no grouping");
}

int readNumber(const std::string& text) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) throw UsageError("not a 32-bit number: " + text);
    return number;
}

void run(const Arguments& arguments) {
    std::vector<int> numbers;
    for (const std::string& text : arguments.numbers) numbers.push_back(readNumber(text));
    const UnicodeString format = fromArgument(arguments.format);
    const UnicodeString separator = fromArgument(arguments.separator);
    const LumLang language = readLanguage(arguments.language);
    for (const int number : numbers) {
        printLine(toUtf8(LumUtil::formatNumber(number, format, separator, arguments.size, language)));
    }
}

}  // namespace

Command makeNumberCommand() {
    return makeCommand("number", "Print formatted page or list numbers, one per line", describe, run);
}

}  // namespace LumTool
