#pragma once

#include <lumcommon/lumcommon.h>

#include <algorithm>
#include <functional>
#include <string>

namespace LumTest {

using namespace LumCommon;

inline UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

inline LumPtr<LumDocument> load(const std::string& xml) {
    LumPtr<LumDocument> document(new LumDocument);
    document->loadXml(text(xml));
    return document;
}

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

/// What the elements of a CountedDocument do while it is loaded; the test says.
struct Hooks {
    std::function<LumNode*(LumNode* parent, LumNode* child)> append;
    std::function<void(LumNode* element)> finish;
};

class HookedElement : public CountedNode<ElementNS> {
public:
    template <class... Args>
    HookedElement(Hooks& hooks, Args&&... args) : CountedNode<ElementNS>(std::forward<Args>(args)...), hooks_(hooks) {}
    LumNode* appendChildEx(LumNode* child) override {
        return hooks_.append ? hooks_.append(this, child) : ElementNS::appendChildEx(child);
    }
    void finishAttributes() override {
        if (hooks_.finish) hooks_.finish(this);
    }

private:
    Hooks& hooks_;
};

/// A derived document that makes its own node classes, counts them, and drops what it is told to.
class CountedDocument : public LumDocument {
public:
    explicit CountedDocument(NodeCounter& counter) : counter_(counter) {}

    using LumDocument::createElementNS;
    LumPtr<LumElement> createElementNS(LumName namespaceUri, LumName prefix, LumName localName) override {
        if (localName.getString() == dropped) return nullptr;
        return LumPtr<LumElement>(new HookedElement(hooks, counter_, this, namespaceUri, prefix, localName));
    }
    LumPtr<LumTextNode> createTextNode(const UnicodeString& text) override {
        if (dropsText) return nullptr;
        return LumPtr<LumTextNode>(new CountedNode<LumTextNode>(counter_, this, text));
    }

    UnicodeString dropped;  // local name
    bool dropsText = false;
    Hooks hooks;

private:
    NodeCounter& counter_;
};

/// A text that does something while it is written.
class ActingText : public LumTextNode {
public:
    ActingText(LumDocument* document, const std::function<void()>& act)
        : LumTextNode(document, UnicodeString()), act_(act) {}
    UnicodeString getText() const override { return act_(), u"t"; }

private:
    const std::function<void()>& act_;
};

}  // namespace LumTest
