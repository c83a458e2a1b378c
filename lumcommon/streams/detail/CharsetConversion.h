#pragma once

#include <lumcommon/streams/cconv.h>
#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace LumCommon::detail {

struct ConverterCloser {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};
using ConverterPtr = std::unique_ptr<UConverter, ConverterCloser>;

/// Replacements for characters that a target charset lacks.
struct CharsetSubstitutes {
    char16_t narrow;  // 0: the converter's own
    char16_t wide;    // 0: as for narrow characters
};

/// Decodes one charset to UTF-16 and encodes that in another, block by block.
class CharsetConversion {
public:
    /// These are false for an unknown charset. Failure: std::bad_alloc.
    bool setTarget(const char* charset, const CConvOptions& options);
    bool setSource(const char* charset, const CConvOptions& options);

    /// One step, see cconvConvert(). False if it cannot continue.
    bool run(CConvContext& context) noexcept;

private:
    static constexpr std::size_t HALF_UNITS = 2048;
    static constexpr std::size_t PENDING_BYTES = 64;

    bool decode(CConvContext& context) noexcept;
    void adjust() noexcept;
    void convertLineEnds() noexcept;
    bool encode(CConvContext& context) noexcept;
    bool encodeToPending(std::size_t units, bool isLast) noexcept;
    bool drainPending(CConvContext& context) noexcept;

    ConverterPtr source_;
    ConverterPtr target_;
    CharsetSubstitutes substitutes_{};
    CConvLineEnds lineEnds_ = CConvLineEnds::keep;
    bool dropsMark_ = false;  // the source starts with a mark that is still to be dropped
    bool writesMark_ = false;
    bool sourceSwapsControls_ = false;
    bool targetSwapsControls_ = false;
    bool afterReturn_ = false;  // the last unit was a carriage return, which has been written as a line end
    bool isSourceDone_ = false;
    bool isTargetDone_ = false;
    std::size_t unitsStart_ = 0;  // decoded units that are not yet encoded
    std::size_t unitsEnd_ = 0;
    std::size_t pendingBytes_ = 0;  // bytes of one encoded character that did not fit
    char pending_[PENDING_BYTES];
    char16_t units_[2 * HALF_UNITS];
};

}  // namespace LumCommon::detail
