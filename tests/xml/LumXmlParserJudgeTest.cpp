// Well-formed documents, read by this parser and by another one: both must tell the same elements, attributes and
// text. Out of the comparison stay what XML 1.0 leaves to XML 1.1 (the next-line character), and instructions
// without data, which this parser refuses.

#include <gtest/gtest.h>

#ifdef LUM_TEST_EXPAT
#include <expat.h>

#include <algorithm>
#include <random>

#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

/// The events in the words of both parsers: "{uri}name" for a start tag with its sorted attributes, "/{uri}name" for
/// an end tag, and joined text.
struct Story {
    std::vector<std::string> lines;
    std::string text;
    bool isWellFormed = false;

    void flush() {
        if (!text.empty()) lines.push_back("\"" + text + "\"");
        text.clear();
    }
    void start(const std::string& name, std::vector<std::string> attributes) {
        flush();
        std::sort(attributes.begin(), attributes.end());
        std::string line = name;
        for (const std::string& attribute : attributes) line += " " + attribute;
        lines.push_back(line);
    }
    void end(const std::string& name) {
        flush();
        lines.push_back("/" + name);
    }
};

std::string toBraces(const XML_Char* name) {
    const std::string text = name;
    const std::size_t separator = text.find('\x1F');
    return separator == std::string::npos ? text : "{" + text.substr(0, separator) + "}" + text.substr(separator + 1);
}

Story tellByExpat(const std::string& document) {
    Story story;
    const XML_Parser parser = XML_ParserCreateNS(nullptr, '\x1F');
    XML_SetUserData(parser, &story);
    XML_SetElementHandler(
        parser,
        [](void* data, const XML_Char* name, const XML_Char** pairs) {
            std::vector<std::string> attributes;
            for (; *pairs; pairs += 2) attributes.push_back(toBraces(pairs[0]) + "=\"" + pairs[1] + "\"");
            static_cast<Story*>(data)->start(toBraces(name), attributes);
        },
        [](void* data, const XML_Char* name) { static_cast<Story*>(data)->end(toBraces(name)); });
    XML_SetCharacterDataHandler(parser, [](void* data, const XML_Char* text, int size) {
        static_cast<Story*>(data)->text.append(text, static_cast<std::size_t>(size));
    });
    story.isWellFormed = XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return story;
}

Story tellByUs(const std::string& document, std::size_t pieceBytes) {
    Story story;
    PieceStream in(document, pieceBytes);
    try {
        const LumPtr<LumXmlParser> parser = openParser(in);
        LumXmlParser::EventType type = LumXmlParser::START_DOCUMENT;
        while ((type = parser->next()) != LumXmlParser::END_DOCUMENT) {
            const std::string name = showName(LumName(), parser->getName(), parser->getNamespace());
            if (type == LumXmlParser::TEXT) story.text += toUtf8(parser->getText());
            if (type == LumXmlParser::END_TAG) story.end(name);
            if (type != LumXmlParser::START_TAG) continue;
            std::vector<std::string> attributes;
            for (int i = 0; i < parser->getAttributeCount(); ++i) {
                if (parser->getAttributeNamespace(i) == LumName(LumCommon::NAME_NS_XMLNS)) continue;
                attributes.push_back(
                    showName(LumName(), parser->getAttributeName(i), parser->getAttributeNamespace(i)) + "=\"" +
                    toUtf8(parser->getAttributeValue(i)) + "\"");
            }
            story.start(name, attributes);
        }
        story.isWellFormed = true;
    } catch (const LumError& error) {
        story.lines.push_back(toUtf8(error.getMessage()));
    }
    return story;
}

/// Writes well-formed documents that hold every construct, the same ones in every run.
class Writer {
public:
    explicit Writer(unsigned seed) : random_(seed) {}

    std::string write() {
        out_ = pick({"", "<?xml version='1.0'?>", "<?xml version=\"1.0\" encoding='UTF-8' standalone='no' ?>\r\n"});
        // White space at the very start would leave the encoding open.
        if (!out_.empty()) hidden();
        element(0);
        hidden();
        return out_;
    }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    std::string pick(std::initializer_list<const char*> choices) { return choices.begin()[below(choices.size())]; }

    void hidden() { out_ += pick({"", " ", "\n", "<!---->", "<!-- < & - -> ]]> -->", "<?p q?>", "<?p ? < & ??\?>"}); }
    void text(bool isValue) {
        for (std::size_t n = below(5); n > 0; --n) {
            out_ += pick({"x",     "words ", "\n",         "\r\n",     "\r",           "\t",
                          "&amp;", "&lt;",   "&gt;",       "&quot;",   "&apos;",       "&#9;",
                          "&#10;", "&#13;",  "&#x10FFFF;", "\xC3\xA9", "\xE3\x81\x82", "\xF0\x9F\x98\x80",
                          "]",     "]]"});
            if (!isValue) out_ += pick({"", "", "", "<![CDATA[<&]] ]>]]>", "<![CDATA[]]>", "<!-- - -->", "'\""});
        }
    }
    void element(int depth) {
        const std::string prefix = pick({"", "", "p:", "q:"});
        const std::string name = prefix + pick({"a", "b", "long-name.1", "_\xC3\xA9"});
        out_ += "<" + name;
        // Both prefixes are always declared at the root and now and then again.
        if (depth == 0 || below(5) == 0) out_ += pick({" xmlns:p='u1'", "\n\txmlns:p=\"u2\""});
        if (depth == 0 || below(5) == 0) out_ += pick({" xmlns:q='u3'", " xmlns:q = 'u&amp;4'"});
        if (below(5) == 0) out_ += pick({" xmlns='d'", " xmlns=''", "  xmlns='e'"});
        for (const char* attribute : {"a", "p:a", "q:b", "xml:lang", "c"}) {
            if (below(3) != 0) continue;
            out_ += pick({" ", "\n", "\r\n  "}) + attribute + pick({"=", " = ", "\n="}) + "'";
            text(true);
            out_ += "'";
        }
        out_ += pick({"", " ", "\n"});
        if (depth > 0 && below(4) == 0) {
            out_ += "/>";
            return;
        }
        out_ += ">";
        text(false);
        for (std::size_t children = depth > 6 ? 0 : below(4); children > 0; --children) {
            element(depth + 1);
            text(false);
            if (below(4) == 0) hidden();
        }
        out_ += "</" + name + pick({">", " >", "\n>"});
    }

    std::mt19937 random_;
    std::string out_;
};

TEST(LumXmlParserJudge, agreesAboutWellFormedDocuments) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const std::string document = Writer(seed).write();
        const Story expected = tellByExpat(document);
        ASSERT_TRUE(expected.isWellFormed) << document;
        const Story story = tellByUs(document, seed % 3 == 0 ? 1 : seed % 3 == 1 ? 7 : wholeInput);
        ASSERT_EQ(story.lines, expected.lines) << document;
    }
}

}  // namespace

#else

TEST(LumXmlParserJudge, agreesAboutWellFormedDocuments) { GTEST_SKIP() << "built without a second parser"; }

#endif
