#pragma once

#include <lumcommon/core/LocalPath.h>
#include <lumcommon/core/LumMutex.h>
#include <lumcommon/dom/LumNode.h>
#include <lumcommon/xml/LumXmlLimits.h>

#include <iosfwd>
#include <memory>
#include <string_view>

namespace LumCommon {

namespace detail {
class FileIdentity;
class LoadedTexts;
}  // namespace detail
class LumAttr;
class LumDocumentFragment;
class LumElement;
class LumNameTable;
class LumPINode;
class LumTextNode;
class LumXmlParser;
class LumXmlSerializer;
class XmlParserImpl;

/// The root of a tree, the factory of its nodes, its loader and its writer.
///
/// Loading pulls events from a parser and turns them into nodes through the virtual factory operations; a derived
/// document can substitute its own classes there, or return null to drop a text, or an element with its content.
///
/// Between two steps of a deferred load the document holds the node that is being filled. If that node or an ancestor
/// of it is taken out of the tree, loading ends where the removed node ends; a node that is followed by a loaded node
/// can be taken out without that effect.
/// A node may outlive its document, but must not be asked for new nodes, copies or more input after that.
///
/// Errors: parser and stream errors pass through; the tree keeps what was built before.
/// Threads: one at a time, except that loadNextNode() holds a lock, so that two threads that walk one partly loaded
/// tree do not use the parser at the same time.
class LUM_API LumDocument : public LumNode {
public:
    /// The identifier of the class, for isA().
    static constexpr unsigned int TYPE_ID = 0xF6B431AFu;

    /// An empty document, which holds the shared name table.
    LumDocument();
    /// Ends a load that has not ended, and lets go of parser, serializer and name table.
    ~LumDocument() override;

    unsigned int getTypeID() const override { return TYPE_ID; }
    bool isA(unsigned int typeId) const override;
    UnicodeString getTypeName() const override;
    LumName getLocalName() const override;
    int getNodeType() const override;
    /// Null.
    LumDocument* getOwnerDocument() const override;

    /// The first element child; null when there is none. May load.
    virtual LumElement* getDocumentElement() const;
    /// A qualified name is split at its first ":", unless that is its first character.
    [[nodiscard]] virtual LumPtr<LumElement> createElement(LumName qualifiedName);
    /// An element that stores its namespace; the name is split as by createElement().
    [[nodiscard]] virtual LumPtr<LumElement> createElementNS(LumName namespaceUri, LumName qualifiedName);
    /// The same with prefix and local name apart; a null prefix is none.
    [[nodiscard]] virtual LumPtr<LumElement> createElementNS(LumName namespaceUri, LumName prefix, LumName localName);
    /// A text node that belongs to no tree yet.
    [[nodiscard]] virtual LumPtr<LumTextNode> createTextNode(const UnicodeString& text);
    /// @param content  everything between "<?" and "?>".
    [[nodiscard]] virtual LumPtr<LumPINode> createProcessingInstruction(const UnicodeString& content);
    /// An empty holder of nodes.
    [[nodiscard]] virtual LumPtr<LumDocumentFragment> createDocumentFragment();
    /// An attribute without a value that belongs to no element yet; the name is split as by createElement().
    [[nodiscard]] virtual LumPtr<LumAttr> createAttribute(LumName qualifiedName);
    /// The same with a namespace that it stores.
    [[nodiscard]] virtual LumPtr<LumAttr> createAttributeNS(LumName namespaceUri, LumName qualifiedName);
    /// The same with prefix and local name apart; a null prefix is none.
    [[nodiscard]] virtual LumPtr<LumAttr> createAttributeNS(LumName namespaceUri, LumName prefix, LumName localName);
    /// The node for a text below `parent`; null drops the text.
    [[nodiscard]] virtual LumPtr<LumNode> createTextNodeElement(const UnicodeString& text, LumNode* parent);
    /// A copy of a node of any document, made by the factory operations of this one, which does not hold it yet:
    ///
    ///     document->getDocumentElement()->appendChild(document->importNode(*other->getDocumentElement(), true).get());
    ///
    /// Elements keep the namespaces that they have where they stand, their attributes, whose values share objects and
    /// compounds, and the flags that are not those of loading. Source positions are not copied. The other document is
    /// not changed, but read on where it is still being loaded.
    /// @param node  of any document, or of none.
    /// @param deep  whether the descendants are copied as well.
    /// @return null for a document, for an attribute that is not created, and for a node that this document does not
    /// create; descendants that it does not create are left out. A fragment is copied with its children if `deep`.
    /// Cost: linear in what is copied; constant use of the stack.
    [[nodiscard]] LumPtr<LumNode> importNode(const LumNode& node, bool deep);

