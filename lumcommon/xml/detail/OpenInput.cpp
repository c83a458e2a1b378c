#include <lumcommon/core/LumError.h>
#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/streams/detail/StreamReading.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/open/detail/OpenResource.h>
#include <lumcommon/xml/detail/OpenInput.h>

#include <cxxabi.h>

#include <algorithm>
#include <utility>

namespace LumCommon::detail {

namespace {

constexpr int gzipFirstByte = 0x1F;

/// Passes on what a stream has to give, and counts it.
class MeteredBuf : public LumRefillStreamBuf {
public:
    explicit MeteredBuf(std::unique_ptr<std::istream> source)
        : LumRefillStreamBuf(refillBytes, putbackBytes), source_(std::move(source)) {
        allocateBlock();
    }

    void meterBy(InputMeter& meter, InputMeter::Account& account) {
        meter_ = &meter;
        account_ = &account;
        account.compressedBytes = count_;
    }

private:
    std::size_t refill(std::span<char> room) override {
        std::streambuf* const buffer = source_->rdbuf();
        std::streamsize count = 0;
        if (buffer && !source_->bad() && buffer->sgetc() != traits_type::eof()) {
            const auto available = static_cast<std::size_t>(std::max<std::streamsize>(buffer->in_avail(), 1));
            std::size_t most = std::min(available, room.size());
            if (meter_) most = meter_->compressedRoom(*account_, most);
            if (most == 0) return 0;
            count = buffer->sgetn(room.data(), static_cast<std::streamsize>(most));
        }
        if (count <= 0) {
            if (isBroken(*source_)) fail();
            return 0;
        }
        count_ += static_cast<std::uint64_t>(count);
        if (meter_) meter_->addCompressed(*account_, static_cast<std::size_t>(count));
        return static_cast<std::size_t>(count);
    }

    std::unique_ptr<std::istream> source_;
    InputMeter* meter_ = nullptr;
    InputMeter::Account* account_ = nullptr;
    std::uint64_t count_ = 0;
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
        : Compressed(std::move(compressed)), LumGzipStream(makeBuffer(source)) {}

    void meterBy(InputMeter& meter, InputMeter::Account& account) override { buffer.meterBy(meter, account); }

private:
    static LumGzipStreamBuf* makeBuffer(std::istream& compressed) {
        auto* const buffer = new LumGzipStreamBuf(compressed);
        buffer->setChecksTrailer(true);
        return buffer;
    }
};

}  // namespace

std::unique_ptr<std::istream> openInput(const LumUri& resource, bool& isRefused) {
    std::unique_ptr<std::istream> in = openResource(resource, isRefused);
    if (in) in->exceptions(std::ios::goodbit);  // a resolver may have set it to throw
    if (!in || in->peek() != gzipFirstByte) {
        // Looking at an empty stream must leave no more trace than opening it.
        if (in && in->eof() && !in->bad()) in->clear();
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
    if (in.bad() || (in.fail() && !in.eof())) {
        throwCommonError(LumErrorCodeIO::InputFailed, LumCommonErrorSource::ParserCheckStream);
    }
    if (in.eof()) throwCommonError(LumErrorCodeIO::UnexpectedEnd, LumCommonErrorSource::ParserCheckStream);
}

}  // namespace LumCommon::detail
