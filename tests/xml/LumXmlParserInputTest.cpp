// The life of a parser: opening inputs, accessors out of place, reuse and failing streams.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/ExpectError.h"
#include "support/ResourceLibrary.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

constexpr const char* checkStream = "LumCommon::XmlParserImpl::checkStream";

TEST(LumXmlParserInput, namesItsEventsAndItself) {
    EXPECT_EQ(utf8(LumXmlParser::getEventTypeStr(LumXmlParser::START_DOCUMENT)), "START_DOCUMENT");
    for (const int i : {-1, 11, 1000}) EXPECT_EQ(utf8(LumXmlParser::getEventTypeStr(i)), "");
    EXPECT_EQ(utf8(LumXmlUtil::createXmlParser()->getTypeName()), "XmlParserImpl");
}

TEST(LumXmlParserInput, hasSixFeaturesThatAreOff) {
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    for (int i = -1; i <= 6; ++i) {
        const auto feature = static_cast<LumXmlParser::Feature>(i);
        EXPECT_FALSE(parser->getFeature(feature)) << i;
        parser->setFeature(feature, true);
        EXPECT_EQ(parser->getFeature(feature), i >= 0 && i < 6) << i;
        parser->setFeature(feature, false);
        EXPECT_FALSE(parser->getFeature(feature)) << i;
    }
}

TEST(LumXmlParserInput, isAtItsEndWithoutInput) {
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    EXPECT_EQ(parser->getEventType(), LumXmlParser::START_DOCUMENT);
    EXPECT_EQ(getPosition(*parser), (Position{-1, -1}));
    EXPECT_EQ(utf8(parser->getPositionDescription()), "START_DOCUMENT.");
    EXPECT_EQ(parser->getDepth(), 0);
    EXPECT_EQ(parser->getAttributeCount(), -1);
    EXPECT_EQ(utf8(parser->getText()), "");
    EXPECT_EQ(utf8(parser->getInputEncoding()), "");
    parser->closeStream();
    EXPECT_EQ(parser->next(), LumXmlParser::END_DOCUMENT);
    EXPECT_EQ(parser->next(), LumXmlParser::END_DOCUMENT);
}

TEST(LumXmlParserInput, refusesEmptyAndFailedStreams) {
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    PieceStream empty("");
    expectError(0x1004, "Unexpected end of input stream.", checkStream,
                [&] { parser->setInput(empty, UnicodeString(), UnicodeString()); });
    std::ifstream missing("no/such/file");
    expectError(0x1006, "Input stream error.", checkStream,
                [&] { parser->setInput(missing, UnicodeString(), UnicodeString()); });
    PieceStream broken("<a/>");
    broken.setstate(std::ios::badbit);
    expectError(0x1006, "Input stream error.", checkStream,
                [&] { parser->setInput(broken, UnicodeString(), UnicodeString()); });
    for (const auto exceptions : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
        PieceStream throwing("");
        throwing.exceptions(exceptions);
        expectError(0x1004, "Unexpected end of input stream.", checkStream,
                    [&] { parser->setInput(throwing, UnicodeString(), UnicodeString()); });
        PieceStream failing("<a/>");
        failing.getBuffer().failAfter(0);
        failing.exceptions(exceptions);
        expectError(0x1006, "Input stream error.", checkStream,
                    [&] { parser->setInput(failing, UnicodeString(), UnicodeString()); });
    }
    PieceStream good("<a/>");
    parser->setInput(good, UnicodeString(), UnicodeString());
    EXPECT_EQ(parser->next(), LumXmlParser::START_TAG);
}

TEST(LumXmlParserInput, doesNotThrowAgainWhatTheStreamHasThrown) {
    PieceStream in("<a><b/></a>", 1);
    const LumPtr<LumXmlParser> parser = openParser(in);
    parser->next();
    in.exceptions(std::ios::badbit);
    EXPECT_THROW(in.setstate(std::ios::badbit), std::ios::failure);
    EXPECT_THROW(parser->next(), LumError);
}

// A stream that breaks in the middle ends there; what it throws stays inside.
TEST(LumXmlParserInput, endsWhereTheStreamFails) {
    const std::string document = "<a b='1'>text<!--c--><![CDATA[d]]></a>";
    for (std::size_t bytes = 1; bytes < document.size(); ++bytes) {
        for (const std::size_t pieceBytes : {std::size_t{1}, wholeInput}) {
            PieceStream in(document, pieceBytes);
            in.getBuffer().failAfter(bytes);
            const LumPtr<LumXmlParser> parser = openParser(in);
            bool failed = false;
            try {
                while (parser->next() != LumXmlParser::END_DOCUMENT) {
                }
            } catch (const LumError& error) {
                failed = true;
                EXPECT_TRUE((error.code & 0xFF00) == 0x1800 || error.code == 0x1006) << error.code;
            }
            EXPECT_TRUE(failed) << bytes;
        }
    }
}

