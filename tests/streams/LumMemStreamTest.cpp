// What the fuzz target of memory streams, which compares one with a plain string, does not reach: sources that fail,
// when they are read, and copies.

#include <lumcommon/streams/LumMemStream.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/PieceStream.h"

using LumCommon::LumMemStream;
using LumCommon::LumMemStreamBuf;
using LumTest::PieceStream;
using LumTest::readAll;

namespace {

TEST(LumMemStreamBuf, readsASourceOnlyWhenItsBytesAreNeeded) {
    PieceStream first("0123456789");
    PieceStream second("abc");
    LumMemStreamBuf buffer(&first, 4, false);
    buffer.setSource(&second, false);
    buffer.setSource(nullptr, true);
    EXPECT_EQ(first.getBuffer().getDeliveredBytes(), 0u) << "construction reads";
    EXPECT_EQ(buffer.sbumpc(), '0');
    EXPECT_EQ(second.getBuffer().getDeliveredBytes(), 0u) << "the second is read before the first has ended";
    EXPECT_EQ(readAll(buffer), "123456789abc");
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

TEST(LumMemStreamBuf, aSourceThatFailsHasEnded) {
    for (const bool throwing : {false, true}) {
        SCOPED_TRACE(throwing ? "lets the source's exception out" : "asks a failed source for ever");
        auto failing = std::make_unique<PieceStream>("0123456789", 2);
        failing->getBuffer().failAfter(6);
        if (throwing) failing->exceptions(std::ios_base::badbit | std::ios_base::eofbit);
        PieceStream next("next");
        LumMemStreamBuf buffer(failing.release(), 4, true);
        buffer.setSource(&next, false);
        EXPECT_EQ(readAll(buffer), "0123next") << "what came with the failure is not known to be right";
    }
}

TEST(LumMemStream, copyDoesNotDisturbTheOriginal) {
    LumMemStream original(nullptr, 4);
    original << "abcdef";
    std::string all;
    original >> all;  // meets the end
    ASSERT_TRUE(original.eof() && !original.fail());
    LumMemStream copy(original);
    EXPECT_EQ(readAll(*copy.seekg(0).rdbuf()), "abcdef");
    EXPECT_FALSE(original.fail()) << "asking for its position has made the original fail";

    original.setstate(std::ios_base::failbit);
    LumMemStream copyOfFailed(original);
    EXPECT_EQ(std::streamoff(copyOfFailed.tellg()), 0);
    EXPECT_EQ(std::streamoff(copyOfFailed.tellp()), 6);
    EXPECT_EQ(original.rdbuf()->sgetc(), EOF) << "the original's position has moved";
}

}  // namespace
