#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <sstream>

#include "OleBytes.h"
#include "OlePropertyBytes.h"
#include "support/Utf8.h"

using namespace LumCommon;
using LumTest::OleImage;
using LumTest::PropertyWriter;

namespace {

/// A compound file with one or both of the property sets; an empty one is left out.
struct Document {
    explicit Document(const std::string& summary, const std::string& documentSummary = {})
        : in(image(summary, documentSummary)), io(&in) {
        EXPECT_TRUE(file.OLEopen(&io));
    }
    static std::string image(const std::string& summary, const std::string& documentSummary) {
        std::vector<LumTest::OleNode> tree;
        if (!summary.empty()) tree.push_back({u"\5SummaryInformation", summary});
        if (!documentSummary.empty()) tree.push_back({u"\5DocumentSummaryInformation", documentSummary});
        return OleImage(tree).bytes;
    }
    int links(std::vector<UnicodeString>& out) {
        OleSummaryInformation information;
        information.initDocumentSummaryInformation(&file);
        return information.getHyperLinks(out);
    }

    std::istringstream in;
    JZStreamIOobj io;
    OleCompFile file;
};

/// What getProperty gives: "none", or the kind and the text.
std::string property(OleSummaryInformation& information, unsigned id) {
    LumValue value(7);
    if (information.getProperty(id, value) != 1) {
        EXPECT_TRUE(value == LumValue(7)) << "changed by a failure";
        return "none";
    }
    std::string text = value.getKind() == KIND_INTEGER ? "integer " : "string ";
    return value.toString().toUTF8String(text);
}

TEST(OleSummaryInformation, readsEitherByteOrder) {
    for (const bool littleEndian : {true, false}) {
        const PropertyWriter w{littleEndian};
        const std::string title = "\x93\xFA\x96\x7B\x8C\xEA";  // Shift_JIS
        Document document(
            w.set({w.section({{1, w.integer(932, 2)},
                              {2, w.text(title)},
                              {4, w.text(std::string("A\0hidden", 8))},
                              {5, w.number(30) + w.number(3) + "abc"},
                              {6, w.number(0x101E) + w.number(2) + w.text("one").substr(4) + w.text("two").substr(4)},
                              {7, w.number(0x1003) + w.number(3) + w.number(1) + w.number(2) + w.number(3)},
                              {8, w.wideText(u"wide")},
                              {9, w.number(0x1003) + w.number(0)},
                              {10, w.number(64) + w.number(5, 8)},
                              {14, w.integer(0xFFFFFFFE)},
                              {17, w.integer(1)}})}));
        OleSummaryInformation information;
        ASSERT_EQ(information.initSummaryInformation(&document.file), 1);
        EXPECT_EQ(information.isSwapped(), !littleEndian);
        EXPECT_EQ(information.getVersion(), 1);
        EXPECT_EQ(information.getSystemId(), 0x20006u);
        EXPECT_EQ(information.getClassId().data1, 0xF29F85E1u);
        EXPECT_EQ(information.getClassId().data4[0], '8');
        EXPECT_EQ(information.getSections().at(0).propertyCount, 11u);
        EXPECT_EQ(property(information, 1), "integer 932");
        EXPECT_EQ(property(information, 2), "string \xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E");
        EXPECT_EQ(property(information, 3), "none") << "absent";
        EXPECT_EQ(property(information, 4), "string A") << "ends at its first zero";
        EXPECT_EQ(property(information, 5), "string abc") << "no terminating zero";
        EXPECT_EQ(property(information, 6), "string two") << "the last element of a vector";
        EXPECT_EQ(property(information, 7), "integer 3") << "the last element of a vector";
        EXPECT_EQ(property(information, 8), "none") << "another type";
        EXPECT_EQ(property(information, 9), "none") << "a vector without elements";
        EXPECT_EQ(property(information, 10), "none") << "a time";
        EXPECT_EQ(property(information, 14), "integer -2");
        EXPECT_EQ(property(information, 17), "none") << "not among those that can be asked for";
        EXPECT_EQ(property(information, 0), "none");
    }
}

struct CodePageCase {
    std::uint32_t codePage;
    const char* charset;
    const char* stored;
    const char* text;
};
const CodePageCase codePageCases[] = {
    {65001, "UTF-8", "\xE6\x97\xA5", "\xE6\x97\xA5"},
    {0xFFFFFDE9, "UTF-8", "\xE6\x97\xA5", "\xE6\x97\xA5"},
    {1252, "cp1252", "\x80\xE9", "\xE2\x82\xAC\xC3\xA9"},
    {1251, "cp1251", "\xC6", "\xD0\x96"},
    {932, "cp932", "\x5C\x81\x60\x87\x40", "\x5C\xEF\xBD\x9E\xE2\x91\xA0"},
    {1200, "cp1200", "A", "A"},
    {10000, "cp10000", "\x8E", "\xC3\xA9"},
    {4711, "cp4711", "\xE9", "\xC3\xA9"},
};

TEST(OleSummaryInformation, readsStringsInTheirCodePage) {
    const PropertyWriter w;
    for (const CodePageCase& c : codePageCases) {
        SCOPED_TRACE(c.charset);
        const std::string stored = c.codePage == 1200 ? std::string("A\0\0", 3) : c.stored;
        Document document(w.set({w.section({{2, w.text(stored)}, {1, w.integer(c.codePage, 2)}})}));
        OleSummaryInformation information;
        ASSERT_EQ(information.initSummaryInformation(&document.file), 1);
        EXPECT_EQ(information.getCharset(), UnicodeString::fromUTF8(c.charset));
        EXPECT_EQ(property(information, 2), std::string("string ") + c.text);
    }
    for (const std::string& section :
         {w.section({{2, w.text("\x93\xFA")}}), w.section({{2, w.text("\x93\xFA")}, {1, w.text("932")}})}) {
        Document document(w.set({section}));
        OlePropertySet properties;
        EXPECT_EQ(properties.init(&document.file), 1);
        EXPECT_EQ(properties.getTitle(), UnicodeString(u"\u65E5")) << "no usable code page";
    }
}

TEST(OleSummaryInformation, takesTheFirstMatchOutsideSectionsWithADictionary) {
    const PropertyWriter w;
    Document document(
        w.set({w.section({{0, w.dictionary({{2, std::string("x\0", 2)}})}, {2, w.text("in a named section")}}),
               w.section({{3, w.text("s")}, {3, w.text("second")}}),
               w.section({{2, w.text("title")}, {3, w.text("third")}})}),
        w.set({w.section({{2, w.text("document")}})}));
    OlePropertySet properties;
    EXPECT_EQ(properties.init(&document.file), 1);
    EXPECT_EQ(properties.getTitle(), UnicodeString(u"title"));
    EXPECT_EQ(properties.getSubject(), UnicodeString(u"s"));
    EXPECT_TRUE(properties.getAuthor().isEmpty());
    OleSummaryInformation information;
    ASSERT_EQ(information.initDocumentSummaryInformation(&document.file), 1);
    EXPECT_EQ(property(information, 2), "none") << "of the other kind of property set";
    Document none("");
    EXPECT_EQ(properties.init(&none.file), -1);
    EXPECT_EQ(properties.getTitle(), UnicodeString(u"title")) << "left as it was";
    EXPECT_EQ(OlePropertySet().init(nullptr), -1);
}

TEST(OleSummaryInformation, listsHyperLinks) {
    const std::string name("_PID_HLINKS\0", 12);
    for (const bool littleEndian : {true, false}) {
        const PropertyWriter w{littleEndian};
        const std::string numbers = w.integer(1) + w.integer(2) + w.integer(3) + w.integer(4);
        const std::string links = numbers + w.wideText(u"a.doc") + w.wideText(u"") + numbers +
                                  w.wideText(u"\xD842\xDFB7h") + w.wideText(u"p", 4) + std::string(4, '\0') +
                                  w.number(77);
        const std::string named = w.section(
            {{1, w.integer(1252)}, {0, w.dictionary({{3, "_PID_HLINKX"}, {2, name}})}, {2, w.block(13, links)}});
        Document document("", w.set({w.section({{2, w.block(1, w.integer(1))}}), named}));
        std::vector<UnicodeString> out{u"before"};
        EXPECT_EQ(document.links(out), 1);
        EXPECT_EQ(out, (std::vector<UnicodeString>{u"before", u"a.doc", u"\xD842\xDFB7h", u"p"}));
    }
    const PropertyWriter w;
    const std::string one = w.wideText(u"a");
    struct Case {
        const char* fault;
        std::string section;
        int result;
        std::size_t links;
    };
    const Case cases[] = {
        {"no element", w.section({{0, w.dictionary({{2, name}})}, {2, w.block(0, one)}}), 1, 0},
        {"another name", w.section({{0, w.dictionary({{2, std::string("_PID_HLINK\0", 11)}})}, {2, w.block(1, one)}}),
         -1, 0},
        {"the name in another case",
         w.section({{0, w.dictionary({{2, std::string("_pid_hlinks\0", 12)}})}, {2, w.block(1, one)}}), -1, 0},
        {"the number of the code page", w.section({{0, w.dictionary({{1, name}})}, {1, w.block(1, one)}}), -1, 0},
        {"another type", w.section({{0, w.dictionary({{2, name}})}, {2, w.text("a")}}), -1, 0},
        {"no dictionary", w.section({{2, w.block(1, one)}}), -1, 0},
        {"the dictionary last in the table", w.section({{2, w.block(1, one)}, {0, w.dictionary({{2, name}})}}), 1, 1},
        {"four billion elements", w.section({{0, w.dictionary({{2, name}})}, {2, w.block(0xFFFFFFFF, one)}}), -1, 1},
        {"four billion units",
         w.section({{0, w.dictionary({{2, name}})}, {2, w.block(2, one + w.wideText(u"b", 0xFFFFFFFF))}}), -1, 1},
        {"an element cut short", w.section({{0, w.dictionary({{2, name}})}, {2, w.block(2, one + w.number(31))}}), -1,
         1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        Document document("", w.set({c.section}));
        std::vector<UnicodeString> out;
        EXPECT_EQ(document.links(out), c.result);
        EXPECT_EQ(out.size(), c.links);
    }
}

TEST(OleSummaryInformation, keepsWhatADamagedStreamStillHas) {
    const PropertyWriter w;
    const std::string good = w.section({{2, w.text("title")}});
    const auto set = [](std::string bytes, std::size_t at, const std::string& field) {
        return bytes.replace(at, field.size(), field);
    };
    const std::string twoNames = w.dictionary({{2, "ab"}, {3, "cd"}});
    struct Case {
        const char* fault;
        std::string bytes;
        int result;
        std::size_t sections, properties, names;  // the last two of the first section
    };
    const Case cases[] = {
        {"four billion sections", set(w.set({good}), 24, w.number(0xFFFFFFFF)), -1, 2, 1, 0},
        {"a section outside", set(w.set({good, good}), 44, w.number(0xFFFFFFF0)), -1, 2, 0, 0},
        {"four billion properties", w.set({set(good, 4, w.number(0xFFFFFFFF)), good}), -1, 2, 2, 0},
        {"a value outside, and what follows it",
         w.set({set(w.section({{2, w.text("a")}, {3, w.text("b")}}), 12, w.number(0xFFFFFFF0)), good}), -1, 2, 0, 0},
        {"four billion names", w.set({w.section({{0, set(twoNames, 0, w.number(0xFFFFFFFF))}, {2, w.text("a")}})}), 1,
         1, 2, 2},
        {"a name that reaches past the next property",
         w.set({w.section({{0, set(twoNames, 18, w.number(3))}, {2, w.text("a")}})}), 1, 1, 2, 1},
        {"a name that reaches past the section",
         w.set({w.section({{2, w.text("a")}, {0, set(twoNames, 18, w.number(3))}})}), 1, 1, 2, 1},
        {"a name that reaches past the stream",
         w.set({set(w.section({{2, w.text("a")}, {0, set(twoNames, 18, w.number(9))}}), 0, w.number(0xFFFFFFFF))}), -1,
         1, 2, 1},
        {"a name cut short, and what follows it",
         w.set({set(w.section({{0, set(twoNames, 8, w.number(0x7FFFFFF0))}, {2, w.text("a")}}), 20,
                    w.number(0x7FFFFFFF))}),
         -1, 1, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        Document document(c.bytes);
        OleSummaryInformation information;
        EXPECT_EQ(information.initSummaryInformation(&document.file), c.result);
        EXPECT_EQ(information.getSections().size(), c.sections);
        if (information.getSections().empty()) continue;
        EXPECT_EQ(information.getSections()[0].properties.size(), c.properties);
        EXPECT_EQ(information.getSections()[0].dictionary.size(), c.names);
    }
    const std::string whole = w.set({w.section({{1, w.integer(1252)}, {2, w.text("title")}, {0, twoNames}})});
    for (std::size_t size = 1; size <= whole.size(); ++size) {
        Document document(whole.substr(0, size));
        OleSummaryInformation information;
        EXPECT_EQ(information.initSummaryInformation(&document.file), size == whole.size() ? 1 : -1) << size;
    }
}

TEST(OleSummaryInformation, readsSharedBytesTwiceAtMost) {
    const PropertyWriter w;
    std::vector<std::pair<std::uint32_t, std::string>> names(1000, {2, "n"});
    const std::string shared = w.section({{0, w.dictionary(names)}});
    std::string bytes = w.set(std::vector<std::string>(500, shared));
    bytes.resize(28 + 500 * 20 + shared.size());
    for (std::size_t i = 0; i < 500; ++i) bytes.replace(28 + 20 * i + 16, 4, w.number(28 + 500 * 20));
    Document document(bytes);
    OleSummaryInformation information;
    EXPECT_EQ(information.initSummaryInformation(&document.file), -1);
    std::size_t read = 0;
    for (const OleSISection& section : information.getSections()) read += section.dictionary.size() * 9;
    EXPECT_GE(read, bytes.size());
    EXPECT_LE(read, 2 * bytes.size());
}

/// "damaged", or a letter for what it holds and the content.
std::string shown(const OlePropertyValue& value) {
    struct Shower {
        std::string operator()(std::monostate) const { return "-"; }
        std::string operator()(std::int64_t number) const { return "i" + std::to_string(number); }
        std::string operator()(std::uint64_t number) const { return "u" + std::to_string(number); }
        std::string operator()(double number) const { return "d" + std::to_string(number); }
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(const UnicodeString& text) const { return "s" + LumTest::utf8(text); }
        std::string operator()(const OLE_CLSID& id) const {
            return "c" + std::to_string(id.data1 & 0xF) + static_cast<char>(id.data4[7]);
        }
        std::string operator()(const OlePropertyBytes& bytes) const {
            return "b" + std::string(bytes.begin(), bytes.end());
        }
        std::string operator()(const OlePropertyElements& elements) const {
            std::string text = "[";
            for (const auto& dimension : elements.dimensions) {
                text += std::to_string(dimension.size) + "@" + std::to_string(dimension.lowestIndex) + " ";
            }
            for (const OlePropertyValue& value : elements.values) text += shown(value) + ",";
            return text + "]";
        }
    };
    return value.isDamaged ? "damaged" : std::visit(Shower(), value.content);
}

TEST(OleSummaryInformation, readsValuesOfEveryTypeInTheirOwnWidth) {
    for (const bool littleEndian : {true, false}) {
        const PropertyWriter w{littleEndian};
        const auto vector = [&w](std::uint32_t type, std::uint32_t count, const std::string& elements) {
            return w.number(0x1000 | type) + w.number(count) + elements;
        };
        const auto string = [&w](const std::string& bytes) { return w.number(bytes.size()) + bytes; };
        const std::string nul(1, '\0'), pad2(2, '\0');
        const std::string large =
            w.number(0x10000) + w.number(0);  // four such dimensions are 2^64 elements, 0 in 64 bits
        const struct {
            std::string stored, shown;
        } rows[] = {
            {w.number(0), "-"},
            {w.number(1), "-"},
            {w.number(2) + w.number(0xFFFE, 2) + "xx", "i-2"},
            {w.number(3) + w.number(0xFFFFFFFE), "i-2"},
            {w.number(4) + w.number(0xC0200000), "d-2.500000"},
            {w.number(5) + w.number(0x4029000000000000, 8), "d12.500000"},
            {w.number(6) + w.number(static_cast<std::uint64_t>(-12345), 8), "i-12345"},
            {w.number(7) + w.number(0x40E5180000000000, 8), "d43200.000000"},
            {w.number(8) + string("b" + nul), "sb"},
            {w.number(10) + w.number(0x80004005), "u2147500037"},
            {w.number(11) + w.number(0xFFFF, 2), "true"},
            {w.number(11) + w.number(0, 2) + "xx", "false"},
            {w.number(14) + w.number(0, 2) + "\x02\x80" + w.number(1) + w.number(5, 8), "s-184467440737095516.21"},
            {w.number(14) + w.number(0, 2) + "\x03" + nul + w.number(0) + w.number(7, 8), "s0.007"},
            {w.number(14) + w.number(0, 2) + "\x1D" + nul + w.number(0) + w.number(7, 8), "damaged"},
            {w.number(16) + "\xFE", "i-2"},
            {w.number(17) + "\xFE", "u254"},
            {w.number(18) + w.number(0xFFFE, 2), "u65534"},
            {w.number(19) + w.number(0xFFFFFFFE), "u4294967294"},
            {w.number(20) + w.number(static_cast<std::uint64_t>(-2), 8), "i-2"},
            {w.number(21) + w.number(static_cast<std::uint64_t>(-2), 8), "u18446744073709551614"},
            {w.number(22) + w.number(0xFFFFFFFE), "i-2"},
            {w.number(23) + w.number(0xFFFFFFFE), "u4294967294"},
            {w.text("\xC6"), "s\xD0\x96"},
            {w.wideText(u"\u65E5"), "s\xE6\x97\xA5"},
            {w.number(64) + w.number(2) + w.number(1), "u4294967298"},
            {w.number(65) + string("a" + nul + "b"), "ba" + nul + "b"},
            {w.number(66) + string("prop1" + nul), "sprop1"},
            {w.number(70) + string("x"), "bx"},
            {w.number(71) + string("FMT.data"), "bFMT.data"},
            {w.number(72) + w.classId(1), "c1."},
            {w.number(73) + w.classId(1) + string("prop2"), "sprop2"},
            {vector(2, 3, w.number(1, 2) + w.number(2, 2) + w.number(0xFFFF, 2)), "[i1,i2,i-1,]"},
            {vector(17, 3, "abc"), "babc"},
            {vector(11, 2, w.number(1, 2) + w.number(0, 2)), "[true,false,]"},
            {vector(30, 2, string("a") + pad2 + nul + string("bcde")), "[sa,sbcde,]"},
            {vector(30, 2, string("a") + string("bcde")), "[sa,sbcde,]"},
            {vector(30, 2, string("a") + "xyz" + string("bcde")), "[sa,sbcde,]"},
            {vector(31, 2, w.wideText(u"ab").substr(4) + w.wideText(u"c").substr(4)), "[sab,sc,]"},
            {vector(12, 4,
                    w.number(30) + string("Title" + nul) + w.number(3) + w.number(1) + w.number(2) + w.number(7, 2) +
                        pad2 + w.number(0)),
             "[sTitle,i1,i7,-,]"},
            {w.number(0x2003) + w.number(3) + w.number(2) + w.number(2) + w.number(1) + w.number(1) + w.number(-1) +
                 w.number(8) + w.number(9),
             "[2@1 1@-1 i8,i9,]"},
            {w.number(0x2003) + w.number(2) + w.number(1) + w.number(1) + w.number(0) + w.number(8), "damaged"},
            {w.number(0x2003) + w.number(3) + w.number(4) + large + large + large + large, "damaged"},
            {vector(3, 0, ""), "[]"},
            {vector(0, 1, ""), "damaged"},
            {vector(2, 0xFFFFFFFF, w.number(1)), "damaged"},
            {vector(12, 1, vector(3, 1, w.number(1))), "damaged"},
            {w.number(12) + w.number(3) + w.number(1), "damaged"},
            {w.number(9) + w.number(1), "damaged"},
            {w.number(0x3003) + w.number(1), "damaged"},
            {w.number(0x10003) + w.number(1), "damaged"},
            {w.number(30) + w.number(5) + "four", "damaged"},
            {w.number(65) + w.number(0xFFFFFFFF) + "four", "damaged"},
            {w.number(21) + "seven b", "damaged"},
        };
        for (const auto& row : rows) {
            SCOPED_TRACE(row.shown + testing::PrintToString(row.stored));
            // The last value of the last section: nothing follows it.
            Document document("", w.set({w.section({{1, w.number(2) + w.number(1251, 2) + pad2}, {77, row.stored}})}));
            OleSummaryInformation information;
            EXPECT_EQ(information.initDocumentSummaryInformation(&document.file), 1);
            const auto value = information.readProperty(77);
            ASSERT_TRUE(value);
            EXPECT_EQ(shown(*value), row.shown);
            EXPECT_EQ(information.readProperties().at(1).value, *value);
        }
    }
}

TEST(OleSummaryInformation, namesThePropertiesOfTheUser) {
    const PropertyWriter w;
    const auto wide = [&w](const std::u16string& text) {
        std::string units;
        for (const char16_t unit : text) units += w.number(unit, 2);
        return units + std::string(2, '\0');
    };
    const std::string wideNames = w.number(2) + w.number(2) + w.number(3) + wide(u"\u65E5a") + std::string(2, '\0') +
                                  w.number(3) + w.number(2) + wide(u"b");
    Document document(
        "", w.set({w.section({{1, w.integer(0xFDE9, 2)}, {2, w.text("\xE6\x97\xA5")}}),
                   w.section({{0, w.dictionary({{2, "\xC3\xA9"}, {3, "E"}, {3, "second"}, {9, "none"}, {0, "self"}})},
                              {2, w.text("\xC3\xA9")},
                              {3, w.integer(3)},
                              {4, w.integer(4)}}),
                   w.section({{0, wideNames},
                              {1, w.integer(1200, 2)},
                              {2, w.number(30) + w.number(6) + wide(u"\u672C\u8A9E")},
                              {3, w.integer(5)}})}));
    OleSummaryInformation information;
    ASSERT_EQ(information.initDocumentSummaryInformation(&document.file), 1);
    std::string list;
    for (const OleProperty& property : information.readProperties()) {
        list += std::to_string(property.id) + (property.isNamed ? "=" : ":") + LumTest::utf8(property.name) + " " +
                shown(property.value) + "\n";
    }
    EXPECT_EQ(list,
              "1: i65001\n2: s\xE6\x97\xA5\n2=\xC3\xA9 s\xC3\xA9\n3=E i3\n4= i4\n1= i1200\n"
              "2=\xE6\x97\xA5"
              "a s\xE6\x9C\xAC\xE8\xAA\x9E\n3=b i5\n");
    EXPECT_EQ(information.readProperties().at(0).formatId, information.getSections().at(0).formatId);
    const auto named = [&information](const char16_t* name) {
        const auto value = information.readProperty(UnicodeString(name));
        return value ? shown(*value) : "none";
    };
    EXPECT_EQ(named(u"E"), "i3");
    EXPECT_EQ(named(u"\u00C9"), "s\xC3\xA9") << "in another case";
    EXPECT_EQ(named(u"\u65E5A"), "s\xE6\x9C\xAC\xE8\xAA\x9E") << "in another case and of another code page";
    EXPECT_EQ(named(u"second") + named(u"none") + named(u"self") + named(u""), "nonenonenonenone");
    EXPECT_EQ(shown(information.readProperty(2u).value()), "s\xE6\x97\xA5") << "not that of the user";
    EXPECT_FALSE(information.readProperty(0u) || information.readProperty(3u));
}

TEST(OleSummaryInformation, readsSharedValuesFourTimesAtMost) {
    const PropertyWriter w;
    PropertyWriter::Properties properties(500, {2, ""});
    properties.back().second = w.number(65) + w.number(5000) + std::string(5000, 'x');
    Document document(w.set({w.section(properties)}));  // all of them at the place of the last one
    OleSummaryInformation information;
    ASSERT_EQ(information.initSummaryInformation(&document.file), 1);
    std::size_t held = 0;
    for (const OleProperty& property : information.readProperties()) {
        if (const auto* bytes = std::get_if<OlePropertyBytes>(&property.value.content)) held += bytes->size();
    }
    EXPECT_GE(held, 5000u);
    EXPECT_LE(held, 4u * 9100);

    constexpr std::uint32_t count = 600000;
    const std::string numbers = w.number(0x1002) + w.number(count) + std::string(2 * count, 'x');
    Document many(w.set({w.section({{2, ""}, {3, numbers}, {4, w.integer(1)}})}));
    OleSummaryInformation other;
    ASSERT_EQ(other.initSummaryInformation(&many.file), 1);
    const std::vector<OleProperty> all = other.readProperties();
    EXPECT_FALSE(all.at(0).value.isDamaged);
    EXPECT_TRUE(all.at(1).value.isDamaged) << "elements are not counted in all";
    EXPECT_EQ(shown(all.at(2).value), "i1");
}

TEST(OleSummaryInformation, readsPrimitiveFieldsAtThePosition) {
    for (const bool littleEndian : {true, false}) {
        const PropertyWriter w{littleEndian};
        // No property is in the table, so the position stays before these bytes: they are the section.
        Document document("", w.set({w.number(0) + w.number(0) + w.number(0x2041, 2) + w.number(0x20AC, 2) + "abc"}));
        OleSummaryInformation information;
        unsigned short word = 9;
        EXPECT_FALSE(information.getWORD(&word)) << "nothing is open";
        EXPECT_EQ(information.initDocumentSummaryInformation(&document.file), 1);
        unsigned int size = 7;
        wchar_t units[2] = {};
        unsigned char reversed[4] = {};
        EXPECT_TRUE(information.getDWORD(&size) && information.getDWORD(&size) && information.getWSTR(units, 2));
        EXPECT_EQ(size, 0u);
        EXPECT_EQ(std::wstring(units, 2), L"\u2041\u20AC");
        EXPECT_TRUE(information.getReverse(reversed, 3));
        EXPECT_EQ(std::string(reversed, reversed + 3), "cba");
        EXPECT_FALSE(information.getWORD(&word) || information.getReverse(reversed, 1) ||
                     information.getWSTR(units, 1));
        EXPECT_FALSE(information.getDWORD(nullptr) || information.getReverse(reversed, -1));
        EXPECT_EQ(word, 9) << "changed by a failure";
    }
}

}  // namespace
