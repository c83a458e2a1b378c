#pragma once

// The umbrella header: everything public but the folder lumcommon/bridge/, whose headers are asked for by name.

#include <lumcommon/containers/LumOleStreamBuf.h>
#include <lumcommon/containers/LumZipEntry.h>
#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/LumZipFileEntry.h>
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/OleDirInfo.h>
#include <lumcommon/containers/OleStream.h>
#include <lumcommon/containers/office/OfficeKinds.h>
#include <lumcommon/containers/office/OlePropertySet.h>
#include <lumcommon/containers/office/OlePropertyValue.h>
#include <lumcommon/containers/office/OleSummaryInformation.h>
#include <lumcommon/core/Api.h>
#include <lumcommon/core/LocalPath.h>
#include <lumcommon/core/LumCStr.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/core/LumMessage.h>
#include <lumcommon/core/LumMutex.h>
#include <lumcommon/core/LumObjectBase.h>
#include <lumcommon/core/LumPtr.h>
#include <lumcommon/core/LumRCObject.h>
#include <lumcommon/core/LumStrings.h>
#include <lumcommon/core/LumUUID.h>
#include <lumcommon/core/LumVersion.h>
#include <lumcommon/core/MaybeOwned.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/dom/AttrNodeMap.h>
#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumNamedNodeMap.h>
#include <lumcommon/dom/LumNode.h>
#include <lumcommon/dom/LumNodeIterable.h>
#include <lumcommon/dom/LumTextNode.h>
#include <lumcommon/dom/LumXmlSerializer.h>
#include <lumcommon/format/Kansuji.h>
#include <lumcommon/format/LumUtil.h>
#include <lumcommon/format/xls/XlsFormat.h>
#include <lumcommon/format/xls/XlsFormatCode.h>
#include <lumcommon/format/xls/XlsFormatString.h>
#include <lumcommon/lang/LumLang.h>
#include <lumcommon/lang/LumScript.h>
#include <lumcommon/names/LumName.h>
#include <lumcommon/names/LumNameEnum.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/names/MathMLName.h>
#include <lumcommon/names/NamespaceManager.h>
#include <lumcommon/names/NamespaceMap.h>
#include <lumcommon/names/SVGName.h>
#include <lumcommon/names/VocabularyName.h>
#include <lumcommon/streams/JZIOobj.h>
#include <lumcommon/streams/LumCustomStreamBuf.h>
#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/streams/LumInflaterStream.h>
#include <lumcommon/streams/LumKobOStreamBuf.h>
#include <lumcommon/streams/LumKobStream.h>
#include <lumcommon/streams/LumKobStreamBuf.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/LumRefillStreamBuf.h>
#include <lumcommon/streams/LumStrStream.h>
#include <lumcommon/streams/LumTempFile.h>
#include <lumcommon/streams/cconv.h>
#include <lumcommon/uri/LumDataUri.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/LumUriSub.h>
#include <lumcommon/uri/open/LumUriStream.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumLength.h>
#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>
#include <lumcommon/values/TransMatrix.h>
#include <lumcommon/xml/LumXmlDeclaredAttribute.h>
#include <lumcommon/xml/LumXmlErrorCode.h>
#include <lumcommon/xml/LumXmlLimits.h>
#include <lumcommon/xml/LumXmlParser.h>

/// All that the library declares. <lumcommon/lumcommon.h> includes the whole of it.
namespace LumCommon {

/// The version of the library: major * 100 + minor, 309 for 3.9.
LUM_API int getLibVersion();

/// Releases everything that the library and ICU keep for the process. Call it once, at the end, when no other thread
/// uses the library; nothing in the library may be used afterwards.
LUM_API void cleanup();

}  // namespace LumCommon
