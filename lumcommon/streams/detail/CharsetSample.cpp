#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/streams/detail/CharsetNames.h>
#include <lumcommon/streams/detail/CharsetSample.h>
#include <unicode/ucsdet.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

namespace LumCommon::detail {

namespace {

using namespace std::string_view_literals;

struct MarkRow {
    std::string_view bytes;
    const char* name;
};
constexpr MarkRow markRows[] = {
    {"\xEF\xBB\xBF"sv, "UTF-8"},    {"\xFF\xFE\0\0"sv, "UTF-32LE"},  // before UTF-16LE, whose mark it begins with
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

struct DetectorCloser {
    void operator()(UCharsetDetector* detector) const noexcept { ucsdet_close(detector); }
};

bool isAscii(std::string_view sample) {
    constexpr char escape = 0x1B;
    return std::ranges::all_of(sample, [](char c) { return c > 0 && c != escape && c != 0x7F; });
}

/// The length in bytes of the UTF-8 character at `start`: 0 if it is malformed, the bytes that are there if it is cut
/// off.
std::size_t countUtf8Character(std::string_view sample, std::size_t start) {
    const auto length = static_cast<std::int32_t>(sample.size());
    const auto begin = static_cast<std::int32_t>(start);
    std::int32_t end = begin;
    UChar32 character = 0;
    U8_NEXT(reinterpret_cast<const std::uint8_t*>(sample.data()), end, length, character);
    const bool isCutOff = end == length && U8_IS_LEAD(sample[start]);
    return character >= 0 || isCutOff ? static_cast<std::size_t>(end - begin) : 0;
}

/// Whether the sample holds UTF-8 characters and hardly anything that is not UTF-8. A slightly damaged file still
/// counts.
bool isUtf8(std::string_view sample) {
    std::size_t wellFormed = 0;
    std::size_t malformed = 0;
    for (std::size_t i = 0; i < sample.size();) {
        if (static_cast<unsigned char>(sample[i]) < 0x80) {
            ++i;
        } else if (const std::size_t length = countUtf8Character(sample, i)) {
            ++wellFormed;
            i += length;
        } else {
            ++malformed;
            ++i;
        }
    }
    return wellFormed > 10 * malformed;
}

/// The detector's answer to bytes that are neither ASCII nor UTF-8.
const char* guessByStatistics(std::string_view sample) {
    // Below this, the detector has found no evidence for a charset except that no byte rules it out.
    constexpr std::int32_t leastConfidence = 15;
    // ICU does not check one of the allocations when it opens a detector. There must be room for more than it takes.
    constexpr std::size_t detectorBytes = std::size_t{64} * 1024;
    ::operator delete(::operator new(detectorBytes));
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, DetectorCloser> detector(ucsdet_open(&status));
    checkMemory(status);
    ucsdet_setText(detector.get(), sample.data(), static_cast<std::int32_t>(sample.size()), &status);
    ucsdet_enableInputFilter(detector.get(), true);
    std::int32_t count = 0;
    const UCharsetMatch** const matches = ucsdet_detectAll(detector.get(), &count, &status);
    checkMemory(status);
    for (std::int32_t i = 0; U_SUCCESS(status) && i < count; ++i) {
        if (ucsdet_getConfidence(matches[i], &status) < leastConfidence) break;
        const char* const name = ucsdet_getName(matches[i], &status);
        // The detector accepts overlong forms as UTF-8, but UTF-8 has been ruled out.
        if (U_FAILURE(status) || std::string_view(name) == "UTF-8") continue;
        const char* const libraryName = findLibraryCharsetOfDetected(name);
        return libraryName ? libraryName : name;
    }
    return nullptr;
}

}  // namespace

CharsetGuess guessCharset(std::string_view sample) {
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
    if (isUtf8(sample)) return {"UTF-8", false};
    return {guessByStatistics(sample), false};
}

}  // namespace LumCommon::detail
