// Any document may be loaded, and its tree changed in any way. The first byte chooses the encoding, the second how many
// changes of three bytes each follow; the rest is the document.
// Laws: loading step by step gives the same tree as loading at once; after each change the tree is what a model of
// plain vectors says, forwards and backwards; a refused change changes nothing; a copy equals its original; what is
// saved can be loaded and gives the same tree (as XML sees it), and is then saved as the same bytes; saving is refused
// exactly where the tree has a name or a character that XML has not.

#include <lumcommon/lumcommon.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::Digest;
using LumFuzz::PieceBuffer;

namespace {

/// A tree without anything that makes a tree fast: the judge.
struct Model {
    int type = 0;
    LumName uri, prefix, local;
    UnicodeString text;
    std::vector<Model> attributes;
    std::vector<std::shared_ptr<Model>> children;
    Model* parent = nullptr;
    LumPtr<LumNode> node;  // what it stands for

    bool isNamed(const Model& other) const { return uri == other.uri && local == other.local; }
    std::size_t indexOf(const Model* child) const {
        std::size_t at = 0;
        while (children[at].get() != child) ++at;
        return at;
    }
    bool isInside(const Model* other) const {
        for (const Model* at = this; at; at = at->parent) {
            if (at == other) return true;
        }
        return false;
    }
};
using ModelPtr = std::shared_ptr<Model>;

void setNames(Model& model, const LumNode& node) {
    model.type = node.getNodeType();
    model.uri = node.getNamespaceUri();
    model.prefix = node.getPrefix();
    model.local = node.getLocalName();
}

ModelPtr modelOf(LumNode* node) {
    auto model = std::make_shared<Model>();
    setNames(*model, *node);
    model->node = LumPtr<LumNode>(node);
    if (model->type != LumNode::ELEMENT_NODE) {
        model->text = node->getText();
    } else {
        const LumNamedNodeMap* map = node->getAttributes();
        for (LumNode* attr = map->getFirstNode(); attr; attr = map->getNextNode(attr)) {
            Model& added = model->attributes.emplace_back();
            setNames(added, *attr);
            added.text = attr->getText();
        }
    }
    return model;
}

/// The model of a whole subtree, without recursion.
ModelPtr modelOfTree(LumNode* root) {
    const ModelPtr result = modelOf(root);
    for (Model* at = result.get();;) {
        LumNode* next = at->node->getFirstChild();
        while (!next && at != result.get()) {
            next = at->node->getNextSibling();
            at = at->parent;
        }
        if (!next) return result;
        at->children.push_back(modelOf(next));
        at->children.back()->parent = at;
        at = at->children.back().get();
    }
}

/// The nodes of a model in document order.
std::vector<Model*> listOf(Model* root) {
    std::vector<Model*> nodes, waiting{root};
    while (!waiting.empty()) {
        nodes.push_back(waiting.back());
        waiting.pop_back();
        const auto& children = nodes.back()->children;
        for (auto child = children.rbegin(); child != children.rend(); ++child) waiting.push_back(child->get());
    }
    return nodes;
}

/// A model dies without recursion too.
void release(const ModelPtr& root) {
    std::vector<ModelPtr> all{root};
    for (std::size_t i = 0; i < all.size(); ++i) {
        std::vector<ModelPtr> children = std::move(all[i]->children);
        all.insert(all.end(), children.begin(), children.end());
    }
}

/// Every link of every node must be that of the model.
void compare(Model* root) {
    const std::vector<Model*> nodes = listOf(root);
    LumTreeIterator walk(root->node.get(), LumTreeIterator::ENTER);
    for (const Model* model : nodes) {
        const LumNode& node = *model->node;
        FUZZ_LAW(walk.nextNode() == &node);
        FUZZ_LAW(node.getNodeType() == model->type && node.getLocalName() == model->local);
        FUZZ_LAW(node.getNamespaceUri() == model->uri && node.getPrefix() == model->prefix);
        FUZZ_LAW(node.getParentNode() == (model->parent ? model->parent->node.get() : nullptr));
        FUZZ_LAW(node.hasChildNodes() != model->children.empty());
        const LumNode* child = node.getFirstChild();
        const LumNode* previous = nullptr;
        for (const ModelPtr& expected : model->children) {
            FUZZ_LAW(child == expected->node.get() && child->getPreviousSibling() == previous);
            previous = child;
            child = child->getNextSibling();
        }
        FUZZ_LAW(!child && node.getLastChild() == previous);
        FUZZ_LAW(node.getChildNodeCount() == static_cast<int>(model->children.size()));
        if (model->type == LumNode::TEXT_NODE) FUZZ_LAW(node.getText() == model->text);
        if (model->type != LumNode::ELEMENT_NODE) continue;
        const LumNamedNodeMap* map = node.getAttributes();
        FUZZ_LAW(map->getCount() == static_cast<int>(model->attributes.size()));
        const LumNode* attr = map->getFirstNode();
        for (const Model& expected : model->attributes) {
            FUZZ_LAW(attr->getNamespaceUri() == expected.uri && attr->getLocalName() == expected.local);
            FUZZ_LAW(attr->getText() == expected.text);
            FUZZ_LAW(map->getNamedItemNS(expected.uri, expected.local) == attr);
            attr = map->getNextNode(attr);
        }
        FUZZ_LAW(!attr);
    }
    FUZZ_LAW(!walk.nextNode());
    FUZZ_LAW(root->node->getDescendantNodes()->getCount() + 1 == static_cast<int>(nodes.size()));
}

/// Document order by its definition: the place in the list, ancestors left out.
void compareOrder(Model* root, std::size_t first, std::size_t second) {
    const std::vector<Model*> nodes = listOf(root);
    const std::size_t i = first % nodes.size(), j = second % nodes.size();
    const Model* const a = nodes[i];
    const Model* const b = nodes[j];
    const Model* common = b;
    while (!a->isInside(common)) common = common->parent;
    const bool isRelated = common == a || common == b;
    FUZZ_LAW(a->node->isFollowingOf(b->node.get()) == (!isRelated && i > j));
    FUZZ_LAW(a->node->isPrecedingOf(b->node.get()) == (!isRelated && i < j));
    FUZZ_LAW(a->node->isDescendantOrSelfOf(b->node.get()) == a->isInside(b));
    FUZZ_LAW(a->node->getCommonAncestorOrSelf(b->node.get()) == common->node.get());
}

/// What XML keeps of a text: no other control characters, then one kind of line end, and only blanks in a value.
UnicodeString asRead(const UnicodeString& text, bool isValue) {
    UnicodeString result;
    bool isAfterCr = false;
    for (std::int32_t i = 0; i < text.length(); ++i) {
        const char16_t unit = text[i];
        const bool isLineEnd = unit == u'\r' || unit == u'\n';
        if (unit < 0x20 && unit != u'\t' && !isLineEnd) continue;
        if (!(unit == u'\n' && isAfterCr)) result.append(isValue && unit < 0x20 ? u' ' : isLineEnd ? u'\n' : unit);
        isAfterCr = unit == u'\r';
    }
    return result;
}

/// A text that depends on the content of a tree, but neither on how its texts are cut nor on instructions.
/// Declarations of namespaces are not content: saving makes its own.
/// @param isOriginal  of a copy, in which instructions become texts.
UnicodeString contentOf(Model* root, bool isOriginal = false) {
    UnicodeString result, text;
    const auto endText = [&] {
        result.append(asRead(text, false)).append(char16_t{1});
        text.remove();
    };
    std::vector<std::pair<Model*, bool>> waiting{{root, false}};
    while (!waiting.empty()) {
        auto [model, isLeft] = waiting.back();
        waiting.pop_back();
        const bool isInstruction = model->type == LumNode::PROCESSING_INSTRUCTION_NODE;
        if (model->type == LumNode::TEXT_NODE || (isInstruction && isOriginal)) text.append(model->text);
        if (model->type != LumNode::ELEMENT_NODE && model->type != LumNode::DOCUMENT_NODE) continue;
        endText();
        result.append(isLeft ? char16_t{2} : char16_t{3});
        if (isLeft) continue;
        result.append(model->uri.getString()).append(char16_t{4}).append(model->local.getString());
        std::multiset<UnicodeString> attributes;
        for (const Model& attr : model->attributes) {
            if (attr.uri.getString() == UnicodeString(u"http://www.w3.org/2000/xmlns/")) continue;
            attributes.insert(attr.uri.getString() + char16_t{4} + attr.local.getString() + char16_t{5} +
                              asRead(attr.text, true));
        }
        for (const UnicodeString& attribute : attributes) result.append(char16_t{6}).append(attribute);
        waiting.emplace_back(model, true);
        for (auto child = model->children.rbegin(); child != model->children.rend(); ++child) {
            waiting.emplace_back(child->get(), false);
        }
    }
    return result;
}

struct Name {
    const char16_t* uri;
    const char16_t* prefix;
    const char16_t* local;
};
// A prefix always stands for the same namespace here: one that an element and its attribute bind differently cannot be
// written.
constexpr Name names[] = {
    {u"", u"", u"a"},         {u"", u"", u"b"},         {u"urn:1", u"fz1", u"a"},
    {u"urn:2", u"fz2", u"a"}, {u"urn:1", u"fz1", u"b"}, {u"urn:3", u"", u"a"},  // this and the next for elements only
    {u"", u"", u"x><evil"},
};
const char16_t* const texts[] = {u"",
                                 u"x",
                                 u" \t\n",
                                 u"<&>'\"",
                                 u"a]]>b",
                                 u"\r\n\r",
                                 u"\x01\x0C~",
                                 u"\u00E9\u3042\u4E9C",
                                 u"\U0001F600",
                                 u"\uFFFF",
                                 u"a longer text that does not lie in the node itself"};

bool isOurs(const LumName& prefix) { return prefix.getString().startsWith(u"fz"); }

class Changes {
public:
    Changes(LumDocument* document, ModelPtr root) : document_(document), other_(new LumDocument), root_(root) {}
    ~Changes() {
        release(root_);
        if (taken_) release(taken_);
    }

