#pragma once

#include <lumcommon/core/Text.h>

#include <bit>
#include <istream>
#include <streambuf>

namespace LumCommon::detail {

/// A stream over the bytes of a string's UTF-16 units, which are not copied. The string must outlive it and stay
/// unchanged.
class StringInput : public std::istream {
public:
    explicit StringInput(const UnicodeString& text) : std::istream(nullptr), buffer_(text) { rdbuf(&buffer_); }

    /// The encoding to name for a string. "UTF-16" lets the parser detect the byte order, which works for a string that
    /// begins with "<" or a byte order mark; for any other, such as one with leading white space, the order is named.
    static UnicodeString encodingOf(const UnicodeString& text) {
        const char16_t first = text.isEmpty() ? u'<' : text[0];
        if (first == u'<' || first == u'\uFEFF') return u"UTF-16";
        return std::endian::native == std::endian::little ? u"UTF-16LE" : u"UTF-16BE";
    }

private:
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(const UnicodeString& text) {
            // Stream buffers take pointers to non-const char, although nothing is ever written through this one.
            char* const bytes = const_cast<char*>(reinterpret_cast<const char*>(text.getBuffer()));
            setg(bytes, bytes, bytes + (bytes ? text.length() : 0) * sizeof(char16_t));
        }
    };

    Buffer buffer_;
};

}  // namespace LumCommon::detail
