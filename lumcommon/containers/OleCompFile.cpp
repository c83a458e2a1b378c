#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/OleStream.h>
#include <lumcommon/containers/detail/OleRecords.h>
#include <lumcommon/containers/detail/SectorChain.h>
#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/CodePoints.h>
#include <lumcommon/streams/JZIOobj.h>

#include <algorithm>
#include <climits>
#include <cstdio>  // SEEK_END
#include <limits>
#include <new>
#include <utility>

namespace LumCommon {
namespace {

using Header = detail::OleHeader;

constexpr std::uint16_t littleEndianMark = 0xFFFE;
constexpr unsigned highestShift = 31;
constexpr unsigned paddedHeaderVersion = 4;
constexpr std::int32_t noSector = detail::SectorChain::END;
constexpr std::int32_t freeSector = detail::SectorChain::BROKEN;  // no chain leads there

UnicodeString nameText(const char* name) {
    UnicodeString text = detail::fromUtf8(name);
    return text.indexOf(detail::replacementCharacter) < 0 ? text : detail::checked(UnicodeString(name));
}

}  // namespace

OleCompFile::OleCompFile() = default;

OleCompFile::~OleCompFile() { close(); }

void OleCompFile::close() noexcept {
    io_ = {};
    fileBytes_ = 0;
    fatSectors_.clear();
    fat_.clear();
    miniFat_.clear();
    directory_.clear();
    block_.clear();
    miniStreamStart_ = -1;
    miniStream_.reset();
}

bool OleCompFile::OLEopen(const char* path) {
    close();
    if (!path) return false;
    io_ = std::unique_ptr<JZIOobj>(std::make_unique<JZFileIOobj>(path, "rb"));
    return OLEopenSub();
}

bool OleCompFile::OLEopen(JZIOobj* io) {
    close();
    io_ = {io, false};
    return OLEopenSub();
}

bool OleCompFile::OLEopenSub() {
    try {
        return readTables();
    } catch (const std::bad_alloc&) {
        close();
        return false;
    }
}

/// Throws std::bad_alloc; the object is then to be closed.
bool OleCompFile::readTables() {
    if (io_ && io_->Open()) {
        fileBytes_ = io_->Seek(0, SEEK_END) ? io_->Tell() : io_->GetSize();
        if (parseHeader() && buildFAT() && buildMiniFAT() && buildDirInfo()) return true;
    }
    close();
    return false;
}

std::size_t OleCompFile::readAt(std::int64_t offset, char* to, std::size_t bytes) {
    if (offset < 0 || offset >= fileBytes_) return 0;
    std::size_t done = 0;
    while (done < bytes) {
        const int room = static_cast<int>(std::min<std::size_t>(bytes - done, INT_MAX));
        const int got = io_->ReadAt(static_cast<long>(offset) + static_cast<long>(done), to + done, room);
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::int64_t OleCompFile::getSectorOffset(std::int32_t sector) const noexcept {
    return (std::int64_t{sector} << sectorShift_) + sectorsStart_;
}

std::int64_t OleCompFile::getMiniSectorOffset(std::int32_t miniSector) {
    const std::int64_t inMiniStream = std::int64_t{miniSector} << miniSectorShift_;
    const std::int32_t sector = miniStream_->at(static_cast<std::size_t>(inMiniStream >> sectorShift_));
    return sector < 0 ? -1 : getSectorOffset(sector) + (inMiniStream & (getSectorSize() - 1));
}

std::int64_t OleCompFile::getSectorCount() const noexcept {
    if (fileBytes_ <= sectorsStart_) return 0;
    return ((fileBytes_ - sectorsStart_ - 1) >> sectorShift_) + 1;
}

bool OleCompFile::isSectorThere(std::int64_t sector) const noexcept {
    if (sector < 0 || sector >= getSectorCount()) return false;
    return ((sector + 1) << sectorShift_) + sectorsStart_ <= fileBytes_;
}

bool OleCompFile::readBlock(long sector) {
    if (!isSectorThere(sector)) return false;
    block_.resize(static_cast<std::size_t>(getSectorSize()));
    return readAt(getSectorOffset(static_cast<std::int32_t>(sector)), block_.data(), block_.size()) == block_.size();
}

void OleCompFile::appendBlockTo(std::vector<std::int32_t>& table) const {
    const detail::RecordView record(block_, byteOrder());
    const detail::FieldRow<std::int32_t> sectors{0, block_.size() / sizeof(std::int32_t)};
    for (std::size_t i = 0; i < sectors.count; ++i) table.push_back(record.get(sectors[i]));
}

/// Whether the header may state this as the first sector of a chain that need not exist.
bool OleCompFile::isFirstOrNone(std::int32_t sector, std::uint32_t count) const noexcept {
    return sector >= 0 || sector == noSector || (acceptsLooseFiles_ && sector == freeSector && count == 0);
}

bool OleCompFile::parseHeader() {
    char header[Header::bytes];
    if (readAt(0, header, sizeof header) != sizeof header || !detail::startsWithOleSignature(header)) return false;
    littleEndian_ = detail::RecordView(header).get(Header::byteOrder) == littleEndianMark;
    const detail::RecordView record(header, byteOrder());
    char version[8];
    std::snprintf(version, sizeof version, "%.2x %.2x", unsigned{record.get(Header::majorVersionBytes[0])},
                  unsigned{record.get(Header::majorVersionBytes[1])});
    version_ = version;
    sectorShift_ = record.get(Header::sectorShift);
    miniSectorShift_ = record.get(Header::miniSectorShift);
    if (sectorShift_ > highestShift || miniSectorShift_ > sectorShift_ || getSectorSize() < OleDirInfo::entryBytes) {
        return false;
    }
    sectorsStart_ = Header::bytes;
    if (record.get(Header::majorVersion) == paddedHeaderVersion) {
        sectorsStart_ = std::max(sectorsStart_, getSectorSize());
    }
    firstDirSector_ = record.get(Header::firstDirectorySector);
    miniStreamCutoff_ = record.get(Header::miniStreamCutoff);
    firstMiniFatSector_ = record.get(Header::firstMiniFatSector);
    miniFatSectorCount_ = record.get(Header::miniFatSectorCount);
    const std::int32_t firstDifatSector = record.get(Header::firstDifatSector);
    if (firstDirSector_ < 0 || !isFirstOrNone(firstMiniFatSector_, miniFatSectorCount_) ||
        !isFirstOrNone(firstDifatSector, record.get(Header::difatSectorCount))) {
        return false;
    }
    const std::uint32_t fatSectorCount = record.get(Header::fatSectorCount);
    for (std::size_t i = 0; i < std::min<std::size_t>(fatSectorCount, Header::fatSectors.count); ++i) {
        fatSectors_.push_back(record.get(Header::fatSectors[i]));
    }
    return fatSectorCount <= Header::fatSectors.count || readFatList(fatSectorCount, firstDifatSector);
}

bool OleCompFile::readFatList(std::uint32_t count, std::int32_t firstDifat) {
    if (firstDifat < 0) return false;
    std::vector<bool> isRead(static_cast<std::size_t>(getSectorCount()));
    std::int32_t sector = firstDifat;
    while (fatSectors_.size() < count && readBlock(sector) && !isRead[static_cast<std::size_t>(sector)]) {
        isRead[static_cast<std::size_t>(sector)] = true;
        appendBlockTo(fatSectors_);
        sector = fatSectors_.back();
        fatSectors_.pop_back();
    }
    if (fatSectors_.size() > count) fatSectors_.resize(count);
    return true;
}

bool OleCompFile::buildFAT() {
    // Entries for sectors past the end of the file are useless, and a list that names one sector again and again would
    // make a table many times the file's size. Sectors that the table lacks count as free.
    const auto sectors = static_cast<std::size_t>(getSectorCount());
    for (const std::int32_t sector : fatSectors_) {
        if (!isSectorThere(sector)) return false;
        if (fat_.size() >= sectors) continue;
        if (!readBlock(sector)) return false;
        appendBlockTo(fat_);
    }
    return true;
}

bool OleCompFile::buildMiniFAT() {
    detail::SectorChain chain(fat_, firstMiniFatSector_);
    for (std::size_t i = 0; i < miniFatSectorCount_; ++i) {
        const std::int32_t sector = chain.at(i);
        if (sector == detail::SectorChain::END) break;
        if (!readBlock(sector)) return false;
        appendBlockTo(miniFat_);
    }
    return true;
}

bool OleCompFile::buildDirInfo() {
    detail::SectorChain chain(fat_, firstDirSector_);
    bool hasRoot = false;
    for (std::size_t i = 0; chain.at(i) != detail::SectorChain::END; ++i) {
        if (!readBlock(chain.at(i))) return false;
        for (std::size_t at = 0; at < block_.size(); at += OleDirInfo::entryBytes) {
            const std::span<const char, OleDirInfo::entryBytes> fields(block_.data() + at, OleDirInfo::entryBytes);
            OleDirInfo entry;
            if (directory_.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return false;
            if (!entry.parse(fields, littleEndian_, static_cast<int>(directory_.size()), acceptsLooseFiles_)) {
                return false;
            }
            if (entry.getType() == OleDirInfo::ROOT && !hasRoot) {
                hasRoot = true;
                miniStreamStart_ = entry.getStartSector();
            }
            directory_.push_back(std::move(entry));
        }
    }
    miniStream_ = std::make_unique<detail::SectorChain>(fat_, miniStreamStart_);
    return true;
}

const OleDirInfo* OleCompFile::getDirInfo(long index) const noexcept {
    if (index < 0 || index >= getDirCount()) return nullptr;
    return &directory_[static_cast<std::size_t>(index)];
}

OleDirInfo* OleCompFile::getDirInfo(long index) noexcept {
    return const_cast<OleDirInfo*>(std::as_const(*this).getDirInfo(index));
}

long OleCompFile::getNextBlock(long sector, bool mini) const noexcept {
    const std::vector<std::int32_t>& table = mini ? miniFat_ : fat_;
    if (sector < 0 || static_cast<std::size_t>(sector) >= table.size()) return -1;
    return table[static_cast<std::size_t>(sector)];
}

long OleCompFile::findDirEntryByName(const OleDirInfo* start, const char* name) const {
    if (!start || !name) return -1;
    const UnicodeString wanted = detail::toUpperCase(nameText(name));
    std::vector<bool> isVisited(directory_.size());  // siblings that point at one another would loop forever
    std::vector<int> waiting{start->getIndex()};
    while (!waiting.empty()) {
        const OleDirInfo* const entry = getDirInfo(waiting.back());
        waiting.pop_back();
        if (!entry || isVisited[static_cast<std::size_t>(entry->getIndex())]) continue;
        isVisited[static_cast<std::size_t>(entry->getIndex())] = true;
        if (detail::toUpperCase(entry->getName()) == wanted) return entry->getIndex();
        waiting.push_back(entry->getRight());
        waiting.push_back(entry->getLeft());  // popped first
    }
    return -1;
}

long OleCompFile::getDirIndex(const OleDirPath* path) const {
    if (!path || directory_.empty()) return -1;
    long current = 0;
    for (const std::string& name : path->getNames()) {
        current = findDirEntryByName(getDirInfo(getDirInfo(current)->getChild()), name.c_str());
        if (current < 0) return -1;
    }
    return current;
}

OleStream* OleCompFile::OLEopenStream(const OleDirPath* path) {
    const long index = getDirIndex(path);
    if (index < 0) return nullptr;
    auto stream = std::make_unique<OleStream>(this);
    return stream->GetStreamChain(static_cast<int>(index)) ? stream.release() : nullptr;
}

void OleCompFile::OLEcloseStream(OleStream* stream) { const std::unique_ptr<OleStream> closed(stream); }

}  // namespace LumCommon
