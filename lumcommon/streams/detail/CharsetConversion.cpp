#include <lumcommon/core/detail/AsciiText.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/CodePoints.h>
#include <lumcommon/streams/detail/CharsetConversion.h>
#include <lumcommon/streams/detail/CharsetNames.h>
#include <unicode/uchar.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace LumCommon::detail {

namespace {

constexpr char16_t byteOrderMark = 0xFEFF;

/// ICU looks up an unknown name as a file in its data folder and takes a comma for the start of options. Names come
/// from documents, so neither may get through.
bool isPlainName(std::string_view name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) {
        return isAsciiLetterOrDigit(c) || std::string_view("-_.:()+").find(c) != std::string_view::npos;
    });
}

ConverterPtr openConverter(const char* charset) {
    if (!charset || !isPlainName(charset)) return {};
    const char* const icuName = findIcuCharset(charset);
    UErrorCode status = U_ZERO_ERROR;
    ConverterPtr converter(ucnv_open(icuName ? icuName : charset, &status));
    checkMemory(status);
    return U_SUCCESS(status) ? std::move(converter) : ConverterPtr();
}

bool isOrderless(const UConverter* converter) {
    const UConverterType type = ucnv_getType(converter);
    return type == UCNV_UTF16 || type == UCNV_UTF32;
}

/// A converter of this type for one byte order.
ConverterPtr openOrdered(UConverterType type, bool littleEndian) {
    if (type == UCNV_UTF16) return openConverter(littleEndian ? "UTF-16LE" : "UTF-16BE");
    return openConverter(littleEndian ? "UTF-32LE" : "UTF-32BE");
}

/// ICU's tables for the Japanese PC code pages rotate three control characters: byte 1A is U+001C, 1C is U+007F, 7F is
/// U+001A. Documents mean the characters with the same numbers.
bool swapsControls(UConverter* converter) {
    const char bytes[] = {0x1A, 0x1C, 0x7F};
    char16_t units[4] = {};
    UErrorCode status = U_ZERO_ERROR;
    const int count = ucnv_toUChars(converter, units, 4, bytes, 3, &status);
    return U_SUCCESS(status) && count == 3 && units[0] == 0x1C && units[1] == 0x7F && units[2] == 0x1A;
}

bool canEncode(UConverter* converter, char16_t unit) {
    UConverterFromUCallback callback = nullptr;
    const void* callbackContext = nullptr;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter, UCNV_FROM_U_CALLBACK_STOP, nullptr, &callback, &callbackContext, &status);
    char bytes[64];
    const int count = ucnv_fromUChars(converter, bytes, sizeof bytes, &unit, 1, &status);
    UErrorCode restored = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter, callback, callbackContext, nullptr, nullptr, &restored);
    ucnv_reset(converter);
    return U_SUCCESS(status) && U_SUCCESS(restored) && count > 0;
}

bool isMalformed(UConverterCallbackReason reason) { return reason <= UCNV_IRREGULAR; }

/// ICU's own callback gives U+001A for some single bytes, which XML documents must not contain.
void U_CALLCONV replaceMalformed(const void*, UConverterToUnicodeArgs* args, const char*, std::int32_t,
                                 UConverterCallbackReason reason, UErrorCode* status) {
    if (!isMalformed(reason)) return;
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &replacementCharacter, 1, 0, status);
}

void U_CALLCONV substitute(const void* context, UConverterFromUnicodeArgs* args, const UChar*, std::int32_t,
                           UChar32 character, UConverterCallbackReason reason, UErrorCode* status) {
    if (!isMalformed(reason)) return;
    *status = U_ZERO_ERROR;
    const auto& substitutes = *static_cast<const CharsetSubstitutes*>(context);
    const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    const bool isWide = width == U_EA_WIDE || width == U_EA_FULLWIDTH;
    const char16_t unit = isWide && substitutes.wide ? substitutes.wide : substitutes.narrow;
    if (!unit) {
        ucnv_cbFromUWriteSub(args, 0, status);
        return;
    }
    const UChar* source = &unit;
    ucnv_cbFromUWriteUChars(args, &source, source + 1, 0, status);
}

}  // namespace

bool CharsetConversion::setTarget(const char* charset, const CConvOptions& options) {
    target_ = openConverter(charset);
    if (target_ && isOrderless(target_.get())) {
        target_ = openOrdered(ucnv_getType(target_.get()), options.littleEndian);
    }
    if (!target_) return false;
    substitutes_.narrow = canEncode(target_.get(), options.narrowSubstitute) ? options.narrowSubstitute : u'\0';
    substitutes_.wide = canEncode(target_.get(), options.wideSubstitute) ? options.wideSubstitute : u'\0';
    targetSwapsControls_ = swapsControls(target_.get());
    writesMark_ = options.writeMark && canEncode(target_.get(), byteOrderMark);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(target_.get(), substitute, &substitutes_, nullptr, nullptr, &status);
    return U_SUCCESS(status);
}

bool CharsetConversion::setSource(const char* charset, const CConvOptions& options) {
    source_ = openConverter(charset);
    if (source_ && options.sourceIsUnits && ucnv_getType(source_.get()) == UCNV_UTF16) {
        source_ = openOrdered(UCNV_UTF16, !U_IS_BIG_ENDIAN);
    }
    if (!source_) return false;
    // Without a fixed byte order, the converter itself consumes the mark.
    dropsMark_ = options.sourceHasMark && !isOrderless(source_.get());
    sourceSwapsControls_ = swapsControls(source_.get());
    lineEnds_ = options.lineEnds;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(source_.get(), replaceMalformed, nullptr, nullptr, nullptr, &status);
    return U_SUCCESS(status);
}

