#include "Words.h"

#include <lumcommon/values/LumTokenizer.h>

#include <cstddef>
#include <span>

namespace LumTool {

using namespace LumCommon;

namespace {

std::string_view wordAt(std::span<const std::string_view> words, std::ptrdiff_t index) {
    const bool isKnown = index >= 0 && index < std::ssize(words) && !words[static_cast<std::size_t>(index)].empty();
    return isKnown ? words[static_cast<std::size_t>(index)] : "unknown";
}

// Each row starts at the number in front of it.
constexpr std::string_view kindWords[] = {"null", "integer", "real", "name", "string", "object", "", "compound"};
constexpr std::string_view unitWords[] = {
    /* 0 */ "none",   "number", "percent", "em",  "ex",   "px",     "cm",  "mm",
    /* 8 */ "in",     "pt",     "pc",      "jpt", "q",    "deg",    "rad", "grad",
    /* 16 */ "ms",    "s",      "hz",      "khz", "char", "quoted", "uri", "ident",
    /* 24 */ "color", "",       "",        "",    "dpi",  "twip",   "pt2", "pt3"};
constexpr std::string_view packageWords[] = {
    /* 0 */ "none",
    /* 1 */ "document",
    "document with macros",
    "document template",
    "document template with macros",
    /* 5 */ "spreadsheet",
    "spreadsheet with macros",
    "spreadsheet template",
    "spreadsheet template with macros",
    /* 9 */ "binary spreadsheet",
    /* 10 */ "presentation",
    "presentation with macros",
    /* 12 */ "slide show",
    "slide show with macros",
    /* 14 */ "presentation template",
    "presentation template with macros",
    /* 16 */ "theme"};
constexpr std::string_view oleDocumentWords[] = {"none", "document", "spreadsheet", "presentation",
                                                 "Japanese document"};
constexpr std::string_view oleEntryWords[] = {"empty", "storage", "stream", "lock bytes", "property", "root"};

}  // namespace

std::string_view wordOfKind(LumValueKind kind) { return wordAt(kindWords, kind); }
std::string_view wordOfUnit(LumValueUnitType unit) { return wordAt(unitWords, unit); }
std::string_view wordOfPackage(int kind) { return wordAt(packageWords, kind); }
std::string_view wordOfOleDocument(int kind) { return wordAt(oleDocumentWords, kind); }
std::string_view wordOfOleEntry(int type) { return wordAt(oleEntryWords, type); }

std::string_view wordOfToken(int kind) {
    switch (kind) {
        case LumTokenizer::TOKEN_NUMBER:
            return "number";
        case LumTokenizer::TOKEN_NAME:
            return "name";
        case LumTokenizer::TOKEN_STRING:
            return "string";
        case LumTokenizer::TOKEN_HASH:
            return "color";
        default:
            return kind >= 0 ? "delimiter" : "unknown";
    }
}

std::string_view wordOfZipMethod(int method) {
    switch (method) {
        case 0:
            return "stored";
        case 8:
            return "deflated";
        case 9:
            return "deflate64";
        case 12:
            return "bzip2";
        case 14:
            return "lzma";
        case 93:
            return "zstd";
        default:
            return "unknown";
    }
}

std::string typeOf(const LumValue& value) {
    const LumValueUnitType unit = value.getUnit();
    const std::string word(wordOfUnit(unit));
    switch (unit) {
        case UNIT_COLOR:
            return "color";
        case UNIT_QUOTED:
        case UNIT_URI:
            return word;
        case UNIT_PERCENT:
            return "percentage";
        case UNIT_EM:
        case UNIT_EX:
        case UNIT_PX:
        case UNIT_CM:
        case UNIT_MM:
        case UNIT_IN:
        case UNIT_PT:
        case UNIT_PC:
        case UNIT_JPT:
        case UNIT_Q:
        case UNIT_TWIP:
            return "length in " + word;
        case UNIT_DEG:
        case UNIT_RAD:
        case UNIT_GRAD:
            return "angle in " + word;
        case UNIT_MS:
        case UNIT_S:
            return "time in " + word;
        case UNIT_HZ:
        case UNIT_KHZ:
            return "frequency in " + word;
        default:
            return std::string(wordOfKind(value.getKind()));
    }
}

}  // namespace LumTool
