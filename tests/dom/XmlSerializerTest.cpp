#include <gtest/gtest.h>
#include <lumcommon/lumcommon.h>

#include <functional>
#include <iterator>
#include <map>
#include <sstream>
#include <streambuf>

#include "support/EscapedRows.h"
#include "support/ExpectError.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

using namespace LumCommon;

LumName name(const std::string& bytes) { return LumName(UnicodeString::fromUTF8(bytes)); }
const LumName none;

/// Calls on a serializer as a row of serializer.txt holds them.
void perform(LumXmlSerializer& s, const std::string& calls) {
    static const unsigned short units[] = {'a', 'b', '<', 0xE9};
    std::istringstream words(calls);
    const auto next = [&words]() -> UnicodeString {
        std::string word;
        words >> word;
        return word == "\"\"" ? UnicodeString() : UnicodeString::fromUTF8(word).unescape();
    };
    const auto named = [&next]() -> LumName {
        const UnicodeString word = next();
        return word == u"-" ? none : word == u"XMLNS" ? LumName(NAME_NS_XMLNS) : LumName(word);
    };
    const auto number = [&next] { return std::stoi(utf8(next())); };
    for (std::string what; words >> what;) {
        if (what == "in" || what == "output") next();  // the runner's
        if (what == "checked") s.setChecked(true);
        if (what == "generator") s.setGenerator(next());
        if (what == "text") s.text(next());
        if (what == "null") s.text(nullptr, 0, number());
        if (what == "cdsect") s.cdsect(next());
        if (what == "entity") s.entityRef(next());
        if (what == "instruction") s.processingInstruction(next());
        if (what == "comment") s.comment(next());
        if (what == "space") s.ignorableWhitespace(next());
        if (what == "docdecl") s.docdecl(next());
        if (what == "flush") s.flush();
        if (what == "finish") s.endDocument();
        if (what == "buffer") {
            const int start = number();
            s.text(units, start, number());
        } else if (what == "declaration") {
            const UnicodeString encoding = next();
            s.startDocument(encoding, next());
        } else if (what == "start" || what == "end" || what == "prefix" || what == "attr") {
            const LumName first = named(), second = named();
            if (what == "start") s.startTag(first, second);
            if (what == "end") s.endTag(first, second);
            if (what == "prefix") s.setPrefix(first, second);
            if (what == "attr") s.attribute(first, second, next());
        } else if (what == "START" || what == "ATTR") {
            const LumName first = named(), second = named(), third = named();
            if (what == "START") s.startTag(first, second, third);
            if (what == "ATTR") s.attribute(first, second, third, next());
        }
    }
}

void expectRefused(unsigned code, const char* message, const std::function<void()>& action) {
    expectError(code, message, "LumCommon::XmlSerializerImpl::checkStream", action);
}
void expectNoOutput(const std::function<void()>& action) { expectRefused(0x1005, "Output stream is not set.", action); }
void expectOutputFailed(const std::function<void()>& action) { expectRefused(0x1007, "Output stream error.", action); }

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
    void reopen(const UnicodeString& encoding = {}) {
        out.clear();
        out.str({});
        serializer->setOutput(out, encoding);
    }
    void startDocument(const std::string& encoding = "") {
        serializer->setGenerator({});
        serializer->setChecked(false);
        reopen();
        serializer->startDocument(UnicodeString::fromUTF8(encoding), {});
        written();
    }

    std::ostringstream out;
    LumPtr<LumXmlSerializer> serializer;
};

