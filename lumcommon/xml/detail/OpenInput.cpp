#include <lumcommon/core/LumError.h>
#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/detail/OpenInput.h>

#include <cxxabi.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace LumCommon::detail {

namespace {

constexpr int gzipFirstByte = 0x1F;

/// Passes on what a stream has to give, and counts it.
class MeteredBuf : public std::streambuf {
public:
    explicit MeteredBuf(std::unique_ptr<std::istream> source) : source_(std::move(source)) {}

    void meterBy(InputMeter& meter, InputMeter::Account& account) {
        meter_ = &meter;
        account_ = &account;
        account.compressedBytes = count_;
    }

private:
    static constexpr std::size_t putBackBytes = 16;  // more than looking for a header puts back
    static constexpr std::size_t blockBytes = 4096;

    int_type underflow() override {
        std::streambuf* const buffer = source_->rdbuf();
        if (!buffer || source_->bad() || buffer->sgetc() == traits_type::eof()) return traits_type::eof();
        const std::size_t available = static_cast<std::size_t>(std::max<std::streamsize>(buffer->in_avail(), 1));
        std::size_t most = std::min(available, blockBytes);
        if (meter_) most = meter_->compressedRoom(*account_, most);
        char* const start = block_ + putBackBytes;
        const auto kept = std::min<std::ptrdiff_t>(putBackBytes, gptr() - eback());
        if (kept > 0) std::memmove(start - kept, gptr() - kept, static_cast<std::size_t>(kept));
        const std::streamsize count = most ? buffer->sgetn(start, static_cast<std::streamsize>(most)) : 0;
        setg(start - kept, start, start + std::max<std::streamsize>(count, 0));
        if (count <= 0) return traits_type::eof();
        count_ += static_cast<std::uint64_t>(count);
        if (meter_) meter_->addCompressed(*account_, static_cast<std::size_t>(count));
        return traits_type::to_int_type(*start);
    }

    std::unique_ptr<std::istream> source_;
    InputMeter* meter_ = nullptr;
    InputMeter::Account* account_ = nullptr;
    std::uint64_t count_ = 0;
    char block_[putBackBytes + blockBytes];
};

struct Compressed {
    explicit Compressed(std::unique_ptr<std::istream> compressed) : buffer(std::move(compressed)) {}

    MeteredBuf buffer;
    std::istream source{&buffer};
};

/// Decompresses a stream that it owns.
class GzipInput final : private Compressed, public LumGzipStream, public InflatingInput {
public:
    explicit GzipInput(std::unique_ptr<std::istream> compressed)
        : Compressed(std::move(compressed)), LumGzipStream(source) {}

    void meterBy(InputMeter& meter, InputMeter::Account& account) override { buffer.meterBy(meter, account); }
};

}  // namespace

std::unique_ptr<std::istream> openInput(const LumUri& resource) {
    std::unique_ptr<std::istream> in(resource.getStream());
    if (in) in->exceptions(std::ios::goodbit);  // a resolver may have set it to throw
    if (!in || in->peek() != gzipFirstByte) {
        // Looking at an empty stream must leave no more trace than opening it.
        if (in && in->eof()) in->clear();
        return in;
    }
    return std::make_unique<GzipInput>(std::move(in));
}

void checkInput(std::istream& in) {
    try {
        if (in.good()) in.peek();
    } catch (const abi::__forced_unwind&) {
        throw;  // the thread is being cancelled
    } catch (...) {
        // A stream that is set to throw tells by its state too what is wrong.
    }
    if (in.fail() && !in.eof()) {
        throwCommonError(LumErrorCodeIO::InputFailed, LumCommonErrorSource::ParserCheckStream);
    }
    if (in.eof()) throwCommonError(LumErrorCodeIO::UnexpectedEnd, LumCommonErrorSource::ParserCheckStream);
}

}  // namespace LumCommon::detail
