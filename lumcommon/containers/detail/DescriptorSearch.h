#pragma once

#include <lumcommon/containers/LumZipEntry.h>

#include <istream>

namespace LumCommon::detail {

/// Finds the data descriptor of the member whose data begin at the stream's position: the first one whose distance from
/// there equals the compressed size that it states. The stream is left at the descriptor, or where it was if there is
/// none.
/// @param fields  receives the CRC-32 and the sizes; unchanged if there is no descriptor.
/// @return whether there is one.
/// Cost: O(bytes skipped); constant memory. Without a descriptor that is the rest of the stream, so a caller that
/// continues after a failure must not search again and again.
bool findDescriptor(std::istream& in, LumZipMemberFields& fields);

}  // namespace LumCommon::detail
