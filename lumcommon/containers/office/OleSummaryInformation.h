#pragma once

#include <lumcommon/containers/office/OfficeKinds.h>
#include <lumcommon/containers/office/OlePropertyValue.h>
#include <lumcommon/core/Api.h>
#include <lumcommon/core/LumCStr.h>
#include <lumcommon/core/Text.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace LumCommon {

class LumValue;
class OleCompFile;
class OleStream;

/// A row of a section's property table.
struct OleSIProperty {
    std::uint32_t id = 0;             ///< the number of the property
    std::uint32_t offset = 0;         ///< of the value, in bytes from the start of the section
    std::uint32_t type = 0;           ///< the first word there; for id 0 the number of names in the dictionary
    std::uint64_t valuePosition = 0;  ///< in the stream, of what follows the type
};

/// The name that a dictionary gives to a property.
struct OleSIName {
    std::uint32_t id = 0;  ///< the number of the property that bears the name
    std::string name;      ///< the bytes as stored, the terminating zero included
};

/// A section of a property set as far as it could be read.
struct OleSISection {
    std::uint32_t size = 0;                 ///< in bytes, as stored
    std::uint32_t propertyCount = 0;        ///< as stored; `properties` has those that are there
    std::vector<OleSIProperty> properties;  ///< in the order of the table
    std::uint64_t start = 0;                ///< in the stream
    OLE_CLSID formatId;                     ///< tells what the numbers of the section mean
    std::uint32_t offset = 0;               ///< as stored, from the start of the property set
    std::vector<OleSIName> dictionary;      ///< in the order stored
    bool hasDictionary = false;             ///< there is a property 0
};

/// Reads the property sets in which office documents keep their title, author and so on. For the usual four strings
/// OlePropertySet is simpler.
///
///     OleSummaryInformation information;
///     LumValue title;
///     if (information.initSummaryInformation(&file) == 1 && information.getProperty(2, title) == 1) ...
///
/// The layout is that of the published OLE property set format. The stream is read into memory when it is opened, as
/// much of it as is there. Sections and the dictionaries in them can overlap, so reading is limited to twice the bytes
/// of the stream, after which it counts as ended. A dictionary ends where the next property of the table begins; the
/// dictionary of the last property ends at the section's stated size.
///
/// getProperty() reads the integers and strings of the summary information, integers always as 32 bits. readProperty()
/// and readProperties() read values of every type of the format ([MS-OLEPS], Object Linking and Embedding Property Set
/// Data Structures), in both kinds of set, each number in its own width; from a damaged set they give what can still be
/// read.
///
/// Failure: -1 or false; nothing is thrown, except std::bad_alloc by what gives properties and links.
/// Ownership: the compound file is borrowed and must outlive the object, which keeps the stream open.
/// Lifecycle: call one of the init operations, once.
/// Threads: one at a time, as for the compound file.
class LUM_API OleSummaryInformation {
public:
    /// The two sets of a document: its summary, and what office programs add to it.
    enum Kind : int {
        SUMMARY = 0,           ///< title, author and other properties that any document has
        DOCUMENT_SUMMARY = 1,  ///< properties of office programs, and those that users have defined
    };

    OleSummaryInformation();
    OleSummaryInformation(const OleSummaryInformation&) = delete;
    OleSummaryInformation& operator=(const OleSummaryInformation&) = delete;
    ~OleSummaryInformation();

    /// Reads "\005SummaryInformation" and chooses the code page of its strings.
    /// @return 1, or -1 if the stream is not there or not all of it can be read, or if memory runs out; what was read
    /// before the failure is kept.
    int initSummaryInformation(OleCompFile* file);
    /// Reads "\005DocumentSummaryInformation"; the same results.
    int initDocumentSummaryInformation(OleCompFile* file);

    /// Reads the header and all sections from the current position.
    /// @return 1, or -1 if anything is cut short; the sections after a damaged one are read all the same.
    int getSummaryInformation();
    /// Reads the header: byte order, version, system, class and section count.
    bool getPropHeader();
    /// Reads the byte order. Any value other than the reversed mark is taken for this machine's order.
    bool checkEndian();