    void make(unsigned what, unsigned where, unsigned which) {
        const std::vector<Model*> nodes = listOf(root_.get());
        std::vector<Model*> elements;
        for (Model* node : nodes) {
            if (node->type == LumNode::ELEMENT_NODE) elements.push_back(node);
        }
        Model* const element = elements[where % elements.size()];
        LumElement* const real = static_cast<LumElement*>(element->node.get());
        Model* const before =
            element->children.empty() ? nullptr : element->children[which % element->children.size()].get();
        const Name& name = names[which % std::size(names)];
        const UnicodeString text = texts[which % std::size(texts)];
        switch (what % 10) {
            case 0:
                insert(element, before,
                       make(document_->createElementNS(LumName(name.uri), LumName(name.prefix), LumName(name.local))));
                break;
            case 1:
                insert(element, what >= 128 ? before : nullptr, make(document_->createTextNode(text)));
                break;
            case 2:
                insert(element, before, make(document_->createProcessingInstruction(u"p d")));
                break;
            case 3:
            case 4:
                move(element, before, nodes[(where + which) % nodes.size()], what % 10 == 4);
                break;
            case 5:
                if (!before) break;
                take(before);
                break;
            case 6:
                setAttribute(element, real, names[which % 5], texts[where % std::size(texts)]);
                break;
            case 7:
                removeAttribute(element, real, names[which % 5]);
                break;
            case 8:
                copy(element, before, nodes[(where + which) % nodes.size()]);
                break;
            case 9:
                if (before && before->type == LumNode::TEXT_NODE) {
                    before->node->setText(text);
                    before->text = text;
                }
                refuse(element, real);
                break;
        }
    }

private:
    template <class T>
    static ModelPtr make(const LumPtr<T>& node) {
        return modelOf(node.get());
    }

