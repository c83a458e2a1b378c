#include <gtest/gtest.h>

#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumValue.h>
#include <support/Utf8.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::utf8;

using Parser = LumValue (*)(const UnicodeString&);
constexpr Parser pdf = LumValue::parsePDFOpenParameters;
constexpr Parser view = [](const UnicodeString& text) { return LumValue::parseView(text, LumValue(), 0); };
constexpr Parser destination = LumValue::parseDestinationType;
constexpr Parser xlink = LumValue::parseXlinkHref;
constexpr Parser internal = [](const UnicodeString& text) { return LumValue::parseInternalDestination(text, 0); };
constexpr Parser excel = LumValue::parseExcelOpenParameters;
constexpr Parser fragment = [](const UnicodeString& text) { return LumValue::parseUriFragmentParameters(text, false); };
constexpr Parser lowerFragment = [](const UnicodeString& text) {
    return LumValue::parseUriFragmentParameters(text, true);
};
constexpr Parser allParsers[] = {pdf, view, destination, xlink, internal, excel, fragment, lowerFragment};

/// Every item in the order of the names' texts, with its type word: "name=type:text".
std::string describe(const LumValue& value) {
    std::vector<std::string> items;
    const auto add = [&items](const UnicodeString& name, const LumValue& item) {
        items.push_back(utf8(name) + "=" + std::to_string(item.getTypeWord() & 0xFFu) + ":" + utf8(item.toString()));
    };
    if (const LumNamedValueMap* map = value.getNamedValueMap()) {
        EXPECT_EQ(value.getTypeWord(), 7u);
        LumNamedValueMapIterator entries(map);
        while (entries.hasNext()) {
            const LumNamedValue entry = entries.next();
            add(entry.getName().getString(), entry);
        }
    } else if (!value.isNull()) {
        add({}, value);
    }
    std::ranges::sort(items);
    std::string result;
    for (const std::string& item : items) result += (result.empty() ? "" : " ") + item;
    return result;
}

struct Case {
    Parser parse;
    const char* fault;
    const char* text;
    const char* items;
};

// Type words: 3 name, 4 string, 9 integer, 10 real, 74 points, 187 identifier.
const Case cases[] = {
    {pdf, "defaults missing", "doc.pdf", "page=9:1 uri=4:doc.pdf view=3:xyz"},
    {pdf, "empty part dropped", "#page=2", "page=9:2 uri=4: view=3:xyz"},
    {pdf, "second # taken", "a#nameddest=b#c", "nameddest=3:b#c uri=4:a"},
    {pdf, "zoom with a place", "doc.pdf#page=3&zoom=150,10,20",
     "left=74:10pt page=9:3 top=74:20pt uri=4:doc.pdf view=3:xyz zoom=10:150"},
    {pdf, "defaults beside a destination", "doc.pdf#nameddest=Chapter2", "nameddest=3:Chapter2 uri=4:doc.pdf"},
    {pdf, "view changed", "doc.pdf#view=FitH,100", "page=9:1 top=74:100pt uri=4:doc.pdf view=3:fith"},
    {pdf, "rectangle as a view", "a#view=fitr,1,2,3,4", "page=9:1 uri=4:a view=3:xyz"},
    {pdf, "page 0", "doc.pdf#page=0", "page=9:1 uri=4:doc.pdf view=3:xyz"},
    {pdf, "units lost", "doc.pdf#viewrect=1cm,2cm,10cm,5cm",
     "height=74:141.732pt left=74:28.3465pt page=9:1 top=74:56.6929pt uri=4:doc.pdf view=3:viewrect "
     "width=74:283.465pt"},
    {view, "items without a key end the list", "&a&=3&&page=3", "page=9:3"},
    {view, "keys told apart by case", "PAGE=3&Zoom=2&NamedDest=A", "nameddest=3:A page=9:3 view=3:xyz zoom=10:2"},
    {view, "first of two kept", "page=3&page=4&page=0", "page=9:4"},
    {view, "destination of words", "nameddest='a b'", "nameddest=3:a b"},
    {view, "number as a destination", "nameddest=12", ""},
    {view, "percentage as written", "zoom=150%", "view=3:xyz zoom=10:1.5"},
    {view, "zoom of nothing", "view=fit&zoom=0,10,x", "left=74:10pt view=3:fit"},
    {view, "percentage as a place", "zoom=2,50%,1in", "top=74:72pt view=3:xyz zoom=10:2"},
    {view, "later view lost", "zoom=2&view=FITB,7", "view=3:fitb zoom=10:2"},
    {view, "empty place left out", "view=fitv,,3", "left=74:0pt view=3:fitv"},
    {view, "unreadable place left out", "view=fitbh,2em", "top=74:0pt view=3:fitbh"},
    {view, "short rectangle", "viewrect=1,x", "height=74:0pt left=74:1pt top=74:0pt view=3:viewrect width=74:0pt"},
    {destination, "empty", "", "=187:xyz-top"},
    {destination, "unknown word", "bogus", "=187:xyz-top"},
    {destination, "percentage divided", "150%", "=187:xyz-top zoom=10:150"},
    {destination, "zoom 0", "0", "=187:xyz-top"},
    {destination, "rectangle in the order of xyz", "fitr 10pt 20pt 300pt 400pt",
     "=187:fitr bottom=74:20pt left=74:10pt right=74:300pt top=74:400pt"},
    {destination, "bad place shifts the others", "FITR 1cm 2em x 4twip", "=187:fitr left=50:1cm top=234:4twip"},
    {destination, "sign as a part of the number", "fitr -1pt 2pt 3pt",
     "=187:fitr bottom=74:1pt right=74:2pt top=74:3pt"},
    {destination, "percentage as a place", "fith 50%", "=187:fith"},
    {destination, "Japanese points refused", "fitbv 3jpt", "=187:fitbv left=90:3jpt"},
    {destination, "place as zoom", "xyz-left 1in", "=187:xyz-left"},
    {destination, "places exchanged", "\tXYZ-Left-Top 2.5 1mm 3mm",
     "=187:xyz-left-top left=58:1mm top=58:3mm zoom=10:2.5"},
    {xlink, "empty text", "", ""},
    {xlink, "defaults missing", "doc.pdf", "page=9:1 uri=4:doc.pdf view=3:xyz"},
    {xlink, "defaults beside a destination", "doc.pdf#intro", "nameddest=3:intro uri=4:doc.pdf"},
    {xlink, "empty part kept", "#page=3", "page=9:3 view=3:xyz"},
    {xlink, "white space before the sign", "#page \n= 3&page= 4", "page=9:4 view=3:xyz"},
    {xlink, "no destination", "#", "nameddest=3: page=9:1 view=3:xyz"},
    {xlink, "destination in the list", "a#page=2&nameddest=c", "nameddest=3:c page=9:2 uri=4:a"},
    {internal, "empty text", " ", ""},
    {internal, "parameters after a name", "Chapter2 \n# page=3", "=187:Chapter2 nameddest=3:Chapter2 page=9:3"},
    {internal, "parameters after a number", "12#zoom=200", "=9:12 page=9:12 view=3:xyz zoom=10:200"},
    {internal, "page 0 refused", "0", "=9:0 page=9:0"},
    {internal, "text after a name", "a b#page=3", "=187:a nameddest=3:a"},
    {internal, "parameters that begin as a colour", "#face=1&page=2", "page=9:2"},
    {internal, "quotes lost", " 'a b' c ", "nameddest=3:'a b' c"},
    {excel, "both", "book.xls#sheet=2&chart=1", "chart=9:1 sheet=9:2"},
    {excel, "no fragment", "book.xls", ""},
    {excel, "negative", "a#sheet=-1", ""},
    {excel, "zero refused", "a#SHEET=0&=1&x&page=3", "sheet=9:0"},
    {excel, "list goes on after an empty item", "a#sheet=1&&chart=1", "sheet=9:1"},
    {fragment, "no fragment", "a.svg", "=4:a.svg"},
    {fragment, "empty part kept", "#a=1", "a=4:1"},
    {fragment, "number for text", "a#b=1.50&c=", "=4:a b=4:1.50 c=4:"},
    {fragment, "list goes on after an empty item", "a#b=1&&c=1", "=4:a b=4:1"},
    {fragment, "escapes of the separators", "a#b%3D=%26%20&%20c%20= d ", "=4:a b==4:& c=4:d"},
    {fragment, "first of two kept", "a#b=1&c=2&b=3", "=4:a b=4:3 c=4:2"},
    {fragment, "empty key in the place of the text", "a#%20=1", "=4:a"},
    {lowerFragment, "escape or case kept", "a.svg#Width=10%25", "=4:a.svg width=4:10%"},
    {lowerFragment, "values in lower case, keys in an order of their own", "a.svg#WIDTH=A&width=B",
     "=4:a.svg width=4:B"},
};

