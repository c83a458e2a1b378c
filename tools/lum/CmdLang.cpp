#include <lumcommon/lang/LumLang.h>

#include "Command.h"
#include "Output.h"

#include <nlohmann/json.hpp>

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string tag;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("tag", arguments.tag, "The language tag")->required();
}

void run(const Arguments& arguments) {
    const LumLang lang(fromArgument(arguments.tag));
    printJson({{"name", lang.getName()},
               {"language", lang.getLanguage()},
               {"script", lang.getScript()},
               {"country", lang.getCountry()},
               {"variant", lang.getVariant()}});
}

}  // namespace

void addLangCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "lang", "Print the parts of a language tag's locale as JSON", describe, run);
}

}  // namespace lum
