// The commands for languages and scripts.
#include <lumcommon/lang/LumLang.h>
#include <lumcommon/lang/LumScript.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

using namespace LumCommon;

void printLang(const std::string& tag) {
    const LumLang lang(fromArgument(tag));
    printJson({{"name", lang.getName()},
               {"language", lang.getLanguage()},
               {"script", lang.getScript()},
               {"country", lang.getCountry()},
               {"variant", lang.getVariant()}});
}

void printScript(const std::string& argument) {
    const UnicodeString text = fromArgument(argument);
    const LumScript named(text);
    const bool isNamed = named != LumScript::UNKNOWN;
    const LumScript script = isNamed ? named : LumScript::getScriptFromText(text);
    printJson({{"script", toUtf8(script.getScriptCode())},
               {"code", script.getCode()},
               {"letter", toUtf8(script.getA())},
               {"named", isNamed}});
}

}  // namespace

Command makeLangCommand() {
    return makeCommand("lang", "Print the parts of the locale of a language tag as JSON", "tag", "The language tag",
                       printLang);
}

Command makeScriptCommand() {
    return makeCommand("script", "Print the script that a text names or is written in, as JSON", "text",
                       "A script code, a language tag, or text in the script", printScript);
}

}  // namespace lum
