#include <lumcommon/streams/cconv.h>
#include <lumcommon/streams/detail/CharsetConversion.h>
#include <lumcommon/streams/detail/CharsetSample.h>

#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace LumCommon {

int cconvInitConvert(CConvContext& context, const CConvOptions& options, const char* toCharset) noexcept {
    cconvTermConvert(context);
    context.status = 0;
    try {
        context.conversion = new detail::CharsetConversion;
        return context.conversion->setTarget(toCharset, options) ? 0 : -1;
    } catch (const std::bad_alloc&) {
        return cconvOutOfMemory;
    }
}

int cconvChgCharset(CConvContext& context, const CConvOptions& options, const char* fromCharset) noexcept {
    try {
        return context.conversion && context.conversion->setSource(fromCharset, options) ? 0 : -1;
    } catch (const std::bad_alloc&) {
        return cconvOutOfMemory;
    }
}

int cconvConvert(CConvContext& context) noexcept {
    if (context.conversion && context.conversion->run(context)) return 0;
    context.status = 1;
    return -1;
}

int cconvChkEncode(CConvContext& context) noexcept {
    context.charsetName[0] = '\0';
    context.hasMark = false;
    if (!context.input) return 0;
    detail::CharsetGuess guess;
    try {
        guess = detail::guessCharset({context.input, context.inputAvailable});
    } catch (const std::bad_alloc&) {
        return cconvOutOfMemory;
    }
    if (!guess.name || std::strlen(guess.name) >= sizeof context.charsetName) return 0;
    std::strcpy(context.charsetName, guess.name);
    context.hasMark = guess.hasMark;
    return 1;
}

void cconvTermConvert(CConvContext& context) noexcept {
    const std::unique_ptr<detail::CharsetConversion> ended(std::exchange(context.conversion, nullptr));
}

}  // namespace LumCommon
