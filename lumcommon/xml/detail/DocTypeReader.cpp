#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/DocTypeReader.h>
#include <lumcommon/xml/detail/EntityExpander.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/MarkupReader.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <string_view>
#include <utility>

namespace LumCommon::detail {

namespace {

using Abandoned = DeclarationReader::Abandoned;

}  // namespace

ExternalId DocTypeReader::readDocType() {
    declarations_.startDocType();
    declarations_.startSubset(true);
    declarations_.start();
    ExternalId id;
    try {
        id = readHead();
        if (declarations_.takes(u'[')) {
            readSubset(inputs_.depth());
            if (!declarations_.takes(u']')) declarations_.failAtChar();
            declarations_.skipSpace();
        }
        if (declarations_.peek() != '>') declarations_.failAtChar();
        inputs_.readChar();
    } catch (const Abandoned&) {
        declarations_.skip(false);
    }
    return id;
}

ExternalId DocTypeReader::readHead() {
    UnicodeString start(u"<!DOCTYPE");
    declarations_.requireSpace(start);
    const QName name = declarations_.readQName(XmlError::DocTypeName);
    const bool hasSpace = declarations_.skipSpace();
    if (const std::int32_t c = declarations_.peek(); c == '[' || c == '>') return {};
    if (!hasSpace) declarations_.fail(XmlError::DeclSpace, start);
    ExternalId id = declarations_.readExternalId(append(append(start, u' '), name.toString()), false);
    declarations_.expectDefinition();
    declarations_.skipSpace();
    return id;
}

void DocTypeReader::readExternalSubset(const UnicodeString& systemId) {
    const std::size_t depth = inputs_.depth();
    const bool isOptional = policy_.forgivesExternalDtdErrors();
    const ErrorReporter::DropScope drops(errors_, isOptional, inputs_.streamCount());
    try {
        expander_.expandDefinition(systemId, isOptional);
        if (inputs_.depth() == depth) return;
        declarations_.startSubset(false);
        readSubset(inputs_.depth());
        if (declarations_.peek() >= 0) declarations_.failAtChar();  // "]" ends nothing here
    } catch (const Abandoned&) {
    } catch (const ErrorReporter::Dropped&) {
    }
    inputs_.popTo(depth);
}

void DocTypeReader::readSubset(std::size_t bottom) {
    sections_.clear();
    const int streamsBelow = inputs_.streamCount();
    const ErrorReporter::DropScope drops(errors_, policy_.forgivesParameterEntityErrors(), streamsBelow);
    for (bool hasMore = true; hasMore;) {
        try {
            hasMore = readBetween(bottom);
        } catch (const Abandoned& abandoned) {
            recover(abandoned.isUnread);
        } catch (const ErrorReporter::Dropped&) {
            // What the external parameter entity breaks off goes with it.
            if (inputs_.streamCount() <= streamsBelow) throw;
            inputs_.popToStreams(streamsBelow);
            std::erase_if(sections_, [this](std::size_t depth) { return depth > inputs_.depth(); });
        }
    }
    if (!sections_.empty()) errors_.report(XmlError::SectionPlace);
    sections_.clear();
}

void DocTypeReader::recover(bool isUnread) {
    if (!std::exchange(isInSectionHead_, false) || !isUnread) {
        declarations_.skip(isUnread);
        return;
    }
    // Whether the section counts is not known.
    try {
        declarations_.skipSpace();
        if (!declarations_.takes(u'[')) declarations_.fail(XmlError::SectionKeyword);
        skipIgnoredSection();
    } catch (const Abandoned&) {
    }
}

/// Reads what may stand between declarations, or one. False at the end of the subset.
bool DocTypeReader::readBetween(std::size_t bottom) {
    const std::int32_t c = declarations_.peek();
    if (c < 0) {
        if (inputs_.depth() <= bottom) return false;
        leaveEntity();
    } else if (isXmlSpace(c)) {
        declarations_.take();
    } else if (c == '%') {
        inputs_.readChar();
        declarations_.readReference(false);
    } else if (c == '<') {
        readMarkup();
    } else if (c == ']' && !sections_.empty()) {
        closeSection();
    } else if (c == ']' && inputs_.depth() == bottom) {
        return false;
    } else {
        declarations_.take();
        errors_.report(XmlError::UnexpectedChar, charText(c));
    }
    return true;
}

void DocTypeReader::leaveEntity() {
    inputs_.leaveEntity();
    if (!sections_.empty() && sections_.back() > inputs_.depth()) {
        sections_.pop_back();
        errors_.report(XmlError::SectionPlace);
    }
}

void DocTypeReader::readMarkup() {
    declarations_.start();
    declarations_.take();
    if (declarations_.takes(u'?')) return readCommentOrInstruction(false);
    if (!declarations_.takes(u'!')) declarations_.failAtChar();
    if (declarations_.takes(u'[')) return readSection();
    if (declarations_.takes(u'-')) {
        if (!declarations_.takes(u'-')) declarations_.fail(XmlError::CommentSyntax);
        return readCommentOrInstruction(true);
    }
    static constexpr struct {
        std::u16string_view keyword;
        void (DeclarationReader::*read)();
    } kinds[] = {{u"ELEMENT", &DeclarationReader::readElement},
                 {u"ATTLIST", &DeclarationReader::readAttributeList},
                 {u"ENTITY", &DeclarationReader::readEntity},
                 {u"NOTATION", &DeclarationReader::readNotation}};
    const UnicodeString keyword = declarations_.readKeyword();
    for (const auto& kind : kinds) {
        if (kind.keyword != viewOf(keyword)) continue;
        UnicodeString start(u"<!");
        declarations_.requireSpace(append(start, keyword));
        return (declarations_.*kind.read)();
    }
    declarations_.fail(XmlError::MarkupDecl, keyword);
}

void DocTypeReader::readCommentOrInstruction(bool isComment) {
    const std::size_t start = event_.text.size();
    if (isComment) {
        markup_.readComment();
    } else {
        markup_.readInstruction();
    }
    event_.type = LumXmlParser::DOCDECL;
    if (!declarations_.isRecording()) event_.text.truncate(start);
    declarations_.record(isComment ? u"-->" : u"?>");
}

void DocTypeReader::readSection() {
    if (!declarations_.isOutside()) declarations_.fail(XmlError::SectionPlace);
    const std::size_t depth = inputs_.depth();
    isInSectionHead_ = true;
    declarations_.skipSpace();
    const UnicodeString keyword = declarations_.readKeyword();
    declarations_.skipSpace();
    if (!declarations_.takes(u'[')) declarations_.failAtChar();
    isInSectionHead_ = false;
    if (viewOf(keyword) == u"INCLUDE") {
        sections_.push_back(depth);
    } else if (viewOf(keyword) == u"IGNORE") {
        skipIgnoredSection();
    } else {
        declarations_.fail(XmlError::SectionKeyword, keyword);
    }
}

void DocTypeReader::skipIgnoredSection() {
    char16_t before[2] = {};
    for (std::size_t sections = 1; sections > 0;) {
        const std::int32_t c = declarations_.take();
        if (c < 0) declarations_.fail(XmlError::SectionPlace);
        if (before[0] == '<' && before[1] == '!' && c == '[') ++sections;
        if (before[0] == ']' && before[1] == ']' && c == '>') --sections;
        before[0] = before[1];
        before[1] = static_cast<char16_t>(c);
    }
}

void DocTypeReader::closeSection() {
    declarations_.start();
    const bool isHere = sections_.back() == inputs_.depth();
    sections_.pop_back();
    declarations_.take();
    if (!isHere || !declarations_.takes(u']') || !declarations_.takes(u'>')) declarations_.fail(XmlError::SectionPlace);
}

}  // namespace LumCommon::detail
