#include <lumcommon/streams/LumCustomStreamBuf.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Deflated.h"
#include "support/PieceStream.h"

using LumCommon::LumCustomStreamBuf;

namespace {

class Controller : public LumCommon::LumCustomStreamController {
public:
    std::string source;
    std::size_t atOnce = std::numeric_limits<std::size_t>::max();
    int lastResult = 0;  // what read() answers once the source is empty
    std::string written;
    std::vector<int> writeSizes;
    int refused = 0;  // how many bytes a write leaves out
    bool throws = false;

    int read(char* buf, int len) override {
        if (source.empty()) return lastResult;
        const std::size_t count = source.copy(buf, std::min(atOnce, static_cast<std::size_t>(len)));
        source.erase(0, count);
        return static_cast<int>(count);
    }
    int write(const char* buf, int len) override {
        if (throws) throw std::runtime_error("write");
        writeSizes.push_back(len);
        if (refused == 0) written.append(buf, static_cast<std::size_t>(len));
        return len - refused;
    }
};

TEST(LumCustomStreamBuf, readsTheSameInAnyPieces) {
    Controller controller;
    const std::string bytes = LumTest::compressible(20000);
    for (const std::size_t atOnce : {1, 5, 8192, 1 << 20}) {
        SCOPED_TRACE(atOnce);
        controller.source = bytes;
        controller.atOnce = atOnce;
        LumCustomStreamBuf buffer(&controller);
        EXPECT_EQ(LumTest::readAll(buffer), bytes);
        // Also at the end, and over the border between two reads.
        for (std::size_t i = 1; i <= 10; ++i) EXPECT_EQ(buffer.sungetc(), static_cast<unsigned char>(bytes[20000 - i]));
    }
    // The end, an error, and more than there was room for.
    for (const int lastResult : {0, -5, 8193, std::numeric_limits<int>::max()}) {
        SCOPED_TRACE(lastResult);
        controller.source = "b";
        controller.lastResult = lastResult;
        LumCustomStreamBuf buffer(&controller);
        EXPECT_EQ(buffer.sbumpc(), 'b');
        EXPECT_EQ(buffer.sgetc(), EOF);
        EXPECT_EQ(buffer.sungetc(), 'b');
    }
    LumCustomStreamBuf none(nullptr);
    EXPECT_FALSE(none.is_open());
    EXPECT_EQ(none.sgetc(), EOF);
    EXPECT_EQ(none.sputc('x'), EOF);
}

TEST(LumCustomStreamBuf, handsOverFullBuffersAndTheRestAtTheEnd) {
    for (const std::size_t size : {8201, 8203}) {  // just no full one, and one with a byte after it
        for (const bool bytewise : {false, true}) {
            SCOPED_TRACE(size);
            const std::string bytes = LumTest::compressible(size);
            Controller controller;
            {
                LumCustomStreamBuf buffer(&controller);
                for (const char b : bytewise ? bytes : "") buffer.sputc(b);
                if (!bytewise) buffer.sputn(bytes.data(), static_cast<std::streamsize>(size));
                EXPECT_EQ(controller.writeSizes, size == 8203 ? std::vector{8202} : std::vector<int>());
                EXPECT_EQ(std::streamoff(buffer.pubseekoff(-7, std::ios_base::end)), static_cast<std::streamoff>(size));
            }
            EXPECT_EQ(controller.writeSizes, size == 8203 ? (std::vector{8202, 1}) : std::vector{8201});
            EXPECT_EQ(controller.written, bytes);
        }
    }
}

TEST(LumCustomStreamBuf, aShortWriteFailsAndKeepsTheBytes) {
    Controller controller;
    controller.refused = 1;
    const std::string bytes = LumTest::compressible(30000);
    {
        LumCustomStreamBuf buffer(&controller);
        // Asked again and again, a put area that stands past its end would be written outside the buffer.
        for (int i = 0; i < 3; ++i) EXPECT_LT(buffer.sputn(bytes.data(), 30000), 30000);
        EXPECT_EQ(buffer.flushBuffer(), -1);
        EXPECT_EQ(buffer.pubsync(), -1);
        EXPECT_EQ(std::streamoff(buffer.pubseekoff(0, std::ios_base::cur)), 8201);
        controller.refused = 0;
        EXPECT_EQ(buffer.flushBuffer(), 8201);
        EXPECT_EQ(buffer.flushBuffer(), 0);
        controller.throws = true;
        EXPECT_EQ(buffer.sputn(bytes.data(), 5), 5);
        for (int i = 0; i < 2; ++i) EXPECT_THROW(buffer.sputn(bytes.data(), 30000), std::runtime_error);
    }  // and destruction swallows what is thrown
    EXPECT_EQ(controller.written, bytes.substr(0, 8201));
}

}  // namespace
