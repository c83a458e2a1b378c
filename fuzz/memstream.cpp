// Any order of operations on a stream in memory. The first byte chooses the size of a block, the second the sources;
// each triple after them is an operation.
// Law: the stream is what a vector with two positions is.

#include <lumcommon/streams/LumMemStream.h>

#include <sstream>
#include <string>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;

namespace {

/// What LumMemStreamBuf promises, over a string.
struct Model {
    std::string bytes;
    std::size_t get = 0, put = 0;

    void write(const std::string& text) {
        bytes.replace(put, std::min(text.size(), bytes.size() - put), text);
        put += text.size();
    }
    std::string read(std::size_t count) {
        const std::string result = bytes.substr(get, count);
        get += result.size();
        return result;
    }
    void trim(std::size_t length) {
        if (length >= bytes.size()) return;
        bytes.resize(length);
        get = std::min(get, length);
        put = std::min(put, length);
    }
    bool search(const std::string& pattern) {
        const std::size_t at = pattern.empty() ? bytes.npos : bytes.find(pattern, get);
        if (at != bytes.npos) get = at;
        return at != bytes.npos;
    }
    bool skip(const std::string& pattern) {
        const bool isNext = !pattern.empty() && bytes.compare(get, pattern.size(), pattern) == 0;
        if (isNext) get += pattern.size();
        return isNext;
    }
    void seekEol() {
        get = std::min(bytes.find_first_of("\r\n", get), bytes.size());
        get = std::min(bytes.find_first_not_of("\r\n", get), bytes.size());
    }
    std::uint32_t checksum() const {
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            sum += static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << (24 - i % 4 * 8);
        }
        return sum;
    }
};

std::string textFor(unsigned which, unsigned length) {
    static const std::string pattern = "ab\r\n\n\rabaab\r0123456789";
    std::string text;
    while (text.size() < length) text += pattern.substr(which % pattern.size());
    text.resize(length);
    return text;
}

class Run {
public:
    Run(unsigned grow, unsigned sources) : buffer_(nullptr, grow), grow_(grow) {
        for (unsigned i = 0; i < sources % 4; ++i) {
            const std::string text = textFor(sources, sources >> 2);
            buffer_.setSource(new std::istringstream(text), true);
            model_.bytes += text;
        }
    }

    void step(unsigned what, unsigned which, unsigned length) {
        std::string text = textFor(which, length);
        switch (what % 12) {
            case 0:
                settle();  // what is written goes where the sources have been read to
                FUZZ_LAW(buffer_.sputn(text.data(), static_cast<std::streamsize>(length)) ==
                         static_cast<std::streamsize>(length));
                model_.write(text);
                break;
            case 1: {
                std::string got(length, '\0');
                got.resize(static_cast<std::size_t>(buffer_.sgetn(got.data(), static_cast<std::streamsize>(length))));
                FUZZ_LAW(got == model_.read(length));
                break;
            }
            case 2:
                seek(which | length << 8, std::ios::beg, what);
                break;
            case 3:
                seek(static_cast<int>(which) - 128, what % 2 != 0 ? std::ios::cur : std::ios::end, what);
                break;
            case 4:
                buffer_.trim(which * length);
                model_.trim(which * length);
                break;
            case 5:
                text.resize(text.size() % 5);
                FUZZ_LAW(text.empty() ||
                         buffer_.searchSeek(text.data(), static_cast<unsigned>(text.size())) == model_.search(text));
                break;
            case 6:
                text.resize(text.size() % 5);
                FUZZ_LAW(text.empty() ||
                         buffer_.skipSeek(text.data(), static_cast<unsigned>(text.size())) == model_.skip(text));
                break;
            case 7:
                buffer_.seekEOL();
                model_.seekEol();
                break;
            case 8: {
                const char* run = nullptr;
                const std::size_t count = buffer_.getBuffer(run);
                FUZZ_LAW((count == 0) == (model_.get == model_.bytes.size()));
                FUZZ_LAW(std::string(run ? run : "", count) == model_.read(count));
                break;
            }
            case 9: {
                settle();
                std::istringstream in(text);
                FUZZ_LAW(buffer_.copyStream(in, which) == std::min<std::size_t>(which, length));
                model_.write(text.substr(0, which));
                break;
            }
            case 10:
                if (buffer_.sungetc() != EOF) {
                    FUZZ_LAW(model_.get > 0);
                    --model_.get;
                }
                break;
            case 11:
                if (grow_ % 4 == 0) FUZZ_LAW(buffer_.calcOTFTableChecksum() == model_.checksum());
                break;
        }
    }

    void check() {
        FUZZ_LAW(buffer_.length() == model_.bytes.size());
        FUZZ_LAW(static_cast<std::size_t>(buffer_.pubseekoff(0, std::ios::cur, std::ios::in)) == model_.get);
        FUZZ_LAW(static_cast<std::size_t>(buffer_.pubseekoff(0, std::ios::cur, std::ios::out)) == model_.put);
        std::string all;
        buffer_.appendToString(all);
        FUZZ_LAW(all == model_.bytes);
    }

private:
    void settle() { buffer_.length(); }

    void seek(long offset, std::ios::seekdir from, unsigned what) {
        const std::ios::openmode mode = (what & 64u) != 0    ? std::ios::in
                                        : (what & 128u) != 0 ? std::ios::out
                                                             : std::ios::in | std::ios::out;
        std::size_t base = 0;
        if (from == std::ios::end) base = model_.bytes.size();
        if (from == std::ios::cur) base = mode == std::ios::in ? model_.get : model_.put;
        const long target = static_cast<long>(base) + offset;
        const bool isInside = target >= 0 && static_cast<std::size_t>(target) <= model_.bytes.size();
        FUZZ_LAW(buffer_.pubseekoff(offset, from, mode) == (isInside ? std::streamoff{target} : std::streamoff{-1}));
        if (!isInside) return;
        if (mode & std::ios::in) model_.get = static_cast<std::size_t>(target);
        if (mode & std::ios::out) model_.put = static_cast<std::size_t>(target);
    }

    LumMemStreamBuf buffer_;
    Model model_;
    unsigned grow_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned grow = 1 + input.byte() % 40;
    Run run(grow, input.byte());
    for (int steps = 0; steps < 2000 && input.size() > 2; ++steps) {
        const unsigned what = input.byte();
        const unsigned which = input.byte();
        run.step(what, which, input.byte());
        if (steps % 16 == 0) run.check();
    }
    run.check();
    return 0;
}