bool CharsetConversion::run(CConvContext& context) noexcept {
    context.outputProduced = 0;
    context.isOutputFull = false;
    if (!source_ || !target_ || context.inputConsumed > context.inputAvailable) return false;
    if (writesMark_) {
        writesMark_ = false;
        units_[0] = byteOrderMark;
        unitsStart_ = 0;
        unitsEnd_ = 1;
    }
    for (;;) {
        context.isOutputFull = !drainPending(context);
        if (context.isOutputFull) break;
        if (unitsStart_ < unitsEnd_) {
            if (!encode(context)) return false;
        } else if (!isSourceDone_ && (context.inputConsumed < context.inputAvailable || context.isLastInput)) {
            if (!decode(context)) return false;
        } else if (isSourceDone_ && !isTargetDone_) {
            if (!encodeToPending(0, true)) return false;
            isTargetDone_ = true;
        } else {
            if (isTargetDone_ && context.outputProduced == 0) context.status = 1;
            break;
        }
    }
    return true;
}

// Decodes into the upper half of units_, so that line ends can be rewritten from there to the front even if one unit
// becomes two: the writer never overtakes the reader.
bool CharsetConversion::decode(CConvContext& context) noexcept {
    const char* from = context.input + context.inputConsumed;
    const char* const end = context.input + context.inputAvailable;
    char16_t* to = units_ + HALF_UNITS;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(source_.get(), &to, units_ + 2 * HALF_UNITS, &from, end, nullptr, context.isLastInput, &status);
    context.inputConsumed = static_cast<unsigned>(from - context.input);
    if (status == U_BUFFER_OVERFLOW_ERROR) {
        status = U_ZERO_ERROR;
    } else {
        isSourceDone_ = context.isLastInput;
    }
    unitsStart_ = HALF_UNITS;
    unitsEnd_ = static_cast<std::size_t>(to - units_);
    adjust();
    return U_SUCCESS(status);
}

void CharsetConversion::adjust() noexcept {
    if (unitsStart_ == unitsEnd_) return;
    if (dropsMark_) {
        dropsMark_ = false;
        if (units_[unitsStart_] == byteOrderMark) ++unitsStart_;
    }
    if (sourceSwapsControls_ != targetSwapsControls_) {
        for (std::size_t i = unitsStart_; i < unitsEnd_; ++i) {
            char16_t& unit = units_[i];
            if (unit == 0x1A) {
                unit = sourceSwapsControls_ ? 0x7F : 0x1C;
            } else if (unit == 0x1C) {
                unit = sourceSwapsControls_ ? 0x1A : 0x7F;
            } else if (unit == 0x7F) {
                unit = sourceSwapsControls_ ? 0x1C : 0x1A;
            }
        }
    }
    if (lineEnds_ != CConvLineEnds::keep) convertLineEnds();
}

void CharsetConversion::convertLineEnds() noexcept {
    std::size_t to = 0;
    for (std::size_t from = unitsStart_; from < unitsEnd_; ++from) {
        const char16_t unit = units_[from];
        const bool completesReturn = unit == u'\n' && afterReturn_;
        afterReturn_ = unit == u'\r';
        if (completesReturn) continue;
        if (unit != u'\n' && unit != u'\r') {
            units_[to++] = unit;
            continue;
        }
        if (lineEnds_ != CConvLineEnds::toLf) units_[to++] = u'\r';
        if (lineEnds_ != CConvLineEnds::toCr) units_[to++] = u'\n';
    }
    unitsStart_ = 0;
    unitsEnd_ = to;
}

bool CharsetConversion::encode(CConvContext& context) noexcept {
    const std::size_t room = context.outputCapacity - context.outputProduced;
    // This many units are certain to fit, minus ten to allow for shift sequences and what the converter holds back.
    const std::size_t certain = room / static_cast<unsigned>(ucnv_getMaxCharSize(target_.get()));
    if (certain <= 10) return encodeToPending(1, false);
    const char16_t* from = units_ + unitsStart_;
    const char16_t* const end = from + std::min(certain - 10, unitsEnd_ - unitsStart_);
    char* const start = context.output + context.outputProduced;
    char* to = start;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(target_.get(), &to, start + room, &from, end, nullptr, false, &status);
    context.outputProduced += static_cast<unsigned>(to - start);
    unitsStart_ = static_cast<std::size_t>(from - units_);
    return U_SUCCESS(status);
}

bool CharsetConversion::encodeToPending(std::size_t units, bool isLast) noexcept {
    const char16_t* from = units_ + unitsStart_;
    char* to = pending_;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(target_.get(), &to, pending_ + PENDING_BYTES, &from, from + units, nullptr, isLast, &status);
    pendingBytes_ = static_cast<std::size_t>(to - pending_);
    unitsStart_ += units;
    return U_SUCCESS(status);
}

/// False if the pending character does not fit.
bool CharsetConversion::drainPending(CConvContext& context) noexcept {
    if (pendingBytes_ == 0) return true;
    if (pendingBytes_ > context.outputCapacity - context.outputProduced) return false;
    std::memcpy(context.output + context.outputProduced, pending_, pendingBytes_);
    context.outputProduced += static_cast<unsigned>(pendingBytes_);
    pendingBytes_ = 0;
    return true;
}

}  // namespace LumCommon::detail
