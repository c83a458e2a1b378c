// What the random test of LumMemStreamModelTest.cpp does not reach: edges, sources that fail, what is only documented.

#include <lumcommon/streams/LumMemStream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "support/PieceStream.h"

using LumCommon::LumMemStream;
using LumCommon::LumMemStreamBuf;
using LumTest::PieceStream;

namespace {

std::string contentOf(LumMemStreamBuf& buffer) {
    std::string content;
    buffer.appendToString(content);
    return content;
}

TEST(LumMemStreamBuf, refusesAnEmptyBlock) {
    LumMemStreamBuf buffer(nullptr, 0, false);
    EXPECT_EQ(buffer.getGrowBytes(), LumMemStreamBuf::defaultGrowBytes);
    buffer.setGrowBytes(16);
    buffer.setGrowBytes(0);
    EXPECT_EQ(buffer.getGrowBytes(), 16u);
    buffer.sputc('x');
    buffer.setGrowBytes(32);
    EXPECT_EQ(buffer.getGrowBytes(), 16u) << "the size changes under the blocks";
}

TEST(LumMemStreamBuf, readsASourceOnlyWhenItsBytesAreNeeded) {
    PieceStream first("0123456789");
    PieceStream second("abc");
    LumMemStreamBuf buffer(&first, 4, false);
    buffer.setSource(&second, false);
    buffer.setSource(nullptr, true);
    EXPECT_EQ(first.getBuffer().getDeliveredBytes(), 0u) << "construction reads";
    EXPECT_EQ(buffer.sbumpc(), '0');
    EXPECT_EQ(second.getBuffer().getDeliveredBytes(), 0u) << "the second is read before the first has ended";
    EXPECT_EQ(contentOf(buffer), "0123456789abc");
}

TEST(LumMemStreamBuf, aReaderAtTheEndSeesASourceAtOnce) {
    for (const bool copies : {false, true}) {
        SCOPED_TRACE(copies ? "copyStream() leaves the put position at the end of a block" : "sputn() does");
        PieceStream first("0123"), second("abcd");
        LumMemStreamBuf buffer(nullptr, 4, false);
        if (copies) {
            EXPECT_EQ(buffer.copyStream(first, 4), 4u);
        } else {
            buffer.sputn("0123", 4);
        }
        char bytes[4];
        EXPECT_EQ(buffer.sgetn(bytes, 4), 4);
        buffer.setSource(&second, false);
        EXPECT_EQ(buffer.getRemains(), 4u);
    }
}

TEST(LumMemStreamBuf, ungetFailsAtTheStartOfABlock) {
    LumMemStreamBuf buffer(nullptr, 4, false);
    buffer.sputn("abcdef", 6);
    buffer.pubseekpos(4, std::ios_base::in);
    EXPECT_EQ(buffer.sungetc(), EOF);
    EXPECT_EQ(buffer.sputbackc('x'), 'x');
    EXPECT_EQ(contentOf(buffer), "abcdef") << "the character put back is stored";
    EXPECT_EQ(buffer.sgetc(), 'd');
}

TEST(LumMemStreamBuf, refusesWhatCannotBeSought) {
    struct Case {
        const char* fault;
        std::streamoff off;
        std::ios_base::seekdir dir;
    };
    const Case cases[] = {
        {"adds to the position before comparing", std::numeric_limits<std::streamoff>::max(), std::ios_base::cur},
        {"goes below the start", std::numeric_limits<std::streamoff>::min(), std::ios_base::end},
        {"knows a fourth direction", 0, static_cast<std::ios_base::seekdir>(3)},
    };
    LumMemStreamBuf buffer(nullptr, 4, false);
    buffer.sputn("abcdef", 6);
    buffer.pubseekpos(2);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(std::streamoff(buffer.pubseekoff(c.off, c.dir)), -1);
        EXPECT_EQ(buffer.sgetc(), 'c');
        EXPECT_EQ(std::streamoff(buffer.pubseekoff(0, std::ios_base::cur, std::ios_base::out)), 2);
    }
}

