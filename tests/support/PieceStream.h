#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <istream>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>

namespace LumTest {

inline constexpr std::size_t wholeInput = std::numeric_limits<std::size_t>::max();

/// Delivers bytes at most `pieceBytes` at a time, each piece in a heap block of its exact size, so that a sanitizer
/// sees a read one past the end of what was delivered.
class PieceBuffer : public std::streambuf {
public:
    PieceBuffer(std::string_view bytes, std::size_t pieceBytes) : rest_(bytes), pieceBytes_(pieceBytes) {}

    /// How many bytes the reader has been given.
    std::size_t getDeliveredBytes() const { return deliveredBytes_; }
    /// From this many delivered bytes on, reading throws instead of ending.
    void failAfter(std::size_t bytes) { failAfterBytes_ = bytes; }

protected:
    int_type underflow() override {
        if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
        if (deliveredBytes_ >= failAfterBytes_) throw std::runtime_error("the disk is gone");
        if (rest_.empty()) return traits_type::eof();
        const std::size_t size = std::min({pieceBytes_, rest_.size(), failAfterBytes_ - deliveredBytes_});
        piece_ = std::make_unique<char[]>(size);
        std::memcpy(piece_.get(), rest_.data(), size);
        rest_.remove_prefix(size);
        deliveredBytes_ += size;
        setg(piece_.get(), piece_.get(), piece_.get() + size);
        return traits_type::to_int_type(*gptr());
    }
    std::streamsize showmanyc() override { return rest_.empty() ? -1 : 0; }

private:
    std::string_view rest_;
    std::size_t pieceBytes_;
    std::size_t deliveredBytes_ = 0;
    std::size_t failAfterBytes_ = wholeInput;
    std::unique_ptr<char[]> piece_;
};

/// An input stream over a copy of `bytes` that hands them out in pieces.
class PieceStream : public std::istream {
public:
    explicit PieceStream(std::string_view bytes, std::size_t pieceBytes = wholeInput)
        : std::istream(nullptr), bytes_(bytes), buffer_(bytes_, pieceBytes) {
        rdbuf(&buffer_);
    }
    PieceBuffer& getBuffer() { return buffer_; }

private:
    std::string bytes_;
    PieceBuffer buffer_;
};

inline std::string readAll(std::streambuf& buffer) { return {std::istreambuf_iterator<char>(&buffer), {}}; }

}  // namespace LumTest
