#include <lumcommon/lang/LumLang.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string tag;
};

void describe(Syntax& syntax, Arguments& arguments) { syntax.required("tag", arguments.tag, "The language tag"); }

void run(const Arguments& arguments) {
    const LumLang lang(fromArgument(arguments.tag));
    printJson({{"name", lang.getName()},
               {"language", lang.getLanguage()},
               {"script", lang.getScript()},
               {"country", lang.getCountry()},
               {"variant", lang.getVariant()}});
}

}  // namespace

Command makeLangCommand() {
    return makeCommand("lang", "Print the parts of a language tag's locale as JSON", describe, run);
}

}  // namespace lum
