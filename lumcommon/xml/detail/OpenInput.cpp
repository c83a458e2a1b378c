#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/detail/OpenInput.h>

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
        : SourceOwner{std::move(compressed)}, LumGzipStream(*source) {}
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

}  // namespace LumCommon::detail
