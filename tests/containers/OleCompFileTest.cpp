#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <istream>
#include <memory>
#include <sstream>

#include "OleBytes.h"
#include "support/TempFolder.h"

using namespace LumCommon;
using LumTest::OleImage;
using LumTest::OleLayout;
using LumTest::OleNode;
using LumTest::oleStorage;
using LumTest::patternBytes;

namespace {

/// A compound file in memory, opened.
struct Opened {
    explicit Opened(const std::string& bytes) : in(bytes), io(&in), isOpen(file.OLEopen(&io)) {}
    explicit Opened(const OleImage& image) : Opened(image.bytes) {}

    using StreamPtr = std::unique_ptr<OleStream>;
    StreamPtr stream(const OleDirPath& path) { return StreamPtr(file.OLEopenStream(&path)); }
    long index(const OleDirPath& path) { return file.getDirIndex(&path); }
    std::string read(const OleDirPath& path, unsigned pieceBytes = 1u << 30) {
        const StreamPtr opened = stream(path);
        if (!opened) return "no stream";
        std::string result;
        std::string piece(std::min(pieceBytes, 1u << 20), '\0');
        unsigned got = 0;
        while ((got = opened->OLEread(reinterpret_cast<unsigned char*>(piece.data()),
                                      static_cast<unsigned>(piece.size()))) != 0) {
            result.append(piece, 0, got);
        }
        return result;
    }

    std::istringstream in;
    JZStreamIOobj io;
    OleCompFile file;
    bool isOpen;
};

/// Compares without printing what may be long.
testing::AssertionResult isSame(const std::string& got, const std::string& expected) {
    if (got == expected) return testing::AssertionSuccess();
    const auto differ = std::ranges::mismatch(got, expected).in1 - got.begin();
    return testing::AssertionFailure() << got.size() << " bytes, not " << expected.size() << "; they differ at "
                                       << differ << "; first: " << got.substr(0, 20);
}

/// Streams of sizes around the edges of mini sectors, sectors and the cutoff, at three depths.
std::vector<OleNode> streamTree(std::size_t unit) {
    std::vector<OleNode> leaves;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, unit - 1, unit, unit + 1, std::size_t{4095},
                                   std::size_t{4096}, std::size_t{4097}, 3 * unit, 5 * std::size_t{4096}}) {
        const std::string name = "S" + std::to_string(leaves.size());
        leaves.push_back(
            {std::u16string(name.begin(), name.end()), patternBytes(size, static_cast<unsigned>(size) + 1)});
    }
    return {leaves[9],
            oleStorage(u"One", {leaves[2], oleStorage(u"Two", leaves), leaves[8]}),
            leaves[7],
            {u"\5Mini", "short"}};
}

struct LayoutCase {
    const char* fault;
    OleLayout layout;
};
const LayoutCase layoutCases[] = {
    {"512-byte sectors", {}},
    {"big-endian fields or names", {.littleEndian = false}},
    {"4096-byte sectors that begin behind 512 bytes", {.sectorShift = 12}},
    {"the padded header of version 4", {.sectorShift = 12, .version = 4}},
    {"version 4, big-endian", {.littleEndian = false, .sectorShift = 12, .version = 4}},
    {"version 4 with sectors smaller than the header", {.sectorShift = 7, .version = 4}},
    {"mini sectors as large as sectors", {.sectorShift = 7, .miniSectorShift = 7}},
    {"mini sectors of a byte", {.miniSectorShift = 0}},
    {"no mini stream at all", {.cutoff = 0}},
    {"everything in the mini stream", {.cutoff = 0xFFFFFFFF}},
    {"a long list of FAT sectors, big-endian", {.littleEndian = false, .sectorShift = 8, .leadingSectors = 30000}},
};

TEST(OleCompFile, readsEveryLayout) {
    for (const LayoutCase& c : layoutCases) {
        SCOPED_TRACE(c.fault);
        const std::vector<OleNode> tree = streamTree(std::size_t{1} << c.layout.sectorShift);
        const OleImage image(tree, c.layout);
        Opened opened(image);
        ASSERT_TRUE(opened.isOpen);
        EXPECT_EQ(opened.file.isLittleEndian(), c.layout.littleEndian);
        for (const unsigned piece : {1u << 30, 1000u, 7u}) {
            SCOPED_TRACE(piece);
            EXPECT_TRUE(isSame(opened.read({"S9"}, piece), tree[0].data));
            EXPECT_TRUE(isSame(opened.read({"one", "S8"}, piece), tree[1].children[2].data));
            for (const OleNode& leaf : tree[1].children[1].children) {
                const std::string name(leaf.name.begin(), leaf.name.end());
                EXPECT_TRUE(opened.read({"One", "TWO", name}, piece) == leaf.data) << name;
            }
        }
        EXPECT_TRUE(isSame(opened.read({"\5mini"}), "short"));
    }
}

