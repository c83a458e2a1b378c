#include <gtest/gtest.h>

#include <sstream>

#include "dom/CountedDocument.h"
#include "support/EscapedRows.h"
#include "support/ExpectError.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

/// Names outlive the parsers that met them while some document lives.
class LumXmlUtilTest : public testing::Test {
protected:
    const LumPtr<LumDocument> keepsNames{new LumDocument};
};

TEST_F(LumXmlUtilTest, tellsTheRootOfStreamsAndFiles) {
    const TempFolder folder;
    const UnicodeString uri = text(folder.getPath() + "a root.xml");
    for (const std::vector<std::string>& row : readEscapedRows("dom/roots.txt", 5)) {
        SCOPED_TRACE(row[4]);
        writeFile(utf8(uri), row[0]);
        for (const bool isFile : {false, true}) {
            std::istringstream in(row[0]), again(row[0]);
            LumName localName(NAME_block);
            LumName namespaceUri =
                isFile ? LumXmlUtil::getRootName(localName, uri) : LumXmlUtil::getRootName(localName, in);
            EXPECT_EQ(utf8(namespaceUri.getString()), row[1]);
            EXPECT_EQ(utf8(localName.getString()), row[2]);
            localName = NAME_block;
            namespaceUri = isFile ? LumXmlUtil::getXSLStylesheetNamespace(localName, uri)
                                  : LumXmlUtil::getXSLStylesheetNamespace(localName, again);
            EXPECT_EQ(utf8(namespaceUri.getString()), row[3]);
            EXPECT_EQ(utf8(localName.getString()), row[2]);
        }
    }
}

TEST_F(LumXmlUtilTest, leavesTheParserOnTheRoot) {
    std::istringstream in("<!-- c --><a x='1'><b/></a>");
    const LumPtr<LumXmlParser> parser = LumXmlUtil::getRootParser(in, u"Text/HTML", u".HTM");
    ASSERT_TRUE(parser);
    EXPECT_EQ(parser->getEventType(), LumXmlParser::START_TAG);
    EXPECT_EQ(utf8(parser->getAttributeValue(0)), "1");
    EXPECT_TRUE(parser->isHtmlType()) << "the stream's types have not reached the parser";
    EXPECT_EQ(parser->next(), LumXmlParser::START_TAG);
    EXPECT_EQ(utf8(parser->getName().getString()), "b");
}

TEST_F(LumXmlUtilTest, passesErrorsOn) {
    LumName localName(NAME_block);
    std::istringstream empty, broken("<a b='1' b='2'/>");
    expectError(0x1004, "Unexpected end of input stream.", "LumCommon::XmlParserImpl::checkStream",
                [&] { LumXmlUtil::getRootName(localName, empty); });
    EXPECT_TRUE(localName.isNull()) << "a name from before the call survives an error";
    expectParserError(0x1808, "Duplicate attribute: b", "START_TAG, Line 1, Col 15.",
                      [&] { (void)LumXmlUtil::getRootParser(broken); });
    expectError(0x1003, "Cannot open file: no/such/file.xml", "LumCommon::XmlParserImpl::setInput",
                [&] { LumXmlUtil::getXSLStylesheetNamespace(localName, u"no/such/file.xml"); });
}

TEST_F(LumXmlUtilTest, qualifiesNamesForMessages) {
    for (const std::vector<std::string>& row : readEscapedRows("dom/qualified.txt", 4)) {
        SCOPED_TRACE(row[3]);
        EXPECT_EQ(utf8(LumXmlUtil::makeNSQNameStr(text(row[0]), text(row[1]))), row[2]);
    }
}

}  // namespace
}  // namespace LumTest
