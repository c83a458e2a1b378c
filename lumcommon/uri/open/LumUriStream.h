#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/streams/LumRefillStreamBuf.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <span>
#include <string>

namespace LumCommon {

namespace detail {
class Deadline;
class HttpHead;
struct HttpUrl;
}  // namespace detail

/// Reads the body of an http: resource as it arrives.
///
/// The resource is fetched with an HTTP/1.0 GET over IPv4. If its host cannot be reached, the request goes through the
/// proxy that the environment variable HTTP_PROXY names ("host" or "host:port", no scheme); but not where
/// REQUEST_METHOD is set too: there a web server has started the program, and HTTP_PROXY is the "Proxy" header of a
/// stranger's request. The statuses 301, 302, 303 and 305 are followed if they come with a location, which must be a
/// complete http: URI; no more than 100 requests are made in total. Up to 16 bytes that were read can be put back.
/// Seeking is not supported; a LumMemStream can add it.
///
/// Limits: a response head is at most 64 KiB. Connecting, sending, reading the whole head and each read of the body may
/// each take as long as getTimeout() says, and all of them together, redirections included, as long as
/// getTotalTimeout() says. Time that the caller spends between reads does not count. Looking up the name of a host
/// takes as long as the system's resolver does.
///
/// Failure: nothing is thrown. When opening fails, the buffer is closed and getErrorMessage() has the reason. A body
/// that is shorter than the length that the server announced, a connection that breaks and a read that takes too long
/// all end the reading; hasFailed() and the badbit of a LumUriStream then tell so. SIGPIPE is never raised.
///
/// Memory: constant, whatever the server sends.   Threads: one at a time; any number of buffers can be open at once.
class LUM_API LumUriStreamBuf : public LumRefillStreamBuf {
public:
    /// What setTimeout() has for values that are not positive: half a minute.
    static constexpr int defaultTimeoutMilliseconds = 30000;
    /// What setTotalTimeout() has for values that are not positive: a quarter of an hour.
    static constexpr int defaultTotalTimeoutMilliseconds = 15 * 60 * 1000;

    /// Opens the resource.
    explicit LumUriStreamBuf(const UnicodeString& uri);
    /// @param uri  in the platform's encoding; null counts as empty.
    explicit LumUriStreamBuf(const char* uri);
    /// Closes the connection.
    ~LumUriStreamBuf() override;

    /// Opens another resource in place of the current one; the constructors call it. False if that fails.
    bool open(const UnicodeString& uri);
    /// True once a response head with a status from 200 to 299 has been read, and still after the last byte of the
    /// body.
    bool is_open() const noexcept { return hasBlock() && socket_ != -1; }

    /// The status of the last response; 0 if there is none.
    int getStatus() const noexcept { return status_; }
    /// The media type that the server gave; empty if it gave none.
    const UnicodeString& getContentType() const noexcept { return contentType_; }
    /// The last message about opening: "No http scheme", "Cannot create socket", "Cannot connect via proxy",
    /// "Cannot connect or no proxy", "Unknown exception", or "HTTP status is " followed by the status and its text,
    /// which is also set after a success. If there is no usable status, the reason follows "HTTP status is ".
    const UnicodeString& getErrorMessage() const noexcept { return errorMessage_; }

    /// How long connecting and each wait for the server may take, in milliseconds, for the whole process. A change does
    /// not affect waits that have begun. Threads: any.
    static int getTimeout() noexcept;
    /// Sets it and returns the previous value. A value that is not positive stands for the default.
    static int setTimeout(int milliseconds) noexcept;
    /// How long a server may keep the reader of one resource waiting in all, from connecting to the end of the body, in
    /// milliseconds, for the whole process. A change does not affect resources that are open. Threads: any.
    static int getTotalTimeout() noexcept;
    /// Sets it and returns the previous value. A value that is not positive stands for the default.
    static int setTotalTimeout(int milliseconds) noexcept;

private:
    std::size_t refill(std::span<char> room) override;
    bool exchange(UnicodeString uri);
    bool request(const UnicodeString& uri);
    bool connect(const std::string& host, unsigned short port);
    bool readHead(detail::HttpHead& head);
    bool receiveMore(const detail::Deadline& deadline);
    std::optional<std::size_t> receive(std::span<char> room, const detail::Deadline& deadline);
    void expectBody(const detail::HttpHead& head);
    void close() noexcept;

    int status_ = 0;
    UnicodeString contentType_;
    UnicodeString errorMessage_;
    int socket_ = -1;
    bool isEnded_ = false;                            // no more bytes come; asking again would only wait
    std::chrono::steady_clock::duration waitLeft_{};  // of getTotalTimeout()
    std::optional<std::uint64_t> bodyLeft_;           // bytes that the server has announced and not sent yet
};

/// An input stream with its own LumUriStreamBuf. Threads: one at a time.
class LUM_API LumUriStream : public std::istream {
public:
    /// Opens the resource. If that fails, is_open() is false and failbit is set.
    explicit LumUriStream(const UnicodeString& uri);
    /// The same for a URI in the platform's encoding; null counts as empty.
    explicit LumUriStream(const char* uri);
    ~LumUriStream() override;

    /// Whether the resource could be opened.
    bool is_open() const noexcept { return buffer_.is_open(); }
    /// The buffer; it lives as long as the stream.
    LumUriStreamBuf* rdbuf() const noexcept { return const_cast<LumUriStreamBuf*>(&buffer_); }

private:
    LumUriStreamBuf buffer_;
};

}  // namespace LumCommon
