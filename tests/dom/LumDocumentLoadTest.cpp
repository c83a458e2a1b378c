#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "dom/CountedDocument.h"
#include "support/EscapedRows.h"
#include "support/ExpectError.h"
#include "support/LoopbackServer.h"
#include "support/PieceStream.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

std::string xmlOf(LumDocument& document) {
    LumElement* const root = document.getDocumentElement();
    return root ? utf8(document.saveXml(root)) : "none";
}

class LumDocumentLoadTest : public testing::Test {
protected:
    LumPtr<LumDocument> document{new LumDocument};
};

TEST_F(LumDocumentLoadTest, buildsTheTreesOfTheRows) {
    NodeCounter counter;
    const LumPtr<CountedDocument> dropping(new CountedDocument(counter));
    for (const std::vector<std::string>& row : readEscapedRows("dom/loaded.txt", 5)) {
        SCOPED_TRACE(row[2]);
        dropping->dropped = text(row[4]);
        const UnicodeString xml = text(row[0]);  // is read as long as loading goes on
        for (const bool isDeferred : {false, true}) {
            for (LumDocument* loaded : {document.get(), static_cast<LumDocument*>(dropping.get())}) {
                if (loaded != dropping.get() && !row[4].empty()) continue;
                loaded->setDeferredLoad(isDeferred);
                auto in = std::make_unique<PieceStream>(row[0], 1);
                std::string code;
                try {
                    row[3].empty() ? loaded->loadXml(xml) : loaded->load(*in);
                    LumTreeIterator walk(loaded, LumTreeIterator::ENTER);
                    while (!row[3].empty() && walk.nextNode()) {
                    }
                } catch (const LumError& error) {
                    std::ostringstream shown;
                    shown << std::hex << error.code;
                    code = shown.str();
                }
                in = nullptr;  // whoever reads on after the error reads freed memory
                EXPECT_EQ(code, row[3]);
                EXPECT_EQ(xmlOf(*loaded), row[1]);
                EXPECT_EQ(loaded->loadNextNode(), nullptr);
                EXPECT_TRUE(!code.empty() || loaded->getFlags() == unsigned{LumNode::FLAG_COMPLETE});
            }
        }
    }
    expectError(0x1004, "Unexpected end of input stream.", "LumCommon::XmlParserImpl::checkStream",
                [&] { document->loadXml(UnicodeString()); });
}

TEST_F(LumDocumentLoadTest, uriAndTargetAreKeptApart) {
    std::istringstream in("<n>t</n>");
    document->loadXml(u"<r><old/></r>");
    LumElement* const root = document->getDocumentElement();
    document->load(UnicodeString(LUM_TEST_DATA "/fo/manpage.fo"), root);
    EXPECT_EQ(utf8(document->getDocumentUri()), "") << "a part does not give the document its URI";
    EXPECT_EQ(root->getChildNodeCount(), 1) << "old children stay";
    document->load(UnicodeString(LUM_TEST_DATA "/fo/manpage.fo"));
    EXPECT_EQ(utf8(document->getDocumentUri()), LUM_TEST_DATA "/fo/manpage.fo");
    const LumPtr<LumDocumentFragment> fragment = document->createDocumentFragment();
    document->load(in, fragment.get());
    EXPECT_EQ(utf8(document->saveXml(fragment.get())), "<n>t</n>");
    EXPECT_EQ(fragment->getFlags(), unsigned{LumNode::FLAG_COMPLETE});
    EXPECT_NE(utf8(document->getDocumentUri()), "");
    document->setParser(document->getParser());
    EXPECT_EQ(utf8(document->getDocumentUri()), "") << "a new parser has read nothing yet";
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    std::istringstream rest("<a><b/><c/></a>");
    parser->setInput(rest, UnicodeString(), UnicodeString());
    document->setParser(parser.get());
    document->load();
    EXPECT_EQ(xmlOf(*document), "<a><b/><c/></a>");
    expectError(0x1003, "Cannot open file: " LUM_TEST_DATA "/none.xml", "LumCommon::XmlParserImpl::setInput",
                [&] { document->load(UnicodeString(LUM_TEST_DATA "/none.xml")); });
}

