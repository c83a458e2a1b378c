// Type identifiers and names of all classes: programs have compiled them in.

#include <gtest/gtest.h>
#include <lumcommon/lumcommon.h>
#include <support/Utf8.h>

#include <set>
#include <sstream>

namespace {

using namespace LumCommon;
using Identifiers = std::set<unsigned>;

/// A class of a derived library that brings no identifier and no name of its own.
class Unnamed : public LumElement {
public:
    explicit Unnamed(LumDocument* document) : LumElement(document) {}
    LumName getLocalName() const override { return NAME_block; }
};

TEST(TypeIdentifiers, everyClassAnswersForItselfAndTheClassesAboveIt) {
    constexpr unsigned base = 0xA4EBD8C4, counted = 0x90AF0240, node = 0x74DC3393, element = 0xD31942AA;
    constexpr unsigned attribute = 0xC5B6A2E2, textNode = 0x92151179, list = 0x316E063E, zipEntry = 0xB84B5A40;
    const LumPtr<LumDocument> document(new LumDocument);
    std::istringstream noBytes;
    const struct {
        const char* name;
        unsigned identifier;
        Identifiers above;  // besides the two at the root
        LumPtr<LumRCObject> object;
    } rows[] = {
        {"LumDocument", 0xF6B431AF, {node}, document},
        {"LumDocumentFragment", 0x319C59B1, {node}, document->createDocumentFragment()},
        {"LumTextNode", textNode, {node}, document->createTextNode(u"")},
        {"LumPINode", 0x1A6FA3CF, {node, textNode}, document->createProcessingInstruction(u"i")},
        {"LumElement", element, {node}, LumPtr<LumRCObject>(new Unnamed(document.get()))},
        {"Element", 0xD27D366C, {node, element}, document->createElement(NAME_block)},
        {"ElementNS", 0xC08077FC, {node, element}, document->createElementNS(NAME_xml, NAME_block)},
        {"Attr", attribute, {node}, document->createAttribute(NAME_block)},
        {"AttrNS", 0x8EEE55FD, {node, attribute}, document->createAttributeNS(NAME_xml, NAME_block)},
        {"AttrNodeMap", 0xF49D3AEA, {0x953D7483}, LumPtr<LumRCObject>(new AttrNodeMap(nullptr))},
        {"ChildNodeList", 0xA76795D5, {list}, LumPtr<LumRCObject>(new ChildNodeList(document.get()))},
        {"TreeNodeList", 0x9814666D, {list}, document->getDescendantNodes()},
        {"XmlParserImpl", 0x5C58F35A, {0x07416767}, LumXmlUtil::createXmlParser()},
        {"XmlSerializerImpl", 0x5695E1FB, {0xB2E73DE2}, LumXmlUtil::createXmlSerializer()},
        {"LumZipEntry", zipEntry, {}, LumPtr<LumRCObject>(new LumZipEntry(noBytes))},
        {"LumZipEntry", zipEntry, {}, LumPtr<LumRCObject>(new LumZipExtheaderEntry(noBytes))},
        {"LumZipFileEntry", 0x1E3480DF, {zipEntry}, LumPtr<LumRCObject>(new LumZipFileEntry(noBytes))},
        {"LumNamedValueMap", 0xE7D947B0, {}, LumPtr<LumRCObject>(new LumNamedValueMap)},
        {"LumNameTable", 0x31FB5B85, {}, LumPtr<LumRCObject>(new LumNameTable)},
        {"NamespaceManager", 0x6066CC3A, {}, LumPtr<LumRCObject>(new NamespaceManager)},
        {"NamespaceMap", 0xFD41C124, {}, LumPtr<LumRCObject>(new NamespaceMap)},
    };
    Identifiers all = {0, base, counted};
    for (const auto& row : rows) {
        all.insert(row.identifier);
        all.insert(row.above.begin(), row.above.end());
    }
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LumTest::utf8(row.object->getTypeName()), row.name);
        EXPECT_EQ(row.object->getTypeID(), row.identifier);
        Identifiers accepted = row.above;
        accepted.insert({row.identifier, base, counted});
        for (const unsigned identifier : all) {
            EXPECT_EQ(row.object->isA(identifier), accepted.contains(identifier)) << std::hex << identifier;
        }
    }
}

}  // namespace
