#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/streams/LumGzipStream.h>

#include <iosfwd>

namespace LumCommon {

/// Supplied by the library's user: opens URIs before the library tries to.
class LUM_API LumUriReferenceResolver {
public:
    virtual ~LumUriReferenceResolver();
    /// A new stream that the caller deletes, or null to leave the URI to the library.
    [[nodiscard]] virtual std::istream* getStream(const UnicodeString& uri) = 0;
};

/// A reference to a resource, held as one normalised string.
///
/// Nothing here throws: failures are null, false or empty strings.
/// Threads: a value; the resolver is shared by all threads and is set before URIs are opened.
class LUM_API LumUri {
public:
    /// How the string handed to a constructor is written: 2 and 3 allow url(...) and quotes around it.
    using URISTRTYPE = int;
    static constexpr URISTRTYPE URISTR_0 = 0, URISTR_1 = 1, URISTR_2 = 2, URISTR_3 = 3;

    LumUri() = default;
    LumUri(const UnicodeString& s, URISTRTYPE type = URISTR_3);
    /// `s` resolved against `base`.
    LumUri(const LumUri& base, const UnicodeString& s, URISTRTYPE type = URISTR_3);
    LumUri(const LumUri&) = default;
    LumUri(LumUri&&) noexcept = default;
    LumUri& operator=(const LumUri&) = default;
    LumUri& operator=(LumUri&&) noexcept = default;
    virtual ~LumUri();

    /// The URI string.
    const UnicodeString& toString() const noexcept { return uri_; }
    UnicodeString getLocalPath() const;
    /// A copy with percent escapes decoded, each to one unit U+0000 to U+00FF.
    static UnicodeString unescape(const UnicodeString& s);
    /// True for file: and for a string without scheme.
    bool isFile() const;
    /// True when there is a scheme.
    bool isAbsolute() const;
    /// Always false.
    bool isRemote() const;
    /// The scheme without its colon, or empty.
    UnicodeString getScheme() const;
    /// Cuts the fragment off and returns it, "#" included.
    UnicodeString removeFragment();
    /// Appends `separator` unless `s` ends with it; returns a copy of `s`.
    static UnicodeString toDirectory(UnicodeString& s, char16_t separator);
    /// What follows the last "/".
    UnicodeString getFileName() const;
    /// The extension of the file name, dot included, or empty.
    UnicodeString getExtension() const;
    /// Replaces the extension by `*extension` (dot included) or, with null, removes it. Returns the old one; bogus, and
    /// nothing changed, when the string ends with "/".
    UnicodeString setExtension(const UnicodeString* extension);
    /// The local path up to and including the last "/"; "./" without one.
    UnicodeString getBaseString() const;
    /// Whether files are also found by what other programs mean with a file: URI or path. Off at first; the whole
    /// program's, set before URIs are opened. When it is on and getLocalPath() names nothing that exists,
    /// - percent escapes are read as bytes of UTF-8, where they are that: "file:///tmp/%C3%A9.fo";
    /// - "file://localhost/" means this machine, as "file:///" does.
    /// @return what it was.
    static bool setFindsForeignFileUris(bool finds) noexcept;
    /// The local path that is used wherever files are opened, made or asked for: getLocalPath() or, when that does not
    /// exist and foreign file: URIs are to be found, the first other reading that exists; when there is none, the last
    /// of them, which a new file gets.
    /// Cost: asks the file system, up to four times, when the switch is on.
    UnicodeString findLocalPath() const;
    /// Whether the local path (findLocalPath()) exists. Here and wherever a path goes to the system, it is converted to
    /// ICU's default codepage, or to UTF-8 when that lacks one of its characters; a path that holds U+0000 names no
    /// file.
    bool isFileExists() const;
    /// @param path  a path in the platform's encoding; null gives false.
    static bool isFileExists(const char* path);
    /// True when both are files with exactly the same local path.
    bool isSameFile(const LumUri& other) const;
    /// This URI written relative to `base`; empty when that cannot be done.
    UnicodeString getRelativeUri(const UnicodeString& base) const;
    bool isDataScheme() const;
    bool isJarScheme() const;
    /// The URI of an installation file: `file` in the directory that the environment variable `envName` names.
    /// @param module  not used on this platform.   All three may be null.
    static LumUri getModuleUri(const char* module, const char* file, const char* envName);
    /// dlopen of the local path, lazily bound; null on failure and for an empty path. Release with freeLibrary().
    void* loadLibrary() const;
    /// The address of a symbol; null when the library lacks it and when one of the arguments is null.
    static void* getProcAddress(void* handle, const char* name);
    /// Gives a library back; null is allowed.
    static void freeLibrary(void* handle);
    /// Installs a resolver (null: none) and returns the one before. The caller keeps it alive while it is installed.
    static LumUriReferenceResolver* setUriReferenceResolver(LumUriReferenceResolver* resolver);

    /// Opens the resource for reading: by the installed resolver, else by its scheme.
    /// - file: or no scheme: a local file; a directory gives null.
    /// - http: fetched as LumUriStreamBuf says; the stream is one that reads while bytes arrive and cannot seek.
    /// - jar: as "jar:ARCHIVE!/MEMBER", where ARCHIVE is a URI of any of these kinds but jar: and MEMBER the name of a
    ///   member as the archive has it, or with its percent escapes decoded. "jar:ARCHIVE!/MEMBER!/MEMBER" goes into an
    ///   archive in the archive, up to 16 deep. The stream holds the compressed bytes and inflates them as it is read.
    /// Any other scheme gives null; the parts of data: are in LumDataUri.
    /// @param contentType   gets the media type of an http: resource, and is empty after a jar: one; may be null.
    /// @param errorMessage  gets what LumUriStreamBuf has to report, "Unknown exception" where something threw; may be
    ///                      null. Other failures leave it as it was.
    /// Ownership: the caller deletes the stream. Null on failure.
    /// Cost: archives are read up to the data of their last member, and up to their end where only that tells the sizes
    /// of members; one that does not come from a local file, and one inside another, is held in memory as far as it is
    /// read. See LumUriStreamBuf for how long a server may take.
    [[nodiscard]] std::istream* getStream(UnicodeString* contentType, UnicodeString* errorMessage) const;
    [[nodiscard]] std::istream* getStream(UnicodeString* contentType = nullptr) const;
    /// What the installed resolver opens for this URI; null without one. The caller deletes it.
    [[nodiscard]] std::istream* getStreamFromResolver() const;
    /// Whether the resource can be opened and begins as gzip data do.
    bool isGzip() const;
    /// Whether the stream, sought to 0, begins as gzip data do. It is left behind the two bytes that tell.
    /// False for a stream that has failed or cannot seek.
    static bool isGzip(std::istream& s);
    /// The local path as a LumGzipStream, which passes through what is not gzip data. Null when it cannot be opened.
    /// Ownership: the caller deletes the stream.
    [[nodiscard]] LumGzipStream* getGzipStream() const;
    /// The stream, sought to 0, seen through a LumGzipStream, which the caller deletes.
    /// @param s  must outlive the result.
    [[nodiscard]] static LumGzipStream* getGzipStream(std::istream& s);
    /// A new file for writing, in binary, at a local path or file: URI; null on failure. End it with releaseOStream().
    [[nodiscard]] static std::ostream* createOStream(const UnicodeString& path);
    /// Closes and deletes a stream made by createOStream; null is allowed. False when not all could be written.
    [[nodiscard]] static bool releaseOStream(std::ostream* out);

protected:
    UnicodeString uri_;
};

}  // namespace LumCommon
