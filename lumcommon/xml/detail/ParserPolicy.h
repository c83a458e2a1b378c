#pragma once

#include <lumcommon/xml/LumXmlParser.h>

namespace LumCommon::detail {

/// What a parser forgives and how far it may reach. The parts of the parser ask it by what they want to know, so that
/// only this class has to say which setting decides.
class ParserPolicy {
public:
    using Feature = LumXmlParser::Feature;

    /// Values that are no feature are ignored, and read as false.
    void set(Feature feature, bool value) noexcept {
        if (isFeature(feature)) features_[feature] = value;
    }
    bool get(Feature feature) const noexcept { return isFeature(feature) && features_[feature]; }
    /// For another document, which is read in one mode whatever is set meanwhile.
    void start() noexcept { isConforming_ = features_[LumXmlParser::FEATURE_CONFORMING]; }

    bool opensExternals() const noexcept { return !features_[LumXmlParser::FEATURE_NO_EXTERNAL]; }
    bool readsExternalDtd() const noexcept { return !features_[LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD]; }
    bool forgivesExternalDtdErrors() const noexcept {
        return features_[LumXmlParser::FEATURE_IGNORE_EXTERNAL_DTD_ERRORS];
    }
    /// An undefined entity is empty text.
    bool forgivesUndefinedEntities() const noexcept {
        return features_[LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES];
    }
    /// An error in an external parameter entity breaks off that entity alone.
    bool forgivesParameterEntityErrors() const noexcept { return forgivesUndefinedEntities(); }
    bool forgivesUndeclaredPrefixes() const noexcept {
        return features_[LumXmlParser::FEATURE_ALLOW_UNDECLARED_PREFIX];
    }
    bool takesBuiltinEncodingsOnly() const noexcept { return features_[LumXmlParser::FEATURE_BUILTIN_ENCODINGS_ONLY]; }
    bool forgivesUnknownEncodings() const noexcept {
        return features_[LumXmlParser::FEATURE_IGNORE_UNSUPPORTED_ENCODING];
    }

    // What is forgiven unless the document is read as the standard says

    /// Characters that are none of XML, bytes that are no characters, and encodings that the bytes contradict.
    bool forgivesCharacters() const noexcept { return !isConforming_; }
    /// Markup that begins in an entity and ends outside of it, and references where none may be.
    bool forgivesEntities() const noexcept { return !isConforming_; }
    /// Sections other than CDATA in content, text and references outside of the root, a document without an element.
    bool forgivesStructure() const noexcept { return !isConforming_; }
    /// Declarations of which the grammar knows nothing, but for what defines an entity. Instructions without data are
    /// then wrong.
    bool forgivesDeclarations() const noexcept { return !isConforming_; }
    /// Bindings of reserved prefixes and namespaces; some namespaces are then bound without a declaration.
    bool forgivesNamespaces() const noexcept { return !isConforming_; }

private:
    static constexpr int featureCount = LumXmlParser::FEATURE_NO_EXTERNAL + 1;

    static bool isFeature(int feature) noexcept { return feature >= 0 && feature < featureCount; }

    bool features_[featureCount] = {};
    bool isConforming_ = false;
};

}  // namespace LumCommon::detail
