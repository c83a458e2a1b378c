#include <lumcommon/containers/LumZipEntry.h>
#include <lumcommon/containers/detail/ZipFields.h>
#include <lumcommon/core/detail/CheckedText.h>

#include <string>

namespace LumCommon {

namespace detail {

UnicodeString readZipName(std::istream& in, std::uint16_t lengthBytes) {
    // Allocating what is claimed is safe: it is at most 64 KiB, and only the last name of a stream can be incomplete.
    std::string name(lengthBytes, '\0');
    if (readBytes(in, name) < name.size()) return UnicodeString();
    return checked(UnicodeString(name.data(), static_cast<std::int32_t>(name.size())));
}

void skipBytes(std::istream& in, std::uint64_t bytes) noexcept {
    try {
        if (bytes != 0) in.seekg(static_cast<std::streamoff>(bytes), std::ios_base::cur);
    } catch (...) {
        // The stream's state shows it: seekg() sets badbit before rethrowing what its buffer threw.
    }
}

std::streamoff tellPosition(std::istream& in) noexcept {
    try {
        return in.good() ? std::streamoff(in.tellg()) : -1;
    } catch (...) {
        return -1;
    }
}

void rewindTo(std::istream& in, std::streamoff position) noexcept {
    try {
        if (in.bad()) return;
        in.clear();
        in.seekg(position);
    } catch (...) {
        // The stream cannot go back although it reported its position; it is left in the state that it has set itself.
    }
}

StreamPlace::~StreamPlace() {
    if (position_ >= 0) {
        rewindTo(in_, position_);
        return;
    }
    try {
        in_.setstate(std::ios_base::failbit);
    } catch (...) {
        // Thrown because of its exception mask; the state is set.
    }
}

}  // namespace detail

namespace {

std::uint32_t readSignature(std::istream& in) noexcept {
    return detail::RecordReader<detail::ZipSignature>(in).get(detail::ZipSignature::signature);
}

}  // namespace

LumZipEntry::LumZipEntry(std::istream& s)
    : stream_(&s), position_(detail::tellPosition(s)), signature_(readSignature(s)) {}

LumZipEntry::~LumZipEntry() = default;

std::uint32_t LumZipEntry::getSignature(std::istream& s) {
    const std::streamoff position = detail::tellPosition(s);
    if (position < 0) return 0;
    const std::uint32_t signature = readSignature(s);
    detail::rewindTo(s, position);
    return signature;
}

unsigned int LumZipEntry::getTypeID() const { return TYPE_ID; }

bool LumZipEntry::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString LumZipEntry::getTypeName() const { return u"LumZipEntry"; }

LumZipExtheaderEntry::LumZipExtheaderEntry(std::istream& s) : LumZipEntry(s) {
    using Record = detail::ZipDescriptor;
    const detail::RecordReader<Record> record(s, detail::ZipSignature::bytes);
    crc32_ = record.get(Record::crc32);
    compressedSize_ = record.get(Record::compressedSize);
    uncompressedSize_ = record.get(Record::uncompressedSize);
}

LumZipDirectoryEntry::LumZipDirectoryEntry(std::istream& s) : LumZipEntry(s) {
    using Record = detail::ZipDirectoryHeader;
    const detail::RecordReader<Record> record(s, detail::ZipSignature::bytes);
    versionMadeBy_ = record.get(Record::versionMadeBy);
    fields_ = Record::Member::readFrom(record);
    commentLength_ = record.get(Record::commentLength);
    diskNumberStart_ = record.get(Record::diskNumberStart);
    internalAttributes_ = record.get(Record::internalAttributes);
    externalAttributes_ = record.get(Record::externalAttributes);
    localHeaderOffset_ = record.get(Record::localHeaderOffset);
    fileName_ = detail::readZipName(s, fields_.nameLength);
    detail::skipBytes(s, std::uint64_t{fields_.extraLength} + commentLength_);
}

LumZipEndDirectoryEntry::LumZipEndDirectoryEntry(std::istream& s) : LumZipEntry(s) {
    using Record = detail::ZipEndRecord;
    const detail::RecordReader<Record> record(s, detail::ZipSignature::bytes);
    diskNumber_ = record.get(Record::diskNumber);
    directoryDisk_ = record.get(Record::directoryDisk);
    diskEntryCount_ = record.get(Record::diskEntryCount);
    totalEntryCount_ = record.get(Record::totalEntryCount);
    directorySize_ = record.get(Record::directorySize);
    directoryOffset_ = record.get(Record::directoryOffset);
    commentLength_ = record.get(Record::commentLength);
}

}  // namespace LumCommon
