#pragma once

#include <lumcommon/containers/LumZipEntry.h>

#include <cstdint>
#include <istream>
#include <vector>

namespace LumCommon::detail {

/// What the central directory says of a member.
struct DirectoryMember {
    std::streamoff headerPosition = 0;  ///< of the local header, in the stream
    /// Sizes of zip64 are put in; those that do not fit are 0xFFFFFFFF.
    LumZipMemberFields fields;
    UnicodeString name;
};

struct CentralDirectory {
    std::streamoff position = 0;           ///< where it begins in the stream; the members lie in front of it
    std::vector<DirectoryMember> members;  ///< in the order of their local headers
};

/// Reads the central directory of the archive that ends the stream, whatever stands in front of that archive. Every
/// count and offset is checked against the stream; a record that leads to a place where no local header fits between
/// `archiveStart` and the directory is left out, and the first bytes that are no record end the directory. That the
/// local headers are there is not looked at.
/// @param archiveStart  the first position that can belong to the archive.
/// @return no members when the stream cannot seek or has no directory. The stream is left anywhere.
/// Cost: O(size of the directory), and 64 KiB for finding it.
CentralDirectory readCentralDirectory(std::istream& in, std::streamoff archiveStart);

}  // namespace LumCommon::detail