    void place(Model* parent, Model* before, const ModelPtr& child) {
        const auto at = before ? parent->children.begin() + static_cast<std::ptrdiff_t>(parent->indexOf(before))
                               : parent->children.end();
        parent->children.insert(at, child);
        child->parent = parent;
    }

    void insert(Model* parent, Model* before, const ModelPtr& child) {
        FUZZ_LAW(parent->node->insertBefore(child->node.get(), before ? before->node.get() : nullptr) ==
                 child->node.get());
        place(parent, before, child);
    }

    ModelPtr cut(Model* child) {
        Model* const parent = child->parent;
        const std::size_t at = parent->indexOf(child);
        const ModelPtr held = parent->children[at];
        parent->children.erase(parent->children.begin() + static_cast<std::ptrdiff_t>(at));
        child->parent = nullptr;
        return held;
    }

    /// Takes a node out and keeps it; the one kept before comes back into the tree or dies.
    void take(Model* child) {
        if (taken_) release(taken_);
        FUZZ_LAW(child->parent->node->removeChild(child->node.get()).get() == child->node.get());
        taken_ = cut(child);
    }

    /// Moves a node of the tree, or brings back what was taken.
    void move(Model* parent, Model* before, Model* child, bool replaces) {
        if (!child->parent || !child->parent->parent) {  // the document and its element stay
            if (!taken_) return;
            insert(parent, before, taken_);
            taken_.reset();
            return;
        }
        if (parent->isInside(child) || before == child) return;
        if (replaces && before) {
            FUZZ_LAW(parent->node->replaceChild(child->node.get(), before->node.get()).get() == before->node.get());
            const ModelPtr held = cut(child);
            place(parent, before, held);
            release(cut(before));
        } else {
            parent->node->insertBefore(child->node.get(), before ? before->node.get() : nullptr);
            const ModelPtr held = cut(child);
            place(parent, before, held);
        }
    }

