#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/DecimalText.h>
#include <lumcommon/values/LumColor.h>
#include <lumcommon/values/LumNamedValueMap.h>
#include <lumcommon/values/LumTokenizer.h>
#include <lumcommon/values/LumValue.h>
#include <lumcommon/values/detail/NumberText.h>
#include <lumcommon/values/detail/TokenScan.h>
#include <lumcommon/values/detail/ValueText.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace LumCommon {

namespace detail {

/// Prints a value. Nested compounds are kept on an explicit stack, as their depth is up to the caller's data.
class ValuePrinter {
public:
    void print(const LumValue& value) {
        printValue(value);
        while (!open_.empty()) printNextItem();
    }
    UnicodeString takeText() { return std::move(text_); }

private:
    struct OpenMap {
        const LumNamedValueMap* map;
        std::size_t next;  // the entry to look at next
        bool hasItems;     // whether one has been printed
    };

    void printNextItem() {
        OpenMap& top = open_.back();
        const auto& entries = top.map->entries_;
        while (top.next < entries.size() && entries[top.next].isNull()) ++top.next;
        if (top.next == entries.size()) {
            append(text_, u'}');
            open_.pop_back();
            return;
        }
        const LumNamedValue& entry = entries[top.next++];
        if (top.hasItems) append(text_, u"; ");
        top.hasItems = true;
        if (entry.getName().isNull()) {
            append(text_, u'.');
        } else {
            append(text_, entry.getName().getString());
        }
        append(text_, u": ");
        printValue(entry);  // may open a map, which invalidates `top`
    }

    void printValue(const LumValue& value) {
        switch (value.getKind()) {
            case KIND_NULL:
                break;
            case KIND_INTEGER:
                if (value.getUnit() == UNIT_CHAR) {
                    append(text_, static_cast<char16_t>(value.getIntegerValue()));
                } else if (value.getUnit() == UNIT_COLOR) {
                    append(text_, value.getColorValue().toString(false));
                } else {
                    detail::appendDecimal(text_, value.getIntegerValue());
                    append(text_, LumValue::getUnitString(value.getUnit()));
                }
                break;
            case KIND_REAL:
                appendReal(text_, static_cast<double>(value.getRealValue(UNIT_NONE)));
                append(text_, LumValue::getUnitString(value.getUnit()));
                break;
            case KIND_NAME:
                append(text_, value.getNameValue().getString());
                break;
            case KIND_STRING:
                append(text_, *value.getStringPointer());
                break;
            case KIND_OBJECT:
                append(text_, u"##");
                append(text_, value.getRCObject()->getTypeName());
                break;
            case KIND_COMPOUND:
                if (value.getUnit() == UNIT_COLOR) {
                    append(text_, value.getColorValue().toString(false));
                } else {
                    append(text_, u'{');
                    open_.push_back({value.getNamedValueMap(), 0, false});
                }
                break;
        }
    }

    UnicodeString text_;
    std::vector<OpenMap> open_;
};

}  // namespace detail

UnicodeString LumValue::toString() const {
    // A string is returned as it is, so a bogus one stays bogus.
    if (getKind() == KIND_STRING) return detail::copyOf(payload_.text->text());
    detail::ValuePrinter printer;
    printer.print(*this);
    return printer.takeText();
}

LumValue LumValue::parse(const UnicodeString& text) {
    int kind = 0;
    LumValue value = detail::parseSingleToken(text, true, kind);
    return kind == LumTokenizer::TOKEN_NONE ? LumValue(text) : value;
}

LumValue LumValue::parseNonNumeric(const UnicodeString& text) {
    int kind = 0;
    LumValue value = detail::parseSingleToken(text, false, kind);
    return kind == LumTokenizer::TOKEN_STRING || kind == LumTokenizer::TOKEN_NAME ? value : LumValue(text);
}

}  // namespace LumCommon
