#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/LumStrings.h>
#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/LumUriSub.h>
#include <lumcommon/uri/detail/UriText.h>

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace LumCommon {
namespace {

using detail::append;
using detail::checked;
using detail::copyOf;
using detail::textOf;
using detail::viewOf;
using View = std::u16string_view;

constexpr std::size_t npos = View::npos;

constinit std::atomic<bool> s_findsForeignFileUris{false};

/// The string up to and including its last "/"; empty if there is none.
View directoryOf(View uri) {
    const std::size_t slash = uri.rfind(u'/');
    return slash == npos ? View() : uri.substr(0, slash + 1);
}

/// Where the extension of the file name begins; the length of `uri` if there is none.
std::size_t extensionStart(View uri) {
    const std::size_t dot = uri.rfind(u'.');
    return dot == npos || dot < directoryOf(uri).size() ? uri.size() : dot;
}

bool isPathThere(const UnicodeString& localPath) {
    const auto path = detail::toPlatformPath(localPath);
    return path && LumUri::isFileExists(path->c_str());
}

UnicodeString withoutLocalHost(const UnicodeString& uri) {
    constexpr View start = u"file://localhost/";
    constexpr View host = u"localhost";
    UnicodeString result = copyOf(uri);
    if (detail::startsWithIgnoringAsciiCase(viewOf(uri), start)) {
        checked(result.remove(static_cast<int32_t>(start.find(host)), static_cast<int32_t>(host.size())));
    }
    return result;
}

/// The URI with its percent escapes decoded as UTF-8; escapes of US-ASCII stay, so that what they stand for is not
/// taken for an escape again. The URI unchanged if the escapes are not valid UTF-8.
UnicodeString withUtf8Escapes(const UnicodeString& uri) {
    UnicodeString result;
    for (View rest = viewOf(uri); !rest.empty();) {
        std::string bytes;
        for (int byte = 0; (byte = detail::escapedByte(rest)) >= 0x80; rest.remove_prefix(3)) {
            bytes += static_cast<char>(byte);
        }
        if (bytes.empty()) {
            append(result, rest.front());
            rest.remove_prefix(1);
            continue;
        }
        const UnicodeString text = detail::fromUtf8(bytes);
        if (detail::utf8Of(text) != bytes) return uri;
        append(result, text);
    }
    return result;
}

/// The local path of the installation directory that the variable names; empty if it names no existing file.
UnicodeString installationDirectory(const char* envName) {
    if (!envName || !*envName) return UnicodeString();
    LumUri uri;
    {
        LumMutex guard;
        const char* const value = std::getenv(envName);
        if (!value) return UnicodeString();
        uri = LumUri(detail::fromPlatformText(value));
    }
    return uri.isFile() && uri.isFileExists() ? uri.findLocalPath() : UnicodeString();
}

}  // namespace

LumUri::LumUri(const UnicodeString& s, URISTRTYPE type) {
    int specType = LumUriSub::URISPEC_0;
    const UnicodeString path = LumUriSub::unquoteUri(s, specType, type);
    uri_ = LumUriSub::makeUriFromPath(path, specType);
}

LumUri::LumUri(const LumUri& base, const UnicodeString& s, URISTRTYPE type) {
    int specType = LumUriSub::URISPEC_0;
    const UnicodeString reference = LumUriSub::unquoteUri(s, specType, type);
    uri_ = LumUriSub::makeAbsUri(base.uri_, reference, specType);
}

LumUri::~LumUri() = default;

LumUri LumUri::fromLocalPath(std::string_view path) {
    if (path.empty() || path.find('\0') != path.npos) return LumUri();
    std::error_code error;
    std::string whole = std::filesystem::absolute(path, error).native();
    if (error) whole = path;
    std::string escaped;  // what would be trimmed or decoded
    for (const char c : whole) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && c != '%') {
            escaped += c;
            continue;
        }
        constexpr char digits[] = "0123456789ABCDEF";
        escaped.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    const View start = error ? View(u"file:") : View(u"file://");
    LumUri uri;
    for (const UnicodeString& text : {detail::fromPlatformPath(escaped), detail::asPlatformBytes(escaped)}) {
        UnicodeString string = textOf(start);
        uri = LumUri(append(string, text));
        if (detail::toPlatformPath(uri.getLocalPath()) == whole) break;
    }
    return uri;
}

UnicodeString LumUri::getLocalPath() const { return LumUriSub::makeLocalPathFromUri(uri_); }

bool LumUri::setFindsForeignFileUris(bool finds) noexcept {
    return s_findsForeignFileUris.exchange(finds, std::memory_order_relaxed);
}

UnicodeString LumUri::findLocalPath() const {
    UnicodeString path = getLocalPath();
    if (!s_findsForeignFileUris.load(std::memory_order_relaxed) || !isFile() || isPathThere(path)) return path;
    const UnicodeString onThisMachine = withoutLocalHost(uri_);
    for (const UnicodeString& reading : {withUtf8Escapes(uri_), onThisMachine, withUtf8Escapes(onThisMachine)}) {
        path = LumUriSub::makeLocalPathFromUri(reading);
        if (isPathThere(path)) break;
    }
    return path;
}