TEST(OleCompFile, needsTheDifatChainFromTheHundredAndTenthFatSector) {
    constexpr std::uint32_t perFatSector = 128;
    const OleNode last{u"last", patternBytes(5000)};
    for (const std::uint32_t expected : {109u, 110u, 109u + 127u, 109u + 128u}) {
        SCOPED_TRACE(expected);
        const std::uint32_t before = expected * (perFatSector - 1) - 30;
        const OleImage image({{u"large", patternBytes(std::size_t{before} * 512)}, last});
        ASSERT_EQ(image.fatSectors, expected);
        EXPECT_EQ(image.difatSectors, expected <= 109 ? 0u : expected <= 236 ? 1u : 2u);
        Opened opened(image);
        EXPECT_TRUE(isSame(opened.read({"last"}), last.data));
        OleImage without = image;
        EXPECT_EQ(Opened(without.set(68, OleImage::END)).isOpen, expected == 109);
    }
}

TEST(OleCompFile, givesTheFieldsOfEntries) {
    for (const bool littleEndian : {true, false}) {
        Opened opened(
            OleImage({oleStorage(u"\u65e5\u672c", {{u"leaf", patternBytes(5000)}})}, {.littleEndian = littleEndian}));
        EXPECT_EQ(opened.file.getVersion(), littleEndian ? "03 00" : "00 03");
        const OleDirInfo* const storage = opened.file.getDirInfo(1);
        const OleDirInfo* const leaf = opened.file.getDirInfo(2);
        EXPECT_EQ(storage->getName(), UnicodeString(u"\u65e5\u672c"));
        EXPECT_EQ(storage->getClassId()[0], 'c');
        EXPECT_EQ(storage->getStateBits(), 7u);
        EXPECT_EQ(storage->getCreationTime(), 0x0102030405060708u);
        EXPECT_EQ(storage->getStartSector(), -1);
        EXPECT_EQ(leaf->getSize(), 5000u);
        EXPECT_EQ(leaf->getClassId()[0], 0);
        EXPECT_EQ(opened.file.getNextBlock(leaf->getStartSector(), false), leaf->getStartSector() + 1);
        EXPECT_EQ(opened.file.getNextBlock(1 << 30, false), -1);
        EXPECT_EQ(opened.file.getNextBlock(-2, true), -1);
        EXPECT_TRUE(opened.file.readBlock(leaf->getStartSector()));
        EXPECT_EQ(std::string(opened.file.getBlock().data(), 512), patternBytes(5000).substr(0, 512));
        EXPECT_FALSE(opened.file.readBlock(-1));
        EXPECT_EQ(opened.file.getDirInfo(-1), nullptr);
        EXPECT_EQ(opened.file.getDirInfo(opened.file.getDirCount()), nullptr);
        EXPECT_EQ(opened.index({"\xE6\x97\xA5\xE6\x9C\xAC", "LEAF"}), 2);
        EXPECT_EQ(opened.index({"leaf"}), -1);
        EXPECT_EQ(opened.index({}), 0);
        EXPECT_EQ(opened.stream({"\xE6\x97\xA5\xE6\x9C\xAC"}), nullptr) << "a storage is no stream";
        EXPECT_EQ(opened.file.OLEopenStream(nullptr), nullptr);
        EXPECT_EQ(opened.file.findDirEntryByName(nullptr, "leaf"), -1);
    }
}

