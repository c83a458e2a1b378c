#pragma once

#include <lumcommon/xml/LumXmlLimits.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace LumCommon::detail {

/// Counts what one document takes in from all its inputs and what its entities produce, and holds it to the limits.
///
/// Inputs are read below stream buffers, which swallow exceptions. There they are told how much they may read; that
/// they wanted more is noted, and thrown where check() is called.
class InputMeter {
public:
    /// What one input has used up.
    struct Account {
        bool isExternal = false;
        bool isInflated = false;
        std::uint64_t bytes = 0;
        std::uint64_t compressedBytes = 0;
    };

    /// For another document: nothing is counted yet, and the time runs from now.
    void start(const LumXmlLimits& limits);

    const LumXmlLimits& limits() const noexcept { return limits_; }

    /// Counts the replacement text of an entity, or the opening of an external input. False: that is too much.
    bool expand(std::uint64_t units);
    bool expandByInput() { return expand(leastInputUnits); }
    /// Before an external input is opened. Throws LimitExceeded.
    void countExternalInput();

    /// How many of `wanted` bytes an input that has more may read; none, which is noted, when it must not.
    std::size_t room(const Account& account, std::size_t wanted) noexcept;
    void add(Account& account, std::size_t bytes) noexcept;
    /// The same for the bytes of a compressed input before they are inflated.
    std::size_t compressedRoom(const Account& account, std::size_t wanted) noexcept;
    void addCompressed(Account& account, std::size_t bytes) noexcept { account.compressedBytes += bytes; }
    /// Notes that a limit is exceeded; the first is what counts.
    void note(XmlError::Code code) noexcept {
        if (exceeded_ == 0) exceeded_ = code;
    }
    bool isExceeded() const noexcept { return exceeded_ != 0; }
    /// Throws LimitExceeded for what has been noted.
    void check() const {
        if (exceeded_ != 0) [[unlikely]]
            fail();
    }

private:
    using Clock = std::chrono::steady_clock;

    // What opening an input costs is counted as if it had been read: empty inputs must have an end too.
    static constexpr std::uint64_t leastInputUnits = 4096;

    [[noreturn]] void fail() const;
    bool isTimeUp() const { return deadline_ && Clock::now() > *deadline_; }
    std::uint64_t allowedUnits() const noexcept;

    LumXmlLimits limits_;
    std::uint16_t exceeded_ = 0;  // a code
    std::uint64_t documentBytes_ = 0;
    std::uint64_t producedUnits_ = 0;
    std::uint64_t externalInputs_ = 0;
    std::uint64_t externalBytes_ = 0;
    std::uint64_t inflatedBytes_ = 0;
    std::uint64_t totalBytes_ = 0;
    std::optional<Clock::time_point> deadline_;
};

}  // namespace LumCommon::detail
