#include <lumcommon/containers/detail/BoundedReader.h>
#include <lumcommon/containers/detail/CentralDirectory.h>
#include <lumcommon/containers/detail/ZipFields.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>

namespace LumCommon::detail {

namespace {

constexpr std::size_t maxCommentBytes = 0xFFFF;
constexpr auto endSignatureBytes = zipSignatureBytes(LumZipEntry::SIGNATURE_END_DIRECTORY);
constexpr std::string_view endSignature(endSignatureBytes.data(), endSignatureBytes.size());
constexpr std::uint16_t zip64ExtraId = 1;
constexpr std::uint32_t isInZip64Extra = 0xFFFFFFFFu;

/// Where an end record places the directory: from `start` to `end`, with the archive's offset 0 at `base`.
struct DirectoryPlace {
    std::streamoff base = 0, start = 0, end = 0;
};

std::streamoff findEnd(std::istream& in) noexcept {
    try {
        in.clear();
        in.seekg(0, std::ios_base::end);
    } catch (...) {
        return -1;
    }
    return tellPosition(in);
}

/// Searches backwards for the end record: the last one whose comment reaches exactly to the end, since a comment can
/// contain the signature too; else simply the last one. npos if there is none.
std::size_t findEndRecord(std::string_view tail) noexcept {
    std::size_t last = tail.npos;
    for (std::size_t at = tail.size(); (at = tail.rfind(endSignature, at)) != tail.npos; --at) {
        if (tail.size() - at >= ZipEndRecord::bytes) {
            const RecordView record(tail.substr(at));
            if (at + ZipEndRecord::bytes + record.get(ZipEndRecord::commentLength) == tail.size()) return at;
            if (last == tail.npos) last = at;
        }
        if (at == 0) break;
    }
    return last;
}

/// Works out the place of the directory that ends at `end` from the size and the offset that it claims.
std::optional<DirectoryPlace> placeOf(std::uint64_t claimedSize, std::uint64_t claimedOffset, std::streamoff end,
                                      std::streamoff archiveStart) noexcept {
    if (claimedSize > static_cast<std::uint64_t>(end - archiveStart)) return std::nullopt;
    const std::streamoff start = end - static_cast<std::streamoff>(claimedSize);
    if (claimedOffset > static_cast<std::uint64_t>(start)) return std::nullopt;
    return DirectoryPlace{start - static_cast<std::streamoff>(claimedOffset), start, end};
}

std::optional<DirectoryPlace> findDirectory(std::istream& in, std::streamoff archiveStart) {
    constexpr std::size_t zip64Bytes = Zip64EndRecord::bytes + Zip64Locator::bytes;
    constexpr std::streamoff tailBytes = zip64Bytes + ZipEndRecord::bytes + maxCommentBytes;
    const std::streamoff streamEnd = findEnd(in);
    if (streamEnd < archiveStart) return std::nullopt;
    const std::streamoff tailStart = std::max(archiveStart, streamEnd - tailBytes);
    std::vector<char> bytes(static_cast<std::size_t>(streamEnd - tailStart));
    rewindTo(in, tailStart);
    const std::string_view tail(bytes.data(), readBytes(in, bytes));
    const std::size_t at = findEndRecord(tail);
    if (at == tail.npos) return std::nullopt;

    // The two additional records of zip64, if there are any, come right before it.
    const auto signatureAt = [tail](std::size_t place) {
        return RecordView(tail.substr(place)).get(ZipSignature::signature);
    };
    const bool isZip64 = at >= zip64Bytes && signatureAt(at - Zip64Locator::bytes) == Zip64Locator::SIGNATURE &&
                         signatureAt(at - zip64Bytes) == Zip64EndRecord::SIGNATURE;
    const std::size_t directoryEnd = isZip64 ? at - zip64Bytes : at;
    const RecordView record(tail.substr(directoryEnd));
    const std::uint64_t size =
        isZip64 ? record.get(Zip64EndRecord::directorySize) : record.get(ZipEndRecord::directorySize);
    const std::uint64_t offset =
        isZip64 ? record.get(Zip64EndRecord::directoryOffset) : record.get(ZipEndRecord::directoryOffset);
    return placeOf(size, offset, tailStart + static_cast<std::streamoff>(directoryEnd), archiveStart);
}

/// Replaces the fields that refer to the extra field of zip64 by its values.
void applyZip64(BoundedReader extra, LumZipMemberFields& fields, std::uint64_t& offset) noexcept {
    constexpr std::size_t tagBytes = 2 * sizeof(std::uint16_t);  // what it is, and the length of its content
    while (extra.getRemainingBytes() >= tagBytes) {
        const auto id = extra.take<std::uint16_t>();
        std::span<const char> content;
        if (!extra.take(extra.take<std::uint16_t>(), content)) return;
        if (id != zip64ExtraId) continue;
        BoundedReader values(content);
        const auto take = [&values](std::uint64_t claimed) {
            const bool isThere = values.getRemainingBytes() >= sizeof(std::uint64_t);
            return claimed == isInZip64Extra && isThere ? values.take<std::uint64_t>() : claimed;
        };
        const auto fitted = [](std::uint64_t size) {
            return static_cast<std::uint32_t>(std::min<std::uint64_t>(size, isInZip64Extra));
        };
        fields.uncompressedSize = fitted(take(fields.uncompressedSize));
        fields.compressedSize = fitted(take(fields.compressedSize));
        offset = take(offset);
        return;
    }
}

/// Reads the record at the stream's position and advances `position` past it.
/// @param room  for bytes that are skipped.
/// @return false if there is no complete record.
bool readRecord(std::istream& in, std::streamoff& position, const DirectoryPlace& place, std::vector<char>& room,
                DirectoryMember& member, std::uint64_t& offset) {
    using Record = ZipDirectoryHeader;
    if (place.end - position < std::streamoff{Record::bytes}) return false;
    const RecordReader<Record> record(in);
    if (record.get(Record::signature) != LumZipEntry::SIGNATURE_DIRECTORY) return false;
    member.fields = Record::Member::readFrom(record);
    const std::uint16_t commentLength = record.get(Record::commentLength);
    offset = record.get(Record::localHeaderOffset);
    position += std::streamoff{Record::bytes} + member.fields.nameLength + member.fields.extraLength + commentLength;
    if (position > place.end) return false;
    member.name = readZipName(in, member.fields.nameLength);
    room.resize(std::size_t{member.fields.extraLength} + commentLength);
    if (readBytes(in, room) < room.size()) return false;
    applyZip64(BoundedReader(std::span<const char>(room).first(member.fields.extraLength)), member.fields, offset);
    return true;
}

}  // namespace

CentralDirectory readCentralDirectory(std::istream& in, std::streamoff archiveStart) {
    CentralDirectory directory;
    const std::optional<DirectoryPlace> place = findDirectory(in, archiveStart);
    if (!place) return directory;
    directory.position = place->start;
    rewindTo(in, place->start);
    std::streamoff position = place->start;
    std::vector<char> room;
    DirectoryMember member;
    std::uint64_t offset = 0;
    while (readRecord(in, position, *place, room, member, offset)) {
        if (offset > static_cast<std::uint64_t>(place->start - place->base)) continue;
        member.headerPosition = place->base + static_cast<std::streamoff>(offset);
        if (member.headerPosition < archiveStart ||
            place->start - member.headerPosition < std::streamoff{ZipLocalHeader::bytes})
            continue;
        directory.members.push_back(member);
    }
    std::ranges::stable_sort(directory.members, {}, &DirectoryMember::headerPosition);
    return directory;
}

}  // namespace LumCommon::detail
