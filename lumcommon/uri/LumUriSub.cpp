#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/uri/LumUriSub.h>
#include <lumcommon/uri/detail/UriText.h>

#include <unicode/uchar.h>

#include <cstdint>
#include <string_view>

namespace LumCommon {
namespace {

using detail::append;
using detail::checked;
using detail::copyOf;
using detail::joined;
using detail::startsWithIgnoringAsciiCase;
using detail::textOf;
using detail::viewOf;
using View = std::u16string_view;

constexpr std::size_t npos = View::npos;

constexpr bool isSchemeUnit(char16_t unit) {
    return detail::isAsciiLetterOrDigit(unit) || unit == u'+' || unit == u'-' || unit == u'.';
}

/// The index of the colon that ends the scheme; npos if there is none.
std::size_t schemeEnd(View s) {
    if (s.empty() || !detail::isAsciiLetter(s[0])) return npos;
    std::size_t i = 1;
    while (i < s.size() && isSchemeUnit(s[i])) ++i;
    return i >= 2 && i < s.size() && s[i] == u':' ? i : npos;
}

/// How a relative reference begins: how far it climbs from its base, and what follows.
struct Climb {
    std::int64_t levels = 0;  // directories to leave
    View rest;                // what follows the leading dots and the slash
};

Climb readClimb(View r) {
    // Enough to leave any directory; "/" never removes more than this.
    constexpr std::int64_t levelsToRoot = 9999;
    if (r == u".") return {0, View()};
    if (r == u"..") return {1, View()};
    if (r.starts_with(u'/')) return {levelsToRoot, r.substr(1)};
    Climb climb{0, r};
    while (true) {
        if (climb.rest.starts_with(u"./")) {
            climb.rest.remove_prefix(2);
        } else if (climb.rest.starts_with(u"../")) {
            climb.rest.remove_prefix(3);
            ++climb.levels;
        } else {
            return climb;
        }
    }
}

/// A base prepared for removing segments from its end.
struct Base {
    UnicodeString text;
    std::size_t rootLimit = 0;  // a "/" before this index belongs to the root and stays
};

Base prepareBase(const UnicodeString& base) {
    Base prepared{copyOf(base), 0};
    UnicodeString& text = prepared.text;
    const std::size_t colon = schemeEnd(viewOf(text));
    if (colon == npos) return prepared;
    for (std::size_t i = 0; i < colon; ++i) {
        const auto index = static_cast<int32_t>(i);
        checked(text.setCharAt(index, detail::toLowerAscii(text.charAt(index))));
    }

    const View scheme = viewOf(text).substr(0, colon);
    const bool hasAuthority = viewOf(text).substr(colon + 1).starts_with(u"//");
    if (hasAuthority && (scheme == u"http" || scheme == u"https")) {
        const std::size_t query = viewOf(text).find(u'?');
        if (query != npos) text.truncate(static_cast<int32_t>(query));
        prepared.rootLimit = colon + 3;
        return prepared;
    }
    constexpr View localhost = u"file://localhost/";
    if (viewOf(text).starts_with(localhost)) text = joined(u"file:///", viewOf(text).substr(localhost.size()));
    if (hasAuthority) {
        prepared.rootLimit = colon + 3;
    } else if (viewOf(text).starts_with(u"jar:")) {
        const std::size_t entry = viewOf(text).rfind(u"!/");
        if (entry != npos) prepared.rootLimit = entry + 1;
    }
    return prepared;
}

/// Removes "/.", "/..", "/./" and "/../" from the end of `b`, except for their first slash, and counts the levels that
/// they climb.
View tidyEnd(View b, std::int64_t& levels) {
    while (true) {
        std::size_t cutUnits = 0;
        if (b.ends_with(u"/.")) {
            cutUnits = 1;
        } else if (b.ends_with(u"/./")) {
            cutUnits = 2;
        } else if (b.ends_with(u"/..")) {
            cutUnits = 2;
            ++levels;
        } else if (b.ends_with(u"/../")) {
            cutUnits = 3;
            ++levels;
        } else {
            return b;
        }
        b.remove_suffix(cutUnits);
    }
}

/// Appends `r` resolved against `base`. `r` is trimmed, its spaces are escaped, and it is not a jar: reference.
void appendResolved(UnicodeString& to, const UnicodeString& base, View r) {
    if (r.starts_with(u"//")) {
        append(append(to, u"file:"), r);
        return;
    }
    if (startsWithIgnoringAsciiCase(r, u"file:")) {
        const View path = r.substr(5);
        if (path.starts_with(u"//")) {
            append(to, r);
            return;
        }
        if (path.starts_with(u'/')) {
            append(append(to, u"file://"), path.substr(1));
            return;
        }
        r = path;
    }
    const View baseText = viewOf(base);
    if (schemeEnd(r) != npos || baseText == u"./" || baseText.find(u'/') == npos) {
        append(to, r);
        return;
    }

    const Climb climb = readClimb(r);
    std::int64_t levels = climb.levels;
    const Base prepared = prepareBase(base);
    View directory = tidyEnd(viewOf(prepared.text), levels);
    for (std::int64_t removed = 0; removed <= levels; ++removed) {
        const std::size_t slash = directory.rfind(u'/');
        if (slash == npos || slash < prepared.rootLimit) break;
        directory = directory.substr(0, slash);
    }
    append(append(append(to, directory), u"/"), climb.rest);
}

}  // namespace

UnicodeString LumUriSub::unquoteUri(const UnicodeString& s, int& specType, int strType) {
    specType = strType == 1 || strType == 3 ? URISPEC_2 : URISPEC_0;
    UnicodeString result = copyOf(s);
    if (strType != 2 && strType != 3) return result;
    if (viewOf(s).starts_with(u"url(") && viewOf(s).ends_with(u')')) {
        result = textOf(viewOf(s).substr(4, viewOf(s).size() - 5));
        checked(result.trim());
        specType = URISPEC_0;
    }
    const View inner = viewOf(result);
    if (inner.size() >= 2 && (inner.front() == u'"' || inner.front() == u'\'') && inner.back() == inner.front()) {
        return textOf(inner.substr(1, inner.size() - 2));
    }
    return result;
}

int LumUriSub::checkScheme(const UnicodeString& s) {
    const std::size_t colon = schemeEnd(viewOf(s));
    return colon == npos ? -1 : static_cast<int>(colon);
}

bool LumUriSub::isFileScheme(const UnicodeString& s) { return startsWithIgnoringAsciiCase(viewOf(s), u"file:"); }

bool LumUriSub::isDataScheme(const UnicodeString& s) { return startsWithIgnoringAsciiCase(viewOf(s), u"data:"); }

bool LumUriSub::isJarScheme(const UnicodeString& s) { return startsWithIgnoringAsciiCase(viewOf(s), u"jar:"); }

void LumUriSub::escapeHH(UnicodeString& s) {
    View rest = viewOf(s);
    std::size_t space = rest.find(u' ');
    if (space == npos) return;
    // A new string, because replacing inside the old one would move its tail once for each space.
    UnicodeString escaped;
    while (space != npos) {
        append(append(escaped, rest.substr(0, space)), u"%20");
        rest.remove_prefix(space + 1);
        space = rest.find(u' ');
    }
    append(escaped, rest);
    s.swap(escaped);
}

void LumUriSub::unescapeHH(UnicodeString& s) {
    const std::size_t first = viewOf(s).find(u'%');
    if (first == npos) return;
    const auto length = static_cast<std::size_t>(s.length());
    char16_t* const units = s.getBuffer(-1);
    if (!units) throw std::bad_alloc();
    std::size_t written = first;
    for (std::size_t read = first; read < length; ++read) {
        char16_t unit = units[read];
        if (const int byte = detail::escapedByte(View(units + read, length - read)); byte >= 0) {
            unit = static_cast<char16_t>(byte);
            read += 2;
        }
        units[written++] = unit;
    }
    s.releaseBuffer(static_cast<int32_t>(written));
}

UnicodeString LumUriSub::makeUriSub(const UnicodeString& s) {
    UnicodeString result = copyOf(s);
    checked(result.trim());
    if (!isDataScheme(result)) escapeHH(result);
    return result;
}

UnicodeString LumUriSub::makeUriFromPath(const UnicodeString& path, int) {
    if (path.isEmpty()) return UnicodeString();
    UnicodeString uri = makeUriSub(path);
    if (viewOf(uri).starts_with(u"//")) {
        return joined(u"file:", uri);
    }
    if (viewOf(uri).starts_with(u'/')) {
        return joined(u"file://", uri);
    }
    return uri;
}

UnicodeString LumUriSub::makeAbsUri(const UnicodeString& base, const UnicodeString& reference, int) {
    UnicodeString result;
    if (reference.isEmpty()) return result;
    const UnicodeString normalised = makeUriSub(reference);
    View r = viewOf(normalised);
    // What follows "jar:" is itself a reference, trimmed again, and may be another jar: reference. The prefixes are
    // removed in a loop because their number is up to the input.
    while (startsWithIgnoringAsciiCase(r, u"jar:")) {
        append(result, u"jar:");
        r.remove_prefix(4);
        while (!r.empty() && u_isWhitespace(r.front())) r.remove_prefix(1);
    }
    const bool isJarWithoutArchive = r.empty() && !result.isEmpty();
    if (!isJarWithoutArchive) appendResolved(result, base, r);
    return result;
}

UnicodeString LumUriSub::makeLocalPathFromUri(const UnicodeString& uri) {
    View path = viewOf(uri);
    if (isFileScheme(uri)) {
        path.remove_prefix(5);
        // Three or more slashes contain an empty host: the "//" before the path.
        if (path.starts_with(u"///")) path.remove_prefix(2);
    } else if (schemeEnd(path) != npos) {
        return copyOf(uri);
    }
    UnicodeString local = textOf(path);
    unescapeHH(local);
    return local;
}

}  // namespace LumCommon
