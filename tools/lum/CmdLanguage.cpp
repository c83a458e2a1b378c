// The commands for languages and scripts.
#include <lumcommon/lang/LumLang.h>
#include <lumcommon/lang/LumScript.h>

#include "Command.h"
#include "Language.h"
#include "Output.h"

namespace LumTool {
namespace {

using namespace LumCommon;

bool isKnown(const LumLang& lang) {
    const std::string country = lang.getCountry();
    const bool isArea = country.find_first_not_of("0123456789") == std::string::npos;  // "419", or none
    return *lang.getISO3Language() != '\0' && (isArea || *lang.getISO3Country() != '\0');
}

void printLang(const std::string& tag) {
    const LumLang lang = readLanguage(tag);
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

LumLang readLanguage(const std::string& tag) {
    LumLang lang(fromArgument(tag));
    if (!tag.empty() && tag != "none" && !isKnown(lang)) throw UsageError("there is no language " + tag);
    return lang;
}

Command makeLangCommand() {
    return makeCommand("lang", "Print the parts of the locale of a language tag as JSON", "tag", "The language tag",
                       printLang);
}

Command makeScriptCommand() {
    return makeCommand("script", "Print the script that a text names or is written in, as JSON", "text",
                       "A script code, a language tag, or text in the script", printScript);
}

}  // namespace LumTool
