#include <lumcommon/core/LumStrings.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/detail/EntityTable.h>
#include <lumcommon/xml/detail/MathMLEntities.h>
#include <lumcommon/xml/detail/ParserPolicy.h>

#include <string_view>
#include <utility>

namespace LumCommon::detail {

namespace {

constexpr std::size_t predefinedCount = 5;

std::u16string_view findMathML(LumName name) { return findMathMLEntity(viewOf(name.getString())); }

}  // namespace

void EntityTable::reset() {
    loadPredefined();
    hasMathML_ = isStandalone_ = false;
    isComplete_ = true;
    general_.origins.clear();
    parameter_.origins.clear();
    general_.external.clear();
    parameter_.internal.clear();
    parameter_.external.clear();
    for (const auto& [name, text] : forNext_) assign(general_.internal[name], text);
    forNext_.clear();
}

void EntityTable::loadPredefined() {
    Map& entities = general_.internal;
    if (entities.size() == predefinedCount) return;
    entities.clear();
    isPredefinedIntact_ = forNext_.empty();
    entities[NAME_lt] = u"&#60;";
    entities[NAME_gt] = u">";
    entities[NAME_amp] = u"&#38;";
    entities[NAME_apos] = u"'";
    entities[NAME_quot] = u"\"";
}

void EntityTable::define(LumName name, const UnicodeString& text, bool isForNext) {
    assign((isForNext ? forNext_ : general_.internal)[name], text);
    isPredefinedIntact_ = false;
}

void EntityTable::declareInternal(EntityKind kind, LumName name, const UnicodeString& text) {
    if (!isDefined(kind, name)) of(kind).internal.emplace(name, copyOf(text));
}

void EntityTable::declareExternal(EntityKind kind, LumName name, const UnicodeString& systemId) {
    if (!isDefined(kind, name)) of(kind).external.emplace(name, copyOf(systemId));
}

void EntityTable::setOrigin(EntityKind kind, LumName name, EntityOrigin origin) {
    of(kind).origins.emplace(name, std::move(origin));
}

const EntityOrigin* EntityTable::findOrigin(EntityKind kind, LumName name) const {
    const auto found = of(kind).origins.find(name);
    return found == of(kind).origins.end() ? nullptr : &found->second;
}

std::optional<XmlError::Code> EntityTable::findFault(LumName name, bool isInValue) const {
    const bool isStrict = !policy_.forgivesEntities();
    if (!isDefined(EntityKind::General, name)) {
        const bool mayBeMissing = isStrict && !isComplete_ && (!isStandalone_ || isOutside_);
        const bool isForgiven = policy_.forgivesUndefinedEntities() || mayBeMissing;
        return isForgiven ? std::nullopt : std::optional(XmlError::UndefinedEntity);
    }
    if (!isStrict) return std::nullopt;
    const EntityOrigin* const origin = findOrigin(EntityKind::General, name);
    if (origin && origin->isUnparsed) return XmlError::UnparsedEntity;
    if (origin && origin->isOutside && isStandalone_ && !isOutside_) return XmlError::StandaloneEntity;
    if (isInValue && isExternal(EntityKind::General, name)) return XmlError::ExternalEntityInValue;
    return std::nullopt;
}

void EntityTable::declare(const ExternalDtd& dtd) {
    for (const auto& [name, text] : dtd.generalEntities) declareInternal(EntityKind::General, LumName(name), text);
    for (const auto& [name, text] : dtd.parameterEntities) declareInternal(EntityKind::Parameter, LumName(name), text);
    for (const auto& [name, id] : dtd.generalExternals) declareExternal(EntityKind::General, LumName(name), id);
    for (const auto& [name, id] : dtd.parameterExternals) declareExternal(EntityKind::Parameter, LumName(name), id);
}

ExternalDtd EntityTable::getDeclared() const {
    const auto collect = [](const Map& from) {
        ExternalDtd::Definitions to;
        to.reserve(from.size());
        for (const auto& [name, text] : from) to.emplace_back(copyOf(name.getString()), text);
        return to;
    };
    return {collect(general_.internal), collect(parameter_.internal), collect(general_.external),
            collect(parameter_.external)};
}

bool EntityTable::isDefined(EntityKind kind, LumName name) const {
    const Declarations& declared = of(kind);
    if (declared.internal.contains(name) || declared.external.contains(name)) return true;
    return kind == EntityKind::General && hasMathML_ && findMathML(name).data();
}

UnicodeString EntityTable::lookup(EntityKind kind, LumName name) const {
    const Declarations& declared = of(kind);
    if (const auto found = declared.internal.find(name); found != declared.internal.end()) return found->second;
    if (const auto found = declared.external.find(name); found != declared.external.end()) return found->second;
    if (kind == EntityKind::General && hasMathML_) {
        if (const std::u16string_view text = findMathML(name); text.data()) return textOf(text);
    }
    if (policy_.forgivesUndefinedEntities()) return UnicodeString();
    return LumBogusString::BOGUS_VALUE;
}

bool EntityTable::isExternal(EntityKind kind, LumName name) const {
    const Declarations& declared = of(kind);
    return !declared.internal.contains(name) && declared.external.contains(name);
}

}  // namespace LumCommon::detail
