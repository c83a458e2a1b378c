#include <lumcommon/uri/LumUri.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using LumCommon::LumUri;

struct Arguments {
    std::string base, reference;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("base", arguments.base, "The URI to resolve against")->required();
    command.add_option("reference", arguments.reference, "The relative reference")->required();
}

void run(const Arguments& arguments) {
    const LumUri base(fromArgument(arguments.base));
    printLine(toUtf8(LumUri(base, fromArgument(arguments.reference)).toString()));
}

}  // namespace

void addResolveCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "resolve", "Resolve a reference against a base URI", describe, run);
}

}  // namespace lum
