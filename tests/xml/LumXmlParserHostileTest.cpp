// Inputs made to exhaust the reader: depth, width, length, expansion, and everything that ends too early.

#include <gtest/gtest.h>
#include <lumcommon/names/NamespaceManager.h>

#include <cstdint>
#include <unordered_set>

#include "support/Repeat.h"
#include "support/Sweeps.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

TEST(LumXmlParserHostile, aMillionLevels) {
    const std::string deep = repeat("<a>", 1000000) + repeat("</a>", 1000000);
    EXPECT_TRUE(tell(deep) == deep);
    // And let go of in the middle, with an error.
    EXPECT_TRUE(tell(repeat("<p:a xmlns:p='u'>", 100000)).ends_with("!1801"));
}

// In small pieces: what is read again at every piece takes quadratic time there.
TEST(LumXmlParserHostile, longConstructsTakeLinearTime) {
    for (const std::vector<std::string>& row : readEscapedRows("xml/long.txt", 4)) {
        const auto read = [&](std::size_t size) {
            const std::string document = row[1] + repeat(row[2], size) + row[3];
            for (const std::size_t pieceBytes : {std::size_t{7}, wholeInput})
                EXPECT_EQ(recordEvents(document, Pull::tokens, {}, pieceBytes).back().event, "END_DOCUMENT 0");
        };
        expectLinearTime(row[0].c_str(), 30000, read);
    }
}

// A hash that multiplies and shifts lets an author cancel one word's difference with the next word's, under any seed.
TEST(LumXmlParserHostile, namesMadeToShareAHash) {
    constexpr unsigned blocks = 14;
    const auto secondsFor = [](const std::string& last, const std::string& nextToLast) {
        std::string document = "<r>";
        for (unsigned bits = 0; bits < 1u << blocks; ++bits) {
            document += '<';
            for (unsigned block = 0; block < blocks; ++block)
                document += (bits >> block) & 1 ? "aaa" + last + "aa" + nextToLast + last : "aaaaaaaa";
            document += "/>";
        }
        return secondsOf([&] { EXPECT_TRUE(tell(document + "</r>").ends_with("</r>")); });
    };
    EXPECT_LT(secondsFor("\xE8\x81\xA1", "e"), 2.5 * secondsFor("\xE8\x81\xA2", "f") + 0.2);
}

// Names are numbered as they come, so an author chooses what a table that hashes the numbers as they are makes of them.
TEST(LumXmlParserHostile, attributesMadeToShareABucket) {
    const LumPtr<LumCommon::NamespaceManager> holder(new LumCommon::NamespaceManager);  // of the names' numbers
    constexpr std::uint64_t count = 24000;
    std::vector<std::uint64_t> uris, names;
    for (std::uint64_t i = 0; i < count; ++i) uris.push_back(LumName(fromUtf8("u" + std::to_string(i))).getEnum());
    for (std::uint64_t i = 0; i < count; ++i) names.push_back(LumName(fromUtf8("n" + std::to_string(i))).getEnum());
    std::unordered_set<std::uint64_t> table;
    for (std::uint64_t i = 0; i < 3 * count / 2; ++i) table.insert(i);
    const std::uint64_t buckets = table.bucket_count();
    std::string declarations = "<a", crafted, harmless;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string prefix = "p" + std::to_string(i);
        declarations += " xmlns:" + prefix + "='u" + std::to_string(i) + "'";
        const std::uint64_t name = (2 * buckets - (uris[i] << 32) % buckets - names[0] % buckets) % buckets;
        if (name >= count) continue;
        crafted += " " + prefix + ":n" + std::to_string(name) + "=''";
        harmless += " " + prefix + ":n" + std::to_string(count - 1 - i) + "=''";
    }
    const auto secondsFor = [&](const std::string& attributes) {
        return secondsOf([&] { EXPECT_TRUE(tell(declarations + attributes + "/>").ends_with("</a>")); });
    };
    EXPECT_LT(secondsFor(crafted), 2.5 * secondsFor(harmless) + 0.02);
}

// Each text is inside all those before it; so are the elements that begin in it.
TEST(LumXmlParserHostile, nestedEntitiesTakeLinearTime) {
    for (const std::string last : {"", "&e7;"}) {
        expectLinearTime(
            "the input is looked for under all the texts that are being read", 5000, [&](std::size_t size) {
                std::string document = "<!DOCTYPE a [<!ENTITY f '0'>";
                for (std::size_t i = 0; i < size; ++i) {
                    document += "<!ENTITY f '" + std::to_string(i) + "'><!ENTITY e" + std::to_string(i) + " '<b/>&e" +
                                std::to_string(i + 1) + ";x'>";
                }
                document += "<!ENTITY e" + std::to_string(size) + " '" + last + "'>]><a>&e0;&f;</a>";
                const std::string expanded = "<a>" + repeat("<b></b>", size);
                EXPECT_TRUE(tell(document) == expanded + (last.empty() ? repeat("x", size) + "0</a>" : "!1837"));
            });
    }
}

TEST(LumXmlParserHostile, attributesTakeLinearTimeAndTheirDuplicatesAreFound) {
    for (const std::string prefix : {"", "p:", "xmlns:"}) {
        expectLinearTime("each attribute is compared with every other", 4000, [&](std::size_t size) {
            const std::string tag = "<a xmlns:p='u' xmlns:q='u2'" + repeat(" " + prefix + "a@='u'", size);
            EXPECT_TRUE(tell(tag + "/>").ends_with("</a>"));
            for (const std::size_t again : {std::size_t{0}, size - 1})
                EXPECT_EQ(tell(tag + " " + prefix + "a" + std::to_string(again) + "=''/>"), "!1808");
        });
    }
}

// A document may expand to a hundred times its size once it is past the threshold, and to anything below that.
TEST(LumXmlParserHostile, expansionGoesAsFarAsTheLimit) {
    constexpr int thresholdUnits = 8 << 20;
    const ParserSetup setup{.entities = {{"e", std::string(1000, 'x')}}};
    EXPECT_TRUE(tell("<a>" + repeat("&e;", thresholdUnits / 1000 - 10) + "</a>", setup).ends_with("x</a>"));
    EXPECT_TRUE(tell("<a>" + repeat("&e;", thresholdUnits / 1000 + 10000) + "</a>", setup).ends_with("!1837"));
    EXPECT_TRUE(tell("<a>&e;</a>", readSetup("e=<b>&e;</b>")).ends_with("!1837")) << "elements without end";
}

TEST(LumXmlParserHostile, everyPrefixIsAnErrorWhileSomethingIsMissing) {
    const ParserSetup setup = readSetup("skip-dtd");
    for (const std::vector<std::string>& row : readEscapedRows("xml/prefixes.txt", 3)) {
        ASSERT_EQ(recordEvents(row[2], Pull::events, setup).back().event, "END_DOCUMENT 0");
        forEachPrefix(row[2], [&](const std::string& cut) {
            if (cut.empty()) return;
            for (const Pull how : {Pull::events, Pull::tokens}) {
                const std::vector<EventRecord> whole = recordEvents(cut, how, setup);
                const bool isIncomplete =
                    cut.find(row[0]) != std::string::npos && cut.find(row[1]) == std::string::npos;
                EXPECT_TRUE(!isIncomplete || whole.back().event.starts_with("error ")) << whole.back();
                for (const std::size_t pieceBytes : {1, 2, 3})
                    EXPECT_EQ(recordEvents(cut, how, setup, pieceBytes), whole);
            }
        });
    }
}

}  // namespace
