#include <lumcommon/containers/OleDirInfo.h>
#include <lumcommon/containers/detail/OleFields.h>

#include <cstring>

namespace LumCommon {

bool OleDirInfo::parse(std::span<const char, entryBytes> entry, bool littleEndian, int index, bool passesUnused) {
    constexpr unsigned nameFieldBytes = 64;
    const detail::OleFields fields(entry, littleEndian);
    unsigned nameBytes = fields.get16(64);
    if (nameBytes > nameFieldBytes) {
        if (!passesUnused || fields.get8(66) != EMPTY) return false;
        nameBytes = 0;
    }
    *this = OleDirInfo();
    index_ = index;
    for (unsigned at = 0; at + 1 < nameBytes; at += 2) {
        if (const char16_t unit = fields.get16(at)) name_.append(unit);
    }
    const unsigned type = fields.get8(66);
    type_ = type <= ROOT ? static_cast<Type>(type) : EMPTY;
    color_ = fields.get8(67);
    left_ = fields.getSigned(68);
    right_ = fields.getSigned(72);
    child_ = fields.getSigned(76);
    if (type_ == STORAGE || type_ == ROOT) {
        std::memcpy(classId_.data(), entry.data() + 80, classId_.size());
        stateBits_ = fields.get32(96);
        creationTime_ = fields.get64(100);
        modificationTime_ = fields.get64(108);
    }
    if (type_ == STREAM || type_ == ROOT) {
        startSector_ = fields.getSigned(116);
        sizeBytes_ = fields.get32(120);
    }
    return true;
}

}  // namespace LumCommon
