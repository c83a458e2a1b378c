#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/streams/LumGzipStream.h>

#include <iosfwd>
#include <string_view>

namespace LumCommon {

/// Supplied by the library's user: opens URIs before the library tries to.
class LUM_API LumUriReferenceResolver {
public:
    virtual ~LumUriReferenceResolver();
    /// Returns a new stream, which the caller deletes, null to leave the URI to the library, or refusal(). What it
    /// throws makes the resource one that cannot be opened.
    [[nodiscard]] virtual std::istream* getStream(const UnicodeString& uri) = 0;
    /// What getStream() returns for a resource that must not be opened: LumUri::getStream() gives null, and an XML
    /// document that needs the resource is error 0x183A. Not a stream to read from, and not to be deleted.
    static std::istream* refusal() noexcept;
};

/// A reference to a resource, held as one normalised string.
///
/// Nothing here throws: failures are reported as null, false or empty strings.
/// Threads: as for any value type; the resolver is shared by all threads and must be set before URIs are opened.
class LUM_API LumUri {
public:
    /// How the string passed to a constructor is written: 2 and 3 allow url(...) and quotes around it.
    using URISTRTYPE = int;
    static constexpr URISTRTYPE URISTR_0 = 0;  ///< as it stands
    static constexpr URISTRTYPE URISTR_1 = 1;  ///< as it stands
    static constexpr URISTRTYPE URISTR_2 = 2;  ///< url(...) and quotes are taken off
    static constexpr URISTRTYPE URISTR_3 = 3;  ///< url(...) and quotes are taken off

    /// The empty URI.
    LumUri() = default;
    /// The URI of a text, which may be a path: see LumUriSub::makeUriFromPath().
    LumUri(const UnicodeString& s, URISTRTYPE type = URISTR_3);
    /// `s` resolved against `base`.
    LumUri(const LumUri& base, const UnicodeString& s, URISTRTYPE type = URISTR_3);
    /// A copy.
    LumUri(const LumUri&) = default;
    /// Takes over the string; `other` can only be assigned or destroyed then.
    LumUri(LumUri&&) noexcept = default;
    /// Copies the string.
    LumUri& operator=(const LumUri&) = default;
    /// Takes over the string; the other can only be assigned or destroyed then.
    LumUri& operator=(LumUri&&) noexcept = default;
    virtual ~LumUri();

    /// The URI of a file whose path is known as bytes, whatever these are: names that are not text in the platform's
    /// encoding too. Its string leads to that file wherever the library takes a URI: toString() for
    /// LumDocument::load(), say. Nothing in the path is decoded. A relative path is completed by the working directory.
    /// Bytes that are no text are units U+DC80 to U+DCFF in the string, which no text has; resolving references against
    /// it keeps them.
    /// @return an empty URI for an empty path and for one with a zero byte, which names no file.
    static LumUri fromLocalPath(std::string_view path);

    /// The URI string.
    const UnicodeString& toString() const noexcept { return uri_; }
    /// The local path of a file: URI or a string without a scheme, percent escapes decoded; any other URI unchanged.
    UnicodeString getLocalPath() const;
    /// A copy with percent escapes decoded, each to one unit U+0000 to U+00FF.
    static UnicodeString unescape(const UnicodeString& s);
    /// True for file: and for a string without a scheme.
    bool isFile() const;
    /// True if there is a scheme.
    bool isAbsolute() const;
    /// Always false.
    bool isRemote() const;
    /// The scheme without its colon, or empty.
    UnicodeString getScheme() const;
    /// Removes the fragment and returns it, "#" included.
    UnicodeString removeFragment();
    /// Appends `separator` to `s` unless it ends with that; returns a copy of the result.
    static UnicodeString toDirectory(UnicodeString& s, char16_t separator);
    /// The part after the last "/".
    UnicodeString getFileName() const;
    /// The extension of the file name, dot included, or empty.
    UnicodeString getExtension() const;
    /// Replaces the extension by `*extension` (dot included) or, with null, removes it. Returns the old one. If the
    /// string ends with "/", nothing is changed and a bogus string is returned.
    UnicodeString setExtension(const UnicodeString* extension);
    /// The local path up to and including the last "/"; "./" if there is none.
    UnicodeString getBaseString() const;
    /// Whether to look for files also in the way that other programs read a file: URI or path. Off by default; applies
    /// to the whole program and must be set before URIs are opened. When it is on and getLocalPath() does not exist,
    /// - percent escapes are read as bytes of UTF-8, provided they are valid UTF-8: "file:///tmp/%C3%A9.fo";
    /// - "file://localhost/" means this machine, like "file:///".
    /// @return the previous setting.
    static bool setFindsForeignFileUris(bool finds) noexcept;
    /// The local path that is used wherever files are opened, created or looked for: getLocalPath() or, if that does
    /// not exist and setFindsForeignFileUris() is on, the first of the other readings that exists; if none does, the
    /// last of them, which is where a new file is created.
    /// Cost: asks the file system up to four times if the switch is on.
    UnicodeString findLocalPath() const;
    /// Whether the local path (findLocalPath()) exists. Here and wherever a path is passed to the system, it is
    /// converted to ICU's default codepage, or to UTF-8 if that lacks one of its characters; a path that contains
    /// U+0000 names no file.
    bool isFileExists() const;
    /// @param path  a path in the platform's encoding; null gives false.
    static bool isFileExists(const char* path);
    /// True if both are files with exactly the same local path.
    bool isSameFile(const LumUri& other) const;
    /// This URI written relative to `base`; empty if that is not possible.
    UnicodeString getRelativeUri(const UnicodeString& base) const;
    /// Whether the scheme is "data".
    bool isDataScheme() const;
    /// Whether the scheme is "jar".
    bool isJarScheme() const;
    /// The URI of an installation file: `file` in the directory that the environment variable `envName` names.
    /// @param module  not used on this platform. All three may be null.
    /// @param file  a name below that directory.
    /// @param envName  the name of the environment variable.
    static LumUri getModuleUri(const char* module, const char* file, const char* envName);
    /// Loads the local path with dlopen(), bound lazily; null on failure and for an empty path. Release it with
    /// freeLibrary().
    void* loadLibrary() const;
    /// The address of a symbol; null if the library lacks it or an argument is null.
    static void* getProcAddress(void* handle, const char* name);
    /// Releases a library; null is allowed.
    static void freeLibrary(void* handle);

