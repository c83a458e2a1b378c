#include "Input.h"

#include <lumcommon/core/LumError.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/uri/LumUri.h>

#include "Output.h"

#include <iostream>

namespace lum {

using namespace LumCommon;

std::unique_ptr<std::istream> openInput(const std::string& file) {
    constexpr unsigned blockBytes = LumMemStreamBuf::defaultGrowBytes;
    if (file == "-") return std::make_unique<LumMemStream>(&std::cin, blockBytes, false);
    std::unique_ptr<std::istream> in(LumUri(fromArgument(file)).getStream());
    if (!in) throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::Unnamed25, fromArgument(file));
    if (in->tellg() != std::istream::pos_type(-1)) return in;
    auto seekable = std::make_unique<LumMemStream>(in.get(), blockBytes, true);
    static_cast<void>(in.release());  // the other stream has it now
    return seekable;
}

}  // namespace lum
