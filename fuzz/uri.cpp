// Any text may be a reference, a base, a data: URI, the path of a member of an archive, or the head of a response. The
// first byte chooses which; the text is cut at the first line end. Nothing is opened but what the target makes itself.
// Laws: a resolved URI resolves to itself, unless it names an archive by a relative path; it keeps no space; a relative
// URI leads back; a data: URI is cut where it says, and its parts are those of the text; an archive opens whatever way
// it is reached, and gives the same bytes; a head has the lines that a simple reader finds.

#include <lumcommon/lumcommon.h>
// The head of a response is no part of the interface.
#include <lumcommon/uri/open/detail/HttpHead.h>

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;

namespace {

void checkForm(const LumUri& uri) {
    const UnicodeString text = uri.toString();
    FUZZ_LAW(uri.isAbsolute() == (LumUriSub::checkScheme(text) != -1));
    FUZZ_LAW(uri.getScheme().length() == std::max(LumUriSub::checkScheme(text), 0));
    FUZZ_LAW(uri.isSameFile(uri) == uri.isFile());
    FUZZ_LAW(text.endsWith(uri.getFileName()) && uri.getFileName().indexOf(u'/') == -1);
    LumUri changed(uri);
    const UnicodeString fragment = changed.removeFragment();
    FUZZ_LAW(changed.toString() + fragment == text && changed.toString().indexOf(u'#') == -1);
    LumUri renamed(uri);
    const UnicodeString extension = uri.getExtension();
    const UnicodeString other = u".other";
    const UnicodeString old = renamed.setExtension(&other);
    if (old.isBogus()) {
        FUZZ_LAW(renamed.toString() == text);
    } else if (!uri.isDataScheme()) {
        FUZZ_LAW(old == extension && renamed.getExtension() == other);
        renamed.setExtension(&old);
        FUZZ_LAW(renamed.toString() == text || old.isEmpty());
    }
    UnicodeString unescaped = text;
    LumUriSub::unescapeHH(unescaped);
    FUZZ_LAW(unescaped == LumUri::unescape(text) && unescaped.length() <= text.length());
}

/// What a URI names inside any number of "jar:".
UnicodeString insideOf(UnicodeString text) {
    while (LumUriSub::isJarScheme(text)) text.remove(0, 4);
    return text;
}

void checkResolving(const UnicodeString& base, const UnicodeString& reference) {
    const LumUri baseUri(base);
    checkForm(baseUri);
    FUZZ_LAW(baseUri.isDataScheme() || baseUri.toString().indexOf(u' ') == -1);
    FUZZ_LAW(LumUriSub::makeUriFromPath(baseUri.toString()) == baseUri.toString());
    const LumUri resolved(baseUri, reference);
    checkForm(resolved);
    FUZZ_LAW(resolved.isDataScheme() || resolved.toString().indexOf(u' ') == -1);
    const UnicodeString inside = insideOf(resolved.toString());
    const bool isFile = LumUriSub::isFileScheme(inside);
    if (LumUriSub::checkScheme(inside) != -1 && !(isFile && inside.charAt(5) != u'/')) {
        const UnicodeString once = LumUriSub::makeAbsUri(baseUri.toString(), resolved.toString());
        FUZZ_LAW(isFile || once == resolved.toString());  // "file:/x" is not yet in the form that a resolved URI has
        FUZZ_LAW(LumUriSub::makeAbsUri(baseUri.toString(), once) == once);
    }
    const UnicodeString relative = resolved.getRelativeUri(baseUri.toString());
    if (!relative.isEmpty()) FUZZ_LAW(relative.endsWith(resolved.getFileName()));
}

void checkData(const UnicodeString& text) {
    LumDataUri uri(u"data:" + text);
    const UnicodeString whole = uri.toString();
    FUZZ_LAW(whole.length() <= text.length() + 5);
    FUZZ_LAW(uri.getDataStart() <= whole.length() && uri.getPage() >= 0);
    if (uri.getDataStart() != -1) {
        FUZZ_LAW(whole[uri.getDataStart() - 1] == u',');
        FUZZ_LAW(uri.getMediaType().isEmpty() || whole.indexOf(uri.getMediaType()) != -1);
        FUZZ_LAW(uri.hasParameters() == (whole.indexOf(u';') != -1 && whole.indexOf(u';') < whole.indexOf(u',')));
    }
    const std::int32_t start = uri.getDataStart();
    uri.init();
    FUZZ_LAW(uri.toString() == whole && uri.getDataStart() == start);
    FUZZ_LAW(!std::unique_ptr<std::istream>(uri.getStream()));  // its data are the caller's
}

std::string le(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}

/// An archive with one stored member and no directory, which can be read from the front.
std::string archiveOf(const std::string& name, const std::string& bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    return "PK\x03\x04" + le(20, 2) + le(0, 4) + le(0, 4) + le(0, 4) + le(size, 4) + le(size, 4) +
           le(static_cast<std::uint32_t>(name.size()), 2) + le(0, 2) + name + bytes;
}

/// Everything that could be opened: one archive, with an archive in it.
class OneArchive : public LumUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString& uri) override {
        if (uri == UnicodeString(u"mem:a.zip")) return new std::istringstream(bytes);
        if (LumUriSub::isJarScheme(uri)) return nullptr;  // its archive is asked for next
        // What is not refused would be looked for outside.
        throw std::runtime_error("there is nothing else");
    }
    std::string bytes;
};

