#include <gtest/gtest.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <support/Utf8.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace {

using namespace LumCommon;
using LumTest::utf8;

#define FO "http://www.w3.org/1999/XSL/Format"
#define XSLT "http://www.w3.org/1999/XSL/Transform"

struct RootCase {
    const char *fault, *document, *namespaceUri, *localName, *stylesheetNamespace;
};
constexpr RootCase rootCases[] = {
    {"no namespace", "<a/>", "", "a", ""},
    {"prefix taken for the name", "<p:a xmlns:p='urn:x'/>", "urn:x", "a", "urn:x"},
    {"stops before the root", "<?xml version='1.0'?><!-- <x/> --><?p <y/>?>\n<a>", "", "a", ""},
    {"stops at a document type", "<!DOCTYPE a [<!ENTITY e '<y/>'>]><a>", "", "a", ""},
    {"reads an external DTD", "<!DOCTYPE a SYSTEM 'no/such/file.dtd'><a/>", "", "a", ""},
    {"wants prefixes declared", "<a q:b='&undefined;'/>", "", "a", ""},
    {"wants the encoding known", "<?xml version='1.0' encoding='x-nobody-knows'?><a/>", "", "a", ""},
    {"no root", "<!-- nothing -->", "", "", ""},
    {"formatting objects", "<fo:root xmlns:fo='" FO "' version='1.0'/>", FO, "root", FO},
    {"simplified stylesheet", "<root xmlns='" FO "' xmlns:t='" XSLT "' t:version='1.0' a='b'/>", FO, "root", XSLT},
    {"another attribute of XSLT", "<root xmlns='" FO "' xmlns:t='" XSLT "' t:use='1.0'/>", FO, "root", FO},
    {"another element of formatting objects", "<block xmlns='" FO "' xmlns:t='" XSLT "' t:version='1.0'/>", FO, "block",
     FO},
};

/// The shared name table stays alive, so that names outlive the parsers that met them.
class LumXmlUtilTest : public testing::Test {
protected:
    void SetUp() override { LumNameTable::addRefSharedNameTable(); }
    void TearDown() override {
        std::remove(path_.c_str());
        LumNameTable::releaseSharedNameTable();
    }
    UnicodeString fileOf(const char* document) const {
        std::ofstream(path_, std::ios::binary) << document;
        return UnicodeString::fromUTF8(path_);
    }
    const std::string path_ = testing::TempDir() + "lum root " + std::to_string(getpid()) + ".xml";
};

TEST_F(LumXmlUtilTest, tellsTheRootOfStreamsAndFiles) {
    for (const RootCase& c : rootCases) {
        SCOPED_TRACE(c.fault);
        for (const bool isFile : {false, true}) {
            std::istringstream in(c.document);
            const UnicodeString uri = fileOf(c.document);
            LumName localName(NAME_block);
            LumName namespaceUri =
                isFile ? LumXmlUtil::getRootName(localName, uri) : LumXmlUtil::getRootName(localName, in);
            EXPECT_EQ(utf8(namespaceUri.getString()), c.namespaceUri);
            EXPECT_EQ(utf8(localName.getString()), c.localName);

            in.clear();
            in.seekg(0);
            localName = NAME_block;
            namespaceUri = isFile ? LumXmlUtil::getXSLStylesheetNamespace(localName, uri)
                                  : LumXmlUtil::getXSLStylesheetNamespace(localName, in);
            EXPECT_EQ(utf8(namespaceUri.getString()), c.stylesheetNamespace);
            EXPECT_EQ(utf8(localName.getString()), c.localName);
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
    const auto codeOf = [](auto action) -> unsigned {
        try {
            action();
        } catch (const LumError& e) {
            return e.code;
        }
        return 0;
    };
    LumName localName(NAME_block);
    std::istringstream empty, broken("<a b='1' b='2'/>");
    EXPECT_EQ(codeOf([&] { LumXmlUtil::getRootName(localName, empty); }), 0x1004u);
    EXPECT_TRUE(localName.isNull()) << "a name from before the call survives an error";
    EXPECT_EQ(codeOf([&] { (void)LumXmlUtil::getRootParser(broken); }) >> 8, 0x18u);
    EXPECT_EQ(codeOf([&] { LumXmlUtil::getXSLStylesheetNamespace(localName, u"no/such/file.xml"); }), 0x1003u);
}

TEST_F(LumXmlUtilTest, qualifiesNamesForMessages) {
    struct Case {
        const char *fault, *namespaceUri, *localName, *expected;
    };
    static constexpr Case cases[] = {
        {"braces without a namespace", "", "a", "a"},
        {"ordinary namespace", "urn:x", "a", "{urn:x}:a"},
        {"xml", "http://www.w3.org/XML/1998/namespace", "lang", "xml:lang"},
        {"default declaration doubled", "http://www.w3.org/2000/xmlns/", "xmlns", "xmlns"},
        {"declaration of a prefix", "http://www.w3.org/2000/xmlns/", "p", "xmlns:p"},
        {"only an exact match", "http://www.w3.org/2000/xmlns", "p", "{http://www.w3.org/2000/xmlns}:p"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(utf8(LumXmlUtil::makeNSQNameStr(c.namespaceUri, c.localName)), c.expected);
    }
}

}  // namespace
