#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <unicode/utf16.h>

#include <algorithm>
#include <utility>

namespace LumCommon::detail {

namespace {

/// Whether a unit may stand in a qualified name. Characters of two units are left to the slow road.
bool isQNameUnit(char16_t unit) {
    if (unit < 128) return (xmlCharClasses[unit] & (CLASS_NAME | CLASS_COLON)) != 0;
    return !U16_IS_SURROGATE(unit) && isXmlNameChar(unit);
}

/// Finds the place of the colon in a qualified name; its size when there is none. False when the text is not a
/// qualified name.
bool splitQName(const char16_t* text, std::size_t size, std::size_t& colon) {
    colon = static_cast<std::size_t>(std::find(text, text + size, u':') - text);
    if (!isXmlNameStart(text[0])) return false;
    if (colon == size) return true;
    const char16_t* const local = text + colon + 1;
    const char16_t* const end = text + size;
    return local != end && isXmlNameStart(*local) && std::find(local, end, u':') == end;
}

}  // namespace

UnicodeString QName::toString() const {
    UnicodeString name;
    if (!prefix.isNull()) append(append(name, prefix.getString()), u':');
    append(name, localName.getString());
    return name;
}

void NameReader::start(const LumXmlLimits& limits, bool isStrict) {
    // Names that are known may break what holds from now on.
    const bool wasLax = !std::exchange(isStrict_, isStrict);
    if (limits.nameUnits < buffer_.limit() || (isStrict && wasLax)) {
        cache_.clear();
        last_ = &first_;
        first_.following = first_.followingElse = nullptr;
    }
    buffer_.setLimit(limits.nameUnits);
    const bool isLimited = limits.names < LumXmlLimits::off - met_.size();
    mostNames_ = isLimited ? met_.size() + limits.names : LumXmlLimits::off;
}

void NameReader::count(LumNameEnum name) {
    if (met_.size() >= mostNames_ && !met_.contains(name)) throw LimitExceeded{XmlError::NamesLimit};
    met_.insert(name);
}

void NameReader::scanNCName() {
    buffer_.clear();
    std::int32_t c = inputs_.readChar();
    if (isXmlNameStart(c)) {
        do {
            buffer_.appendCodePoint(c);
            c = inputs_.readChar();
        } while (isXmlNameChar(c));
    }
    inputs_.unreadChar(c);
}

LumName NameReader::readNCName() {
    scanNCName();
    if (buffer_.empty()) return LumName();
    const CachedName* name = cache_.find(buffer_.data(), buffer_.size());
    if (!name) name = keep(buffer_.data(), buffer_.size(), NAME_NULL, intern(buffer_.data(), buffer_.size()));
    return name->localName;
}

const CachedName* NameReader::keep(const char16_t* text, std::size_t size, LumNameEnum prefix, LumNameEnum localName) {
    checkCharacters(text, size);
    return cache_.add(text, size, prefix, localName);
}

void NameReader::checkCharacters(const char16_t* text, std::size_t size) {
    if (!isStrict_) return;
    const auto isLeftOut = [](char16_t c) { return c == 0xD7 || c == 0xF7 || (c >= 0xFDD0 && c <= 0xFDEF); };
    if (std::any_of(text, text + size, isLeftOut)) errors_.report(XmlError::InvalidChar);
}

UnicodeString NameReader::readNCNameText() {
    scanNCName();
    checkCharacters(buffer_.data(), buffer_.size());
    return buffer_.toString();
}

bool NameReader::readQName(QName& name) {
    name.prefix = LumName();
    name.localName = readNCName();
    if (name.localName.isNull()) return false;
    const std::int32_t c = inputs_.readChar();
    if (c != ':') {
        inputs_.unreadChar(c);
        return true;
    }
    name.prefix = name.localName;
    name.localName = readNCName();
    return !name.localName.isNull();
}

const CachedName* NameReader::find(const char16_t* p, const char16_t* end) noexcept {
    const char16_t* const nameEnd = findNameEnd(p, end);
    if (nameEnd == end) return nullptr;
    const CachedName* const name = cache_.find(p, static_cast<std::size_t>(nameEnd - p));
    return name ? follow(name) : nullptr;
}

const CachedName* NameReader::readNewQName() {
    XmlCursor& cursor = inputs_.cursor();
    const char16_t* const start = cursor.cur;
    const char16_t* p = start;
    while (p != cursor.end && isQNameUnit(*p)) ++p;
    if (p == cursor.end || U16_IS_SURROGATE(*p) || p == start) return nullptr;
    const auto size = static_cast<std::size_t>(p - start);
    const CachedName* name = cache_.find(start, size);
    if (!name) {
        std::size_t colon;
        if (!splitQName(start, size, colon)) return nullptr;
        const bool hasPrefix = colon != size;
        const std::size_t local = hasPrefix ? colon + 1 : 0;
        if (std::max(colon, size - local) > buffer_.limit()) return nullptr;
        cursor.touch(start + local);  // as far as a name that is too many has been read
        const LumNameEnum prefix = hasPrefix ? intern(start, colon) : NAME_NULL;
        cursor.touch(p + 1);
        name = keep(start, size, prefix, intern(start + local, size - local));
    }
    cursor.cur = p;
    cursor.touch(p + 1);
    return follow(name);
}

}  // namespace LumCommon::detail