struct SearchCase {
    const char* fault;
    std::string content;
    const char* pattern;
    unsigned len;
    std::streamoff found;  // -1: nowhere
};
const SearchCase searchCases[] = {
    {"takes the empty pattern for found", "abc", "", 0, -1},
    {"takes null for found", "abc", nullptr, 3, -1},
    {"stops at a zero byte in a pattern of given length", std::string("ab\0cd", 5), "b\0c", 3, 1},
    {"looks at the length of the C string only", "xxab", "abz", 2, 2},
};

TEST(LumMemStreamBuf, findsPatterns) {
    for (const SearchCase& c : searchCases) {
        SCOPED_TRACE(c.fault);
        LumMemStreamBuf buffer(nullptr, 4, false);
        buffer.sputn(c.content.data(), static_cast<std::streamsize>(c.content.size()));
        EXPECT_EQ(buffer.searchSeek(c.pattern, c.len), c.found >= 0);
        EXPECT_EQ(std::streamoff(buffer.pubseekoff(0, std::ios_base::cur, std::ios_base::in)),
                  std::max<std::streamoff>(c.found, 0));
        EXPECT_EQ(buffer.skipSeek(c.pattern, c.len), c.found >= 0) << "a pattern that was found is not skipped";
    }
}

TEST(LumMemStreamBuf, searchesHostileTextInOnePass) {
    // Compared afresh at each candidate, this takes 2^40 steps.
    LumMemStreamBuf buffer(nullptr, 8192, false);
    const std::string text(1 << 20, 'a');
    buffer.sputn(text.data(), static_cast<std::streamsize>(text.size()));
    const std::string pattern = text + 'b';
    EXPECT_FALSE(buffer.searchSeek(pattern.data(), static_cast<unsigned>(pattern.size())));
    EXPECT_TRUE(buffer.searchSeek(text.data(), static_cast<unsigned>(text.size())));
}

TEST(LumMemStreamBuf, sumsBytesWithoutSign) {
    LumMemStreamBuf buffer(nullptr, 8, false);
    EXPECT_EQ(buffer.calcOTFTableChecksum(), 0u);
    buffer.sputn("\xff\xff\xff\xff\xff", 5);
    EXPECT_EQ(buffer.calcOTFTableChecksum(), 0xFEFFFFFFu);
}

TEST(LumMemStreamBuf, aSourceThatFailsHasEnded) {
    for (const bool throwing : {false, true}) {
        SCOPED_TRACE(throwing ? "lets the source's exception out" : "asks a failed source for ever");
        auto failing = std::make_unique<PieceStream>("0123456789", 2);
        failing->getBuffer().failAfter(6);
        if (throwing) failing->exceptions(std::ios_base::badbit | std::ios_base::eofbit);
        PieceStream next("next");
        LumMemStreamBuf buffer(failing.release(), 4, true);
        buffer.setSource(&next, false);
        EXPECT_EQ(contentOf(buffer), "0123next") << "what came with the failure is not known to be right";
    }
}

TEST(LumMemStream, copyDoesNotDisturbTheOriginal) {
    LumMemStream original(nullptr, 4);
    original << "abcdef";
    std::string all;
    original >> all;  // meets the end
    ASSERT_TRUE(original.eof() && !original.fail());
    LumMemStream copy(original);
    EXPECT_EQ(contentOf(*copy.rdbuf()), "abcdef");
    EXPECT_FALSE(original.fail()) << "asking for its position has made the original fail";

    original.setstate(std::ios_base::failbit);
    LumMemStream copyOfFailed(original);
    EXPECT_EQ(std::streamoff(copyOfFailed.tellg()), 0);
    EXPECT_EQ(std::streamoff(copyOfFailed.tellp()), 6);
    EXPECT_EQ(original.rdbuf()->sgetc(), EOF) << "the original's position has moved";
}

TEST(LumMemStreamBuf, ignoresAsASourceWhatWouldNeverEnd) {
    LumMemStreamBuf buffer(nullptr, 4, false);
    buffer.sputn("abc", 3);
    buffer << &buffer;
    buffer << nullptr;
    EXPECT_EQ(contentOf(buffer), "abc");
}

}  // namespace
