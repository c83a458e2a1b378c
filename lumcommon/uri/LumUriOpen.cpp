#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/uri/LumUri.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <istream>
#include <memory>
#include <ostream>
#include <string>

namespace LumCommon {
namespace {

constexpr std::size_t fileBufferBytes = std::size_t{64} * 1024;

constinit std::atomic<LumUriReferenceResolver*> s_resolver{nullptr};

/// A stream over a local file. The buffer that it brings is eight times the default, because documents are read and
/// written from end to end.
/// @tparam Stream  std::istream or std::ostream.
template <class Stream>
class LocalFileStream final : public Stream {
public:
    LocalFileStream(const std::string& path, std::ios_base::openmode mode)
        : Stream(nullptr), room_(std::make_unique_for_overwrite<char[]>(fileBufferBytes)) {
        file_.pubsetbuf(room_.get(), static_cast<std::streamsize>(fileBufferBytes));
        if (file_.open(path, mode | std::ios_base::binary)) this->rdbuf(&file_);
    }

    bool isOpen() const { return file_.is_open(); }
    /// False when what was still buffered could not be written.
    bool close() { return file_.close() != nullptr; }

private:
    std::unique_ptr<char[]> room_;
    std::filebuf file_;
};

template <class Stream>
Stream* openLocalFile(const LumUri& uri, std::ios_base::openmode mode) {
    const auto path = detail::toPlatformPath(uri.getLocalPath());
    // A directory can be opened but not read; the reader would meet an exception in place of an end.
    std::error_code error;
    if (!path || std::filesystem::is_directory(*path, error)) return nullptr;
    auto stream = std::make_unique<LocalFileStream<Stream>>(*path, mode);
    return stream->isOpen() ? stream.release() : nullptr;
}

std::istream* askResolver(const UnicodeString& uri) {
    LumUriReferenceResolver* const resolver = s_resolver.load(std::memory_order_acquire);
    return resolver ? resolver->getStream(uri) : nullptr;
}

}  // namespace

LumUriReferenceResolver::~LumUriReferenceResolver() = default;

LumUriReferenceResolver* LumUri::setUriReferenceResolver(LumUriReferenceResolver* resolver) {
    return s_resolver.exchange(resolver, std::memory_order_acq_rel);
}

std::istream* LumUri::getStream(UnicodeString*, UnicodeString* errorMessage) const {
    try {
        if (std::istream* const resolved = askResolver(uri_)) return resolved;
        return isFile() ? openLocalFile<std::istream>(*this, std::ios_base::in) : nullptr;
    } catch (...) {
        if (errorMessage) *errorMessage = u"Unknown exception";
        return nullptr;
    }
}

std::istream* LumUri::getStream(UnicodeString* contentType) const { return getStream(contentType, nullptr); }

std::istream* LumUri::getStreamFromResolver() const {
    try {
        return askResolver(uri_);
    } catch (...) {
        return nullptr;
    }
}

std::ostream* LumUri::createOStream(const UnicodeString& path) {
    try {
        const LumUri uri(path);
        return uri.isFile() ? openLocalFile<std::ostream>(uri, std::ios_base::out | std::ios_base::trunc) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

bool LumUri::releaseOStream(std::ostream* out) {
    if (!out) return true;
    const std::unique_ptr<std::ostream> owned(out);
    try {
        auto* const file = dynamic_cast<LocalFileStream<std::ostream>*>(out);
        const bool isWritten = file ? file->close() : !out->flush().fail();
        // The caller's exception mask may turn the next line into a throw.
        if (!isWritten) out->setstate(std::ios_base::failbit);
        return !out->fail();
    } catch (...) {
        return false;
    }
}

}  // namespace LumCommon
