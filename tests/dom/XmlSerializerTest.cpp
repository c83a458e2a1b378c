#include <gtest/gtest.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <support/Utf8.h>
#include <unicode/ucnv.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::utf8;

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }
LumName name(const std::string& bytes) { return LumName(text(bytes)); }
const LumName none;

/// A serializer that writes into a string; the shared name table stays alive between serializers.
class XmlSerializerTest : public testing::Test {
protected:
    void SetUp() override {
        LumNameTable::addRefSharedNameTable();
        serializer = LumXmlUtil::createXmlSerializer();
        serializer->setOutput(out, UnicodeString());
    }
    void TearDown() override {
        serializer = nullptr;
        LumNameTable::releaseSharedNameTable();
    }
    LumXmlSerializer* operator->() const { return serializer.get(); }
    /// What has been written since the last call.
    std::string written() {
        std::string bytes = out.str();
        out.str({});
        return bytes;
    }
    void reopen(const char* encoding = "") {
        out.clear();
        out.str({});
        serializer->setOutput(out, encoding);
    }
    void startDocument(const char* encoding = "") {
        serializer->setGenerator({});
        reopen();
        serializer->startDocument(encoding, {});
        written();
    }

    std::ostringstream out;
    LumPtr<LumXmlSerializer> serializer;
};

struct Failure {
    unsigned code = 0;
    std::string message, source;
    friend bool operator==(const Failure&, const Failure&) = default;
    friend std::ostream& operator<<(std::ostream& to, const Failure& f) {
        return to << f.code << " '" << f.message << "' from '" << f.source << "'";
    }
};

Failure failureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const LumError& e) {
        return {e.code, utf8(e.message), utf8(e.source)};
    }
    return {};
}
const Failure success;
const Failure noOutput{0x1005, "Output stream is not set.", "LumCommon::XmlSerializerImpl::checkStream"};
const Failure outputFailed{0x1007, "Output stream error.", "LumCommon::XmlSerializerImpl::checkStream"};

