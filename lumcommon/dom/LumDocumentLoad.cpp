// Loading: turns the parser's events into nodes.

#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/LumAttr.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumTextNode.h>
#include <lumcommon/dom/detail/ExactType.h>
#include <lumcommon/dom/detail/LoadedTexts.h>
#include <lumcommon/dom/detail/LocalFile.h>
#include <lumcommon/dom/detail/StringInput.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/XmlParserImpl.h>

namespace LumCommon {

/// One run of reading: holds the load lock and the parser, and leaves the document in a valid state however it ends.
class LumDocument::Reading {
public:
    explicit Reading(LumDocument& document)
        : document_(document), lock_(&document.loadLock_), isNested_(document.isReading_) {
        if (isNested_) return;
        parser_ = LumPtr<LumXmlParser>(document.getParser());
        ownParser_ = detail::asExactly<XmlParserImpl>(*parser_);
        isOwnDocument_ = ownParser_ && detail::isExactly<LumDocument>(document);
        document.isReading_ = true;
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    ~Reading() {
        if (isNested_) return;
        document_.isReading_ = false;
        // After an error the parser's position and the tree no longer match, and the input may be gone by the time
        // somebody asks the tree for more.
        document_.setCursor(isDone_ ? document_.loadCursor_ : nullptr);
    }

    LumNode* readNode() {
        if (isNested_) return nullptr;
        isDone_ = false;
        LumNode* const node = document_.readNode(*this);
        isDone_ = true;
        return node;
    }

    LumXmlParser& parser() const noexcept { return *parser_; }
    /// Null when the parser is of somebody else's class.
    XmlParserImpl* ownParser() const noexcept { return ownParser_; }
    LumXmlParser::EventType nextEvent() { return ownParser_ ? ownParser_->next() : parser_->next(); }
    /// Whether nobody can tell how a child gets below `parent`: the classes are all the library's own.
    bool isOwn(const LumNode* parent) const noexcept {
        return isOwnDocument_ && (detail::isExactly<ElementNS>(*parent) || parent == &document_);
    }

private:
    LumDocument& document_;
    LumMutex lock_;
    LumPtr<LumXmlParser> parser_;  // held: a hook may replace the document's parser
    XmlParserImpl* ownParser_ = nullptr;
    bool isOwnDocument_ = false;
    bool isNested_;
    bool isDone_ = true;
};

LumXmlParser* LumDocument::getParser() {
    if (!parser_) {
        parser_ = LumXmlUtil::createXmlParser();
        if (limits_) parser_->setLimits(*limits_);
    }
    return parser_.get();
}

void LumDocument::setParser(LumXmlParser* parser) {
    parser_ = parser;
    if (parser_ && isUntrusted_) parser_->setUntrusted();
    if (parser_ && isConforming_) parser_->setFeature(LumXmlParser::FEATURE_CONFORMING, true);
    if (parser_ && limits_) parser_->setLimits(*limits_);
    documentUri_.remove();
    input_ = nullptr;
}

void LumDocument::setLimits(const LumXmlLimits& limits) {
    limits_ = std::make_unique<LumXmlLimits>(limits);
    if (parser_) parser_->setLimits(limits);
}

void LumDocument::setConforming(bool isConforming) {
    getParser()->setFeature(LumXmlParser::FEATURE_CONFORMING, isConforming);
    isConforming_ = isConforming;
}

void LumDocument::setUntrusted() {
    getParser()->setUntrusted();
    isUntrusted_ = true;
    setLimits(LumXmlLimits::untrusted());
}

LumXmlLimits LumDocument::getLimits() const {
    if (limits_) return *limits_;
    return parser_ ? parser_->getLimits() : LumXmlLimits();
}

void LumDocument::setInputOption(const UnicodeString& option) { detail::assign(inputOption_, option); }

/// Sets the node at which loading continues, and holds it, because the caller may take it out of the tree before the
/// next step. A document must not hold itself, or it would never be destroyed.
void LumDocument::setCursor(LumNode* node) noexcept {
    loadCursor_ = node;
    cursorHolder_ = node == this ? nullptr : node;
    if (!node) loadedTexts_ = nullptr;
}

void LumDocument::startLoad(LumNode* target, const UnicodeString& uri) {
    // An older load must not continue when the new input cannot be opened.
    abort();
    input_ = nullptr;
    if (!target || target == this) detail::assign(documentUri_, uri);
    getParser();
}

void LumDocument::load(const UnicodeString& uri, LumNode* target) {
    startLoad(target, uri);
    parser_->setInput(uri, UnicodeString(), inputOption_);
    input_ = std::make_unique<detail::FileIdentity>(detail::FileIdentity::ofResource(uri));
    doLoad(target, isLoadDeferred_);
}

void LumDocument::load(std::istream& in, LumNode* target) {
    startLoad(target, UnicodeString());
    parser_->setInput(in, UnicodeString(), inputOption_);
    doLoad(target, isLoadDeferred_);
}

void LumDocument::loadXml(const UnicodeString& xml, LumNode* target) {
    startLoad(target, UnicodeString());
    auto input = std::make_unique<detail::StringInput>(xml);
    parser_->setInput(*input, detail::StringInput::encodingOf(xml), inputOption_);
    stringInput_ = std::move(input);
    doLoad(target, isLoadDeferred_);
}

void LumDocument::load() { doLoad(nullptr, isLoadDeferred_); }

void LumDocument::doLoad(LumNode* target, bool deferred) {
    if (!target) target = this;
    setCursor(target);
    skipDepth_ = 0;
    target->flags_ |= FLAG_LOADING;
    target->removeAllChildNodes();
    if (deferred) return;
    Reading reading(*this);
    while (reading.readNode()) {
    }
}

LumNode* LumDocument::loadNextNode() { return Reading(*this).readNode(); }

void LumDocument::abort() { setCursor(nullptr); }

/// Marks an element as complete and returns the ancestor in which loading continues.
LumNode* LumDocument::closeElement(LumNode* element) noexcept {
    element->flags_ = (element->flags_ & ~unsigned{FLAG_LOADING}) | FLAG_COMPLETE;
    LumNode* parent = element->parent_;
    while (parent && (parent->flags_ & FLAG_STEP_OVER)) parent = parent->parent_;
    return parent;
}

LumValue LumDocument::takeLoadedText(std::u16string_view text) {
    if (!loadedTexts_) loadedTexts_ = std::make_unique<detail::LoadedTexts>();
    return loadedTexts_->take(text);
}

/// Adds the element of the current start tag to the children of `parent`, where all classes are the library's own.
LumElement* LumDocument::addOwnElement(LumNode* parent, const XmlParserImpl& parser) {
    const detail::TagView tag = parser.tagView();
    LumPtr<ElementNS> element = firstPointer(new ElementNS(this, tag.namespaceUri, tag.prefix, tag.localName));
    LumElement* const made = element.get();
    static_cast<LumNode*>(made)->flags_ |= FLAG_LOADING;
    made->sourceLine_ = parser.getLineNumber();
    made->sourceColumn_ = parser.getColumnNumber();
    // The parser has seen to it that no two attributes have the same name.
    const std::size_t count = parser.attributeViewCount();
    for (std::size_t i = 0; i < count; ++i) {
        const detail::AttributeView view = parser.attributeView(i);
        LumValue value = takeLoadedText(view.value);
        Attr* const attr = view.prefix.isNull() && view.namespaceUri.isNull()
                               ? new Attr(this, view.localName)
                               : new AttrNS(this, view.namespaceUri, view.prefix, view.localName);
        attr->takeValue(std::move(value));
        static_cast<LumNode*>(attr)->takeFirstRef();
        made->appendAttribute(attr);
    }
    parent->linkLast(made);
    static_cast<void>(element.detach());
    return made;
}

LumNode* LumDocument::addOwnText(LumNode* parent, const XmlParserImpl& parser) {
    LumNode* const text = firstPointer(new LumTextNode(this, LumTextNode::Loaded{parser.textView()})).detach();
    parent->linkLast(text);
    return text;
}

/// Sets the attributes of the current start tag on an element of any class.
void LumDocument::setLoadedAttributes(LumElement* element, const XmlParserImpl& parser) {
    const std::size_t count = parser.attributeViewCount();
    for (std::size_t i = 0; i < count; ++i) {
        const detail::AttributeView view = parser.attributeView(i);
        loadedValue_ = takeLoadedText(view.value);
        element->setAttributeEx(view.namespaceUri, view.prefix, view.localName, *loadedValue_.getStringPointer());
    }
    loadedValue_ = LumValue();
}

/// The element of the current start tag with its attributes; null when a derived document does not create it.
LumPtr<LumElement> LumDocument::readElement(Reading& reading) {
    LumXmlParser& parser = reading.parser();
    LumPtr<LumElement> element = createElementNS(parser.getNamespace(), parser.getPrefix(), parser.getName());
    if (!element) return element;
    static_cast<LumNode&>(*element).flags_ |= FLAG_LOADING;
    element->setSourceLineNumber(parser.getLineNumber());
    element->setSourceColumnNumber(parser.getColumnNumber());
    if (const XmlParserImpl* const own = reading.ownParser()) {
        setLoadedAttributes(element.get(), *own);
    } else {
        const int count = parser.getAttributeCount();
        for (int i = 0; i < count; ++i) {
            element->setAttributeEx(parser.getAttributeNamespace(i), parser.getAttributePrefix(i),
                                    parser.getAttributeName(i), parser.getAttributeValue(i));
        }
    }
    element->finishAttributes();
    return element;
}

LumNode* LumDocument::readNode(Reading& reading) {
    LumNode* parent = loadCursor_;
    // The cursor does not change while hooks run; if it is null afterwards, one of them has called abort().
    while (parent && loadCursor_) {
        const LumXmlParser::EventType event = reading.nextEvent();
        LumXmlParser& parser = reading.parser();
        if (skipDepth_ != 0 && event != LumXmlParser::END_DOCUMENT) {
            if (event == LumXmlParser::END_TAG && parser.getDepth() == skipDepth_) skipDepth_ = 0;
            continue;
        }
        switch (event) {
            case LumXmlParser::START_TAG:
                if (reading.isOwn(parent)) return loadCursor_ = addOwnElement(parent, *reading.ownParser());
                if (const LumPtr<LumElement> element = readElement(reading)) {
                    LumNode* const placed = parent->appendChildEx(element.get());
                    if (loadCursor_) loadCursor_ = placed;
                    return placed;
                }
                skipDepth_ = parser.getDepth();
                break;
            case LumXmlParser::TEXT:
                if (reading.isOwn(parent)) {
                    loadCursor_ = parent;
                    return addOwnText(parent, *reading.ownParser());
                }
                if (LumNode* const text = parent->appendChildText(parser.getText())) {
                    // Nothing is loaded into a text, so loading continues in the parent of the text.
                    const bool isLeaf = text->isText() && !(text->flags_ & FLAG_LOADING);
                    LumNode* const place = isLeaf ? text->parent_ : text;
                    if (loadCursor_) loadCursor_ = place ? place : parent;
                    return text;
                }
                break;
            case LumXmlParser::END_TAG:
                parent = closeElement(parent);
                break;
            case LumXmlParser::END_DOCUMENT:
                skipDepth_ = 0;
                closeElement(parent);
                parent = nullptr;
                break;
            default:
                throwCommonError(LumErrorCodeLumLIB::NotAllowed, LumCommonErrorSource::DocumentLoadNextNode);
        }
    }
    return loadCursor_ = nullptr;
}

}  // namespace LumCommon
