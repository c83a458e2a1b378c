#include <lumcommon/values/LumTokenizer.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using LumCommon::LumTokenizer;

struct Arguments {
    std::string text;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("text", arguments.text, "The text of a property");
}

void run(const Arguments& arguments) {
    LumTokenizer tokenizer(fromArgument(arguments.text));
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
        printJson(
            {{"kind", tokenizer.getKind()}, {"text", toUtf8(tokenizer.getText())}, {"number", tokenizer.getNumber()}});
    }
}

}  // namespace

Command makeTokensCommand() {
    return makeCommand("tokens", "Print the tokens of a property's text, one JSON object each", describe, run);
}

}  // namespace lum
