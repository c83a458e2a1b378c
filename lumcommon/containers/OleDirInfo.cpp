#include <lumcommon/containers/OleDirInfo.h>
#include <lumcommon/containers/detail/OleRecords.h>
#include <lumcommon/core/detail/CheckedText.h>

#include <algorithm>
#include <bit>

namespace LumCommon {

bool OleDirInfo::parse(std::span<const char, entryBytes> entry, bool littleEndian, int index, bool passesUnused) {
    using Record = detail::OleDirectoryEntry;
    const detail::RecordView record(entry, littleEndian ? std::endian::little : std::endian::big);
    const unsigned type = record.get(Record::type);
    std::size_t nameBytes = record.get(Record::nameBytes);
    if (nameBytes > Record::name.bytes()) {
        if (!passesUnused || type != EMPTY) return false;
        nameBytes = 0;
    }
    *this = OleDirInfo();
    index_ = index;
    for (std::size_t i = 0; i < nameBytes / sizeof(char16_t); ++i) {
        if (const char16_t unit = record.get(Record::name[i])) detail::append(name_, unit);
    }
    type_ = type <= ROOT ? static_cast<Type>(type) : EMPTY;
    color_ = record.get(Record::color);
    left_ = record.get(Record::left);
    right_ = record.get(Record::right);
    child_ = record.get(Record::child);
    if (type_ == STORAGE || type_ == ROOT) {
        std::ranges::copy(record.get(Record::classId), classId_.begin());
        stateBits_ = record.get(Record::stateBits);
        creationTime_ = record.get(Record::creationTime);
        modificationTime_ = record.get(Record::modificationTime);
    }
    if (type_ == STREAM || type_ == ROOT) {
        startSector_ = record.get(Record::startSector);
        sizeBytes_ = record.get(Record::size);
    }
    return true;
}

}  // namespace LumCommon
