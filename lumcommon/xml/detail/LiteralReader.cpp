#include <lumcommon/xml/detail/ContentCopy.h>
#include <lumcommon/xml/detail/EntityTable.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/LiteralReader.h>
#include <lumcommon/xml/detail/ReferenceReader.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlChars.h>

namespace LumCommon::detail {

UnicodeString LiteralReader::read(LiteralType type) {
    result_.clear();
    read(type, result_);
    return result_.toString();
}

void LiteralReader::read(LiteralType type, UnitBuffer& out) {
    const bool isOffending = type == LiteralType::Offending;
    std::int32_t delimiter = inputs_.readChar();
    const bool isQuoted = delimiter == '"' || delimiter == '\'';
    if (!isQuoted) {
        inputs_.unreadChar(delimiter);
        if (!isOffending) {
            errors_.report(XmlError::LiteralQuote);
            return;
        }
        delimiter = ' ';
    }
    const char16_t quote = static_cast<char16_t>(delimiter);
    const bool isTerminated = readRaw(quote);
    if (!isTerminated && !isOffending) errors_.report(XmlError::LiteralUnterminated, UnicodeString(quote));
    if (isOffending && isQuoted) out.append(quote);
    process(type, out);
    if (isOffending && isQuoted && isTerminated) out.append(quote);
}

bool LiteralReader::readRaw(char16_t delimiter) {
    raw_.clear();
    if (!copyContent(inputs_, errors_, delimiter, raw_)) return false;
    inputs_.readChar();
    return true;
}

UnicodeString LiteralReader::makeEntityText() {
    result_.clear();
    process(LiteralType::Entity, result_);
    return result_.toString();
}

void LiteralReader::process(LiteralType type, UnitBuffer& out) {
    const char16_t* const raw = raw_.data();
    const std::size_t size = raw_.size();
    const bool expands = type == LiteralType::Attribute || type == LiteralType::Entity;
    std::size_t i = 0;
    for (; i < size; ++i) {
        const char16_t* const runEnd = findValueEnd(raw + i, raw + size, u'&');
        out.append(raw + i, static_cast<std::size_t>(runEnd - raw) - i);
        i = static_cast<std::size_t>(runEnd - raw);
        if (i == size) break;
        const char16_t unit = raw[i];
        if (expands && unit == '&') {
            // Only what needs the definition of an entity, and what is wrong, has to become an input.
            const char16_t* rest = raw + i + 1;
            const std::int32_t c = type == LiteralType::Attribute ? references_.matchSimple(rest, raw + size) : -1;
            if (c < 0) break;
            out.appendCodePoint(c);
            i = static_cast<std::size_t>(rest - raw) - 1;
        } else if (unit == '<' && type == LiteralType::Attribute) {
            break;
        } else {
            out.append(isXmlSpace(unit) ? u' ' : unit);
        }
    }
    if (i < size) expand(type, i, out);
}

void LiteralReader::expand(LiteralType type, std::size_t from, UnitBuffer& out) {
    // The raw text becomes an input, so that replacement texts are read by the same rules; its end is the
    // end of the literal. Names read in it use other buffers, so the raw text stays where it is.
    const InputStack::LiteralScope scope(inputs_, raw_, from);
    for (;;) {
        const std::int32_t c = inputs_.readChar();
        if (c < 0) {
            if (inputs_.leaveEntity()) continue;
            return;
        }
        if (c == '&') {
            expandReference(type, out);
            continue;
        }
        if (c == '<' && type == LiteralType::Attribute) errors_.report(XmlError::LessThanInValue);
        if (isXmlSpace(c)) {
            out.append(u' ');
        } else {
            out.appendCodePoint(c);
        }
    }
}

void LiteralReader::expandReference(LiteralType type, UnitBuffer& out) {
    if (type == LiteralType::Attribute) {
        if (const std::int32_t c = references_.readSimple(); c >= 0) {
            out.appendCodePoint(c);
            return;
        }
    }
    LumName name;
    const std::int32_t c = references_.read(name);
    if (name.isNull()) {
        if (c != 0) out.appendCodePoint(c);
        return;
    }
    if (type == LiteralType::Entity) {
        out.append(u'&');
        out.append(name.getString());
        out.append(u';');
        return;
    }
    if (const auto fault = entities_.findFault(name, true)) {
        errors_.report(*fault, name.getString());
        return;
    }
    const UnicodeString value = entities_.lookup(EntityKind::General, name);
    if (!value.isBogus()) references_.expand(EntityKind::General, name, value);
}

}  // namespace LumCommon::detail
