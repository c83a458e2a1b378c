#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/streams/LumKobStream.h>
#include <lumcommon/streams/LumKobStreamBuf.h>
#include <lumcommon/streams/detail/CharsetNames.h>
#include <lumcommon/streams/detail/StreamReading.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <utility>

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
    init(detail::utf8Of(detected).c_str(), bom);
}

LumKobStreamBuf::~LumKobStreamBuf() { term(); }

bool LumKobStreamBuf::init(const char* encoding, bool bom) {
    term();
    allocateBlock();
    auto input = std::make_unique_for_overwrite<char[]>(BLOCK_BYTES);
    CConvOptions options;
    options.sourceHasMark = bom;
    int result = cconvInitConvert(context_, options, "UTF-16");
    if (result == 0) result = cconvChgCharset(context_, options, getLibraryName(encoding));
    if (result != 0) {
        term();
        if (result == cconvOutOfMemory) throw std::bad_alloc();
        return false;
    }
    input_ = std::move(input);
    context_.input = input_.get();
    context_.inputConsumed = context_.inputAvailable = 0;
    context_.isLastInput = false;
    isCutShort_ = false;
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
    if (isCutShort_) fail();
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
        isCutShort_ = true;
    }
    if (context_.isLastInput && in_ && detail::isBroken(*in_)) isCutShort_ = true;
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
        if (cconvConvert(context_) != 0) isCutShort_ = true;
        if (context_.status == 1) return false;
    } while (context_.outputProduced == 0);
    return true;
}

}  // namespace LumCommon
