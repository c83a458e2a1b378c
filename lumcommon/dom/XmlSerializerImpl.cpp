#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/XmlSerializerImpl.h>
#include <lumcommon/dom/detail/WritableText.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/uri/LumUri.h>

#include <unicode/char16ptr.h>

#include <memory>
#include <ostream>
#include <utility>

namespace LumCommon {
namespace {

constexpr char16_t defaultGenerator[] =
    u"Lumset V3.9"
    u" R1"
    u" (3,9,2006,0901"
    u") for Linux"
    u" (c) The makers of Lumset. All rights reserved.";

/// The form in which an encoding is declared; empty for one that cannot be declared.
UnicodeString declarableEncoding(const UnicodeString& encoding) {
    const UnicodeString name = detail::toUpperCase(detail::copyOf(encoding).trim());
    if (name == u"SHIFT-JIS" || name == u"SHIFT_JIS") return u"SHIFT_JIS";
    return name == u"UTF-8" ? name : UnicodeString();
}

}  // namespace

/// Frames an operation that writes: checks the output first, and finally hands over what was written, even if the
/// operation throws.
class XmlSerializerImpl::Operation {
public:
    explicit Operation(XmlSerializerImpl& serializer) : writer_(serializer.writer_) { writer_.check(); }
    ~Operation() {
        if (!isFinished_ && !writer_.isGathering()) writer_.commitQuietly();
    }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    void finish() {
        isFinished_ = true;
        if (!writer_.isGathering()) writer_.commit();
    }

private:
    detail::XmlWriter& writer_;
    bool isFinished_ = false;
};

XmlSerializerImpl::XmlSerializerImpl() : generator_(detail::textOf(defaultGenerator)) {}

XmlSerializerImpl::~XmlSerializerImpl() {
    if (!output_.isOwned()) return;
    try {
        closeStream();
    } catch (const LumError&) {  // a destructor has nobody to report to
    } catch (const std::bad_alloc&) {
    }
}

bool XmlSerializerImpl::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumXmlSerializer::isA(typeId); }

UnicodeString XmlSerializerImpl::getTypeName() const { return u"XmlSerializerImpl"; }

void XmlSerializerImpl::setOutput(std::ostream& out, const UnicodeString& encoding) {
    resetForOutput();
    attach({&out, false}, encoding);
}

void XmlSerializerImpl::setOutput(const UnicodeString& uri, const UnicodeString& encoding) {
    resetForOutput();
    std::unique_ptr<std::ostream> file(LumUri::createOStream(uri));
    if (!file) {
        state_ = STATE_NO_OUTPUT;
        throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::SerializerSetOutput, uri);
    }
    attach(std::move(file), encoding);
}

/// Finishes the previous output and empties the scopes.
void XmlSerializerImpl::resetForOutput() {
    // An output that has been flushed or has failed is left alone: the caller may have destroyed it since.
    const bool wasBroken = writer_.isBroken();
    if (!wasBroken && (isTagOpen() || writer_.isDirty())) {
        closeStream();
    } else if (!releaseOutput() && !wasBroken) {
        throwCommonError(LumErrorCodeIO::OutputFailed, LumCommonErrorSource::SerializerCheckStream);
    }
    state_ = STATE_NO_OUTPUT;
    scopes_.reset();
    state_ = STATE_SETTING_OUTPUT;
}

void XmlSerializerImpl::attach(MaybeOwned<std::ostream> out, const UnicodeString& encoding) {
    output_ = std::move(out);
    writer_.setStream(output_.get());
    detail::assign(encoding_, encoding);
    writer_.selectShiftJis(false);  // startDocument() decides
    state_ = STATE_OUTPUT_SET;
}

/// Releases the output without flushing it. False if closing the serializer's own file shows that it is incomplete.
bool XmlSerializerImpl::releaseOutput() noexcept {
    std::unique_ptr<std::ostream> file = output_.release();
    writer_.setStream(nullptr);
    state_ = STATE_NO_OUTPUT;
    return !file || LumUri::releaseOStream(file.release());
}

void XmlSerializerImpl::closeStream() {
    if (!output_) return;
    try {
        flush();
    } catch (...) {
        releaseOutput();
        throw;
    }
    if (!releaseOutput()) {
        throwCommonError(LumErrorCodeIO::OutputFailed, LumCommonErrorSource::SerializerCheckStream);
    }
}

