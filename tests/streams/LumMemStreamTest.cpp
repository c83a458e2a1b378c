// A plain string and two positions are the model of a memory stream; random operations must keep both equal. What they
// do not reach follows: sources that fail, and copies.

#include <lumcommon/streams/LumMemStream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/PieceStream.h"

using LumCommon::LumMemStream;
using LumCommon::LumMemStreamBuf;
using LumTest::PieceStream;

namespace {

constexpr auto in = std::ios_base::in;
constexpr auto out = std::ios_base::out;
constexpr auto cur = std::ios_base::cur;

std::string contentOf(LumMemStreamBuf& buffer) {
    std::string content;
    buffer.appendToString(content);
    return content;
}

/// Drives one buffer and its model. All positions of the model are absolute; those of the buffer begin at `base`, which
/// rises when blocks are abandoned or reused.
class Driver {
public:
    Driver(unsigned growBytes, bool keepMemory, unsigned seed)
        : grow_(growBytes), keepMemory_(keepMemory), random_(seed) {
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
        EXPECT_EQ(liveOwned_, 0) << "an owned source outlives its end";
        EXPECT_EQ(reuses_ > 0, !keepMemory_) << "the steps do not reach what they are made for";
    }

private:
    std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }
    std::size_t someSize() {
        const std::size_t kind = below(8);
        return kind == 0 ? 1 : kind < 3 ? below(3) * grow_ : below(2 * std::size_t{grow_} + 3);
    }
    std::string someBytes() {
        std::string bytes(someSize(), 'a');
        for (char& c : bytes) c = "aab\r\n"[below(5)];
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
            ASSERT_EQ(buffer_.sputc(bytes[0]), bytes[0]);
        } else {
            ASSERT_EQ(buffer_.sputn(bytes.data(), std::ssize(bytes)), std::ssize(bytes));
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
        PieceStream source(bytes, 1 + below(9));
        const std::size_t count = someSize();
        const std::size_t expected = std::min(count, bytes.size());
        ASSERT_EQ(buffer_.copyStream(source, count), expected);
        put(std::string_view(bytes).substr(0, expected));
    }
    static void countDown(std::ios_base::event event, std::ios_base&, int) {
        if (event == std::ios_base::erase_event) --liveOwned_;
    }
    void addSource() {
        const std::string bytes = someBytes();
        content_ += bytes;
        if (below(2) == 0) {
            auto* const owned = new PieceStream(bytes, 1 + below(9));
            owned->register_callback(countDown, ++liveOwned_);
            buffer_.setSource(owned, true);
        } else {
            borrowed_.push_back(std::make_unique<PieceStream>(bytes, 1 + below(9)));
            buffer_.setSource(borrowed_.back().get(), false);
        }
    }

    void read() {
        std::string got(someSize(), '?');
        const std::size_t expected = std::min(got.size(), content_.size() - read_);
        if (got.size() == 1) {
            const int byte = buffer_.sbumpc();
            ASSERT_EQ(byte == EOF, expected == 0);
            got[0] = static_cast<char>(byte);
        } else {
            ASSERT_EQ(buffer_.sgetn(got.data(), std::ssize(got)), std::streamsize(expected));
        }
        got.resize(expected);
        ASSERT_EQ(got, content_.substr(read_, expected));
        read_ += expected;
        followReuse();
    }
    /// Without keepMemory reading may have given up blocks, and then holds two at most.
    void followReuse() {
        if (keepMemory_) return;
        const auto position = static_cast<std::size_t>(buffer_.pubseekoff(0, cur, in));
        ASSERT_LE(position, read_ - base_);
        if (position == read_ - base_) return;
        base_ = read_ - position;
        ++reuses_;
        put_ = std::max(put_, base_);
        ASSERT_LE(position, 2 * std::size_t{grow_}) << "more than two blocks are kept";
    }
    void putBack() {
        const bool isPossible = read_ > base_;
        const char c = isPossible && below(2) == 0 ? content_[read_ - 1] : 'z';
        ASSERT_EQ(buffer_.sputbackc(c), isPossible ? c : EOF);
        if (isPossible) --read_;
    }
    void getRun() {
        const char* run = nullptr;
        const std::size_t inBlock = grow_ - (read_ - base_) % grow_;
        const std::size_t expected = std::min(inBlock, content_.size() - read_);
        ASSERT_EQ(buffer_.getBuffer(run), expected);
        ASSERT_EQ(std::string(run, expected), content_.substr(read_, expected));
        ASSERT_EQ(buffer_.getRemains(), 0u);
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
        ASSERT_EQ(std::streamoff(buffer_.pubseekoff(off, dir, mode)), isPossible ? target : -1);
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
        ASSERT_EQ(buffer_.searchSeek(pattern.data(), static_cast<unsigned>(pattern.size())),
                  found != std::string::npos);
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
        ASSERT_EQ(std::streamoff(buffer_.pubseekoff(0, cur, in)), static_cast<std::streamoff>(read_ - base_));
        ASSERT_EQ(std::streamoff(buffer_.pubseekoff(0, cur, out)), static_cast<std::streamoff>(put_ - base_));
    }
    void compareAll() {
        ASSERT_EQ(buffer_.length(), length());
        ASSERT_EQ(contentOf(buffer_), content_.substr(base_));
    }
    void copyAll() {
        LumMemStream copy(stream_);
        ASSERT_EQ(contentOf(*copy.rdbuf()), content_.substr(base_));
        ASSERT_EQ(copy.rdbuf()->getKeepMemory(), keepMemory_);
        ASSERT_EQ(std::streamoff(copy.tellg()), static_cast<std::streamoff>(read_ - base_));
        ASSERT_EQ(std::streamoff(copy.tellp()), static_cast<std::streamoff>(put_ - base_));
        comparePositions();
    }

