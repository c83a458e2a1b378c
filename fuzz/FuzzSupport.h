#pragma once

#include <lumcommon/core/LumError.h>
#include <lumcommon/core/Text.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <memory>
#include <streambuf>

/// A condition that must hold for every input. An input that breaks it is a finding.
#define FUZZ_LAW(condition)                                                                              \
    do {                                                                                                 \
        if (!(condition)) {                                                                              \
            std::fprintf(stderr, "%s:%d: this law does not hold: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                                \
        }                                                                                                \
    } while (false)

namespace LumFuzz {

/// Takes the choices that an input makes (features, sizes) from its front; the rest is the document.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::uint8_t byte() {
        if (size_ == 0) return 0;
        --size_;
        return *data_++;
    }
    /// A number of up to 8 bytes, the highest first.
    std::uint64_t number(int bytes) {
        std::uint64_t value = 0;
        for (int i = 0; i < bytes; ++i) value = value << 8 | byte();
        return value;
    }
    const std::uint8_t* data() const { return data_; }
    std::size_t size() const { return size_; }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

/// The bytes in a heap block of exactly their size, so that the sanitizer sees a read past the last byte,
/// handed out in pieces of alternating sizes `first` and `second`. As with a socket, one piece is available at a time.
class PieceBuffer : public std::streambuf {
public:
    PieceBuffer(const std::uint8_t* data, std::size_t size, std::size_t first, std::size_t second)
        : bytes_(new char[size]),
          size_(size),
          pieces_{std::max<std::size_t>(first, 1), std::max<std::size_t>(second, 1)} {
        if (size != 0) std::memcpy(bytes_.get(), data, size);
        setg(bytes_.get(), bytes_.get(), bytes_.get());
    }

protected:
    int_type underflow() override {
        if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
        const auto at = static_cast<std::size_t>(egptr() - bytes_.get());
        if (at == size_) return traits_type::eof();
        const std::size_t piece = std::min(pieces_[turn_ ^= 1], size_ - at);
        setg(bytes_.get() + at, bytes_.get() + at, bytes_.get() + at + piece);
        return traits_type::to_int_type(*gptr());
    }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
    std::size_t pieces_[2];
    unsigned turn_ = 1;
};

/// A number that changes if anything added to it changes; adding a text touches every unit of it.
class Digest {
public:
    void add(std::uint64_t value) {
        hash_ = (hash_ ^ value) * 0x9E3779B97F4A7C15u;
        hash_ ^= hash_ >> 29;
    }
    void add(const LumCommon::UnicodeString& text) {
        add(text.isBogus() ? ~std::uint64_t{0} : static_cast<std::uint64_t>(text.length()));
        for (std::int32_t i = 0; i < text.length(); ++i) add(text[i]);
    }
    friend bool operator==(const Digest&, const Digest&) = default;

private:
    std::uint64_t hash_ = 0x243F6A8885A308D3u;
};

/// The code of the error that a call throws; 0 when it throws none.
template <class Call>
unsigned codeOf(Call call) {
    try {
        call();
    } catch (const LumCommon::LumError& error) {
        return error.code;
    }
    return 0;
}

/// The text that the bytes stand for: UTF-16 units in host order, or UTF-8 with U+FFFD for malformed parts.
inline LumCommon::UnicodeString textOf(const std::uint8_t* data, std::size_t size, bool areUnits) {
    if (!areUnits) {
        return LumCommon::UnicodeString::fromUTF8(
            icu::StringPiece(reinterpret_cast<const char*>(data), static_cast<std::int32_t>(size)));
    }
    LumCommon::UnicodeString text;
    for (std::size_t i = 0; i + 1 < size; i += 2) text.append(static_cast<char16_t>(data[i] | data[i + 1] << 8));
    return text;
}

}  // namespace LumFuzz
