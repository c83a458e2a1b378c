#include "Input.h"

#include <lumcommon/core/LumError.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/uri/LumUri.h>

#include "Output.h"

#include <filesystem>
#include <iostream>

namespace lum {

using namespace LumCommon;

namespace {

UnicodeString pathToUri(const std::string& path) { return LumUri::fromLocalPath(path).toString(); }

}  // namespace

UnicodeString toUri(const std::string& file) {
    std::error_code error;
    return std::filesystem::exists(file, error) ? pathToUri(file) : fromArgument(file);
}

UnicodeString toOutputUri(const std::string& file) {
    const bool isPlain = file.find_first_of("% :") == std::string::npos;  // so that messages show what was typed
    return isPlain || file.starts_with("file:") ? fromArgument(file) : pathToUri(file);
}

void failToOpen(const UnicodeString& what) {
    throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::Unnamed25, what);
}

void failToOpen(const std::string& what) { failToOpen(fromArgument(what)); }

std::unique_ptr<std::istream> openInput(const std::string& file) {
    constexpr unsigned blockBytes = LumMemStreamBuf::defaultGrowBytes;
    if (file == "-") return std::make_unique<LumMemStream>(&std::cin, blockBytes, false);
    std::unique_ptr<std::istream> in(LumUri(toUri(file)).getStream());
    if (!in) failToOpen(file);
    if (in->tellg() != std::istream::pos_type(-1)) return in;
    auto seekable = std::make_unique<LumMemStream>(nullptr, blockBytes);
    seekable->rdbuf()->setSource(in.release(), true);
    return seekable;
}

}  // namespace lum