    const unsigned grow_;
    const bool keepMemory_;
    std::mt19937 random_;
    static inline int liveOwned_ = 0;
    std::vector<std::unique_ptr<PieceStream>> borrowed_;
    LumMemStream stream_{nullptr, grow_};
    LumMemStreamBuf& buffer_ = *stream_.rdbuf();
    std::string content_;
    int reuses_ = 0;
    std::size_t base_ = 0;
    std::size_t read_ = 0;
    std::size_t put_ = 0;
};

TEST(LumMemStreamModel, agreesWithAPlainString) {
    const struct {
        const char* fault;
        unsigned growBytes;
        bool keepMemory;
    } cases[] = {
        {"the smallest block: its put area is empty from the start", 1, true},
        {"block ends met in every operation", 4, true},
        {"reuse of blocks under areas that are still in use", 4, false},
        {"the size that the library uses", 8192, true},
        {"the same with reuse", 8192, false},
    };
    for (const auto& c : cases) {
        for (int i = 0; i < (c.growBytes == 8192 ? 2 : 5); ++i) {
            const unsigned seed = 1000u * c.growBytes + static_cast<unsigned>(i);
            SCOPED_TRACE(testing::Message() << c.fault << "; block " << c.growBytes << ", seed " << seed);
            Driver driver(c.growBytes, c.keepMemory, seed);
            for (int step = 0; step < (c.growBytes == 8192 ? 1000 : 3000); ++step) {
                SCOPED_TRACE(testing::Message() << "step " << step);
                driver.step();
                if (testing::Test::HasFatalFailure()) return;
            }
            driver.finish();
        }
    }
}

TEST(LumMemStreamBuf, readsASourceOnlyWhenItsBytesAreNeeded) {
    PieceStream first("0123456789");
    PieceStream second("abc");
    LumMemStreamBuf buffer(&first, 4, false);
    buffer.setSource(&second, false);
    buffer.setSource(nullptr, true);
    EXPECT_EQ(first.getBuffer().getDeliveredBytes(), 0u) << "construction reads";
    EXPECT_EQ(buffer.sbumpc(), '0');
    EXPECT_EQ(second.getBuffer().getDeliveredBytes(), 0u) << "the second is read before the first has ended";
    EXPECT_EQ(contentOf(buffer), "0123456789abc");
}

TEST(LumMemStreamBuf, searchesHostileTextInOnePass) {
    // Compared afresh at each candidate, this takes 2^40 steps.
    LumMemStreamBuf buffer(nullptr, 8192, false);
    const std::string text(1 << 20, 'a');
    buffer.sputn(text.data(), static_cast<std::streamsize>(text.size()));
    const std::string pattern = text + 'b';
    EXPECT_FALSE(buffer.searchSeek(pattern.data(), static_cast<unsigned>(pattern.size())));
    EXPECT_TRUE(buffer.searchSeek(text.data(), static_cast<unsigned>(text.size())));
}

TEST(LumMemStreamBuf, aSourceThatFailsHasEnded) {
    for (const bool throwing : {false, true}) {
        SCOPED_TRACE(throwing ? "lets the source's exception out" : "asks a failed source for ever");
        auto failing = std::make_unique<PieceStream>("0123456789", 2);
        failing->getBuffer().failAfter(6);
        if (throwing) failing->exceptions(std::ios_base::badbit | std::ios_base::eofbit);
        PieceStream next("next");
        LumMemStreamBuf buffer(failing.release(), 4, true);
        buffer.setSource(&next, false);
        EXPECT_EQ(contentOf(buffer), "0123next") << "what came with the failure is not known to be right";
    }
}

TEST(LumMemStream, copyDoesNotDisturbTheOriginal) {
    LumMemStream original(nullptr, 4);
    original << "abcdef";
    std::string all;
    original >> all;  // meets the end
    ASSERT_TRUE(original.eof() && !original.fail());
    LumMemStream copy(original);
    EXPECT_EQ(contentOf(*copy.rdbuf()), "abcdef");
    EXPECT_FALSE(original.fail()) << "asking for its position has made the original fail";

    original.setstate(std::ios_base::failbit);
    LumMemStream copyOfFailed(original);
    EXPECT_EQ(std::streamoff(copyOfFailed.tellg()), 0);
    EXPECT_EQ(std::streamoff(copyOfFailed.tellp()), 6);
    EXPECT_EQ(original.rdbuf()->sgetc(), EOF) << "the original's position has moved";
}

}  // namespace
