#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/HexText.h>
#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/uri/open/LumUriStream.h>
#include <lumcommon/uri/open/detail/HttpHead.h>
#include <lumcommon/uri/open/detail/TcpSocket.h>

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace LumCommon {
namespace {

using detail::Deadline;
using detail::HttpHead;

constexpr std::size_t putBackBytes = 16;
constexpr std::size_t readBytes = 4096;
constexpr int maxRequests = 100;
constexpr std::string_view userAgent = "Lumset V3.9 R1 for Linux (3,9,2006,0901)";

std::atomic<int> s_timeoutMilliseconds{LumUriStreamBuf::defaultTimeoutMilliseconds};
std::atomic<int> s_totalTimeoutMilliseconds{LumUriStreamBuf::defaultTotalTimeoutMilliseconds};

using Duration = std::chrono::steady_clock::duration;

/// One wait for the server: it ends when this wait, or all of them together, have taken too long. What it took is
/// subtracted from what is left for all.
class Wait {
public:
    explicit Wait(Duration& left)
        : left_(left), deadline_(std::min<Duration>(std::chrono::milliseconds(LumUriStreamBuf::getTimeout()), left)) {}
    ~Wait() { left_ -= std::min(left_, std::chrono::steady_clock::now() - start_); }
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;

    const Deadline& deadline() const noexcept { return deadline_; }

private:
    Duration& left_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    const Deadline deadline_;
};

/// The length of the body that the head announces; nullopt if it announces none, or something that is no length.
std::optional<std::uint64_t> bodyLength(const HttpHead& head) {
    const auto lengths = head.getValues("content-length");
    if (lengths.empty()) return std::nullopt;
    const std::string_view text = lengths.back();
    std::uint64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return length;
}

/// The URL as it is sent. Blanks and control characters are escaped: a line end in the URL would let its author inject
/// lines into the request.
std::string toRequestBytes(const UnicodeString& uri) {
    UnicodeString escaped;
    for (const char16_t unit : detail::viewOf(uri)) {
        if (unit > 0x20 && unit != 0x7F) {
            detail::append(escaped, unit);
        } else {
            detail::appendHexByte(detail::append(escaped, u'%'), static_cast<std::uint8_t>(unit));
        }
    }
    return detail::toPlatformPath(escaped).value_or(std::string());
}

/// Text from a server, decoded from the charset in which requests are written.
UnicodeString fromResponse(std::string_view bytes) { return detail::fromPlatformText(std::string(bytes).c_str()); }

/// The value of HTTP_PROXY; empty if it is not set, or set by a stranger.
std::string getProxy() {
    LumMutex guard;
    if (std::getenv("REQUEST_METHOD")) return std::string();
    const char* const value = std::getenv("HTTP_PROXY");
    return value ? value : "";
}

/// The number that the status begins with; 0 if there is none.
int numberOf(std::string_view status) {
    const long number = std::strtol(std::string(status).c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

bool isSuccess(int status) { return status >= 200 && status <= 299; }

bool isRedirection(int status) { return (status >= 301 && status <= 303) || status == 305; }

}  // namespace

LumUriStreamBuf::LumUriStreamBuf(const UnicodeString& uri) : LumRefillStreamBuf(readBytes, putBackBytes) { open(uri); }

LumUriStreamBuf::LumUriStreamBuf(const char* uri)
    : LumUriStreamBuf(uri ? detail::fromPlatformText(uri) : UnicodeString()) {}

LumUriStreamBuf::~LumUriStreamBuf() { close(); }

int LumUriStreamBuf::getTimeout() noexcept { return s_timeoutMilliseconds.load(std::memory_order_relaxed); }

int LumUriStreamBuf::setTimeout(int milliseconds) noexcept {
    return s_timeoutMilliseconds.exchange(milliseconds > 0 ? milliseconds : defaultTimeoutMilliseconds,
                                          std::memory_order_relaxed);
}

int LumUriStreamBuf::getTotalTimeout() noexcept { return s_totalTimeoutMilliseconds.load(std::memory_order_relaxed); }

int LumUriStreamBuf::setTotalTimeout(int milliseconds) noexcept {
    return s_totalTimeoutMilliseconds.exchange(milliseconds > 0 ? milliseconds : defaultTotalTimeoutMilliseconds,
                                               std::memory_order_relaxed);
}

bool LumUriStreamBuf::open(const UnicodeString& uri) {
    close();
    releaseBlock();
    status_ = 0;
    contentType_.remove();
    errorMessage_.remove();
    waitLeft_ = std::chrono::milliseconds(getTotalTimeout());
    try {
        if (exchange(uri)) return true;
        close();
    } catch (...) {
        close();
        errorMessage_ = u"Unknown exception";
    }
    return false;
}

/// Makes requests until one is answered with something other than a redirection. False unless that is a success.
bool LumUriStreamBuf::exchange(UnicodeString uri) {
    for (int count = 0; count < maxRequests; ++count) {
        close();
        if (!request(uri)) return false;
        HttpHead head;
        const bool isComplete = readHead(head);
        if (const auto text = head.getStatusText()) {
            status_ = numberOf(*text);
            // A head that breaks off after its first line still tells why there is no resource, but not where to look
            // for it or what it is.
            if (isComplete || !(isSuccess(status_) || isRedirection(status_))) {
                errorMessage_ = detail::joined(u"HTTP status is ", fromResponse(*text));
            }
        } else if (isComplete) {
            errorMessage_ = detail::textOf(u"HTTP status is unknown: the response is not HTTP");
        }
        if (!isComplete) return false;
        if (isSuccess(status_)) {
            const auto types = head.getValues("content-type");
            if (!types.empty()) contentType_ = fromResponse(types.back());
            setg(gptr(), gptr(), egptr());  // the head cannot be put back
            expectBody(head);
            return true;
        }
        if (!isRedirection(status_)) return false;
        const auto locations = head.getValues("location");
        if (locations.empty()) return false;
        uri = fromResponse(locations.front());
    }
    return false;
}

/// Connects and sends the request. False, with the message set, if no connection can be made.
bool LumUriStreamBuf::request(const UnicodeString& uri) {
    const std::string url = toRequestBytes(uri);
    if (!detail::httpSchemeLength(url)) {
        errorMessage_ = u"No http scheme";
        return false;
    }
    const detail::HttpUrl target(url);
    std::string text = "GET ";
    std::string hostLine;
    if (connect(target.host, target.port)) {
        text += target.path;
        hostLine = "Host: " + target.host + "\r\n";
    } else {
        if (!errorMessage_.isEmpty()) return false;
        const std::string proxy = getProxy();
        if (proxy.empty()) {
            errorMessage_ = u"Cannot connect or no proxy";
            return false;
        }
        const detail::HttpAuthority authority(proxy);
        if (!connect(authority.host, authority.port)) {
            if (errorMessage_.isEmpty()) errorMessage_ = u"Cannot connect via proxy";
            return false;
        }
        text += url;
    }
    text.append(" HTTP/1.0\r\nUser-Agent: ").append(userAgent).append("\r\n");
    text.append(hostLine).append("Accept: */*\r\n\r\n");
    // A server may answer and close before it has read everything; its answer counts, so the result is ignored.
    static_cast<void>(detail::sendTcp(socket_, text, Wait(waitLeft_).deadline()));
    return true;
}

/// Opens a new socket to the host. False with a message if the socket cannot be created, false without one if the
/// connection fails.
bool LumUriStreamBuf::connect(const std::string& host, unsigned short port) {
    close();
    errorMessage_.remove();
    socket_ = detail::makeTcpSocket();
    if (socket_ == -1) {
        errorMessage_ = u"Cannot create socket";
        return false;
    }
    return detail::connectTcp(socket_, host, port, Wait(waitLeft_).deadline());
}

/// Reads the response up to the body. False, with a message, if that is not reached.
bool LumUriStreamBuf::readHead(HttpHead& head) {
    allocateBlock();
    // One deadline for the whole head: a server that sends a byte now and then must not keep the caller waiting
    // forever.
    const Wait wait(waitLeft_);
    const Deadline& deadline = wait.deadline();
    for (;;) {
        if (gptr() == egptr() && !receiveMore(deadline)) {
            errorMessage_ = detail::textOf(deadline.isOver() ? u"HTTP status is unknown: the response takes too long"
                                                             : u"HTTP status is unknown: the response ends early");
            return false;
        }
        const char byte = *gptr();
        gbump(1);
        const HttpHead::Progress progress = head.take(byte);
        if (progress == HttpHead::Progress::TooLong) {
            errorMessage_ = detail::textOf(u"HTTP status is unknown: the head of the response is too long");
            return false;
        }
        if (progress == HttpHead::Progress::Complete) {
            if (byte == '\r' && (gptr() < egptr() || receiveMore(deadline)) && *gptr() == '\n') gbump(1);
            return true;
        }
    }
}

void LumUriStreamBuf::expectBody(const HttpHead& head) {
    bodyLeft_ = bodyLength(head);
    const auto arrived = static_cast<std::uint64_t>(egptr() - gptr());
    if (bodyLeft_) *bodyLeft_ -= std::min(*bodyLeft_, arrived);
}

std::size_t LumUriStreamBuf::refill(std::span<char> room) {
    const Wait wait(waitLeft_);
    const auto received = receive(room, wait.deadline());
    const std::size_t count = received.value_or(0);
    if (bodyLeft_) *bodyLeft_ -= std::min<std::uint64_t>(*bodyLeft_, count);
    // Where the length is known, it does not matter how the connection ends.
    if (count == 0 && (bodyLeft_ ? *bodyLeft_ > 0 : !received)) fail();
    return count;
}

/// Fills the get area with the next bytes. False if there are none; the get area is then at its end.
bool LumUriStreamBuf::receiveMore(const Deadline& deadline) {
    return fillFrom([this, &deadline](std::span<char> room) { return receive(room, deadline).value_or(0); });
}

/// The number of bytes received, 0 at the end; nullopt if the connection breaks or the deadline passes.
std::optional<std::size_t> LumUriStreamBuf::receive(std::span<char> room, const Deadline& deadline) {
    if (isEnded_ || socket_ == -1) return 0;
    // A server that always has something to send keeps nobody waiting, so its end comes here.
    const auto received = deadline.isOver() ? std::nullopt : detail::receiveTcp(socket_, room, deadline);
    isEnded_ = received.value_or(0) == 0;
    return received;
}

void LumUriStreamBuf::close() noexcept {
    if (socket_ != -1) ::close(socket_);
    socket_ = -1;
    isEnded_ = false;
    bodyLeft_.reset();
    setg(nullptr, nullptr, nullptr);
}

LumUriStream::LumUriStream(const UnicodeString& uri) : std::istream(nullptr), buffer_(uri) {
    std::istream::rdbuf(&buffer_);
    buffer_.tellFailuresTo(this);
    if (!is_open()) setstate(failbit);
}

LumUriStream::LumUriStream(const char* uri) : std::istream(nullptr), buffer_(uri) {
    std::istream::rdbuf(&buffer_);
    buffer_.tellFailuresTo(this);
    if (!is_open()) setstate(failbit);
}

LumUriStream::~LumUriStream() = default;

}  // namespace LumCommon
