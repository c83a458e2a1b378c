#pragma once

#include <lumcommon/lumcommon.h>

namespace LumBench {

namespace lum = LumCommon;

/// An element as a program has it that works on the tree: a class of its own with a field of its own.
class OwnElement : public lum::ElementNS {
public:
    using lum::ElementNS::ElementNS;
    bool isBlock() const override { return isBlock_; }
    void finishAttributes() override { isBlock_ = getLocalName() == lum::NAME_block; }

private:
    bool isBlock_ = false;
};

class OwnText : public lum::LumTextNode {
public:
    using lum::LumTextNode::LumTextNode;
    bool isNeutral() const override { return true; }
};

/// Creates these.
class OwnDocument : public lum::LumDocument {
public:
    lum::LumPtr<lum::LumElement> createElementNS(lum::LumName namespaceUri, lum::LumName prefix,
                                                 lum::LumName localName) override {
        return lum::LumPtr<lum::LumElement>(new OwnElement(this, namespaceUri, prefix, localName));
    }
    lum::LumPtr<lum::LumTextNode> createTextNode(const lum::UnicodeString& text) override {
        return lum::LumPtr<lum::LumTextNode>(new OwnText(this, text));
    }
};

}  // namespace LumBench
