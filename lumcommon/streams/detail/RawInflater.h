#pragma once

#include <cstddef>
#include <memory>
#include <span>

struct z_stream_s;

namespace LumCommon::detail {

/// Inflates raw deflate data (RFC 1951) step by step. What cannot be inflated is BROKEN.
/// Failure: std::bad_alloc, from the constructor and from each step until restart().
class RawInflater {
public:
    enum class Outcome { MORE, END, BROKEN };

    RawInflater();
    ~RawInflater();
    RawInflater(const RawInflater&) = delete;
    RawInflater& operator=(const RawInflater&) = delete;

    void restart() noexcept;
    /// Whether the data have come to their proper end.
    bool hasEnded() const noexcept { return hasEnded_; }

    /// Inflates from the front of `data` into the front of `room` and removes what was used from both. Empty `data`
    /// means that no more will come: what is held back is delivered, and data that do not end there are broken.
    /// @param room  not empty.
    /// @return MORE if `data` is used up or `room` is full. After END, always END.
    Outcome step(std::span<const char>& data, std::span<char>& room);

    /// Inflates until `room` is full or the data end, and returns the number of bytes produced. If the data turn out to
    /// be broken, returns 0, whatever was produced before.
    /// @param next  returns further data when `data` is used up; empty at the end. It is not called once the data have
    ///              ended.
    template <class Next>
    std::size_t fill(std::span<const char>& data, std::span<char> room, Next next) {
        const std::size_t size = room.size();
        while (!room.empty() && !hasEnded_) {
            if (data.empty()) data = next();
            if (step(data, room) == Outcome::BROKEN) return 0;
        }
        return size - room.size();
    }

private:
    std::unique_ptr<z_stream_s> stream_;
    bool isReady_ = false;
    bool hasEnded_ = false;
};

}  // namespace LumCommon::detail
