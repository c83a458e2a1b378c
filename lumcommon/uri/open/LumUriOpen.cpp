#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/NeverDestroyed.h>
#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/detail/StreamReading.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/open/LumUriStream.h>
#include <lumcommon/uri/open/detail/OpenResource.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <istream>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <string_view>

namespace LumCommon {
namespace {

using View = std::u16string_view;
using OwnedStream = std::unique_ptr<std::istream>;

constexpr View jarScheme = u"jar:";
constexpr View memberMark = u"!/";  // between an archive and a member of it
constexpr int maxNestedArchives = 16;
constexpr std::size_t fileBufferBytes = std::size_t{64} * 1024;

constinit std::atomic<LumUriReferenceResolver*> s_resolver{nullptr};

/// A stream over a local file, with a buffer eight times the default size because documents are read and written from
/// end to end.
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
    /// False if what was still buffered could not be written.
    bool close() { return file_.close() != nullptr; }

private:
    std::unique_ptr<char[]> room_;
    std::filebuf file_;
};

template <class Stream>
Stream* openLocalFile(const LumUri& uri, std::ios_base::openmode mode) {
    const auto path = detail::toPlatformPath(uri.findLocalPath());
    // A directory can be opened but not read; the reader would get an exception instead of an end.
    std::error_code error;
    if (!path || std::filesystem::is_directory(*path, error)) return nullptr;
    auto stream = std::make_unique<LocalFileStream<Stream>>(*path, mode);
    if (!stream->isOpen() && errno == ENOMEM) throw std::bad_alloc();
    return stream->isOpen() ? stream.release() : nullptr;
}

/// What the resolver returns; null without one.
std::istream* askResolver(const UnicodeString& uri) {
    LumUriReferenceResolver* const resolver = s_resolver.load(std::memory_order_acquire);
    return resolver ? resolver->getStream(uri) : nullptr;
}

bool isRefusal(const std::istream* stream) { return stream && stream == LumUriReferenceResolver::refusal(); }

OwnedStream openRemote(const UnicodeString& uri, UnicodeString* contentType, UnicodeString* errorMessage) {
    auto stream = std::make_unique<LumUriStream>(uri);
    const LumUriStreamBuf& buffer = *stream->rdbuf();
    if (errorMessage) *errorMessage = buffer.getErrorMessage();
    if (!buffer.is_open()) return nullptr;
    if (contentType) *contentType = buffer.getContentType();
    return stream;
}

/// A seekable stream for the zip reader. Bytes are copied only as far as it reads or seeks.
OwnedStream makeSeekable(OwnedStream in) {
    auto copy = std::make_unique<LumMemStream>();
    copy->rdbuf()->setSource(in.release(), true);
    return copy;
}

/// The uncompressed bytes of a member; null if there is no such member or no archive.
OwnedStream openMember(OwnedStream archive, View path) {
    if (!LumZipFile::isZipFile(archive.get())) return nullptr;
    const LumZipFile zip(archive.get(), false);
    const UnicodeString name = detail::textOf(path);
    LumZipFileEntry* entry = zip.getFileEntry(name);
    // A URI cannot contain a blank, so a name that does arrives escaped.
    if (!entry) entry = zip.getFileEntry(LumUri::unescape(name));
    OwnedStream member(entry ? entry->getUncompressedStream(true) : nullptr);
    // Where reading the archive has failed, the member may be shorter than it is.
    return detail::isBroken(*archive) ? nullptr : std::move(member);
}

/// Takes the text before the next mark off `rest`, or all of it if there is no mark.
View takePart(View& rest) {
    const std::size_t end = rest.find(memberMark);
    const View part = rest.substr(0, end);
    rest.remove_prefix(end == View::npos ? rest.size() : end + memberMark.size());
    return part;
}

int countMarks(View text) {
    int count = 0;
    for (std::size_t at = 0; (at = text.find(memberMark, at)) != View::npos; at += memberMark.size()) ++count;
    return count;
}

OwnedStream open(const LumUri& uri, UnicodeString* contentType, UnicodeString* errorMessage, bool& isRefused);

OwnedStream openJar(const UnicodeString& uri, UnicodeString* contentType, UnicodeString* errorMessage,
                    bool& isRefused) {
    View rest = detail::viewOf(uri).substr(jarScheme.size());
    const int archiveCount = countMarks(rest);
    if (archiveCount == 0 || archiveCount > 1 + maxNestedArchives) return nullptr;
    // The archive's own URI has no mark, so even if it is a jar: URI it opens nothing and goes no deeper.
    const LumUri archive(detail::textOf(takePart(rest)));
    UnicodeString archiveMessage;
    OwnedStream stream = open(archive, nullptr, &archiveMessage, isRefused);
    // If the archive was opened, its message (a successful status) says nothing about a missing member.
    if (!stream && errorMessage && !archiveMessage.isEmpty()) *errorMessage = archiveMessage;
    if (stream && (!archive.isFile() || stream->tellg() == std::istream::pos_type(-1))) {
        stream = makeSeekable(std::move(stream));
    }
    for (int i = 0; i < archiveCount && stream; ++i) {
        if (i > 0) stream = makeSeekable(std::move(stream));
        stream = openMember(std::move(stream), takePart(rest));
    }
    if (stream && contentType) contentType->remove();
    return stream;
}

/// LumUri::getStream(), which turns what this throws into null.
OwnedStream open(const LumUri& uri, UnicodeString* contentType, UnicodeString* errorMessage, bool& isRefused) {
    isRefused = false;
    const UnicodeString text = uri.toString();
    std::istream* const resolved = askResolver(text);
    isRefused = isRefusal(resolved);
    if (isRefused) {
        if (errorMessage) *errorMessage = u"Refused";
        return nullptr;
    }
    if (resolved) return OwnedStream(resolved);
    if (uri.isFile()) return OwnedStream(openLocalFile<std::istream>(uri, std::ios_base::in));
    if (uri.isJarScheme()) return openJar(text, contentType, errorMessage, isRefused);
    return openRemote(text, contentType, errorMessage);
}

/// Reads two bytes and tells whether they begin gzip data.
bool takeGzipMark(std::istream& in) {
    char mark[2] = {};
    in.read(mark, sizeof mark);
    return in.gcount() == sizeof mark && mark[0] == '\x1F' && mark[1] == '\x8B';
}

}  // namespace

