#include <gtest/gtest.h>
#include <lumcommon/containers/LumZipFileEntry.h>
#include <lumcommon/core/LumPtr.h>

#include <sstream>
#include <vector>

#include <support/ZipBytes.h>

namespace LumCommon {
namespace {

using Numbers = std::vector<std::uint32_t>;

/// The fields of a member, each with a value of its own: n01 for the first, and so on.
const std::string memberFields = std::string("\x01\0\x02\0\x08\0\x04\0\x05\0\x06\0\0\x86\x03\0\0\0\x08\0\0\x88", 22);

void expectMemberFields(const LumZipMemberFields& fields, unsigned nameLength, unsigned extraLength) {
    EXPECT_EQ(
        (Numbers{fields.versionNeeded, fields.flags, fields.method, fields.modificationTime, fields.modificationDate,
                 fields.crc32, fields.compressedSize, fields.uncompressedSize, fields.nameLength, fields.extraLength}),
        (Numbers{1, 2, 8, 4, 5, 0x86000006u, 3, 0x88000008u, nameLength, extraLength}));
}

TEST(LumZipEntry, readsALocalHeaderFieldByField) {
    std::istringstream in("....PK\3\4" + memberFields + std::string("\2\0\4\0", 4) + "nmextrdat|");
    in.seekg(4);
    LumZipFileEntry entry(in);
    EXPECT_EQ(entry.getPosition(), 4);
    EXPECT_EQ(entry.getSignature(), LumZipEntry::SIGNATURE_FILE);
    expectMemberFields(entry.getFields(), 2, 4);
    EXPECT_EQ(entry.getFileName(), UnicodeString(u"nm"));
    EXPECT_EQ(in.get(), '|') << "the stream does not stand behind the data";
    const auto data = entry.readCompressedData();
    EXPECT_EQ(std::string(data.begin(), data.end()), "dat");
}

TEST(LumZipEntry, readsTheOtherRecordsFieldByField) {
    const std::string directory = std::string("PK\1\2\x0A\0", 6) + memberFields +
                                  std::string("\2\0\3\0\4\0\5\0\6\0\7\0\0\x87\x08\0\0\x98", 18) + "nmextcomm|";
    std::istringstream in(directory + LumTest::descriptor(7, 0x89000009u) + "PK\5\6" +
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

TEST(LumZipEntry, aFieldThatIsCutAndAllBehindItAreZero) {
    // Cut within the CRC: its first two bytes must not become a field of two bytes behind it.
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

TEST(LumZipEntry, tellsItsType) {
    std::istringstream in;
    const LumPtr<LumZipEntry> base(new LumZipEntry(in)), file(new LumZipFileEntry(in));
    for (const unsigned id : {0xB84B5A40u, 0x90AF0240u, 0xA4EBD8C4u}) EXPECT_TRUE(base->isA(id) && file->isA(id));
    EXPECT_TRUE(file->isA(0x1E3480DFu));
    EXPECT_FALSE(base->isA(0x1E3480DFu));
    EXPECT_EQ(base->getTypeID(), 0xB84B5A40u);
    EXPECT_EQ(file->getTypeID(), 0x1E3480DFu);
    EXPECT_EQ(base->getTypeName(), UnicodeString(u"LumZipEntry"));
    EXPECT_EQ(file->getTypeName(), UnicodeString(u"LumZipFileEntry"));
}

}  // namespace
}  // namespace LumCommon