TEST_F(LumDocumentLoadTest, anErrorBeforeReadingEndsTheOlderLoadAndSoDoesTheEndOfTheDocument) {
    const UnicodeString xml(u"<r><a/><b/></r>");
    document->setDeferredLoad(true);
    document->loadXml(xml);
    document->getDocumentElement();
    EXPECT_THROW(document->load(UnicodeString(u"/no/such/file")), LumError);
    EXPECT_EQ(xmlOf(*document), "<r/>");
    document->loadXml(xml);
    const LumPtr<LumNode> root(document->getDocumentElement());
    EXPECT_EQ(utf8(root->getFirstChild()->getNodeName().getString()), "a");
    document = nullptr;
    EXPECT_EQ(root->getLastChild(), root->getFirstChild()) << "a node asks its dead document for more";
}

TEST(LumDocumentDerived, nullDropsTextsAndWhatACopyWouldMake) {
    NodeCounter counter;
    const LumPtr<CountedDocument> document(new CountedDocument(counter));
    document->dropsText = true;
    document->loadXml(u"<a>x<d>y</d>z</a>");
    EXPECT_EQ(xmlOf(*document), "<a><d/></a>");
    EXPECT_EQ(document->getDocumentElement()->appendChildText(u"t"), nullptr);
    document->dropped = u"d";
    EXPECT_EQ(utf8(document->saveXml(document->getDocumentElement()->cloneNode(true).get())), "<a/>")
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

TEST_F(LumDocumentLoadTest, aResolverThatRefusesKeepsADocumentOffFilesAndServers) {
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

TEST(LumDocumentDerived, hooksDecideWhereLoadingGoesOn) {
    NodeCounter counter;
    const LumPtr<CountedDocument> document(new CountedDocument(counter));
    // Each child of r gets a wrapper around it. The end tag of the child closes both.
    document->hooks.append = [&](LumNode* parent, LumNode* child) {
        if (parent != document->getDocumentElement()) return parent->appendChild(child);
        const LumPtr<LumElement> wrapper = document->createElement(LumName(u"w"));
        wrapper->setFlags(LumNode::FLAG_STEP_OVER);
        parent->appendChild(wrapper.get());
        return wrapper->appendChild(child);
    };
    document->loadXml(u"<r><a>x</a><b><c/></b>y</r>");
    EXPECT_EQ(xmlOf(*document), "<r><w><a>x</a></w><w><b><c/></b></w>y</r>");
}

TEST(LumDocumentDerived, hooksSeeAttributesAndMayAskForMoreOrStop) {
    NodeCounter counter;
    const LumPtr<CountedDocument> document(new CountedDocument(counter));
    std::string seen;
    document->hooks.finish = [&](LumNode* element) {
        seen += utf8(element->getLocalName().getString()) + std::to_string(element->getAttributes()->getCount());
        // All three would read on in the middle of a start tag.
        EXPECT_EQ(element->getFirstChild(), nullptr);
        EXPECT_EQ(element->getParentNode(), nullptr);
        document->getLastChild();
    };
    document->loadXml(u"<r x='1' y='2'><a z='3'>t</a><b/></r>");
    EXPECT_EQ(xmlOf(*document), "<r x=\"1\" y=\"2\"><a z=\"3\">t</a><b/></r>");
    EXPECT_EQ(seen, "r2a1b0");
    document->hooks.finish = [&](LumNode* element) {
        if (element->getLocalName().getString() == u"a") document->abort();
    };
    document->loadXml(u"<r><a>t</a><b/></r>");
    EXPECT_EQ(xmlOf(*document), "<r><a/></r>") << "reading goes on after an abort inside a hook";
    document->hooks.finish = [](LumNode*) { throw std::runtime_error("stop"); };
    EXPECT_THROW(document->loadXml(u"<r/>"), std::runtime_error);
    document->hooks.finish = nullptr;
    document->loadXml(u"<r/>");
    EXPECT_EQ(xmlOf(*document), "<r/>") << "after a hook has thrown, nothing loads any more";
}

TEST(LumDocumentThreads, loadNextNodeGivesEachNodeToOneThread) {
    constexpr int childCount = 3000;
    UnicodeString xml(u"<r>");
    for (int i = 0; i < childCount; ++i) xml.append(u"<a b='c'/>");
    xml.append(u"</r>");
    const LumPtr<LumDocument> document(new LumDocument);
    document->setDeferredLoad(true);
    document->loadXml(xml);
    std::atomic<int> nodes = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            while (document->loadNextNode()) ++nodes;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(nodes, childCount + 1);
    EXPECT_EQ(document->getDocumentElement()->getChildNodeCount(), childCount);
}

}  // namespace
}  // namespace LumTest
