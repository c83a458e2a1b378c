#include <lumcommon/xml/detail/InputMeter.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

constexpr std::uint64_t leastRatioBytes = 1u << 20;  // a small input may be compressed to nearly nothing
constexpr std::uint64_t mostTimeMs = std::uint64_t{1} << 40;

std::uint64_t difference(std::uint64_t limit, std::uint64_t used) noexcept { return limit - std::min(limit, used); }

std::uint64_t product(std::uint64_t a, std::uint64_t b) noexcept {
    return a != 0 && b > LumXmlLimits::off / a ? LumXmlLimits::off : a * b;
}

}  // namespace

void InputMeter::start(const LumXmlLimits& limits) {
    *this = InputMeter();
    limits_ = limits;
    if (limits.timeMs <= mostTimeMs) deadline_ = Clock::now() + std::chrono::milliseconds(limits.timeMs);
}

void InputMeter::fail() const { throw LimitExceeded{static_cast<XmlError::Code>(exceeded_)}; }

std::uint64_t InputMeter::allowedUnits() const noexcept {
    return std::max(limits_.expansionThreshold, product(limits_.expansionFactor, documentBytes_));
}

bool InputMeter::expand(std::uint64_t units) {
    if (isTimeUp()) throw LimitExceeded{XmlError::TimeLimit};
    producedUnits_ += units;
    return producedUnits_ <= allowedUnits();
}

void InputMeter::countExternalInput() {
    if (externalInputs_ >= limits_.externalInputs) throw LimitExceeded{XmlError::ExternalInputsLimit};
    ++externalInputs_;
}

std::size_t InputMeter::room(const Account& account, std::size_t wanted) noexcept {
    const auto holdTo = [&](std::uint64_t left, XmlError::Code code) {
        if (left == 0) note(code);
        wanted = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, left));
    };
    if (isTimeUp()) holdTo(0, XmlError::TimeLimit);
    if (account.isExternal) {
        const std::uint64_t paid = difference(leastInputUnits, account.bytes);
        const std::uint64_t left = difference(allowedUnits(), producedUnits_);
        holdTo(left > LumXmlLimits::off - paid ? left : left + paid, XmlError::ExpansionLimit);
        holdTo(difference(limits_.externalBytes, externalBytes_), XmlError::ExternalBytesLimit);
    }
    if (account.isInflated) holdTo(difference(limits_.inflatedBytes, inflatedBytes_), XmlError::InflatedBytesLimit);
    holdTo(difference(limits_.totalBytes, totalBytes_), XmlError::TotalBytesLimit);
    return wanted;
}

void InputMeter::add(Account& account, std::size_t bytes) noexcept {
    const std::uint64_t paid = difference(leastInputUnits, account.bytes);
    account.bytes += bytes;
    totalBytes_ += bytes;
    if (account.isExternal) {
        producedUnits_ += difference(bytes, paid);
        externalBytes_ += bytes;
    } else {
        documentBytes_ += bytes;
    }
    if (!account.isInflated) return;
    inflatedBytes_ += bytes;
    if (account.bytes >= leastRatioBytes && account.bytes > product(limits_.inflationRatio, account.compressedBytes)) {
        note(XmlError::InflationRatioLimit);
    }
}

std::size_t InputMeter::compressedRoom(const Account& account, std::size_t wanted) noexcept {
    const std::uint64_t left = difference(limits_.totalBytes, account.compressedBytes);
    const bool isUp = isTimeUp();
    if (isUp || left == 0) note(isUp ? XmlError::TimeLimit : XmlError::TotalBytesLimit);
    return isUp ? 0 : static_cast<std::size_t>(std::min<std::uint64_t>(wanted, left));
}

}  // namespace LumCommon::detail
