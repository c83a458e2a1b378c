// The life of a parser: opening inputs, accessors out of place, reuse and failing streams.

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <set>
#include <sstream>

#include "support/ExpectError.h"
#include "support/Recipe.h"
#include "support/ResourceLibrary.h"
#include "support/Sweeps.h"
#include "support/TempFolder.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

constexpr const char* checkStream = "LumCommon::XmlParserImpl::checkStream";

void setInput(LumXmlParser& parser, std::istream& in) { parser.setInput(in, UnicodeString(), UnicodeString()); }

TEST(LumXmlParserInput, answersAsTheSessionsTell) {
    LumPtr<LumXmlParser> parser;
    std::unique_ptr<PieceStream> in;
    UnicodeString base;
    ResourceLibrary library;
    const TempFolder folder;
    for (std::vector<std::string>& row : readEscapedRows("xml/sessions.txt", 3)) {
        for (std::string& field : row)
            field = fillIn(field, {{"library", library.getBase()}, {"folder", folder.getPath()}});
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
            if (command == "nameOf") told << utf8(LumXmlParser::getEventTypeStr(number()));
            if (command == "toggle") {
                for (const bool isOn : {true, false}) {
                    parser->setFeature(static_cast<LumXmlParser::Feature>(number()), isOn);
                    told << parser->getFeature(static_cast<LumXmlParser::Feature>(number()));
                }
            }
            if (command == "isOn") told << parser->getFeature(static_cast<LumXmlParser::Feature>(number()));
            if (command == "define") parser->defineEntityReplacementText(named(first), fromUtf8(second));
            if (command == "input" || command == "root") {
                auto next = std::make_unique<PieceStream>(argument);
                if (command == "root") {
                    parser = LumXmlUtil::getRootParser(*next, u"Text/HTML", u".HTM");
                } else {
                    parser->setInput(*next, UnicodeString(), base);
                }
                in = std::move(next);
            }
            if (command == "resource") library.add(first, second);
            if (command == "file") writeFile(folder.getPath() + first, second);
            if (command == "open") parser->setInput(fromUtf8(second), fromUtf8(first), base);
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
            told << describe(error);
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

}  // namespace
