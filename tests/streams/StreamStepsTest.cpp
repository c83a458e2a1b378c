// Streams over bytes in memory and in files: rows of steps, and what only code can ask.

#include <gtest/gtest.h>
#include <lumcommon/lumcommon.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/PieceStream.h"
#include "support/Recipe.h"
#include "support/TempFolder.h"

using namespace LumCommon;

namespace {

/// Words of a text; escapes stand for bytes.
std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream in(text);
    for (std::string word; in >> word;) {
        words.push_back(word == "\"\"" ? "" : LumTest::recipeBytes(UnicodeString::fromUTF8("'" + word + "'")));
    }
    return words;
}

std::string shown(int byte) { return byte == EOF ? "end" : std::string(1, static_cast<char>(byte)); }
std::string shown(bool answer) { return answer ? "yes" : "no"; }

/// Reads by `read` into room that it must leave alone where it reads nothing.
template <class Read>
std::string readInto(const std::string& sizeBytes, Read read) {
    std::string room(32, '.');
    const int count = read(room.data(), std::stoi(sizeBytes));
    const auto got = static_cast<std::size_t>(std::max(count, 0));
    EXPECT_EQ(room.substr(got), std::string(32 - got, '.'));
    return std::to_string(count) + (got == 0 ? "" : " " + room.substr(0, got));
}

std::string answerOf(JZIOobj& io, const std::vector<std::string>& step) {
    const std::string& name = step[0];
    if (name == "open") return shown(io.Open());
    if (name == "close") return shown(io.Close());
    if (name == "isOpen") return shown(io.IsOpen());
    if (name == "flags") return std::to_string(io.GetFlags());
    if (name == "size") return std::to_string(io.GetSize());
    if (name == "tell") return std::to_string(io.Tell());
    if (name == "write") return std::to_string(io.Write(step[1].data(), static_cast<int>(step[1].size())));
    if (name == "read") return readInto(step[1], [&](char* room, int size) { return io.Read(room, size); });
    if (name == "at") {
        return readInto(step[2], [&](char* room, int size) { return io.ReadAt(std::stol(step[1]), room, size); });
    }
    return shown(io.Seek(std::stol(step[1]), std::stoi(step[2])));
}

std::string answerOf(LumMemStreamBuf& buffer, const std::vector<std::string>& step) {
    const std::string& name = step[0];
    if (name == "grow") {
        if (step.size() > 1) buffer.setGrowBytes(static_cast<unsigned>(std::stoul(step[1])));
        return std::to_string(buffer.getGrowBytes());
    }
    if (name == "sum") return std::to_string(buffer.calcOTFTableChecksum());
    if (name == "source") {
        buffer.setSource(new LumTest::PieceStream(step[1]), true);
        return "";
    }
    if (name == "copy") {
        LumTest::PieceStream source(step[1]);
        return std::to_string(buffer.copyStream(source, step[1].size()));
    }
    if (name == "remains") return std::to_string(buffer.getRemains());
    if (name == "read") return readInto(step[1], [&](char* room, int size) { return int(buffer.sgetn(room, size)); });
    if (name == "all") {
        std::string all;
        buffer.appendToString(all);
        return all;
    }
    const char* const pattern = step[1] == "(null)" ? nullptr : step[1].c_str();
    const auto size = static_cast<unsigned>(std::stoul(step[2]));
    return shown(name == "search" ? buffer.searchSeek(pattern, size) : buffer.skipSeek(pattern, size));
}

std::string answerOf(std::streambuf& buffer, const std::vector<std::string>& step) {
    using Base = std::ios_base;
    const std::string& name = step[0];
    if (name == "get") return shown(buffer.sbumpc());
    if (name == "peek") return shown(buffer.sgetc());
    if (name == "unget") return shown(buffer.sungetc());
    if (name == "putback") return shown(buffer.sputbackc(step[1][0]));
    if (name != "seek") return answerOf(dynamic_cast<LumMemStreamBuf&>(buffer), step);
    const auto dir = step[2] == "beg"   ? Base::beg
                     : step[2] == "cur" ? Base::cur
                     : step[2] == "end" ? Base::end
                                        : static_cast<Base::seekdir>(std::stoi(step[2]));
    const auto mode = step[3] == "in" ? Base::in : step[3] == "out" ? Base::out : Base::in | Base::out;
    return std::to_string(std::streamoff(buffer.pubseekoff(std::stoll(step[1]), dir, mode)));
}

template <class Stream>
void expectSteps(Stream& stream, const std::string& steps) {
    LumTest::expectAnswers(steps, [&stream](const std::string& step) { return answerOf(stream, wordsOf(step)); });
}

