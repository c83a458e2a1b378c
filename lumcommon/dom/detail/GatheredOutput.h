#pragma once

#include <lumcommon/dom/LumTextNode.h>
#include <lumcommon/dom/XmlSerializerImpl.h>
#include <lumcommon/dom/detail/NodeFields.h>

namespace LumCommon::detail {

/// The serializer of the library, as saving uses it. While it gathers, what operations write need not be in the stream
/// when they return: it is handed over in pieces of up to 32 KB, so nothing of a caller's may run that could see the
/// difference. Then an operation also leaves out what the framework of a single operation is for.
/// The operations other than setGathering() may be called only while it gathers.
class GatheredOutput {
public:
    explicit GatheredOutput(XmlSerializerImpl& serializer) : serializer_(serializer) {}
    GatheredOutput(const GatheredOutput&) = delete;
    GatheredOutput& operator=(const GatheredOutput&) = delete;
    ~GatheredOutput() { serializer_.writer_.stopGatheringQuietly(); }

    /// Turning it off hands over the rest. Failure: those of an operation on the output.
    void setGathering(bool isGathering) {
        if (isGathering == serializer_.writer_.isGathering()) return;
        if (isGathering) serializer_.writer_.check();
        serializer_.writer_.setGathering(isGathering);
    }
    void startTag(LumName namespaceUri, LumName prefix, LumName localName) {
        serializer_.writeStartTag(namespaceUri, prefix, localName);
    }
    /// An attribute without a namespace and a prefix.
    void attribute(LumName localName, const UnicodeString& value) {
        serializer_.checkAttributeState();
        if (!serializer_.declareNamespace(LumName(), LumName(), localName, value)) {
            serializer_.writeAttribute(LumName(), localName, value);
        }
    }
    void text(const LumTextNode& node) { serializer_.writeText(NodeFields::viewText(node)); }
    void endTag(LumName namespaceUri, LumName localName) {
        serializer_.checkEndTag(namespaceUri, localName);
        serializer_.dropPrefixScope();
        serializer_.writeEndTag();
    }
    void processingInstruction(const UnicodeString& content) { serializer_.processingInstruction(content); }

private:
    XmlSerializerImpl& serializer_;
};

/// A serializer of a caller's class, which sees each operation.
class DirectOutput {
public:
    explicit DirectOutput(LumXmlSerializer& serializer) : serializer_(serializer) {}

    void setGathering(bool) {}
    void startTag(LumName namespaceUri, LumName prefix, LumName localName) {
        serializer_.startTag(namespaceUri, prefix, localName);
    }
    void attribute(LumName localName, const UnicodeString& value) {
        serializer_.attribute(LumName(), LumName(), localName, value);
    }
    void text(const LumTextNode& node) { serializer_.text(node.LumTextNode::getText()); }
    void endTag(LumName namespaceUri, LumName localName) { serializer_.endTag(namespaceUri, localName); }
    void processingInstruction(const UnicodeString& content) { serializer_.processingInstruction(content); }

private:
    LumXmlSerializer& serializer_;
};

}  // namespace LumCommon::detail
