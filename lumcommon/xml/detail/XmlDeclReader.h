#pragma once

#include <lumcommon/core/Text.h>

namespace LumCommon::detail {

class ErrorReporter;
class InputStack;
class LiteralReader;
class NameReader;
class ParserEvent;
class ParserPolicy;
class XmlInput;
enum class XmlEncoding : int;

/// Reads what stands at the beginning of an input and says how its bytes are encoded: the first bytes, the XML
/// declaration, the text declaration of an external entity.
class XmlDeclReader {
public:
    XmlDeclReader(ParserEvent& event, InputStack& inputs, NameReader& names, LiteralReader& literals,
                  const ParserPolicy& policy, ErrorReporter& errors)
        : event_(event), inputs_(inputs), names_(names), literals_(literals), policy_(policy), errors_(errors) {}

    void reset() noexcept { isSeen_ = isStandalone_ = false; }
    /// Whether the document says so.
    bool isStandalone() const noexcept { return isStandalone_; }

    /// Recognises the encoding of the topmost input from its first bytes.
    void detectEncoding(XmlInput& input);
    /// Reads `input` in the encoding of that name from now on.
    void setEncoding(XmlInput& input, const UnicodeString& name);
    /// Reads an XML declaration after its target.
    void readXmlDecl();
    /// Reads the text declaration that the topmost input may begin with.
    void readTextDecl();

private:
    void readTextDeclFields();
    void applyDeclaredEncoding(const UnicodeString& name);
    void checkDeclaredEncoding(const XmlInput& input, XmlEncoding earlier, const UnicodeString& earlierName,
                               const UnicodeString& name);
    void checkVersion(const UnicodeString& version);
    void expectEquals(const char16_t* after);
    void expectEnd();

    ParserEvent& event_;
    InputStack& inputs_;
    NameReader& names_;
    LiteralReader& literals_;
    const ParserPolicy& policy_;
    ErrorReporter& errors_;
    bool isSeen_ = false;  // the document's XML declaration
    bool isStandalone_ = false;
};

}  // namespace LumCommon::detail
