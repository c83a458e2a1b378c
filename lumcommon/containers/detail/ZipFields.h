#pragma once

#include <lumcommon/containers/LumZipEntry.h>
#include <lumcommon/containers/detail/ZipRecords.h>

#include <cstdint>
#include <istream>

namespace LumCommon::detail {

/// Reads a name of `lengthBytes`, in the platform's default charset; empty when the stream does not hold all of it.
UnicodeString readZipName(std::istream& in, std::uint16_t lengthBytes);

/// Moves the stream on. What the stream throws fails it.
void skipBytes(std::istream& in, std::uint64_t bytes) noexcept;

/// The stream's position; -1 when it has failed or cannot seek.
std::streamoff tellPosition(std::istream& in) noexcept;

/// Moves back to a position that the stream was read on from. That it met its end on the way is forgotten.
void rewindTo(std::istream& in, std::streamoff position) noexcept;

/// Puts a stream back where it was, and in the state that it was in, when the scope is left.
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
