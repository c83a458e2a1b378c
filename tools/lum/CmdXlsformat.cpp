#include <lumcommon/format/XlsFormat.h>

#include "Command.h"
#include "Output.h"

#include <charconv>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <vector>

namespace lum {
namespace {

using LumCommon::XlsFormat;

struct Arguments {
    bool is1904 = false;
    bool areTexts = false;
    std::string code;
    std::vector<std::string> values;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_flag("--1904", arguments.is1904, "Days count from 1904-01-01");
    command.add_flag("--text", arguments.areTexts, "The values are texts");
    command.add_option("code", arguments.code, "The number format code, such as #,##0.00")->required();
    command.add_option("value", arguments.values, "A number, or with --text any text")->required();
}

double toNumber(const std::string& text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const char* const begin = text.data() + (text.starts_with('+') ? 1 : 0);
    const auto [stop, error] = std::from_chars(begin, end, value);
    // A number beyond the range of a double is none of a cell's either.
    if (error != std::errc() || stop != end || begin == end) throw UsageError(text + " is not a number; see --text");
    return value;
}

void print(const XlsFormat::Result& result) {
    nlohmann::ordered_json color;
    if (result.color != XlsFormat::NO_COLOR) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%06X", static_cast<unsigned>(result.color));
        color = digits;
    }
    printJson({{"text", toUtf8(result.text)}, {"color", color}, {"section", result.section}});
}

void run(const Arguments& arguments) {
    const XlsFormat format(fromArgument(arguments.code), arguments.is1904);
    for (const std::string& value : arguments.values) {
        print(arguments.areTexts ? format.format(fromArgument(value)) : format.format(toNumber(value)));
    }
}

}  // namespace

void addXlsformatCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "xlsformat", "Print values as a spreadsheet shows them, one JSON object each", describe,
               run);
}

}  // namespace lum
