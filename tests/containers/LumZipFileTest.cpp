#include <gtest/gtest.h>
#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/LumStrStream.h>

#include <unistd.h>
#include <atomic>
#include <cstdlib>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>
#include <vector>

#include <support/ZipBytes.h>
#include "support/PieceStream.h"

namespace {
std::atomic<std::size_t> largestAllocation{0};
std::atomic<int> allocationsLeft{-1};  // the one that finds 0 fails; negative: none fails
}  // namespace

// Every allocation of the process passes here, those of the library too. Inlined, the pairs would look mismatched to
// the compiler.
[[gnu::noinline]] void* operator new(std::size_t bytes) {
    if (bytes > largestAllocation) largestAllocation = bytes;
    if (allocationsLeft >= 0 && allocationsLeft-- == 0) throw std::bad_alloc();
    if (void* memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory;
    throw std::bad_alloc();
}
// A sanitizer brings a form of its own, whose blocks std::free may not release.
[[gnu::noinline]] void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    if (bytes > largestAllocation) largestAllocation = bytes;
    if (allocationsLeft >= 0 && allocationsLeft-- == 0) return nullptr;
    return std::malloc(bytes == 0 ? 1 : bytes);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace LumCommon {
namespace {

using LumTest::contentOf;
using LumTest::deflated;
using LumTest::deflatedMember;
using LumTest::descriptor;
using LumTest::Members;
using LumTest::membersOf;
using LumTest::zipEnd;
using LumTest::ZipMember;

std::string rawData(LumZipFileEntry& entry) {
    const auto data = entry.readCompressedData();
    return {data.begin(), data.end()};
}

/// The ways in which an archive may lie before the reader. They differ in what seeking behind the end does.
std::vector<Members> readEveryWay(const std::string& bytes) {
    std::vector<Members> results;
    results.push_back(membersOf(LumZipFile(new std::istringstream(bytes), true)));
    LumStrStream borrowed(bytes.data(), bytes.size(), true);
    results.push_back(membersOf(LumZipFile(&borrowed, false)));
    LumTest::PieceStream source(bytes, 7);
    results.push_back(membersOf(LumZipFile(new LumMemStream(&source, 16), true)));
    const auto path = std::filesystem::temp_directory_path() / ("lumZipFileTest" + std::to_string(::getpid()));
    std::ofstream(path, std::ios::binary) << bytes;
    results.push_back(membersOf(LumZipFile(path.c_str())));
    std::filesystem::remove(path);
    return results;
}

const std::string text = [] {
    std::string made;
    for (int i = 0; i < 900; ++i) made += std::to_string(i * 7919) + ' ';
    return made;
}();

struct WalkCase {
    const char* fault;
    std::string bytes;
    Members members;
    bool isZip = true;
};

std::vector<WalkCase> walkCases() {
    const ZipMember a{.name = "a", .data = "one"};
    const ZipMember b = deflatedMember("d/b", text);
    ZipMember streamed = b;
    streamed.flags = 8;
    streamed.claimedData = 0;
    const std::string inner = streamed.bytes() + descriptor(b.data.size(), text.size()) + zipEnd;
    const ZipMember nested{.name = "z", .data = inner, .flags = 8, .claimedData = 0};
    const ZipMember lying{.name = "l", .data = std::string(60, 'x'), .claimedData = 0xFFFFFFF0u};
    const ZipMember zip64{.name = "z", .data = "x", .claimedData = 0xFFFFFFFFu};
    const ZipMember cutName{.name = "abc", .claimedName = 0xFFFF};
    const ZipMember odd{.name = "o", .data = "s", .method = 12, .flags = 1};
    const ZipMember broken{.name = "d", .data = "\xFF\xFF", .method = 8};
    const ZipMember extra{.name = "e", .data = "one", .extra = "PK\3\4xx"};
    const ZipMember empty{.name = "e", .flags = 8};
    const std::pair<std::string, std::string> readA{"a", "one"}, readB{"d/b", text};
    return {
        {"an empty archive is none", zipEnd, {}},
        {"a directory alone is no archive", "PK\1\2" + std::string(42, '\0'), {}},
        {"two letters make an archive", "PK\3\3" + a.bytes().substr(4), {}, false},
        {"a descriptor makes an archive", descriptor(0) + a.bytes(), {readA}, false},
        {"stored and deflated members", a.bytes() + b.bytes() + zipEnd, {readA, readB}},
        {"an extra field is taken for data", extra.bytes() + b.bytes(), {{"e", "one"}, readB}},
        {"a descriptor with known sizes ends the walk", a.bytes() + descriptor(3) + b.bytes(), {readA, readB}},
        {"sizes in a descriptor are not found", inner.substr(0, inner.size() - 22) + a.bytes(), {readB, readA}},
        {"an inner archive's descriptor is taken", nested.bytes() + descriptor(inner.size()), {{"z", inner}}},
        {"an empty member's descriptor", empty.bytes() + descriptor(0) + a.bytes(), {{"e", ""}, readA}},
        {"a descriptor that lies", streamed.bytes() + descriptor(b.data.size() + 1), {{"d/b", ""}}},
        {"garbage is passed over", a.bytes() + "?" + b.bytes(), {readA}},
        {"the second of two equal names is lost", a.bytes() + a.bytes(), {readA, readA}},
        {"a claim of 4 GiB in 100 bytes", lying.bytes(), {{"l", lying.data}}},
        {"a zip64 marker", zip64.bytes(), {{"z", "x"}}},
        {"a name beyond the end", cutName.bytes(), {{"", ""}}},
        {"encrypted, of another method than deflate", odd.bytes(), {{"o", "s"}}},
        {"data that are not deflate", broken.bytes(), {{"d", ""}}},
    };
}

TEST(LumZipFile, walksTheLocalHeaders) {
    for (const WalkCase& c : walkCases()) {
        SCOPED_TRACE(c.fault);
        for (const Members& read : readEveryWay(c.bytes)) EXPECT_EQ(read, c.members);
        std::istringstream in("before" + c.bytes);
        in.seekg(6);
        EXPECT_EQ(LumZipFile::isZipFile(&in), c.isZip);
        EXPECT_EQ(in.tellg(), 6) << "the stream has moved";
        EXPECT_EQ(membersOf(LumZipFile(&in, false)), c.members) << "behind other bytes";
    }
}

TEST(LumZipFile, findsTheFirstOfItsNameExactly) {
    std::istringstream in(ZipMember{.name = "word/a.xml", .data = "1"}.bytes() + ZipMember{.name = "x"}.bytes() +
                          ZipMember{.name = "word/a.xml", .data = "2"}.bytes());
    const LumZipFile zip(&in, false);
    EXPECT_EQ(zip.getFileEntry(u"word/a.xml"), zip.getFileEntry(0u));
    for (const char16_t* other : {u"word/A.xml", u"/word/a.xml", u"word/a.xm", u""}) {
        EXPECT_EQ(zip.getFileEntry(other), nullptr);
    }
    EXPECT_EQ(zip.getFileEntry(UnicodeString(u"x").getTerminatedBuffer()), zip.getFileEntry(1u));
    EXPECT_EQ(zip.getFileEntry(3u), nullptr);
    EXPECT_EQ(zip.getFileEntry(~0u), nullptr);
}

TEST(LumZipFile, readsNamesAsTheyAreStored) {
    struct NameCase {
        const char* fault;
        std::string bytes;
        UnicodeString name;
    };
    const NameCase cases[] = {
        {"the charset of DOS", "\xC3\xA9\xE6\x97\xA5", u"\u00E9\u65E5"},
        {"a zero ends the name", std::string("a\0b", 3), UnicodeString(u"a\0b", 3)},
        {"malformed bytes lose the member", "a\xFF\xFE", u"a\uFFFD\uFFFD"},
        {"separators are changed", "a\\b/../c//", u"a\\b/../c//"},
        {"a long name", std::string(65535, 'n'), UnicodeString(65535, u'n', 65535)},
        {"no name", "", u""},
    };
    for (const NameCase& c : cases) {
        SCOPED_TRACE(c.fault);
        std::istringstream in(ZipMember{.name = c.bytes, .data = "x"}.bytes());
        const LumZipFile zip(&in, false);
        ASSERT_EQ(zip.getFileEntryCount(), 1u);
        EXPECT_TRUE(zip.getFileEntry(0u)->getFileName() == c.name);
        EXPECT_EQ(zip.getFileEntry(c.name), zip.getFileEntry(0u));
    }
}

TEST(LumZipFile, everyPrefixGivesThePrefixOfEachMember) {
    const ZipMember members[] = {{.name = "a", .data = "one", .extra = "extra"}, deflatedMember("d/b", text)};
    const std::string whole = members[0].bytes() + members[1].bytes() + zipEnd;
    const std::size_t starts[] = {0, members[0].bytes().size()};
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        SCOPED_TRACE(size);
        LumStrStream in(whole.data(), size, true);  // of its exact size, for the sanitizer
        LumZipFile zip(&in, false);
        unsigned count = 0;
        for (unsigned i = 0; i < 2; ++i) {
            if (size < starts[i] + 4) break;
            ++count;
            LumZipFileEntry* const entry = zip.getFileEntry(i);
            ASSERT_NE(entry, nullptr);
            const std::size_t headerEnd = starts[i] + members[i].header().size();
            const std::size_t nameEnd = headerEnd - members[i].extra.size();
            const std::size_t there = size < headerEnd ? 0 : std::min(size - headerEnd, members[i].data.size());
            EXPECT_EQ(entry->getFileName().isEmpty(), size < nameEnd);
            ASSERT_EQ(rawData(*entry), members[i].data.substr(0, there));
            const std::unique_ptr<std::istream> fresh(entry->getUncompressedStream(true));
            const std::string content = contentOf(fresh.get());
            const std::string full = i == 0 ? "one" : text;
            ASSERT_EQ(content, full.substr(0, content.size())) << "cut data give other bytes";
            ASSERT_TRUE(content.size() <= there * 1032 && (there < members[i].data.size() || content == full));
        }
        EXPECT_EQ(zip.getFileEntryCount(), count);
    }
}

TEST(LumZipFile, rewindsItsOwnStreamsAndLetsFreshOnesGo) {
    auto zip = std::make_unique<LumZipFile>(
        new std::istringstream(ZipMember{.name = "s", .data = text}.bytes() + deflatedMember("d", text).bytes() +
                               ZipMember{.name = "unread", .data = "gone"}.bytes()),
        true);
    std::vector<std::unique_ptr<std::istream>> fresh;
    std::vector<LumPtr<LumZipFileEntry>> entries;
    for (unsigned i = 0; i < 2; ++i) {
        LumZipFileEntry* const entry = zip->getFileEntry(i);
        std::istream* const own = entry->getUncompressedStream(false);
        EXPECT_EQ(contentOf(own), text);
        own->setstate(std::ios::eofbit | std::ios::failbit);
        EXPECT_EQ(entry->getUncompressedStream(false), own);
        std::string half(text.size() / 2, '\0');
        own->read(half.data(), static_cast<std::streamsize>(half.size()));
        fresh.emplace_back(entry->getUncompressedStream(true));
        fresh.emplace_back(entry->getUncompressedStream(true));
        EXPECT_EQ(contentOf(fresh.back().get()), text) << "a fresh stream shares a position";
        EXPECT_EQ(contentOf(entry->getUncompressedStream(false)), text) << "not rewound from the middle";
        EXPECT_EQ(contentOf(entry->getCompressedStream(false)), i == 0 ? text : deflated(text));
        EXPECT_EQ(contentOf(entry->getCompressedStream(false)), rawData(*entry));
        entries.emplace_back(entry);
    }
    entries.emplace_back(zip->getFileEntry(2u));
    zip.reset();
    EXPECT_EQ(contentOf(fresh[0].get()), text) << "a fresh stream needs its archive";
    EXPECT_EQ(contentOf(fresh[2].get()), text);
    EXPECT_EQ(contentOf(entries[1]->getUncompressedStream(false)), text) << "read data went with the archive";
    EXPECT_EQ(contentOf(entries[2]->getUncompressedStream(false)), "") << "the deleted stream is read";
}

TEST(LumZipFile, opensAnotherArchiveInPlaceOfTheFirst) {
    std::istringstream first(ZipMember{.name = "a"}.bytes()), second(ZipMember{.name = "b"}.bytes() + zipEnd);
    LumZipFile zip(&first, false);
    zip.open(&second, false);
    EXPECT_EQ(membersOf(zip), (Members{{"b", ""}}));
    EXPECT_EQ(zip.getFileEntry(u"a"), nullptr);
    auto* const owned = new std::istringstream(ZipMember{.name = "c"}.bytes());
    zip.open(owned, true);
    owned->clear();
    owned->seekg(0);
    zip.open(owned, true);  // must not be deleted in between
    EXPECT_EQ(membersOf(zip), (Members{{"c", ""}}));
    zip.open("/no/such/file");
    EXPECT_EQ(zip.getFileEntryCount(), 0u);
}

TEST(LumZipFile, hasNoEntriesWhereNothingCanBeRead) {
    const std::string good = ZipMember{.name = "a", .data = "one"}.bytes();
    LumTest::PieceStream pipe(good);
    std::istringstream failed(good), ended(good);
    failed.setstate(std::ios::failbit);
    contentOf(&ended);
    for (std::istream* in : std::initializer_list<std::istream*>{nullptr, &pipe, &failed, &ended}) {
        EXPECT_FALSE(LumZipFile::isZipFile(in));
        EXPECT_EQ(LumZipFile(in, false).getFileEntryCount(), 0u);
    }
    for (const char* path : {static_cast<const char*>(nullptr), "", "/", "/no/such/file"}) {
        EXPECT_FALSE(LumZipFile::isZipFile(path));
        EXPECT_EQ(LumZipFile(path).getFileEntryCount(), 0u);
    }
    std::istringstream strict(good.substr(0, 33));
    strict.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
    EXPECT_NO_THROW(LumZipFile(&strict, false).getFileEntry(0u)->readCompressedData());
    LumTest::PieceStream broken(good);
    broken.getBuffer().failAfter(10);
    LumMemStream memory(&broken, 16);
    EXPECT_TRUE(membersOf(LumZipFile(&memory, false)).empty());
}

TEST(LumZipFile, claimsAndWantOfMemoryCostNothing) {
    const std::string lying = ZipMember{.name = "a", .data = "x", .claimedData = 0xFFFFFFFEu}.bytes();
    // A package whose main part is deflated, with a descriptor that only the directory leads over.
    const std::string bytes =
        LumTest::ZipArchive()
            .add({.name = "_rels/.rels",
                  .data = "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>"
                          "<Relationship Type='http://schemas.openxmlformats.org/officeDocument/2006/"
                          "relationships/officeDocument' Target='/m'/></Relationships>",
                  .flags = 8,
                  .claimedData = 0})
            .add({.name = "[Content_Types].xml",
                  .data = "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'><Override "
                          "PartName='/m' ContentType='application/vnd.openxmlformats-officedocument.themeManager+xml'/>"
                          "</Types>"})
            .add(deflatedMember("m", text))
            .bytes();
    std::istringstream in(lying);
    largestAllocation = 0;
    EXPECT_EQ(membersOf(LumZipFile(&in, false)), (Members{{"a", "x"}}));
    EXPECT_GT(largestAllocation, 0u) << "the counter does not count";
    EXPECT_LT(largestAllocation, 200000u);
    for (int n = 0;; ++n) {
        ASSERT_LT(n, 2000);
        std::istringstream again(bytes);
        LumZipFile zip;
        int kind = -1;
        allocationsLeft = n;
        try {
            zip.open(&again, false);
            for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
                zip.getFileEntry(i)->getUncompressedStream(false);
                delete zip.getFileEntry(i)->getUncompressedStream(true);
            }
            kind = zip.detectOOXDocument();
        } catch (const std::bad_alloc&) {
        } catch (const LumError&) {  // a stream that fails for want of memory has failed for the parser
        }
        const bool hasFailed = allocationsLeft < 0;
        allocationsLeft = -1;
        SCOPED_TRACE("after allocation " + std::to_string(n));
        EXPECT_TRUE(hasFailed || (zip.getFileEntryCount() == 3 && kind == 16));
        if (zip.getFileEntryCount() != 3) zip.open((again.clear(), again.seekg(0), &again), false);
        EXPECT_EQ(zip.detectOOXDocument(), 16) << "not usable afterwards";
        EXPECT_EQ(contentOf(zip.getFileEntry(2u)->getUncompressedStream(false)), text);
        EXPECT_TRUE(hasFailed || n > 60) << "hardly any allocation was made to fail";
        if (!hasFailed) break;
    }
}

TEST(LumZipFile, isReadInTimeThatGrowsWithItsSize) {
    // Headers that leave their sizes to descriptors that are not there: a search for each would read 10^11 bytes.
    const std::string one = ZipMember{.name = "a", .flags = 8}.bytes();
    std::string bytes;
    while (bytes.size() < 3'000'000) bytes += one;
    std::istringstream in(bytes);
    EXPECT_EQ(LumZipFile(&in, false).getFileEntryCount(), bytes.size() / one.size());
}

}  // namespace
}  // namespace LumCommon
