#include <lumcommon/containers/office/OfficeKinds.h>
#include <lumcommon/containers/office/OlePropertyValue.h>

namespace LumCommon {

PropertySection sectionOf(const OLE_CLSID& formatId) noexcept {
    // The format identifiers of [MS-OLEPS] and [MS-OSHARED].
    constexpr OLE_CLSID summary{0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}};
    constexpr OLE_CLSID document{0xD5CDD502, 0x2E9C, 0x101B, {0x93, 0x97, 0x08, 0x00, 0x2B, 0x2C, 0xF9, 0xAE}};
    constexpr OLE_CLSID userDefined{0xD5CDD505, 0x2E9C, 0x101B, {0x93, 0x97, 0x08, 0x00, 0x2B, 0x2C, 0xF9, 0xAE}};
    if (formatId == summary) return PropertySection::SUMMARY;
    if (formatId == document) return PropertySection::DOCUMENT_SUMMARY;
    return formatId == userDefined ? PropertySection::USER_DEFINED : PropertySection::OTHER;
}

}  // namespace LumCommon