TEST(LumXmlParserInput, saysNoToAccessorsOutOfPlace) {
    const std::string notAllowed = "SYSTEM ERROR: Cannot set a value on node type.";
    const std::string noIndex = "SYSTEM ERROR: LumErrorCodeLumLIB";
    const std::string source = "LumCommon::XmlParserImpl::";
    PieceStream in("<a b='1'>x<![CDATA[y]]>&z;<?p q?><!--c--></a>\n");
    const LumPtr<LumXmlParser> parser = openParser(in);
    const LumName name(fromUtf8("b"));
    for (LumXmlParser::EventType type = LumXmlParser::START_DOCUMENT;; type = parser->nextToken()) {
        SCOPED_TRACE(utf8(LumXmlParser::getEventTypeStr(type)));
        EXPECT_EQ(parser->getEventType(), type);
        const bool isTag = type == LumXmlParser::START_TAG || type == LumXmlParser::END_TAG;
        const bool isText =
            type == LumXmlParser::TEXT || type == LumXmlParser::CDSECT || type == LumXmlParser::IGNORABLE_WHITESPACE;
        EXPECT_EQ(parser->getName().isNull(), !isTag && type != LumXmlParser::ENTITY_REF);
        EXPECT_TRUE(parser->getPrefix().isNull());
        EXPECT_TRUE(parser->getNamespace().isNull());
        if (isText) {
            parser->isWhitespace();
        } else {
            expectError(0x80B, notAllowed, source + "isWhitespace", [&] { parser->isWhitespace(); });
        }
        if (type == LumXmlParser::START_TAG) {
            EXPECT_FALSE(parser->isEmptyElementTag());
            EXPECT_EQ(parser->getAttributeCount(), 1);
            EXPECT_EQ(utf8(parser->getAttributeValue(LumName(), name)), "1");
            EXPECT_EQ(utf8(parser->getText()), "");
        } else {
            expectError(0x80B, notAllowed, source + "isEmptyElementTag", [&] { parser->isEmptyElementTag(); });
            EXPECT_EQ(parser->getAttributeCount(), -1);
            expectError(0x804, noIndex, source + "getAttributeValue",
                        [&] { parser->getAttributeValue(LumName(), name); });
        }
        for (const int index : {-1, 1, type == LumXmlParser::START_TAG ? 2 : 0, 0x7FFFFFFF}) {
            expectError(0x804, noIndex, source + "getAttributeNamespace",
                        [&] { parser->getAttributeNamespace(index); });
            expectError(0x804, noIndex, source + "getAttributeName", [&] { parser->getAttributeName(index); });
            expectError(0x804, noIndex, source + "getAttributePrefix", [&] { parser->getAttributePrefix(index); });
            expectError(0x804, noIndex, source + "getAttributeValue", [&] { parser->getAttributeValue(index); });
        }
        if (type == LumXmlParser::END_DOCUMENT) break;
    }
    EXPECT_EQ(parser->nextToken(), LumXmlParser::END_DOCUMENT) << "the end is not left again";
}

TEST(LumXmlParserInput, startsAnewWithEachInput) {
    PieceStream first("<?xml version='1.0' encoding='ISO-8859-1'?><p:a xmlns:p='u' b='1'><c>x");
    const LumPtr<LumXmlParser> parser =
        openParser(first, {.baseUri = "http://host.example/first/", .entities = {{"e", "1"}}});
    for (int i = 0; i < 3; ++i) parser->next();
    EXPECT_EQ(parser->getDepth(), 2);
    EXPECT_EQ(utf8(parser->getBaseUri()), "http://host.example/first/");
    EXPECT_EQ(utf8(parser->getPositionDescription()), "TEXT, 'http://host.example/first/', Line 1, Col 69.");
    PieceStream second("<p:a xmlns:p='v'/>");
    parser->setInput(second, UnicodeString(), UnicodeString());
    EXPECT_EQ(parser->getEventType(), LumXmlParser::START_DOCUMENT);
    EXPECT_EQ(getPosition(*parser), (Position{-1, -1}));
    EXPECT_EQ(parser->getDepth(), 0);
    EXPECT_EQ(utf8(parser->getInputEncoding()), "");
    EXPECT_EQ(utf8(parser->getBaseUri()), "");
    EXPECT_TRUE(parser->getNamespace(LumName(fromUtf8("p"))).isNull());
    EXPECT_EQ(parser->getAttributeCount(), -1);
    EXPECT_EQ(utf8(parser->getText()), "");
    parser->next();
    EXPECT_EQ(describe(*parser), "START_TAG 1 {v}p:a {http://www.w3.org/2000/xmlns/}xmlns:p=\"v\" /");
    EXPECT_EQ(utf8(parser->getPositionDescription()), "START_TAG, Line 1, Col 17.");
    EXPECT_EQ(utf8(parser->getInputEncoding()), "UTF-8");
}