    void setAttribute(Model* element, LumElement* real, const Name& name, const UnicodeString& value) {
        Model attr;
        attr.type = LumNode::ATTRIBUTE_NODE;
        attr.uri = LumName(name.uri);
        attr.prefix = LumName(name.prefix);
        attr.local = LumName(name.local);
        attr.text = value;
        real->setAttributeNS(attr.uri, attr.prefix, attr.local, LumValue(value));
        for (Model& present : element->attributes) {
            if (!present.isNamed(attr)) continue;
            present.text = value;
            present.prefix = attr.prefix;
            return;
        }
        element->attributes.push_back(attr);
    }

    void removeAttribute(Model* element, LumElement* real, const Name& name) {
        real->removeAttributeNS(LumName(name.uri), LumName(name.local));
        std::erase_if(element->attributes, [&](const Model& attr) {
            return attr.uri == LumName(name.uri) && attr.local == LumName(name.local);
        });
    }

    void copy(Model* parent, Model* before, Model* original) {
        if (original == root_.get() || listOf(original).size() > 200 || listOf(root_.get()).size() > 2000) return;
        const LumPtr<LumNode> copied = original->node->cloneNode(true);
        const ModelPtr model = modelOfTree(copied.get());
        FUZZ_LAW(contentOf(model.get()) == contentOf(original, true));
        insert(parent, before, model);
    }

    /// Every wrong argument is refused with its code; compare() then finds nothing changed.
    void refuse(Model* element, LumElement* real) {
        const LumPtr<LumTextNode> foreign = other_->createTextNode(u"x");
        const LumPtr<LumTextNode> loose = document_->createTextNode(u"x");
        const std::pair<unsigned, std::function<void()>> refused[] = {
            {0x803, [&] { real->appendChild(nullptr); }},
            {0x806, [&] { real->appendChild(foreign.get()); }},
            {0x809, [&] { real->insertBefore(loose.get(), element->parent->node.get()); }},
            {0x809, [&] { real->removeChild(loose.get()); }},
        };
        for (const auto& [code, call] : refused) FUZZ_LAW(LumFuzz::codeOf(call) == code);
    }

    LumDocument* document_;
    LumPtr<LumDocument> other_;
    ModelPtr root_;
    ModelPtr taken_;
};

bool load(LumDocument& document, std::istream& in) {
    try {
        document.load(in);
        return document.getDocumentElement() != nullptr;
    } catch (const LumError&) {
        return false;
    }
}

/// Whether the tree cannot be written. The names of what was loaded can.
bool isRefused(Model* root, bool isShiftJis) {
    const auto isBad = [isShiftJis](const UnicodeString& text) {
        for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
            const UChar32 c = text.char32At(i);
            if (c == 0xFFFF || (isShiftJis && (c == 0xFFFE || U_IS_SURROGATE(c)))) return true;
        }
        return false;
    };
    for (const Model* node : listOf(root)) {
        if (isBad(node->text) || node->local.getString().indexOf(u'>') >= 0) return true;
        for (const Model& attr : node->attributes) {
            if (isBad(attr.text)) return true;
        }
    }
    return false;
}