TEST(LinkParameters, readsItems) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(describe(c.parse(UnicodeString::fromUTF8(c.text))), c.items) << c.text;
    }
}

TEST(LinkParameters, fillsTheCompoundThatItIsGiven) {
    LumValue compound;
    compound.makeCompound();
    for (const int flag : {0, 1, -1}) {
        const LumValue result = LumValue::parseView(u"page=2", compound, flag);
        EXPECT_EQ(result, compound);
        EXPECT_EQ(describe(compound), "page=9:2");
    }
    EXPECT_EQ(describe(LumValue::parseView(u"page=2", LumValue(7), 0)), "=9:7 page=9:2");
}

TEST(LinkParameters, takesTextsWithoutContent) {
    UnicodeString bogus;
    bogus.setToBogus();
    for (const Parser parse : allParsers) {
        parse(bogus);
        EXPECT_EQ(describe(parse(UnicodeString(u"#\0page=3&sheet=1", 16))).find(":3"), std::string::npos)
            << "after U+0000";
    }
}

// Keys whose names were made earlier can come in descending order; each must not move all the others.
TEST(LinkParameters, takesKeysInAnyOrderInLinearTime) {
    constexpr int count = 200'000;
    const auto key = [](int i) { return UnicodeString::fromUTF8("linkKey" + std::to_string(i)); };
    UnicodeString descending(u"#");
    for (int i = 0; i < count; ++i) LumNameTable::getSharedNameEnum(key(i));
    for (int i = count; i-- > 0;) descending.append(key(i)).append(u"=&", 2);
    const std::clock_t start = std::clock();
    EXPECT_EQ(fragment(descending).getNamedValueMap()->getCount(), count);
    EXPECT_LT(std::clock() - start, 10 * CLOCKS_PER_SEC) << "half a minute when each key moves all the others";
}

TEST(LinkParameters, makesNoNamesOfUnknownKeys) {
    view(u"keyofnobody=1");
    excel(u"#keyofnobody=1");
    EXPECT_EQ(LumNameTable::getSharedNameTable()->lookupName(u"keyofnobody"), NAME_NULL);
}

}  // namespace
