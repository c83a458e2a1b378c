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
}
// [numbers]
