#pragma once

#include <lumcommon/xml/detail/InputMeter.h>

#include <istream>
#include <memory>

namespace LumCommon {
class LumUri;
}

namespace LumCommon::detail {

/// What a stream of openInput() that decompresses is besides.
class InflatingInput {
public:
    /// Counts what is read of the compressed data, that which has been read by now included.
    /// @param account  stays where it is.
    virtual void meterBy(InputMeter& meter, InputMeter::Account& account) = 0;

protected:
    ~InflatingInput() = default;
};

/// Opens a resource that is to be parsed: LumUri::getStream(), and what is compressed with gzip is decompressed. (No
/// XML document begins with the byte that gzip data begin with.)
/// Null when the resource cannot be opened.
/// @param isRefused  receives whether that is because the resolver refuses it.
std::unique_ptr<std::istream> openInput(const LumUri& resource, bool& isRefused);

/// Errors: 0x1004 for an empty stream, 0x1006 for one that has failed.
void checkInput(std::istream& in);

}  // namespace LumCommon::detail
