#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/CountedMemory.h"
#include "support/PieceStream.h"
#include "support/Recipe.h"
#include "support/Sweeps.h"
#include "support/TempFolder.h"
#include "support/ZipBytes.h"

namespace LumCommon {
namespace {

using LumTest::contentOf;
using LumTest::deflatedMember;
using LumTest::Members;
using LumTest::membersOf;
using LumTest::ZipArchive;
using LumTest::ZipMember;

const std::string text = [] {
    std::string made;
    for (int i = 0; i < 900; ++i) made += std::to_string(i * 7919) + ' ';
    return made;
}();

TEST(LumZipFile, hasTheMembersOfTheRows) {
    std::map<std::string, std::string> names;
    for (auto& row : LumTest::readRows("containers/zip.txt")) {
        row.resize(3);
        const std::string fault = LumTest::utf8(row[0]), bytes = LumTest::recipeBytes(row[1], names);
        SCOPED_TRACE(fault);
        if (fault.starts_with("= ")) {
            names[fault.substr(2)] = bytes;
            continue;
        }
        const bool isZip = !row[2].startsWith(u"no zip");
        Members expected;
        std::istringstream words(LumTest::textOf(row[2]).substr(isZip ? 0 : 6));
        for (std::string word; words >> word;) {
            const std::size_t equals = word.find('=');
            expected.emplace_back(LumTest::fillIn(word.substr(0, equals), names),
                                  LumTest::fillIn(word.substr(equals + 1), names));
        }
        LumStrStream exact(bytes.data(), bytes.size(), true);  // of its exact size, for the sanitizer
        EXPECT_EQ(membersOf(LumZipFile(&exact, false)), expected);
        LumTest::PieceStream source(bytes, 7);
        EXPECT_EQ(membersOf(LumZipFile(new LumMemStream(&source, 16), true)), expected) << "from memory blocks";
        std::istringstream after("#!prefix" + bytes);
        after.seekg(8);
        EXPECT_EQ(LumZipFile::isZipFile(&after), isZip);
        EXPECT_EQ(after.tellg(), 8) << "the stream has moved";
        EXPECT_EQ(membersOf(LumZipFile(&after, false)), expected) << "after other bytes";
    }
}

TEST(LumZipFile, everyPrefixGivesThePrefixOfEachMember) {
    const ZipMember members[] = {{.name = "a", .data = "one", .extra = "extra"},
                                 deflatedMember("d/b", text),
                                 {.name = "s", .data = "two", .flags = 8, .claimedData = 0}};
    const std::string contents[] = {"one", text, "two"};
    ZipArchive archive;
    std::vector<std::size_t> starts;
    for (const ZipMember& member : members) {
        starts.push_back(archive.body.size());
        archive.add(member);
    }
    archive.body += std::string(12, '\7');  // a descriptor without signature: the directory must tell
    const std::string whole = archive.bytes("comment");
    LumTest::forEachPrefix(whole, [&](const std::string& cut) {
        LumStrStream in(cut.data(), cut.size(), true);
        LumZipFile zip(&in, false);
        unsigned count = 0;
        for (std::size_t i = 0; i < 3 && cut.size() >= starts[i] + 4; ++i) {
            LumZipFileEntry* const entry = zip.getFileEntry(count++);
            ASSERT_NE(entry, nullptr);
            const std::size_t headerEnd = starts[i] + members[i].header().size();
            EXPECT_EQ(entry->getFileName().isEmpty(), cut.size() < headerEnd - members[i].extra.size());
            const std::unique_ptr<std::istream> fresh(entry->getUncompressedStream(true));
            const std::string content = contentOf(fresh.get());
            EXPECT_EQ(content, contents[i].substr(0, content.size())) << "cut data give other bytes";
            if (i == 2) {  // a cut comment does not matter
                EXPECT_EQ(content == "two", cut.size() >= whole.size() - 7);
                break;
            }
            const std::string data = members[i].data.substr(0, std::max(cut.size(), headerEnd) - headerEnd);
            const auto raw = entry->readCompressedData();
            EXPECT_EQ(std::string(raw.begin(), raw.end()), data);
            EXPECT_TRUE(content.size() <= data.size() * 1032 && (data != members[i].data || content == contents[i]));
        }
        EXPECT_EQ(zip.getFileEntryCount(), count);
    });
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
        EXPECT_EQ(contentOf(entry->getCompressedStream(false)),
                  i == 0 ? text : LumTest::deflated(text, LumTest::Wrapper::RAW));
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
    const LumTest::TempFolder folder;
    std::istringstream first(ZipMember{.name = "a"}.bytes()), second(ZipMember{.name = "b"}.bytes() + LumTest::zipEnd);
    LumZipFile zip(&first, false);
    zip.open(&second, false);
    EXPECT_EQ(membersOf(zip), (Members{{"b", ""}}));
    EXPECT_EQ(zip.getFileEntry(UnicodeString(u"b").getTerminatedBuffer()), zip.getFileEntry(0u));
    for (const char16_t* other : {u"a", u"B", u"/b", u"bb", u""}) EXPECT_EQ(zip.getFileEntry(other), nullptr);
    EXPECT_EQ(zip.getFileEntry(~0u), nullptr);
    auto* const owned = new std::istringstream(ZipMember{.name = "c"}.bytes());
    zip.open(owned, true);
    owned->clear();
    owned->seekg(0);
    zip.open(owned, true);  // must not be deleted in between
    EXPECT_EQ(membersOf(zip), (Members{{"c", ""}}));
    LumTest::writeFile(folder.getPath() + "zip", second.str());
    zip.open((folder.getPath() + "zip").c_str());
    EXPECT_EQ(membersOf(zip), (Members{{"b", ""}}));
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
        EXPECT_EQ(LumZipFile::detectOOXDocument(in), 0);
        EXPECT_EQ(LumZipFile(in, false).getFileEntryCount(), 0u);
    }
    for (const char* path : {static_cast<const char*>(nullptr), "", "/", "/no/such/file"}) {
        EXPECT_FALSE(LumZipFile::isZipFile(path));
        EXPECT_EQ(LumZipFile::detectOOXDocument(path), 0);
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

TEST(LumZipFile, claimsCostNoMemory) {
    std::istringstream in(ZipMember{.name = "a", .data = "x", .claimedData = 0xFFFFFFFEu}.bytes());
    LumTest::largestAllocation = 0;
    EXPECT_EQ(membersOf(LumZipFile(&in, false)), (Members{{"a", "x"}}));
    EXPECT_GT(LumTest::largestAllocation, 0u) << "the counter does not count";
    EXPECT_LT(LumTest::largestAllocation, 200000u);
}

TEST(LumZipFile, isReadInTimeThatGrowsWithItsSize) {
    // Headers that leave their sizes to descriptors that are not there: each would be searched for to the end.
    const std::string one = ZipMember{.name = "a", .flags = 8}.bytes();
    LumTest::expectLinearTime("a search for every header", 5000, [&one](std::size_t count) {
        std::istringstream in(LumTest::recipeBytes((std::to_string(count) + "*one").c_str(), {{"one", one}}));
        EXPECT_EQ(LumZipFile(&in, false).getFileEntryCount(), count);
    });
}

using Numbers = std::vector<std::uint32_t>;

/// The fields of a member, each with a value of its own: n01 for the first, and so on.
const std::string memberFields = std::string("\x01\0\x02\0\x08\0\x04\0\x05\0\x06\0\0\x86\x03\0\0\0\x08\0\0\x88", 22);

void expectMemberFields(const LumZipMemberFields& fields, unsigned nameLength, unsigned extraLength) {
    EXPECT_EQ(
        (Numbers{fields.versionNeeded, fields.flags, fields.method, fields.modificationTime, fields.modificationDate,
                 fields.crc32, fields.compressedSize, fields.uncompressedSize, fields.nameLength, fields.extraLength}),
        (Numbers{1, 2, 8, 4, 5, 0x86000006u, 3, 0x88000008u, nameLength, extraLength}));
}

TEST(LumZipEntry, readsRecordsFieldByField) {
    std::istringstream in("....PK\3\4" + memberFields + std::string("\2\0\4\0", 4) + "nmextrdat|");
    in.seekg(4);
    LumZipFileEntry entry(in);
    EXPECT_EQ(entry.getPosition(), 4);
    EXPECT_EQ(entry.getSignature(), LumZipEntry::SIGNATURE_FILE);
    expectMemberFields(entry.getFields(), 2, 4);
    EXPECT_EQ(entry.getFileName(), UnicodeString(u"nm"));
    EXPECT_EQ(in.get(), '|') << "the stream does not stand after the data";
    const auto data = entry.readCompressedData();
    EXPECT_EQ(std::string(data.begin(), data.end()), "dat");

    in.str(std::string("PK\1\2\x0A\0", 6) + memberFields +
           std::string("\2\0\3\0\4\0\5\0\6\0\7\0\0\x87\x08\0\0\x98", 18) + "nmextcomm|" +
           std::string("PK\7\10crc4\7\0\0\0\x09\0\0\x89PK\5\6", 20) +
           std::string("\1\0\2\0\3\0\4\0\5\0\0\x85\6\0\0\x86\7\0|", 19));
    const LumZipDirectoryEntry file(in);
    EXPECT_EQ(file.getSignature(), LumZipEntry::SIGNATURE_DIRECTORY);
    expectMemberFields(file.getFields(), 2, 3);
    EXPECT_EQ((Numbers{file.getVersionMadeBy(), file.getCommentLength(), file.getDiskNumberStart(),
                       file.getInternalAttributes(), file.getExternalAttributes(), file.getLocalHeaderOffset()}),
              (Numbers{10, 4, 5, 6, 0x87000007u, 0x98000008u}));
    EXPECT_EQ(file.getFileName(), UnicodeString(u"nm"));
    EXPECT_EQ(in.get(), '|') << "the comment is not passed";
    const LumZipExtheaderEntry sizes(in);
    EXPECT_EQ((Numbers{sizes.getSignature(), sizes.getCrc32(), sizes.getCompressedSize(), sizes.getUncompressedSize()}),
              (Numbers{LumZipEntry::SIGNATURE_EXTHEADER, 0x34637263u, 7, 0x89000009u}));
    EXPECT_EQ(LumZipEntry::getSignature(in), LumZipEntry::SIGNATURE_END_DIRECTORY);
    const LumZipEndDirectoryEntry end(in);
    EXPECT_EQ((Numbers{end.getDiskNumber(), end.getDirectoryDisk(), end.getDiskEntryCount(), end.getTotalEntryCount(),
                       end.getDirectorySize(), end.getDirectoryOffset(), end.getCommentLength()}),
              (Numbers{1, 2, 3, 4, 0x85000005u, 0x86000006u, 7}));
    EXPECT_EQ(in.get(), '|');
}

TEST(LumZipEntry, aFieldThatIsCutAndAllAfterItAreZero) {
    // Cut within the CRC: its first two bytes must not become a field of two bytes after it.
    std::istringstream in("PK\3\4" + memberFields.substr(0, 12) + "\0");
    const LumZipFileEntry entry(in);
    EXPECT_EQ(entry.getFields().modificationDate, 5);
    EXPECT_EQ(entry.getCrc32(), 0u);
    EXPECT_EQ(entry.getFields().nameLength, 0);
    std::istringstream three("PK\3");
    EXPECT_EQ(LumZipEntry::getSignature(three), 0u);
    EXPECT_EQ(three.get(), 'P') << "a short look moves or fails the stream";
    std::istringstream failed("PK\3\4");
    failed.setstate(std::ios::failbit);
    const LumZipEntry nothing(failed);
    EXPECT_EQ(nothing.getPosition(), -1);
    EXPECT_EQ(nothing.getSignature(), 0u);
}

}  // namespace
}  // namespace LumCommon
