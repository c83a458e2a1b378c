#pragma once

#include <lumcommon/containers/LumZipEntry.h>
#include <lumcommon/containers/detail/ZipRecords.h>

#include <cstdint>
#include <istream>

namespace LumCommon::detail {

/// Reads a name of `lengthBytes`, in the platform's default charset; empty if the stream does not contain all of it.
UnicodeString readZipName(std::istream& in, std::uint16_t lengthBytes);

/// Skips bytes of the stream. If the stream throws, it is left failed.
void skipBytes(std::istream& in, std::uint64_t bytes) noexcept;

/// The stream's position; -1 when it has failed or cannot seek.
std::streamoff tellPosition(std::istream& in) noexcept;

/// Moves the stream back to an earlier position; that it has reached its end since then is cleared.
void rewindTo(std::istream& in, std::streamoff position) noexcept;

/// Puts a stream back to the position and state in which it was, when the scope is left.
class StreamPlace {
public:
    explicit StreamPlace(std::istream& in) noexcept : in_(in), position_(tellPosition(in)) {}
    StreamPlace(const StreamPlace&) = delete;
    StreamPlace& operator=(const StreamPlace&) = delete;
    ~StreamPlace();

private:
    std::istream& in_;
    std::streamoff position_;  // -1: it had failed
};

}  // namespace LumCommon::detail
