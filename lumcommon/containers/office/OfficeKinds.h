#pragma once

#include <lumcommon/core/Api.h>

#include <cstdint>

namespace LumCommon {

struct OLE_CLSID;

/// The numbers of LumZipFile::detectOOXDocument() by name.
///
///     if (static_cast<PackageKind>(zip.detectOOXDocument()) == PackageKind::WORKBOOK) ...
enum class PackageKind : int {
    NONE = 0,
    WORD_DOCUMENT = 1,
    WORD_DOCUMENT_WITH_MACROS = 2,
    WORD_TEMPLATE = 3,
    WORD_TEMPLATE_WITH_MACROS = 4,
    WORKBOOK = 5,
    WORKBOOK_WITH_MACROS = 6,
    WORKBOOK_TEMPLATE = 7,
    WORKBOOK_TEMPLATE_WITH_MACROS = 8,
    BINARY_WORKBOOK = 9,
    PRESENTATION = 10,
    PRESENTATION_WITH_MACROS = 11,
    SLIDE_SHOW = 12,
    SLIDE_SHOW_WITH_MACROS = 13,
    PRESENTATION_TEMPLATE = 14,
    PRESENTATION_TEMPLATE_WITH_MACROS = 15,
    THEME = 16,
};

/// The numbers of OleCompFile::detectOLEDocument() and getDocumentKind() by name.
enum class CompoundKind : int {
    NONE = 0,
    WORD_PROCESSOR = 1,
    SPREADSHEET = 2,
    PRESENTATION = 3,
    JAPANESE_WORD_PROCESSOR = 4,
};

/// The properties of a document's summary information, by their numbers in the published format ([MS-OLEPS]).
/// OleSummaryInformation::readProperty() takes them.
///
///     const std::optional<OlePropertyValue> pages = information.readProperty(SummaryProperty::PAGE_COUNT);
enum class SummaryProperty : std::uint32_t {
    CODE_PAGE = 1,
    TITLE = 2,
    SUBJECT = 3,
    AUTHOR = 4,
    KEYWORDS = 5,
    COMMENTS = 6,
    TEMPLATE = 7,
    LAST_AUTHOR = 8,
    REVISION_NUMBER = 9,
    EDITING_TIME = 10,
    LAST_PRINTED = 11,
    CREATED = 12,
    LAST_SAVED = 13,
    PAGE_COUNT = 14,
    WORD_COUNT = 15,
    CHARACTER_COUNT = 16,
    THUMBNAIL = 17,
    APPLICATION_NAME = 18,
    SECURITY = 19,
};

/// Those of the document summary information, by their numbers in the published format ([MS-OSHARED]).
enum class DocumentSummaryProperty : std::uint32_t {
    CODE_PAGE = 1,
    CATEGORY = 2,
    PRESENTATION_FORMAT = 3,
    BYTE_COUNT = 4,
    LINE_COUNT = 5,
    PARAGRAPH_COUNT = 6,
    SLIDE_COUNT = 7,
    NOTE_COUNT = 8,
    HIDDEN_SLIDE_COUNT = 9,
    MULTIMEDIA_CLIP_COUNT = 10,
    IS_SCALED = 11,
    HEADING_PAIRS = 12,
    DOCUMENT_PARTS = 13,
    MANAGER = 14,
    COMPANY = 15,
    ARE_LINKS_DIRTY = 16,
    CHARACTER_COUNT_WITH_SPACES = 17,
    IS_SHARED = 19,
    LINK_BASE = 20,
    HYPER_LINKS = 21,
    HAVE_HYPER_LINKS_CHANGED = 22,
    APPLICATION_VERSION = 23,
    DIGITAL_SIGNATURE = 24,
    CONTENT_TYPE = 26,
    CONTENT_STATUS = 27,
    LANGUAGE = 28,
    DOCUMENT_VERSION = 29,
};

/// The sections of property sets that office documents have.
enum class PropertySection {
    OTHER,
    SUMMARY,           ///< its numbers are those of SummaryProperty
    DOCUMENT_SUMMARY,  ///< its numbers are those of DocumentSummaryProperty
    USER_DEFINED,      ///< its numbers mean nothing: OleProperty::name tells what a property is
};

/// The section with that format identifier.
///
///     for (const OleProperty& property : information.readProperties()) {
///         if (sectionOf(property.formatId) == PropertySection::USER_DEFINED) ...
///     }
///
/// Threads: any. Nothing throws.
LUM_API PropertySection sectionOf(const OLE_CLSID& formatId) noexcept;

}  // namespace LumCommon
