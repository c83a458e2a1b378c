#pragma once

#include <lumcommon/lumcommon.h>

#include <functional>

namespace LumTest {

using namespace LumCommon;

/// What a CountedDocument's nodes report to; it outlives them.
struct NodeCounter {
    int live = 0;
    int most = 0;

    void born() { most = std::max(most, ++live); }
    void died() { --live; }
};

template <class Base>
class CountedNode : public Base {
public:
    template <class... Args>
    explicit CountedNode(NodeCounter& counter, Args&&... args) : Base(std::forward<Args>(args)...), counter_(counter) {
        counter_.born();
    }
    ~CountedNode() override { counter_.died(); }

private:
    NodeCounter& counter_;
};

/// A derived document that makes its own node classes, counts them, and drops what it is told to.
class CountedDocument : public LumDocument {
public:
    explicit CountedDocument(NodeCounter& counter) : counter_(counter) {}

    using LumDocument::createElementNS;
    LumPtr<LumElement> createElementNS(LumName namespaceUri, LumName prefix, LumName localName) override {
        if (localName.getString() == dropped) return nullptr;
        return LumPtr<LumElement>(new CountedNode<ElementNS>(counter_, this, namespaceUri, prefix, localName));
    }
    LumPtr<LumTextNode> createTextNode(const UnicodeString& text) override {
        if (dropsText) return nullptr;
        return LumPtr<LumTextNode>(new CountedNode<LumTextNode>(counter_, this, text));
    }

    UnicodeString dropped;  // local name
    bool dropsText = false;

private:
    NodeCounter& counter_;
};

}  // namespace LumTest
