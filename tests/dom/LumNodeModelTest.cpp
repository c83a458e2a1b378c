// Changes of a tree, followed by a model: for each node the vector of its children. After each step all links and
// counts are compared.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

#include "dom/CountedDocument.h"

namespace LumTest {
namespace {

class Model {
public:
    explicit Model(int nodeCount) : document_(new LumDocument) {
        for (int i = 0; i < nodeCount; ++i) {
            const bool isText = i % 5 == 4;
            nodes_.push_back(isText ? LumPtr<LumNode>(document_->createTextNode(u"t"))
                                    : LumPtr<LumNode>(document_->createElement(NAME_block)));
            if (!isText) parents_.push_back(nodes_.back().get());
        }
    }

    void step(std::mt19937& random) {
        LumNode* const parent = parents_[random() % parents_.size()];
        LumNode* const node = nodes_[random() % nodes_.size()].get();
        if (isAncestorOrSelf(node, parent)) return;
        std::vector<LumNode*>& children = children_[parent];
        LumNode* const target = children.empty() ? nullptr : children[random() % children.size()];
        const unsigned operation = random() % 4;
        if (operation == 0) {
            EXPECT_EQ(parent->appendChild(node), node);
            takeOut(node);
            children.push_back(node);
        } else if (operation == 1) {
            EXPECT_EQ(parent->insertBefore(node, target), node);
            if (node == target) return;
            takeOut(node);
            children.insert(std::find(children.begin(), children.end(), target), node);
        } else if (operation == 2 && target) {
            EXPECT_TRUE(parent->replaceChild(node, target) == target);
            if (node == target) return;
            takeOut(node);
            *std::find(children.begin(), children.end(), target) = node;
        } else if (target) {
            EXPECT_TRUE(parent->removeChild(target) == target);
            takeOut(target);
        }
    }

    void check() {
        std::map<const LumNode*, const LumNode*> parentOf;
        for (const auto& [parent, children] : children_) {
            for (const LumNode* child : children) parentOf[child] = parent;
        }
        for (const LumPtr<LumNode>& node : nodes_) {
            ASSERT_EQ(node->getParentNode(), parentOf[node.get()]);
            ASSERT_EQ(node->getRefCount(), parentOf[node.get()] ? 2 : 1);
            if (!node->getParentNode()) {
                ASSERT_EQ(node->getNextSibling(), nullptr);
                ASSERT_EQ(node->getPreviousSibling(), nullptr);
            }
            const std::vector<LumNode*>& children = children_[node.get()];
            std::vector<LumNode*> forwards, backwards;
            for (LumNode* c = node->getFirstChild(); c; c = c->getNextSibling()) forwards.push_back(c);
            for (LumNode* c = node->getLastChild(); c; c = c->getPreviousSibling()) backwards.push_back(c);
            ASSERT_EQ(forwards, children);
            std::reverse(backwards.begin(), backwards.end());
            ASSERT_EQ(backwards, children);
            ASSERT_EQ(node->hasChildNodes(), !children.empty());
            ASSERT_EQ(node->getChildNodeCount(), static_cast<int>(children.size()));
        }
    }

    /// Document order by the definition: the preorder numbers, ancestors left out.
    void checkOrder() {
        std::map<const LumNode*, int> preorder;
        for (const LumPtr<LumNode>& root : nodes_) {
            if (!root->getParentNode()) number(root.get(), preorder);
        }
        for (const LumPtr<LumNode>& a : nodes_) {
            for (const LumPtr<LumNode>& b : nodes_) {
                const LumNode* common = b.get();
                while (common && !isAncestorOrSelf(common, a.get())) common = common->getParentNode();
                const bool isRelated = !common || common == a.get() || common == b.get();
                ASSERT_EQ(a->isFollowingOf(b.get()), !isRelated && preorder[a.get()] > preorder[b.get()]);
                ASSERT_EQ(a->isPrecedingOf(b.get()), !isRelated && preorder[a.get()] < preorder[b.get()]);
                ASSERT_EQ(a->isDescendantOrSelfOf(b.get()), isAncestorOrSelf(b.get(), a.get()));
                ASSERT_EQ(a->getCommonAncestorOrSelf(b.get()), common);
            }
        }
    }

private:
    static bool isAncestorOrSelf(const LumNode* ancestor, const LumNode* node) {
        while (node && node != ancestor) node = node->getParentNode();
        return node != nullptr;
    }
    void number(const LumNode* node, std::map<const LumNode*, int>& preorder) {
        preorder.emplace(node, static_cast<int>(preorder.size()));
        for (const LumNode* child : children_[node]) number(child, preorder);
    }
    void takeOut(LumNode* node) {
        for (auto& entry : children_) std::erase(entry.second, node);
    }

    LumPtr<LumDocument> document_;
    std::vector<LumPtr<LumNode>> nodes_;
    std::vector<LumNode*> parents_;
    std::map<const LumNode*, std::vector<LumNode*>> children_;
};

TEST(LumNode, treeOperationsAgreeWithVectorsOfChildren) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Model model(6 + static_cast<int>(seed) * 2);
        for (int i = 0; i < 300; ++i) {
            model.step(random);
            model.check();
            if (HasFatalFailure()) FAIL() << "at step " << i;
            if (i % 50 == 0) model.checkOrder();
            if (HasFatalFailure()) FAIL() << "order at step " << i;
        }
    }
}

}  // namespace
}  // namespace LumTest