std::string save(LumDocument& document, const UnicodeString& encoding) {
    std::ostringstream out;
    document.save(out, nullptr, encoding);
    return out.str();
}

/// Half a surrogate pair can be read, but Shift_JIS has no form for it: saving refuses it there.
bool hasHalfPair(const UnicodeString& text) {
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        if (U_IS_SURROGATE(text.char32At(i))) return true;
    }
    return false;
}

/// Whether the content can be written in ASCII but for texts and values, and the document binds our prefixes as we do.
bool isPlain(Model* root, bool& isAscii) {
    isAscii = true;
    for (const Model* node : listOf(root)) {
        const auto check = [&](const Model& named) {
            isAscii = isAscii && !hasHalfPair(named.text);
            for (const Name& name : names) {
                if (named.prefix.getString() == UnicodeString(name.prefix) && isOurs(named.prefix) &&
                    named.uri.getString() != UnicodeString(name.uri)) {
                    return false;
                }
            }
            for (const LumName* name : {&named.uri, &named.prefix, &named.local}) {
                const UnicodeString& text = name->getString();
                for (std::int32_t i = 0; i < text.length(); ++i) isAscii = isAscii && text[i] < 0x80;
            }
            return true;
        };
        if (!check(*node)) return false;
        for (const Model& attr : node->attributes) {
            if (!check(attr) || (attr.prefix.getString() == UnicodeString(u"xmlns") && isOurs(attr.local)))
                return false;
        }
    }
    return true;
}

void checkRoundTrip(LumDocument& document, Model* root, const UnicodeString& encoding) {
    std::string saved;
    const unsigned code = LumFuzz::codeOf([&] { saved = save(document, encoding); });
    FUZZ_LAW(code == (isRefused(root, encoding == UnicodeString(u"Shift_JIS")) ? 0x813u : 0u));
    if (code != 0) return;
    std::istringstream in(saved);
    LumPtr<LumDocument> again(new LumDocument);
    FUZZ_LAW(load(*again, in));
    const ModelPtr model = modelOfTree(again.get());
    FUZZ_LAW(contentOf(model.get()) == contentOf(root));
    const std::string settled = save(*again, encoding);
    std::istringstream in2(settled);
    LumPtr<LumDocument> third(new LumDocument);
    FUZZ_LAW(load(*third, in2));
    FUZZ_LAW(save(*third, encoding) == settled);
    release(model);
}

class NothingOutside : public LumUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString&) override { return new std::istringstream("<!ENTITY o 'out'>"); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static NothingOutside outside;
    LumUri::setUriReferenceResolver(&outside);
    Choices input(data, size);
    const unsigned how = input.byte();
    std::vector<unsigned> changes(std::size_t{3} * (input.byte() % 64));
    for (unsigned& byte : changes) byte = input.byte();

    PieceBuffer buffer(input.data(), input.size(), 4096, 4096);
    std::istream in(&buffer);
    LumPtr<LumDocument> document(new LumDocument);
    if (!load(*document, in)) return 0;
    PieceBuffer pieces(input.data(), input.size(), 1, 7);
    std::istream inPieces(&pieces);
    LumPtr<LumDocument> deferred(new LumDocument);
    deferred->setDeferredLoad(true);
    deferred->load(inPieces);
    const ModelPtr root = modelOfTree(document.get());
    const ModelPtr stepwise = modelOfTree(deferred.get());
    FUZZ_LAW(contentOf(root.get()) == contentOf(stepwise.get()));
    release(stepwise);

    bool isAscii = false;
    const bool isWritable = isPlain(root.get(), isAscii);
    Changes change(document.get(), root);
    for (std::size_t i = 0; i < changes.size(); i += 3) {
        change.make(changes[i], changes[i + 1], changes[i + 2]);
        compare(root.get());
        compareOrder(root.get(), changes[i + 1], changes[i + 2]);
    }
    compare(root.get());
    if (isWritable) checkRoundTrip(*document, root.get(), (how & 1u) != 0 && isAscii ? u"Shift_JIS" : u"UTF-8");
    return 0;
}