    /// Load into `target` (null: the document), in place of its children.
    /// With deferred loading they only prepare: the stream or string must then outlive the loading.
    void load(const UnicodeString& uri, LumNode* target = nullptr);
    /// The same from a stream, which stays the caller's.
    void load(std::istream& in, LumNode* target = nullptr);
    /// From the file of that path, whatever is in its name; see LocalPath. The document URI is
    /// LumUri::fromLocalPath()'s.
    template <LocalPath Path>
    void load(const Path& path, LumNode* target = nullptr) {
        load(uriOfPath(path.native()), target);
    }
    /// Parses the string in place, without copying it.
    void loadXml(const UnicodeString& xml, LumNode* target = nullptr);
    /// Loads the rest of the parser's current input into the document.
    void load();
    /// Loads the parser's current input into `target` (null: the document), in place of its children; with `deferred`
    /// it only prepares.
    void doLoad(LumNode* target, bool deferred);
    /// Reads until one more node exists and returns it; null at the end of the input. An error that it throws ends the
    /// loading, and further calls return null. A nested call also returns null: one made while this operation is
    /// running, by a factory operation or hook of a derived class that asks the unfinished tree for more.
    LumNode* loadNextNode();
    /// Ends the loading at the current position; what has been loaded stays.
    void abort();
    /// With true, load operations only prepare, and the tree accessors read what they need. Off in a new document.
    void setDeferredLoad(bool deferred) noexcept { isLoadDeferred_ = deferred; }
    /// Whether load operations only prepare.
    bool isDeferredLoad() const noexcept { return isLoadDeferred_; }
    /// The base URI handed to the parser with the next input; empty in a new document.
    void setInputOption(const UnicodeString& option);
    /// What setInputOption() set.
    const UnicodeString& getInputOption() const noexcept { return inputOption_; }
    /// The URI that the document was loaded from; empty for streams and strings.
    const UnicodeString& getDocumentUri() const noexcept { return documentUri_; }
    /// For documents from strangers: LumXmlParser::setUntrusted() for the parser and for each that replaces it, and
    /// setLimits(LumXmlLimits::untrusted()). What is loaded by a path or URI is still opened; what it names is not.
    void setUntrusted();
    /// LumXmlParser::FEATURE_CONFORMING for the parser and for each that replaces it: what is loaded from now on is
    /// read as XML 1.0 and its namespaces demand, with the attributes that the document type declares. Off in a new
    /// document.
    void setConforming(bool isConforming);
    /// The parser, created if there is none. Borrowed.
    LumXmlParser* getParser();
    /// Replaces the parser and clears the document URI.
    void setParser(LumXmlParser* parser);
    /// The limits of what is loaded from now on, see LumXmlLimits: handed to the parser, to every one that the document
    /// makes and to every one that it is given. Before the first call a parser keeps its own.
    void setLimits(const LumXmlLimits& limits);
    /// Those that were set, else those of the parser, else the defaults.
    LumXmlLimits getLimits() const;

    /// Whether saving refuses what a parser would refuse or take for other markup, with error 0x813: a name that is
    /// none (a compound value's name such as "x><evil" among them), "?>" in a processing instruction, "--" in a
    /// comment, U+FFFF in a text; see LumXmlSerializer::setChecked(). On in a new document. What was loaded passes, and
    /// what has passed can be loaded again, unless the tree misses what makes a document: one root, a declaration for
    /// every prefix, attributes with different names. Off, the serializer's own setting holds.
    void setSaveChecked(bool isChecked) noexcept { isSaveChecked_ = isChecked; }
    /// What setSaveChecked() set.
    bool isSaveChecked() const noexcept { return isSaveChecked_; }

