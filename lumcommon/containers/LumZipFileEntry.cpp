#include <lumcommon/containers/LumZipFileEntry.h>
#include <lumcommon/containers/detail/CentralDirectory.h>
#include <lumcommon/containers/detail/PackageRelationships.h>
#include <lumcommon/containers/detail/ZipFields.h>
#include <lumcommon/streams/LumInflaterStream.h>
#include <lumcommon/streams/LumStrStream.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace LumCommon {

namespace {

/// Reads the rest of a local header after its signature.
LumZipMemberFields readLocalHeader(std::istream& in) noexcept {
    using Record = detail::ZipLocalHeader;
    return Record::Member::readFrom(detail::RecordReader<Record>(in, detail::ZipSignature::bytes));
}

/// The offset of the data from the start of the record; the largest sum of its parts is far below 2^31.
std::streamoff dataOffset(const LumZipMemberFields& fields) noexcept {
    return std::streamoff{detail::ZipLocalHeader::bytes} + fields.nameLength + fields.extraLength;
}

}  // namespace

LumZipFileEntry::LumZipFileEntry(std::istream& s) : LumZipEntry(s) {
    fields_ = readLocalHeader(s);
    fileName_ = detail::readZipName(s, fields_.nameLength);
    detail::skipBytes(s, std::uint64_t{fields_.extraLength} + fields_.compressedSize);
}

LumZipFileEntry::LumZipFileEntry(std::istream& s, const detail::DirectoryMember& member)
    : LumZipEntry(s), fileName_(member.name) {
    const LumZipMemberFields local = readLocalHeader(s);
    fields_ = member.fields;
    fields_.nameLength = local.nameLength;
    fields_.extraLength = local.extraLength;
}

LumZipFileEntry::~LumZipFileEntry() = default;

bool LumZipFileEntry::leavesSizesToDescriptor() const noexcept {
    constexpr unsigned descriptorFollows = 1u << 3;
    return (fields_.flags & descriptorFollows) != 0 && fields_.compressedSize == 0;
}

bool LumZipFileEntry::hasUnknownEnd() const noexcept {
    constexpr std::uint32_t isInZip64Field = 0xFFFFFFFFu;
    return leavesSizesToDescriptor() || fields_.compressedSize == isInZip64Field;
}

void LumZipFileEntry::limitData(std::streamoff end) noexcept {
    const std::streamoff bytes = end - position_ - dataOffset(fields_);
    maxDataBytes_ = static_cast<std::uint32_t>(std::clamp<std::streamoff>(bytes, 0, 0xFFFFFFFF));
}

bool LumZipFileEntry::seekData() {
    const std::streamoff offset = dataOffset(fields_);
    if (!stream_ || position_ < 0 || position_ > std::numeric_limits<std::streamoff>::max() - offset) return false;
    try {
        stream_->clear();  // walking through the archive may have left it failed
        stream_->seekg(position_ + offset);
        return stream_->good();
    } catch (...) {
        return false;
    }
}

void LumZipFileEntry::loadData() {
    if (hasReadData_) return;
    if (seekData()) {
        std::vector<char> data;
        detail::readClaimed(data, std::min(fields_.compressedSize, maxDataBytes_),
                            [this](std::span<char> room) { return detail::readBytes(*stream_, room); });
        if (stream_->bad()) throw std::ios_base::failure("the archive cannot be read");
        data_ = std::move(data);
    }
    hasReadData_ = true;
}

std::span<const char> LumZipFileEntry::readCompressedData() {
    try {
        loadData();
    } catch (const std::ios_base::failure&) {
        // Nothing was kept, and the next call tries again.
    }
    return data_;
}

std::istream* LumZipFileEntry::getCompressedStream(bool fresh) {
    try {
        loadData();
        if (fresh) return new LumStrStream(data_.data(), data_.size(), true);
        if (!compressedStream_) compressedStream_ = std::make_unique<LumStrStream>(data_.data(), data_.size(), false);
        compressedStream_->clear();
        compressedStream_->seekg(0);
        return compressedStream_.get();
    } catch (const std::exception&) {
        return nullptr;
    }
}

std::istream* LumZipFileEntry::getUncompressedStream(bool fresh) {
    if (fields_.method != METHOD_DEFLATE) return getCompressedStream(fresh);
    try {
        loadData();
        if (fresh) return new LumInflaterStream(data_.data(), data_.size(), true);
        if (!uncompressedStream_) {
            uncompressedStream_ = std::make_unique<LumInflaterStream>(data_.data(), data_.size(), false);
        }
        uncompressedStream_->reset();
        return uncompressedStream_.get();
    } catch (const std::exception&) {
        return nullptr;
    }
}

unsigned int LumZipFileEntry::getTypeID() const { return TYPE_ID; }

bool LumZipFileEntry::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumZipEntry::isA(typeId); }

UnicodeString LumZipFileEntry::getTypeName() const { return u"LumZipFileEntry"; }

}  // namespace LumCommon
