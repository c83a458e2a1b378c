#include <lumcommon/names/LumName.h>
#include <lumcommon/names/LumNameTable.h>

#include "Command.h"
#include "Output.h"

namespace LumTool {
namespace {

using namespace LumCommon;

void run(const std::string& argument) {
    const UnicodeString string = fromArgument(argument);
    printJson({{"id", static_cast<unsigned>(LumName(string).getEnum())},
               {"builtin", LumNameTable::getBuiltinNameEnum(string) != NAME_NULL}});
}

}  // namespace

Command makeNameCommand() {
    return makeCommand("name", "Print the identifier of a name as JSON", "string", "The string of the name", run);
}

}  // namespace LumTool