    /// Write `node` (null: the document) to a file, which is created or truncated: a save that fails leaves a torso,
    /// and saveReplacing() does not. Encodings: "UTF-8" and "Shift_JIS"; others give UTF-8 without an encoding
    /// declaration. A processing instruction is written before the node, unless it is empty. Errors: those of the
    /// serializer and of setSaveChecked(). 0x1003 also for the file that this document is still being read from (a
    /// deferred load that has not ended), by whatever path: it would be emptied before it is read. That is known of
    /// what load(uri) opened, an archive in a jar: URI included, but not of a stream of the caller's.
    void save(const UnicodeString& uri, LumNode* node = nullptr);
    /// The same in that encoding.
    void save(const UnicodeString& uri, LumNode* node, const UnicodeString& encoding);
    /// The same with a processing instruction first.
    void save(const UnicodeString& uri, LumNode* node, const UnicodeString& encoding,
              const UnicodeString& processingInstruction);
    /// To the file of that path, whatever is in its name; see LocalPath.
    template <LocalPath Path>
    void save(const Path& path, LumNode* node = nullptr, const UnicodeString& encoding = UnicodeString(),
              const UnicodeString& processingInstruction = UnicodeString()) {
        save(uriOfPath(path.native()), node, encoding, processingInstruction);
    }
    /// The same in two steps, so that at any time either what was there or all that is new stands in the file: writes a
    /// new file beside it (".lum-....tmp", created exclusively), has the system put it on the disk, and renames it.
    /// Whatever fails, what was there stays and the new file is removed. A document may replace the file that it is
    /// still being read from.
    /// - Symbolic links are followed: the file that they lead to is replaced, or created. Of a file with several names
    ///   (hard links) only this one gets the new content.
    /// - A file that exists must allow writing, and its folder must allow new files. The new one gets its rights and
    /// its
    ///   access control list, and its owner and group where the system lets; another group gets the rights of others.
    ///   Until it has them, only its owner can open it. A new file gets the rights of any new file (0666 less the
    ///   umask).
    /// - What is no regular file (a device, a pipe) holds nothing that could be kept, and is written as save() does.
    /// Errors: 0x1003 if the file cannot be replaced or created; 0x1007 if it cannot be written or renamed, also when
    /// the folder cannot be put on the disk after that, so that the new name may not outlast a power failure.
    void saveReplacing(const UnicodeString& uri, LumNode* node = nullptr,
                       const UnicodeString& encoding = UnicodeString(),
                       const UnicodeString& processingInstruction = UnicodeString());
    /// To the file of that path, whatever is in its name; see LocalPath.
    template <LocalPath Path>
    void saveReplacing(const Path& path, LumNode* node = nullptr, const UnicodeString& encoding = UnicodeString(),
                       const UnicodeString& processingInstruction = UnicodeString()) {
        saveReplacing(uriOfPath(path.native()), node, encoding, processingInstruction);
    }
    /// save() to a stream that the caller keeps.
    void save(std::ostream& out, LumNode* node, const UnicodeString& encoding);
    /// The same with a processing instruction first.
    void save(std::ostream& out, LumNode* node, const UnicodeString& encoding,
              const UnicodeString& processingInstruction);
    /// The same, with a comment and a document type declaration ("html SYSTEM ...") first, unless they are empty.
    void save(const UnicodeString& comment, const UnicodeString& doctype, std::ostream& out, LumNode* node,
              const UnicodeString& encoding);
    /// The XML text of `node`; only that of the document has an XML declaration.
    /// Errors: also 0x1007 for a text of more than 2^31-1 units, which no string can hold.
    UnicodeString saveXml(LumNode* node = nullptr);
    /// Walks the subtree of `node` and drives the serializer.
    void doSave(LumNode* node);
    /// @param startTagOnly  stops after the first element's attributes, with its start tag still open.
    /// @param node  null: the document.
    void doSave(LumNode* node, bool startTagOnly);

    /// Saving in pieces: the document element's start tag, then subtrees, then its end tag.
    void saveDocumentElement(const UnicodeString& uri);
    /// The same to a stream, which must live until closeDocumentElement() has returned.
    void saveDocumentElement(std::ostream& out);
    /// The same to the file of that path, whatever is in its name.
    template <LocalPath Path>
    void saveDocumentElement(const Path& path) {
        saveDocumentElement(uriOfPath(path.native()));
    }
    /// Writes the subtree of `node` as the next piece. The node may be taken out and released afterwards.
    void saveChildElement(LumNode* node);
    /// Writes the end tag of the document element and flushes.
    void closeDocumentElement();
    /// The serializer, created if there is none. Borrowed.
    LumXmlSerializer* getSerializer();
    /// Replaces the serializer, of which the document takes a count; null makes the next save create one.
    void setSerializer(LumXmlSerializer* serializer);

private:
    friend class LumElement;
    class Reading;

    /// The bytes of a path as the URI of that file.
    static UnicodeString uriOfPath(std::string_view path);
    LumPtr<LumNode> importAlone(const LumNode& node);
    void startLoad(LumNode* target, const UnicodeString& uri);
    LumNode* readNode(Reading& reading);
    LumElement* addOwnElement(LumNode* parent, const XmlParserImpl& parser);
    LumNode* addOwnText(LumNode* parent, const XmlParserImpl& parser);
    LumPtr<LumElement> readElement(Reading& reading);
    void setLoadedAttributes(LumElement* element, const XmlParserImpl& parser);
    LumValue takeLoadedText(std::u16string_view text);
    void checkOutput(const UnicodeString& uri) const;
    static LumNode* closeElement(LumNode* element) noexcept;
    void setCursor(LumNode* node) noexcept;
    void writeAll(LumNode* node, const UnicodeString& comment, const UnicodeString& doctype,
                  const UnicodeString& processingInstruction);

    LumNameTable* nameTable_;                    // one reference held
    std::unique_ptr<std::istream> stringInput_;  // over the string of loadXml; outlives the parser's use of it
    std::unique_ptr<LumXmlLimits> limits_;       // null: those of the parser
    LumPtr<LumXmlParser> parser_;
    LumPtr<LumXmlSerializer> serializer_;
    UnicodeString inputOption_;
    UnicodeString documentUri_;
    std::unique_ptr<const detail::FileIdentity> input_;  // the file that is being loaded; null: no file
    LumNode* loadCursor_ = nullptr;                      // the node that receives what is read next
    LumPtr<LumNode> cursorHolder_;                       // holds the cursor between reads, unless it is this document
    std::unique_ptr<detail::LoadedTexts> loadedTexts_;   // while attributes are being loaded
    LumValue loadedValue_;                               // of the attribute that is being set
    int skipDepth_ = 0;                                  // non-zero while an element that was not created is skipped
    bool isLoadDeferred_ = false;
    bool isUntrusted_ = false;
    bool isConforming_ = false;
    bool isSaveChecked_ = true;
    bool isReading_ = false;
    LumLock loadLock_;
};

}  // namespace LumCommon
