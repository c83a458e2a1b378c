// Any order of operations on a stream in memory. The first byte chooses the size of a block and whether blocks are
// kept; the rest the operations.
// Law: the stream is what a plain string with two positions is, whatever its blocks and sources; it holds two blocks
// where it keeps no memory; no source of its own outlives its end.

#include <lumcommon/streams/LumMemStream.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;

namespace {

constexpr auto in = std::ios_base::in;
constexpr auto out = std::ios_base::out;
constexpr auto cur = std::ios_base::cur;

std::string contentOf(LumMemStreamBuf& buffer) {
    std::string content;
    buffer.appendToString(content);
    return content;
}

/// A stream that delivers its bytes in pieces.
class Source : public std::istream {
public:
    Source(const std::string& bytes, std::size_t piece)
        : std::istream(nullptr),
          buffer_(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), piece, piece) {
        rdbuf(&buffer_);
    }

private:
    LumFuzz::PieceBuffer buffer_;
};

/// Drives one buffer and its model. All positions of the model are absolute; those of the buffer begin at `base`, which
/// rises when blocks are abandoned or reused.
class Driver {
public:
    Driver(unsigned growBytes, bool keepMemory, Choices& input)
        : grow_(growBytes), keepMemory_(keepMemory), input_(input) {
        buffer_.setKeepMemory(keepMemory);
    }

    void step() {
        static constexpr void (Driver::*operations[])() = {
            &Driver::write,     &Driver::write,      &Driver::write,   &Driver::read,       &Driver::read,
            &Driver::read,      &Driver::seek,       &Driver::seek,    &Driver::search,     &Driver::search,
            &Driver::addSource, &Driver::append,     &Driver::putBack, &Driver::trim,       &Driver::addSource,
            &Driver::skipLine,  &Driver::getRun,     &Driver::abandon, &Driver::copyStream, &Driver::shrink,
            &Driver::copyAll,   &Driver::compareAll,
        };
        (this->*operations[below(std::size(operations))])();
        if (below(3) == 0) comparePositions();
    }

    void finish() {
        compareAll();
        buffer_.remove();
        FUZZ_LAW(liveOwned_ == 0);
    }

private:
    std::size_t below(std::size_t limit) {
        const std::size_t high = limit > 256 ? input_.byte() : 0u;
        return (high << 8 | input_.byte()) % limit;
    }
    std::size_t someSize() {
        const std::size_t kind = below(8);
        return kind == 0 ? 1 : kind < 3 ? below(3) * grow_ : below(2 * std::size_t{grow_} + 3);
    }
    std::string someBytes() {
        std::string bytes(someSize(), 'a');
        std::size_t bits = below(256);
        for (char& c : bytes) c = "aab\r\n"[(bits = bits * 37 + 11) / 7 % 5];
        return bytes;
    }
    std::size_t length() const { return content_.size() - base_; }

    void put(std::string_view bytes) {
        content_.resize(std::max(content_.size(), put_ + bytes.size()));
        content_.replace(put_, bytes.size(), bytes);
        put_ += bytes.size();
    }
    void write() {
        const std::string bytes = someBytes();
        if (bytes.size() == 1) {
            FUZZ_LAW(buffer_.sputc(bytes[0]) == bytes[0]);
        } else {
            FUZZ_LAW(buffer_.sputn(bytes.data(), std::ssize(bytes)) == std::ssize(bytes));
        }
        put(bytes);
    }
    void append() {
        std::stringbuf source(someBytes());
        buffer_ << &source;
        buffer_ << &buffer_;  // which would never end
        buffer_ << nullptr;
        put(source.str());
    }
    void copyStream() {
        const std::string bytes = someBytes();
        Source source(bytes, 1 + below(9));
        const std::size_t count = someSize();
        const std::size_t expected = std::min(count, bytes.size());
        FUZZ_LAW(buffer_.copyStream(source, count) == expected);
        put(std::string_view(bytes).substr(0, expected));
    }
    static void countDown(std::ios_base::event event, std::ios_base&, int) {
        if (event == std::ios_base::erase_event) --liveOwned_;
    }
    void addSource() {
        const std::string bytes = someBytes();
        content_ += bytes;
        if (below(2) == 0) {
            auto* const owned = new Source(bytes, 1 + below(9));
            owned->register_callback(countDown, ++liveOwned_);
            buffer_.setSource(owned, true);
        } else {
            borrowed_.push_back(std::make_unique<Source>(bytes, 1 + below(9)));
            buffer_.setSource(borrowed_.back().get(), false);
        }
    }

    void read() {
        std::string got(someSize(), '?');
        const std::size_t expected = std::min(got.size(), content_.size() - read_);
        if (got.size() == 1) {
            const int byte = buffer_.sbumpc();
            FUZZ_LAW((byte == EOF) == (expected == 0));
            got[0] = static_cast<char>(byte);
        } else {
            FUZZ_LAW(buffer_.sgetn(got.data(), std::ssize(got)) == std::streamsize(expected));
        }
        got.resize(expected);
        FUZZ_LAW(got == content_.substr(read_, expected));
        read_ += expected;
        followReuse();
    }
    /// Without keepMemory reading may have given up blocks, and then holds two at most.
    void followReuse() {
        if (keepMemory_) return;
        const auto position = static_cast<std::size_t>(buffer_.pubseekoff(0, cur, in));
        FUZZ_LAW(position <= read_ - base_);
        if (position == read_ - base_) return;
        base_ = read_ - position;
        put_ = std::max(put_, base_);
        FUZZ_LAW(position <= 2 * std::size_t{grow_});
    }
    void putBack() {
        const bool isPossible = read_ > base_;
        const char c = isPossible && below(2) == 0 ? content_[read_ - 1] : 'z';
        FUZZ_LAW(buffer_.sputbackc(c) == (isPossible ? c : EOF));
        if (isPossible) --read_;
    }
    void getRun() {
        const char* run = nullptr;
        const std::size_t inBlock = grow_ - (read_ - base_) % grow_;
        const std::size_t expected = std::min(inBlock, content_.size() - read_);
        FUZZ_LAW(buffer_.getBuffer(run) == expected);
        FUZZ_LAW(std::string(run, expected) == content_.substr(read_, expected));
        FUZZ_LAW(buffer_.getRemains() == 0u);
        read_ += expected;
    }

