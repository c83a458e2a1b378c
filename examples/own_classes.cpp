// A document with node classes of its own:  own_classes IN
// [own_classes]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/bridge/LumRanges.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <iostream>

using namespace LumCommon;

namespace {

/// An <item>, which has read its price once its attributes are there.
class Item : public ElementNS {
public:
    static constexpr unsigned int TYPE_ID = 0x4954454Du;  // a number of your own, different for each class

    using ElementNS::ElementNS;
    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override { return typeId == TYPE_ID || ElementNS::isA(typeId); }
    UnicodeString getTypeName() const override { return u"Item"; }
    void finishAttributes() override { price_ = getAttribute(LumName(u"price")); }

    int getPrice() const { return LumValue::parse(price_.toString()).getIntegerValue(); }

private:
    LumValue price_;
};

class Shop : public LumDocument {
public:
    using LumDocument::createElementNS;  // the other form of the operation stays visible
    LumPtr<LumElement> createElementNS(LumName namespaceUri, LumName prefix, LumName localName) override {
        if (localName == item_) return makeLum<Item>(this, namespaceUri, prefix, localName);
        if (localName == secret_) return nullptr;  // left out, with all that is in it
        return LumDocument::createElementNS(namespaceUri, prefix, localName);
    }
    LumPtr<LumNode> createTextNodeElement(const UnicodeString& text, LumNode* parent) override {
        if (UnicodeString(text).trim().isEmpty()) return nullptr;  // no nodes for line breaks and indentation
        return LumDocument::createTextNodeElement(text, parent);
    }

private:
    const LumName item_{u"item"}, secret_{u"secret"};
};

}  // namespace

int main(int, char* argv[]) try {
    const LumPtr<Shop> shop = makeLum<Shop>();
    shop->load(std::filesystem::path(argv[1]));
    int total = 0;
    for (const Item* item : descendants<Item>(shop))
        total += item->getPrice();  // nodes of other classes are passed over
    std::cout << "total " << total << '\n' << toUtf8(shop->saveXml(shop->getDocumentElement())) << '\n';
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [own_classes]
