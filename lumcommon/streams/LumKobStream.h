#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/streams/LumKobStreamBuf.h>

#include <istream>

namespace LumCommon {

/// An input stream over a LumKobStreamBuf: the bytes of UTF-16 code units, the lower byte first.
///
///     std::ifstream file("mail.txt", std::ios::binary);
///     LumKobStream in(&file, "iso-2022-jp");
class LUM_API LumKobStream : public std::istream {
public:
    /// The arguments of LumKobStreamBuf. With an unknown charset is_open() is false and the stream has failed.
    LumKobStream(std::istream* source, const char* encoding);
    ~LumKobStream() override;

    LumKobStreamBuf* rdbuf() const noexcept { return const_cast<LumKobStreamBuf*>(&buffer_); }
    bool is_open() const noexcept { return buffer_.is_open(); }

    /// Recognises the charset of a stream from its first 2048 bytes. The stream's error state is cleared and its
    /// position set to the start, whatever the answer.
    /// @param name  gets the charset's name, as init() of LumKobStreamBuf takes it.
    /// @param bom   gets whether there is a byte order mark.
    /// @return false, with both unchanged, when the stream is null or empty or its charset is not recognised.
    static bool detectEncoding(std::istream* source, UnicodeString& name, bool& bom);
    /// The same for the resource that a URI or local path names. False also when it cannot be opened.
    static bool detectEncoding(const char* uri, UnicodeString& name, bool& bom);

private:
    LumKobStreamBuf buffer_;
};

}  // namespace LumCommon