    // Opening. The bodies of the members from here on are in uri/open/LumUriOpen.cpp.

    /// Installs a resolver (null: none) and returns the previous one. Not owned: the caller keeps it alive while it is
    /// installed.
    static LumUriReferenceResolver* setUriReferenceResolver(LumUriReferenceResolver* resolver);

    /// Opens the resource for reading: by the installed resolver, else by its scheme.
    /// - file: or no scheme: a local file; a directory gives null.
    /// - http: fetched as described at LumUriStreamBuf; the stream reads while bytes arrive and cannot seek.
    /// - jar: as "jar:ARCHIVE!/MEMBER", where ARCHIVE is a URI of any of these kinds except jar: and MEMBER, as
    ///   written or with its percent escapes decoded, is the name of a member. "jar:ARCHIVE!/MEMBER!/MEMBER" reaches
    ///   into an archive inside the archive, up to 16 deep. The stream holds the compressed bytes and inflates them as
    ///   it is read.
    /// Any other scheme gives null; LumDataUri gives the parts of a data: URI.
    /// @param contentType   receives the media type of an http: resource, and is emptied for a jar: one; may be null.
    /// @param errorMessage  receives the message of LumUriStreamBuf, "Unknown exception" if something threw, "Refused"
    ///                      if the resolver refused it; may be null. Other failures leave it unchanged.
    /// @param isRefused     receives whether the resolver refused it, or the archive that it is in; may be null.
    /// Ownership: the caller deletes the stream. Null on failure.
    /// Cost: an archive is read up to the data of its last member, or to its end if only that states the sizes of
    /// members; one that is not a local file, or is inside another, is held in memory as far as it is read. See
    /// LumUriStreamBuf for how long a server may take.
    [[nodiscard]] std::istream* getStream(UnicodeString* contentType, UnicodeString* errorMessage,
                                          bool* isRefused) const;
    /// The same without telling refusals apart.
    [[nodiscard]] std::istream* getStream(UnicodeString* contentType, UnicodeString* errorMessage) const;
    /// The same without a message.
    [[nodiscard]] std::istream* getStream(UnicodeString* contentType = nullptr) const;
    /// The stream that the installed resolver opens for this URI; null if there is no resolver or it refuses. The
    /// caller deletes it.
    [[nodiscard]] std::istream* getStreamFromResolver() const;
    /// Whether the resource can be opened and begins like gzip data.
    bool isGzip() const;
    /// Whether the stream, sought to 0, begins like gzip data. It is left after the two bytes that this takes. False
    /// for a stream that has failed or cannot seek.
    static bool isGzip(std::istream& s);
    /// Opens the local path as a LumGzipStream, which passes through anything that is not gzip data. Null if it cannot
    /// be opened.
    /// Ownership: the caller deletes the stream.
    [[nodiscard]] LumGzipStream* getGzipStream() const;
    /// The stream, sought to 0 and read through a new LumGzipStream, which the caller deletes. Null on failure.
    /// @param s  must outlive the result.
    [[nodiscard]] static LumGzipStream* getGzipStream(std::istream& s);
    /// Creates a file for binary writing at a local path or file: URI; null on failure. Close it with releaseOStream().
    [[nodiscard]] static std::ostream* createOStream(const UnicodeString& path);
    /// Closes and deletes a stream made by createOStream; null is allowed. False if not everything could be written.
    [[nodiscard]] static bool releaseOStream(std::ostream* out);

protected:
    UnicodeString uri_;  ///< the normalised string
};

}  // namespace LumCommon
