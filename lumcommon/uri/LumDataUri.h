#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/uri/LumUri.h>

#include <cstdint>

namespace LumCommon {

/// A data: URI (RFC 2397) that knows where its parts are. The data are not decoded from base64; LumUtil does that.
///
/// Percent escapes behind the scheme are decoded in the string that is held, each to one unit U+0000 to U+00FF, so that
/// a unit of data that are not base64 is a byte. All positions are indexes into that string.
/// Nothing here throws, but for exhausted memory; a string that is no valid data: URI has getDataStart() == -1.
/// Cost: linear in the string.   Threads: a value.
class LUM_API LumDataUri : public LumUri {
public:
    LumDataUri() = default;
    /// The constructors of LumUri, with init().
    LumDataUri(const UnicodeString& s, URISTRTYPE type = URISTR_3);
    LumDataUri(const LumUri& base, const UnicodeString& s, URISTRTYPE type = URISTR_3);
    LumDataUri(const LumDataUri&) = default;
    LumDataUri(LumDataUri&&) noexcept = default;
    LumDataUri& operator=(const LumDataUri&) = default;
    LumDataUri& operator=(LumDataUri&&) noexcept = default;
    ~LumDataUri() override;

    /// Finds the parts again, after a change to the string. Escapes are decoded the first time only: doing it twice
    /// would decode what is data.
    void init();

    /// The index of the first unit of data, which may be the length of the string; -1 when there is no "," before data.
    std::int32_t getDataStart() const noexcept { return dataStart_; }
    /// Whether a ";" follows the media type.
    bool hasParameters() const noexcept { return hasParameters_; }
    /// The text before the parameters and the data, without white space around it; may be empty.
    const UnicodeString& getMediaType() const noexcept { return mediaType_; }
    /// The parameter "page"; 0 when there is none that is a positive number.
    std::int32_t getPage() const noexcept { return page_; }

private:
    void readParameter(const UnicodeString& parameter);

    std::int32_t dataStart_ = -1;
    bool hasParameters_ = false;
    UnicodeString mediaType_;
    std::int32_t page_ = 0;
    bool isDecoded_ = false;
};

}  // namespace LumCommon