TEST_F(XmlSerializerTest, writesTheDeclarationThatWasAskedFor) {
    struct Case {
        const char *fault, *ofOutput, *ofDocument, *standalone, *generator, *expected;
    };
    static constexpr Case cases[] = {
        {"declares what nobody named", "", "", "", "", "<?xml version=\"1.0\"?>"},
        {"output's encoding forgotten", " utf-8\n", "", "", "", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"},
        {"output's encoding wins", "UTF-8", "Shift-JIS", "", "", "<?xml version=\"1.0\" encoding=\"SHIFT_JIS\"?>"},
        {"second spelling not known", "shift_jis", "", "", "", "<?xml version=\"1.0\" encoding=\"SHIFT_JIS\"?>"},
        {"declares what is not written", "UTF-8", "EUC-JP", "", "", "<?xml version=\"1.0\"?>"},
        {"standalone lost", "", "", "yes", "", "<?xml version=\"1.0\" standalone=\"yes\"?>"},
        {"order of the two", "", "utf-8", "no", "", "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>"},
        {"generator", "", "", "", "me & you", "<?xml version=\"1.0\"?><!-- me & you -->"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        serializer->setGenerator(c.generator);
        reopen(c.ofOutput);
        serializer->startDocument(c.ofDocument, c.standalone);
        EXPECT_EQ(written(), c.expected);
    }
}

TEST_F(XmlSerializerTest, namesItselfAsGeneratorUnlessTold) {
    serializer->startDocument({}, {});
    const std::string bytes = written();
    EXPECT_EQ(bytes.find("<?xml version=\"1.0\"?><!-- Lumset V3.9 R1 (3,9,2006,0901) for Linux"), 0u);
    EXPECT_EQ(bytes.find("-->"), bytes.size() - 3);
    EXPECT_EQ(bytes.find("--", 24), bytes.size() - 3) << "a comment may not hold two hyphens";
}

TEST_F(XmlSerializerTest, escapesAndEncodes) {
    // The same characters as text, in an attribute and in a CDATA section.
    struct Case {
        const char* fault;
        UnicodeString characters;
        std::string asText, asAttribute, raw;
    };
    const std::string s40(40, 's');
    const std::vector<Case> cases = {
        {"nothing to write", u"", "", "", ""},
        {"markup", u"a<b>&c", "a&lt;b&gt;&amp;c", "a&lt;b&gt;&amp;c", "a<b>&c"},
        {"quote escaped in text, or not in an attribute", u"\"'", "\"'", "&quot;'", "\"'"},
        {"white space changed", u"\t\n\r ", "\t\n\r ", "\t\n\r ", "\t\n\r "},
        {"control characters kept", UnicodeString(u"a\0\x01\x08\x0B\x0C\x0E\x1F\x7F", 9), "a\x7F", "a\x7F", "a\x7F"},
        {"two bytes", u"\u0080\u00E9\u07FF", "\xC2\x80\xC3\xA9\xDF\xBF", "\xC2\x80\xC3\xA9\xDF\xBF",
         "\xC2\x80\xC3\xA9\xDF\xBF"},
        {"three bytes", u"\u0800\u65E5\uFFFD", "\xE0\xA0\x80\xE6\x97\xA5\xEF\xBF\xBD",
         "\xE0\xA0\x80\xE6\x97\xA5\xEF\xBF\xBD", "\xE0\xA0\x80\xE6\x97\xA5\xEF\xBF\xBD"},
        {"noncharacters taken for an end", u"\uFFFE\uFFFF", "\xEF\xBF\xBE\xEF\xBF\xBF", "\xEF\xBF\xBE\xEF\xBF\xBF",
         "\xEF\xBF\xBE\xEF\xBF\xBF"},
        {"pair not combined", u"\U0001D11E", "\xF0\x9D\x84\x9E", "\xF0\x9D\x84\x9E", "\xF0\x9D\x84\x9E"},
        {"last pair", u"\U0010FFFF", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        {"high surrogate alone", UnicodeString(u"\xD835x", 2), "\xED\xA0\xB5x", "\xED\xA0\xB5x", "\xED\xA0\xB5x"},
        {"high surrogate at the end", UnicodeString(u"x\xDBFF", 2), "x\xED\xAF\xBF", "x\xED\xAF\xBF", "x\xED\xAF\xBF"},
        {"low surrogate first", UnicodeString(u"\xDC00\xD800", 2), "\xED\xB0\x80\xED\xA0\x80",
         "\xED\xB0\x80\xED\xA0\x80", "\xED\xB0\x80\xED\xA0\x80"},
        {"special after a long plain run", text(s40 + "<" + s40 + "\""), s40 + "&lt;" + s40 + "\"",
         s40 + "&lt;" + s40 + "&quot;", s40 + "<" + s40 + "\""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        startDocument();
        serializer->startTag(none, name("a"));
        serializer->attribute(none, name("b"), c.characters);
        serializer->text(c.characters);
        serializer->cdsect(c.characters);
        serializer->endTag(none, name("a"));
        EXPECT_EQ(written(), "<a b=\"" + c.asAttribute + "\">" + c.asText + "<![CDATA[" + c.raw + "]]></a>");
    }
}

/// The rules, one unit at a time: what the fast paths are measured against.
std::string encodedSlowly(const UnicodeString& units, bool isAttribute) {
    std::string bytes;
    for (int32_t i = 0; i < units.length();) {
        const UChar32 c = units.char32At(i);
        i += c > 0xFFFF ? 2 : 1;
        if (c == '&') {
            bytes += "&amp;";
        } else if (c == '<') {
            bytes += "&lt;";
        } else if (c == '>') {
            bytes += "&gt;";
        } else if (c == '"' && isAttribute) {
            bytes += "&quot;";
        } else if (c < 0x80) {
            if (c >= 32 || c == '\t' || c == '\n' || c == '\r') bytes += static_cast<char>(c);
        } else {
            const int trailing = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
            static constexpr int marks[] = {0, 0xC0, 0xE0, 0xF0};
            bytes += static_cast<char>(marks[trailing] | (c >> (6 * trailing)));
            for (int k = trailing - 1; k >= 0; --k) bytes += static_cast<char>(0x80 | ((c >> (6 * k)) & 0x3F));
        }
    }
    return bytes;
}

TEST_F(XmlSerializerTest, everyUnitAtEveryPlaceOfARunIsEncodedByTheRules) {
    // Lengths on both sides of the widths of vector loops; beyond the first units one length after the other.
    static constexpr int lengths[] = {1, 7, 8, 9, 15, 16, 17, 23, 24, 25, 33};
    startDocument();
    for (int unit = 0; unit <= 0xFFFF; unit += unit < 0x110 ? 1 : 0x3B) {
        for (const int length : lengths) {
            if (unit > 0x110 && length != lengths[static_cast<std::size_t>(unit) % std::size(lengths)]) continue;
            UnicodeString run;
            for (int i = 0; i < length; ++i) run.append(static_cast<char16_t>(u'a' + i % 26));
            for (int place = 0; place < length; ++place) {
                UnicodeString units(run);
                units.setCharAt(place, static_cast<char16_t>(unit));
                serializer->startTag(none, name("a"));
                serializer->attribute(none, name("b"), units);
                serializer->text(units);
                serializer->endTag(none, name("a"));
                ASSERT_EQ(written(),
                          "<a b=\"" + encodedSlowly(units, true) + "\">" + encodedSlowly(units, false) + "</a>")
                    << "unit " << unit << " at " << place << " of " << length;
            }
        }
    }
}

TEST_F(XmlSerializerTest, longTextKeepsPairsAndOrderAcrossBlocks) {
    // A pair at each place around the ends of blocks and buffers of any likely size, and text that grows most.
    for (const int before : {2046, 2047, 2048, 4095, 8191, 16383, 32767, 65535}) {
        UnicodeString units;
        for (int i = 0; i < before; ++i) units.append(static_cast<char16_t>(i % 3 ? u'x' : u'"'));
        for (int i = 0; i < 5000; ++i) units.append(UChar32(0x1F600));
        units.append(u'<');
        startDocument();
        serializer->text(units);
        ASSERT_EQ(written(), encodedSlowly(units, false)) << before;
        serializer->startTag(none, name("a"));
        serializer->attribute(none, name("b"), units);
        ASSERT_EQ(written(), "<a b=\"" + encodedSlowly(units, true) + "\"") << before;
    }
}

TEST_F(XmlSerializerTest, takesTextFromABuffer) {
    static const unsigned short units[] = {'a', 'b', '<', 0xE9};
    struct Case {
        const char* fault;
        const unsigned short* buffer;
        int start, length;
        const char* expected;
    };
    static const Case cases[] = {
        {"start ignored", units, 1, 3, "b&lt;\xC3\xA9"},
        {"length ignored", units, 0, 1, "a"},
        {"negative length read", units, 0, -1, ""},
        {"negative length read", units, 3, std::numeric_limits<int>::min(), ""},
        {"negative start read", units, -1, 2, ""},
        {"null read", nullptr, 0, 4, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        startDocument();
        serializer->text(c.buffer, c.start, c.length);
        EXPECT_EQ(written(), c.expected);
    }
}

TEST_F(XmlSerializerTest, writesShiftJis) {
    struct Case {
        const char* fault;
        UnicodeString characters;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"two bytes", u"\u65E5\u672Cx\u8A9E", "\x93\xFA\x96{x\x8C\xEA"},
        {"one byte", u"\uFF71", "\xB1"},
        {"no mapping and no reference", u"\u00E9", "&#233;"},
        {"reference swallows its neighbours", u"\u65E5\u00E9\u672C\u2603", "\x93\xFA&#233;\x96{&#9731;"},
        {"ignorable character lost", u"a\u00ADb\u200B\uFEFF", "a&#173;b&#8203;&#65279;"},
        {"look-alike written in place of the character", u"\u00A5\u203E", "&#165;&#8254;"},
        {"two references for one character", u"\U0001D11E\u65E5", "&#119070;\x93\xFA"},
        {"surrogate alone", UnicodeString(u"\xD835\x65E5\xDC00", 3), "&#55349;\x93\xFA&#56320;"},
        {"noncharacter", u"\uFFFF", "&#65535;"},
        {"markup", u"<\u65E5>", "&lt;\x93\xFA&gt;"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        startDocument("shift_jis");
        serializer->text(c.characters);
        EXPECT_EQ(written(), c.expected);
    }
    SCOPED_TRACE("names keep the bytes of the encoding before");
    const LumName kanji = name("\xE6\x97\xA5");
    for (const char* encoding : {"UTF-8", "Shift_JIS", "UTF-8"}) {
        startDocument(encoding);
        serializer->startTag(none, kanji);
        serializer->endDocument();
        EXPECT_EQ(written(), encoding[0] == 'S' ? "<\x93\xFA/>" : "<\xE6\x97\xA5/>");
    }
    reopen("SHIFT_JIS");
    serializer->text(u"\u65E5");
    EXPECT_EQ(written(), "\xE6\x97\xA5") << "only startDocument() selects Shift_JIS";
}

TEST_F(XmlSerializerTest, shiftJisReadsBackAsWhatWasWritten) {
    // The converter of the code page is the judge, over the whole plane.
    std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(nullptr, ucnv_close);
    UErrorCode status = U_ZERO_ERROR;
    converter.reset(ucnv_open("cp932", &status));
    ASSERT_TRUE(U_SUCCESS(status));
    startDocument("Shift_JIS");
    int mapped = 0;
    for (int unit = 0x80; unit <= 0xFFFF; ++unit) {
        serializer->text(UnicodeString(static_cast<char16_t>(unit)));
        const std::string bytes = written();
        if (bytes == "&#" + std::to_string(unit) + ";") continue;
        char16_t back[8] = {};
        status = U_ZERO_ERROR;
        ucnv_toUChars(converter.get(), back, 8, bytes.data(), static_cast<int32_t>(bytes.size()), &status);
        // The converter writes some private characters as the public ones that they once stood for.
        ASSERT_TRUE(back[0] == unit || (unit >= 0xE000 && unit <= 0xF8FF)) << "unit " << unit;
        ++mapped;
    }
    EXPECT_GT(mapped, 9000);
}

/// One call on a serializer, as a row of a table can hold it.
using Calls = std::function<void(LumXmlSerializer&)>;

TEST_F(XmlSerializerTest, declaresNamespacesWhereTheyAreNeeded) {
    struct Case {
        const char* fault;
        Calls calls;
        const char* expected;
    };
    const LumName a = name("a"), b = name("b"), p = name("p9"), q = name("q9"), u = name("urn:u"), v = name("urn:v");
    const LumName ns(NAME_NS_XMLNS), xmlns(NAME_xmlns), xmlNs(NAME_NS_XML), lang = name("lang");
    const std::vector<Case> cases = {
        {"declares without need",
         [&](auto& s) {
             s.startTag(none, a);
             s.endTag(none, a);
         },
         "<a/>"},
        {"given prefix not declared", [&](auto& s) { s.startTag(u, p, a); }, "<p9:a xmlns:p9=\"urn:u\"/>"},
        {"default not declared", [&](auto& s) { s.startTag(u, none, a); }, "<a xmlns=\"urn:u\"/>"},
        {"declared twice",
         [&](auto& s) {
             s.startTag(u, p, a);
             s.startTag(u, p, b);
             s.attribute(u, p, b, u"x");
         },
         "<p9:a xmlns:p9=\"urn:u\"><p9:b p9:b=\"x\"/></p9:a>"},
        {"prefix in scope not found",
         [&](auto& s) {
             s.startTag(u, p, a);
             s.startTag(u, b);
             s.attribute(u, b, u"x");
         },
         "<p9:a xmlns:p9=\"urn:u\"><p9:b p9:b=\"x\"/></p9:a>"},
        {"rebound prefix not declared",
         [&](auto& s) {
             s.startTag(u, p, a);
             s.startTag(v, p, b);
         },
         "<p9:a xmlns:p9=\"urn:u\"><p9:b xmlns:p9=\"urn:v\"/></p9:a>"},
        {"scope not closed",
         [&](auto& s) {
             s.startTag(none, a);
             s.startTag(u, p, b);
             s.endTag(u, b);
             s.startTag(u, p, b);
         },
         "<a><p9:b xmlns:p9=\"urn:u\"/><p9:b xmlns:p9=\"urn:u\"/></a>"},
        {"inherits a default that is not its own",
         [&](auto& s) {
             s.startTag(u, none, a);
             s.startTag(none, b);
         },
         "<a xmlns=\"urn:u\"><b xmlns=\"\"/></a>"},
        {"undeclared again and again",
         [&](auto& s) {
             s.startTag(u, none, a);
             s.startTag(none, none, b);
             s.startTag(none, b);
             s.startTag(u, none, a);
         },
         "<a xmlns=\"urn:u\"><b xmlns=\"\"><b><a xmlns=\"urn:u\"/></b></b></a>"},
        {"declarations not in the order of names",
         [&](auto& s) {
             s.setPrefix(q, v);
             s.setPrefix(none, u);
             s.setPrefix(p, u);
             s.startTag(u, none, a);
         },
         "<a xmlns=\"urn:u\" xmlns:p9=\"urn:u\" xmlns:q9=\"urn:v\"/>"},
        {"set prefix not used",
         [&](auto& s) {
             s.setPrefix(p, u);
             s.startTag(u, a);
         },
         "<p9:a xmlns:p9=\"urn:u\"/>"},
        {"set prefix leaks to the sibling",
         [&](auto& s) {
             s.startTag(none, a);
             s.setPrefix(p, u);
             s.startTag(none, b);
             s.endTag(none, b);
             s.startTag(u, p, b);
         },
         "<a><b xmlns:p9=\"urn:u\"/><p9:b xmlns:p9=\"urn:u\"/></a>"},
        {"set prefix without element leaves a scope",
         [&](auto& s) {
             s.startTag(none, a);
             s.setPrefix(p, u);
             s.endTag(none, a);
         },
         "<a></a>"},
        {"set prefix without element gets a tag",
         [&](auto& s) {
             s.startTag(none, a);
             s.setPrefix(p, u);
         },
         "<a></a>"},
        {"declaration written as an attribute and again",
         [&](auto& s) {
             s.startTag(u, p, a);
             s.attribute(ns, xmlns, p, u"urn:u");
             s.attribute(ns, none, xmlns, u"urn:v");
         },
         "<p9:a xmlns=\"urn:v\" xmlns:p9=\"urn:u\"/>"},
        {"declaration not known by its prefix or name",
         [&](auto& s) {
             s.startTag(none, a);
             s.attribute(none, xmlns, q, u"urn:v");
             s.attribute(ns, p, u"urn:u");
         },
         "<a xmlns:p9=\"urn:u\" xmlns:q9=\"urn:v\"/>"},
        {"declared but already in scope",
         [&](auto& s) {
             s.startTag(u, p, a);
             s.startTag(none, b);
             s.attribute(none, xmlns, p, u"urn:u");
         },
         "<p9:a xmlns:p9=\"urn:u\"><b/></p9:a>"},
        {"xml declared",
         [&](auto& s) {
             s.startTag(none, a);
             s.attribute(xmlNs, lang, u"ja");
         },
         "<a xml:lang=\"ja\"/>"},
        {"URI not escaped", [&](auto& s) { s.startTag(name("a\"<&"), p, a); }, "<p9:a xmlns:p9=\"a&quot;&lt;&amp;\"/>"},
        {"attribute's namespace not declared",
         [&](auto& s) {
             s.startTag(none, a);
             s.attribute(u, p, b, u"x");
         },
         "<a p9:b=\"x\" xmlns:p9=\"urn:u\"/>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        startDocument();
        c.calls(*serializer);
        serializer->endDocument();
        EXPECT_EQ(written(), c.expected);
        EXPECT_EQ(serializer->getDepth(), 0);
    }
}

TEST_F(XmlSerializerTest, makesPrefixesUp) {
    startDocument();
    const LumName u = name("urn:u"), a = name("a");
    EXPECT_TRUE(serializer->getPrefix(u, false).isNull());
    EXPECT_TRUE(serializer->getPrefix(none, true).isNull());
    serializer->startTag(u, a);
    const LumName prefix = serializer->getPrefix(u, false);
    const std::string made = utf8(prefix.getString());
    ASSERT_EQ(made.substr(0, 2), "N-");
    serializer->startTag(u, a);
    serializer->endDocument();
    EXPECT_EQ(written(), "<" + made + ":a xmlns:" + made + "=\"urn:u\"><" + made + ":a/></" + made + ":a>");

    startDocument();
    serializer->startTag(u, none, a);
    EXPECT_TRUE(serializer->getPrefix(u, true).isNull()) << "the default namespace needs no prefix";
    serializer->startTag(name("urn:v"), a);
    const LumName second = serializer->getPrefix(name("urn:v"), false);
    EXPECT_NE(second, prefix);
    EXPECT_EQ(utf8(serializer->getNamespace().getString()), "urn:v");
    EXPECT_EQ(serializer->getDepth(), 2);
}

TEST_F(XmlSerializerTest, closesStartTagsAsTheirContentDemands) {
    struct Case {
        const char* fault;
        Calls content;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"empty element", [](auto&) {}, "<a/>"},
        {"empty text is content", [](auto& s) { s.text(UnicodeString()); }, "<a></a>"},
        {"empty buffer is content", [](auto& s) { s.text(nullptr, 0, 0); }, "<a></a>"},
        {"CDATA", [](auto& s) { s.cdsect(u"<&"); }, "<a><![CDATA[<&]]></a>"},
        {"entity", [](auto& s) { s.entityRef(u"amp"); }, "<a>&amp;</a>"},
        {"instruction", [](auto& s) { s.processingInstruction(u"x a<b"); }, "<a><?x a<b?></a>"},
        {"comment", [](auto& s) { s.comment(u"x&y"); }, "<a><!--x&y--></a>"},
        {"white space", [](auto& s) { s.ignorableWhitespace(u" \n"); }, "<a> \n</a>"},
        {"flush", [](auto& s) { s.flush(); }, "<a></a>"},
        {"child",
         [](auto& s) {
             s.startTag(none, name("b"));
             s.endTag(none, name("b"));
         },
         "<a><b/></a>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        startDocument();
        serializer->startTag(none, name("a"));
        c.content(*serializer);
        serializer->endTag(none, name("a"));
        EXPECT_EQ(written(), c.expected);
    }
}

TEST_F(XmlSerializerTest, closesOpenElementsAtTheEnd) {
    startDocument();
    serializer->docdecl(u"a SYSTEM \"a.dtd\"");
    const LumName longName = name(std::string(200, 'n'));
    serializer->startTag(none, name("a"));
    serializer->startTag(name("urn:u"), name("p"), longName);
    serializer->text(u"t");
    serializer->startTag(none, name("c"));
    EXPECT_EQ(utf8(serializer->getName().getString()), "c");
    serializer->endDocument();
    const std::string n(200, 'n');
    EXPECT_EQ(written(), "<!DOCTYPE a SYSTEM \"a.dtd\"><a><p:" + n + " xmlns:p=\"urn:u\">t<c/></p:" + n + "></a>");
    EXPECT_EQ(serializer->getDepth(), 0);
}

TEST_F(XmlSerializerTest, rejectsCallsOutOfOrderAndGoesOn) {
    struct Case {
        const char* fault;
        Calls before, call;
        Failure failure;
        const char* writtenInTheEnd;
    };
    const LumName a = name("a"), b = name("b"), p = name("p"), u = name("urn:u");
    const std::string source = "LumCommon::XmlSerializerImpl::";
    const Failure order{0x80C, "SYSTEM ERROR: startDocument() must be called just after setOutput().",
                        source + "startDocumen"};
    const Failure stray{0x80D, "SYSTEM ERROR: attribute() must be called just after startTag().",
                        source + "attributeSub"};
    const Failure unexpected{0x80E, "SYSTEM ERROR: Unexpected endTag().", source + "endTagt"};
    const auto mismatch = [&](const std::string& given, const std::string& open) {
        return Failure{0x80F, "SYSTEM ERROR: End tag '" + given + "' does not match the start tag '" + open + "'.",
                       source + "endTagt"};
    };
    const Failure doctype{0x810, "SYSTEM ERROR: Unexpected docdecl().", ""};
    const Calls nothing = [](auto&) {};
    const Calls open = [&](auto& s) { s.startTag(none, a); };
    const Calls openInU = [&](auto& s) { s.startTag(u, p, a); };
    const Calls stopA = [&](auto& s) { s.endTag(none, a); };
    const std::vector<Case> cases = {
        {"second declaration", nothing, [](auto& s) { s.startDocument({}, {}); }, order, ""},
        {"declaration in content", open, [](auto& s) { s.startDocument({}, {}); }, order, "<a/>"},
        {"attribute before the root", nothing, [&](auto& s) { s.attribute(none, a, u"x"); }, stray, ""},
        {"attribute after text",
         [&](auto& s) {
             s.startTag(none, a);
             s.text(u"t");
         },
         [&](auto& s) { s.attribute(none, none, a, u"x"); }, stray, "<a>t</a>"},
        {"declaration after text",
         [&](auto& s) {
             s.startTag(none, a);
             s.text(u"t");
         },
         [&](auto& s) { s.attribute(NAME_NS_XMLNS, NAME_xmlns, u"x"); }, stray, "<a>t</a>"},
        {"end without start", nothing, stopA, unexpected, ""},
        {"end after the root",
         [&](auto& s) {
             s.startTag(none, a);
             s.endTag(none, a);
         },
         stopA, unexpected, "<a/>"},
        {"end of a prefix that waits", [&](auto& s) { s.setPrefix(p, u); }, stopA, unexpected, ""},
        {"other name", open, [&](auto& s) { s.endTag(none, b); }, mismatch("b", "a"), "<a/>"},
        {"other namespace", open, [&](auto& s) { s.endTag(u, a); }, mismatch("{urn:u}:a", "a"), "<a/>"},
        {"prefix not told", openInU, stopA, mismatch("a", "p:a"), "<p:a xmlns:p=\"urn:u\"/>"},
        {"namespace not told", [&](auto& s) { s.startTag(u, none, a); }, stopA, mismatch("a", "{urn:u}:a"),
         "<a xmlns=\"urn:u\"/>"},
        {"hidden by a prefix that waits",
         [&](auto& s) {
             s.startTag(none, a);
             s.setPrefix(p, u);
         },
         [&](auto& s) { s.endTag(none, b); }, mismatch("b", "a"), "<a></a>"},
        {"late document type", open, [](auto& s) { s.docdecl(u"a"); }, doctype, "<a/>"},
        {"document type after the end", [](auto& s) { s.endDocument(); }, [](auto& s) { s.docdecl(u"a"); }, doctype,
         ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        startDocument();
        c.before(*serializer);
        EXPECT_EQ(failureOf([&] { c.call(*serializer); }), c.failure);
        serializer->endDocument();
        EXPECT_EQ(written(), c.writtenInTheEnd);
    }
    EXPECT_EQ(failureOf([] { LumXmlUtil::createXmlSerializer()->docdecl(u"a"); }), doctype);
}

const std::vector<std::pair<const char*, Calls>> writingCalls = {
    {"startTag", [](auto& s) { s.startTag(none, name("a")); }},
    {"startTag with prefix", [](auto& s) { s.startTag(none, none, name("a")); }},
    {"text", [](auto& s) { s.text(u"t"); }},
    {"empty text", [](auto& s) { s.text(UnicodeString()); }},
    {"text of a buffer", [](auto& s) { s.text(nullptr, 0, 0); }},
    {"cdsect", [](auto& s) { s.cdsect(u"t"); }},
    {"entityRef", [](auto& s) { s.entityRef(u"t"); }},
    {"processingInstruction", [](auto& s) { s.processingInstruction(u"t"); }},
    {"comment", [](auto& s) { s.comment(u"t"); }},
    {"ignorableWhitespace", [](auto& s) { s.ignorableWhitespace(u"t"); }},
    {"flush", [](auto& s) { s.flush(); }},
    {"endDocument", [](auto& s) { s.endDocument(); }},
};

TEST_F(XmlSerializerTest, needsAnOutput) {
    for (const auto& [what, call] : writingCalls) {
        SCOPED_TRACE(what);
        const LumPtr<LumXmlSerializer> fresh = LumXmlUtil::createXmlSerializer();
        EXPECT_EQ(failureOf([&] { call(*fresh); }), noOutput);
        EXPECT_EQ(fresh->getDepth(), 0);
    }
}

TEST_F(XmlSerializerTest, seesThatTheStreamHasFailed) {
    for (const std::ios_base::iostate bit : {std::ios_base::badbit, std::ios_base::failbit}) {
        for (const auto& [what, call] : writingCalls) {
            SCOPED_TRACE(what);
            startDocument();
            out.setstate(bit);
            EXPECT_EQ(failureOf([&] { call(*serializer); }), outputFailed);
            out.clear();
            EXPECT_EQ(written(), "");
        }
    }
    SCOPED_TRACE("the end of file is taken for a failure");
    startDocument();
    out.setstate(std::ios_base::eofbit);
    serializer->text(u"t");
    EXPECT_EQ(written(), "t");
}

/// Takes a number of bytes, then fails in one of three ways.
class FailingBuffer : public std::streambuf {
public:
    enum class Way { Refuses, Throws, FailsToSync };
    FailingBuffer(Way way, std::size_t room) : way_(way), room_(room) {}
    std::string taken;

protected:
    int_type overflow(int_type c) override {
        if (way_ != Way::FailsToSync && taken.size() >= room_) {
            if (way_ == Way::Throws) throw std::runtime_error("full");
            return traits_type::eof();
        }
        taken += traits_type::to_char_type(c);
        return c;
    }
    int sync() override { return way_ == Way::FailsToSync ? -1 : 0; }

private:
    Way way_;
    std::size_t room_;
};

TEST_F(XmlSerializerTest, reportsAWriteThatFailsAndTakesTheNextOutput) {
    for (const auto way : {FailingBuffer::Way::Refuses, FailingBuffer::Way::Throws, FailingBuffer::Way::FailsToSync}) {
        for (const bool streamThrows : {false, true}) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(way) << streamThrows);
            const LumPtr<LumXmlSerializer> s = LumXmlUtil::createXmlSerializer();
            s->setGenerator({});
            {
                FailingBuffer buffer(way, 30);
                std::ostream failing(&buffer);
                if (streamThrows) failing.exceptions(std::ios_base::badbit);
                s->setOutput(failing, {});
                s->startDocument({}, {});
                s->startTag(none, name("a"));
                EXPECT_EQ(failureOf([&] {
                              s->text(u"0123456789");
                              s->flush();
                          }),
                          outputFailed);
                EXPECT_TRUE(failing.bad());
                EXPECT_EQ(buffer.taken.substr(0, 25), "<?xml version=\"1.0\"?><a>0");
                EXPECT_EQ(failureOf([&] { s->text(u"more"); }), outputFailed);
            }
            // The failed stream is gone; nothing may touch it any more.
            reopen();
            s->setOutput(out, {});
            s->startDocument({}, {});
            s->startTag(none, name("b"));
            s->endDocument();
            EXPECT_EQ(written(), "<?xml version=\"1.0\"?><b/>");
        }
    }
}

TEST_F(XmlSerializerTest, reportsAFailureOfTheOutputBeforeOnce) {
    FailingBuffer buffer(FailingBuffer::Way::FailsToSync, 0);
    std::ostream failing(&buffer);
    serializer->setGenerator({});
    serializer->setOutput(failing, {});
    serializer->startDocument({}, {});
    EXPECT_EQ(failureOf([&] { serializer->setOutput(out, {}); }), outputFailed);
    EXPECT_EQ(failureOf([&] { serializer->text(u"t"); }), noOutput);
    reopen();
    serializer->text(u"t");
    EXPECT_EQ(written(), "t");
}

TEST_F(XmlSerializerTest, beginsAnewWithEachOutput) {
    startDocument();
    serializer->startTag(name("urn:u"), name("p"), name("a"));
    std::ostringstream second;
    serializer->setOutput(second, {});
    EXPECT_EQ(written(), "<p:a xmlns:p=\"urn:u\">") << "the tag that was open is closed in its own output";
    EXPECT_EQ(serializer->getDepth(), 0);
    EXPECT_EQ(failureOf([&] { serializer->attribute(none, name("b"), u"x"); }).code, 0x80Du);
    serializer->startTag(name("urn:u"), name("p"), name("a"));
    serializer->endDocument();
    EXPECT_EQ(second.str(), "<p:a xmlns:p=\"urn:u\"/>") << "a declaration of the output before is not in scope";
    {
        std::ostringstream third;
        serializer->setOutput(third, {});
        serializer->text(u"t");
        serializer->endDocument();
    }
    SCOPED_TRACE("a finished output is touched after its end");
    reopen();
}

TEST_F(XmlSerializerTest, writesEachOperationBeforeItReturns) {
    startDocument();
    serializer->startTag(none, name("a"));
    EXPECT_EQ(written(), "<a");
    serializer->attribute(none, name("b"), u"x");
    EXPECT_EQ(written(), " b=\"x\"");
    serializer->setPrefix(name("p"), name("urn:u"));
    EXPECT_EQ(written(), ">");
}

TEST_F(XmlSerializerTest, writesFilesOfItsOwn) {
    const std::string path = testing::TempDir() + "lum serializer " + std::to_string(getpid()) + ".xml";
    const auto content = [&] {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    serializer->setGenerator({});
    serializer->setOutput(text(path), {});
    serializer->startDocument(u"UTF-8", {});
    serializer->startTag(none, name("a"));
    serializer->text(u"1\n2\r\n");
    serializer->endDocument();
    EXPECT_EQ(content(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>1\n2\r\n</a>") << "flushed at the end";
    serializer->setOutput(text(path), {});
    serializer->startTag(none, name("b"));
    serializer = nullptr;
    EXPECT_EQ(content(), "<b>") << "the end of the serializer closes the file";
    std::remove(path.c_str());

    serializer = LumXmlUtil::createXmlSerializer();
    serializer->setOutput(out, {});
    const Failure cannotOpen{0x1003, "Cannot open file: " + testing::TempDir() + "no/such/folder/x.xml",
                             "LumCommon::XmlSerializerImpl::setOutput"};
    EXPECT_EQ(failureOf([&] { serializer->setOutput(text(testing::TempDir() + "no/such/folder/x.xml"), {}); }),
              cannotOpen);
    EXPECT_EQ(failureOf([&] { serializer->text(u"t"); }), noOutput) << "the output before is not used on";
    EXPECT_EQ(written(), "");
}

TEST_F(XmlSerializerTest, knowsItsType) {
    EXPECT_EQ(serializer->getTypeID(), 0x5695E1FBu);
    EXPECT_EQ(utf8(serializer->getTypeName()), "XmlSerializerImpl");
    for (const unsigned id : {0x5695E1FBu, 0xB2E73DE2u, 0x90AF0240u, 0xA4EBD8C4u}) EXPECT_TRUE(serializer->isA(id));
    EXPECT_FALSE(serializer->isA(0x07416767u));
}

}  // namespace
