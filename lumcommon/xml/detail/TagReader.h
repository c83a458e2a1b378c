#pragma once

#include <lumcommon/names/NamespaceManager.h>
#include <lumcommon/xml/detail/AttributeList.h>
#include <lumcommon/xml/detail/NameReader.h>

#include <vector>

namespace LumCommon::detail {

class ErrorReporter;
class InputStack;
class LiteralReader;
class ParserEvent;
class ParserPolicy;

/// Reads start and end tags, and knows the elements that are open and the namespaces that are bound in them.
class TagReader {
public:
    TagReader(ParserEvent& event, InputStack& inputs, NameReader& names, LiteralReader& literals,
              const ParserPolicy& policy, ErrorReporter& errors);

    void reset();

    // After "<" and "</".
    void readStartTag();
    void readEndTag();
    /// Leaves the innermost element, after its end has been reported.
    void closeElement();
    /// Binds the namespaces that a document type implies outside of all elements.
    void bindDocType(const UnicodeString& publicId);

    /// The first attribute of that local name whose prefix is bound to the namespace here; their number when there is
    /// none.
    std::size_t findAttribute(LumName namespaceUri, LumName localName) const;
    /// Of the last start tag.
    const AttributeList& attributes() const noexcept { return attributes_; }
    const NamespaceManager& namespaces() const noexcept { return *namespaces_; }
    /// The number of open elements.
    int depth() const noexcept { return namespaces_->getScopeDepth(); }
    bool isRootSeen() const noexcept { return isRootSeen_; }
    LumName rootName() const noexcept { return rootName_; }
    LumName rootNamespace() const noexcept { return rootNamespace_; }

private:
    bool isAtTagEnd() noexcept;
    void readAttributes();
    void readAttribute();
    bool readValueFast();
    void finishStartTag();
    void bindRootNamespaces(LumName localName);
    void resolveAttributes();
    bool readEndTagFast();

    ParserEvent& event_;
    InputStack& inputs_;
    NameReader& names_;
    LiteralReader& literals_;
    const ParserPolicy& policy_;
    ErrorReporter& errors_;

    AttributeList attributes_;
    LumPtr<NamespaceManager> namespaces_;
    std::vector<const CachedName*> openNames_;  // as written; null where the cache does not know the name
    bool isRootSeen_ = false;
    LumName rootName_;
    LumName rootNamespace_;
};

}  // namespace LumCommon::detail
