#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/detail/CentralDirectory.h>
#include <lumcommon/containers/detail/DescriptorSearch.h>
#include <lumcommon/containers/detail/PackageRelationships.h>
#include <lumcommon/containers/detail/ZipFields.h>

#include <cerrno>
#include <fstream>
#include <memory>
#include <new>
#include <utility>

namespace LumCommon {

namespace {

/// The file's bytes; null when it cannot be opened.
std::unique_ptr<std::istream> openFile(const char* path) {
    if (!path) return nullptr;
    errno = 0;
    auto file = std::make_unique<std::ifstream>(path, std::ios_base::in | std::ios_base::binary);
    if (!file->is_open() && errno == ENOMEM) throw std::bad_alloc();
    return file->is_open() ? std::move(file) : nullptr;
}

/// True when the data descriptor of a member without data comes next, so that the walk can continue after it.
bool isBeforeEmptyDescriptor(std::istream& in) {
    if (LumZipEntry::getSignature(in) != LumZipEntry::SIGNATURE_EXTHEADER) return false;
    const detail::StreamPlace place(in);
    return LumZipExtheaderEntry(in).getCompressedSize() == 0;
}

}  // namespace

LumZipFile::LumZipFile() = default;

LumZipFile::LumZipFile(const char* path) { open(path); }

LumZipFile::LumZipFile(std::istream* s, bool own) { open(s, own); }

LumZipFile::~LumZipFile() { close(); }

void LumZipFile::open(const char* path) {
    close();
    open(openFile(path).release(), true);
}

void LumZipFile::open(std::istream* s, bool own) {
    if (s == stream_.get()) stream_.disown();  // it is read again and must not be deleted with the old archive
    close();
    stream_ = {s, own};
    try {
        init();
    } catch (...) {
        close();
        throw;
    }
    // Some of the members would look like all of them.
    if (stream_ && stream_->bad()) close();
}

void LumZipFile::close() noexcept {
    byName_.clear();
    relationships_.reset();
    hasContentTypes_ = false;
    isArchive_ = false;
    if (stream_.isOwned()) {
        for (const LumPtr<LumZipFileEntry>& entry : entries_) entry->forgetStream();
    }
    stream_ = {};
    entries_.clear();
}

// Lists the members. The walk goes from one local header to the next and stops at the first record that is neither a
// local header nor a data descriptor. Programs that write an archive in one go leave the sizes of a member at 0 and put
// them into a data descriptor after its data (bit 3 of its flags), or at 0xFFFFFFFF and into an extra field of zip64.
// The walk cannot continue after such a member, unless its descriptor follows at once because it is empty. Then all
// members are taken from the central directory instead. Without a usable directory (the archive is truncated) the
// descriptor is searched for: it is the first one whose distance from the data equals the compressed size that it
// states. If there is none, or it lacks the signature that most programs give it, the member stays empty.
void LumZipFile::init() {
    if (!stream_) return;
    isArchive_ = isZipFile(stream_.get());
    const std::streamoff start = detail::tellPosition(*stream_);
    bool isDirectoryUntried = true;
    bool areDescriptorsFound = true;
    for (;;) {
        switch (LumZipEntry::getSignature(*stream_)) {
            case LumZipEntry::SIGNATURE_FILE: {
                LumPtr<LumZipFileEntry> entry(new LumZipFileEntry(*stream_));
                LumZipFileEntry* const added = entries_.emplace_back(std::move(entry)).get();
                byName_.try_emplace(added->getFileName(), added);
                if (!added->hasUnknownEnd()) break;
                if (isDirectoryUntried && !isBeforeEmptyDescriptor(*stream_)) {
                    isDirectoryUntried = false;
                    if (takeFromDirectory(start, added->getPosition())) return;
                }
                // A search that fails has read to the end. One per header would make hostile archives quadratic.
                if (areDescriptorsFound && added->leavesSizesToDescriptor()) {
                    areDescriptorsFound = detail::findDescriptor(*stream_, added->fields_);
                }
                break;
            }
            case LumZipEntry::SIGNATURE_EXTHEADER: {
                const LumZipExtheaderEntry passedOver(*stream_);
                break;
            }
            default:
                return;
        }
    }
}

// The directory is trusted if it leads to the member at which the walk stopped; anything in front of the archive is
// allowed for. A record that leads to no local header, or into the header of another member, is left out. Data end
// where the next member begins at the latest.
bool LumZipFile::takeFromDirectory(std::streamoff start, std::streamoff unwalkable) {
    const detail::StreamPlace place(*stream_);
    const detail::CentralDirectory directory = detail::readCentralDirectory(*stream_, start);
    std::vector<LumPtr<LumZipFileEntry>> entries;
    bool isOfThisArchive = false;
    std::streamoff free = start;  // where the next local header may begin
    for (const detail::DirectoryMember& member : directory.members) {
        if (member.headerPosition < free) continue;
        detail::rewindTo(*stream_, member.headerPosition);
        LumPtr<LumZipFileEntry> entry(new LumZipFileEntry(*stream_, member));
        if (entry->getSignature() != LumZipEntry::SIGNATURE_FILE) continue;
        // Data that reach into the next member would let a small file with many members claim any amount of memory.
        if (!entries.empty()) entries.back()->limitData(entry->getPosition());
        free = member.headerPosition + std::streamoff{detail::ZipLocalHeader::bytes};
        isOfThisArchive = isOfThisArchive || member.headerPosition == unwalkable;
        entries.push_back(std::move(entry));
    }
    if (!isOfThisArchive) return false;
    entries.back()->limitData(directory.position);
    std::map<UnicodeString, LumZipFileEntry*> byName;
    for (const LumPtr<LumZipFileEntry>& entry : entries) byName.try_emplace(entry->getFileName(), entry.get());
    entries_.swap(entries);
    byName_.swap(byName);
    return true;
}

LumZipFileEntry* LumZipFile::getFileEntry(unsigned index) const noexcept {
    return index < entries_.size() ? entries_[index].get() : nullptr;
}

LumZipFileEntry* LumZipFile::getFileEntry(const UnicodeString& name) const noexcept {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

bool LumZipFile::isZipFile(std::istream* s) {
    if (!s) return false;
    const std::uint32_t signature = LumZipEntry::getSignature(*s);
    return signature == LumZipEntry::SIGNATURE_FILE || signature == LumZipEntry::SIGNATURE_DIRECTORY ||
           signature == LumZipEntry::SIGNATURE_END_DIRECTORY;
}

bool LumZipFile::isZipFile(const char* path) { return isZipFile(openFile(path).get()); }

}  // namespace LumCommon