    void seek() {
        const auto mode = below(3) == 0 ? in | out : below(2) == 0 ? in : out;
        const auto dir = below(3) == 0 ? std::ios_base::beg : below(2) == 0 ? cur : std::ios_base::end;
        const std::size_t from = dir == std::ios_base::beg   ? base_
                                 : dir == std::ios_base::end ? content_.size()
                                 : mode == in                ? read_
                                                             : put_;
        // Now and then a byte too far at either end.
        const auto target = static_cast<std::streamoff>(below(length() + 3)) - 1;
        const std::streamoff off = target - static_cast<std::streamoff>(from - base_);
        const bool isPossible = target >= 0 && static_cast<std::size_t>(target) <= length();
        FUZZ_LAW(std::streamoff(buffer_.pubseekoff(off, dir, mode)) == (isPossible ? target : -1));
        if (!isPossible) return comparePositions();
        if ((mode & in) != 0) read_ = base_ + static_cast<std::size_t>(target);
        if ((mode & out) != 0) put_ = base_ + static_cast<std::size_t>(target);
    }
    void search() {
        std::string pattern = someBytes().substr(0, 1 + below(2 * std::size_t{grow_}));
        if (below(2) == 0 && read_ < content_.size()) {
            pattern = content_.substr(read_ + below(content_.size() - read_), 1 + below(2 * std::size_t{grow_}));
        }
        const std::size_t found = pattern.empty() ? std::string::npos : content_.find(pattern, read_);
        FUZZ_LAW((buffer_.searchSeek(pattern.data(), static_cast<unsigned>(pattern.size()))) ==
                 (found != std::string::npos));
        if (found != std::string::npos) read_ = found;
        comparePositions();
    }
    void skipLine() {
        buffer_.seekEOL();
        read_ = std::min(content_.find_first_of("\r\n", read_), content_.size());
        read_ = std::min(content_.find_first_not_of("\r\n", read_), content_.size());
        comparePositions();
    }

    void trim() {
        const std::size_t newLength = below(2) == 0 ? below(length() + 2) : below(length() / grow_ + 1) * grow_;
        buffer_.trim(newLength);
        if (newLength >= length()) return;
        content_.resize(base_ + newLength);
        read_ = std::min(read_, content_.size());
        put_ = std::min(put_, content_.size());
    }
    /// Keeps the content of a long run small.
    void shrink() {
        if (length() < 40 * std::size_t{grow_} && below(8) != 0) return;
        buffer_.remove();
        content_.clear();
        base_ = read_ = put_ = 0;
        comparePositions();
    }
    void abandon() {
        // A reader at the end of a block stands in that block until it is told to seek.
        buffer_.pubseekoff(0, cur, in);
        buffer_.abandonBuffer();
        base_ += (read_ - base_) / grow_ * grow_;
        put_ = std::max(put_, base_);
        comparePositions();
    }

    void comparePositions() {
        FUZZ_LAW(std::streamoff(buffer_.pubseekoff(0, cur, in)) == static_cast<std::streamoff>(read_ - base_));
        FUZZ_LAW(std::streamoff(buffer_.pubseekoff(0, cur, out)) == static_cast<std::streamoff>(put_ - base_));
    }
    void compareAll() {
        FUZZ_LAW(buffer_.length() == length());
        FUZZ_LAW(contentOf(buffer_) == content_.substr(base_));
    }
    void copyAll() {
        LumMemStream copy(stream_);
        FUZZ_LAW(contentOf(*copy.rdbuf()) == content_.substr(base_));
        FUZZ_LAW(copy.rdbuf()->getKeepMemory() == keepMemory_);
        FUZZ_LAW(std::streamoff(copy.tellg()) == static_cast<std::streamoff>(read_ - base_));
        FUZZ_LAW(std::streamoff(copy.tellp()) == static_cast<std::streamoff>(put_ - base_));
        comparePositions();
    }

    const unsigned grow_;
    const bool keepMemory_;
    Choices& input_;
    static inline int liveOwned_ = 0;
    std::vector<std::unique_ptr<Source>> borrowed_;
    LumMemStream stream_{nullptr, grow_};
    LumMemStreamBuf& buffer_ = *stream_.rdbuf();
    std::string content_;
    std::size_t base_ = 0;
    std::size_t read_ = 0;
    std::size_t put_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned how = input.byte();
    static constexpr unsigned blocks[] = {1, 4, 5, 8192};  // at 1 the put area is empty from the start
    Driver driver(blocks[how % 4], how < 128, input);
    for (int steps = 0; steps < 4000 && input.size() != 0; ++steps) driver.step();
    driver.finish();
    return 0;
}
