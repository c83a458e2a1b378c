#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/streams/LumKobStreamBuf.h>

#include <istream>

namespace LumCommon {

/// An input stream over a LumKobStreamBuf: it delivers the bytes of UTF-16 code units, low byte first.
///
///     std::ifstream file("mail.txt", std::ios::binary);
///     LumKobStream in(&file, "iso-2022-jp");
class LUM_API LumKobStream : public std::istream {
public:
    /// Takes the arguments of LumKobStreamBuf. If the charset is unknown, is_open() is false and failbit is set.
    LumKobStream(std::istream* source, const char* encoding);
    ~LumKobStream() override;

    /// The buffer; it lives as long as the stream.
    LumKobStreamBuf* rdbuf() const noexcept { return const_cast<LumKobStreamBuf*>(&buffer_); }
    /// Whether a conversion is active; false once the input has ended.
    bool is_open() const noexcept { return buffer_.is_open(); }

    /// Recognises the charset of a stream from its first 2048 bytes. The stream's error state is cleared and its
    /// position set to the start, whatever the result; but one that turns bad stays so, and gives false.
    /// @param name  receives the charset's name, in the form that LumKobStreamBuf::init() takes.
    /// @param bom   receives whether there is a byte order mark.
    /// @return false, with both unchanged, if the stream is null or empty or its charset is not recognised.
    /// Failure: std::bad_alloc.
    /// @param source  may be null.
    static bool detectEncoding(std::istream* source, UnicodeString& name, bool& bom);
    /// The same for the resource that a URI or local path names. Also false if it cannot be opened. The body is in
    /// uri/open/LumKobStreamUri.cpp, because this folder knows no URIs.
    static bool detectEncoding(const char* uri, UnicodeString& name, bool& bom);

private:
    LumKobStreamBuf buffer_;
};

}  // namespace LumCommon