std::string readAll(const UnicodeString& uri) {
    const std::unique_ptr<std::istream> in(LumUri(uri).getStream());
    return in ? std::string{std::istreambuf_iterator<char>(*in), {}} : std::string("(null)");
}

void checkOpening(OneArchive& outside, const UnicodeString& path) {
    std::string name;
    path.toUTF8String(name);
    name = name.substr(0, 200);
    outside.bytes = archiveOf(name, "content");
    const UnicodeString member = UnicodeString::fromUTF8(name);
    const std::string found = readAll(u"jar:mem:a.zip!/" + member);
    FUZZ_LAW(found == "content" || found == "(null)");
    const bool isPlain = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '/' || c == '-';
    });
    if (isPlain) FUZZ_LAW(found == "content");
    outside.bytes = archiveOf("in.zip", outside.bytes);
    FUZZ_LAW(readAll(u"jar:mem:a.zip!/in.zip!/" + member) == found);
    FUZZ_LAW(readAll(u"jar:mem:a.zip!/absent" + member) == "(null)");
    // Any text at all: refused, or read from what there is.
    const std::string any = readAll(path);
    FUZZ_LAW(any == "(null)" || any == "content" || any == outside.bytes || outside.bytes.find(any) != any.npos);
}

/// A head as one reads it with everything at hand.
struct SimpleHead {
    std::vector<std::string> lines;
    std::size_t end = 0;
    bool isComplete = false;

    explicit SimpleHead(const std::string& bytes) {
        std::string line;
        while (end < bytes.size() && !isComplete) {
            const char byte = bytes[end++];
            if (byte != '\r' && byte != '\n') {
                line += byte;
                continue;
            }
            isComplete = line.empty();
            if (isComplete) break;
            if (byte == '\r' && end < bytes.size() && bytes[end] == '\n') ++end;
            lines.push_back(std::exchange(line, {}));
        }
    }
};

std::string trimmed(const std::string& text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; };
    auto begin = text.begin(), end = text.end();
    while (begin != end && isBlank(*begin)) ++begin;
    while (begin != end && isBlank(end[-1])) --end;
    return {begin, end};
}

std::string lowered(std::string text) {
    for (char& c : text) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return text;
}

void checkHead(const std::string& bytes) {
    detail::HttpHead head;
    auto progress = detail::HttpHead::Progress::More;
    std::size_t taken = 0;
    while (taken < bytes.size() && progress == detail::HttpHead::Progress::More) progress = head.take(bytes[taken++]);
    const SimpleHead simple(bytes.substr(0, detail::HttpHead::maxBytes));
    FUZZ_LAW((progress == detail::HttpHead::Progress::Complete) == simple.isComplete);
    FUZZ_LAW((progress == detail::HttpHead::Progress::TooLong) ==
             (!simple.isComplete && bytes.size() > detail::HttpHead::maxBytes));
    if (!simple.isComplete) return;
    FUZZ_LAW(taken == simple.end);
    const bool hasStatus = !simple.lines.empty() && lowered(simple.lines[0]).starts_with("http/");
    FUZZ_LAW(head.getStatusText().has_value() == hasStatus);
    if (hasStatus) {
        const std::size_t blank = simple.lines[0].find(' ');
        FUZZ_LAW(*head.getStatusText() == (blank == std::string::npos ? "" : simple.lines[0].substr(blank + 1)));
    }
    for (const char* name : {"location", "content-type"}) {
        std::vector<std::string> expected;
        for (std::size_t i = 1; i < simple.lines.size(); ++i) {
            const std::size_t colon = simple.lines[i].find(':');
            if (colon == std::string::npos || colon == 0 || lowered(trimmed(simple.lines[i].substr(0, colon))) != name)
                continue;
            expected.push_back(trimmed(simple.lines[i].substr(colon + 1)));
        }
        const std::vector<std::string_view> found = head.getValues(name);
        FUZZ_LAW(std::equal(found.begin(), found.end(), expected.begin(), expected.end()));
    }
}

void checkUrl(const std::string& rest) {
    const std::string url = "hTTp://" + rest;
    const detail::HttpUrl parts(url);
    const std::size_t slash = rest.find('/');
    FUZZ_LAW(parts.path == (slash == rest.npos ? "/" : rest.substr(slash)));
    FUZZ_LAW(rest.starts_with(parts.host) && parts.host.find('/') == rest.npos);
    FUZZ_LAW(parts.host.find(':') == rest.npos || parts.host[0] == ':');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OneArchive outside;
    LumUri::setUriReferenceResolver(&outside);
    Choices input(data, size);
    const unsigned what = input.byte();
    const std::string bytes(reinterpret_cast<const char*>(input.data()), input.size());
    const UnicodeString text = LumFuzz::textOf(input.data(), input.size(), (what & 128u) != 0);
    const std::int32_t end = text.indexOf(u'\n');
    switch (what % 5) {
        case 0:
            checkResolving(UnicodeString(text, 0, end & INT32_MAX), end < 0 ? text : UnicodeString(text, end + 1));
            break;
        case 1:
            checkData(text);
            break;
        case 2:
            checkOpening(outside, text);
            break;
        case 3:
            checkHead(bytes);
            break;
        case 4:
            checkUrl(bytes);
            break;
    }
    return 0;
}
