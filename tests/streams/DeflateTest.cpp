// All that reads deflate data - gzip streams, inflating streams and temporary files - judged by zlib, and the writer of
// gzip data.

#include <gtest/gtest.h>
#include <lumcommon/lumcommon.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/Deflated.h"
#include "support/PieceStream.h"
#include "support/Recipe.h"
#include "support/Sweeps.h"
#include "support/TempFolder.h"

using namespace LumCommon;
using namespace LumTest;

namespace {

std::string readGzip(const std::string& data, std::size_t pieceBytes = wholeInput) {
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

/// What deflate data give in a stream, and in a file.
void expectAsZlib(const std::string& data) {
    const Inflated judged = inflated(data, Wrapper::RAW);
    auto exact = std::make_unique<std::vector<char>>(data.begin(), data.end());  // for the sanitizer
    LumInflaterStreamBuf buffer(exact->data(), exact->size(), false);
    EXPECT_TRUE(readAll(buffer) == delivered(judged));
    EXPECT_EQ(buffer.hasFailed(), !judged.isComplete && !data.empty()) << "cut data end like whole ones";
    LumInflaterStream copy(exact->data(), exact->size(), true);
    exact.reset();
    EXPECT_EQ(copy.get(), delivered(judged).empty() ? EOF : static_cast<unsigned char>(judged.bytes[0]));
    copy.reset();
    EXPECT_TRUE(copy.good() && readAll(*copy.rdbuf()) == delivered(judged)) << "does not start again";
    LumInflaterStreamBuf direct(data.data(), data.size(), false);
    std::string read(judged.bytes.size() + 5000, '\0');
    read.resize(static_cast<std::size_t>(direct.sgetn(read.data(), static_cast<std::streamsize>(read.size()))));
    EXPECT_TRUE(read == delivered(judged)) << "what is inflated in place differs";
    EXPECT_EQ(direct.hasFailed(), buffer.hasFailed());
    for (std::size_t back = 1; back <= std::min<std::size_t>(10, read.size()); ++back) {
        EXPECT_EQ(direct.sungetc(), static_cast<unsigned char>(read[read.size() - back]));
    }
    std::ostringstream file;
    EXPECT_EQ(LumTempFile::inflate(file, zlibBytes(data), data.size()), judged.isComplete);
    EXPECT_TRUE(file.str() == judged.bytes) << "what could be made of cut data is lost";
}

TEST(Deflate, isReadInAnySizesAndPieces) {
    for (const std::size_t size : {0, 4096, 4097, 100000}) {
        SCOPED_TRACE(size);
        for (const std::string& bytes : {compressible(size), std::string(size, 'x')}) {
            expectAsZlib(deflated(bytes, Wrapper::RAW));
            expectAsZlib(deflated(bytes, Wrapper::RAW) + "what follows");
            for (const std::size_t pieceBytes : {std::size_t{4}, wholeInput}) {
                EXPECT_TRUE(readGzip(deflated(bytes, Wrapper::GZIP), pieceBytes) == bytes);
                EXPECT_TRUE(readGzip(gzipWithFullHeader(bytes), pieceBytes) == bytes);
                EXPECT_TRUE(readGzip(bytes, pieceBytes) == bytes);
            }
        }
    }
}

TEST(Deflate, cutOrFaultyAtAnyByteGivesTheWholePiecesBeforeIt) {
    const std::string data = gzipWithFullHeader(compressible(9000));
    std::istringstream member(data);
    EXPECT_TRUE(LumGzipStreamBuf::checkHeader(member));
    const auto headerBytes = static_cast<std::size_t>(member.tellg());
    forEachPrefix(data, [&](const std::string& cut) {
        const std::string rest = cut.substr(std::min(headerBytes, cut.size()));
        EXPECT_TRUE(readGzip(cut) == (cut.size() < 4 ? cut : delivered(inflated(rest, Wrapper::RAW))));
        expectAsZlib(rest);
    });
    std::string faulty = data.substr(headerBytes);
    for (std::size_t place = 0; place < faulty.size() && !HasFailure(); ++place) {
        SCOPED_TRACE("fault at " + std::to_string(place));
        const char whole = faulty[place];
        faulty[place] = static_cast<char>(whole ^ (1 << place % 8));
        expectAsZlib(faulty);
        faulty[place] = whole;
    }
}

TEST(LumGzipStreamBuf, passesOnWhatIsNotGzip) {
    for (const Fields& row : readRows("streams/notgzip.txt")) {
        SCOPED_TRACE(utf8(row[0]));
        const std::string bytes = recipeBytes(row.at(1), {{"LONG", compressible(10000)}});
        std::istringstream seekable("before" + bytes);
        seekable.seekg(6);
        seekable.exceptions(std::ios_base::failbit | std::ios_base::badbit | std::ios_base::eofbit);
        LumGzipStreamBuf buffer(seekable);
        EXPECT_TRUE(seekable.good());
        EXPECT_EQ(readAll(buffer), bytes);
        EXPECT_EQ(readGzip(bytes), bytes) << "where only putting back is possible";
    }
}

TEST(LumGzipStreamBuf, readsNoFurtherThanItIsAskedAndEndsWhereTheSourceFails) {
    // A thousand bytes for each one of the data: what is not asked for must not be made.
    PieceStream zeros(deflated(std::string(64 << 20, '\0'), Wrapper::GZIP), 512);
    LumGzipStreamBuf first(zeros);
    EXPECT_EQ(first.sgetc(), 0);
    EXPECT_LE(zeros.getBuffer().getDeliveredBytes(), 8192u);

    PieceStream failing(deflated(compressible(90000), Wrapper::GZIP), 4096);
    failing.getBuffer().failAfter(3 * 4096);
    failing.exceptions(std::ios_base::badbit);
    LumGzipStreamBuf buffer(failing);
    const std::string got = readAll(buffer);
    EXPECT_GE(got.size(), 4096u);
    EXPECT_EQ(got, compressible(90000).substr(0, got.size()));
    EXPECT_TRUE(buffer.hasFailed());
}

TEST(LumGzipStreamBuf, opensFiles) {
    const TempFolder folder;
    const std::string bytes = compressible(10000);
    const std::string two = deflated("one", Wrapper::GZIP) + deflated(bytes, Wrapper::GZIP);
    EXPECT_EQ(readGzip(two), "one") << "what follows the first member of a stream is read";
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
    EXPECT_FALSE(buffer.open(UnicodeString::fromUTF8(name).append(char16_t{0}).append(u'x'))) << "cut at a zero";
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
            std::ostream(&buffer) << bytes.substr(0, size / 3) << bytes.substr(size / 3);
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

TEST(LumGzipOStreamBuf, tellsThatItsTargetFails) {
    LumGzipOStreamBuf missing(UnicodeString(u"no/such/folder/out.gz"));
    EXPECT_FALSE(missing.is_open());
    EXPECT_EQ(missing.sputc('x'), EOF);
    EXPECT_EQ(missing.pubsync(), -1);
    std::ostream closed(nullptr);
    LumGzipOStreamBuf nowhere(closed);
    LumGzipOStreamBuf full(UnicodeString(u"/dev/full"));  // what stays in the file's own buffer is not written
    for (LumGzipOStreamBuf* const buffer : {&nowhere, &full}) {
        EXPECT_EQ(buffer->sputc('x'), 'x');
        EXPECT_EQ(buffer->pubsync(), -1);
        EXPECT_EQ(buffer->pubsync(), -1) << "the failure is forgotten";
    }
}

}  // namespace
