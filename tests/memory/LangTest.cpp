// What lang/ does when memory runs out.

#include <support/FailingMemory.h>

namespace {

using namespace LumCommon;
using LumTest::utf8;
using LumTest::operator""_text;

TEST(LangMemory, failsAloud) {
    const LumTest::MemoryRow<> rows[] = {
        {"the language is empty, or its copy has no name",
         [](auto&) {
             const UnicodeString tag =
                 u"fre-CA-variant1-variant2-variant3@collation=phonebook;currency=EUR;numbers=latn"_text;
             const LumLang lang(tag), copy(lang);
             LumLang assigned;
             assigned = copy;
             return utf8(ISO639Bibliographic::get(tag)) + copy.getName() + assigned.getBaseName() +
                    assigned.getLanguage() +
                    LumLang(
                        u"de-DE-1901-abcdefgh-bcdefghi-cdefghij-defghijk-efghijkl-fghijklm-ghijklmn-hijklmno-ijklmnop-"
                        u"jklmnopq-"
                        u"klmnopqr-lmnopqrs-mnopqrst-nopqrstu-opqrstuv-pqrstuvw-qrstuvwx"_text)
                        .getName() +
                    LumLang(u"ger"_text, u"CH").getName() + LumLang("zh-Hant-TW").getName();
         }},
        {"the script is unknown",
         [](auto&) {
             std::string told;
             for (const UnicodeString& text :
                  {u"Deva"_text, u"uz-AF"_text, u"a-language-that-there-is-not-and-whose-tag-is-long"_text,
                   u"sr-Latn-RS"_text, u"de"_text}) {
                 const LumScript script(text);
                 told += utf8(script.getScriptCode().getString()) + utf8(script.getA());
             }
             return told + utf8(LumScript(LumScript::getScript(0x10A0)).getScriptCode().getString());
         }},
    };
    LumTest::forEveryFailure(rows);
}

}  // namespace
