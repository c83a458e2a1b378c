// The life of a parser: opening inputs, accessors out of place, reuse and failing streams.

#include <gtest/gtest.h>

#include <fstream>

#include "support/ExpectError.h"
#include "support/ResourceLibrary.h"
#include "support/Sweeps.h"
#include "support/TempFolder.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

constexpr const char* checkStream = "LumCommon::XmlParserImpl::checkStream";

void setInput(LumXmlParser& parser, std::istream& in) { parser.setInput(in, UnicodeString(), UnicodeString()); }

TEST(LumXmlParserInput, hasNamesForElevenEventsAndSixFeaturesThatAreOff) {
    EXPECT_EQ(utf8(LumXmlParser::getEventTypeStr(LumXmlParser::START_DOCUMENT)), "START_DOCUMENT");
    for (const int i : {-1, 11, 1000}) EXPECT_EQ(utf8(LumXmlParser::getEventTypeStr(i)), "");
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
    const auto expectRefused = [&](unsigned code, const char* message, std::istream& in) {
        expectError(code, message, checkStream, [&] { setInput(*parser, in); });
    };
    std::ifstream missing("no/such/file");
    expectRefused(0x1006, "Input stream error.", missing);
    PieceStream broken("<a/>");
    broken.setstate(std::ios::badbit);
    expectRefused(0x1006, "Input stream error.", broken);
    for (const auto exceptions : {std::ios::goodbit, std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
        PieceStream empty(""), failing("<a/>");
        empty.exceptions(exceptions);
        expectRefused(0x1004, "Unexpected end of input stream.", empty);
        failing.getBuffer().failAfter(0);
        failing.exceptions(exceptions);
        expectRefused(0x1006, "Input stream error.", failing);
    }
    PieceStream good("<a/>");
    setInput(*parser, good);
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
    forEachPrefix(document, [&](const std::string& cut) {
        for (const std::size_t pieceBytes : {std::size_t{1}, wholeInput}) {
            PieceStream in(document, pieceBytes);
            in.getBuffer().failAfter(std::max<std::size_t>(cut.size(), 1));
            const LumPtr<LumXmlParser> parser = openParser(in);
            try {
                while (parser->next() != LumXmlParser::END_DOCUMENT) {
                }
                ADD_FAILURE() << "nothing thrown";
            } catch (const LumError& error) {
                EXPECT_TRUE((error.code & 0xFF00) == 0x1800 || error.code == 0x1006) << error.code;
            }
        }
    });
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
    setInput(*parser, second);
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
        setInput(*parser, in);
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

// Whoever prepares a parser may define entities before there is an input; they hold for the document that comes first.
TEST(LumXmlParserInput, takesEntitiesForOneDocument) {
    for (const bool isDefinedFirst : {true, false}) {
        const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
        const LumName e(fromUtf8("e"));
        if (isDefinedFirst) parser->defineEntityReplacementText(e, u"1&gt;");
        PieceStream first("<a>&e;&lt;</a>"), second("<a>&e;</a>"), third("<a>&lt;</a>"), fourth("<a>&lt;</a>");
        setInput(*parser, first);
        if (!isDefinedFirst) parser->defineEntityReplacementText(e, u"1&gt;");
        parser->next();
        parser->next();
        EXPECT_EQ(describe(*parser), "TEXT 1 \"1><\"");
        setInput(*parser, second);
        parser->next();
        expectParserError(0x181E, "Reference to undefined entity: &e;", "ENTITY_REF, Line 1, Col 5.",
                          [&] { parser->next(); });
        // A changed predefined entity does not change how many there are, and stays.
        setInput(*parser, third);
        parser->defineEntityReplacementText(LumCommon::NAME_lt, u"L");
        setInput(*parser, fourth);
        parser->next();
        parser->next();
        EXPECT_EQ(describe(*parser), "TEXT 1 \"L\"");
    }
}

TEST(LumXmlParserInput, opensAFileByItsUri) {
    const TempFolder folder;
    const std::string path = folder.getPath() + "a.xml", uri = "file://" + path;
    writeFile(path, "<a>\n<b></a>");
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    for (int round = 0; round < 2; ++round) {  // also again, in place of the first
        parser->setInput(fromUtf8(uri), UnicodeString(), UnicodeString());
        EXPECT_EQ(utf8(parser->getBaseUri()), folder.getPath()) << "the base is a local path";
        EXPECT_EQ(utf8(parser->getPositionDescription()), "START_DOCUMENT, '" + uri + "'.");
        parser->next();
        EXPECT_EQ(utf8(parser->getPositionDescription()), "START_TAG, '" + uri + "', Line 1, Col 2.");
    }
    parser->next();
    parser->next();
    expectParserError(0x1806, "End tag 'a' does not match the start tag 'b'.", "END_TAG, '" + uri + "', Line 2, Col 7.",
                      [&] { parser->next(); });
    parser->setInput(fromUtf8(uri), UnicodeString(), fromUtf8("http://host.example/x/y"));
    EXPECT_EQ(utf8(parser->getBaseUri()), "http://host.example/x/y");

    expectError(0x1003, "Cannot open file: " + uri + "x", "LumCommon::XmlParserImpl::setInput",
                [&] { parser->setInput(fromUtf8(uri + "x"), UnicodeString(), UnicodeString()); });
    parser->setFeature(LumXmlParser::FEATURE_BUILTIN_ENCODINGS_ONLY, true);
    expectParserError(0x1835, "Unknown or unsupported encoding: EUC-JP.", "START_DOCUMENT.",
                      [&] { parser->setInput(fromUtf8(uri + "x"), u"EUC-JP", UnicodeString()); });
    writeFile(path, "");
    expectError(0x1004, "Unexpected end of input stream.", checkStream,
                [&] { parser->setInput(fromUtf8(uri), UnicodeString(), UnicodeString()); });
    EXPECT_EQ(parser->next(), LumXmlParser::END_DOCUMENT);
}

}  // namespace
