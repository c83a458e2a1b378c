#include <gtest/gtest.h>
#include <lumcommon/bridge/LumRanges.h>
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <algorithm>
#include <ranges>
#include <sstream>

#include "dom/CountedDocument.h"
#include "support/DataRows.h"

namespace {

using namespace LumCommon;

template <class Range>
constexpr bool isForwardView = std::ranges::forward_range<Range>&& std::ranges::view<Range>&&
    std::ranges::borrowed_range<Range>&& std::ranges::common_range<Range>;
static_assert(isForwardView<LumNodeRange<LumAttr>> && isForwardView<LumItemRange>);
static_assert(std::ranges::random_access_range<LumOleEntries>);
static_assert(std::ranges::random_access_range<decltype(members(std::declval<LumZipFile&>()))>);

TEST(Ranges, goOnWhereTheCurrentNodeWasTakenOut) {
    for (const LumTest::Fields& row : LumTest::readRows("bridge/walks.txt")) {
        SCOPED_TRACE(toUtf8(row[5]));
        const LumPtr<LumDocument> document =
            LumTest::load("<r p='' q='' s=''><a><b/><c><d/></c></a><e/><f><g/></f></r>");
        LumElement* const root = document->getDocumentElement();
        using enum LumNodeWalk::Axis;
        UnicodeString names;
        for (LumNode* node : LumNodeRange<LumNode>(root, row[0] == u"children"     ? CHILDREN
                                                         : row[0] == u"attributes" ? ATTRIBUTES
                                                                                   : DESCENDANTS)) {
            const UnicodeString& name = node->getLocalName().getString();
            names += name + u" ";
            for (const char gone : row[1] == u"any" || row[1] == name ? toUtf8(row[2]) : "") {
                const auto all = descendants(root);
                const auto is = [&](LumNode* it) {
                    return gone == '.' ? it == node : toUtf8(it->getLocalName())[0] == gone;
                };
                LumNode* const it = *std::ranges::find_if(all, is);  // null: an attribute
                it ? it->getParentNode()->removeChild(it) : root->removeAttributeNode(static_cast<LumAttr*>(node));
            }
        }
        EXPECT_EQ(toUtf8(names.trim()), toUtf8(row[3]));
        EXPECT_EQ(toUtf8(document->saveXml(root)), toUtf8(row[4]));
    }
    EXPECT_TRUE(children(static_cast<LumNode*>(nullptr)).empty());
}

TEST(Ranges, serveTheAlgorithms) {
    const LumPtr<LumDocument> document = LumTest::load("<r>x<b i='1'><c/><d><a/></d></b>y<a/></r>");
    const LumNode* const root = document->getDocumentElement();
    EXPECT_EQ(std::ranges::distance(children<LumElement>(root)), 2);
    EXPECT_EQ(std::ranges::count(descendants<LumElement>(document), toName("a"), &LumElement::getLocalName), 2);
    const auto found = std::ranges::find_if(children(root), &LumNode::hasAttributes);
    auto after = found;
    EXPECT_EQ(after++, found) << "copies are not independent";
    EXPECT_EQ(toUtf8((*after)->getText()), "y");
    EXPECT_EQ(std::ranges::distance(descendants(*found)), 3) << "goes on behind the root of the walk";
    LumNode* at = document->getDocumentElement();  // each the last child of its parent: no climbing to the root
    for (int i = 0; i < 50000; ++i)
        at = at->appendChild(document->createElement(toName("b")).get())
                 ->getParentNode()
                 ->appendChild(document->createElement(toName("a")).get());
    EXPECT_EQ(std::ranges::distance(descendants(root)), 100007);
}

TEST(Ranges, readNoMoreOfADocumentThanTheySay) {
    const UnicodeString xml(u"<r>\n<a>\n</a>\n<a>\n</a>\n</r>");
    LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->setDeferredLoad(true);
    document->loadXml(xml);
    EXPECT_EQ((*descendants<LumElement>(document).begin())->getLocalName(), toName("r"));
    EXPECT_LE(document->getParser()->getLineNumber(), 2) << "reads ahead";
    document->loadXml(xml);
    int count = 0;
    for (LumNode* child : children(document->getDocumentElement()))
        count += !child->getParentNode()->removeChild(child).isNull();
    EXPECT_EQ(count, 5) << "loses what has not been read";
}

TEST(Ranges, walkItemsThatChange) {
    LumValue value;
    for (const char* const name : {"a", "b", "c", "d"}) value.setNamedItem(toName(name), LumValue(toText(name)));
    std::string seen;
    for (const LumNamedValue& item : items(value)) {
        seen += toUtf8(item.getName()) + toUtf8(item) + ' ';
        if (item.getName() == toName("b")) value.removeNamedItem(toName("a"));  // the current one has another index
        if (item.getName() == toName("c")) value.removeNamedItem(toName("c"));
    }
    EXPECT_EQ(seen, "aa bb cc dd ");
    EXPECT_TRUE(items(LumValue(1)).empty());
}

TEST(Ranges, listContainers) {
    LumZipFile zip(LUM_TEST_DATA "/containers/infozip.zip");
    EXPECT_EQ(std::ranges::size(members(zip)), zip.getFileEntryCount());
    EXPECT_EQ(members(zip).back(), zip.getFileEntry(zip.getFileEntryCount() - 1));
    EXPECT_TRUE(zip.isOpen());
    const std::pair<std::string, bool> openings[] = {
        {"a text, no archive", false}, {"", false}, {"PK\5\6" + std::string(18, '\0'), true}};
    for (const auto& [bytes, isOpen] : openings) {
        std::istringstream in(bytes);
        zip.open(&in, false);
        EXPECT_EQ(zip.isOpen(), isOpen) << bytes;
    }
    zip.open("there is no such file");
    EXPECT_FALSE(zip.isOpen());
    for (const char* const name : {"cyrillic.doc", "japanese.ppt", "codepage932.ole"}) {
        OleCompFile file;
        ASSERT_TRUE(file.OLEopen((LUM_TEST_DATA "/office/" + std::string(name)).c_str()));
        const LumOleEntries all = entries(file);
        for (const LumOleEntry& entry : all) {
            const OleDirPath path = all.getPath(entry);
            EXPECT_EQ(file.getDirIndex(&path), entry.info->getIndex()) << toUtf8(entry.info->getName());
        }
        std::size_t used = 0;
        for (long i = 1; i < file.getDirCount(); ++i) used += file.getDirInfo(i)->getType() != OleDirInfo::EMPTY;
        EXPECT_EQ(all.size(), used) << "entries of " << name << " are missing, or there twice";
    }
}

}  // namespace
