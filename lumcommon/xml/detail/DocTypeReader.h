#pragma once

#include <lumcommon/xml/detail/DeclarationReader.h>

#include <cstddef>
#include <vector>

namespace LumCommon::detail {

class MarkupReader;

/// Reads document type declarations by the whole grammar of XML 1.0, without validating: what DefinitionReader does
/// for documents whose faults are forgiven. A parameter entity between declarations must hold whole declarations, and
/// is left where it ends.
class DocTypeReader {
public:
    DocTypeReader(ParserEvent& event, InputStack& inputs, MarkupReader& markup, EntityExpander& expander,
                  DeclarationReader& declarations, const ParserPolicy& policy, ErrorReporter& errors)
        : event_(event),
          inputs_(inputs),
          markup_(markup),
          expander_(expander),
          declarations_(declarations),
          policy_(policy),
          errors_(errors) {}

    /// Reads a document type declaration after "<!DOCTYPE", which becomes the text of the event. The external
    /// definition is not read.
    ExternalId readDocType();
    /// Reads that definition after it.
    void readExternalSubset(const UnicodeString& systemId);

private:
    ExternalId readHead();
    void readSubset(std::size_t bottom);
    void recover(bool isUnread);
    bool readBetween(std::size_t bottom);
    void leaveEntity();
    void readMarkup();
    void readCommentOrInstruction(bool isComment);
    void readSection();
    void skipIgnoredSection();
    void closeSection();

    ParserEvent& event_;
    InputStack& inputs_;
    MarkupReader& markup_;
    EntityExpander& expander_;
    DeclarationReader& declarations_;
    const ParserPolicy& policy_;
    ErrorReporter& errors_;
    bool isInSectionHead_ = false;
    std::vector<std::size_t> sections_;  // depths of the inputs where the conditional sections began that are open
};

}  // namespace LumCommon::detail
