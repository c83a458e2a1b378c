// What kind of document a compound file is. Kept apart from OleCompFile.cpp because it opens URIs.
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/OleStream.h>
#include <lumcommon/containers/detail/OleRecords.h>
#include <lumcommon/containers/office/OfficeKinds.h>
#include <lumcommon/streams/JZIOobj.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/detail/StreamReading.h>
#include <lumcommon/uri/LumUri.h>

#include <istream>
#include <memory>
#include <span>

namespace LumCommon {
namespace {

/// Whether there is a stream that can be opened, of at least that many bytes.
bool hasStream(OleCompFile& file, const OleDirPath& path, unsigned leastBytes = 0) {
    OleStream* const stream = file.OLEopenStream(&path);
    const bool isLongEnough = stream && stream->GetStreamSize() >= leastBytes;
    file.OLEcloseStream(stream);
    return isLongEnough;
}

bool isPresentation(OleCompFile& file) {
    constexpr unsigned currentUserBytes = 20;
    return (hasStream(file, {"PP97_DUALSTORAGE", "Current User"}, currentUserBytes) &&
            hasStream(file, {"PP97_DUALSTORAGE", "PowerPoint Document"})) ||
           (hasStream(file, {"Current User"}, currentUserBytes) && hasStream(file, {"PowerPoint Document"}));
}

CompoundKind kindOf(OleCompFile& file) {
    if (hasStream(file, {"WordDocument"})) return CompoundKind::WORD_PROCESSOR;
    if (hasStream(file, {"Workbook"})) return CompoundKind::SPREADSHEET;
    if (isPresentation(file)) return CompoundKind::PRESENTATION;
    if (hasStream(file, {"DocumentViewStyles"})) return CompoundKind::JAPANESE_WORD_PROCESSOR;
    return CompoundKind::NONE;
}

}  // namespace

bool OleCompFile::isOLEUri(std::istream& s) {
    char bytes[detail::OleHeader::bytes];
    return detail::startsWithOleSignature(std::span(bytes).first(detail::readBytes(s, bytes)));
}

bool OleCompFile::isOLEUri(const LumUri& uri) {
    const std::unique_ptr<std::istream> stream(uri.getStream());
    return stream && isOLEUri(*stream);
}

int OleCompFile::detectOLEDocument(std::istream& s) {
    JZStreamIOobj io(&s);
    OleCompFile file;
    file.io_ = {&io, false};
    return file.readTables() ? file.getDocumentKind() : static_cast<int>(CompoundKind::NONE);
}

int OleCompFile::getDocumentKind() { return static_cast<int>(kindOf(*this)); }

int OleCompFile::detectOLEDocument(const LumUri& uri) {
    std::unique_ptr<std::istream> stream(uri.getStream());
    if (!stream) return static_cast<int>(CompoundKind::NONE);
    if (stream->tellg() == std::istream::pos_type(-1)) {
        LumMemStream seekable(stream.release(), LumMemStreamBuf::defaultGrowBytes, true);
        return detectOLEDocument(seekable);
    }
    return detectOLEDocument(*stream);
}

}  // namespace LumCommon
