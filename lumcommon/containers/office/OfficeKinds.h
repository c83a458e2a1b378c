#pragma once

#include <lumcommon/core/Api.h>

#include <cstdint>

namespace LumCommon {

struct OLE_CLSID;

/// The numbers of LumZipFile::detectOOXDocument() by name.
///
///     if (static_cast<PackageKind>(zip.detectOOXDocument()) == PackageKind::WORKBOOK) ...
enum class PackageKind : int {
    NONE = 0,                                ///< no package of these kinds
    WORD_DOCUMENT = 1,                       ///< .docx
    WORD_DOCUMENT_WITH_MACROS = 2,           ///< .docm
    WORD_TEMPLATE = 3,                       ///< .dotx
    WORD_TEMPLATE_WITH_MACROS = 4,           ///< .dotm
    WORKBOOK = 5,                            ///< .xlsx
    WORKBOOK_WITH_MACROS = 6,                ///< .xlsm
    WORKBOOK_TEMPLATE = 7,                   ///< .xltx
    WORKBOOK_TEMPLATE_WITH_MACROS = 8,       ///< .xltm
    BINARY_WORKBOOK = 9,                     ///< .xlsb
    PRESENTATION = 10,                       ///< .pptx
    PRESENTATION_WITH_MACROS = 11,           ///< .pptm
    SLIDE_SHOW = 12,                         ///< .ppsx
    SLIDE_SHOW_WITH_MACROS = 13,             ///< .ppsm
    PRESENTATION_TEMPLATE = 14,              ///< .potx
    PRESENTATION_TEMPLATE_WITH_MACROS = 15,  ///< .potm
    THEME = 16,                              ///< .thmx
};

/// The numbers of OleCompFile::detectOLEDocument() and getDocumentKind() by name.
enum class CompoundKind : int {
    NONE = 0,                     ///< no compound file of these kinds
    WORD_PROCESSOR = 1,           ///< .doc
    SPREADSHEET = 2,              ///< .xls
    PRESENTATION = 3,             ///< .ppt
    JAPANESE_WORD_PROCESSOR = 4,  ///< .jtd
};

/// The properties of a document's summary information, by their numbers in the published format ([MS-OLEPS]).
/// OleSummaryInformation::readProperty() takes them.
///
///     const std::optional<OlePropertyValue> pages = information.readProperty(SummaryProperty::PAGE_COUNT);
enum class SummaryProperty : std::uint32_t {
    CODE_PAGE = 1,          ///< of the texts
    TITLE = 2,              ///< a text
    SUBJECT = 3,            ///< a text
    AUTHOR = 4,             ///< a text
    KEYWORDS = 5,           ///< a text
    COMMENTS = 6,           ///< a text
    TEMPLATE = 7,           ///< the name of the template
    LAST_AUTHOR = 8,        ///< who saved it last
    REVISION_NUMBER = 9,    ///< a text
    EDITING_TIME = 10,      ///< a time span, stored as a time
    LAST_PRINTED = 11,      ///< a time
    CREATED = 12,           ///< a time
    LAST_SAVED = 13,        ///< a time
    PAGE_COUNT = 14,        ///< a number
    WORD_COUNT = 15,        ///< a number
    CHARACTER_COUNT = 16,   ///< without spaces
    THUMBNAIL = 17,         ///< clipboard data
    APPLICATION_NAME = 18,  ///< the program that wrote it
    SECURITY = 19,          ///< bits of how it is protected
};

/// Those of the document summary information, by their numbers in the published format ([MS-OSHARED]).
enum class DocumentSummaryProperty : std::uint32_t {
    CODE_PAGE = 1,                     ///< of the texts
    CATEGORY = 2,                      ///< a text
    PRESENTATION_FORMAT = 3,           ///< what a presentation is made for
    BYTE_COUNT = 4,                    ///< a number
    LINE_COUNT = 5,                    ///< a number
    PARAGRAPH_COUNT = 6,               ///< a number
    SLIDE_COUNT = 7,                   ///< a number
    NOTE_COUNT = 8,                    ///< pages with notes
    HIDDEN_SLIDE_COUNT = 9,            ///< a number
    MULTIMEDIA_CLIP_COUNT = 10,        ///< sounds and films
    IS_SCALED = 11,                    ///< whether the thumbnail is scaled
    HEADING_PAIRS = 12,                ///< groups of parts, each with their number
    DOCUMENT_PARTS = 13,               ///< the names of the parts
    MANAGER = 14,                      ///< a text
    COMPANY = 15,                      ///< a text
    ARE_LINKS_DIRTY = 16,              ///< whether links are out of date
    CHARACTER_COUNT_WITH_SPACES = 17,  ///< a number
    IS_SHARED = 19,                    ///< whether several people work on it
    LINK_BASE = 20,                    ///< what relative links begin with
    HYPER_LINKS = 21,                  ///< the links of the document
    HAVE_HYPER_LINKS_CHANGED = 22,     ///< whether those were changed elsewhere
    APPLICATION_VERSION = 23,          ///< of the program that wrote it
    DIGITAL_SIGNATURE = 24,            ///< of the macros
    CONTENT_TYPE = 26,                 ///< a text
    CONTENT_STATUS = 27,               ///< a text, "Draft" for instance
    LANGUAGE = 28,                     ///< a text
    DOCUMENT_VERSION = 29,             ///< a text
};

/// The sections of property sets that office documents have.
enum class PropertySection {
    OTHER,             ///< any other
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
