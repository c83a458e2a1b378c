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

TEST_F(LumXmlUtilTest, passesErrorsOn) {
    LumName localName(NAME_block);
    std::istringstream empty;
    expectError(0x1004, "Unexpected end of input stream.", "LumCommon::XmlParserImpl::checkStream",
                [&] { LumXmlUtil::getRootName(localName, empty); });
    EXPECT_TRUE(localName.isNull()) << "a name from before the call survives an error";
    expectError(0x1003, "Cannot open file: no/such/file.xml", "LumCommon::XmlParserImpl::setInput",
                [&] { LumXmlUtil::getXSLStylesheetNamespace(localName, u"no/such/file.xml"); });
}

}  // namespace
}  // namespace LumTest
