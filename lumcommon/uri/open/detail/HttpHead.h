#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace LumCommon::detail {

/// The parts of an http: URL that a request needs.
struct HttpUrl {
    /// @param url  begins with "http://", in any case.
    explicit HttpUrl(std::string_view url);

    std::string host;
    unsigned short port;
    std::string_view path;  // points into the URL; "/" if that has no path
};

/// The length of "http://" if the URL begins with it, in any case; else 0.
std::size_t httpSchemeLength(std::string_view url);

/// "host" or "host:port". The port is 80 if none is given; of a port that is too large, the low 16 bits count.
struct HttpAuthority {
    explicit HttpAuthority(std::string_view text);

    std::string host;
    unsigned short port = 80;
};

/// The head of a response, taken byte by byte: lines that end with CR, LF or CR LF, up to the first empty one.
class HttpHead {
public:
    static constexpr std::size_t maxBytes = std::size_t{64} * 1024;

    enum class Progress { More, Complete, TooLong };

    /// Takes the next byte. If a CR completes the head, an LF after it is left to the caller.
    Progress take(char byte);

    /// The text of the status line after its first blank; nullopt if there is no complete status line.
    std::optional<std::string_view> getStatusText() const;
    /// The values of the headers with this name (lower case), without blanks around them, in order.
    std::vector<std::string_view> getValues(std::string_view name) const;

private:
    std::string lines_;  // each ends with LF, except the one being read
    std::size_t lineStart_ = 0;
    std::size_t takenBytes_ = 0;
    bool isAfterCr_ = false;
};

}  // namespace LumCommon::detail
