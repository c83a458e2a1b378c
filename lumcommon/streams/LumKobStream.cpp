#include <lumcommon/streams/LumKobStream.h>

namespace LumCommon {

LumKobStream::LumKobStream(std::istream* source, const char* encoding)
    : std::istream(nullptr), buffer_(source, encoding) {
    std::istream::rdbuf(&buffer_);
    buffer_.tellFailuresTo(this);
    if (!is_open()) setstate(std::ios_base::failbit);
}

LumKobStream::~LumKobStream() = default;

bool LumKobStream::detectEncoding(std::istream* source, UnicodeString& name, bool& bom) {
    if (!source) return false;
    constexpr unsigned sampleBytes = 2048;
    char sample[sampleBytes];
    CConvContext context;
    context.input = sample;
    try {
        source->read(sample, sampleBytes);
        context.inputAvailable = static_cast<unsigned>(source->gcount());
        source->clear();
        source->seekg(0);
    } catch (...) {
        // The stream is set to throw and cannot be read or sought, so it cannot be read again from the start.
        return false;
    }
    if (context.inputAvailable == 0 || cconvChkEncode(context) != 1) return false;
    name = UnicodeString(context.charsetName);
    bom = context.hasMark;
    return true;
}

}  // namespace LumCommon
