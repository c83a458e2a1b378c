#include <lumcommon/uri/LumUri.h>

#include "Command.h"
#include "Output.h"

namespace LumTool {
namespace {

using LumCommon::LumUri;

struct Arguments {
    std::string base, reference;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("base", arguments.base, "The URI to resolve against");
    syntax.required("reference", arguments.reference, "The relative reference");
}

void run(const Arguments& arguments) {
    const LumUri base(fromArgument(arguments.base));
    printLine(toUtf8(LumUri(base, fromArgument(arguments.reference)).toString()));
}

}  // namespace

Command makeResolveCommand() { return makeCommand("resolve", "Resolve a reference against a base URI", describe, run); }

}  // namespace LumTool
