// The life of a parser: opening inputs, accessors out of place, reuse and failing streams.

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <set>
#include <sstream>

#include "support/ExpectError.h"
#include "support/Recipe.h"
#include "support/ResourceLibrary.h"
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

/// Resources whose reading fails after so many bytes.
class FailingLibrary : public LumCommon::LumUriReferenceResolver {
public:
    FailingLibrary(const std::string& bytes, std::size_t failAfter) : bytes_(bytes), failAfter_(failAfter) {}
    std::istream* getStream(const UnicodeString&) override {
        auto in = std::make_unique<PieceStream>(bytes_);
        in->getBuffer().failAfter(failAfter_);
        return in.release();
    }

private:
    std::string bytes_;
    std::size_t failAfter_;
};

/// The code and the place of the error that reading ends with.
std::string endOf(std::istream& in, Pull how, void (*onError)(const LumError&, void*)) {
    try {
        const LumPtr<LumXmlParser> parser = openParser(in, {.onError = onError});
        while (pull(*parser, how) != LumXmlParser::END_DOCUMENT) {
        }
    } catch (const LumError& error) {
        const std::string message = utf8(error.getMessage());
        return hexadecimal(error.code) + (message.find(", Line ") == std::string::npos ? "" : " with the position");
    }
    return "the end of the document";
}

// What could not be read is not the end, wherever it was to come from and whoever listens.
TEST(LumXmlParserInput, aFailedReadIsAnErrorWhereverItComes) {
    const std::string document = "<?xml version='1.0' encoding='ENCODING'?><a b='1'>text<!--c--><![CDATA[d]]></a> ";
    const std::string start = "<!--a-->" + std::string(140000, ' '), whole = start + "<!--b-->";
    const auto acceptAll = [](const LumError&, void*) {};
    for (const Pull how : {Pull::events, Pull::tokens}) {
        for (void (*onError)(const LumError&, void*) :
             {static_cast<void (*)(const LumError&, void*)>(nullptr), +acceptAll}) {
            for (const std::string encoding : {"UTF-8", "windows-1252"}) {
                std::string converted = document;
                converted.replace(converted.find("ENCODING"), 8, encoding);
                for (std::size_t size = 1; size <= converted.size(); ++size) {
                    PieceStream in(converted, size % 3 == 0 ? 1 : wholeInput);
                    in.getBuffer().failAfter(size);
                    EXPECT_EQ(endOf(in, how, onError), "1006 with the position") << encoding << " after " << size;
                }
            }
            FailingLibrary library(whole, start.size());
            const auto* const previous = LumCommon::LumUri::setUriReferenceResolver(&library);
            EXPECT_EQ(previous, nullptr);
            for (const std::string inside :
                 {"<!DOCTYPE a [<!ENTITY % e SYSTEM 'my:e'> %e;]><a/>", "<!DOCTYPE a SYSTEM 'my:e'><a/>",
                  "<!DOCTYPE a [<!ENTITY e SYSTEM 'my:e'>]><a>&e;</a>"}) {
                if (how == Pull::tokens && inside.find("&e;") != std::string::npos) continue;  // does not open it
                PieceStream in(inside);
                EXPECT_EQ(endOf(in, how, onError), "1006 with the position") << inside;
            }
            PieceStream forgiven("<!DOCTYPE a [<!ENTITY % e SYSTEM 'my:e'> %e;<!ENTITY h 'h'>]><a>&h;</a>");
            const LumPtr<LumXmlParser> parser =
                openParser(forgiven, {.features = {LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES}});
            while (parser->next() != LumXmlParser::TEXT) {
            }
            EXPECT_EQ(utf8(parser->getText()), "h") << "what is forgiven takes more with it than itself";
            LumCommon::LumUri::setUriReferenceResolver(nullptr);
        }
    }
}

}  // namespace
