#pragma once

#include <cstddef>
#include <memory>
#include <span>

struct z_stream_s;

namespace LumCommon::detail {

/// Inflates raw deflate data (RFC 1951) step by step. What cannot be inflated, a want of memory included, is broken.
class RawInflater {
public:
    enum class Outcome { MORE, END, BROKEN };

    RawInflater();
    ~RawInflater();
    RawInflater(const RawInflater&) = delete;
    RawInflater& operator=(const RawInflater&) = delete;

    void restart() noexcept;

    /// Inflates from the start of `data` into the start of `room` and cuts both by what was used. Empty `data` say that
    /// no more will come: what is held back is given, and data that do not end there are broken.
    /// @param room  not empty.
    /// MORE: `data` are used up or `room` is full. After END it is END again.
    Outcome step(std::span<const char>& data, std::span<char>& room) noexcept;

    /// Inflates until `room` is full or the data end, and returns the number of bytes made. Data that turn out to be
    /// broken give 0, whatever was made of them before.
    /// @param next  gives further data when `data` are used up; none at the end. It is not called once the data ended.
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
