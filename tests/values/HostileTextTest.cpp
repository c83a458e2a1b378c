// Texts made to be expensive: the time that a text takes grows no faster than the text.

#include <gtest/gtest.h>

#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>

#include <time.h>

#include <algorithm>
#include <string>

namespace {

using namespace LumCommon;

UnicodeString repeat(const std::string& begin, const std::string& part, int units) {
    std::string bytes = begin;
    while (bytes.size() < static_cast<std::size_t>(units)) bytes += part;
    return UnicodeString::fromUTF8(bytes);
}

/// Processor time of this thread in seconds: other programs do not count.
double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

using Operation = void (*)(const UnicodeString&);

double secondsOf(Operation operation, const UnicodeString& text) {
    const double start = now();
    operation(text);
    return now() - start;
}

/// Whether the operation takes at most three times as long for a text of twice the size. What seems to take longer is
/// measured again: one interrupted run is no proof.
bool isLinear(Operation operation, const UnicodeString& once, const UnicodeString& twice) {
    constexpr double slack = 0.05;  // seconds; what is faster is not measured well
    for (int tries = 0; tries < 3; ++tries) {
        const double seconds = secondsOf(operation, once);
        if (seconds < 3 && secondsOf(operation, twice) < 3 * seconds + slack) return true;
    }
    return false;
}

template <LumValue (LumTokenizer::*read)()>
void readValues(const UnicodeString& text) {
    LumTokenizer tokenizer(text);
    int last = -1;
    while (!(tokenizer.*read)().isNull()) {
        ASSERT_GT(tokenizer.getPosition(), last) << "a value consumed nothing";
        last = tokenizer.getPosition();
    }
}

/// Calls what reads one token or item until the text ends.
template <class Read>
void readAll(const UnicodeString& text, Read read) {
    LumTokenizer tokenizer(text);
    do read(tokenizer);
    while (tokenizer.getKind() != LumTokenizer::TOKEN_END);
}

constexpr struct {
    const char* name;
    Operation run;
} operations[] = {
    {"parse", [](const UnicodeString& text) { LumValue::parse(text); }},
    {"parseNonNumeric", [](const UnicodeString& text) { LumValue::parseNonNumeric(text); }},
    {"parseColor", [](const UnicodeString& text) { LumValue::parseColor(text, true); }},
    {"getColorValue", [](const UnicodeString& text) { LumValue(text).getColorValue(); }},
    {"nextToken", [](const UnicodeString& text) { readAll(text, [](LumTokenizer& t) { t.nextToken(); }); }},
    {"nextTokenValueSigned", readValues<&LumTokenizer::nextTokenValueSigned>},
    {"nextTokenValueExp", readValues<&LumTokenizer::nextTokenValueExp>},
    {"nextTokenDoubleExp",
     [](const UnicodeString& text) { readAll(text, [](LumTokenizer& t) { t.nextTokenDoubleExp(); }); }},
    {"nextTokenValueFunc", readValues<&LumTokenizer::nextTokenValueFunc>},
    {"nextSeparatedValue",
     [](const UnicodeString& text) { readAll(text, [](LumTokenizer& t) { t.nextSeparatedValue(u','); }); }},
    {"parsePDFOpenParameters", [](const UnicodeString& text) { LumValue::parsePDFOpenParameters(text); }},
    {"parseDestinationType", [](const UnicodeString& text) { LumValue::parseDestinationType(text); }},
    {"parseXlinkHref", [](const UnicodeString& text) { LumValue::parseXlinkHref(text); }},
    {"parseInternalDestination", [](const UnicodeString& text) { LumValue::parseInternalDestination(text, 0); }},
    {"parseExcelOpenParameters", [](const UnicodeString& text) { LumValue::parseExcelOpenParameters(text); }},
    {"parseUriFragmentParameters", [](const UnicodeString& text) { LumValue::parseUriFragmentParameters(text, true); }},
};

constexpr struct {
    const char* begin;
    const char* part;
} texts[] = {{"", "("},       {"", ")"},         {"", "'"},     {"", "\"'"},     {"", "9"},
             {"0.", "0"},     {"1.", "9"},       {"", "1."},    {"", ","},       {"", "#"},
             {"", "#f"},      {"#", "f"},        {"", "-"},     {"", "+1"},      {"", "1e1"},
             {"", "1e"},      {"", "a("},        {"", "rgb("},  {"", "url("},    {"rgb(", "1,"},
             {"", " "},       {"", "a"},         {"", "%"},     {"url(", "'"},   {"rgb-icc(", "#CMYK,"},
             {"#", "&"},      {"#", "page=1&"},  {"#", "a=1&"}, {"#view=", ","}, {"red ", "icc-color("},
             {"#page=", "7"}, {"#zoom=", "'\""}, {"#", "="},    {"#", "x "},     {"rgb-icc(1,2,3,#SEPARATION,", "'"}};

// A quadratic operation takes four times as long for twice the text, and at this size seconds or hours. It is stopped
// at a fraction of the size, where it takes a second and a linear one a millisecond.
TEST(HostileText, takesLinearTime) {
    constexpr int smallUnits = 1 << 15;
#ifdef __SANITIZE_ADDRESS__
    constexpr int units = 150'000;  // ten times slower there, and no more telling
#else
    constexpr int units = 500'000;
#endif
    for (const auto& [begin, part] : texts) {
        // A name of a megabyte is gone with the table.
        LumNameTable::addRefSharedNameTable();
        const UnicodeString small = repeat(begin, part, smallUnits);
        const UnicodeString once = repeat(begin, part, units);
        const UnicodeString twice = repeat(begin, part, 2 * units);
        for (const auto& operation : operations) {
            SCOPED_TRACE(std::string(operation.name) + " of " + begin + part + part + "...");
            ASSERT_LT(secondsOf(operation.run, small), 0.2);
            EXPECT_TRUE(isLinear(operation.run, once, twice));
        }
        LumNameTable::releaseSharedNameTable();
    }
}

}  // namespace
