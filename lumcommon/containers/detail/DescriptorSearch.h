#pragma once

#include <lumcommon/containers/LumZipEntry.h>

#include <istream>

namespace LumCommon::detail {

/// Finds the data descriptor of the member whose data begin at the stream's position: the first one that begins as far
/// from there as the compressed size that it states. The stream stands before it afterwards, and where it stood when
/// there is none.
/// @param fields  receive the CRC-32 and the sizes.   @return whether there is one; without, `fields` stay as they are.
/// Cost: O(bytes passed over), memory constant. Without a descriptor that is the rest of the stream, so a caller that
/// goes on after a failure must not search again and again.
bool findDescriptor(std::istream& in, LumZipMemberFields& fields);

}  // namespace LumCommon::detail
