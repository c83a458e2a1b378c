#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/detail/DescriptorSearch.h>

#include <fstream>
#include <memory>
#include <utility>

namespace LumCommon {

namespace {

/// The file's bytes; null when it cannot be opened.
std::unique_ptr<std::istream> openFile(const char* path) {
    if (!path) return nullptr;
    auto file = std::make_unique<std::ifstream>(path, std::ios_base::in | std::ios_base::binary);
    return file->is_open() ? std::move(file) : nullptr;
}

}  // namespace

LumZipFile::LumZipFile() = default;

LumZipFile::LumZipFile(const char* path) { open(path); }

LumZipFile::LumZipFile(std::istream* s, bool own) { open(s, own); }

LumZipFile::~LumZipFile() { close(); }

void LumZipFile::open(const char* path) {
    try {
        open(openFile(path).release(), true);
    } catch (const std::exception&) {
        close();
    }
}

void LumZipFile::open(std::istream* s, bool own) {
    if (s == stream_) ownsStream_ = false;  // it is to be read once more and must not go with the old archive
    close();
    stream_ = s;
    ownsStream_ = own && s;
    try {
        init();
    } catch (const std::exception&) {
        // Memory is wanting: the archive ends with the last member that it could be told of.
    }
}

void LumZipFile::close() noexcept {
    byName_.clear();
    if (ownsStream_) {
        for (const LumPtr<LumZipFileEntry>& entry : entries_) entry->forgetStream();
        delete stream_;
    }
    entries_.clear();
    stream_ = nullptr;
    ownsStream_ = false;
}

void LumZipFile::init() {
    if (!stream_) return;
    bool areDescriptorsFound = true;
    for (;;) {
        switch (LumZipEntry::getSignature(*stream_)) {
            case LumZipEntry::SIGNATURE_FILE: {
                LumPtr<LumZipFileEntry> entry(new LumZipFileEntry(*stream_));
                LumZipFileEntry* const added = entries_.emplace_back(std::move(entry)).get();
                byName_.try_emplace(added->getFileName(), added);
                // A search that fails has read to the end. One for each header would make hostile headers quadratic.
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

bool LumZipFile::isZipFile(const char* path) {
    try {
        return isZipFile(openFile(path).get());
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace LumCommon
