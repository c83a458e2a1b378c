#include <gtest/gtest.h>

#include <lumcommon/lang/LumLang.h>
#include <lumcommon/lang/LumScript.h>
#include <support/DataRows.h>
#include <support/Utf8.h>

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <map>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::Fields;
using LumTest::utf8;

// ICU judges the table: it must know what every code becomes.
std::string bibliographic(const Fields& fields) {
    const std::string code = utf8(fields[0]);
    EXPECT_NE(utf8(ISO639Bibliographic::get(code.c_str())), code);
    return LumLang(code.c_str()).getLanguage();
}

std::string locale(const Fields& fields) {
    const LumLang lang = fields[1].isEmpty() ? LumLang(fields[0]) : LumLang(fields[0], fields[1]);
    const std::string name = lang.getName();
    EXPECT_EQ(lang.isEmpty(), name.empty() || name[0] == '_');
    return name;
}

std::string script(const Fields& fields) {
    const LumScript script(fields[0]);
    EXPECT_EQ(LumScript(LumName(fields[0])), script);
    const std::string name = utf8(script.getScriptCode().getString());
    return std::to_string(script.getCode()) + " " + (name.empty() ? "-" : name) + " " + utf8(script.getA());
}

TEST(LumLang, tagsNameLanguagesAndScripts) {
    const icu::Locale before = icu::Locale::getDefault();
    UErrorCode error = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("tr_TR"), error);
    LumTest::checkRows(
        "lang/tags.txt",
        {{"bibliographic", bibliographic},
         {"rewritten", [](const Fields& f) { return utf8(s_ISO639Bibliographic.get(f[0])); }},
         {"locale", locale},
         {"script", script},
         {"ofText", [](const Fields& f) { return std::to_string(LumScript::getScriptFromText(f[0]).getCode()); }}});
    for (const LumLang& lang : {LumLang(), LumLang(static_cast<const char*>(nullptr)), LumLang(LumName())}) {
        EXPECT_TRUE(lang.isEmpty() && lang == icu::Locale("")) << "the default of the process is taken";
    }
    icu::Locale::setDefault(before, error);
    EXPECT_EQ(ISO639Bibliographic::COUNT, 24);
    EXPECT_EQ(LumScript(), LumScript::UNKNOWN);
    UnicodeString bogus;
    bogus.setToBogus();
    EXPECT_EQ(LumScript::getScriptFromText(bogus), LumScript::COMMON);
    EXPECT_EQ(LumScript(bogus), LumScript::AUTO);
}

TEST(LumLang, isOrderedByLanguageAlone) {
    const std::map<LumLang, int> alphabets{{LumLang("sv"), 1}, {LumLang("zh"), 2}};
    EXPECT_EQ(alphabets.count(LumLang("sv-SE")), 1u);
    EXPECT_EQ(alphabets.count(LumLang("chi-TW")), 1u);
    EXPECT_EQ(alphabets.count(LumLang("s")), 0u);
    EXPECT_FALSE(LumLang("sv-SE") == LumLang("sv")) << "equality is the locale's";
}

TEST(LumLang, takesAnyText) {
    const std::string letters(1 << 20, 'z');
    for (const std::string& tag : {letters, "ger-" + letters, "de@" + letters + "=v", std::string("-_-_@@=;\xFF")}) {
        const LumLang lang(tag.c_str());
        EXPECT_TRUE(LumLang(lang) == lang && !(lang < lang));
        EXPECT_EQ(LumScript(UnicodeString::fromUTF8(tag)), LumScript::UNKNOWN);
    }
}

TEST(LumScript, namesEveryCodeOfIcu) {
    const int end = u_getIntPropertyMaxValue(UCHAR_SCRIPT) + 1;
    EXPECT_GT(end, 150);
    for (int code = 0; code < end; ++code) {
        const std::string name = utf8(LumScript(code).getScriptCode().getString());
        EXPECT_EQ(name, code == LumScript::INHERITED ? "Qaai" : uscript_getShortName(UScriptCode(code)));
        EXPECT_EQ(LumScript(UnicodeString::fromUTF8(name)).getCode(), name == "Jpan" ? -8 : code);
    }
    for (const int code : {-100, -9, -7, -5, -3, -2, -1, end + 1000, INT32_MAX, INT32_MIN}) {
        EXPECT_TRUE(LumScript(code).getScriptCode().isNull()) << code;
        EXPECT_EQ(utf8(LumScript(code).getA()), "A") << code;
    }
}

TEST(LumScript, everyCharacterHasIcusScriptButForOurBlocks) {
    std::map<UChar32, int> ours;
    for (const Fields& row : LumTest::readTextRows("lang/blocks.txt")) {
        const UChar32 last = std::stoi(utf8(row.at(1)), nullptr, 16);
        for (UChar32 c = std::stoi(utf8(row[0]), nullptr, 16); c <= last; ++c) ours[c] = LumScript(row[2]).getCode();
    }
    for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
        UErrorCode error = U_ZERO_ERROR;
        ASSERT_EQ(LumScript::getScript(c), ours.contains(c) ? ours.at(c) : uscript_getScript(c, &error))
            << std::hex << c;
    }
    for (const UChar32 c : {-1, INT32_MIN, 0x110000, INT32_MAX})
        EXPECT_EQ(LumScript::getScript(c), LumScript::UNKNOWN) << c;
}

}  // namespace
