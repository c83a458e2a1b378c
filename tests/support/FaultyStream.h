#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <istream>
#include <map>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace LumTest {

/// What goes wrong at one call of a stream's buffer, a read or a seek.
struct Fault {
    enum Kind { END, THROW, NO_SEEK };
    Kind kind = END;
    unsigned call = 0;             // counted from 1; 0 for none
    bool isLasting = false;        // all calls after it go wrong too
    bool doesThrowItself = false;  // the stream's own exception mask is set
};

/// A seekable stream over bytes, read 256 at a time, with such a fault.
class FaultyStream : public std::istream {
public:
    FaultyStream(const std::string& bytes, const Fault& fault) : std::istream(nullptr), buffer_(bytes, fault) {
        rdbuf(&buffer_);
        if (fault.doesThrowItself) exceptions(badbit | failbit | eofbit);
    }
    unsigned getCalls() const { return buffer_.calls; }

private:
    class Buffer : public std::streambuf {
    public:
        Buffer(const std::string& bytes, const Fault& fault) : bytes_(bytes), fault_(fault) {}
        unsigned calls = 0;

    private:
        bool isFaulty(bool isSeek) {
            ++calls;
            if (fault_.call == 0 || calls < fault_.call || (calls > fault_.call && !fault_.isLasting)) return false;
            if (fault_.kind == Fault::THROW) throw std::runtime_error("the disk is gone");
            return isSeek == (fault_.kind == Fault::NO_SEEK);
        }
        std::size_t position() const { return start_ + static_cast<std::size_t>(gptr() - eback()); }
        int_type underflow() override {
            start_ = position();
            setg(nullptr, nullptr, nullptr);
            if (start_ >= bytes_.size() || isFaulty(false)) return traits_type::eof();
            char* const begin = bytes_.data() + start_;
            setg(begin, begin, begin + std::min<std::size_t>(256, bytes_.size() - start_));
            return traits_type::to_int_type(*begin);
        }
        pos_type seekoff(off_type offset, std::ios::seekdir from, std::ios::openmode) override {
            if (isFaulty(true)) return pos_type(off_type(-1));
            const std::size_t base = from == std::ios::cur ? position() : from == std::ios::end ? bytes_.size() : 0;
            const off_type target = static_cast<off_type>(base) + offset;
            if (target < 0 || target > static_cast<off_type>(bytes_.size())) return pos_type(off_type(-1));
            start_ = static_cast<std::size_t>(target);
            setg(nullptr, nullptr, nullptr);
            return target;
        }
        pos_type seekpos(pos_type target, std::ios::openmode mode) override {
            return seekoff(target, std::ios::beg, mode);
        }

        std::string bytes_;
        Fault fault_;
        std::size_t start_ = 0;  // of the get area in the bytes
    };

    Buffer buffer_;
};

/// The law of reading, for a fault at each call that `use` makes, of each kind: nothing is thrown, and everything that
/// `use` still gets is what it gets otherwise, or the beginning of that. The caller then proves that what it read with
/// can be used again.
/// @param use  (std::istream&) gives by their names all things that it could read.
template <class Use>
void forEveryFault(const std::string& bytes, Use use) {
    FaultyStream whole(bytes, {});
    const std::map<std::string, std::string> right = use(whole);
    ASSERT_GT(right.size(), 1u);
    for (unsigned kinds = 0; kinds < 12; ++kinds) {
        const Fault::Kind kind = static_cast<Fault::Kind>(kinds % 3);
        for (unsigned call = 1; call <= whole.getCalls() && !testing::Test::HasFailure(); ++call) {
            SCOPED_TRACE("fault " + std::to_string(kinds) + " at call " + std::to_string(call));
            FaultyStream in(bytes, {kind, call, kinds / 3 % 2 == 0, kinds >= 6});
            for (const auto& [name, content] : use(in)) {
                ASSERT_TRUE(right.contains(name)) << name;
                EXPECT_EQ(content, right.at(name).substr(0, content.size())) << name;
            }
        }
    }
}

}  // namespace LumTest