void XmlSerializerImpl::startDocument(const UnicodeString& encoding, const UnicodeString& standalone) {
    if (state_ != STATE_OUTPUT_SET) {
        throwCommonError(LumErrorCodeLumLIB::StartDocumentOrder, LumCommonErrorSource::SerializerStartDocument);
    }
    encoding_ = declarableEncoding(encoding.isEmpty() ? encoding_ : encoding);
    writer_.selectShiftJis(encoding_ == u"SHIFT_JIS");

    Operation operation(*this);
    if (isChecked()) {
        if (!standalone.isEmpty()) detail::checkStandalone(detail::viewOf(standalone));
        detail::checkComment(detail::viewOf(generator_));
    }
    writer_.ascii("<?xml version=\"1.0\"");
    if (!encoding_.isEmpty()) {
        writer_.ascii(" encoding=\"");
        writer_.text(encoding_, detail::TEXT_RAW);
        writer_.ascii("\"");
    }
    if (!standalone.isEmpty()) {
        writer_.ascii(" standalone=\"");
        writer_.text(standalone, detail::TEXT_RAW);
        writer_.ascii("\"");
    }
    writer_.ascii("?>");
    if (!generator_.isEmpty()) {
        writer_.ascii("<!-- ");
        writer_.text(generator_, detail::TEXT_RAW);
        writer_.ascii(" -->");
    }
    operation.finish();
    state_ = STATE_PROLOG;
}

void XmlSerializerImpl::endDocument() {
    Operation operation(*this);
    dropPrefixScope();
    while (getDepth() > 0) writeEndTag();
    operation.finish();
    flush();
    state_ = STATE_ENDED;
}

void XmlSerializerImpl::setPrefix(LumName prefix, LumName namespaceUri) {
    writer_.checkPrefix(prefix);
    if (isTagOpen()) {
        Operation operation(*this);
        closeStartTag(TagEnd::Content);
        operation.finish();
    }
    scopes_.openWaiting();
    state_ = STATE_PREFIXES_SET;
    scopes_.declare(prefix, namespaceUri);
}

LumName XmlSerializerImpl::getPrefix(LumName namespaceUri, bool generate) const {
    return scopes_.getPrefix(namespaceUri, generate);
}

int XmlSerializerImpl::getDepth() const { return scopes_.getDepth(); }

LumName XmlSerializerImpl::getNamespace() const { return scopes_.innermost().namespaceUri; }

LumName XmlSerializerImpl::getName() const { return scopes_.innermost().localName; }

/// Removes a scope that setPrefix() opened and no element used; it has no tag to close.
void XmlSerializerImpl::dropPrefixScope() {
    scopes_.dropWaiting();
    if (state_ == STATE_PREFIXES_SET) state_ = STATE_CONTENT;
}

void XmlSerializerImpl::startTag(LumName namespaceUri, LumName localName) {
    Operation operation(*this);
    if (isChecked()) detail::checkNCName(detail::viewOf(localName.getString()));
    const bool closesTag = needsClosing();
    scopes_.open(namespaceUri, localName);
    state_ = STATE_TAG_OPEN;
    writer_.startTag(closesTag, scopes_.innermost().prefix, localName);
    operation.finish();
}

void XmlSerializerImpl::startTag(LumName namespaceUri, LumName prefix, LumName localName) {
    Operation operation(*this);
    writeStartTag(namespaceUri, prefix, localName);
    operation.finish();
}

void XmlSerializerImpl::attribute(LumName namespaceUri, LumName localName, const UnicodeString& value) {
    checkAttributeState();
    if (declareNamespace(namespaceUri, LumName(), localName, value)) return;
    Operation operation(*this);
    writeAttribute(getPrefix(namespaceUri, true), localName, value);
    operation.finish();
}

void XmlSerializerImpl::attribute(LumName namespaceUri, LumName prefix, LumName localName, const UnicodeString& value) {
    checkAttributeState();
    if (declareNamespace(namespaceUri, prefix, localName, value)) return;
    Operation operation(*this);
    writeAttribute(prefix, localName, value);  // a name that is refused declares nothing
    if (!namespaceUri.isNull() && !prefix.isNull()) scopes_.declareForAttribute(prefix, namespaceUri);
    operation.finish();
}

void XmlSerializerImpl::failAttribute() const {
    throwCommonError(LumErrorCodeLumLIB::AttributeOrder, LumCommonErrorSource::SerializerAttribute);
}

/// Records an attribute that is a namespace declaration; false for any other attribute. The declaration is written
/// once, when the tag is closed, together with those that the names in the tag need.
bool XmlSerializerImpl::declareNamespace(LumName namespaceUri, LumName prefix, LumName localName,
                                         const UnicodeString& value) {
    if (namespaceUri != NAME_NS_XMLNS && prefix != NAME_xmlns && localName != NAME_xmlns) return false;
    const LumName declared = localName == NAME_xmlns ? LumName() : localName;
    writer_.checkPrefix(declared);
    scopes_.declare(declared, LumName(value));
    return true;
}

