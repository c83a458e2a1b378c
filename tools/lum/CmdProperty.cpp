// The commands that show how the text of a property is parsed.
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>

#include "Command.h"
#include "Output.h"
#include "Words.h"

namespace LumTool {
namespace {

using namespace LumCommon;

constexpr const char* textHelp = "The text of a property";

void printTokens(const std::string& text) {
    LumTokenizer tokenizer(fromArgument(text));
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
        printJson({{"kind", tokenizer.getKind()},
                   {"text", toUtf8(tokenizer.getText())},
                   {"number", tokenizer.getNumber()},
                   {"kindName", wordOfToken(tokenizer.getKind())}});
    }
}

void printValue(const std::string& text) {
    const LumValue value = LumValue::parse(fromArgument(text));
    printJson({{"kind", static_cast<unsigned>(value.getKind())},
               {"unit", static_cast<unsigned>(value.getUnit())},
               {"string", toUtf8(value.toString())},
               {"kindName", wordOfKind(value.getKind())},
               {"unitName", wordOfUnit(value.getUnit())}});
}

}  // namespace

Command makeTokensCommand() {
    return makeCommand("tokens", "Print the tokens of a property's text, one JSON object per token", "text", textHelp,
                       printTokens);
}

Command makeValueCommand() {
    return makeCommand("value", "Print the value of a property's text as JSON", "text", textHelp, printValue);
}

}  // namespace LumTool
