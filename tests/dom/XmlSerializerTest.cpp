#include <gtest/gtest.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <support/ExpectError.h>
#include <support/Utf8.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
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
    unsigned code;
    std::string message, source;
};
void expectFailure(const Failure& failure, const std::function<void()>& action) {
    LumTest::expectError(failure.code, failure.message, failure.source, action);
}
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
    const std::vector<Case> cases = {
        {"nothing to write", u"", "", "", ""},
        {"markup", u"a<b>&c", "a&lt;b&gt;&amp;c", "a&lt;b&gt;&amp;c", "a<b>&c"},
        {"quote escaped in text, or not in an attribute", u"\"'", "\"'", "&quot;'", "\"'"},
        {"control characters kept", UnicodeString(u"a\0\x01\x08\x0B\x0C\x0E\x1F\x7F", 9), "a\x7F", "a\x7F", "a\x7F"},
        {"last pair", u"\U0010FFFF", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        {"high surrogate alone", UnicodeString(u"\xD835x", 2), "\xED\xA0\xB5x", "\xED\xA0\xB5x", "\xED\xA0\xB5x"},
        {"high surrogate at the end", UnicodeString(u"x\xDBFF", 2), "x\xED\xAF\xBF", "x\xED\xAF\xBF", "x\xED\xAF\xBF"},
        {"low surrogate first", UnicodeString(u"\xDC00\xD800", 2), "\xED\xB0\x80\xED\xA0\x80",
         "\xED\xB0\x80\xED\xA0\x80", "\xED\xB0\x80\xED\xA0\x80"},
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
    startDocument();
    serializer->text(units, 1, 3);
    EXPECT_EQ(written(), "b&lt;\xC3\xA9");
    serializer->text(units, 3, std::numeric_limits<int>::min());
    serializer->text(units, -1, 2);
    serializer->text(nullptr, 0, 4);
    EXPECT_EQ(written(), "") << "what is not there was read";
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

/// Calls on a serializer as a row of a table can hold them: the operation, then its arguments; the operations in
/// capitals are those that are given a prefix. "-" is the null name, "XMLNS" the namespace of declarations.
void perform(LumXmlSerializer& s, const std::string& calls) {
    std::istringstream words(calls);
    const auto word = [&words] {
        std::string next;
        words >> next;
        return next;
    };
    const auto argument = [&word]() -> LumName {
        const std::string next = word();
        return next == "-" ? none : next == "XMLNS" ? LumName(NAME_NS_XMLNS) : name(next);
    };
    for (std::string what = word(); !what.empty(); what = word()) {
        if (what == "declaration") s.startDocument({}, {});
        if (what == "text") s.text(text(word()));
        if (what == "docdecl") s.docdecl(text(word()));
        if (what == "declaration" || what == "text" || what == "docdecl") continue;
        const LumName first = argument(), second = argument();
        if (what == "start") s.startTag(first, second);
        if (what == "START") s.startTag(first, second, argument());
        if (what == "end") s.endTag(first, second);
        if (what == "prefix") s.setPrefix(first, second);
        if (what == "attr") s.attribute(first, second, text(word()));
        if (what != "ATTR") continue;
        const LumName local = argument();
        s.attribute(first, second, local, text(word()));
    }
}

TEST_F(XmlSerializerTest, declaresNamespacesWhereTheyAreNeeded) {
    struct Case {
        const char *fault, *calls, *expected;
    };
    static constexpr Case cases[] = {
        {"declares without need", "START - - a end - a", "<a/>"},
        {"given prefix not declared", "START u p9 a", "<p9:a xmlns:p9=\"u\"/>"},
        {"declared twice", "START u p9 a START u p9 b ATTR u p9 b x", "<p9:a xmlns:p9=\"u\"><p9:b p9:b=\"x\"/></p9:a>"},
        {"prefix in scope not found", "START u p9 a start u b attr u b x",
         "<p9:a xmlns:p9=\"u\"><p9:b p9:b=\"x\"/></p9:a>"},
        {"rebound prefix not declared", "START u p9 a START v p9 b",
         "<p9:a xmlns:p9=\"u\"><p9:b xmlns:p9=\"v\"/></p9:a>"},
        {"scope not closed", "START - - a START u p9 b end u b START u p9 b",
         "<a><p9:b xmlns:p9=\"u\"/><p9:b xmlns:p9=\"u\"/></a>"},
        {"default not undeclared, or again and again", "START u - a START - - b start - b START u - a",
         "<a xmlns=\"u\"><b xmlns=\"\"><b><a xmlns=\"u\"/></b></b></a>"},
        {"declarations not in the order of names", "prefix q9 v prefix - u prefix p9 u START u - a",
         "<a xmlns=\"u\" xmlns:p9=\"u\" xmlns:q9=\"v\"/>"},
        {"set prefix not used", "prefix p9 u start u a", "<p9:a xmlns:p9=\"u\"/>"},
        {"set prefix leaks to the sibling", "START - - a prefix p9 u START - - b end - b START u p9 b",
         "<a><b xmlns:p9=\"u\"/><p9:b xmlns:p9=\"u\"/></a>"},
        {"set prefix without element leaves a scope", "START - - a prefix p9 u end - a", "<a></a>"},
        {"set prefix without element gets a tag", "START - - a prefix p9 u", "<a></a>"},
        {"declaration written as an attribute and again", "START u p9 a ATTR XMLNS xmlns p9 u ATTR XMLNS - xmlns v",
         "<p9:a xmlns=\"v\" xmlns:p9=\"u\"/>"},
        {"declaration not known by its prefix or namespace", "START - - a ATTR - xmlns q9 v attr XMLNS p9 u",
         "<a xmlns:p9=\"u\" xmlns:q9=\"v\"/>"},
        {"declared but already in scope", "START u p9 a START - - b ATTR - xmlns p9 u",
         "<p9:a xmlns:p9=\"u\"><b/></p9:a>"},
        {"xml declared", "START - - a attr http://www.w3.org/XML/1998/namespace lang ja", "<a xml:lang=\"ja\"/>"},
        {"URI not escaped", "START a\"<& p9 a", "<p9:a xmlns:p9=\"a&quot;&lt;&amp;\"/>"},
        {"attribute's namespace not declared", "START - - a ATTR u p9 b x", "<a p9:b=\"x\" xmlns:p9=\"u\"/>"},
    };
    const LumName first = name("p9"), second = name("q9");  // declarations are written in the order of interning
    ASSERT_LT(first, second);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        startDocument();
        perform(*serializer, c.calls);
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

using Calls = std::function<void(LumXmlSerializer&)>;

TEST_F(XmlSerializerTest, closesStartTagsAsTheirContentDemands) {
    struct Case {
        const char* fault;
        Calls content;
        const char* expected;
    };
    const Case cases[] = {
        {"empty text is no content", [](auto& s) { s.text(UnicodeString()); }, "<a></a>"},
        {"empty buffer is no content", [](auto& s) { s.text(nullptr, 0, 0); }, "<a></a>"},
        {"CDATA", [](auto& s) { s.cdsect(u"<&"); }, "<a><![CDATA[<&]]></a>"},
        {"entity", [](auto& s) { s.entityRef(u"amp"); }, "<a>&amp;</a>"},
        {"instruction", [](auto& s) { s.processingInstruction(u"x a<b"); }, "<a><?x a<b?></a>"},
        {"comment", [](auto& s) { s.comment(u"x&y"); }, "<a><!--x&y--></a>"},
        {"white space", [](auto& s) { s.ignorableWhitespace(u" \n"); }, "<a> \n</a>"},
        {"flush", [](auto& s) { s.flush(); }, "<a></a>"},
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

TEST_F(XmlSerializerTest, namesOfAnyLengthAreWrittenInFull) {
    for (const std::size_t length : {55u, 56u, 57u, 58u, 200u}) {
        const std::string n(length, 'n');
        startDocument();
        serializer->startTag(none, name(n));
        serializer->text(u"t");
        serializer->endDocument();
        EXPECT_EQ(written(), "<" + n + ">t</" + n + ">");
    }
}

TEST_F(XmlSerializerTest, rejectsCallsOutOfOrderAndGoesOn) {
    struct Case {
        const char *fault, *before, *call;
        Failure failure;
        const char* writtenInTheEnd;
    };
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
    const Case cases[] = {
        {"second declaration", "", "declaration", order, ""},
        {"declaration in content", "START - - a", "declaration", order, "<a/>"},
        {"attribute before the root", "", "attr - a x", stray, ""},
        {"attribute after text", "START - - a text t", "ATTR - - a x", stray, "<a>t</a>"},
        {"namespace after text", "START - - a text t", "attr XMLNS xmlns x", stray, "<a>t</a>"},
        {"end without start", "", "end - a", unexpected, ""},
        {"end after the root", "START - - a end - a", "end - a", unexpected, "<a/>"},
        {"end of a prefix that waits", "prefix p u", "end - a", unexpected, ""},
        {"other name", "START - - a", "end - b", mismatch("b", "a"), "<a/>"},
        {"other namespace", "START - - a", "end u a", mismatch("{u}:a", "a"), "<a/>"},
        {"prefix not told", "START u p a", "end - a", mismatch("a", "p:a"), "<p:a xmlns:p=\"u\"/>"},
        {"namespace not told", "START u - a", "end - a", mismatch("a", "{u}:a"), "<a xmlns=\"u\"/>"},
        {"hidden by a prefix that waits", "START - - a prefix p u", "end - b", mismatch("b", "a"), "<a></a>"},
        {"late document type", "START - - a", "docdecl a", doctype, "<a/>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        startDocument();
        perform(*serializer, c.before);
        expectFailure(c.failure, [&] { perform(*serializer, c.call); });
        serializer->endDocument();
        EXPECT_EQ(written(), c.writtenInTheEnd);
    }
    expectFailure(doctype, [&] { serializer->docdecl(u"a"); });  // after the end
    expectFailure(doctype, [] { LumXmlUtil::createXmlSerializer()->docdecl(u"a"); });
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

TEST_F(XmlSerializerTest, looksAtTheOutputBeforeItWrites) {
    for (const auto& [what, call] : writingCalls) {
        SCOPED_TRACE(what);
        const LumPtr<LumXmlSerializer> fresh = LumXmlUtil::createXmlSerializer();
        expectFailure(noOutput, [&, &call = call] { call(*fresh); });
        EXPECT_EQ(fresh->getDepth(), 0);
        for (const std::ios_base::iostate bit : {std::ios_base::badbit, std::ios_base::failbit}) {
            startDocument();
            out.setstate(bit);
            expectFailure(outputFailed, [&, &call = call] { call(*serializer); });
            out.clear();
            EXPECT_EQ(written(), "");
        }
    }
    startDocument();
    out.setstate(std::ios_base::eofbit);
    serializer->text(u"t");
    EXPECT_EQ(written(), "t") << "the end of file is taken for a failure";
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
                expectFailure(outputFailed, [&] {
                    s->text(u"0123456789");
                    s->flush();
                });
                EXPECT_TRUE(failing.bad());
                EXPECT_EQ(buffer.taken.substr(0, 25), "<?xml version=\"1.0\"?><a>0");
                expectFailure(outputFailed, [&] { s->text(u"more"); });
            }
            // The failed stream is gone; nothing may touch it any more.
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
    expectFailure(outputFailed, [&] { serializer->setOutput(out, {}); });
    expectFailure(noOutput, [&] { serializer->text(u"t"); });
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
    EXPECT_THROW(serializer->attribute(none, name("b"), u"x"), LumError);
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
    expectFailure(cannotOpen, [&] { serializer->setOutput(text(testing::TempDir() + "no/such/folder/x.xml"), {}); });
    expectFailure(noOutput, [&] { serializer->text(u"t"); });
    EXPECT_EQ(written(), "");
}

TEST_F(XmlSerializerTest, knowsItsType) {
    EXPECT_EQ(serializer->getTypeID(), 0x5695E1FBu);
    EXPECT_EQ(utf8(serializer->getTypeName()), "XmlSerializerImpl");
    for (const unsigned id : {0x5695E1FBu, 0xB2E73DE2u, 0x90AF0240u, 0xA4EBD8C4u}) EXPECT_TRUE(serializer->isA(id));
    EXPECT_FALSE(serializer->isA(0x07416767u));
}

}  // namespace