/// Ends the open start tag, with the namespace declarations of its scope.
void XmlSerializerImpl::finishStartTag(TagEnd end) {
    if (const NamespaceMap* declarations = scopes_.getDeclarations()) {
        for (const auto& [prefix, uri] : declarations->getEntries()) {
            writer_.name(prefix.isNull() ? " xmlns" : " xmlns:", LumName(), prefix);
            writer_.ascii("=\"");
            writer_.text(uri.getString(), detail::TEXT_ATTRIBUTE);
            writer_.ascii("\"");
        }
    }
    writer_.closeTag(end == TagEnd::Empty);
    state_ = end == TagEnd::Empty ? STATE_EMPTY_TAG : STATE_CONTENT;
}

void XmlSerializerImpl::endTag(LumName namespaceUri, LumName localName) {
    checkEndTag(namespaceUri, localName);
    Operation operation(*this);
    dropPrefixScope();
    writeEndTag();
    operation.finish();
}

void XmlSerializerImpl::failEndTag(LumName namespaceUri, LumName localName) const {
    if (!scopes_.hasElement()) {
        throwCommonError(LumErrorCodeLumLIB::UnexpectedEndTag, LumCommonErrorSource::SerializerEndTag);
    }
    const detail::OutputScopes::ElementNames& open = scopes_.innermost();
    const UnicodeString given = LumXmlUtil::makeNSQNameStr(namespaceUri.getString(), localName.getString());
    const UnicodeString opened =
        open.prefix.isNull() ? LumXmlUtil::makeNSQNameStr(open.namespaceUri.getString(), open.localName.getString())
                             : detail::checked(open.prefix.getString() + u":" + open.localName.getString());
    throwCommonError(LumErrorCodeLumLIB::EndTagMismatch, LumCommonErrorSource::SerializerEndTag, given, opened);
}

void XmlSerializerImpl::text(const UnicodeString& text) {
    Operation operation(*this);
    writeText(detail::viewOf(text));
    operation.finish();
}

/// A null buffer, a negative start or a length below 1 means no text.
void XmlSerializerImpl::text(const unsigned short* buffer, int start, int length) {
    Operation operation(*this);
    closeStartTag(TagEnd::Content);
    if (buffer && start >= 0 && length > 0) {
        const icu::ConstChar16Ptr units(buffer + start);
        writer_.text(units.get(), static_cast<std::size_t>(length), detail::TEXT_CONTENT);
    }
    operation.finish();
}

void XmlSerializerImpl::cdsect(const UnicodeString& text) {
    if (isChecked()) detail::checkCData(detail::viewOf(text));
    writeContent("<![CDATA[", text, detail::TEXT_RAW, "]]>");
}

void XmlSerializerImpl::entityRef(const UnicodeString& name) {
    if (isChecked()) detail::checkNCName(detail::viewOf(name));
    writeContent("&", name, detail::TEXT_RAW, ";");
}

void XmlSerializerImpl::processingInstruction(const UnicodeString& content) {
    if (isChecked()) detail::checkInstruction(detail::viewOf(content));
    writeContent("<?", content, detail::TEXT_RAW, "?>");
}

void XmlSerializerImpl::comment(const UnicodeString& text) {
    if (isChecked()) detail::checkComment(detail::viewOf(text));
    writeContent("<!--", text, detail::TEXT_RAW, "-->");
}

void XmlSerializerImpl::docdecl(const UnicodeString& content) {
    if (state_ != STATE_PROLOG) {
        throwCommonError(LumErrorCodeLumLIB::UnexpectedDocDecl, LumCommonErrorSource::SerializerDocDecl);
    }
    writeContent("<!DOCTYPE ", content, detail::TEXT_RAW, ">");
}

void XmlSerializerImpl::ignorableWhitespace(const UnicodeString& text) {
    if (isChecked()) detail::checkSpace(detail::viewOf(text));
    writeContent("", text, detail::TEXT_RAW, "");
}

void XmlSerializerImpl::writeContent(std::string_view before, const UnicodeString& content, detail::TextMode mode,
                                     std::string_view after) {
    Operation operation(*this);
    closeStartTag(TagEnd::Content);
    writer_.ascii(before);
    writer_.text(content, mode);
    writer_.ascii(after);
    operation.finish();
}

void XmlSerializerImpl::flush() {
    Operation operation(*this);
    closeStartTag(TagEnd::Content);
    operation.finish();
    writer_.sync();
}

void XmlSerializerImpl::setGenerator(const UnicodeString& generator) { detail::assign(generator_, generator); }

}  // namespace LumCommon
