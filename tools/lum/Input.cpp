#include "Input.h"

#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/uri/LumUri.h>

#include "Output.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace LumTool {

using namespace LumCommon;

UnicodeString toUri(const std::string& file) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (!std::filesystem::exists(status)) {
        if (file.find_first_of("%:?#") == std::string::npos) failToOpen(file, error.message());  // nor is it a URI
        return fromArgument(file);
    }
    if (std::filesystem::is_directory(status)) failToOpen(file, "it is a folder");
    if (access(file.c_str(), R_OK) != 0) failToOpen(file, std::generic_category().message(errno));
    return pathToUri(file);
}

UnicodeString toOutputUri(const std::string& file) {
    std::error_code error;
    if (!file.starts_with("file:")) {
        const std::filesystem::path path(file), folder = path.parent_path();
        if (std::filesystem::is_directory(path, error)) failToOpen(file, "it is a folder");
        if (!folder.empty() && !std::filesystem::is_directory(folder, error)) {
            failToOpen(file, "there is no folder " + folder.string());
        }
    }
    const bool isPlain = file.find_first_of("% :") == std::string::npos;  // so that messages show what was typed
    return isPlain || file.starts_with("file:") ? fromArgument(file) : pathToUri(file);
}

void failToOpen(const std::string& what, const std::string& reason) {
    try {
        throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::Unnamed25, fromArgument(what));
    } catch (const LumError& error) {
        throw ExplainedError{error, reason};
    }
}

void failBecause(const std::string& message, const std::string& reason) {
    const auto code = static_cast<std::uint16_t>(LumErrorCodeIO::CannotOpen);
    throw ExplainedError{LumError(code, fromArgument(message), {}, -1, -1, {}), reason};
}

std::string whatElse(std::istream& in) {
    const auto rewound = [&in]() -> std::istream& {
        in.clear();
        in.seekg(0);
        return in;
    };
    if (rewound().peek() == std::istream::traits_type::eof()) return "it is empty";
    if (LumZipFile::isZipFile(&rewound())) return "it is a zip archive";
    if (OleCompFile::isOLEUri(rewound())) return "it is a compound file";
    return {};
}

void withReasons(const std::string& file, const std::function<void()>& work) {
    try {
        work();
    } catch (const LumError& error) {
        std::string reason;
        constexpr unsigned parserFamily = 0x18;
        std::error_code ignored;
        const bool isEnd = error.code == static_cast<unsigned>(LumErrorCodeIO::UnexpectedEnd);
        const bool isRead = isEnd || error.code >> 8 == parserFamily;
        if (isRead && std::filesystem::is_regular_file(file, ignored)) {
            std::ifstream in(file, std::ios::binary);
            reason = whatElse(in);
        } else if (isEnd && file == "-") {
            reason = "it is empty";
        }
        throw ExplainedError{error, reason};
    }
}

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

}  // namespace LumTool
