// Writes numbers as texts.
// [numbers]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

int main() {
    const LumLang swedish(u"sv-SE");
    std::cout << toUtf8(LumUtil::formatNumber(1994, u"(i)")) << ' '
              << toUtf8(LumUtil::formatNumber(27, u"a", u"", 0, swedish)) << ' '
              << toUtf8(LumUtil::formatNumber(1234567, u"1", u",", 3)) << ' '
              << toUtf8(LumUtil::convertKansuji(12345, NAME_readable, NAME_kanji)) << '\n';

    const UnicodeString text(u"\u0413\u043B\u0430\u0432\u0430");
    const LumScript script = LumScript::getScriptFromText(text);
    std::cout << toUtf8(text) << " is " << script.getScriptCode() << ", its third page "
              << toUtf8(LumUtil::formatNumber(3, script.getA())) << '\n';
    std::cout << LumLang(u"fre-CA").getName() << ' ' << LumScript(u"zh-TW").getScriptCode() << '\n';
}
// [numbers]
