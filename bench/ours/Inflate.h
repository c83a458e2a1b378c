#pragma once

#include <lumcommon/streams/LumInflaterStream.h>

#include <vector>

#include "contest/Contender.h"
#include "contest/Deflated.h"

namespace LumBench {

class InflateTrial : public Trial {
public:
    explicit InflateTrial(const Input& input) : data_(deflated(input.bytes)) {}
    std::vector<std::size_t> answer() override { return {inflate()}; }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        use(inflate());
        return {{"", watch.lap()}};
    }

private:
    std::size_t inflate() const {
        LumCommon::LumInflaterStream in(data_.data(), data_.size(), false);
        std::vector<char> piece(inflatedPieceBytes);
        std::size_t seen = 0;
        while (in) {
            in.read(piece.data(), static_cast<std::streamsize>(piece.size()));
            seen += sumOf(piece.data(), static_cast<std::size_t>(in.gcount()));
        }
        return seen;
    }

    std::string data_;
};

}  // namespace LumBench