TEST_F(XmlSerializerTest, writesWhatTheRowsTell) {
    const LumName first = name("p9"), second = name("q9");  // declarations are written in the order of interning
    ASSERT_LT(first, second);
    for (const std::vector<UnicodeString>& fields : readRows("dom/serializer.txt")) {
        std::vector<std::string> row;
        for (const UnicodeString& field : fields) row.push_back(utf8(field));
        SCOPED_TRACE(row[2] + ": " + row[0]);
        std::istringstream start(row[0]);
        std::string word, encoding;
        start >> word >> encoding;
        startDocument(word == "in" ? encoding : "");
        if (word == "output")
            reopen(encoding == "\"\"" ? UnicodeString() : UnicodeString::fromUTF8(encoding).unescape());
        perform(*serializer, row[0]);
        if (row.size() > 3) {
            expectError(static_cast<unsigned>(std::stoi(row[4], nullptr, 16)), row[6],
                        row[5].empty() ? "" : "LumCommon::XmlSerializerImpl::" + row[5],
                        [&] { perform(*serializer, row[3]); });
        }
        serializer->endDocument();
        EXPECT_EQ(written(), unescape(row[1]));
        EXPECT_EQ(serializer->getDepth(), 0);
    }
    EXPECT_FALSE(LumXmlUtil::createXmlSerializer()->isChecked()) << "a serializer alone checks unasked";
    expectError(0x810, "SYSTEM ERROR: Unexpected docdecl().", "",
                [] { LumXmlUtil::createXmlSerializer()->docdecl(u"a"); });
}

TEST_F(XmlSerializerTest, namesItselfAsGeneratorUnlessTold) {
    serializer->startDocument({}, {});
    const std::string bytes = written();
    EXPECT_EQ(bytes.find("<?xml version=\"1.0\"?><!-- Lumset V3.9 R1 (3,9,2006,0901) for Linux"), 0u);
    EXPECT_EQ(bytes.find("-->"), bytes.size() - 3);
    EXPECT_EQ(bytes.find("--", 24), bytes.size() - 3) << "a comment may not hold two hyphens";
}

/// The rules, one unit at a time: what the fast paths are measured against.
std::string encodedSlowly(const UnicodeString& units, bool isAttribute) {
    static const std::map<UChar32, std::string> escapes = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};
    std::string bytes;
    for (int32_t i = 0; i < units.length(); i = units.moveIndex32(i, 1)) {
        const UChar32 c = units.char32At(i);
        const auto escape = escapes.find(c);
        if (escape != escapes.end() && (c != '"' || isAttribute)) {
            bytes += escape->second;
        } else if (c >= 32 || c == '\t' || c == '\n' || c == '\r') {
            char encoded[U8_MAX_LENGTH];
            std::size_t length = 0;
            U8_APPEND_UNSAFE(encoded, length, c);  // half a pair is a character too
            bytes.append(encoded, length);
        }
    }
    return bytes;
}

TEST_F(XmlSerializerTest, everyUnitAtEveryPlaceOfARunIsEncodedByTheRules) {
    const auto expectEncoded = [&](const UnicodeString& units) {
        serializer->startTag(none, name("a"));
        serializer->attribute(none, name("b"), units);
        serializer->text(units);
        serializer->endTag(none, name("a"));
        ASSERT_EQ(written(), "<a b=\"" + encodedSlowly(units, true) + "\">" + encodedSlowly(units, false) + "</a>");
    };
    // Lengths on both sides of the widths of vector loops; beyond the first units one length after the other.
    static constexpr int lengths[] = {1, 4, 5, 7, 8, 9, 15, 16, 17, 24, 33, 71};
    startDocument();
    for (int unit = 0; unit <= 0xFFFF && !HasFailure(); unit += unit < 0x110 ? 1 : 0x3B) {
        for (const int length : lengths) {
            if (unit > 0x110 && length != lengths[static_cast<std::size_t>(unit) % std::size(lengths)]) continue;
            UnicodeString run;
            for (int i = 0; i < length; ++i) run.append(static_cast<char16_t>(u'a' + i % 26));
            for (int place = 0; place < length; ++place) {
                SCOPED_TRACE(testing::Message() << "unit " << unit << " at " << place << " of " << length);
                expectEncoded(UnicodeString(run).setCharAt(place, static_cast<char16_t>(unit)));
            }
        }
    }
    // A pair at each place around the ends of blocks and buffers of any likely size, and text that grows most.
    for (const int before : {2046, 2047, 2048, 4095, 8191, 16383, 32767, 65535}) {
        UnicodeString units;
        for (int i = 0; i < before; ++i) units.append(static_cast<char16_t>(i % 3 ? u'x' : u'"'));
        for (int i = 0; i < 5000; ++i) units.append(UChar32(0x1F600));
        expectEncoded(units.append(u'<'));
    }
}

