#include <lumcommon/streams/LumGzipStream.h>

#include <gtest/gtest.h>

#include <array>
#include <istream>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Deflated.h"
#include "support/PieceStream.h"
#include "support/TempFolder.h"

using namespace LumCommon;
using namespace LumTest;

namespace {

std::string readAll(std::streambuf& buffer) { return {std::istreambuf_iterator<char>(&buffer), {}}; }

std::string readAll(const std::string& data, std::size_t pieceBytes) {
    PieceStream source(data, pieceBytes);
    LumGzipStreamBuf buffer(source);
    EXPECT_TRUE(buffer.is_open());
    return readAll(buffer);
}

/// A member whose header has every optional part.
std::string gzipWithFullHeader(const std::string& bytes) {
    std::vector<Bytef> extra(300, 0);  // zeros and a length of two bytes
    std::string name = "name.txt";
    std::string comment = "a comment";
    gz_header header{};
    header.extra = extra.data();
    header.extra_len = static_cast<uInt>(extra.size());
    header.name = zlibBytes(name);
    header.comment = zlibBytes(comment);
    header.hcrc = 1;
    return deflated(bytes, Wrapper::GZIP, &header);
}

TEST(LumGzipStreamBuf, readsTheSameInAnyPieces) {
    const std::string bytes = compressible(30000);
    for (const std::string& data : {deflated(bytes, Wrapper::GZIP), gzipWithFullHeader(bytes), bytes}) {
        for (const std::size_t pieceBytes : {std::size_t{4}, wholeInput}) {
            SCOPED_TRACE(pieceBytes);
            EXPECT_EQ(readAll(data, pieceBytes), bytes);
        }
    }
}

struct PlainCase {
    const char* fault;
    std::string bytes;
};
const PlainCase plainCases[] = {
    {"reads a header from nothing", ""},
    {"loses a stream of one byte", "\x1f"},
    {"loses bytes when the header is shorter than its start", "\x1f\x8b\x08"},
    {"takes half the mark for gzip", "\x1f\x8cxxxxxxxxxxxxxxxx"},
    {"takes another method for deflate", std::string("\x1f\x8b\x07\0xxxxxxxxxxxxxxxx", 20)},
    {"takes reserved flags for known ones", "\x1f\x8b\x08\x20xxxxxxxxxxxxxxxx"},
    {"loses the first bytes of a long stream", compressible(10000)},
};

TEST(LumGzipStreamBuf, passesOnWhatIsNotGzip) {
    for (const PlainCase& c : plainCases) {
        SCOPED_TRACE(c.fault);
        std::istringstream seekable("before" + c.bytes);
        seekable.seekg(6);
        seekable.exceptions(std::ios_base::failbit | std::ios_base::badbit | std::ios_base::eofbit);
        LumGzipStreamBuf buffer(seekable);
        EXPECT_TRUE(seekable.good());
        EXPECT_EQ(readAll(buffer), c.bytes);
        EXPECT_EQ(readAll(c.bytes, wholeInput), c.bytes) << "where only putting back is possible";
    }
}

TEST(LumGzipStreamBuf, cutAtAnyByteGivesTheWholePiecesBeforeIt) {
    const std::string bytes = compressible(9000);
    const std::string data = gzipWithFullHeader(bytes);
    std::istringstream member(data);
    EXPECT_TRUE(LumGzipStreamBuf::checkHeader(member));
    const auto headerBytes = static_cast<std::size_t>(member.tellg());
    for (std::size_t size = 0; size <= data.size(); ++size) {
        const std::string cut = data.substr(0, size);
        std::string expected;
        if (size < 4) expected = cut;
        if (size > headerBytes) expected = delivered(inflated(cut.substr(headerBytes), Wrapper::RAW));
        ASSERT_EQ(readAll(cut, wholeInput), expected) << "cut to " << size;
    }
}

TEST(LumGzipStreamBuf, endsWhereTheSourceFails) {
    PieceStream source(deflated(compressible(90000), Wrapper::GZIP), 4096);
    source.getBuffer().failAfter(3 * 4096);
    source.exceptions(std::ios_base::badbit);
    LumGzipStreamBuf buffer(source);
    const std::string got = readAll(buffer);
    EXPECT_GE(got.size(), 4096u);
    EXPECT_EQ(got, compressible(90000).substr(0, got.size()));
}

TEST(LumGzipStreamBuf, readsNoFurtherThanItIsAsked) {
    // A thousand bytes for each one of the data: what is not asked for must not be made.
    PieceStream source(deflated(std::string(64 << 20, '\0'), Wrapper::GZIP), 512);
    LumGzipStreamBuf buffer(source);
    EXPECT_EQ(buffer.sgetc(), 0);
    EXPECT_LE(source.getBuffer().getDeliveredBytes(), 8192u);
}

TEST(LumGzipStreamBuf, opensFiles) {
    const TempFolder folder;
    const std::string bytes = compressible(10000);
    const std::string two = deflated("one", Wrapper::GZIP) + deflated(bytes, Wrapper::GZIP);
    EXPECT_EQ(readAll(two, wholeInput), "one") << "what follows the first member of a stream is read";
    const std::string name = folder.getPath() + "d\xc3\xa9j\xc3\xa0";
    writeFile(name, two);
    writeFile(folder.getPath() + "plain", "plain");
    LumGzipStream stream(new LumGzipStreamBuf(UnicodeString::fromUTF8(name)));
    EXPECT_TRUE(stream.is_open());
    EXPECT_EQ(readAll(*stream.rdbuf()), "one" + bytes);

    LumGzipStreamBuf buffer(name.c_str());
    buffer.sbumpc();
    EXPECT_TRUE(buffer.open((folder.getPath() + "plain").c_str()));
    EXPECT_EQ(readAll(buffer), "plain") << "bytes of the former file are left";
    const UnicodeString cutName = UnicodeString::fromUTF8(name).append(char16_t{0}).append(u'x');
    EXPECT_FALSE(buffer.open(cutName));
    EXPECT_FALSE(buffer.open((folder.getPath() + "missing").c_str()));
    EXPECT_FALSE(buffer.open(folder.getPath().c_str()));
    EXPECT_FALSE(buffer.open(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(buffer.is_open());
    EXPECT_EQ(buffer.sgetc(), EOF);
}

TEST(LumGzipOStreamBuf, writesWhatZlibReads) {
    const TempFolder folder;
    const std::string path = folder.getPath() + "out.gz";
    for (const std::size_t size : {0, 4096, 4097, 300000}) {
        SCOPED_TRACE(size);
        const std::string bytes = compressible(size);
        std::ostringstream target;
        {
            LumGzipOStreamBuf buffer(target);
            for (std::size_t i = 0; i < size; i += 1000) {
                const std::size_t count = std::min<std::size_t>(1000, size - i);
                buffer.sputn(bytes.data() + i, static_cast<std::streamsize>(count));
            }
        }
        const Inflated judged = inflated(target.str(), Wrapper::GZIP);  // it checks the trailer as well
        EXPECT_TRUE(judged.isComplete);
        EXPECT_EQ(judged.usedBytes, target.str().size()) << "more than one member";
        EXPECT_EQ(judged.bytes, bytes);
        {
            LumGzipOStreamBuf buffer(UnicodeString::fromUTF8(path));
            std::ostream(&buffer) << bytes;
        }
        EXPECT_EQ(readFile(path), target.str());
    }
}

TEST(LumGzipOStreamBuf, aFlushCompletesTheMember) {
    std::ostringstream target;
    LumGzipOStreamBuf buffer(target);
    std::ostream out(&buffer);
    out << "abc" << std::flush;
    EXPECT_TRUE(out.good());
    EXPECT_FALSE(buffer.is_open());
    const std::string complete = target.str();
    EXPECT_EQ(readAll(complete, wholeInput), "abc");
    out << std::flush;
    EXPECT_TRUE(out.good()) << "a second flush, with nothing to do, fails";
    out << "def";
    EXPECT_TRUE(out.bad()) << "bytes vanish without a word";
    EXPECT_EQ(buffer.encodeBuffer(Z_FINISH), -1);
    EXPECT_EQ(target.str(), complete);
}

TEST(LumGzipOStreamBuf, tellsThatItsTargetFails) {
    LumGzipOStreamBuf missing(UnicodeString(u"no/such/folder/out.gz"));
    EXPECT_FALSE(missing.is_open());
    EXPECT_EQ(missing.sputc('x'), EOF);
    EXPECT_EQ(missing.pubsync(), -1);

    std::ostream closed(nullptr);
    LumGzipOStreamBuf buffer(closed);
    EXPECT_EQ(buffer.sputc('x'), 'x');
    EXPECT_EQ(buffer.pubsync(), -1);
    EXPECT_EQ(buffer.pubsync(), -1) << "the failure is forgotten";

    LumGzipOStreamBuf full(UnicodeString(u"/dev/full"));
    EXPECT_EQ(full.sputc('x'), 'x');
    EXPECT_EQ(full.pubsync(), -1) << "what stays in the file's own buffer counts as written";
}

}  // namespace
