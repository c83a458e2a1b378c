#include <lumcommon/names/LumName.h>
#include <lumcommon/names/LumNameTable.h>

#include "Command.h"
#include "Output.h"

#include <nlohmann/json.hpp>

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string string;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("string", arguments.string, "The string of the name")->required();
}

void run(const Arguments& arguments) {
    const UnicodeString string = fromArgument(arguments.string);
    printJson({{"id", static_cast<unsigned>(LumName(string).getEnum())},
               {"builtin", LumNameTable::getBuiltinNameEnum(string) != NAME_NULL}});
}

}  // namespace

void addNameCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "name", "Print the identifier of a name as JSON", describe, run);
}

}  // namespace lum
