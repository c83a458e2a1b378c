#include <gtest/gtest.h>

#include <atomic>
#include <sstream>

#include "dom/CountedDocument.h"
#include "support/EscapedRows.h"
#include "support/ExpectError.h"
#include "support/LoopbackServer.h"
#include "support/OnThreads.h"
#include "support/PieceStream.h"
#include "support/Repeat.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

std::string xmlOf(LumDocument& document) {
    LumElement* const root = document.getDocumentElement();
    return root ? utf8(document.saveXml(root)) : "none";
}

class LumDocumentTest : public testing::Test {
protected:
    LumDocumentTest() { document->getSerializer()->setGenerator(UnicodeString()); }

    LumPtr<LumDocument> document{new LumDocument};
    NodeCounter counter;
    LumPtr<CountedDocument> derived{new CountedDocument(counter)};
};

TEST_F(LumDocumentTest, buildsTheTreesOfTheRows) {
    for (const std::vector<std::string>& row : readEscapedRows("dom/loaded.txt", 5)) {
        SCOPED_TRACE(row[2]);
        derived->dropped = text(row[4]);
        const UnicodeString xml = text(row[0]);  // is read while loading lasts
        for (const bool isDeferred : {false, true}) {
            for (LumDocument* loaded : {document.get(), static_cast<LumDocument*>(derived.get())}) {
                if (loaded != derived.get() && !row[4].empty()) continue;
                loaded->setDeferredLoad(isDeferred);
                auto in = std::make_unique<PieceStream>(row[0], 1);
                unsigned code = 0;
                try {
                    row[3].empty() ? loaded->loadXml(xml) : loaded->load(*in);
                    LumTreeIterator walk(loaded, LumTreeIterator::ENTER);
                    while (!row[3].empty() && walk.nextNode()) {
                    }
                } catch (const LumError& error) {
                    code = error.code;
                }
                in = nullptr;  // whoever reads on after the error reads freed memory
                EXPECT_EQ(code, row[3].empty() ? 0 : std::stoul(row[3], nullptr, 16));
                EXPECT_EQ(xmlOf(*loaded), row[1]);
                EXPECT_EQ(loaded->loadNextNode(), nullptr);
                EXPECT_TRUE(code != 0 || loaded->getFlags() == unsigned{LumNode::FLAG_COMPLETE});
            }
        }
    }
    expectError(0x1004, "Unexpected end of input stream.", "LumCommon::XmlParserImpl::checkStream",
                [&] { document->loadXml(UnicodeString()); });
}

TEST_F(LumDocumentTest, aStreamOrAParserMayBeWhatIsLoaded) {
    std::istringstream in("<n>t</n>"), rest("<a><b/><c/></a>");
    const LumPtr<LumDocumentFragment> fragment = document->createDocumentFragment();
    document->load(in, fragment.get());
    EXPECT_EQ(utf8(document->saveXml(fragment.get())), "<n>t</n>");
    EXPECT_EQ(fragment->getFlags(), unsigned{LumNode::FLAG_COMPLETE});
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(rest, UnicodeString(), UnicodeString());
    document->setParser(parser.get());
    document->load();
    EXPECT_EQ(xmlOf(*document), "<a><b/><c/></a>");
}

TEST_F(LumDocumentTest, itsLimitsHoldForEveryParser) {
    LumXmlLimits limits;
    limits.depth = 1;
    const LumPtr<LumXmlParser> own = LumXmlUtil::createXmlParser();
    own->setLimits(limits);
    document->setParser(own.get());
    EXPECT_EQ(document->getLimits(), limits) << "a parser loses its own";
    document->setLimits(limits = LumXmlLimits());
    EXPECT_NO_THROW(document->loadXml(u"<a><b/></a>"));
    limits.depth = 1;
    for (const bool isMade : {false, true}) {
        document->setParser(isMade ? nullptr : LumXmlUtil::createXmlParser().get());
        document->setLimits(limits);
        expectError(0x183B, "XML parser error.\nSTART_TAG, Line 1, Col 5.", "LumCommon::XmlParserImpl",
                    [&] { document->loadXml(u"<a><b/></a>"); });
        document->setParser(LumXmlUtil::createXmlParser().get());
        EXPECT_EQ(document->getParser()->getLimits(), limits);
    }
}

TEST_F(LumDocumentTest, nullDropsTextsAndWhatACopyWouldMake) {
    derived->dropsText = true;
    derived->loadXml(u"<a>x<d>y</d>z</a>");
    EXPECT_EQ(xmlOf(*derived), "<a><d/></a>");
    EXPECT_EQ(derived->getDocumentElement()->appendChildText(u"t"), nullptr);
    derived->dropped = u"d";
    EXPECT_EQ(utf8(derived->saveXml(derived->getDocumentElement()->cloneNode(true).get())), "<a/>")
        << "a copy leaves out what the document does not make";
}

