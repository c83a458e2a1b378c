#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/containers/OleStream.h>
#include <lumcommon/containers/office/OleSummaryInformation.h>
#include <lumcommon/containers/office/detail/CodePageText.h>
#include <lumcommon/containers/office/detail/PropertyValueReader.h>
#include <lumcommon/containers/office/detail/SummaryId.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/streams/detail/StreamReading.h>
#include <lumcommon/values/LumValue.h>

#include <unicode/uchar.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <span>
#include <string_view>

namespace LumCommon {
namespace {

constexpr auto codePageId = static_cast<std::uint32_t>(SummaryProperty::CODE_PAGE);

constexpr std::uint16_t reversedMark = 65279;
constexpr std::uint32_t dictionaryId = 0;
constexpr unsigned defaultCodePage = 932;

using Value = OlePropertyValue;

/// What is read from a section for each row of its property table: number and offset, then the type at that offset.
constexpr std::uint64_t propertyRowBytes = 3 * sizeof(std::uint32_t);
/// What precedes each name of a dictionary: its number and its length.
constexpr std::uint64_t nameRowBytes = 2 * sizeof(std::uint32_t);

/// The name under which the user-defined properties keep hyperlinks: eleven characters and the terminating zero.
constexpr std::string_view hyperLinksName("_PID_HLINKS\0", 12);

/// The numbers of the properties to which the dictionary gives that name, ascending.
std::vector<std::uint32_t> idsNamed(const OleSISection& section, std::string_view name) {
    std::vector<std::uint32_t> ids;
    for (const OleSIName& row : section.dictionary) {
        if (row.name.starts_with(name)) ids.push_back(row.id);
    }
    std::ranges::sort(ids);
    return ids;
}

const OleSIProperty* findHyperLinks(const std::vector<OleSISection>& sections) {
    constexpr std::uint32_t firstNamedId = 2;
    for (const OleSISection& section : sections) {
        if (!section.hasDictionary) continue;
        const std::vector<std::uint32_t> ids = idsNamed(section, hyperLinksName);
        const auto found = std::ranges::find_if(section.properties, [&ids](const OleSIProperty& property) {
            return property.id >= firstNamedId && property.type == Value::BLOB &&
                   std::ranges::binary_search(ids, property.id);
        });
        if (found != section.properties.end()) return &*found;
    }
    return nullptr;
}

const OleSIProperty* findIn(const OleSISection& section, unsigned id) {
    const auto found = std::ranges::find(section.properties, id, &OleSIProperty::id);
    return found == section.properties.end() ? nullptr : &*found;
}

const OleSIProperty* findSummary(const std::vector<OleSISection>& sections, unsigned id) {
    for (const OleSISection& section : sections) {
        if (section.hasDictionary) continue;
        if (const OleSIProperty* const found = findIn(section, id)) return found;
    }
    return nullptr;
}

OlePropertyValue readValue(const OleSIProperty& property, detail::PropertyValueReader& reader) {
    OlePropertyValue value = reader.readValue(property.type, property.valuePosition);
    // The field has 16 bits with a sign, so 65001 is negative in it.
    auto* const number = std::get_if<std::int64_t>(&value.content);
    if (property.id == codePageId && number && *number < 0 && *number >= -0x8000) *number += 0x10000;
    return value;
}

/// The code page that the section states.
std::optional<unsigned> codePageOf(const OleSISection& section, detail::PropertyValueReader& reader) {
    const OleSIProperty* const property = findIn(section, codePageId);
    if (!property) return std::nullopt;
    const OlePropertyValue value = readValue(*property, reader);
    const auto* const number = std::get_if<std::int64_t>(&value.content);
    if (!number || *number <= 0 || *number > 0xFFFF) return std::nullopt;
    return static_cast<unsigned>(*number);
}

/// The code page for sections that state none: that of the first one that does.
unsigned commonCodePageOf(const std::vector<OleSISection>& sections, detail::PropertyValueReader& reader) {
    for (const OleSISection& section : sections) {
        if (const std::optional<unsigned> codePage = codePageOf(section, reader)) return *codePage;
    }
    return defaultCodePage;
}

using Names = std::map<std::uint32_t, UnicodeString>;

/// The names that the section's dictionary gives; the first one for a number counts. The reader must be set to its code
/// page.
Names namesOf(const OleSISection& section, detail::PropertyValueReader& reader) {
    Names names;
    const OleSIProperty* const dictionary = findIn(section, dictionaryId);
    if (!dictionary) return names;
    if (reader.isWide()) {  // the section's copy of the names is counted in bytes, but these are in 16-bit units
        for (auto& [id, name] : reader.readWideNames(dictionary->type, dictionary->valuePosition)) {
            names.try_emplace(id, std::move(name));
        }
        return names;
    }
    for (const OleSIName& row : section.dictionary) {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(row.name.data());
        names.try_emplace(row.id, reader.decode({bytes, row.name.size()}));
    }
    return names;
}

}  // namespace

OleSummaryInformation::OleSummaryInformation() : charset_(UnicodeString()) {}

OleSummaryInformation::~OleSummaryInformation() { closeStream(); }

void OleSummaryInformation::closeStream() {
    if (file_) file_->OLEcloseStream(stream_);
    stream_ = nullptr;
}

int OleSummaryInformation::initSummaryInformation(OleCompFile* file) {
    return init(file, "\005SummaryInformation", SUMMARY);
}

int OleSummaryInformation::initDocumentSummaryInformation(OleCompFile* file) {
    return init(file, "\005DocumentSummaryInformation", DOCUMENT_SUMMARY);
}

int OleSummaryInformation::init(OleCompFile* file, const char* name, Kind kind) {
    closeStream();
    file_ = file;
    kind_ = kind;
    try {
        const OleDirPath path{name};
        if (file_) stream_ = file_->OLEopenStream(&path);
        if (!stream_) return -1;
        load();
        if (getSummaryInformation() != 1) return -1;
        if (kind == SUMMARY) chooseCharset();
        return 1;
    } catch (const std::bad_alloc&) {
        return -1;
    }
}

void OleSummaryInformation::load() {
    position_ = 0;
    detail::readClaimed(bytes_, stream_->GetStreamSize(), [this](std::span<unsigned char> room) {
        return std::size_t{stream_->OLEread(room.data(), static_cast<unsigned>(room.size()))};
    });
}

bool OleSummaryInformation::hasBytes(std::uint64_t bytes) {
    const std::uint64_t size = bytes_.size();
    if (position_ <= size && bytes <= size - position_) return true;
    position_ = std::max(position_, size);
    return false;
}

bool OleSummaryInformation::take(void* to, std::uint64_t bytes) {
    if (!hasBytes(bytes)) return false;
    if (bytes != 0) std::memcpy(to, bytes_.data() + position_, static_cast<std::size_t>(bytes));
    position_ += bytes;
    return true;
}

bool OleSummaryInformation::spend(std::uint64_t bytes) {
    if (bytes > budgetBytes_) {
        budgetBytes_ = 0;
        return false;
    }
    budgetBytes_ -= bytes;
    return true;
}

bool OleSummaryInformation::getReverse(unsigned char* p, int n) {
    if (!p || n < 0 || !hasBytes(static_cast<std::uint64_t>(n))) return false;
    const std::uint64_t start = position_;
    position_ += static_cast<std::uint64_t>(n);
    std::reverse_copy(bytes_.data() + start, bytes_.data() + position_, p);
    return true;
}

bool OleSummaryInformation::getWORD(unsigned short* value) {
    if (!value) return false;
    return isSwapped_ ? getReverse(reinterpret_cast<unsigned char*>(value), 2) : take(value, 2);
}

bool OleSummaryInformation::getDWORD(unsigned int* value) {
    if (!value) return false;
    return isSwapped_ ? getReverse(reinterpret_cast<unsigned char*>(value), 4) : take(value, 4);
}

bool OleSummaryInformation::getCLSID(OLE_CLSID* value) {
    OLE_CLSID read;
    if (!value || !getDWORD(&read.data1) || !getWORD(&read.data2) || !getWORD(&read.data3) ||
        !take(read.data4, sizeof read.data4)) {
        return false;
    }
    *value = read;
    return true;
}

bool OleSummaryInformation::getWSTR(wchar_t* buffer, int count) {
    if (!buffer || count < 0 || !hasBytes(std::uint64_t{2} * static_cast<unsigned>(count))) return false;
    for (int i = 0; i < count; ++i) {
        unsigned short unit = 0;
        if (!getWORD(&unit)) return false;  // unreachable
        buffer[i] = static_cast<wchar_t>(unit);
    }
    return true;
}

bool OleSummaryInformation::checkEndian() {
    if (!take(&byteOrder_, sizeof byteOrder_)) return false;
    isSwapped_ = byteOrder_ == reversedMark;
    return true;
}

bool OleSummaryInformation::getPropHeader() {
    return checkEndian() && getWORD(&version_) && getDWORD(&systemId_) && getCLSID(&classId_) &&
           getDWORD(&sectionCount_);
}

int OleSummaryInformation::getSummaryInformation() {
    const std::uint64_t base = position_;
    sections_.clear();
    budgetBytes_ = 2 * static_cast<std::uint64_t>(bytes_.size());
    if (!getPropHeader()) return -1;
    bool isComplete = true;
    for (std::uint32_t i = 0; i < sectionCount_; ++i) {
        OleSISection section;
        if (!getCLSID(&section.formatId) || !getDWORD(&section.offset)) return -1;
        const std::uint64_t nextHeader = position_;
        position_ = base + section.offset;
        if (!readSection(section)) isComplete = false;
        sections_.push_back(std::move(section));
        position_ = nextHeader;
    }
    return isComplete ? 1 : -1;
}

bool OleSummaryInformation::readSection(OleSISection& section) {
    section.start = position_;
    if (!getDWORD(&section.size) || !getDWORD(&section.propertyCount)) return false;
    bool isComplete = true;
    for (std::uint32_t i = 0; i < section.propertyCount; ++i) {
        std::uint32_t id = 0, offset = 0, nextId = 0, endOffset = section.size;
        if (!getDWORD(&id) || !getDWORD(&offset)) return false;
        const std::uint64_t nextRow = position_;
        const bool isLast = i + 1 == section.propertyCount;
        if (!isLast && (!getDWORD(&nextId) || !getDWORD(&endOffset))) return false;
        if (id == dictionaryId) section.hasDictionary = true;
        position_ = section.start + offset;
        std::uint32_t type = 0;
        if (!spend(propertyRowBytes) || !getDWORD(&type)) return false;
        section.properties.push_back({id, offset, type, position_});
        if (id == dictionaryId && !readDictionary(section, type, section.start + endOffset)) isComplete = false;
        position_ = nextRow;
    }
    return isComplete;
}

bool OleSummaryInformation::readDictionary(OleSISection& section, std::uint32_t nameCount, std::uint64_t end) {
    for (std::uint32_t i = 0; i < nameCount; ++i) {
        std::uint32_t id = 0, length = 0;
        if (!getDWORD(&id) || !getDWORD(&length)) return false;
        if (position_ + length > end) return true;
        if (!hasBytes(length) || !spend(nameRowBytes + length)) return false;
        OleSIName& row = section.dictionary.emplace_back();
        row.id = id;
        row.name.resize(length);
        if (!take(row.name.data(), length)) return false;  // unreachable
    }
    return true;
}

void OleSummaryInformation::chooseCharset() {
    LumValue value;
    if (getProperty(codePageId, value) != 1 || value.getKind() != KIND_INTEGER) {
        charset_ = LumCStr(detail::fromUtf8(detail::charsetOfCodePage(defaultCodePage)));
        return;
    }
    int codePage = value.getIntegerValue();
    // The field has 16 bits with a sign, so some programs write 65001 as a negative number.
    if (codePage < 0 && codePage >= -0x8000) codePage += 0x10000;
    charset_ = LumCStr(detail::fromUtf8(detail::charsetOfCodePage(codePage)));
}

bool OleSummaryInformation::readString(std::string& bytes) {
    std::uint32_t length = 0;
    if (!getDWORD(&length) || !hasBytes(length)) return false;
    bytes.resize(length);
    return take(bytes.data(), length);
}

int OleSummaryInformation::getProperty(unsigned int id, LumValue& out) {
    if (kind_ != SUMMARY || !detail::isSummaryId(id)) return -1;
    const OleSIProperty* const property = findSummary(sections_, id);
    if (!property) return -1;
    position_ = property->valuePosition;
    std::uint32_t type = property->type;
    std::uint32_t count = 1;
    if ((type & Value::VECTOR) != 0) {
        if (!getDWORD(&count)) return -1;
        type &= ~std::uint32_t{Value::VECTOR};
    }
    if (count == 0) return -1;
    if (type == Value::INT16 || type == Value::INT32) {
        std::uint32_t word = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            if (!getDWORD(&word)) return -1;
        }
        out = LumValue(static_cast<int>(word));
        return 1;
    }
    if (type != Value::STRING) return -1;
    std::string bytes;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!readString(bytes)) return -1;
    }
    out = LumValue(detail::fromCodePage(bytes, charset_.getMBString("US-ASCII")));
    return 1;
}