TEST(OleCompFile, opensFilesAndRefusesWhatIsNone) {
    const LumTest::TempFolder folder;
    const std::string path = folder.getPath() + "a.doc";
    LumTest::writeFile(path, OleImage({{u"Workbook", "x"}}).bytes);
    OleCompFile file;
    EXPECT_TRUE(file.OLEopen(path.c_str()));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.getDirCount(), 4);
    EXPECT_FALSE(file.OLEopen((path + "x").c_str()));
    EXPECT_EQ(file.getDirInfo(0), nullptr);
    EXPECT_FALSE(file.OLEopen(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(file.OLEopen(static_cast<JZIOobj*>(nullptr)));
    file.OLEcloseStream(nullptr);
    const LumUri uri(UnicodeString::fromUTF8(path));
    EXPECT_TRUE(OleCompFile::isOLEUri(uri));
    EXPECT_EQ(OleCompFile::detectOLEDocument(uri), 2);
    EXPECT_FALSE(OleCompFile::isOLEUri(LumUri(u"no such file")));
    EXPECT_EQ(OleCompFile::detectOLEDocument(LumUri(u"no such file")), 0);
}

struct HeaderCase {
    const char* fault;
    std::size_t offset;
    std::uint64_t value;
    unsigned width;
    bool opens;
};
const HeaderCase headerCases[] = {
    {"signature not compared", 7, 0, 1, false},
    {"sector shift of 32 let through", 30, 32, 2, false},
    {"sector shift of 31", 30, 31, 2, false},
    {"sectors of half an entry", 30, 6, 2, false},
    {"mini sector shift of 32 let through", 32, 32, 2, false},
    {"mini sectors larger than sectors", 32, 10, 2, false},
    {"no FAT sectors", 44, 0, 4, false},
    {"110 FAT sectors claimed without a chain", 44, 110, 4, false},
    {"four billion FAT sectors", 44, 0xFFFFFFFF, 4, false},
    {"first directory sector negative", 48, 0xFFFFFFFE, 4, false},
    {"first directory sector outside", 48, 0x7FFFFFFF, 4, false},
    {"first mini FAT sector -1", 60, 0xFFFFFFFF, 4, false},
    {"first mini FAT sector outside", 60, 0x7FFFFFFF, 4, false},
    {"four billion mini FAT sectors, one there", 64, 0xFFFFFFFF, 4, true},
    {"a mini FAT that is not counted", 64, 0, 4, true},
    {"first DIFAT sector -1", 68, 0xFFFFFFFF, 4, false},
    {"first DIFAT sector that nobody needs", 68, 0x7FFFFFFF, 4, true},
    {"first FAT sector outside", 76, 0x7FFFFFFF, 4, false},
    {"the number of an unused FAT sector", 80, 0x7FFFFFFF, 4, true},
};

TEST(OleCompFile, checksEveryFieldOfTheHeader) {
    const OleImage image({{u"small", "x"}, {u"large", patternBytes(9000)}});
    for (const HeaderCase& c : headerCases) {
        SCOPED_TRACE(c.fault);
        OleImage changed = image;
        Opened opened(changed.set(c.offset, c.value, c.width));
        EXPECT_EQ(opened.isOpen, c.opens);
        EXPECT_TRUE(isSame(opened.read({"large"}), c.opens ? patternBytes(9000) : "no stream"));
    }
}

TEST(OleCompFile, opensLooseFilesWhenToldTo) {
    const OleImage image({{u"Workbook", patternBytes(5000)}});
    const std::size_t unused = image.entryOffset(2);
    using Fields = std::vector<std::pair<std::size_t, std::uint32_t>>;
    const struct {
        const char* fault;
        Fields fields;
        int kind;  // when it is told to; 0 otherwise
    } cases[] = {
        {"no mini FAT, as -1", {{60, OleImage::FREE}, {64, 0}}, 2},
        {"no list of FAT sectors, as -1", {{68, OleImage::FREE}, {72, 0}}, 2},
        {"a mini FAT that is counted", {{60, OleImage::FREE}, {64, 1}}, 0},
        {"a list of FAT sectors that is counted", {{68, OleImage::FREE}, {72, 1}}, 0},
        {"another negative number", {{60, 0xFFFFFFFD}, {64, 0}}, 0},
        {"an unused entry with an impossible name", {{unused + 64, 0x0000FFFF}}, 2},
        {"a used one", {{image.entryOffset(1) + 64, 0x0102FFFF}}, 0},
        {"an unused one by a type of its own", {{unused + 64, 0x0009FFFF}}, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        OleImage changed = image;
        for (const auto& [offset, value] : c.fields) changed.set(offset, value);
        Opened opened(changed);
        EXPECT_FALSE(opened.isOpen);
        EXPECT_EQ(opened.file.getDocumentKind(), 0);
        opened.file.setAcceptsLooseFiles(true);
        EXPECT_EQ(opened.file.OLEopen(&opened.io), c.kind != 0);
        EXPECT_EQ(opened.file.getDocumentKind(), c.kind);
    }
}

TEST(OleCompFile, survivesChainsThatLieAndTreesThatLoop) {
    const std::string large = patternBytes(200 * 512);
    const std::string small = patternBytes(10 * 64, 2);
    const OleImage image({{u"small", small}, {u"large", large}, {u"b", "x"}, {u"c", "x"}, {u"d", "y"}});
    const std::uint32_t first = image.get32(image.entryOffset(2) + 116), directory = image.firstDirectory;
    const std::uint32_t mini = image.get32(image.entryOffset(0) + 116);
    constexpr int notOpened = -2, noStream = -1;
    struct Case {
        const char* fault;
        std::size_t offset;
        std::uint64_t value;
        const char* name;
        int bytes;  // read of that stream
        unsigned width = 4;
    };
    const Case cases[] = {
        {"a loop", image.fatOffset(first + 4), first + 1, "large", 5 * 512},
        {"a long loop", image.fatOffset(first + 150), first + 9, "large", 151 * 512},
        {"a loop of one", image.fatOffset(first), first, "large", 512},
        {"leads outside", image.fatOffset(first + 4), 0x7FFFFFFF, "large", 5 * 512},
        {"an early end", image.fatOffset(first + 4), OleImage::END, "large", 5 * 512},
        {"no start", image.entryOffset(2) + 116, OleImage::FREE, "large", 0},
        {"four billion bytes claimed", image.entryOffset(2) + 120, 0xFFFFFFFF, "large", 200 * 512},
        {"a mini loop", image.miniFatOffset(3), 1, "small", 4 * 64},
        {"mini, outside", image.miniFatOffset(3), 0x7FFFFFFF, "small", 4 * 64},
        {"no mini stream", image.entryOffset(0) + 116, OleImage::END, "small", noStream},
        {"no root", image.entryOffset(0) + 66, 0, "small", noStream, 1},
        {"a mini stream that loops", image.fatOffset(mini), mini, "small", 512},
        {"a directory that loops", image.fatOffset(directory), directory, "large", notOpened},
        {"a directory that ends in a free sector", image.fatOffset(directory), OleImage::FREE, "large", notOpened},
        {"a name longer than its field", image.entryOffset(1) + 64, 66, "large", notOpened, 2},
        {"a name as long as its field", image.entryOffset(1) + 64, 64, "large", 200 * 512, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        OleImage changed = image;
        Opened opened(changed.set(c.offset, c.value, c.width));
        EXPECT_EQ(opened.isOpen, c.bytes != notOpened);
        const std::string& data = c.name[0] == 'l' ? large : small;
        EXPECT_TRUE(isSame(opened.read({c.name}), c.bytes < 0 ? "no stream" : data.substr(0, std::size_t(c.bytes))));
    }
    OleImage loops = image;
    loops.set(image.fatOffset(image.firstMiniFat), image.firstMiniFat).set(64, 2);
    EXPECT_FALSE(Opened(loops).isOpen) << "a mini FAT that loops";
    for (const unsigned link : {68u, 72u, 76u}) {  // left, right, child
        for (const std::uint32_t to : {0u, 3u, 1000u, 0x80000000u}) {
            OleImage changed = image;
            for (std::uint32_t i = 0; i < 6; ++i) changed.set(image.entryOffset(i) + link, to);
            EXPECT_EQ(Opened(changed).index({"none"}), -1);
        }
    }
}

TEST(OleCompFile, walksTheDifatOnceAndBoundsTheTable) {
    OleImage loops({{u"last", patternBytes(5000)}}, {.sectorShift = 7, .trailingSectors = 12000});
    ASSERT_GT(loops.difatSectors, 4u);
    loops.set(44, 0xFFFFFFFF).set(loops.sectorOffset(loops.firstDifat + 1) - 4, loops.firstDifat);
    EXPECT_TRUE(isSame(Opened(loops).read({"last"}), patternBytes(5000))) << "its chain is in the first FAT sectors";

    OleImage repeats({{u"last", patternBytes(5000)}}, {.sectorShift = 12, .trailingSectors = 5});
    repeats.set(44, 109 + 5 * 1023).set(68, repeats.firstTrailing);
    for (std::uint32_t i = 0; i < 109; ++i) repeats.set(76 + 4 * i, repeats.firstFat);
    for (std::uint32_t i = 0; i < 5 * 1024; ++i) {
        const bool isLink = i % 1024 == 1023;
        repeats.set(repeats.sectorOffset(repeats.firstTrailing) + 4 * i,
                    isLink ? repeats.firstTrailing + i / 1024 + 1 : repeats.firstFat);
    }
    Opened opened(repeats);
    EXPECT_TRUE(isSame(opened.read({"last"}), patternBytes(5000)));
    EXPECT_NE(opened.file.getNextBlock(0, false), -1);
    EXPECT_EQ(opened.file.getNextBlock(2 * 1024, false), -1) << "one FAT sector that is named 5224 times is read again";
}

TEST(OleCompFile, readsWhatATruncatedFileStillHas) {
    const std::string large = patternBytes(4097);
    const OleImage image({{u"large", large}, {u"small", "small"}}, {.sectorShift = 7});
    for (std::size_t size = 0; size < image.bytes.size(); size += size % 128 == 0 || size < 520 ? 1 : 127) {
        EXPECT_FALSE(Opened(image.bytes.substr(0, size)).isOpen) << size << ": the FAT is the last thing in it";
    }
    // The same file with its tables first: what is cut off is the stream.
    OleImage tail({{u"other", patternBytes(4097, 5)}, {u"large", large}});
    const std::uint32_t first = tail.get32(tail.entryOffset(2) + 116);
    const std::string sectors = tail.bytes.substr(tail.sectorOffset(first), 9 * 512);
    const auto moved = static_cast<std::uint32_t>((tail.bytes.size() - 512) / 512);
    tail.set(tail.entryOffset(2) + 116, moved);
    for (std::uint32_t i = 0; i < 9; ++i) tail.set(tail.fatOffset(moved + i), i == 8 ? OleImage::END : moved + i + 1);
    const std::size_t before = tail.bytes.size();
    tail.bytes += sectors;
    for (std::size_t kept = 0; kept <= large.size(); kept += 97) {
        EXPECT_TRUE(isSame(Opened(tail.bytes.substr(0, before + kept)).read({"large"}), large.substr(0, kept)));
    }
}

TEST(OleCompFile, comparesNamesByNoLanguage) {
    const icu::Locale before = icu::Locale::getDefault();
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("tr"), status);
    Opened opened(OleImage({{u"Title", "a"}, {u"stra\u00DFe", "b"}}));
    EXPECT_TRUE(isSame(opened.read({"TITLE"}), "a"));
    EXPECT_TRUE(isSame(opened.read({"Stra\xC3\x9F"
                                    "E"}),
                       "b"));
    icu::Locale::setDefault(before, status);
}

struct SeekCase {
    const char* fault;
    int offset;
    int whence;
    bool succeeds;
    long position;
};
// In a stream of 5000 bytes, from position 100.
const SeekCase seekCases[] = {
    {"start", 0, SEEK_SET, true, 0},
    {"current", 50, SEEK_CUR, true, 150},
    {"back from current", -100, SEEK_CUR, true, 0},
    {"back from the end", -1, SEEK_END, true, 4999},
    {"the end", 0, SEEK_END, true, 5000},
    {"before the start", -101, SEEK_CUR, false, 100},
    {"behind the last sector", 5120, SEEK_SET, false, 5120},
    {"far behind", 0x7FFFFFFF, SEEK_END, false, 0x7FFFFFFFL + 5000},
    {"unknown origin", 0, 3, false, 100},
};

TEST(OleStream, seeks) {
    const std::string data = patternBytes(5000);
    for (const std::uint32_t cutoff : {4096u, 6000u}) {  // in sectors and in the mini stream
        const OleImage image({{u"other", patternBytes(4096)}, {u"s", data}}, {.cutoff = cutoff});
        for (const SeekCase& c : seekCases) {
            SCOPED_TRACE(c.fault);
            Opened opened(image);
            const auto stream = opened.stream({"S"});
            ASSERT_GE(stream->OLEseek(100, SEEK_SET), 0);
            const long offset = stream->OLEseek(c.offset, c.whence);
            EXPECT_EQ(offset >= 0, c.succeeds);
            EXPECT_EQ(stream->OLEtell(), c.position);
            unsigned char byte = 0;
            const auto at = static_cast<std::size_t>(c.position);
            EXPECT_EQ(stream->OLEread(&byte, 1), at < data.size() ? 1u : 0u);
            if (at < data.size()) {
                EXPECT_EQ(static_cast<char>(byte), data[at]);
            }
            if (at < data.size() && c.succeeds) {
                EXPECT_EQ(image.bytes[static_cast<std::size_t>(offset)], data[at]);
            }
        }
    }
    Opened opened(OleImage({{u"whole", patternBytes(4096)}, {u"empty", ""}}));
    const auto whole = opened.stream({"whole"});
    EXPECT_GT(whole->OLEseek(0, SEEK_END), 0) << "the end is behind the last sector";
    EXPECT_TRUE(whole->GetStreamChainIndex(7));
    EXPECT_FALSE(whole->GetStreamChainIndex(8));
    EXPECT_FALSE(whole->GetStreamChainIndex(-1));
    EXPECT_EQ(opened.stream({"empty"})->OLEseek(0, SEEK_SET), 0);
    EXPECT_FALSE(whole->GetStreamChain(0)) << "the root is no stream";
    EXPECT_EQ(whole->GetStreamSize(), 0u);
}

TEST(OleStream, copiesToAFile) {
    const LumTest::TempFolder folder;
    const std::string path = folder.getPath() + "copy";
    const std::string data = patternBytes(700000);
    OleImage image({{u"s", data}});
    Opened opened(image);
    const auto stream = opened.stream({"s"});
    stream->OLEseek(9, SEEK_SET);
    EXPECT_TRUE(stream->CopyToFile(path.c_str()));
    EXPECT_TRUE(LumTest::readFile(path) == data);
    EXPECT_EQ(stream->OLEtell(), 9);
    EXPECT_FALSE(stream->CopyToFile((folder.getPath() + "no/copy").c_str()));
    image.set(image.entryOffset(1) + 120, 800000);
    EXPECT_FALSE(Opened(image).stream({"s"})->CopyToFile(path.c_str())) << "shorter than it states";
}

TEST(LumOleStreamBuf, endsAtItsLimit) {
    for (const int size : {0, 1, 4095, 4096, 4097, 10000}) {
        const std::string data = patternBytes(static_cast<std::size_t>(size));
        Opened opened(OleImage({{u"s", data}}));
        for (const int limit : {-1, 0, 1, 4095, 4096, 4097, 8192, 9999, 20000}) {
            const auto stream = opened.stream({"s"});
            LumOleStreamBuf buffer(stream.get(), limit);
            std::ostringstream out;
            for (int c; (c = buffer.sbumpc()) != EOF;) out << static_cast<char>(c);
            const auto expected = limit < 0 ? data.size() : std::min(data.size(), static_cast<std::size_t>(limit));
            EXPECT_EQ(out.str(), data.substr(0, expected)) << size << " " << limit;
        }
    }
    LumOleStreamBuf none(nullptr, -1);
    EXPECT_EQ(none.sgetc(), EOF);
}

TEST(OleDetect, tellsTheKindOfDocument) {
    const OleNode user{u"Current User", std::string(20, 'u')};
    const OleNode shortUser{u"Current User", std::string(19, 'u')};
    const OleNode slides{u"PowerPoint Document", "p"};
    struct Case {
        const char* fault;
        std::vector<OleNode> tree;
        int kind;
    };
    const Case cases[] = {
        {"word processor", {{u"WORDDOCUMENT", "w"}, {u"Workbook", "x"}}, 1},
        {"spreadsheet", {user, slides, {u"workbook", "x"}}, 2},
        {"presentation", {user, slides, {u"DocumentViewStyles", "x"}}, 3},
        {"presentation in a storage", {oleStorage(u"PP97_DUALSTORAGE", {user, slides})}, 3},
        {"current user too short", {shortUser, slides}, 0},
        {"slides missing beside it", {user, oleStorage(u"PP97_DUALSTORAGE", {slides})}, 0},
        {"a storage without both hides the root", {user, slides, oleStorage(u"PP97_DUALSTORAGE", {shortUser})}, 3},
        {"Japanese word processor", {{u"DocumentViewStyles", "x"}}, 4},
        {"not at the root", {oleStorage(u"a", {{u"WordDocument", "x"}})}, 0},
        {"a storage with the name", {oleStorage(u"WordDocument", {})}, 0},
        {"nothing", {}, 0},
    };
    for (const Case& c : cases) {
        std::istringstream in(OleImage(c.tree).bytes);
        EXPECT_EQ(OleCompFile::detectOLEDocument(in), c.kind) << c.fault;
        in.clear();
        in.seekg(0);
        EXPECT_TRUE(OleCompFile::isOLEUri(in)) << c.fault;
    }
    std::istringstream zip("PK\3\4"), none("");
    EXPECT_FALSE(OleCompFile::isOLEUri(zip));
    EXPECT_EQ(OleCompFile::detectOLEDocument(none), 0);
}

}  // namespace
