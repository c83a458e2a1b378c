#include <lumcommon/core/LumError.h>
#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/detail/OpenInput.h>

#include <cxxabi.h>

#include <utility>

namespace LumCommon::detail {

namespace {

constexpr int gzipFirstByte = 0x1F;

struct SourceOwner {
    std::unique_ptr<std::istream> source;
};

/// Decompresses a stream that it owns.
class GzipInput : private SourceOwner, public LumGzipStream {
public:
    explicit GzipInput(std::unique_ptr<std::istream> compressed)
        : SourceOwner{std::move(compressed)}, LumGzipStream(makeBuffer(*source)) {}

private:
    static LumGzipStreamBuf* makeBuffer(std::istream& compressed) {
        auto* const buffer = new LumGzipStreamBuf(compressed);
        buffer->setChecksTrailer(true);
        return buffer;
    }
};

}  // namespace

std::unique_ptr<std::istream> openInput(const LumUri& resource) {
    std::unique_ptr<std::istream> in(resource.getStream());
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