std::optional<OlePropertyValue> OleSummaryInformation::readProperty(unsigned int id) const {
    detail::PropertyValueReader reader(bytes_, isSwapped_);
    for (const OleSISection& section : sections_) {
        const OleSIProperty* const property = section.hasDictionary ? nullptr : findIn(section, id);
        if (!property) continue;
        const std::optional<unsigned> codePage = codePageOf(section, reader);
        reader.setCodePage(codePage ? *codePage : commonCodePageOf(sections_, reader));
        return readValue(*property, reader);
    }
    return std::nullopt;
}

std::optional<OlePropertyValue> OleSummaryInformation::readProperty(const UnicodeString& name) const {
    detail::PropertyValueReader reader(bytes_, isSwapped_);
    const unsigned commonCodePage = commonCodePageOf(sections_, reader);
    const OleSIProperty* alike = nullptr;
    unsigned codePageAlike = commonCodePage;
    for (const OleSISection& section : sections_) {
        if (!section.hasDictionary) continue;
        const unsigned codePage = codePageOf(section, reader).value_or(commonCodePage);
        reader.setCodePage(codePage);
        const Names names = namesOf(section, reader);
        for (const OleSIProperty& property : section.properties) {
            const auto given = names.find(property.id);
            if (given == names.end() || property.id == dictionaryId) continue;
            if (given->second == name) return readValue(property, reader);
            if (alike || given->second.caseCompare(name, U_FOLD_CASE_DEFAULT) != 0) continue;
            alike = &property;
            codePageAlike = codePage;
        }
    }
    if (!alike) return std::nullopt;
    reader.setCodePage(codePageAlike);
    return readValue(*alike, reader);
}

