#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/streams/LumKobStream.h>

#include <new>

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
        if (source->bad()) return false;  // a shorter sample could be taken for another charset
        context.inputAvailable = static_cast<unsigned>(source->gcount());
        source->clear();
        source->seekg(0);
    } catch (...) {
        // The stream is set to throw and cannot be read or sought, so it cannot be read again from the start.
        return false;
    }
    if (context.inputAvailable == 0) return false;
    const int result = cconvChkEncode(context);
    if (result == cconvOutOfMemory) throw std::bad_alloc();
    if (result != 1) return false;
    name = detail::fromUtf8(context.charsetName);
    bom = context.hasMark;
    return true;
}

}  // namespace LumCommon
