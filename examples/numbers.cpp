// Writes numbers as texts.
// [numbers]
#include <lumcommon/lumcommon.h>

#include <iostream>

using namespace LumCommon;

static std::string utf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

int main() {
    const LumLang swedish(u"sv-SE");
    std::cout << utf8(LumUtil::formatNumber(1994, u"(i)")) << ' '
              << utf8(LumUtil::formatNumber(27, u"a", u"", 0, swedish)) << ' '
              << utf8(LumUtil::formatNumber(1234567, u"1", u",", 3)) << ' '
              << utf8(LumUtil::convertKansuji(12345, NAME_readable, NAME_kanji)) << '\n';

    const UnicodeString text(u"\u0413\u043B\u0430\u0432\u0430");
    const LumScript script = LumScript::getScriptFromText(text);
    std::cout << utf8(text) << " is " << utf8(script.getScriptCode().getString()) << ", its third page "
              << utf8(LumUtil::formatNumber(3, script.getA())) << '\n';
    std::cout << LumLang(u"fre-CA").getName() << ' ' << utf8(LumScript(u"zh-TW").getScriptCode().getString()) << '\n';
}
// [numbers]
