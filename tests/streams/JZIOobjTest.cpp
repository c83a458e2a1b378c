#include <lumcommon/streams/JZIOobj.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>

#include "support/PieceStream.h"
#include "support/TempFolder.h"

using LumCommon::JZFileIOobj;
using LumCommon::JZIOobj;
using LumCommon::JZStreamIOobj;

namespace {

class JZFile : public testing::Test {
protected:
    void write(const std::string& bytes) {
        JZFileIOobj file(file_.c_str(), "wb");
        EXPECT_TRUE(file.Open());
        EXPECT_EQ(file.Write(bytes.data(), static_cast<int>(bytes.size())), static_cast<int>(bytes.size()));
    }

    const LumTest::TempFolder folder_;
    const std::string file_ = folder_.getPath() + "file";
};

/// Where a virtual operation stands among the others; larger further down.
template <class Operation>
std::size_t slotOf(Operation operation) {
    std::size_t slot = 0;
    std::memcpy(&slot, &operation, sizeof slot);
    return slot;
}

TEST(JZIOobj, virtualOperationsStandInTheirOrder) {
    using Io = JZIOobj;  // an implementation built against the first six must go on working
    const std::size_t slots[] = {slotOf(&Io::Open), slotOf(&Io::Close), slotOf(&Io::Read),  slotOf(&Io::Write),
                                 slotOf(&Io::Seek), slotOf(&Io::Tell),  slotOf(&Io::ReadAt)};
    EXPECT_TRUE(std::ranges::is_sorted(slots));
}

TEST(JZFileMode, isReadLetterByLetter) {
    constexpr std::pair<const char*, unsigned> cases[] = {
        {"wb", JZIOobj::WRITABLE | JZIOobj::BINARY},
        {"wbt", JZIOobj::WRITABLE},
        {"wr", 0},
        {"x+w?", JZIOobj::WRITABLE},
        {nullptr, 0},
    };
    for (const auto& [mode, flags] : cases) EXPECT_EQ(JZFileIOobj("file", mode).GetFlags(), flags);
}

/// The same questions to both kinds of object; `io` holds "0123456789".
void expectRandomAccess(JZIOobj& io) {
    char buf[16] = "..............";
    EXPECT_TRUE(io.Open());
    EXPECT_TRUE(io.Open()) << "opening again fails";
    EXPECT_EQ(io.GetSize(), 10);
    EXPECT_EQ(io.Tell(), 0) << "measuring has moved the position";
    EXPECT_EQ(io.Read(buf, 4), 4);
    EXPECT_EQ(std::string(buf, 5), "0123.");
    EXPECT_TRUE(io.Seek(2, SEEK_CUR));
    EXPECT_EQ(io.Tell(), 6);
    EXPECT_TRUE(io.Seek(-3, SEEK_END));
    EXPECT_EQ(io.Read(buf, 16), 3) << "a short read gives its count";
    EXPECT_EQ(io.Tell(), 10) << "after a short read the position is lost";
    EXPECT_EQ(io.Read(buf, 16), 0);
    EXPECT_EQ(std::string(buf, 4), "7893") << "a read at the end touches the buffer";
    EXPECT_TRUE(io.Seek(9, SEEK_SET)) << "there is no way back from the end";
    EXPECT_EQ(io.Read(buf, 1), 1);
    EXPECT_EQ(buf[0], '9');
    EXPECT_EQ(io.Read(buf, -1), -1);
    EXPECT_FALSE(io.Seek(0, 7));
    EXPECT_EQ(io.ReadAt(4, buf, 3), 3);
    EXPECT_EQ(std::string(buf, 4), "4563") << "reading at a place";
    EXPECT_EQ(io.ReadAt(8, buf, 16), 2);
    EXPECT_EQ(io.ReadAt(-1, buf, 1), -1);
    EXPECT_TRUE(io.Close());
}

TEST_F(JZFile, readsAtAnyPlace) {
    write("0123456789");
    JZFileIOobj file(file_.c_str(), "rb");
    expectRandomAccess(file);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.Tell(), -1);
    EXPECT_EQ(file.Write("x", 1), -1);
    EXPECT_TRUE(file.Open()) << "a closed file cannot be opened again";
    {
        JZFileIOobj copy(file);
        EXPECT_EQ(copy.GetFlags(), unsigned{JZIOobj::BINARY}) << "the copy seems open";
        EXPECT_TRUE(copy.Open());
    }
    char c = 0;
    EXPECT_EQ(file.Read(&c, 1), 1) << "the copy has closed the original's descriptor";
}

TEST_F(JZFile, ownsTheDescriptorItIsGiven) {
    write("0123456789");
    const int fd = open(file_.c_str(), O_RDONLY);
    {
        JZFileIOobj file(fd, "rb");
        expectRandomAccess(file);
    }
    EXPECT_EQ(fcntl(fd, F_GETFD), -1) << "the descriptor leaks";
    EXPECT_FALSE(JZFileIOobj(-1, "r").Open());
}

TEST_F(JZFile, opensFilesOnly) {
    EXPECT_FALSE(JZFileIOobj(folder_.getPath().c_str(), "rb").Open());
    EXPECT_FALSE(JZFileIOobj(file_.c_str(), "rb").Open());
    EXPECT_FALSE(JZFileIOobj(static_cast<const char*>(nullptr), "rb").Open());
    write("abc");
    struct stat status {};
    stat(file_.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0177u, 0u) << "others may read the new file";
    write("X");  // opened for writing, it keeps what it does not overwrite
    EXPECT_EQ(JZFileIOobj(file_.c_str(), "w").GetSize(), 0);
    JZFileIOobj file(file_.c_str(), "r");
    char buf[4] = {};
    ASSERT_TRUE(file.Open());
    EXPECT_EQ(file.Read(buf, 4), 3);
    EXPECT_STREQ(buf, "Xbc");
}

TEST(JZStreamIOobj, readsAtAnyPlace) {
    std::istringstream stream("0123456789");
    stream.seekg(3);
    JZStreamIOobj io(&stream);
    EXPECT_EQ(io.GetFlags(), unsigned{JZIOobj::BINARY});
    expectRandomAccess(io);
    EXPECT_TRUE(io.IsOpen()) << "closing takes the caller's stream away";
    EXPECT_EQ(io.Write("x", 1), -1);
}

TEST(JZStreamIOobj, failsWithoutThrowing) {
    JZStreamIOobj none(nullptr);
    EXPECT_FALSE(none.Open());
    EXPECT_EQ(none.Tell(), -1);
    LumTest::PieceStream unseekable("0123");
    unseekable.exceptions(std::ios_base::failbit | std::ios_base::badbit);
    EXPECT_FALSE(JZStreamIOobj(&unseekable).Open());

    LumTest::PieceStream broken("0123", 2);
    broken.getBuffer().failAfter(2);
    broken.exceptions(std::ios_base::failbit | std::ios_base::badbit | std::ios_base::eofbit);
    JZStreamIOobj io(&broken);
    char buf[8];
    EXPECT_EQ(io.Read(buf, 2), 2);
    EXPECT_EQ(io.Read(buf, 2), 0);
    EXPECT_FALSE(io.Seek(0, SEEK_SET));
    EXPECT_EQ(io.Tell(), -1);
}

}  // namespace
