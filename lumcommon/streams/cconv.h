#pragma once

#include <lumcommon/core/Api.h>

/// Block-wise charset conversion on top of ICU's converters and detector. LumKobStreamBuf and LumKobOStreamBuf are
/// built on these five functions; a program that has its bytes in memory can use them directly:
///
///     CConvContext context;
///     if (cconvInitConvert(context, {}, "UTF-8") == 0 && cconvChgCharset(context, {}, "Shift_JIS") == 0) {
///         context.input = ...; context.inputAvailable = ...; context.isLastInput = true;
///         context.output = ...; context.outputCapacity = ...;
///         do { cconvConvert(context); /* take context.outputProduced bytes */ } while (context.status == 0);
///     }
///     cconvTermConvert(context);
namespace LumCommon {

namespace detail {
class CharsetConversion;
}

/// Returned by these functions when memory runs out, where any other value would be a statement about the charset.
inline constexpr int cconvOutOfMemory = -2;

/// What line ends (CR LF, CR, LF) are converted to; other separators stay as they are.
enum class CConvLineEnds : int {
    toCrLf = 0,  ///< CR LF
    toCr = 1,    ///< CR
    toLf = 2,    ///< LF
    keep = 3,    ///< nothing is changed
};

/// How a conversion is set up.
struct CConvOptions {
    /// The source begins with a byte order mark, which is not delivered. Without this flag a mark is a character like
    /// any other, except where the charset is named "UTF-16" or "UTF-32": there it gives the byte order.
    bool sourceHasMark = false;
    /// The result begins with a byte order mark, provided the target charset has U+FEFF.
    bool writeMark = false;
    CConvLineEnds lineEnds = CConvLineEnds::keep;  ///< what line ends are written as
    /// The byte order of a target named just "UTF-16" or "UTF-32"; such a target gets no mark unless writeMark is set.
    bool littleEndian = true;
    /// A source named "UTF-16" is in the machine's byte order and its first unit is never a mark.
    bool sourceIsUnits = false;
    /// Replacements for characters that the target lacks, one for narrow and one for wide characters (East Asian
    /// width). If the target lacks the wide one too, the narrow one is used; if it lacks both, the converter's own.
    char16_t narrowSubstitute = 0x3F;
    char16_t wideSubstitute = 0x3013;  ///< see narrowSubstitute
};

/// One conversion. The caller sets the buffers before each cconvConvert() and ends with cconvTermConvert(), which
/// releases what the conversion holds. Not copyable; used by one thread at a time.
struct CConvContext {
    CConvContext() = default;
    CConvContext(const CConvContext&) = delete;
    CConvContext& operator=(const CConvContext&) = delete;

    const char* input = nullptr;  ///< the bytes to convert; not owned
    unsigned inputConsumed = 0;   ///< bytes at the start of `input` that have been taken; the caller may reset it to 0
    unsigned inputAvailable = 0;  ///< bytes in `input`, the consumed ones included
    bool isLastInput = false;     ///< no more follows: a character cut off at the end is malformed, shifts are closed
    char* output = nullptr;       ///< where the result goes; not owned
    unsigned outputProduced = 0;  ///< bytes that the last call wrote
    unsigned outputCapacity = 0;  ///< bytes that `output` has room for
    bool isOutputFull = false;    ///< the next character did not fit after what the last call wrote
    int status = 0;               ///< 1: the conversion has ended, and the last call wrote nothing

    char charsetName[64] = {};  ///< by cconvChkEncode
    bool hasMark = false;       ///< by cconvChkEncode

    detail::CharsetConversion* conversion = nullptr;  ///< what cconvTermConvert() releases; of no use to the caller
};

/// Prepares a conversion into a charset.
/// @return 0; another value if the charset is unknown, cconvOutOfMemory if memory runs out. cconvTermConvert() must be
/// called in either case.
[[nodiscard]] LUM_API int cconvInitConvert(CConvContext& context, const CConvOptions& options,
                                           const char* toCharset) noexcept;

/// Sets the charset to convert from, and the line ends.
/// @return 0; another value if the charset is unknown or the context has not been prepared, cconvOutOfMemory if memory
/// runs out.
[[nodiscard]] LUM_API int cconvChgCharset(CConvContext& context, const CConvOptions& options,
                                          const char* fromCharset) noexcept;

/// Converts as much of the input as fits into the output, in whole characters: a character is never split at the end of
/// the output. Bytes that the source charset does not allow become U+FFFD, one for each malformed sequence; a byte
/// below 0x80 that ends such a sequence stands for itself.
/// A call can consume input without producing output (shift sequences, the first bytes of a character) and produce
/// output without consuming input; an output buffer of fewer than 16 bytes may be too small for the next character.
/// @return 0; another value if the context has no conversion, which then counts as ended.
LUM_API int cconvConvert(CConvContext& context) noexcept;

/// Recognises the charset of the context's input, a sample of up to 2048 bytes that may end inside a character: by a
/// byte order mark, by escape sequences, as UTF-8, by the zero bytes of UTF-16 markup, else by statistics. Statistics
/// need enough text: a few words can be mistaken for a similar charset.
/// @return 1 if it was recognised, with charsetName and hasMark set; otherwise 0, or cconvOutOfMemory if memory runs
/// out, with both cleared.
LUM_API int cconvChkEncode(CConvContext& context) noexcept;

/// Releases what the conversion holds. The context can be prepared again; calling this twice is harmless.
LUM_API void cconvTermConvert(CConvContext& context) noexcept;

}  // namespace LumCommon