TEST_F(XmlSerializerTest, makesPrefixesUp) {
    startDocument();
    const LumName u = name("urn:u"), v = name("urn:v");
    EXPECT_TRUE(serializer->getPrefix(u, false).isNull());
    EXPECT_TRUE(serializer->getPrefix(none, true).isNull());
    perform(*serializer, "start urn:u a");
    const LumName prefix = serializer->getPrefix(u, false);
    const std::string made = utf8(prefix.getString());
    ASSERT_EQ(made.substr(0, 2), "N-");
    perform(*serializer, "start urn:u a finish");
    EXPECT_EQ(written(), "<" + made + ":a xmlns:" + made + "=\"urn:u\"><" + made + ":a/></" + made + ":a>");

    startDocument();
    perform(*serializer, "START urn:u - a");
    EXPECT_TRUE(serializer->getPrefix(u, true).isNull()) << "the default namespace needs no prefix";
    perform(*serializer, "start urn:v a");
    EXPECT_NE(serializer->getPrefix(v, false), prefix);
    EXPECT_EQ(serializer->getNamespace(), v);
    EXPECT_EQ(serializer->getDepth(), 2);
}

TEST_F(XmlSerializerTest, looksAtTheOutputBeforeItWrites) {
    for (const char* call : {"start - a", "START - - a", "text t", "text \"\"", "null 0", "cdsect t", "entity t",
                             "instruction t", "comment t", "space t", "flush", "finish"}) {
        SCOPED_TRACE(call);
        const LumPtr<LumXmlSerializer> fresh = LumXmlUtil::createXmlSerializer();
        expectNoOutput([&] { perform(*fresh, call); });
        EXPECT_EQ(fresh->getDepth(), 0);
        for (const std::ios_base::iostate bit : {std::ios_base::badbit, std::ios_base::failbit}) {
            startDocument();
            out.setstate(bit);
            expectOutputFailed([&] { perform(*serializer, call); });
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
struct FailingBuffer : std::streambuf {
    enum Way { REFUSES, THROWS, FAILS_TO_SYNC };
    FailingBuffer(Way fault, std::size_t bytes) : way(fault), room(bytes) {}
    int_type overflow(int_type c) override {
        if (way == THROWS && taken.size() >= room) throw std::runtime_error("full");
        if (way == REFUSES && taken.size() >= room) return traits_type::eof();
        taken += traits_type::to_char_type(c);
        return c;
    }
    int sync() override { return way == FAILS_TO_SYNC ? -1 : 0; }
    const Way way;
    const std::size_t room;
    std::string taken;
};

TEST_F(XmlSerializerTest, reportsAWriteThatFailsAndTakesTheNextOutput) {
    for (const auto way : {FailingBuffer::REFUSES, FailingBuffer::THROWS, FailingBuffer::FAILS_TO_SYNC}) {
        for (const bool streamThrows : {false, true}) {
            SCOPED_TRACE(testing::Message() << way << streamThrows);
            {
                FailingBuffer buffer(way, 30);
                std::ostream failing(&buffer);
                if (streamThrows) failing.exceptions(std::ios_base::badbit);
                serializer->setOutput(failing, {});
                perform(*serializer, "generator \"\" declaration \"\" \"\" start - a");
                expectOutputFailed([&] { perform(*serializer, "text 0123456789 flush"); });
                EXPECT_TRUE(failing.bad());
                EXPECT_EQ(buffer.taken.substr(0, 25), "<?xml version=\"1.0\"?><a>0");
                expectOutputFailed([&] { serializer->text(u"more"); });
            }
            // The failed stream is gone; nothing may touch it any more.
            reopen();
            perform(*serializer, "declaration \"\" \"\" start - b finish");
            EXPECT_EQ(written(), "<?xml version=\"1.0\"?><b/>");
        }
    }
    // A document that is saved, with the failure after each byte.
    const LumPtr<LumDocument> document(new LumDocument);
    document->loadXml(u"<r a='1' p:b='&quot;' xmlns:p='u:p'>t<p:c/>&amp;</r>");
    document->getSerializer()->setGenerator({});
    document->save(out, nullptr, {});
    const std::string whole = written();
    for (const auto way : {FailingBuffer::REFUSES, FailingBuffer::THROWS}) {
        for (std::size_t room = 0; room < whole.size(); ++room) {
            FailingBuffer buffer(way, room);
            std::ostream failing(&buffer);
            expectOutputFailed([&] { document->save(failing, nullptr, {}); });
            EXPECT_EQ(buffer.taken, whole.substr(0, room));
        }
    }
    document->save(out, nullptr, {});
    EXPECT_EQ(written(), whole) << "a failed output harms more than its own saving";
    FailingBuffer buffer(FailingBuffer::FAILS_TO_SYNC, 0);
    std::ostream failing(&buffer);
    serializer->setOutput(failing, {});
    serializer->startDocument({}, {});
    expectOutputFailed([&] { serializer->setOutput(out, {}); });
    expectNoOutput([&] { serializer->text(u"t"); });
    reopen();
    serializer->text(u"t");
    EXPECT_EQ(written(), "t") << "a failure of the output before is reported again";
}

TEST_F(XmlSerializerTest, beginsAnewWithEachOutput) {
    startDocument();
    perform(*serializer, "START urn:u p a");
    std::ostringstream second;
    serializer->setOutput(second, {});
    EXPECT_EQ(written(), "<p:a xmlns:p=\"urn:u\">") << "the tag that was open is closed in its own output";
    EXPECT_EQ(serializer->getDepth(), 0);
    EXPECT_THROW(serializer->attribute(none, name("b"), u"x"), LumError);
    perform(*serializer, "START urn:u p a finish");
    EXPECT_EQ(second.str(), "<p:a xmlns:p=\"urn:u\"/>") << "a declaration of the output before is not in scope";
    {
        std::ostringstream third;
        serializer->setOutput(third, {});
        perform(*serializer, "text t finish");
    }
    reopen();  // a finished output that is gone is not touched
}

TEST_F(XmlSerializerTest, writesFilesOfItsOwn) {
    const TempFolder folder;
    const std::string path = folder.getPath() + "a b.xml";
    const UnicodeString uri = UnicodeString::fromUTF8(path);
    serializer->setGenerator({});
    serializer->setOutput(uri, {});
    perform(*serializer, "declaration UTF-8 \"\" start - a text 1\\n2\\r\\n finish");
    EXPECT_EQ(readFile(path), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>1\n2\r\n</a>") << "flushed at the end";
    serializer->setOutput(uri, {});
    serializer->startTag(none, name("b"));
    serializer = nullptr;
    EXPECT_EQ(readFile(path), "<b>") << "the end of the serializer closes the file";

    serializer = LumXmlUtil::createXmlSerializer();
    serializer->setOutput(out, {});
    expectError(0x1003, "Cannot open file: " + path + "/x", "LumCommon::XmlSerializerImpl::setOutput",
                [&] { serializer->setOutput(uri + u"/x", {}); });
    expectNoOutput([&] { serializer->text(u"t"); });
    EXPECT_EQ(written(), "");
}

}  // namespace
}  // namespace LumTest
