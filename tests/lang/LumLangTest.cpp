#include <gtest/gtest.h>

#include <lumcommon/lang/LumLang.h>
#include <support/Utf8.h>

#include <map>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

// ICU judges the table: it must know what every code becomes.
TEST(LumLang, bibliographicCodesBecomeWhatIcuKnows) {
    const std::map<std::string, const char*> languages = {
        {"alb", "sq"}, {"arm", "hy"}, {"baq", "eu"}, {"bur", "my"}, {"chi", "zh"}, {"scr", "hr"},
        {"cze", "cs"}, {"dut", "nl"}, {"fre", "fr"}, {"geo", "ka"}, {"ger", "de"}, {"gre", "el"},
        {"ice", "is"}, {"jav", "jw"}, {"mac", "mk"}, {"may", "ms"}, {"mao", "mi"}, {"per", "fa"},
        {"rum", "ro"}, {"scc", "sr"}, {"slo", "sk"}, {"tib", "bo"}, {"wel", "cy"}, {"none", ""},
    };
    ASSERT_EQ(languages.size(), std::size_t{ISO639Bibliographic::COUNT});
    for (const auto& [code, language] : languages) {
        EXPECT_NE(utf8(ISO639Bibliographic::get(code.c_str())), code);
        EXPECT_STREQ(LumLang(code.c_str()).getLanguage(), language) << code;
    }
}

TEST(LumLang, onlyACodeAtTheStartIsRewritten) {
    struct Case {
        const char* fault;
        const char* tag;
        const char* result;
    };
    constexpr Case cases[] = {
        {"rest lost", "fre-FR", "fra-FR"},
        {"underscore does not end a code", "fre_CA", "fra_CA"},
        {"letter behind Z taken for one", "fre[", "fra["},
        {"lower-case letter ends a code", "fren", "fren"},
        {"upper-case letter ends a code", "freN", "freN"},
        {"letter beyond ASCII taken for one", "fre\u00E9", "fra\u00E9"},
        {"case ignored", "FRE", "FRE"},
        {"none with a country", "none-DE", "none-DE"},
        {"code inside a tag", "de-ger", "de-ger"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(utf8(s_ISO639Bibliographic.get(UnicodeString::fromUTF8(c.tag))), c.result) << c.fault;
    }
}

TEST(LumLang, isTheLocaleOfItsTag) {
    struct Case {
        const char* fault;
        LumLang lang;
        const char* locale;
    };
    const icu::Locale before = icu::Locale::getDefault();
    UErrorCode error = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("tr_TR"), error);
    const Case cases[] = {
        {"process default taken", LumLang(), ""},
        {"process default taken for an empty tag", LumLang(u""), ""},
        {"null", LumLang(static_cast<const char*>(nullptr)), ""},
        {"null name", LumLang(LumName()), ""},
        {"none", LumLang(NAME_none), ""},
        {"built-in name", LumLang(NAME_zho_TWN), "zh_TW"},
        {"bibliographic code with a country", LumLang(u"ger-DE"), "deu_DE"},
        {"language and country", LumLang(u"fre", u"CA"), "fra_CA"},
        {"country without language", LumLang(u"none", u"DE"), "_DE"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_TRUE(c.lang == icu::Locale(c.locale)) << c.lang.getName();
        EXPECT_EQ(c.lang.isEmpty(), *c.locale == '\0' || *c.locale == '_');
    }
    icu::Locale::setDefault(before, error);
}

TEST(LumLang, isOrderedByLanguageAlone) {
    const std::map<LumLang, int> alphabets{{LumLang("sv"), 1}, {LumLang("zh"), 2}};
    EXPECT_EQ(alphabets.count(LumLang("sv-SE")), 1u);
    EXPECT_EQ(alphabets.count(LumLang("chi-TW")), 1u);
    EXPECT_EQ(alphabets.count(LumLang("s")), 0u);
    EXPECT_FALSE(LumLang("sv-SE") == LumLang("sv")) << "equality is the locale's";
}

TEST(LumLang, anyTextGivesALocale) {
    const std::string letters(1 << 20, 'a');
    for (const std::string& tag : {letters, "ger-" + letters, "de@" + letters + "=v", std::string("-_-_@@=;\xFF")}) {
        const LumLang lang(tag.c_str());
        EXPECT_TRUE(LumLang(lang) == lang && !(lang < lang));
    }
    EXPECT_STREQ(LumLang(UnicodeString(u"de\0-AT", 6)).getLanguage(), "de");
}

}  // namespace
