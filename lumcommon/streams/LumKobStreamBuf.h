#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/streams/LumRefillStreamBuf.h>
#include <lumcommon/streams/cconv.h>

#include <cstddef>
#include <istream>
#include <memory>
#include <span>

namespace LumCommon {

/// Reads text in a given charset from a stream and delivers it as UTF-16 code units, two bytes each, low byte first.
///
/// Malformed bytes are delivered as U+FFFD. Line ends are left as they are. The last 16 bytes delivered can be put
/// back. The source is read in blocks of 4096 bytes, so its position is usually ahead of what has been delivered.
/// Failure: a source that fails or throws ends the text there; hasFailed() and the badbit of a LumKobStream tell so.
/// The constructors and init() throw std::bad_alloc; the buffer is then closed. Threads: one at a time.
class LUM_API LumKobStreamBuf : public LumRefillStreamBuf {
public:
    /// @param in        the source; not owned, must stay alive until the last read. Null reads like an empty stream.
    /// @param encoding  the charset's name, in any case; null to recognise it from the first 2048 bytes, for which the
    ///                  source must be seekable. An unknown name leaves the buffer closed.
    LumKobStreamBuf(std::istream* in, const char* encoding);
    ~LumKobStreamBuf() override;

    /// Starts over with this charset, at the source's current position.
    /// @param bom  whether the source begins with a byte order mark, which is then not delivered.
    /// @return false if the charset is unknown or null; the buffer is then closed.
    /// @param encoding  the charset's name, in any case.
    bool init(const char* encoding, bool bom);
    /// Whether a conversion is active; false once the input has ended.
    bool is_open() const noexcept { return isOpen_; }
    /// Ends the conversion. What has been converted can still be read.
    void term() noexcept;

    /// The name by which the conversion knows a charset: "GB2312" is "ChineseGBK", "shift_jis" is "WINDOWS31J". The
    /// result is static text, or `encoding` itself if it has no other name.
    static const char* getLibraryName(const char* encoding) noexcept;

private:
    std::size_t refill(std::span<char> room) override;
    void fill() noexcept;
    bool convert(std::span<char> room) noexcept;

    static constexpr std::size_t BLOCK_BYTES = 4096;
    static constexpr std::size_t PUT_BACK_BYTES = 16;

    std::istream* in_;
    CConvContext context_;
    std::unique_ptr<char[]> input_;  // null: the conversion has ended
    bool isOpen_ = false;
    bool isCutShort_ = false;  // the text ended for another reason than its end
};

}  // namespace LumCommon
