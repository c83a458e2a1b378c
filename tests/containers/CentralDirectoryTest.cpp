#include <gtest/gtest.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/LumStrStream.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <vector>

#include <support/ZipBytes.h>
#include "support/PieceStream.h"

namespace LumCommon {
namespace {

using LumTest::deflatedMember;
using LumTest::descriptor;
using LumTest::endRecord;
using LumTest::littleEndian;
using LumTest::Members;
using LumTest::membersOf;
using LumTest::recordOf;
using LumTest::ZipArchive;
using LumTest::ZipMember;
using LumTest::ZipRecord;

/// A stored member whose header leaves its sizes to a descriptor. One without signature, or none at all, cannot be
/// searched for.
ZipMember streamed(const std::string& name, const std::string& data) {
    return {.name = name, .data = data, .flags = 8, .claimedData = 0};
}

const std::string bareDescriptor(12, '\7');

std::string zip64Field(std::initializer_list<std::uint64_t> values) {
    std::string content;
    for (const std::uint64_t value : values) content += littleEndian(value, 8);
    return littleEndian(0x5455, 2) + littleEndian(1, 2) + "x" + littleEndian(1, 2) + littleEndian(content.size(), 2) +
           content;
}

/// The end of an archive in which only the records of zip64 tell where the directory lies.
std::string zip64End(std::uint64_t size, std::uint64_t offset) {
    return "PK\6\6" + littleEndian(44, 8) + std::string(28, '\0') + littleEndian(size, 8) + littleEndian(offset, 8) +
           "PK\6\7" + std::string(16, '\0') + endRecord(0xFFFFFFFFu, 0xFFFFFFFFu);
}

std::string withDirectory(const std::string& body, const std::string& directory) {
    return body + directory + endRecord(directory.size(), body.size());
}

struct DirectoryCase {
    const char* fault;
    std::string bytes;
    Members members;
};

std::vector<DirectoryCase> readableCases() {
    const ZipMember a{.name = "a", .data = "one"};
    const ZipMember s = streamed("s", "two");
    const ZipMember z{.name = "z", .data = "zip", .claimedData = 0xFFFFFFFFu};
    const std::string archive = ZipArchive().add(a).add(s, bareDescriptor).add(a).bytes();
    ZipArchive packed = ZipArchive().add(a);
    ZipMember deflated = deflatedMember("d", "some text");
    packed.directory += recordOf(deflated, packed.body.size()).bytes();
    deflated.flags = 8;
    deflated.claimedData = deflated.uncompressed = deflated.method = 0;  // the header knows nothing at all
    packed.body += deflated.bytes() + bareDescriptor;
    const std::string record = recordOf(s, 0).bytes();
    const std::string backwards = recordOf(a, s.bytes().size()).bytes() + record;
    ZipRecord wide{.name = "s", .compressed = 0xFFFFFFFFu, .uncompressed = 0xFFFFFFFFu, .extra = zip64Field({3, 3})};
    ZipRecord far{.name = "s", .offset = 0xFFFFFFFFu, .compressed = 3, .extra = zip64Field({0})};
    const Members two{{"s", "two"}};
    return {
        {"the list ends at a bare descriptor", archive, {{"a", "one"}, {"s", "two"}, {"a", "one"}}},
        {"the local header is believed", packed.bytes(), {{"a", "one"}, {"d", "some text"}}},
        {"the directory's order", withDirectory(s.bytes() + a.bytes(), backwards), {{"s", "two"}, {"a", "one"}}},
        {"the longest comment hides it", ZipArchive().add(s).bytes(std::string(65535, 'P')), two},
        {"an end record in the comment", ZipArchive().add(s).bytes(endRecord(46, 0) + "in a comment"), two},
        {"bytes behind the archive hide it", ZipArchive().add(s).bytes() + "\n\n", two},
        {"the directory of an archive inside",
         ZipArchive().add(streamed("in.zip", archive)).add(a).bytes(),
         {{"in.zip", archive}, {"a", "one"}}},
        {"sizes of zip64 without descriptor", ZipArchive().add(z).add(a).bytes(), {{"z", "zip"}, {"a", "one"}}},
        {"the extra field of zip64", withDirectory(s.bytes(), wide.bytes()), two},
        {"an offset of zip64", withDirectory(s.bytes(), far.bytes()), two},
        {"the end records of zip64", s.bytes() + record + zip64End(record.size(), s.bytes().size()), two},
    };
}

std::vector<DirectoryCase> lyingCases() {
    const ZipMember a{.name = "a", .data = "one"};
    const ZipMember s = streamed("s", "two");
    const std::string found = s.bytes() + descriptor(3);  // can be read without a directory
    const std::string walked = streamed("e", "").bytes() + descriptor(0) + a.bytes();
    const std::string body = s.bytes() + a.bytes();
    const std::string record = recordOf(s, 0).bytes();
    const std::string other = recordOf(a, s.bytes().size()).bytes();
    const ZipRecord lie{.name = "x", .compressed = 3}, nowhere{.name = "x", .offset = 0xFFFFFF00u};
    const ZipRecord inside{.name = "x", .offset = body.size()};
    const ZipRecord far{.name = "s", .offset = 0xFFFFFFFFu, .extra = zip64Field({~0ull})};
    const ZipRecord longName{.name = "s", .compressed = 3, .claimedName = 0xFFFF};
    const ZipRecord greedy{.name = "s", .compressed = 0xFFFFFFF0u};
    const ZipRecord greedyToo{.name = "a", .offset = s.bytes().size(), .compressed = 0xFFFFFFF0u};
    const Members searched{{"s", "two"}}, both{{"s", "two"}, {"a", "one"}};
    return {
        {"the walk could go on", withDirectory(walked, lie.bytes()), {{"e", ""}, {"a", "one"}}},
        {"it lacks the member", withDirectory(found, nowhere.bytes()), searched},
        {"another archive's", withDirectory(found, record) + ZipArchive().add(a).bytes(), searched},
        {"it is larger than the file", found + record + endRecord(0xFFFFFFF0u, 0), searched},
        {"it is behind itself", found + record + endRecord(record.size(), 0xFFFFFFF0u), searched},
        {"its size is one too small", found + record + endRecord(record.size() - 1, found.size()), searched},
        {"a name longer than all", withDirectory(found, longName.bytes()), searched},
        {"a zip64 offset far away", withDirectory(found, far.bytes()), searched},
        {"a zip64 end that wraps", found + record + zip64End(~0ull, ~0ull), searched},
        {"one bad offset costs the others", withDirectory(body, nowhere.bytes() + record + other), both},
        {"an offset into the directory", withDirectory(body, record + other + inside.bytes()), both},
        {"the second record of a header", withDirectory(body, record + lie.bytes() + other), both},
        {"records behind other bytes", withDirectory(body, record + "PK??" + other), searched},
        {"data that reach into the next", withDirectory(body, greedy.bytes() + greedyToo.bytes()), both},
    };
}

TEST(LumZipFile, takesMembersThatCannotBeWalkedFromTheDirectory) {
    std::vector<DirectoryCase> cases = readableCases();
    std::ranges::move(lyingCases(), std::back_inserter(cases));
    for (const DirectoryCase& c : cases) {
        SCOPED_TRACE(c.fault);
        LumStrStream exact(c.bytes.data(), c.bytes.size(), true);  // of its exact size, for the sanitizer
        EXPECT_EQ(membersOf(LumZipFile(&exact, false)), c.members);
        LumTest::PieceStream source(c.bytes, 7);
        LumMemStream memory(&source, 16);
        EXPECT_EQ(membersOf(LumZipFile(&memory, false)), c.members) << "from memory blocks";
        std::istringstream behind("#!prefix" + c.bytes);
        behind.seekg(8);
        EXPECT_EQ(membersOf(LumZipFile(&behind, false)), c.members) << "behind other bytes";
    }
}

TEST(LumZipFile, everyCutOfAnArchiveWithDirectoryCanBeRead) {
    const std::string whole =
        ZipArchive().add(deflatedMember("a", "one")).add(streamed("s", "two"), bareDescriptor).bytes("comment");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        LumStrStream in(whole.data(), size, true);
        const Members members = membersOf(LumZipFile(&in, false));
        for (const auto& [name, data] : members) {
            EXPECT_TRUE(std::string("one").starts_with(data) || data == "two") << name << ": " << data;
        }
        // A cut comment does not matter; without the end record nothing tells where the second member ends.
        EXPECT_EQ(members.size() == 2 && members[1].second == "two", size >= whole.size() - 7);
    }
}

TEST(LumZipFile, overlappingMembersDoNotMultiplyTheBytes) {
    // 20,000 headers that all claim the rest of the file: 20 GB, were they believed; so were the names of the headers.
    ZipArchive archive;
    for (int i = 0; i < 20000; ++i) {
        const ZipMember member{
            .name = "a", .data = "", .flags = 8, .claimedData = 0, .claimedName = i == 0 ? 1u : 0xFFFFu};
        archive.directory += ZipRecord{.name = "a", .offset = archive.body.size(), .compressed = 0xFFFFFFF0u}.bytes();
        archive.body += member.bytes();
    }
    const std::string bytes = archive.bytes();
    LumStrStream in(bytes.data(), bytes.size(), true);
    const LumZipFile zip(&in, false);
    EXPECT_EQ(zip.getFileEntryCount(), 20000u);
    std::size_t total = 0;
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) total += zip.getFileEntry(i)->readCompressedData().size();
    EXPECT_LT(total, bytes.size());
}

}  // namespace
}  // namespace LumCommon
