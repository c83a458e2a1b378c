#include <lumcommon/streams/LumStrStream.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <sstream>
#include <string>

using LumCommon::LumStrStream;

namespace {

TEST(LumStrStream, copiesOnlyWhenAsked) {
    for (const bool copy : {false, true}) {
        SCOPED_TRACE(copy);
        auto bytes = std::make_unique<char[]>(3);
        std::memcpy(bytes.get(), "abc", 3);
        LumStrStream stream(bytes.get(), 3, copy);
        bytes[1] = 'X';
        if (copy) bytes.reset();
        std::ostringstream all;
        all << stream.rdbuf();
        EXPECT_EQ(all.str(), copy ? "abc" : "aXc");
    }
}

TEST(LumStrStream, seeksInsideItsBytes) {
    struct Case {
        const char* fault;
        std::streamoff off;
        std::ios_base::seekdir dir;
        std::ios_base::openmode mode;
        std::streamoff result;
    };
    constexpr auto most = std::numeric_limits<std::streamoff>::max();
    constexpr auto least = std::numeric_limits<std::streamoff>::min();
    const Case cases[] = {
        // from position 2 of 5
        {"the end is out of reach", 5, std::ios_base::beg, std::ios_base::in, 5},
        {"goes behind the end", 6, std::ios_base::beg, std::ios_base::in, -1},
        {"goes before the start", -3, std::ios_base::cur, std::ios_base::in, -1},
        {"counts from the wrong end", -1, std::ios_base::end, std::ios_base::in, 4},
        {"adds before it compares", most, std::ios_base::cur, std::ios_base::in, -1},
        {"negates before it compares", least, std::ios_base::end, std::ios_base::in, -1},
        {"moves for writing", 0, std::ios_base::beg, std::ios_base::out, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        LumStrStream::StrStreamBuf buffer("abcde", 5, false);
        buffer.pubseekpos(2, std::ios_base::in);
        EXPECT_EQ(std::streamoff(buffer.pubseekoff(c.off, c.dir, c.mode)), c.result);
        const std::streamoff now = c.result < 0 ? 2 : c.result;
        EXPECT_EQ(buffer.sgetc(), now == 5 ? EOF : "abcde"[now]);
    }
}

TEST(LumStrStream, isEmptyWithoutBytes) {
    LumStrStream stream(nullptr, 0, true);
    EXPECT_EQ(stream.get(), EOF);
    stream.clear();
    EXPECT_EQ(std::streamoff(stream.seekg(0).tellg()), 0) << "an empty member cannot be rewound";
}

TEST(LumStrStream, neverWritesToBorrowedBytes) {
    LumStrStream stream("abc", 3, false);  // read-only memory: a store ends the program
    stream.get();
    EXPECT_TRUE(stream.putback('x').fail());
}

}  // namespace
