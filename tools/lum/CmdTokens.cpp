#include <lumcommon/values/LumTokenizer.h>

#include "Command.h"
#include "Output.h"

#include <nlohmann/json.hpp>

namespace lum {
namespace {

using LumCommon::LumTokenizer;

struct Arguments {
    std::string text;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("text", arguments.text, "The text of a property")->required();
}

void run(const Arguments& arguments) {
    LumTokenizer tokenizer(fromArgument(arguments.text));
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
        printJson(
            {{"kind", tokenizer.getKind()}, {"text", toUtf8(tokenizer.getText())}, {"number", tokenizer.getNumber()}});
    }
}

}  // namespace

void addTokensCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "tokens", "Print the tokens of a property's text, one JSON object each", describe, run);
}

}  // namespace lum