UnicodeString LumUri::unescape(const UnicodeString& s) {
    UnicodeString result = copyOf(s);
    LumUriSub::unescapeHH(result);
    return result;
}

bool LumUri::isFile() const { return LumUriSub::isFileScheme(uri_) || !isAbsolute(); }

bool LumUri::isAbsolute() const { return LumUriSub::checkScheme(uri_) != -1; }

bool LumUri::isRemote() const { return false; }

UnicodeString LumUri::getScheme() const {
    const int colon = LumUriSub::checkScheme(uri_);
    return colon == -1 ? UnicodeString() : textOf(viewOf(uri_).substr(0, static_cast<std::size_t>(colon)));
}

UnicodeString LumUri::removeFragment() {
    const std::size_t hash = viewOf(uri_).find(u'#');
    if (hash == npos) return UnicodeString();
    UnicodeString fragment = textOf(viewOf(uri_).substr(hash));
    uri_.truncate(static_cast<int32_t>(hash));
    return fragment;
}

UnicodeString LumUri::toDirectory(UnicodeString& s, char16_t separator) {
    if (!viewOf(s).ends_with(separator)) append(s, separator);
    return copyOf(s);
}

UnicodeString LumUri::getFileName() const { return textOf(viewOf(uri_).substr(directoryOf(viewOf(uri_)).size())); }

UnicodeString LumUri::getExtension() const {
    if (isDataScheme()) return UnicodeString();
    return textOf(viewOf(uri_).substr(extensionStart(viewOf(uri_))));
}

UnicodeString LumUri::setExtension(const UnicodeString* extension) {
    if (viewOf(uri_).ends_with(u'/')) return LumBogusString();
    UnicodeString old = getExtension();
    // `extension` may be what toString() returned.
    const View kept = viewOf(uri_).substr(0, viewOf(uri_).size() - viewOf(old).size());
    UnicodeString changed = detail::joined(kept, extension ? viewOf(*extension) : View());
    uri_.swap(changed);
    return old;
}

UnicodeString LumUri::getBaseString() const {
    const View directory = directoryOf(viewOf(uri_));
    return LumUriSub::makeLocalPathFromUri(textOf(directory.empty() ? View(u"./") : directory));
}

bool LumUri::isFileExists() const { return isPathThere(findLocalPath()); }

bool LumUri::isFileExists(const char* path) { return path && access(path, F_OK) == 0; }

bool LumUri::isSameFile(const LumUri& other) const {
    return isFile() && other.isFile() && getLocalPath() == other.getLocalPath();
}

UnicodeString LumUri::getRelativeUri(const UnicodeString& base) const {
    UnicodeString result;
    const View uri = viewOf(uri_);
    const View directory = directoryOf(uri);
    View baseDirectory = directoryOf(viewOf(base));
    if (base.isEmpty() || directory.empty()) return result;

    // The directories that contain this URI are its prefixes that end with "/". The longest one that also contains the
    // base ends at the last "/" of the common prefix.
    const auto disagreement = std::ranges::mismatch(directory, baseDirectory).in1;
    const View common = directoryOf(directory.substr(0, static_cast<std::size_t>(disagreement - directory.begin())));
    if (common.empty()) return result;
    baseDirectory.remove_prefix(common.size());
    for (const char16_t unit : baseDirectory) {
        if (unit == u'/') append(result, u"../");
    }
    return append(result, uri.substr(common.size()));
}

bool LumUri::isDataScheme() const { return LumUriSub::isDataScheme(uri_); }

bool LumUri::isJarScheme() const { return LumUriSub::isJarScheme(uri_); }

LumUri LumUri::getModuleUri(const char*, const char* file, const char* envName) {
    const UnicodeString name = file ? detail::fromPlatformText(file) : UnicodeString();
    UnicodeString directory = installationDirectory(envName);
    if (directory.isEmpty()) {
        if (viewOf(name).ends_with(u".so")) return LumUri(name);
        directory = u"./";
    }
    if (!name.isEmpty()) return LumUri(LumUri(toDirectory(directory, u'/')), name);
    if (viewOf(directory).ends_with(u'/')) directory.truncate(directory.length() - 1);
    return LumUri(directory);
}

void* LumUri::loadLibrary() const {
    // dlopen() takes an empty path to mean the program itself, which is never meant by a library's URI.
    const auto path = detail::toPlatformPath(findLocalPath());
    return path && !path->empty() ? dlopen(path->c_str(), RTLD_LAZY) : nullptr;
}

void* LumUri::getProcAddress(void* handle, const char* name) {
    // With null, dlsym() searches everything that is loaded, so a library that failed to load would seem to have every
    // function.
    return handle && name ? dlsym(handle, name) : nullptr;
}

void LumUri::freeLibrary(void* handle) {
    if (handle) dlclose(handle);
}

}  // namespace LumCommon
