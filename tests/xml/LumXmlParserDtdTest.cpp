// Document type declarations: what they declare, and where external parts come from.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/OnThreads.h"
#include "support/ResourceLibrary.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

TEST(LumXmlParserDtd, declaresWhatTheRowsTell) {
    ResourceLibrary library;
    int made = 0;
    for (const std::vector<std::string>& row : readEscapedRows("xml/declarations.txt", 6)) {
        const std::string &kind = row[0], &given = row[1], &content = row[2];
        SCOPED_TRACE(row[4]);
        ParserSetup setup = readSetup(row[5]);
        setup.baseUri = library.getBase();
        std::string expected = row[3];
        const auto expectTold = [&](const std::string& document) {
            EXPECT_EQ(tell(document, setup), expected);
            EXPECT_EQ(tell(document, setup, 1), expected) << "in pieces, or from what is kept";
        };
        const std::string number = std::to_string(++made);
        if (kind == "resource") {
            library.add(given, content);
        } else if (kind == "inside") {
            expected = "<a>" + expected + (expected.starts_with("!") ? "" : "</a>");
            const std::string element = "<a>" + content + "</a>";
            expectTold("<!DOCTYPE a [" + given + "]>" + element);
            library.add(number, given);
            const int opened = library.countOpened();
            expectTold("<!DOCTYPE a SYSTEM '" + library.getBase() + number + "'>" + element);
            EXPECT_LE(library.countOpened(), opened + 1) << "the second time it is read again";
        } else if (kind == "document" || kind == "unopened") {
            const int opened = library.countOpened();
            expectTold(given);
            EXPECT_TRUE(kind == "document" || library.countOpened() == opened) << "a known definition is opened";
        } else if (kind == "mathml") {
            EXPECT_EQ(utf8(LumXmlParser::getMathMLEntity(fromUtf8(given))), expected);
        } else if (kind == "definition") {
            expectTold("<!DOCTYPE a SYSTEM '" + given + "'><a>[&e;]</a>");
        } else {
            library.add("sub/" + number + ".ent", given);
            expectTold("<!DOCTYPE a [<!ENTITY x SYSTEM '" + library.getBase() + "sub/" + number +
                       ".ent'><!ENTITY y PUBLIC 'p' 'y.ent'>]><a>[&x;]&y;</a>");
        }
    }
}

// What external definitions declare is kept for the whole process: many threads share it, and nothing is read twice.
TEST(LumXmlParserDtd, threadsShareWhatIsKept) {
    constexpr int threads = 8, definitions = 5, rounds = 20;
    ResourceLibrary library;
    for (int i = 0; i < definitions; ++i) {
        const std::string number = std::to_string(i);
        library.add(number + ".dtd", "<!ENTITY % p \"<!ENTITY e 'text " + number + "'>\">%p;");
    }
    std::atomic<int> ready{0};
    std::atomic<int> wrong{0};
    const auto work = [&] {
        for (++ready; ready < threads;) std::this_thread::yield();
        for (int i = 0; i < rounds * definitions; ++i) {
            const std::string number = std::to_string(i % definitions);
            const std::string document = "<!DOCTYPE a SYSTEM '" + number + ".dtd'><a>&e;</a>";
            if (tell(document, {.baseUri = library.getBase()}) != "<a>text " + number + "</a>") ++wrong;
        }
    };
    onThreads(threads, [&](unsigned) { work(); });
    EXPECT_EQ(wrong, 0);
    // Threads that come at the same time may each read a definition, but nobody reads what is kept.
    EXPECT_GE(library.countOpened(), definitions);
    EXPECT_LE(library.countOpened(), threads * definitions);
    const int opened = library.countOpened();
    work();
    EXPECT_EQ(library.countOpened(), opened);
}

}  // namespace
