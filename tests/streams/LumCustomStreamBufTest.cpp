#include <lumcommon/streams/LumCustomStreamBuf.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <istream>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using LumCommon::LumCustomStreamBuf;
using LumCommon::LumCustomStreamController;

namespace {

class Controller : public LumCustomStreamController {
public:
    std::string source;
    std::size_t atOnce = std::numeric_limits<std::size_t>::max();
    int lastResult = 0;  // what read() answers once the source is empty
    std::string written;
    std::vector<int> writeSizes;
    int refused = 0;  // how many bytes a write leaves out
    bool throws = false;

    int read(char* buf, int len) override {
        if (throws) throw std::runtime_error("read");
        if (source.empty()) return lastResult;
        const std::size_t count = std::min({atOnce, source.size(), static_cast<std::size_t>(len)});
        std::memcpy(buf, source.data(), count);
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

std::string pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 256);
    return bytes;
}

TEST(LumCustomStreamBuf, readsTheSameInAnyPieces) {
    const std::string bytes = pattern(20000);
    for (const std::size_t atOnce : {1, 2, 3, 5, 4096, 8192, 1 << 20}) {
        SCOPED_TRACE(atOnce);
        Controller controller;
        controller.source = bytes;
        controller.atOnce = atOnce;
        LumCustomStreamBuf buffer(&controller);
        std::ostringstream all;
        all << &buffer;
        EXPECT_EQ(all.str(), bytes);
        // Also at the end, and over the border between two reads.
        for (std::size_t i = 1; i <= 10; ++i) EXPECT_EQ(buffer.sungetc(), static_cast<unsigned char>(bytes[20000 - i]));
    }
}

TEST(LumCustomStreamBuf, endsWhenTheControllerHasNothing) {
    // The end, an error, and more than there was room for.
    for (const int lastResult : {0, -5, 8193, std::numeric_limits<int>::max()}) {
        SCOPED_TRACE(lastResult);
        Controller controller;
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

struct WriteCase {
    const char* fault;
    std::size_t size;
    std::vector<int> atOnce;    // the writes before destruction
    std::vector<int> inTheEnd;  // and after it
};
const WriteCase writeCases[] = {
    {"writes before the area is full", 8201, {}, {8201}},
    {"loses the byte after a hand-over", 8203, {8202}, {8202, 1}},
};

TEST(LumCustomStreamBuf, handsOverFullBuffersAndTheRestAtTheEnd) {
    for (const WriteCase& c : writeCases) {
        for (const bool bytewise : {false, true}) {
            SCOPED_TRACE(c.fault);
            const std::string bytes = pattern(c.size);
            Controller controller;
            {
                LumCustomStreamBuf buffer(&controller);
                if (bytewise) {
                    for (const char b : bytes) buffer.sputc(b);
                } else {
                    buffer.sputn(bytes.data(), static_cast<std::streamsize>(c.size));
                }
                EXPECT_EQ(controller.writeSizes, c.atOnce);
                EXPECT_EQ(std::streamoff(buffer.pubseekoff(-7, std::ios_base::end)),
                          static_cast<std::streamoff>(c.size));
            }
            EXPECT_EQ(controller.writeSizes, c.inTheEnd);
            EXPECT_EQ(controller.written, bytes);
        }
    }
}

TEST(LumCustomStreamBuf, aShortWriteFailsAndKeepsTheBytes) {
    Controller controller;
    controller.refused = 1;
    const std::string bytes = pattern(30000);
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
        EXPECT_THROW(buffer.sputn(bytes.data(), 30000), std::runtime_error);
        EXPECT_THROW(buffer.sputn(bytes.data(), 30000), std::runtime_error);
    }  // and destruction swallows what is thrown
    EXPECT_EQ(controller.written, bytes.substr(0, 8201));
}

}  // namespace
