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

void readTokens(const UnicodeString& text) {
    LumTokenizer tokenizer(text);
    while (tokenizer.nextToken() != LumTokenizer::TOKEN_END) {
    }
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

void readDoubles(const UnicodeString& text) {
    LumTokenizer tokenizer(text);
    do tokenizer.nextTokenDoubleExp();
    while (tokenizer.getKind() != LumTokenizer::TOKEN_END);
}

void readItems(const UnicodeString& text) {
    LumTokenizer tokenizer(text);
    do tokenizer.nextSeparatedValue(u',');
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
    {"nextToken", readTokens},
    {"nextTokenValueSigned", readValues<&LumTokenizer::nextTokenValueSigned>},
    {"nextTokenValueExp", readValues<&LumTokenizer::nextTokenValueExp>},
    {"nextTokenDoubleExp", readDoubles},
    {"nextTokenValueFunc", readValues<&LumTokenizer::nextTokenValueFunc>},
    {"nextSeparatedValue", readItems},
};

constexpr struct {
    const char* begin;
    const char* part;
} texts[] = {
    {"", "("},
    {"", ")"},
    {"", "'"},
    {"", "\"'"},
    {"", "9"},
    {"0.", "0"},
    {"1.", "9"},
    {"", "1."},
    {"", ","},
    {"", "#"},
    {"", "#f"},
    {"#", "f"},
    {"", "-"},
    {"", "+1"},
    {"", "1e1"},
    {"", "1e"},
    {"", "a("},
    {"", "rgb("},
    {"", "url("},
    {"rgb(", "1,"},
    {"rgb-icc(", "#CMYK,"},
    {"red ", "icc-color("},
    {"rgb-icc(1,2,3,#SEPARATION,", "'"},
    {"", " "},
    {"", "a"},
    {"", "%"},
    {"url(", "'"},
};

// A quadratic operation takes four times as long for twice the text, and at this size seconds or hours. It is stopped
// at a fraction of the size, where it takes a second and a linear one a millisecond.
TEST(HostileText, takesLinearTime) {
    constexpr int smallUnits = 1 << 15;
#ifdef __SANITIZE_ADDRESS__
    constexpr int units = 200'000;  // ten times slower there, and no more telling
#else
    constexpr int units = 1'000'000;
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
