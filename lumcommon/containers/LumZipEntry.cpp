#include <lumcommon/containers/LumZipEntry.h>
#include <lumcommon/containers/detail/ZipFields.h>

#include <string>

namespace LumCommon {

namespace detail {

LumZipMemberFields takeZipMemberFields(BoundedReader& header) noexcept {
    LumZipMemberFields fields;
    fields.versionNeeded = header.take16();
    fields.flags = header.take16();
    fields.method = header.take16();
    fields.modificationTime = header.take16();
    fields.modificationDate = header.take16();
    fields.crc32 = header.take32();
    fields.compressedSize = header.take32();
    fields.uncompressedSize = header.take32();
    fields.nameLength = header.take16();
    fields.extraLength = header.take16();
    return fields;
}

UnicodeString readZipName(std::istream& in, std::uint16_t lengthBytes) {
    // The claim may size this: it is at most 64 KiB, and a name that is not there in full is the last one of its
    // stream.
    std::string name(lengthBytes, '\0');
    if (readBytes(in, name) < name.size()) return UnicodeString();
    return UnicodeString(name.data(), static_cast<std::int32_t>(name.size()));
}

void skipBytes(std::istream& in, std::uint64_t bytes) noexcept {
    try {
        if (bytes != 0) in.seekg(static_cast<std::streamoff>(bytes), std::ios_base::cur);
    } catch (...) {
        // The state tells: seekg() sets badbit before it passes on what its buffer threw.
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
        // The stream does not go back although it told its position; it is left in the state that it gave itself.
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
        // Its mask throws; the state is set.
    }
}

}  // namespace detail

namespace {

/// The widths of the records, behind the signature.
constexpr std::size_t extheaderBytes = 12;
constexpr std::size_t directoryBytes = 2 + detail::zipMemberFieldsBytes + 14;
constexpr std::size_t endDirectoryBytes = 18;

}  // namespace

LumZipEntry::LumZipEntry(std::istream& s)
    : stream_(&s), position_(detail::tellPosition(s)), signature_(detail::HeaderReader<4>(s)->take32()) {}

LumZipEntry::~LumZipEntry() = default;

std::uint32_t LumZipEntry::getSignature(std::istream& s) {
    const std::streamoff position = detail::tellPosition(s);
    if (position < 0) return 0;
    const std::uint32_t signature = detail::HeaderReader<4>(s)->take32();
    detail::rewindTo(s, position);
    return signature;
}

unsigned int LumZipEntry::getTypeID() const { return TYPE_ID; }

bool LumZipEntry::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString LumZipEntry::getTypeName() const { return u"LumZipEntry"; }

LumZipExtheaderEntry::LumZipExtheaderEntry(std::istream& s) : LumZipEntry(s) {
    detail::HeaderReader<extheaderBytes> header(s);
    crc32_ = header->take32();
    compressedSize_ = header->take32();
    uncompressedSize_ = header->take32();
}

LumZipDirectoryEntry::LumZipDirectoryEntry(std::istream& s) : LumZipEntry(s) {
    detail::HeaderReader<directoryBytes> header(s);
    versionMadeBy_ = header->take16();
    fields_ = detail::takeZipMemberFields(*header);
    commentLength_ = header->take16();
    diskNumberStart_ = header->take16();
    internalAttributes_ = header->take16();
    externalAttributes_ = header->take32();
    localHeaderOffset_ = header->take32();
    fileName_ = detail::readZipName(s, fields_.nameLength);
    detail::skipBytes(s, std::uint64_t{fields_.extraLength} + commentLength_);
}

LumZipEndDirectoryEntry::LumZipEndDirectoryEntry(std::istream& s) : LumZipEntry(s) {
    detail::HeaderReader<endDirectoryBytes> header(s);
    diskNumber_ = header->take16();
    directoryDisk_ = header->take16();
    diskEntryCount_ = header->take16();
    totalEntryCount_ = header->take16();
    directorySize_ = header->take32();
    directoryOffset_ = header->take32();
    commentLength_ = header->take16();
}

}  // namespace LumCommon
