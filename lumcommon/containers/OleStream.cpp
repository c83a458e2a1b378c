#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/OleStream.h>
#include <lumcommon/containers/detail/SectorChain.h>

#include <algorithm>
#include <cstdio>  // SEEK_SET
#include <fstream>
#include <limits>
#include <vector>

namespace LumCommon {
namespace {

/// Sets a position back at the end of the scope.
class PlaceKeeper {
public:
    explicit PlaceKeeper(std::int64_t& position) noexcept : position_(&position), kept_(position) {}
    ~PlaceKeeper() {
        if (position_) *position_ = kept_;
    }
    PlaceKeeper(const PlaceKeeper&) = delete;
    PlaceKeeper& operator=(const PlaceKeeper&) = delete;
    void dismiss() noexcept { position_ = nullptr; }

private:
    std::int64_t* position_;
    std::int64_t kept_;
};

}  // namespace

OleStream::OleStream(OleCompFile* file) : file_(file), chain_(std::make_unique<detail::SectorChain>()) {}

OleStream::~OleStream() = default;

bool OleStream::GetStreamChain(int dirIndex) {
    *chain_ = {};
    sizeBytes_ = 0;
    isMini_ = false;
    position_ = 0;
    const OleDirInfo* const entry = file_ ? file_->getDirInfo(dirIndex) : nullptr;
    if (!entry || entry->getType() != OleDirInfo::STREAM) return false;
    const bool isMini = entry->getSize() < file_->getMiniStreamCutoff();
    if (isMini && entry->getSize() != 0 && file_->miniStreamStart_ < 0) return false;
    isMini_ = isMini;
    sizeBytes_ = entry->getSize();
    *chain_ = {isMini ? file_->miniFat_ : file_->fat_, entry->getStartSector()};
    return true;
}

bool OleStream::GetStreamChainIndex(int k) { return k >= 0 && chain_->at(static_cast<std::size_t>(k)) >= 0; }

std::uint64_t OleStream::getUnitSize() const noexcept {
    return static_cast<std::uint64_t>(isMini_ ? file_->getMiniSectorSize() : file_->getSectorSize());
}

std::int64_t OleStream::getUnitOffset(std::size_t index) {
    const std::int32_t sector = chain_->at(index);
    if (sector < 0) return -1;
    return isMini_ ? file_->getMiniSectorOffset(sector) : file_->getSectorOffset(sector);
}

OleStream::Run OleStream::findRun(std::uint64_t wantedBytes) {
    const std::uint64_t unitBytes = getUnitSize();
    auto index = static_cast<std::size_t>(static_cast<std::uint64_t>(position_) / unitBytes);
    const std::uint64_t inUnit = static_cast<std::uint64_t>(position_) % unitBytes;
    const std::int64_t start = getUnitOffset(index);
    if (start < 0) return {};
    std::uint64_t bytes = unitBytes;
    while (bytes - inUnit < wantedBytes && getUnitOffset(++index) == start + static_cast<std::int64_t>(bytes)) {
        bytes += unitBytes;
    }
    return {start + static_cast<std::int64_t>(inUnit), std::min(bytes - inUnit, wantedBytes)};
}

unsigned OleStream::OLEread(unsigned char* buf, unsigned n) {
    if (!buf || position_ >= std::int64_t{sizeBytes_}) return 0;
    n = static_cast<unsigned>(std::min<std::int64_t>(n, sizeBytes_ - position_));
    unsigned done = 0;
    PlaceKeeper keeper(position_);
    while (done < n) {
        const Run run = findRun(n - done);
        if (run.bytes == 0) break;
        const std::size_t got =
            file_->readAt(run.offsetInFile, reinterpret_cast<char*>(buf) + done, static_cast<std::size_t>(run.bytes));
        done += static_cast<unsigned>(got);
        position_ += static_cast<std::int64_t>(got);
        if (got < run.bytes) break;
    }
    keeper.dismiss();
    return done;
}

long OleStream::OLEseek(int offset, int whence) {
    if (whence < SEEK_SET || whence > SEEK_END) return -1;
    const std::int64_t origin = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? position_ : std::int64_t{sizeBytes_};
    const std::int64_t target = origin + offset;
    if (target < 0 || target > std::numeric_limits<long>::max()) return -1;
    position_ = target;
    if (target == 0 && sizeBytes_ == 0) return 0;
    // The end may be past the last sector, where there is no byte to locate; it follows the last byte.
    const bool isEnd = target == std::int64_t{sizeBytes_};
    const auto byte = static_cast<std::uint64_t>(isEnd ? target - 1 : target);
    const std::int64_t start = getUnitOffset(static_cast<std::size_t>(byte / getUnitSize()));
    if (start < 0) return -1;
    return static_cast<long>(start + static_cast<std::int64_t>(byte % getUnitSize()) + (isEnd ? 1 : 0));
}

bool OleStream::CopyToFile(const unsigned char* path) {
    if (!path) return false;
    std::ofstream out(reinterpret_cast<const char*>(path), std::ios_base::binary | std::ios_base::trunc);
    std::vector<unsigned char> piece(std::min<std::size_t>(sizeBytes_, std::size_t{1} << 18));
    const PlaceKeeper keeper(position_);
    position_ = 0;
    unsigned got = 0;
    while (out && (got = OLEread(piece.data(), static_cast<unsigned>(piece.size()))) != 0) {
        out.write(reinterpret_cast<const char*>(piece.data()), static_cast<std::streamsize>(got));
    }
    const bool isWhole = position_ == std::int64_t{sizeBytes_};
    out.close();
    return !out.fail() && isWhole;
}

}  // namespace LumCommon