std::vector<OleProperty> OleSummaryInformation::readProperties() const {
    detail::PropertyValueReader reader(bytes_, isSwapped_);
    const unsigned commonCodePage = commonCodePageOf(sections_, reader);
    std::vector<OleProperty> properties;
    for (const OleSISection& section : sections_) {
        reader.setCodePage(codePageOf(section, reader).value_or(commonCodePage));
        const Names names = namesOf(section, reader);
        for (const OleSIProperty& row : section.properties) {
            if (row.id == dictionaryId) continue;
            const auto name = names.find(row.id);
            properties.push_back({section.formatId, row.id, name == names.end() ? UnicodeString() : name->second,
                                  section.hasDictionary, readValue(row, reader)});
        }
    }
    return properties;
}

bool OleSummaryInformation::readHyperLink(std::vector<UnicodeString>& out) {
    std::uint32_t type = 0, word = 0;
    if (!getDWORD(&type)) return false;
    if (type == Value::INT32) return getDWORD(&word);
    if (type != Value::WIDE_STRING) return true;
    if (!getDWORD(&word)) return false;
    const std::uint64_t units = std::uint64_t{word} + (word & 1u);
    if (!hasBytes(units * 2)) return false;
    UnicodeString text;
    bool isEnded = false;
    for (std::uint64_t i = 0; i < units; ++i) {
        unsigned short unit = 0;
        if (!getWORD(&unit)) return false;  // unreachable
        isEnded = isEnded || unit == 0;
        if (!isEnded) detail::append(text, static_cast<char16_t>(unit));  // consecutive surrogates join
    }
    if (!text.isEmpty()) out.push_back(std::move(text));
    return true;
}

int OleSummaryInformation::getHyperLinks(std::vector<UnicodeString>& out) {
    const OleSIProperty* const property = findHyperLinks(sections_);
    if (!property) return -1;
    position_ = property->valuePosition;
    std::uint32_t blockBytes = 0, count = 0;
    if (!getDWORD(&blockBytes) || !getDWORD(&count)) return -1;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!readHyperLink(out)) return -1;  // a short read has taken all there was, so no element follows
    }
    return 1;
}

}  // namespace LumCommon