void expectStepsOf(const std::string& made, const std::string& steps, const std::string& path) {
    const std::vector<std::string> words = wordsOf(made);
    const std::string bytes = words.back();
    LumTest::writeFile(path, bytes);
    std::istringstream source(bytes);
    source.seekg(1);  // opening goes to the start
    if (words[0] == "str") {
        LumStrStream::StrStreamBuf buffer(bytes.data(), bytes.size(), false);
        expectSteps<std::streambuf>(buffer, steps);
    } else if (words[0] == "mem") {
        LumMemStreamBuf buffer(nullptr, static_cast<unsigned>(std::stoul(words[1])), false);
        buffer.sputn(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        expectSteps<std::streambuf>(buffer, steps);
    } else if (words[0] == "stream") {
        JZStreamIOobj io(&source);
        expectSteps<JZIOobj>(io, steps);
    } else if (words[0] == "file") {
        JZFileIOobj io(path.c_str(), words[1].c_str());
        expectSteps<JZIOobj>(io, steps);
    } else {
        const int descriptor = open(path.c_str(), O_RDONLY);
        {
            JZFileIOobj io(descriptor, words[1].c_str());
            expectSteps<JZIOobj>(io, steps);
        }
        EXPECT_EQ(fcntl(descriptor, F_GETFD), -1) << "the descriptor leaks";
    }
    EXPECT_TRUE(words[0] != "str" || bytes == words.back()) << "borrowed bytes have changed";
}

TEST(StreamSteps, answerAsTheRowsSay) {
    const LumTest::TempFolder folder;
    for (const auto& row : LumTest::readRows("streams/steps.txt")) {
        for (const std::string& made : LumTest::splitAt(',', LumTest::utf8(row.at(1)))) {
            SCOPED_TRACE(LumTest::utf8(row[0]) + ": " + made);
            expectStepsOf(made, LumTest::utf8(row.at(2)), folder.getPath() + "file");
        }
    }
}

TEST(JZIOobj, virtualOperationsStandInTheirOrder) {
    using Io = JZIOobj;  // an implementation built against the first six must go on working
    const auto slotOf = [](auto operation) {
        std::size_t slot = 0;
        std::memcpy(&slot, &operation, sizeof slot);
        return slot;
    };
    const std::size_t slots[] = {slotOf(&Io::Open), slotOf(&Io::Close), slotOf(&Io::Read),  slotOf(&Io::Write),
                                 slotOf(&Io::Seek), slotOf(&Io::Tell),  slotOf(&Io::ReadAt)};
    EXPECT_TRUE(std::ranges::is_sorted(slots));
}

TEST(JZFileIOobj, opensFilesOnlyAndWritesThem) {
    const LumTest::TempFolder folder;
    const std::string path = folder.getPath() + "file";
    const auto write = [&path](const char* bytes) {
        JZFileIOobj file(path.c_str(), "wb");
        EXPECT_TRUE(file.Open());
        EXPECT_EQ(file.Write(bytes, static_cast<int>(std::strlen(bytes))), static_cast<int>(std::strlen(bytes)));
    };
    EXPECT_FALSE(JZFileIOobj(folder.getPath().c_str(), "rb").Open());
    EXPECT_FALSE(JZFileIOobj(path.c_str(), "rb").Open());
    EXPECT_FALSE(JZFileIOobj(static_cast<const char*>(nullptr), "rb").Open());
    EXPECT_FALSE(JZFileIOobj(-1, "r").Open());
    EXPECT_EQ(JZFileIOobj("file", nullptr).GetFlags(), 0u);
    write("abc");
    struct stat status {};
    stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0177u, 0u) << "others may read the new file";
    write("X");
    EXPECT_EQ(LumTest::readFile(path), "Xbc") << "opened for writing, it keeps what it does not overwrite";
    EXPECT_EQ(JZFileIOobj(path.c_str(), "w").GetSize(), 0);
    JZFileIOobj file(path.c_str(), "rb");
    EXPECT_TRUE(file.Open());
    {
        JZFileIOobj copy(file);
        EXPECT_EQ(copy.GetFlags(), unsigned{JZIOobj::BINARY}) << "the copy seems open";
        EXPECT_TRUE(copy.Open());
    }
    char c = 0;
    EXPECT_EQ(file.Read(&c, 1), 1) << "the copy has closed the original's descriptor";
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

TEST(LumStrStream, copiesOnlyWhenAsked) {
    for (const bool copy : {false, true}) {
        auto bytes = std::make_unique<std::string>("abc");
        LumStrStream stream(bytes->data(), 3, copy);
        (*bytes)[1] = 'X';
        if (copy) bytes.reset();
        EXPECT_EQ(LumTest::readAll(*stream.rdbuf()), copy ? "abc" : "aXc");
    }
    LumStrStream stream(nullptr, 0, true);
    EXPECT_EQ(stream.get(), EOF);
    stream.clear();
    EXPECT_EQ(std::streamoff(stream.seekg(0).tellg()), 0) << "an empty member cannot be rewound";
}

}  // namespace