/// Opens nothing: it throws, or gives streams without a byte.
class Refusing : public LumUriReferenceResolver {
public:
    explicit Refusing(bool throws) : throws_(throws) { LumUri::setUriReferenceResolver(this); }
    ~Refusing() override { LumUri::setUriReferenceResolver(nullptr); }
    std::istream* getStream(const UnicodeString& uri) override {
        asked = utf8(uri);
        if (throws_) throw std::runtime_error("refused");
        return new std::istringstream;
    }
    std::string asked;

private:
    bool throws_;
};

TEST_F(LumDocumentTest, aResolverThatRefusesKeepsADocumentOffFilesAndServers) {
    const TempFolder folder;
    const LoopbackServer server([&](const std::string& request) {
        const std::string name = request.substr(5, request.find(' ', 5) - 5);
        return LoopbackServer::Answer{{"HTTP/1.0 200 OK\r\n\r\n" + readFile(folder.getPath() + name)}};
    });
    const std::string places[][3] = {
        {"<!DOCTYPE r [<!ENTITY e SYSTEM '", "'>]><r>&e;</r>", "secret"},
        {"<!DOCTYPE r [<!ENTITY % p SYSTEM '", "'>%p;]><r>&e;</r>", "<!ENTITY e 'secret'>"},
        {"<!DOCTYPE r SYSTEM '", "'><r>&e;</r>", "<!ENTITY e 'secret'>"},
    };
    int count = 0;  // what has been read of a definition once is kept, so each is another one
    const std::string folderUri = "file://" + folder.getPath();
    document->setInputOption(UnicodeString::fromUTF8(folderUri));
    for (const std::string& base : {folderUri, folder.getPath(), std::string(), server.url("/")}) {
        for (const auto& [start, end, bytes] : places) {
            const std::string name = std::to_string(count++);
            writeFile(folder.getPath() + name, bytes);
            const std::string xml = start + base + name + end;
            SCOPED_TRACE(xml);
            const auto load = [&] {
                try {
                    document->loadXml(UnicodeString::fromUTF8(xml));
                    return xmlOf(*document);
                } catch (const LumError& error) {
                    return utf8(error.getMessage());
                }
            };
            const std::size_t requests = server.getRequests().size();
            for (const bool throws : {true, false}) {
                Refusing resolver(throws);
                EXPECT_EQ(load().find("secret"), std::string::npos);
                EXPECT_NE(resolver.asked, "");
            }
            EXPECT_EQ(server.getRequests().size(), requests);
            EXPECT_EQ(load(), "<r>secret</r>") << "without a resolver it is not opened: nothing was proved";
        }
    }
}

TEST_F(LumDocumentTest, hooksDecideWhereLoadingGoesOn) {
    // Each child of r gets a wrapper around it. The end tag of the child closes both.
    derived->hooks.append = [&](LumNode* parent, LumNode* child) {
        if (parent != derived->getDocumentElement()) return parent->appendChild(child);
        const LumPtr<LumElement> wrapper = derived->createElement(LumName(u"w"));
        wrapper->setFlags(LumNode::FLAG_STEP_OVER);
        parent->appendChild(wrapper.get());
        return wrapper->appendChild(child);
    };
    derived->loadXml(u"<r><a>x</a><b><c/></b>y</r>");
    EXPECT_EQ(xmlOf(*derived), "<r><w><a>x</a></w><w><b><c/></b></w>y</r>");
}

TEST_F(LumDocumentTest, hooksSeeAttributesAndMayAskForMoreOrStop) {
    std::string seen;
    derived->hooks.finish = [&](LumNode* element) {
        seen += utf8(element->getLocalName().getString()) + std::to_string(element->getAttributes()->getCount());
        // All three would read on in the middle of a start tag.
        EXPECT_EQ(element->getFirstChild(), nullptr);
        EXPECT_EQ(element->getParentNode(), nullptr);
        derived->getLastChild();
    };
    derived->loadXml(u"<r x='1' y='2'><a z='3'>t</a><b/></r>");
    EXPECT_EQ(xmlOf(*derived), "<r x=\"1\" y=\"2\"><a z=\"3\">t</a><b/></r>");
    EXPECT_EQ(seen, "r2a1b0");
    derived->hooks.finish = [&](LumNode* element) {
        if (element->getLocalName().getString() == u"a") derived->abort();
    };
    derived->loadXml(u"<r><a>t</a><b/></r>");
    EXPECT_EQ(xmlOf(*derived), "<r><a/></r>") << "reading continues after an abort inside a hook";
    derived->hooks.finish = [](LumNode*) { throw std::runtime_error("stop"); };
    EXPECT_THROW(derived->loadXml(u"<r/>"), std::runtime_error);
    derived->hooks.finish = nullptr;
    derived->loadXml(u"<r/>");
    EXPECT_EQ(xmlOf(*derived), "<r/>") << "after a hook has thrown, nothing loads any more";
}

