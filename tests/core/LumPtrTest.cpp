#include <gtest/gtest.h>
#include <lumcommon/core/LumPtr.h>
#include <lumcommon/core/LumRCObject.h>

namespace {

using namespace LumCommon;

int liveObjects = 0;

class Base : public LumRCObject {
public:
    static constexpr unsigned int TYPE_ID = 0x11111111u;
    Base() { ++liveObjects; }
    ~Base() override { --liveObjects; }
    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override { return typeId == TYPE_ID || LumRCObject::isA(typeId); }
    UnicodeString getTypeName() const override { return u"Base"; }
    LumPtr<Base> owned;
};

class Derived final : public Base {
public:
    static constexpr unsigned int TYPE_ID = 0x22222222u;
    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override { return typeId == TYPE_ID || Base::isA(typeId); }
};

/// Its objects do not own up to the identifier of their class.
class Nameless final : public Base {
public:
    static constexpr unsigned int TYPE_ID = 0x33333333u;
};

class LumPtrTest : public testing::Test {
protected:
    void SetUp() override { liveObjects = 0; }
    void TearDown() override { EXPECT_EQ(liveObjects, 0) << "objects leaked"; }
};

TEST_F(LumPtrTest, holdsExactlyOneCountForEachPointer) {
    auto* const object = new Base;
    EXPECT_EQ(object->getRefCount(), 0);
    LumPtr<Base> a(object);
    {
        LumPtr<Base> b(a);
        const LumPtr<LumRCObject> c(b);
        EXPECT_EQ(object->getRefCount(), 3);
        b = a;
        b = object;
        b = *&b;
        EXPECT_EQ(object->getRefCount(), 3) << "assigning what is held changed the count";
        const LumPtr<Base> moved(std::move(b));
        EXPECT_TRUE(b.isNull());
        EXPECT_EQ(object->getRefCount(), 3) << "a move counted";
    }
    EXPECT_EQ(object->getRefCount(), 1);
    a->addRef();
    const LumPtr<Base> adopted(object, false);
    EXPECT_EQ(object->getRefCount(), 2) << "an adopted count was taken again";
    EXPECT_TRUE(adopted == a && adopted == object && adopted != nullptr && adopted);
    a = nullptr;
    EXPECT_EQ(liveObjects, 1);
    a = LumPtr<Base>(new Base);
    a = static_cast<Base*>(nullptr);
    EXPECT_EQ(liveObjects, 1) << "assigning null kept the last reference";
}

TEST_F(LumPtrTest, theOldObjectMayHoldTheLastReferenceToTheNew) {
    for (const bool moves : {false, true}) {
        LumPtr<Base> p(new Base);
        p->owned = new Base;
        Base* const inner = p->owned.get();
        moves ? p = std::move(p->owned) : p = inner;
        EXPECT_EQ(p.get(), inner) << moves;
        EXPECT_EQ(liveObjects, 1) << moves;
        EXPECT_EQ(p->getRefCount(), 1) << moves;
    }
    // A move over the same object gives one count back.
    LumPtr<Base> a(new Base);
    LumPtr<Base> b(a);
    a = std::move(b);
    EXPECT_TRUE(b.isNull());
    EXPECT_EQ(a->getRefCount(), 1);
    LumPtr<Base>& alias = a;
    a = std::move(alias);
    EXPECT_FALSE(a.isNull()) << "a move onto itself lost the object";
}

TEST_F(LumPtrTest, downCastAsksTheObject) {
    const LumPtr<Base> base(new Base);
    const LumPtr<Base> derived(new Derived);
    LumPtr<Derived> p;
    p = static_cast<LumObjectBase*>(derived.get());
    EXPECT_EQ(p.get(), derived.get());
    EXPECT_EQ(derived->getRefCount(), 2);
    p = static_cast<LumObjectBase*>(derived.get());
    EXPECT_EQ(derived->getRefCount(), 2) << "assigning what is held changed the count";
    p = base.get();
    EXPECT_TRUE(p.isNull()) << "an object of another class was taken";
    EXPECT_EQ(base->getRefCount(), 1);
    EXPECT_EQ(derived->getRefCount(), 1) << "the object held before was not given back";
    p = static_cast<LumObjectBase*>(derived.get());
    p = static_cast<LumObjectBase*>(nullptr);
    EXPECT_TRUE(p.isNull());

    LumPtr<Nameless> nameless(new Nameless);
    nameless = static_cast<LumObjectBase*>(nameless.get());
    EXPECT_FALSE(nameless.isNull()) << "the object held already is asked again, and denies its class";
}

}  // namespace
