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

private:
    static constexpr int featureCount = LumXmlParser::FEATURE_NO_EXTERNAL + 1;

    static bool isFeature(int feature) noexcept {
        return (feature >= 0 && feature <= LumXmlParser::FEATURE_BUILTIN_ENCODINGS_ONLY) ||
               feature == LumXmlParser::FEATURE_NO_EXTERNAL;
    }

    bool features_[featureCount] = {};
};

}  // namespace LumCommon::detail
