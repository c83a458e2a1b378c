#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/streams/LumRefillStreamBuf.h>
#include <lumcommon/streams/cconv.h>

#include <cstddef>
#include <istream>
#include <memory>
#include <span>

namespace LumCommon {

/// Reads bytes of some charset from a stream and delivers them as UTF-16 code units, two bytes a unit, the lower first.
///
/// Malformed bytes are delivered as U+FFFD. Line ends are left as they are. The last 16 bytes delivered can be put
/// back. Reading takes the source in blocks of 4096 bytes, so that the source stands somewhere behind what was
/// delivered.
class LUM_API LumKobStreamBuf : public LumRefillStreamBuf {
public:
    /// @param in        the source; not owned, and alive until the last read. Null reads like an empty stream.
    /// @param encoding  the charset's name, in any case; null to recognise it from the first 2048 bytes, for which the
    ///                  source must be seekable. A name that is not a charset's leaves the buffer closed.
    LumKobStreamBuf(std::istream* in, const char* encoding);
    ~LumKobStreamBuf() override;

    /// Begins again with this charset, at the source's present position.
    /// @param bom  whether the source begins with a byte order mark, which is then not delivered.
    /// @return false when the charset is unknown or null: the buffer is closed.
    bool init(const char* encoding, bool bom);
    /// Whether a conversion is in force: false from the end of the input on.
    bool is_open() const noexcept { return isOpen_; }
    /// Ends the conversion. What has been converted can still be read.
    void term() noexcept;

    /// The name by which the conversion knows a charset: "GB2312" is "ChineseGBK", "shift_jis" is "WINDOWS31J". The
    /// result is static text, or `encoding` itself when there is no other name.
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
};

}  // namespace LumCommon
