#pragma once

#include <lumcommon/xml/detail/DeclaredAttributes.h>
#include <lumcommon/xml/detail/DefinitionReader.h>
#include <lumcommon/xml/detail/DocTypeReader.h>
#include <lumcommon/xml/detail/DocumentType.h>
#include <lumcommon/xml/detail/EntityExpander.h>
#include <lumcommon/xml/detail/EntityTable.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputMeter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/LiteralReader.h>
#include <lumcommon/xml/detail/MarkupReader.h>
#include <lumcommon/xml/detail/NameReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/ReferenceReader.h>
#include <lumcommon/xml/detail/XmlDeclReader.h>

namespace LumCommon::detail {

/// The parts that read everything but tags, each given those before it that it needs. Only their owner sees them all.
struct ReaderParts {
    ReaderParts() : meter(ownMeter_), inputs(meter, false) { connect(); }
    /// For an external definition, which counts as an input of its document.
    explicit ReaderParts(InputMeter& ofDocument) : meter(ofDocument), inputs(meter, true) {
        connect();
        startReading();
    }
    ReaderParts(const ReaderParts&) = delete;
    ReaderParts& operator=(const ReaderParts&) = delete;

    ParserPolicy policy;
    InputMeter& meter;
    ParserEvent event;
    InputStack inputs;
    ErrorReporter errors{event, inputs};
    EntityTable entities{policy};
    DeclaredAttributes attributes;
    NameReader names{inputs, errors};
    ReferenceReader references{inputs, names, entities, policy, errors};
    LiteralReader literals{inputs, references, entities, errors};
    XmlDeclReader declarations{event, inputs, names, literals, policy, errors};
    EntityExpander expander{event, inputs, references, declarations, entities, policy, meter, errors};
    MarkupReader markup{event, inputs, names, declarations, policy, errors};
    DefinitionReader definitions{event, inputs, names, literals, expander, entities, policy, errors};
    DeclarationReader declarationsByGrammar{event,    inputs,   names,      literals, references,
                                            expander, entities, attributes, errors};
    DocTypeReader docTypes{event, inputs, markup, expander, declarationsByGrammar, policy, errors};
    DocumentType documentType{inputs, declarations, definitions, docTypes, entities, meter, policy, errors};

    /// Makes ready for another document.
    void reset(const LumXmlLimits& limits) {
        meter.start(limits);
        startReading();
    }
    /// The text of the current event: that of an entity for a reference to it.
    const UnicodeString& eventText() const {
        if (!event.isViewed()) {
            if (event.type == LumXmlParser::ENTITY_REF && !event.entityName.isNull()) {
                event.viewValue(entities.lookup(EntityKind::General, event.entityName));
            } else {
                event.viewText();
            }
        }
        return event.view();
    }
    /// Reads what follows "&" as an event of its own.
    void readReference() {
        event.next = TokenKind::Unknown;
        event.type = LumXmlParser::ENTITY_REF;
        event.entityChar = references.read(event.entityName);
        if (event.entityName.isNull() && event.entityChar != 0) event.text.units().appendCodePoint(event.entityChar);
    }
    /// Reads the beginning of the document: what tells its encoding, and the XML declaration or instruction there.
    void start() {
        inputs.start();
        XmlInput& input = *inputs.current();
        declarations.detectEncoding(input);
        const TokenKind first = markup.lookAhead();
        if (first == TokenKind::Instruction) markup.readInstruction();
        if (first != TokenKind::Declaration) input.unleash();  // passed over, it may precede an XML declaration
    }

private:
    void connect() {
        inputs.lendTo(event);
        inputs.watchFor(errors);
    }
    void startReading() {
        const LumXmlLimits& limits = meter.limits();
        event.text.setLimit(limits.textUnits);
        policy.start();
        names.start(limits, !policy.forgivesCharacters());
        literals.setLimit(limits.valueUnits);
        event.reset();
        inputs.reset();
        entities.reset();
        attributes.clear();
        declarations.reset();
        documentType.reset();
    }

    InputMeter ownMeter_;
};

}  // namespace LumCommon::detail
