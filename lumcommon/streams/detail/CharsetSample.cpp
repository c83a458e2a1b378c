#include <lumcommon/streams/detail/CharsetSample.h>
#include <unicode/ucsdet.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace LumCommon::detail {

namespace {

using namespace std::string_view_literals;

struct MarkRow {
    std::string_view bytes;
    const char* name;
};
constexpr MarkRow markRows[] = {
    {"\xEF\xBB\xBF"sv, "UTF-8"},    {"\xFF\xFE\0\0"sv, "UTF-32LE"},  // before the mark of UTF-16, which it begins with
    {"\0\0\xFE\xFF"sv, "UTF-32BE"}, {"\xFF\xFE"sv, "UTF-16LE"},
    {"\xFE\xFF"sv, "UTF-16BE"},     {"\x84\x31\x95\x33"sv, "GB18030"},
};

/// Markup without a mark.
constexpr MarkRow markupRows[] = {
    {"<\0\0\0"sv, "UTF-32LE"},
    {"\0\0\0<"sv, "UTF-32BE"},
    {"<\0"sv, "UTF-16LE"},
    {"\0<"sv, "UTF-16BE"},
};

/// The detector's names for charsets that the conversion knows under names of its own.
struct NameRow {
    std::string_view detected;
    const char* name;
};
constexpr NameRow nameRows[] = {
    {"Big5", "ChineseBIG5"},
    {"EUC-KR", "KoreanKSC"},
    {"Shift_JIS", "WINDOWS31J"},
};

struct DetectorCloser {
    void operator()(UCharsetDetector* detector) const noexcept { ucsdet_close(detector); }
};

bool isAscii(std::string_view sample) {
    constexpr char escape = 0x1B;
    return std::ranges::all_of(sample, [](char c) { return c > 0 && c != escape && c != 0x7F; });
}

/// Whether the bytes are UTF-8 in its shortest form; the last character may be cut off.
bool isUtf8(std::string_view sample) {
    std::size_t i = 0;
    while (i < sample.size()) {
        const auto lead = static_cast<unsigned char>(sample[i++]);
        if (lead < 0x80) continue;
        if (lead < 0xC2 || lead > 0xF4) return false;
        const int length = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        for (int k = 0; k < length && i < sample.size(); ++k, ++i) {
            const auto trail = static_cast<unsigned char>(sample[i]);
            if ((trail & 0xC0) != 0x80) return false;
            if (k > 0) continue;
            if ((lead == 0xE0 && trail < 0xA0) || (lead == 0xED && trail > 0x9F)) return false;
            if ((lead == 0xF0 && trail < 0x90) || (lead == 0xF4 && trail > 0x8F)) return false;
        }
    }
    return true;
}

/// The detector's answer to bytes that are neither ASCII nor UTF-8.
const char* guessByStatistics(std::string_view sample) {
    // Below this, the detector has seen nothing that speaks for a charset but that no byte speaks against it.
    constexpr std::int32_t leastConfidence = 15;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, DetectorCloser> detector(ucsdet_open(&status));
    ucsdet_setText(detector.get(), sample.data(), static_cast<std::int32_t>(sample.size()), &status);
    ucsdet_enableInputFilter(detector.get(), true);
    const UCharsetMatch* const match = ucsdet_detect(detector.get(), &status);
    if (U_FAILURE(status) || !match || ucsdet_getConfidence(match, &status) < leastConfidence) return nullptr;
    const char* const name = ucsdet_getName(match, &status);
    if (U_FAILURE(status)) return nullptr;
    const auto* const row = std::ranges::find(nameRows, std::string_view(name), &NameRow::detected);
    return row != std::end(nameRows) ? row->name : name;
}

}  // namespace

CharsetGuess guessCharset(std::string_view sample) noexcept {
    constexpr std::size_t largestSample = 2048;
    sample = sample.substr(0, largestSample);
    if (sample.empty()) return {};
    for (const MarkRow& row : markRows) {
        if (sample.starts_with(row.bytes)) return {row.name, true};
    }
    for (const MarkRow& row : markupRows) {
        if (sample.starts_with(row.bytes)) return {row.name, false};
    }
    if (isAscii(sample)) return {"US-ASCII", false};
    const bool hasHighBytes = std::ranges::any_of(sample, [](char c) { return c < 0; });
    if (hasHighBytes && isUtf8(sample)) return {"UTF-8", false};
    return {guessByStatistics(sample), false};
}

}  // namespace LumCommon::detail