TEST(LumXmlParserInput, letsGoOfTheStreamWhenToldTo) {
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    {
        PieceStream in("<a>x</a>");
        parser->setInput(in, UnicodeString(), UnicodeString());
        parser->next();
        parser->closeStream();
    }
    // The stream is gone. What had been looked at may still come; then the input ends in the open element.
    expectError(0x1801, "Missing end tag.\nSTART_TAG, Line 1, Col 2.", "LumCommon::XmlParserImpl",
                [&] { parser->next(); });
}

TEST(LumXmlParserInput, isBackInTheDocumentWhenClosedInAnEntity) {
    ResourceLibrary library;
    library.add("x.ent", "\n\n<b c='&y;'/>");
    PieceStream in("<!DOCTYPE a [<!ENTITY x SYSTEM 'x.ent'>]>\n<a>&x;</a>");
    const LumPtr<LumXmlParser> parser = openParser(in, {.baseUri = library.getBase(), .entities = {{"y", "z"}}});
    for (const char* event : {"START_TAG 1 a", "TEXT 1 \"\\u000A\\u000A\" ws", "START_TAG 2 b c=\"z\" /"}) {
        parser->next();
        EXPECT_EQ(describe(*parser), event);
    }
    parser->closeStream();
    EXPECT_EQ(utf8(parser->getPositionDescription()), "START_TAG, '" + library.getBase() + "', Line 2, Col 6.");
}

/// A file that is removed again.
class TempFile {
public:
    explicit TempFile(const std::string& bytes) {
        const char* folder = std::getenv("TMPDIR");
        path_ = std::filesystem::path(folder ? folder : "/tmp") / ("lum-xml-" + std::to_string(getpid()) + ".xml");
        std::ofstream(path_, std::ios::binary) << bytes;
    }
    ~TempFile() { std::filesystem::remove(path_); }
    std::string getUri() const { return "file://" + path_.string(); }
    std::string getFolder() const { return path_.parent_path().string() + "/"; }

private:
    std::filesystem::path path_;
};

TEST(LumXmlParserInput, opensAFileByItsUri) {
    const TempFile file("<a>\n<b></a>");
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    for (int round = 0; round < 2; ++round) {  // also again, in place of the first
        parser->setInput(fromUtf8(file.getUri()), UnicodeString(), UnicodeString());
        EXPECT_EQ(utf8(parser->getBaseUri()), file.getFolder()) << "the base is a local path";
        EXPECT_EQ(utf8(parser->getPositionDescription()), "START_DOCUMENT, '" + file.getUri() + "'.");
        parser->next();
        EXPECT_EQ(utf8(parser->getPositionDescription()), "START_TAG, '" + file.getUri() + "', Line 1, Col 2.");
    }
    parser->next();
    parser->next();
    expectParserError(0x1806, "End tag 'a' does not match the start tag 'b'.",
                      "END_TAG, '" + file.getUri() + "', Line 2, Col 7.", [&] { parser->next(); });
    parser->setInput(fromUtf8(file.getUri()), UnicodeString(), fromUtf8("http://host.example/x/y"));
    EXPECT_EQ(utf8(parser->getBaseUri()), "http://host.example/x/y");
}

TEST(LumXmlParserInput, saysWhatItCannotOpen) {
    const std::string uri = "file:///no/such/folder/a.xml";
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    expectError(0x1003, "Cannot open file: " + uri, "LumCommon::XmlParserImpl::setInput",
                [&] { parser->setInput(fromUtf8(uri), UnicodeString(), UnicodeString()); });
    parser->setFeature(LumXmlParser::FEATURE_BUILTIN_ENCODINGS_ONLY, true);
    expectParserError(0x1835, "Unknown or unsupported encoding: EUC-JP.", "START_DOCUMENT.",
                      [&] { parser->setInput(fromUtf8(uri), u"EUC-JP", UnicodeString()); });
    const TempFile empty("");
    expectError(0x1004, "Unexpected end of input stream.", checkStream,
                [&] { parser->setInput(fromUtf8(empty.getUri()), UnicodeString(), UnicodeString()); });
    EXPECT_EQ(parser->next(), LumXmlParser::END_DOCUMENT);
}

}  // namespace
