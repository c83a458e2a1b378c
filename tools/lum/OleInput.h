#pragma once

#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/streams/JZIOobj.h>

#include <istream>
#include <memory>
#include <string>

namespace LumTool {

/// A compound file and the stream that it is read from.
class OleInput {
public:
    static constexpr const char* help = "A compound file: a file, a URI, or - for standard input";

    /// @param file  as for openInput().
    /// Failure: ExplainedError 0x1003, also if it is not a compound file.
    explicit OleInput(const std::string& file);

    LumCommon::OleCompFile* operator->() noexcept { return &file_; }
    LumCommon::OleCompFile& operator*() noexcept { return file_; }

private:
    std::unique_ptr<std::istream> in_;
    LumCommon::JZStreamIOobj io_;
    LumCommon::OleCompFile file_;
};

}  // namespace LumTool
