#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumValue.h>

#include "Command.h"
#include "Output.h"
#include "Terminal.h"

#include <charconv>
#include <cstdio>

namespace LumTool {
namespace {

using LumCommon::LumColor;
using LumCommon::LumValue;

struct Arguments {
    bool isIccAllowed = false;
    bool isSvgForm = false;
    std::string text;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.flag("--icc", arguments.isIccAllowed, "Allow icc-color(...) after the RGB colour");
    syntax.flag("--svg", arguments.isSvgForm, "Print the colour in SVG syntax");
    syntax.required("text", arguments.text, "The colour, as written in a property");
}

int getComponentCount(const LumColor& color) {
    switch (color.getColorSpace().getEnum()) {
        case LumCommon::NAME_NULL:
            return 0;
        case LumCommon::NAME_HASH_GRAYSCALE:
            return 1;
        case LumCommon::NAME_HASH_SEPARATION:
            return 5;
        default:
            return 4;
    }
}

/// The double with the fewest digits that reads back as this float: 0.1, not 0.10000000149011612.
double getShortest(float number) {
    char digits[32];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    double shortest = 0;
    std::from_chars(digits, end, shortest);
    return shortest;
}

void run(const Arguments& arguments) {
    const LumValue value = LumValue::parseColor(fromArgument(arguments.text), arguments.isIccAllowed);
    const LumColor color(value);
    constexpr unsigned noColor = 0xFF000000;
    if (color.getRGB() == noColor && color.getColorSpace().isNull()) throw UsageError(arguments.text + " is no colour");
    char rgb[16];
    std::snprintf(rgb, sizeof rgb, "%08X", static_cast<unsigned>(color.getRGB()));
    Json::Array components;
    for (int i = 0; i < getComponentCount(color); ++i) components.emplace_back(getShortest(color.getComponent(i)));
    const Json shown{{"rgb", rgb},
                     {"space", toUtf8(color.getColorSpace())},
                     {"name", toUtf8(color.getName())},
                     {"components", components},
                     {"string", toUtf8(color.toString(arguments.isSvgForm))}};
    printLine(shown.toString() + swatchOf(static_cast<unsigned>(color.getRGB())));
}

}  // namespace

Command makeColorCommand() {
    return makeCommand("color", "Parse the text of a property as a colour and print it as JSON", describe, run);
}

}  // namespace LumTool