    /// A property of the summary information: an integer or a string; of a vector, the last element.
    /// @param id  1 to 9, 14, 15, 16, 18 or 19; no others are supported. 2 is the title, 3 the subject, 4 the author, 5
    ///            the keywords.
    /// A string ends at its first zero. Bytes that the code page does not allow become U+FFFD; text in an unknown code
    /// page is read as ISO 8859-1.
    /// @return 1, or -1 if the property is absent, cut short or of another type, or if this is document summary
    /// information; `out` is then unchanged.
    /// @param out  receives the value.
    int getProperty(unsigned int id, LumValue& out);
    /// The same by the name of a property of the summary.
    int getProperty(SummaryProperty id, LumValue& out) { return getProperty(static_cast<unsigned int>(id), out); }
    /// A property by its number, from the first section without a dictionary that has it, which is where getProperty()
    /// looks. Strings are in the code page of their section, else in that of the first section that states one, else in
    /// 932. The code page itself (property 1) is a number from 0 to 65535 even where it is stored with a sign.
    /// @param id  0 is not a property: it is the dictionary.
    /// @return nothing if there is none. One that is there but cannot be read is damaged, see OlePropertyValue.
    /// Cost: O(properties), plus the bytes of the value, at most three times for vectors of strings.
    std::optional<OlePropertyValue> readProperty(unsigned int id) const;
    /// The same by the property's name in the published format. The caller knows which of the two sets this is.
    std::optional<OlePropertyValue> readProperty(SummaryProperty id) const {
        return readProperty(static_cast<unsigned int>(id));
    }
    /// The same by the name of a property of the document summary.
    std::optional<OlePropertyValue> readProperty(DocumentSummaryProperty id) const {
        return readProperty(static_cast<unsigned int>(id));
    }
    /// A user-defined property by the name that a dictionary gives it: an exact match, else one that ignores case.
    /// Nothing if there is none.
    /// Cost: O(properties and names), plus the bytes of the value.
    std::optional<OlePropertyValue> readProperty(const UnicodeString& name) const;
    /// All properties in the order stored, without dictionaries, with their names if they have any.
    /// Values can overlap, so reading is limited to four times the bytes of the stream and 1,048,576 elements of
    /// vectors; the values that remain are then damaged.
    std::vector<OleProperty> readProperties() const;
    /// Appends the targets of the document's hyperlinks and the places in them, in the order stored, without empty
    /// ones.
    /// @return 1, or -1 if the document keeps no list of them or the list is cut short.
    int getHyperLinks(std::vector<UnicodeString>& out);

    /// These read a field at the current position and move past it. False if the stream has fewer bytes; the position
    /// is then at its end and the field unchanged.
    bool getWORD(unsigned short* value);
    /// The same for four bytes.
    bool getDWORD(unsigned int* value);
    /// The same for the 16 bytes of a class identifier.
    bool getCLSID(OLE_CLSID* value);
    /// `count` units of 16 bits, each widened; none if not all are there.
    bool getWSTR(wchar_t* buffer, int count);
    /// `n` bytes that are stored in reverse order.
    bool getReverse(unsigned char* p, int n);

    /// Which of the two sets it is, as the init operation was told.
    Kind getKind() const noexcept { return kind_; }
    /// Whether the stream is in the other byte order than this machine.
    bool isSwapped() const noexcept { return isSwapped_; }
    /// The header as stored; 65534 is the byte order of a stream in this machine's order.
    std::uint16_t getByteOrder() const noexcept { return byteOrder_; }
    /// As stored: 0, or 1 for sets with long names.
    std::uint16_t getVersion() const noexcept { return version_; }
    /// As stored: the system that wrote the set.
    std::uint32_t getSystemId() const noexcept { return systemId_; }
    /// As stored.
    const OLE_CLSID& getClassId() const noexcept { return classId_; }
    /// As stored, whether there are so many or not.
    std::uint32_t getSectionCount() const noexcept { return sectionCount_; }
    /// The sections that are there.
    const std::vector<OleSISection>& getSections() const noexcept { return sections_; }
    /// "cp932", "UTF-8", "cp1252" and so on; empty until a code page has been chosen.
    const UnicodeString& getCharset() const noexcept { return charset_; }

private:
    int init(OleCompFile* file, const char* name, Kind kind);
    void load();
    void chooseCharset();
    bool readSection(OleSISection& section);
    bool readDictionary(OleSISection& section, std::uint32_t nameCount, std::uint64_t end);
    bool readHyperLink(std::vector<UnicodeString>& out);
    bool readString(std::string& bytes);

    /// Whether that many follow; if not, the position moves to the end of the stream.
    bool hasBytes(std::uint64_t bytes);
    bool take(void* to, std::uint64_t bytes);
    bool spend(std::uint64_t bytes);
    void closeStream();

    OleCompFile* file_ = nullptr;
    OleStream* stream_ = nullptr;
    std::vector<unsigned char> bytes_;  // of the stream
    std::uint64_t position_ = 0;        // in bytes_; may be past their end
    std::uint64_t budgetBytes_ = 0;     // what may still be read from sections

    std::uint16_t byteOrder_ = 0;
    std::uint16_t version_ = 0;
    std::uint32_t systemId_ = 0;
    OLE_CLSID classId_;
    std::uint32_t sectionCount_ = 0;
    std::vector<OleSISection> sections_;
    Kind kind_ = SUMMARY;
    bool isSwapped_ = false;
    LumCStr charset_;
};

}  // namespace LumCommon
