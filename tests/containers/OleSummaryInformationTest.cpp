#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <sstream>

#include "OleBytes.h"
#include "OlePropertyBytes.h"

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
