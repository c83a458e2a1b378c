#pragma once

#include <lumcommon/core/Text.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <streambuf>
#include <string>
#include <string_view>

namespace LumCommon::detail {

/// Decodes what the serializer wrote in UTF-8. An unpaired surrogate, which is written as three bytes, comes back
/// unchanged; other malformed bytes become U+FFFD.
UnicodeString decodeUtf8(std::string_view bytes);

/// Gathers what the serializer writes in UTF-8, as far as one string can hold the text: writing more fails.
class Utf8Output : public std::streambuf {
public:
    explicit Utf8Output(std::size_t mostUnits = std::numeric_limits<std::int32_t>::max()) : unitsLeft_(mostUnits) {}

    UnicodeString decode() const { return decodeUtf8(bytes_); }

protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* bytes, std::streamsize count) override;

private:
    std::string bytes_;
    std::size_t unitsLeft_;
};

}  // namespace LumCommon::detail
