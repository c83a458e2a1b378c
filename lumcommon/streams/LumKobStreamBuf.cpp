#include <lumcommon/streams/LumKobStream.h>
#include <lumcommon/streams/LumKobStreamBuf.h>
#include <lumcommon/streams/detail/CharsetNames.h>
#include <lumcommon/streams/detail/StreamReading.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace LumCommon {

const char* LumKobStreamBuf::getLibraryName(const char* encoding) noexcept {
    const char* const name = encoding ? detail::findLibraryCharset(encoding) : nullptr;
    return name ? name : encoding;
}

LumKobStreamBuf::LumKobStreamBuf(std::istream* in, const char* encoding)
    : LumRefillStreamBuf(BLOCK_BYTES, PUT_BACK_BYTES), in_(in) {
    if (encoding) {
        init(encoding, false);
        return;
    }
    UnicodeString detected;
    bool bom = false;
    if (!LumKobStream::detectEncoding(in, detected, bom)) return;
    std::string name;
    init(detected.toUTF8String(name).c_str(), bom);
}

LumKobStreamBuf::~LumKobStreamBuf() { term(); }

bool LumKobStreamBuf::init(const char* encoding, bool bom) {
    term();
    CConvOptions options;
    options.sourceHasMark = bom;
    if (cconvInitConvert(context_, options, "UTF-16") != 0 ||
        cconvChgCharset(context_, options, getLibraryName(encoding)) != 0) {
        term();
        return false;
    }
    allocateBlock();
    input_ = std::make_unique_for_overwrite<char[]>(BLOCK_BYTES);
    context_.input = input_.get();
    context_.inputConsumed = context_.inputAvailable = 0;
    context_.isLastInput = false;
    hasSourceFailed_ = false;
    forgetFailure();
    isOpen_ = true;
    return true;
}

void LumKobStreamBuf::term() noexcept {
    cconvTermConvert(context_);
    input_.reset();
    isOpen_ = false;
}

std::size_t LumKobStreamBuf::refill(std::span<char> room) {
    if (!input_) return 0;
    if (convert(room)) return context_.outputProduced;
    term();
    if (hasSourceFailed_) fail();
    return 0;
}

/// Moves what has not been consumed to the start of the input buffer and fills up the rest.
void LumKobStreamBuf::fill() noexcept {
    std::size_t filled = context_.inputAvailable - context_.inputConsumed;
    std::memmove(input_.get(), input_.get() + context_.inputConsumed, filled);
    try {
        if (!in_ || !in_->good() || !in_->rdbuf()) context_.isLastInput = true;
        while (!context_.isLastInput && filled < BLOCK_BYTES) {
            // Take only what is already buffered: a source that throws in the middle of a read cannot say how much it
            // had delivered.
            std::streambuf& source = *in_->rdbuf();
            if (traits_type::eq_int_type(source.sgetc(), traits_type::eof())) {
                context_.isLastInput = true;
                in_->setstate(std::ios_base::eofbit);
            } else {
                const auto ready = std::clamp(source.in_avail(), std::streamsize{1},
                                              static_cast<std::streamsize>(BLOCK_BYTES - filled));
                filled += static_cast<std::size_t>(source.sgetn(input_.get() + filled, ready));
            }
        }
    } catch (...) {
        // A source that throws ends there.
        context_.isLastInput = true;
        hasSourceFailed_ = true;
    }
    if (context_.isLastInput && in_ && detail::isBroken(*in_)) hasSourceFailed_ = true;
    context_.inputConsumed = 0;
    context_.inputAvailable = static_cast<unsigned>(filled);
}

/// False when nothing more will be produced. A block that holds only shift sequences produces nothing without being the
/// end.
bool LumKobStreamBuf::convert(std::span<char> room) noexcept {
    context_.output = room.data();
    context_.outputCapacity = static_cast<unsigned>(room.size());
    do {
        fill();
        if (cconvConvert(context_) != 0 || context_.status == 1) return false;
    } while (context_.outputProduced == 0);
    return true;
}

}  // namespace LumCommon
