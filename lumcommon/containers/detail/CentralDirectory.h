#pragma once

#include <lumcommon/containers/LumZipEntry.h>

#include <cstdint>
#include <istream>
#include <vector>

namespace LumCommon::detail {

/// What the central directory says about a member.
struct DirectoryMember {
    std::streamoff headerPosition = 0;  ///< of the local header, in the stream
    /// With the sizes of zip64 filled in; those that do not fit are 0xFFFFFFFF.
    LumZipMemberFields fields;
    UnicodeString name;
};

struct CentralDirectory {
    std::streamoff position = 0;           ///< where it begins in the stream; the members come before it
    std::vector<DirectoryMember> members;  ///< in the order of their local headers
};

/// Reads the central directory of the archive that ends the stream, whatever precedes that archive. Every count and
/// offset is checked against the stream; a record is left out if its local header would not fit between `archiveStart`
/// and the directory, and the first bytes that are not a record end the directory. Whether the local headers are there
/// is not checked.
/// @param archiveStart  the first position that can belong to the archive.
/// @return no members if the stream cannot seek or has no directory. The stream's position afterwards is unspecified.
/// Cost: O(size of the directory), and 64 KiB for finding it.
CentralDirectory readCentralDirectory(std::istream& in, std::streamoff archiveStart);

}  // namespace LumCommon::detail
