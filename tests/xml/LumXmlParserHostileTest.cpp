// Inputs made to exhaust the reader: depth, width, length, and everything that ends too early.

#include <gtest/gtest.h>

#include <ctime>

#include "support/PieceStream.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

std::string repeat(std::string_view unit, std::size_t times) {
    std::string text;
    text.reserve(unit.size() * times);
    for (std::size_t i = 0; i < times; ++i) text += unit;
    return text;
}

struct Counts {
    int startTags = 0;
    int deepest = 0;
    int texts = 0;
    std::int64_t textUnits = 0;
    bool ended = false;
};

Counts countEvents(std::istream& in, Pull how = Pull::events) {
    Counts counts;
    const LumPtr<LumXmlParser> parser = openParser(in);
    for (;;) {
        const LumXmlParser::EventType type = pull(*parser, how);
        if (type == LumXmlParser::START_TAG) ++counts.startTags;
        if (type == LumXmlParser::TEXT) {
            ++counts.texts;
            counts.textUnits += parser->getText().length();
        }
        parser->getLineNumber();  // as the loader of documents asks
        counts.deepest = std::max(counts.deepest, parser->getDepth());
        if (type == LumXmlParser::END_DOCUMENT) break;
    }
    counts.ended = parser->getDepth() == 0;
    return counts;
}

TEST(LumXmlParserHostile, aMillionLevels) {
    constexpr int levels = 1000000;
    PieceStream in(repeat("<a>", levels) + repeat("</a>", levels));
    const Counts counts = countEvents(in);
    EXPECT_EQ(counts.startTags, levels);
    EXPECT_EQ(counts.deepest, levels);
    EXPECT_TRUE(counts.ended);
    // And let go of in the middle, with an error.
    PieceStream open(repeat("<p:a xmlns:p='u'>", levels / 10));
    EXPECT_THROW(countEvents(open), LumError);
}

struct LongRow {
    const char* construct;
    const char* before;
    const char* unit;
    const char* after;
};
constexpr LongRow longRows[] = {
    {"element name", "<", "n", "/>"},
    {"attribute value", "<a b='", "v", "'/>"},
    {"value of references", "<a b='", "&#38;", "'/>"},
    {"text of references", "<a>", "&amp;", "</a>"},
    {"value of line ends", "<a b='", "\r\n", "'/>"},
    {"white space in a tag", "<a ", " ", "/>"},
    {"comment of dashes", "<!--", "- ", "--><a/>"},
    {"instruction of question marks", "<?p ", "? ", "?><a/>"},
    {"section of brackets", "<a><![CDATA[", "]", "]]></a>"},
    {"text of brackets", "<a>", "]", "</a>"},
    {"text of carriage returns", "<a>", "\r", "</a>"},
    {"skipped section", "<![X[", "]]", "]]><a/>"},
    {"digits of a reference", "<a>&#", "0", "65;</a>"},
};

// Each in small pieces too: what is read again at every piece takes quadratic time there.
TEST(LumXmlParserHostile, longConstructs) {
    for (const LongRow& row : longRows) {
        SCOPED_TRACE(row.construct);
        for (const std::size_t pieceBytes : {std::size_t{7}, wholeInput}) {
            PieceStream in(row.before + repeat(row.unit, 1000000) + row.after, pieceBytes);
            EXPECT_TRUE(countEvents(in, Pull::tokens).ended);
        }
    }
}