LumUriReferenceResolver::~LumUriReferenceResolver() = default;

std::istream* LumUriReferenceResolver::refusal() noexcept {
    static detail::NeverDestroyed<std::istream> mark(nullptr);
    return &*mark;
}

LumUriReferenceResolver* LumUri::setUriReferenceResolver(LumUriReferenceResolver* resolver) {
    return s_resolver.exchange(resolver, std::memory_order_acq_rel);
}

std::istream* LumUri::getStream(UnicodeString* contentType, UnicodeString* errorMessage, bool* isRefused) const {
    bool isRefusedHere = false;
    try {
        return open(*this, contentType, errorMessage, isRefused ? *isRefused : isRefusedHere).release();
    } catch (...) {
        if (errorMessage) *errorMessage = u"Unknown exception";
        return nullptr;
    }
}

std::unique_ptr<std::istream> detail::openResource(const LumUri& resource, bool& isRefused) {
    try {
        return open(resource, nullptr, nullptr, isRefused);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const LumError& error) {
        if (error.code == static_cast<unsigned>(LumErrorCodeLumLIB::OutOfMemory)) throw;
        return nullptr;
    } catch (...) {
        return nullptr;
    }
}

std::istream* LumUri::getStream(UnicodeString* contentType, UnicodeString* errorMessage) const {
    return getStream(contentType, errorMessage, nullptr);
}

std::istream* LumUri::getStream(UnicodeString* contentType) const { return getStream(contentType, nullptr); }

std::istream* LumUri::getStreamFromResolver() const {
    try {
        std::istream* const resolved = askResolver(uri_);
        return isRefusal(resolved) ? nullptr : resolved;
    } catch (...) {
        return nullptr;
    }
}

bool LumUri::isGzip() const {
    try {
        const OwnedStream in(getStream());
        return in && takeGzipMark(*in);
    } catch (...) {
        return false;
    }
}

bool LumUri::isGzip(std::istream& s) {
    try {
        s.seekg(0);
        return takeGzipMark(s);
    } catch (...) {  // thrown by the caller's buffer or because of the caller's exception mask
        return false;
    }
}

LumGzipStream* LumUri::getGzipStream() const {
    try {
        auto stream = std::make_unique<LumGzipStream>(findLocalPath());
        return stream->is_open() ? stream.release() : nullptr;
    } catch (...) {
        return nullptr;
    }
}

LumGzipStream* LumUri::getGzipStream(std::istream& s) {
    try {
        s.seekg(0);
        return new LumGzipStream(s);
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
        // The caller's exception mask may make the next line throw.
        if (!isWritten) out->setstate(std::ios_base::failbit);
        return !out->fail();
    } catch (...) {
        return false;
    }
}

}  // namespace LumCommon
