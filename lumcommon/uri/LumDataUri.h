#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/uri/LumUri.h>

#include <cstdint>

namespace LumCommon {

/// A data: URI (RFC 2397) that knows where its parts are. The data are not decoded from base64; LumUtil can do that.
///
/// Percent escapes after the scheme are decoded in the stored string, each to one unit U+0000 to U+00FF, so that each
/// unit of data that are not base64 is a byte. All positions are indexes into that string.
/// The bodies of all members are in uri/open/LumDataUri.cpp, which can use the tokenizer of values.
/// Failure: nothing is thrown, except std::bad_alloc; a string that is not a valid data: URI has getDataStart() == -1.
/// Cost: linear in the string.
/// Threads: as for any value type.
class LUM_API LumDataUri : public LumUri {
public:
    /// The empty URI, without data.
    LumDataUri() = default;
    /// Like the constructors of LumUri, followed by init().
    LumDataUri(const UnicodeString& s, URISTRTYPE type = URISTR_3);
    /// `s` resolved against `base`, followed by init().
    LumDataUri(const LumUri& base, const UnicodeString& s, URISTRTYPE type = URISTR_3);
    /// A copy, with the positions found.
    LumDataUri(const LumDataUri&) = default;
    /// Takes over the string and the positions.
    LumDataUri(LumDataUri&&) noexcept = default;
    /// Copies string and positions.
    LumDataUri& operator=(const LumDataUri&) = default;
    /// Takes over string and positions.
    LumDataUri& operator=(LumDataUri&&) noexcept = default;
    ~LumDataUri() override;

    /// Finds the parts again after a change to the string. Escapes are decoded only the first time: decoding twice
    /// would change data that merely look like escapes.
    void init();

    /// The index of the first unit of data, which may be the length of the string; -1 if no "," introduces the data.
    std::int32_t getDataStart() const noexcept { return dataStart_; }
    /// Whether a ";" follows the media type.
    bool hasParameters() const noexcept { return hasParameters_; }
    /// The text before the parameters and the data, without white space around it; may be empty.
    const UnicodeString& getMediaType() const noexcept { return mediaType_; }
    /// The value of the parameter "page"; 0 unless that is a positive number.
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
