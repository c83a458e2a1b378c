// Any text may be the value of a property. The first two bytes choose how the rest is read.
// Laws: every kind of reading ends within one more call than the text has units, and stays at its end; positions never
// move before the start or past the end; printed values parse back to values that print the same; unquoting reverses
// quoting.

#include <lumcommon/lumcommon.h>

#include <sstream>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::Digest;

namespace {

void checkPosition(const LumTokenizer& tokenizer, const UnicodeString& text) {
    FUZZ_LAW(tokenizer.getPosition() >= 0 && tokenizer.getPosition() <= text.length());
}

void readTokens(const UnicodeString& text, bool pushBack, Digest& digest) {
    LumTokenizer tokenizer(text);
    int left = text.length() + 1;
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
        FUZZ_LAW(left-- > 0);
        checkPosition(tokenizer, text);
        digest.add(static_cast<std::uint64_t>(tokenizer.getKind()));
        digest.add(tokenizer.getText());
        if (!pushBack) continue;
        const int kind = tokenizer.getKind();
        const UnicodeString before = tokenizer.getText();
        tokenizer.pushBack();
        FUZZ_LAW(tokenizer.nextToken() == kind && tokenizer.getText() == before);
    }
    FUZZ_LAW(tokenizer.nextToken() == LumTokenizer::TOKEN_END && tokenizer.getText().isEmpty());
}

/// The four ways to read values, each to the end.
void readValues(const UnicodeString& text, Digest& digest) {
    using Reader = LumValue (LumTokenizer::*)();
    constexpr Reader readers[] = {&LumTokenizer::nextTokenValue, &LumTokenizer::nextTokenValueSigned,
                                  &LumTokenizer::nextTokenValueExp, &LumTokenizer::nextTokenValueFunc};
    for (const Reader reader : readers) {
        LumTokenizer tokenizer(text);
        int left = text.length() + 1;
        for (;;) {
            const LumValue value = (tokenizer.*reader)();
            checkPosition(tokenizer, text);
            if (value.isNull()) break;
            FUZZ_LAW(left-- > 0);
            digest.add(value.getTypeWord() & 0xFFu);
            digest.add(value.toString());
        }
        FUZZ_LAW(tokenizer.getKind() == LumTokenizer::TOKEN_END);
    }
    LumTokenizer tokenizer(text);
    for (int left = text.length() + 1; tokenizer.getKind() != LumTokenizer::TOKEN_END; --left) {
        FUZZ_LAW(left >= 0);
        const double number = tokenizer.nextTokenDoubleExp();
        digest.add(number > 0);
    }
}

void readList(const UnicodeString& text, char16_t separator, Digest& digest) {
    LumTokenizer tokenizer(text);
    for (int left = text.length() + 1;; --left) {
        FUZZ_LAW(left >= 0);
        const UnicodeString item = tokenizer.nextSeparatedValue(separator);
        digest.add(item);
        checkPosition(tokenizer, text);
        if (tokenizer.getKind() == LumTokenizer::TOKEN_END) break;
        FUZZ_LAW(item.length() <= text.length());
    }
    LumTokenizer seeker(text);
    while (seeker.nextToken() != LumTokenizer::TOKEN_END) {
        const bool comesNext = seeker.scanSeparator(separator);
        FUZZ_LAW(seeker.skipSeparator(separator) == comesNext);
    }
}

/// A printed value must parse back to one that prints the same, or a document would change with every save.
void checkPrinting(const UnicodeString& text) {
    for (const LumValue& value : {LumValue::parse(text), LumValue::parseNonNumeric(text)}) {
        const UnicodeString printed = value.toString();
        FUZZ_LAW(value == value || value.getKind() == KIND_REAL);
        FUZZ_LAW(printed.length() <= text.length() + 64);
    }
    const LumValue value = LumValue::parse(text);
    // The negative zero of "-0.0" prints as "-0", which is the integer 0.
    if (!value.isNumeric() || value.getRealValue(UNIT_NONE) == 0) return;
    const UnicodeString printed = value.toString();
    FUZZ_LAW(LumValue::parse(printed).toString() == printed);
}

/// The same for colours, in both forms. Excludes a double quote in the name of an ink, which ends the name when read.
void checkColors(const UnicodeString& text) {
    for (const bool svgForm : {false, true}) {
        const LumColor color(LumValue::parseColor(text, true));
        if (color.isInvalid() || color.getName().indexOf(u'"') >= 0) continue;
        FUZZ_LAW(LumColor(LumValue(color)) == color);
        const UnicodeString printed = color.toString(svgForm);
        FUZZ_LAW(LumColor(LumValue::parseColor(printed, svgForm)).toString(svgForm) == printed);
    }
}

void checkQuoting(const UnicodeString& text) {
    if (text.indexOf(u'\0') >= 0) return;  // a text that ends early is another text
    for (const unsigned quotes : {1u, 2u, 3u}) {
        for (const unsigned escapes : {4u, 8u}) {
            const UnicodeString quoted = LumUtil::quoteString(text, quotes | escapes);
            FUZZ_LAW(quoted.length() >= text.length() + 2);
            FUZZ_LAW(LumUtil::unquoteString(quoted, quotes | escapes) == text);
        }
    }
    for (unsigned mode = 0; mode < 16; ++mode) {
        const UnicodeString result = LumUtil::unquoteString(text, mode);
        FUZZ_LAW(result.isBogus() || result.length() <= text.length());
    }
    const UnicodeString uri = LumUtil::quoteUri(text);
    FUZZ_LAW(uri.startsWith(u"url(\"") && uri.endsWith(u"\")"));
    LumUtil::unquoteUri(text);
}

void checkBase64(const Choices& input) {
    const std::string bytes(reinterpret_cast<const char*>(input.data()), input.size());
    std::istringstream in(bytes);
    const UnicodeString encoded = LumUtil::encodeBase64(in, static_cast<int>(bytes.size()));
    std::ostringstream out;
    FUZZ_LAW(LumUtil::decodeBase64(encoded, encoded.length(), out) && out.str() == bytes);
    const UnicodeString garbage = LumFuzz::textOf(input.data(), input.size(), false);
    std::ostringstream decoded;
    LumUtil::decodeBase64(garbage, garbage.length(), decoded);
    FUZZ_LAW(decoded.str().size() <= static_cast<std::size_t>(garbage.length()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned how = input.byte();
    const auto separator = static_cast<char16_t>(input.byte());
    const UnicodeString text = LumFuzz::textOf(input.data(), input.size(), (how & 1u) != 0);
    Digest first, second;
    for (Digest* digest : {&first, &second}) {
        readTokens(text, (how & 2u) != 0, *digest);
        readValues(text, *digest);
        readList(text, separator, *digest);
    }
    FUZZ_LAW(first == second);
    checkPrinting(text);
    checkColors(text);
    checkQuoting(text);
    checkBase64(input);
    return 0;
}
