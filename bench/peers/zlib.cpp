// zlib alone, the least that inflating can cost.

#include "contest/Contender.h"
#include "contest/Deflated.h"

namespace LumBench {
namespace {

class InflateTrial : public Trial {
public:
    explicit InflateTrial(const Input& input) : data_(deflated(input.bytes)) {}
    std::vector<std::size_t> answer() override { return {inflateAll()}; }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        use(inflateAll());
        return {{"", watch.lap()}};
    }

private:
    std::size_t inflateAll() {
        z_stream stream{};
        if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw std::runtime_error("zlib cannot inflate");
        stream.next_in = reinterpret_cast<Bytef*>(data_.data());
        stream.avail_in = static_cast<uInt>(data_.size());
        std::vector<char> piece(inflatedPieceBytes);
        std::size_t seen = 0;
        int status = Z_OK;
        while (status == Z_OK) {
            stream.next_out = reinterpret_cast<Bytef*>(piece.data());
            stream.avail_out = static_cast<uInt>(piece.size());
            status = inflate(&stream, Z_NO_FLUSH);
            seen += sumOf(piece.data(), piece.size() - stream.avail_out);
        }
        inflateEnd(&stream);
        if (status != Z_STREAM_END) throw std::runtime_error("zlib cannot inflate");
        return seen;
    }

    std::string data_;
};

}  // namespace

std::vector<Entry> entries() { return {{"inflate", "zlib", make<InflateTrial>}}; }

}  // namespace LumBench
