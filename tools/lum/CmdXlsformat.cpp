#include <lumcommon/format/xls/XlsFormat.h>

#include "Command.h"
#include "Output.h"

#include <charconv>
#include <cstdio>
#include <vector>

namespace LumTool {
namespace {

using LumCommon::XlsFormat;

struct Arguments {
    bool is1904 = false;
    bool areTexts = false;
    bool isContract = false;
    std::string code;
    std::vector<std::string> values;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.flag("--1904", arguments.is1904, "Count days from 1904-01-01");
    syntax.flag("--text", arguments.areTexts, "Treat the values as texts");
    syntax.flag("--contract", arguments.isContract, "Show them by the rules of XlsFormatString");
    syntax.required("code", arguments.code, "The number format code, such as #,##0.00");
    syntax.required("value", arguments.values, "A number, or any text with --text");
}

double toNumber(const std::string& text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const char* const begin = text.data() + (text.starts_with('+') ? 1 : 0);
    const auto [stop, error] = std::from_chars(begin, end, value);
    // A number beyond the range of a double cannot be in a cell either.
    if (error != std::errc() || stop != end || begin == end) throw UsageError(text + " is not a number; see --text");
    return value;
}

void print(const XlsFormat::Result& result) {
    Json color;
    if (result.color != XlsFormat::NO_COLOR) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%06X", static_cast<unsigned>(result.color));
        color = digits;
    }
    printJson({{"text", toUtf8(result.text)}, {"color", color}, {"section", result.section}});
}

void run(const Arguments& arguments) {
    const XlsFormat::Rules rules = arguments.isContract ? XlsFormat::Rules::CONTRACT : XlsFormat::Rules::SPREADSHEET;
    const XlsFormat format(fromArgument(arguments.code), arguments.is1904, rules);
    for (const std::string& value : arguments.values) {
        print(arguments.areTexts ? format.format(fromArgument(value)) : format.format(toNumber(value)));
    }
}

}  // namespace

Command makeXlsformatCommand() {
    return makeCommand("xlsformat", "Print values as a spreadsheet shows them, one JSON object per value", describe,
                       run);
}

}  // namespace LumTool
