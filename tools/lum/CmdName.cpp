#include <lumcommon/names/LumName.h>
#include <lumcommon/names/LumNameTable.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string string;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.required("string", arguments.string, "The string of the name");
}

void run(const Arguments& arguments) {
    const UnicodeString string = fromArgument(arguments.string);
    printJson({{"id", static_cast<unsigned>(LumName(string).getEnum())},
               {"builtin", LumNameTable::getBuiltinNameEnum(string) != NAME_NULL}});
}

}  // namespace

Command makeNameCommand() { return makeCommand("name", "Print the identifier of a name as JSON", describe, run); }

}  // namespace lum
