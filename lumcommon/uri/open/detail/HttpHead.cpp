#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/uri/open/detail/HttpHead.h>

#include <cstdlib>

namespace LumCommon::detail {
namespace {

constexpr std::string_view scheme = "http://";
constexpr std::size_t npos = std::string_view::npos;

std::string_view trim(std::string_view text) {
    constexpr std::string_view blanks = " \t\v\f";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == npos ? std::string_view() : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

}  // namespace

std::size_t httpSchemeLength(std::string_view url) {
    return startsWithIgnoringAsciiCase(url, scheme) ? scheme.size() : 0;
}

HttpAuthority::HttpAuthority(std::string_view text) : host(text) {
    const std::size_t colon = text.find(':');
    if (colon == npos || colon == 0) return;
    port = static_cast<unsigned short>(std::strtol(host.c_str() + colon + 1, nullptr, 10));
    host.resize(colon);
}

HttpUrl::HttpUrl(std::string_view url) : path("/") {
    const std::string_view rest = url.substr(scheme.size());
    const std::size_t slash = rest.find('/');
    if (slash != npos) path = rest.substr(slash);
    HttpAuthority authority(rest.substr(0, slash));
    host = std::move(authority.host);
    port = authority.port;
}

HttpHead::Progress HttpHead::take(char byte) {
    if (takenBytes_ == maxBytes) return Progress::TooLong;
    ++takenBytes_;
    const bool isLineEnd = byte == '\r' || byte == '\n';
    const bool isSecondHalf = byte == '\n' && isAfterCr_;
    isAfterCr_ = byte == '\r';
    if (isSecondHalf) return Progress::More;
    if (isLineEnd && lines_.size() == lineStart_) return Progress::Complete;
    lines_ += isLineEnd ? '\n' : byte;
    if (isLineEnd) lineStart_ = lines_.size();
    return Progress::More;
}

std::optional<std::string_view> HttpHead::getStatusText() const {
    const std::size_t end = lines_.find('\n');
    if (end == npos) return std::nullopt;
    const std::string_view line = std::string_view(lines_).substr(0, end);
    if (!startsWithIgnoringAsciiCase(line, "http/")) return std::nullopt;
    const std::size_t blank = line.find(' ');
    return blank == npos ? std::string_view() : line.substr(blank + 1);
}

std::vector<std::string_view> HttpHead::getValues(std::string_view name) const {
    std::vector<std::string_view> values;
    std::string_view rest = lines_;
    bool isStatusLine = true;
    for (std::size_t end; (end = rest.find('\n')) != npos; rest.remove_prefix(end + 1)) {
        const std::string_view line = rest.substr(0, end);
        const std::size_t colon = isStatusLine ? npos : line.find(':');
        isStatusLine = false;
        if (colon == npos || colon == 0) continue;
        if (equalsIgnoringAsciiCase(trim(line.substr(0, colon)), name)) values.push_back(trim(line.substr(colon + 1)));
    }
    return values;
}

}  // namespace LumCommon::detail