TEST_F(LumDocumentTest, loadNextNodeGivesEachNodeToOneThread) {
    constexpr int childCount = 3000;
    const UnicodeString xml = text("<r>" + repeat("<a b='c'/>", childCount) + "</r>");
    document->setDeferredLoad(true);
    document->loadXml(xml);
    std::atomic<int> nodes = 0;
    onThreads(4, [&](unsigned) {
        while (document->loadNextNode()) ++nodes;
    });
    EXPECT_EQ(nodes, childCount + 1);
    EXPECT_EQ(document->getDocumentElement()->getChildNodeCount(), childCount);
}

TEST_F(LumDocumentTest, callersNodesFindInTheOutputWhatWasWrittenBeforeThem) {
    document->loadXml(u"<r a='1'>t<b xmlns='urn:b'/></r>");
    std::ostringstream out;
    std::string seen;
    std::function<void()> act = [&] { seen = out.str(); };
    document->getDocumentElement()->appendChild(LumPtr<LumNode>(new ActingText(document.get(), act)).get());
    document->save(out, nullptr, UnicodeString());
    const std::string before = R"(<?xml version="1.0"?><r a="1">t<b xmlns="urn:b"/>)";
    EXPECT_EQ(seen, before) << "what the library's own nodes wrote is held back";
    EXPECT_EQ(out.str(), before + "t</r>");
    out.str("");
    act = [] { throw std::runtime_error("enough"); };
    EXPECT_THROW(document->save(out, nullptr, UnicodeString()), std::runtime_error);
    EXPECT_EQ(out.str(), before) << "an exception loses what was written";
}

TEST_F(LumDocumentTest, whatIsSavedCanBeLoadedAgainOrSavingSaysWhyNot) {
    const LumPtr<LumElement> element = document->createElement(LumName(u"e"));
    element->setAttribute(LumName(u"l"), LumValue::parseUriFragmentParameters(u"#x><evil=1", false));
    document->appendChild(element.get());
    const std::string message = "SYSTEM ERROR: 'l.x><evil' is not a name of XML.";
    const std::string source = "LumCommon::XmlSerializerImpl::checkText";
    std::ostringstream out;
    expectError(0x813, message, source, [&] { document->save(out, nullptr, UnicodeString()); });
    expectError(0x813, message, source, [&] { document->saveXml(); });
    out.str("");
    expectError(0x813, message, source, [&] { document->saveDocumentElement(out); });
    EXPECT_FALSE(document->getSerializer()->isChecked()) << "the caller's own use is checked from then on";
    document->setSaveChecked(false);
    EXPECT_EQ(xmlOf(*document), "<e l.x><evil=\"1\"/>");
    document->setSaveChecked(true);
    // Everything that the parser lets through, loaded, saved, and loaded again.
    std::string xml =
        "<e a='\xEF\xBF\xBE\xED\xA0\x80\x7F'><![CDATA[\xEF\xBF\xBE<\xED\xB0\x80]]>\xED\x9F\xBF\xED\xA0\x80</e>";
    const std::string content =
        "\"\xEF\xBF\xBE\xED\xA0\x80\x7F\">\xEF\xBF\xBE&lt;\xED\xB0\x80\xED\x9F\xBF\xED\xA0\x80</";
    for (int round = 0; round < 2; ++round) {
        std::istringstream in(xml);
        document->load(in);
        out.str("");
        document->save(out, nullptr, UnicodeString());
        xml = out.str();
        EXPECT_NE(xml.find(content), std::string::npos) << xml;
        EXPECT_TRUE(document->saveXml().endsWith(u"\xFFFE\xD800\x7F\">\xFFFE&lt;\xDC00\xD7FF\xD800</e>"));
    }
}

TEST_F(LumDocumentTest, ofAnyLengthPassesThroughFewNodes) {
    const std::string content = repeat("<c n=\"@\"><d>text</d><e/></c>\n", 20000) + "</r>";
    PieceStream in("<r xmlns='u:d' a='1'>\n" + content);
    std::ostringstream out;
    derived->getSerializer()->setGenerator(UnicodeString());
    derived->setDeferredLoad(true);
    derived->load(in);
    derived->saveDocumentElement(out);
    LumNode* const root = derived->getDocumentElement();
    for (LumNode* child = root->getFirstChild(); child;) {
        derived->saveChildElement(child);
        LumNode* const following = child->getNextSibling();
        child->deleteAllChildNodes();
        root->removeChild(child);
        child = following;
    }
    derived->closeDocumentElement();
    EXPECT_LT(counter.most, 10);
    EXPECT_TRUE(out.str() == "<?xml version=\"1.0\"?><r a=\"1\" xmlns=\"u:d\">\n" + content);
    derived = nullptr;
    EXPECT_EQ(counter.live, 0);
}

}  // namespace
}  // namespace LumTest
