#pragma once

#include <lumcommon/bridge/LumRanges.h>
#include <lumcommon/lumcommon.h>

#include "contest/Contender.h"

namespace LumBench {

namespace lum = LumCommon;

/// One way of using the library, beside other ways to the same end. Its only answer is the number of elements that it
/// meets.
/// @tparam Use  made from an input, which is not timed; called, it returns the number of elements.
template <class Use>
class UseTrial : public Trial {
public:
    explicit UseTrial(const Input& input) : use_(input) {}
    std::vector<std::size_t> answer() override { return {use_()}; }
    std::vector<Lap> turn() override {
        Stopwatch watch;
        use(use_());
        return {{"", watch.lap()}};
    }

private:
    Use use_;
};

/// A parser is asked for all events, and Visit for each of them.
template <class Visit, bool areTokens = false>
class ReadEvents {
public:
    explicit ReadEvents(const Input& input) : input_(input) {}
    std::size_t operator()() const {
        MemoryInput in(input_.bytes);
        const lum::LumPtr<lum::LumXmlParser> parser = lum::LumXmlUtil::createXmlParser();
        parser->setInput(in, lum::UnicodeString(), lum::UnicodeString());
        std::size_t elements = 0;
        for (int event;
             (event = areTokens ? parser->nextToken() : parser->next()) != lum::LumXmlParser::END_DOCUMENT;) {
            elements += event == lum::LumXmlParser::START_TAG;
            Visit()(*parser, event);
        }
        return elements;
    }

private:
    const Input& input_;
};

struct LookAtNothing {
    void operator()(const lum::LumXmlParser&, int) const {}
};

struct BorrowTexts {
    void operator()(const lum::LumXmlParser& parser, int event) const {
        if (event == lum::LumXmlParser::TEXT) use(static_cast<std::size_t>(parser.getText().length()));
        const int count = parser.getAttributeCount();  // -1 where there are none
        for (int i = 0; i < count; ++i) use(static_cast<std::size_t>(parser.getAttributeValue(i).length()));
    }
};

struct CopyTexts {
    void operator()(const lum::LumXmlParser& parser, int event) const {
        if (event == lum::LumXmlParser::TEXT) {
            const lum::UnicodeString text = parser.getText();
            use(static_cast<std::size_t>(text.length()));
        }
        const int count = parser.getAttributeCount();
        for (int i = 0; i < count; ++i) {
            const lum::UnicodeString value = parser.getAttributeValue(i);
            use(static_cast<std::size_t>(value.length()));
        }
    }
};

struct AskForPositions {
    void operator()(const lum::LumXmlParser& parser, int) const {
        use(static_cast<std::size_t>(parser.getLineNumber() + parser.getColumnNumber()));
    }
};

/// Loads a document and walks to its end.
template <bool isDeferred>
class LoadAndWalk {
public:
    explicit LoadAndWalk(const Input& input) : input_(input) {}
    std::size_t operator()() const {
        MemoryInput in(input_.bytes);
        const lum::LumPtr<lum::LumDocument> document(new lum::LumDocument);
        document->setDeferredLoad(isDeferred);
        document->load(in);
        std::size_t elements = 0;
        for (lum::LumNodeIterator it = document->getIterator(); it.getCurrentNode(); it.nextNode()) {
            elements += it.getCurrentNode()->isElementNode();
        }
        return elements;
    }

private:
    const Input& input_;
};

class LoadedDocument {
public:
    explicit LoadedDocument(const Input& input) : document_(new lum::LumDocument) {
        MemoryInput in(input.bytes);
        document_->load(in);
    }
    const lum::LumDocument& get() const { return *document_; }

private:
    lum::LumPtr<lum::LumDocument> document_;
};

/// A loaded document, of which Visit sees each element, found by an iterator.
template <class Visit>
class VisitElements : LoadedDocument {
public:
    using LoadedDocument::LoadedDocument;
    std::size_t operator()() const {
        std::size_t elements = 0;
        for (lum::LumNodeIterator it = get().getIterator(); it.getCurrentNode(); it.nextNode()) {
            if (!it.getCurrentNode()->isElementNode()) continue;
            ++elements;
            Visit()(*static_cast<const lum::LumElement*>(it.getCurrentNode()));
        }
        return elements;
    }
};

struct Nothing {
    void operator()(const lum::LumElement&) const {}
};
struct GetAttribute {
    void operator()(const lum::LumElement& element) const { use(element.getAttribute(lum::NAME_width).getKind()); }
};
struct GetAttributeNS {
    void operator()(const lum::LumElement& element) const {
        use(element.getAttributeNS(lum::NAME_NULL, lum::NAME_width).getKind());
    }
};
struct HasAttribute {
    void operator()(const lum::LumElement& element) const { use(element.hasAttribute(lum::NAME_width)); }
};
struct GetNodeName {
    void operator()(const lum::LumElement& element) const { use(element.getNodeName().getEnum()); }
};
struct GetLocalName {
    void operator()(const lum::LumElement& element) const { use(element.getLocalName().getEnum()); }
};

/// A loaded document, all nodes of which Way meets.
template <class Way>
class MeetNodes : LoadedDocument {
public:
    using LoadedDocument::LoadedDocument;
    std::size_t operator()() const {
        std::size_t elements = 0;
        Way()(get(), [&](const lum::LumNode& node) { elements += node.isElementNode(); });
        return elements;
    }
};

struct ByIterator {
    void operator()(const lum::LumNode& root, const auto& meet) const {
        for (lum::LumNodeIterator it = root.getIterator(); it.getCurrentNode(); it.nextNode()) {
            meet(*it.getCurrentNode());
        }
    }
};
struct BySiblings {
    void operator()(const lum::LumNode& root, const auto& meet) const {
        for (const lum::LumNode* child = root.getFirstChild(); child; child = child->getNextSibling()) {
            meet(*child);
            (*this)(*child, meet);
        }
    }
};
struct ByChildren {
    void operator()(const lum::LumNode& root, const auto& meet) const {
        for (const lum::LumNode* child : lum::children(&root)) {
            meet(*child);
            (*this)(*child, meet);
        }
    }
};
struct ByDescendants {
    void operator()(const lum::LumNode& root, const auto& meet) const {
        for (const lum::LumNode* node : lum::descendants(&root)) meet(*node);
    }
};

/// The ways that docs/performance.md compares; of each question, the first one is what the others are measured against.
inline std::vector<Entry> useEntries() {
    return {
        {"use-events", "next()", make<UseTrial<ReadEvents<LookAtNothing>>>},
        {"use-events", "nextToken()", make<UseTrial<ReadEvents<LookAtNothing, true>>>},
        {"use-events", "next(), texts and values borrowed", make<UseTrial<ReadEvents<BorrowTexts>>>},
        {"use-events", "next(), texts and values copied", make<UseTrial<ReadEvents<CopyTexts>>>},
        {"use-events", "next(), position of every event", make<UseTrial<ReadEvents<AskForPositions>>>},
        {"use-tree", "load, then walk", make<UseTrial<LoadAndWalk<false>>>},
        {"use-tree", "deferred load, as the walk goes", make<UseTrial<LoadAndWalk<true>>>},
        {"use-walk", "getFirstChild() and getNextSibling()", make<UseTrial<MeetNodes<BySiblings>>>},
        {"use-walk", "LumNodeIterator", make<UseTrial<MeetNodes<ByIterator>>>},
        {"use-walk", "children()", make<UseTrial<MeetNodes<ByChildren>>>},
        {"use-walk", "descendants()", make<UseTrial<MeetNodes<ByDescendants>>>},
        {"use-element", "a walk with LumNodeIterator", make<UseTrial<VisitElements<Nothing>>>},
        {"use-element", "and getLocalName()", make<UseTrial<VisitElements<GetLocalName>>>},
        {"use-element", "and getNodeName()", make<UseTrial<VisitElements<GetNodeName>>>},
        {"use-element", "and hasAttribute()", make<UseTrial<VisitElements<HasAttribute>>>},
        {"use-element", "and getAttribute()", make<UseTrial<VisitElements<GetAttribute>>>},
        {"use-element", "and getAttributeNS()", make<UseTrial<VisitElements<GetAttributeNS>>>},
    };
}

}  // namespace LumBench
