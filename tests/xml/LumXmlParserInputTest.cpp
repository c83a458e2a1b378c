// The life of a parser: opening inputs, accessors out of place, reuse and failing streams.

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <set>
#include <sstream>

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

TEST(LumXmlParserInput, answersAsTheSessionsTell) {
    LumPtr<LumXmlParser> parser;
    std::unique_ptr<PieceStream> in;
    UnicodeString base;
    for (const std::vector<std::string>& row : readEscapedRows("xml/sessions.txt", 3)) {
        SCOPED_TRACE(row[0] + ": " + row[2]);
        const std::size_t space = std::min(row[0].find(' '), row[0].size());
        const std::string command = row[0].substr(0, space),
                          argument = row[0].substr(std::min(space + 1, row[0].size()));
        const std::size_t split = argument.find_first_of(" =");
        const std::string first = argument.substr(0, split),
                          second = split == std::string::npos ? "" : argument.substr(split + 1);
        const auto named = [](const std::string& word) { return word == "-" ? LumName() : LumName(fromUtf8(word)); };
        const auto show = [](LumName name) { return name.isNull() ? "-" : utf8(name.getString()); };
        const auto number = [&] { return std::stoi(first); };
        const auto declared = [&] {
            std::set<std::string> bindings;
            for (int i = 0; i < parser->getNamespaceCount(number()); ++i)
                bindings.insert(show(parser->getNamespacePrefix(i)) + "=" + show(parser->getNamespaceUri(i)));
            for (const int i : {-1, static_cast<int>(bindings.size())})
                EXPECT_TRUE(parser->getNamespaceUri(i).isNull() && parser->getNamespacePrefix(i).isNull());
            std::string told;
            for (const std::string& binding : bindings) told += (told.empty() ? "" : " ") + binding;
            return told;
        };
        std::ostringstream told;
        try {
            if (command == "parser") parser = LumXmlUtil::createXmlParser();
            if (command == "base") base = fromUtf8(argument);
            if (command == "feature") parser->setFeature(readSetup(argument).features.front(), true);
            if (command == "define") parser->defineEntityReplacementText(named(first), fromUtf8(second));
            if (command == "input") {
                auto next = std::make_unique<PieceStream>(argument);
                parser->setInput(*next, UnicodeString(), base);
                in = std::move(next);
            }
            if (command == "type") parser->setStreamType(fromUtf8(first), fromUtf8(second));
            if (command == "kind")
                told << (parser->isXhtmlType() ? "xhtml" : "") << (parser->isHtmlType() ? "html" : "");
            if (command == "close" || command == "drop") parser->closeStream();
            if (command == "drop") in = nullptr;
            if (command == "next") parser->next();
            if (command == "token") parser->nextToken();
            if (command == "next" || command == "token" || command == "event") told << describe(*parser);
            if (command == "where") told << utf8(parser->getPositionDescription());
            if (command == "position") told << getPosition(*parser);
            if (command == "attributes") told << parser->getAttributeCount();
            if (command == "text") told << escape(parser->getText());
            if (command == "encoding") told << utf8(parser->getInputEncoding());
            if (command == "baseUri") told << utf8(parser->getBaseUri());
            if (command == "uriOf") told << show(parser->getNamespace(named(first)));
            if (command == "count") told << parser->getNamespaceCount(number());
            if (command == "declared") told << declared();
            if (command == "whitespace") told << parser->isWhitespace();
            if (command == "empty") told << parser->isEmptyElementTag();
            if (command == "name") told << show(parser->getName());
            if (command == "uriAt") told << show(parser->getAttributeNamespace(number()));
            if (command == "prefixAt") told << show(parser->getAttributePrefix(number()));
            if (command == "nameAt") told << show(parser->getAttributeName(number()));
            if (command == "valueAt") told << escape(parser->getAttributeValue(number()));
            if (command == "value") told << escape(parser->getAttributeValue(named(first), named(second)));
        } catch (const LumError& error) {
            told << std::hex << std::uppercase << error.code << ' ' << utf8(error.message) << " in "
                 << utf8(error.source);
        }
        EXPECT_EQ(told.str(), row[1]);
    }
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