/// Time of the processor, not of the clock: other tests run at the same time.
double parseSeconds(const std::string& document) {
    double best = 1e9;
    for (int run = 0; run < 3; ++run) {
        PieceStream in(document);
        const std::clock_t begin = std::clock();
        EXPECT_TRUE(countEvents(in).ended);
        best = std::min(best, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return best;
}

// Comparing each attribute with every other would take four times as long for twice as many, and so long for so many.
// A hash that multiplies and shifts lets an author cancel one word's difference with the next word's, under any seed.
TEST(LumXmlParserHostile, namesMadeToShareAHash) {
    constexpr unsigned blocks = 14;
    const auto makeDocument = [](const std::string& last, const std::string& nextToLast) {
        std::string document = "<r>";
        for (unsigned bits = 0; bits < 1u << blocks; ++bits) {
            document += '<';
            for (unsigned block = 0; block < blocks; ++block) {
                const bool isChanged = (bits >> block) & 1;
                document += isChanged ? "aaa" + last + "aa" + nextToLast + last : "aaaaaaaa";
            }
            document += "/>";
        }
        return document + "</r>";
    };
    const double ordinary = parseSeconds(makeDocument("\xE8\x81\xA2", "f"));
    EXPECT_LT(parseSeconds(makeDocument("\xE8\x81\xA1", "e")), 2.5 * ordinary + 0.2);
}

// Looking for the input under all the texts that are being read would take four times as long for twice as many.
TEST(LumXmlParserHostile, elementsInNestedEntities) {
    const auto makeDocument = [](int entities) {
        std::string document = "<!DOCTYPE a [";
        for (int i = 0; i < entities; ++i) {
            document += "<!ENTITY e" + std::to_string(i) + " '<b/>&e" + std::to_string(i + 1) + ";x'>";
        }
        return document + "<!ENTITY e" + std::to_string(entities) + " ''>]><a>&e0;</a>";
    };
    const double half = parseSeconds(makeDocument(25000));
    EXPECT_LT(parseSeconds(makeDocument(50000)), 3.2 * half + 0.2);
}

TEST(LumXmlParserHostile, aHundredThousandAttributes) {
    const auto makeTag = [](int attributes, const char* prefix) {
        std::string tag = "<a xmlns:p='u' xmlns:q='u2'";
        for (int i = 0; i < attributes; ++i) tag += std::string(" ") + prefix + "a" + std::to_string(i) + "='u'";
        return tag;
    };
    for (const char* prefix : {"", "p:", "xmlns:"}) {
        SCOPED_TRACE(prefix);
        const double half = parseSeconds(makeTag(50000, prefix) + "/>");
        const double full = parseSeconds(makeTag(100000, prefix) + "/>");
        EXPECT_LT(full, 3.2 * half + 0.2);
        // The duplicate is still found, wherever the first one stands.
        for (const char* again : {"a0", "a99999"}) {
            PieceStream in(makeTag(100000, prefix) + " " + prefix + again + "=''/>");
            const LumPtr<LumXmlParser> parser = openParser(in);
            try {
                parser->next();
                ADD_FAILURE() << "nothing thrown";
            } catch (const LumError& error) {
                EXPECT_EQ(error.code, 0x1808u);
            }
        }
    }
}

const std::string everyConstruct =
    "<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\r\n<!--c - d--><?p q?>\n"
    "<p:r xmlns:p='u' xmlns='v' a=\"1 &lt;\t&#65;&#x1F600;'\" p:a='2'>t\xC3\xA9xt &amp; ]] &#10;"
    "<b c='d' /><![CDATA[ <x> ]] ]]><![IGNORE[ no ]]><e\n f='\xE3\x81\x82'\n>\xF0\x9F\x98\x80\r</e></p:r>\n<!--end-->";

TEST(LumXmlParserHostile, everyPrefixOfAGoodDocument) {
    ASSERT_EQ(recordEvents(everyConstruct, Pull::events).back().event, "END_DOCUMENT 0");
    for (std::size_t bytes = 1; bytes <= everyConstruct.size(); ++bytes) {
        const std::string cut = everyConstruct.substr(0, bytes);
        for (const Pull how : {Pull::events, Pull::tokens}) {
            const std::vector<EventRecord> whole = recordEvents(cut, how);
            const bool hasRoot = cut.find("</p:r>") != std::string::npos;
            const bool hasStartedRoot = cut.find("<p") != std::string::npos;
            if (hasStartedRoot && !hasRoot) {
                EXPECT_TRUE(whole.back().event.starts_with("error ")) << cut;
            }
            for (const std::size_t pieceBytes : {std::size_t{1}, std::size_t{2}, std::size_t{3}})
                EXPECT_EQ(recordEvents(cut, how, {}, pieceBytes), whole) << cut;
        }
    }
}

}  // namespace
