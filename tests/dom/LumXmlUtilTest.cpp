#include <gtest/gtest.h>

#include <sstream>

#include "dom/CountedDocument.h"
#include "support/EscapedRows.h"
#include "support/ExpectError.h"
#include "support/TempFolder.h"

namespace LumTest {
namespace {

TEST(LumXmlUtil, tellsTheRootOfStreamsAndFiles) {
    const LumPtr<LumDocument> keepsNames(new LumDocument);  // they outlive the parsers that met them while it lives
    const TempFolder folder;
    const UnicodeString uri = text(folder.getPath() + "a root.xml");
    for (const std::vector<std::string>& row : readEscapedRows("dom/roots.txt", 5)) {
        SCOPED_TRACE(row[4]);
        writeFile(utf8(uri), row[0]);
        for (int way = 0; way < 4; ++way) {
            std::istringstream in(row[0]);
            LumName localName(NAME_block);
            const LumName namespaceUri = way == 0   ? LumXmlUtil::getRootName(localName, uri)
                                         : way == 1 ? LumXmlUtil::getRootName(localName, in)
                                         : way == 2 ? LumXmlUtil::getXSLStylesheetNamespace(localName, uri)
                                                    : LumXmlUtil::getXSLStylesheetNamespace(localName, in);
            EXPECT_EQ(utf8(namespaceUri.getString()), row[way < 2 ? 1 : 3]) << way;
            EXPECT_EQ(utf8(localName.getString()), row[2]) << way;
        }
    }
}

TEST(LumXmlUtil, passesErrorsOn) {
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
