#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "dom/CountedDocument.h"
#include "support/ExpectError.h"
#include "support/PieceStream.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

class LumDocumentSaveTest : public testing::Test {
protected:
    LumDocumentSaveTest() { document->getSerializer()->setGenerator(UnicodeString()); }

    LumPtr<LumDocument> document{new LumDocument};
};

TEST_F(LumDocumentSaveTest, eachFormWritesItsProlog) {
    document->loadXml(u"<r><a>\u00E9</a></r>");
    LumNode* const a = document->getDocumentElement()->getFirstChild();
    struct Case {
        const char* fault;
        std::function<void(std::ostream&)> save;
        const char* bytes;
    };
    const Case cases[] = {
        {"no encoding is declared", [&](std::ostream& out) { document->save(out, nullptr, UnicodeString()); },
         "<?xml version=\"1.0\"?><r><a>\xC3\xA9</a></r>"},
        {"the node is not the one asked for", [&](std::ostream& out) { document->save(out, a, u"utf-8"); },
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xC3\xA9</a>"},
        {"the instruction is lost", [&](std::ostream& out) { document->save(out, nullptr, u"", u"pi x"); },
         "<?xml version=\"1.0\"?><?pi x?><r><a>\xC3\xA9</a></r>"},
        {"comment and document type change places",
         [&](std::ostream& out) { document->save(u" c ", u"r SYSTEM \"r.dtd\"", out, nullptr, u"UTF-8"); },
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><!-- c --><!DOCTYPE r SYSTEM \"r.dtd\"><r><a>\xC3\xA9</a></r>"},
        {"empty parts are written", [&](std::ostream& out) { document->save(u"", u"", out, a, u""); },
         "<?xml version=\"1.0\"?><a>\xC3\xA9</a>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const auto out = std::make_unique<std::ostringstream>();  // dies before the next output is set
        c.save(*out);
        EXPECT_EQ(out->str(), c.bytes);
    }
    EXPECT_EQ(utf8(document->saveXml()), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><r><a>\xC3\xA9</a></r>");
    EXPECT_EQ(utf8(document->saveXml(a)), "<a>\xC3\xA9</a>") << "an element has no declaration";
}

TEST_F(LumDocumentSaveTest, filesAreCompleteWhenSaveReturns) {
    document->loadXml(u"<r/>");
    const TempFolder folder;
    document->save(text(folder.getPath() + "a.xml"));
    EXPECT_EQ(readFile(folder.getPath() + "a.xml"), "<?xml version=\"1.0\"?><r/>");
}

TEST_F(LumDocumentSaveTest, aFailedOutputHarmsOnlyItsOwnSaving) {
    document->loadXml(u"<r/>");
    auto broken = std::make_unique<std::ostringstream>();
    broken->setstate(std::ios::badbit);
    expectError(0x1007, "Output stream error.", "LumCommon::XmlSerializerImpl::checkStream",
                [&] { document->save(*broken, nullptr, UnicodeString()); });
    broken = nullptr;
    std::ostringstream out;
    document->save(out, nullptr, UnicodeString());
    EXPECT_EQ(out.str(), "<?xml version=\"1.0\"?><r/>");
    const LumPtr<LumAttr> attr = document->createAttribute(NAME_id);
    expectError(0x812, "SYSTEM ERROR: Unsupported node type.", "LumCommon::LumDocument::doSave",
                [&] { document->save(out, attr.get(), UnicodeString()); });
}

TEST_F(LumDocumentSaveTest, attributesAreWrittenFromTheirValues) {
    LumValue compound(1.5f, UNIT_PT);
    compound.setNamedItem(LumName(u"maximum"), LumValue(2.0f, UNIT_CM));
    LumValue color(0x00FF00);
    color.setUnit(UNIT_COLOR);
    struct Case {
        const char* fault;
        LumValue value;
        const char* written;
    };
    const Case cases[] = {
        {"a null value is written", LumValue(), "<e/>"},
        {"an object is written", LumValue(static_cast<LumRCObject*>(document.get())), "<e/>"},
        {"an empty string is left out", LumValue(UnicodeString()), "<e v=\"\"/>"},
        {"a string is not escaped", LumValue(u"a\"<&"), "<e v=\"a&quot;&lt;&amp;\"/>"},
        {"a number loses its unit", LumValue(1.5f, UNIT_PT), "<e v=\"1.5pt\"/>"},
        {"a name is not written", LumValue(LumName(u"auto")), "<e v=\"auto\"/>"},
        {"a compound is one attribute", compound, "<e v=\"1.5pt\" v.maximum=\"2cm\"/>"},
        {"a colour is written as a number", color, "<e v=\"#00FF00\"/>"},
        {"a print colour is written as its entries", LumValue(LumColor(LumColor(0, 255, 0), u"Gold", 0.5f)),
         "<e v=\"rgb-icc(0,255,0,#SEPARATION,&quot;Gold&quot;,0.5)\"/>"},
        {"a quoted string keeps its quotes", LumValue::parse(u"'a'"), "<e v=\"a\"/>"},
        {"an address gets a wrapper", LumTokenizer(u"url(a.png)").nextTokenValueFunc(), "<e v=\"a.png\"/>"},
        {"a delimiter is written as its code", LumTokenizer(u"(").nextTokenValue(), "<e v=\"(\"/>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const LumPtr<LumElement> element = document->createElement(LumName(u"e"));
        element->setAttribute(LumName(u"v"), c.value);
        EXPECT_EQ(utf8(document->saveXml(element.get())), c.written);
    }
}

// The syntax of colours is that of the whole document, wherever saving begins.
TEST_F(LumDocumentSaveTest, aDrawingHasItsOwnSyntaxOfColours) {
    const LumValue plain(LumColor(0, 255, 0));
    const LumValue print(LumColor(LumColor(0, 255, 0), 0.0f, 1.0f, 0.5f, 0.0f));
    LumValue compound(plain);
    compound.setNamedItem(NAME_maximum, plain);
    const struct {
        const char* fault;
        const char16_t* xml;
        const char* written;
    } cases[] = {
        {"a drawing", u"<svg xmlns='http://www.w3.org/2000/svg'><g/></svg>",
         "<g a=\"lime\" b=\"lime icc-color(#CMYK,0,1,0.5,0)\" c=\"#00FF00\" c.maximum=\"#00FF00\""},
        {"a drawing inside another document", u"<r><g xmlns='http://www.w3.org/2000/svg'/></r>",
         "<g a=\"#00FF00\" b=\"rgb-icc(0,255,0,#CMYK,0,1,0.5,0)\" c=\"#00FF00\" c.maximum=\"#00FF00\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        document->loadXml(c.xml);
        auto* const element = static_cast<LumElement*>(document->getDocumentElement()->getFirstChild());
        element->setAttribute(LumName(u"a"), plain);
        element->setAttribute(LumName(u"b"), print);
        element->setAttribute(LumName(u"c"), compound);
        const std::string written = std::string(c.written) + " xmlns=\"http://www.w3.org/2000/svg\"/>";
        EXPECT_EQ(utf8(document->saveXml(element)), written);
        EXPECT_NE(utf8(document->saveXml()).find(c.written), std::string::npos);
    }
}

TEST_F(LumDocumentSaveTest, textsKeepEvenHalfASurrogatePair) {
    const char16_t half[] = {u'x', 0xD834, u'y', 0xDD1E, 0xD7FF, 0};
    const LumPtr<LumElement> element = document->createElement(LumName(u"e"));
    element->appendChildText(half);
    element->appendChild(document->createProcessingInstruction(u"pi <x>").get());
    UnicodeString expected(u"<e>");
    expected.append(half, 5).append(u"<?pi <x>?></e>");
    EXPECT_TRUE(document->saveXml(element.get()) == expected);
}

TEST(LumDocumentStreaming, aDocumentOfAnyLengthPassesThroughFewNodes) {
    constexpr int childCount = 20000;
    int next = -1;
    GeneratedBuffer generated([&next]() -> std::string {
        if (next++ < 0) return "<r xmlns='u:d' a='1'>\n";
        if (next > childCount + 1) return "";
        return next > childCount ? "</r>" : "<c n='" + std::to_string(next) + "'><d>text</d><e/></c>\n";
    });
    std::istream in(&generated);
    std::ostringstream out;
    NodeCounter counter;
    {
        const LumPtr<CountedDocument> document(new CountedDocument(counter));
        document->getSerializer()->setGenerator(UnicodeString());
        document->setDeferredLoad(true);
        document->load(in);
        document->saveDocumentElement(out);
        LumNode* const root = document->getDocumentElement();
        LumNode* child = root->getFirstChild();
        while (child) {
            document->saveChildElement(child);
            LumNode* const following = child->getNextSibling();
            child->deleteAllChildNodes();
            root->removeChild(child);
            child = following;
        }
        document->closeDocumentElement();
    }
    EXPECT_EQ(counter.live, 0);
    EXPECT_LT(counter.most, 10);
    std::string expected = "<?xml version=\"1.0\"?><r a=\"1\" xmlns=\"u:d\">\n";
    for (int i = 1; i <= childCount; ++i) expected += "<c n=\"" + std::to_string(i) + "\"><d>text</d><e/></c>\n";
    EXPECT_TRUE(out.str() == expected + "</r>");
}

}  // namespace
}  // namespace LumTest
