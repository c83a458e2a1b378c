#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>
#include <lumcommon/names/LumName.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace LumCommon {

class LumColor;
class LumLength;
class LumNamedValue;
class LumNamedValueMap;
class LumRCObject;

namespace detail {
class ValueText;
}

/// What a LumValue holds; bits 0-2 of its type word.
enum LumValueKind : std::uint32_t {
    KIND_NULL = 0,      ///< no value
    KIND_INTEGER = 1,   ///< signed 32-bit
    KIND_REAL = 2,      ///< 32-bit float
    KIND_NAME = 3,      ///< LumNameEnum
    KIND_STRING = 4,    ///< a string that the value owns; copying the value copies it
    KIND_OBJECT = 5,    ///< a counted LumRCObject, shared by all copies
    KIND_COMPOUND = 7,  ///< a counted LumNamedValueMap, shared by all copies: all see a change
};

/// Unit of a number, or subtype of another kind; bits 3-7 of the type word.
enum LumValueUnitType : std::uint32_t {
    UNIT_NONE = 0,     ///< none: names, strings, objects and other values without a subtype
    UNIT_NUMBER = 1,   ///< a number without unit
    UNIT_PERCENT = 2,  ///< "%": of what the property says
    UNIT_EM = 3,       ///< "em": the size of the font
    UNIT_EX = 4,       ///< "ex": the height of a small x
    UNIT_PX = 5,       ///< "px": pixels, of a size that the program knows
    UNIT_CM = 6,       ///< "cm"
    UNIT_MM = 7,       ///< "mm"
    UNIT_IN = 8,       ///< "in": 72 points
    UNIT_PT = 9,       ///< the normal unit of lengths
    UNIT_PC = 10,      ///< "pc": 12 points
    UNIT_JPT = 11,     ///< Japanese point; does not convert into other lengths
    UNIT_Q = 12,       ///< "q": a quarter of a millimetre
    UNIT_DEG = 13,     ///< the normal unit of angles
    UNIT_RAD = 14,     ///< "rad"
    UNIT_GRAD = 15,    ///< "grad": 400 of them are a full turn
    UNIT_MS = 16,      ///< the normal unit of times
    UNIT_S = 17,       ///< "s"
    UNIT_HZ = 18,      ///< the normal unit of frequencies
    UNIT_KHZ = 19,     ///< "kHz"
    UNIT_CHAR = 20,    ///< subtype: an integer that is the code of a delimiter
    UNIT_QUOTED = 21,  ///< subtype: a string from a quoted literal
    UNIT_URI = 22,     ///< subtype: a string from url(...)
    UNIT_IDENT = 23,   ///< subtype: a name from an identifier
    UNIT_COLOR = 24,   ///< subtype: an integer 00RRGGBB or a compound that is a colour
    UNIT_DPI = 28,     ///< dots an inch
    UNIT_TWIP = 29,    ///< a twentieth of a point
    UNIT_PT2 = 30,     ///< square points
    UNIT_PT3 = 31,     ///< cubic points
};

/// The typed value of a property: a number with a unit, a name, a string, a colour, an object, or a compound of named
/// values, in two machine words.
///
/// No operation throws except when memory runs out. Meaningless arithmetic gives NULL_VALUE, a failed conversion NaN or
/// 0, and parse() gives a text it cannot interpret as a string.
///
/// Ownership: strings are copied with the value; objects and compounds are counted and shared.
/// Cost: only strings allocate.
/// Threads: a value belongs to one thread at a time; copies that share an object may belong to different threads.
class LUM_API LumValue {
public:
    /// The value that is none, for references to it.
    static const LumValue NULL_VALUE;

    constexpr LumValue() noexcept : payload_{.pointer = nullptr} {}
    /// A number without unit.
    LumValue(int value) noexcept;
    /// A real number in `unit`.
    LumValue(float value, LumValueUnitType unit) noexcept;
    /// A real number without unit.
    ///
    ///     element->setAttribute(NAME_line_height, 1.5);
    template <std::floating_point Number>
    LumValue(Number value) noexcept : LumValue(static_cast<float>(value), UNIT_NUMBER) {}
    /// A number without unit: an integer, or, beyond the range of int, the nearest real number.
    template <std::integral Number>
    requires(sizeof(Number) > sizeof(int)) LumValue(Number value)
    noexcept
        : LumValue(std::in_range<int>(value) ? LumValue(static_cast<int>(value))
                                             : LumValue(static_cast<float>(value))) {}
    /// A truth value is neither the number 1 nor the name "true": say which is meant.
    template <std::same_as<bool> Truth>
    LumValue(Truth value) = delete;
    /// A name. The value holds no reference on the name table.
    LumValue(LumName name) noexcept;
    /// A name by its identifier.
    LumValue(LumNameEnum name) noexcept : LumValue(LumName(name)) {}
    /// A string that is not interpreted: parse() does that. Failure: std::bad_alloc.
    LumValue(const UnicodeString& text);
    /// An integer 00RRGGBB (UNIT_COLOR) for a plain colour, else a compound (UNIT_COLOR): the RGB value is its unnamed
    /// item, and the item with the name of the colour space holds the components. Parts of a
    /// separation that were not given ("value" for the tint, the four inks, "rgb" for the fallback) are left out.
    LumValue(const LumColor& color);
    /// Adds a reference to the object; null gives the null value.
    LumValue(LumRCObject* object) noexcept;
    /// A compound that shares the map, with one more count of it; null gives the null value.
    LumValue(LumNamedValueMap* map) noexcept;
    /// The null value.
    LumValue(std::nullptr_t) noexcept : LumValue() {}
    /// Copies carry the name bits as well.
    LumValue(const LumValue& other) : payload_(other.payload_), typeWord_(other.typeWord_) {
        if (typeWord_ & 4u) share();
    }
    /// Leaves `other` null, without name bits.
    LumValue(LumValue&& other) noexcept : payload_(other.payload_), typeWord_(other.typeWord_) { other.typeWord_ = 0; }
    /// Assignment copies the name bits as well; a holder that must keep its own restores them with setNameKey().
    LumValue& operator=(const LumValue& other);
    /// Takes over the content and the name bits, and leaves `other` null.
    LumValue& operator=(LumValue&& other) noexcept;
    ~LumValue() {
        if (typeWord_ & 4u) release();
    }

    /// Tells which of the getters has the content.
    LumValueKind getKind() const noexcept { return static_cast<LumValueKind>(typeWord_ & 7u); }
    /// The unit of a number, the subtype of another kind; UNIT_NONE for neither.
    LumValueUnitType getUnit() const noexcept { return static_cast<LumValueUnitType>((typeWord_ >> 3) & 31u); }
    /// Kind in bits 0-2, unit in 3-7, the name under which a map or an attribute holds the value in 8-31.
    std::uint32_t getTypeWord() const noexcept { return typeWord_; }
    /// Whether it is of KIND_NULL, whatever its name bits.
    bool isNull() const noexcept { return getKind() == KIND_NULL; }
    /// Whether it is an integer or a real, whatever its unit.
    bool isNumeric() const noexcept { return getKind() == KIND_INTEGER || getKind() == KIND_REAL; }

    /// The name bits of the type word. No operation on the value looks at them; setNameKey() changes nothing else.
    LumNameEnum getNameKey() const noexcept { return static_cast<LumNameEnum>(typeWord_ >> 8); }
    /// Sets the name bits; identifiers have 24 bits.
    void setNameKey(LumNameEnum name) noexcept {
        typeWord_ = (typeWord_ & 0xFFu) | (static_cast<std::uint32_t>(name) << 8);
    }
    /// Changes the unit or subtype and leaves the payload unchanged.
    void setUnit(LumValueUnitType unit) noexcept {
        typeWord_ = (typeWord_ & ~0xF8u) | ((static_cast<std::uint32_t>(unit) & 31u) << 3);
    }

    /// The integer, or the real rounded half up; 0 for other kinds. Reals beyond the range of int give the nearest int;
    /// NaN gives 0.
    int getIntegerValue() const noexcept;
    /// The number in `unit`; NaN if the value is not a number or does not convert. UNIT_NONE gives any number as it is.
    float getRealValue(LumValueUnitType unit) const noexcept;
    /// The name of a KIND_NAME value; the null name for other kinds.
    LumName getNameValue() const noexcept;
    /// The absolute length that the value is, or that a compound has as its item "length" or its unnamed item; no
    /// length otherwise.
    LumLength getLengthValue() const;
    /// The colour that the value is, or that its name or text denotes; the invalid colour otherwise. A compound without
    /// components gives its RGB value.
    LumColor getColorValue() const;
    /// The object of KIND_OBJECT and KIND_COMPOUND; null for other kinds. Borrowed.
    LumRCObject* getRCObject() const noexcept;
    /// The map of KIND_COMPOUND; null for other kinds. Borrowed.
    LumNamedValueMap* getNamedValueMap() const noexcept;
    /// The string of KIND_STRING; null for other kinds. Borrowed; valid until the value changes.
    const UnicodeString* getStringPointer() const noexcept;
    /// How a unit is printed: "pt", "%", ...; empty for numbers, subtypes and codes outside 0 to 31.
    static const UnicodeString& getUnitString(LumValueUnitType unit);

    /// Turns the value into a compound; a value that was not null becomes its item under the null name.
    /// The name bits stay. Callers must not store a compound inside itself, directly or through others: reference
    /// counting never releases such a cycle.
    void makeCompound();
    /// The item of a compound; the null value if absent. Any other value is its own item under the null name.
    LumValue getNamedItem(LumName name) const;
    /// Sets an item, calling makeCompound() first if needed. Copies of this compound see the change.
    void setNamedItem(LumName name, const LumValue& value);
    /// The same under the name that the value carries.
    void setNamedItem(const LumNamedValue& value);
    /// Takes the item out of a compound; nothing happens when it is absent. Copies of this compound see the change.
    void removeNamedItem(LumName name);

    /// The printed form: numbers with "%d" or "%g" and their unit, compounds as "{name: value; ...}". The decimal point
    /// is "." in every locale.   Cost: linear in the text; constant stack use.
    UnicodeString toString() const;

    /// The value of a property's text: a number with or without unit, a hash colour, a quoted string or an identifier
    /// that is the whole text; any other text becomes a plain string, unchanged.   Cost: linear.
    static LumValue parse(const UnicodeString& text);
    /// The same, but numbers and colours remain text.
    static LumValue parseNonNumeric(const UnicodeString& text);
    /// The value of a colour's text: a colour, or a name, number or quoted string that is the whole text; any other
    /// text becomes a plain string, unchanged. A colour written as a keyword is a name: getColorValue() resolves it.
    /// @param iccAllowed  whether icc-color(...) may follow an RGB colour or a keyword.
    /// @param text  of a colour's property.
    static LumValue parseColor(const UnicodeString& text, bool iccAllowed = false);

    // Links and destinations. The results are compounds of named items; what is absent is not set. Keywords and keys
    // are compared without regard to case; "uri" and "nameddest" are taken as written, percent escapes included. None
    // of these functions throws; if the name table is full, a destination becomes the null name.
    // Cost: linear in the text.

    /// A link into a PDF document with the viewer's parameters after its first "#": "uri" (the part before, perhaps
    /// empty) and the items of parseView(). Unless "nameddest" is a name, "page" defaults to 1 and "view" to "xyz".
    static LumValue parsePDFOpenParameters(const UnicodeString& link);
    /// Adds the viewer's parameters in `text` ("page=3&zoom=150") to `value` and returns it. A compound is filled in
    /// place, so its other copies see the items; any other value becomes a compound with the first item, as with
    /// setNamedItem().
    ///
    /// Items: "nameddest" (name), "page" (integer from 1), "view" (name: fit, fitb, fith, fitbh, fitv, fitbv, viewrect
    /// or xyz), "zoom" (real above 0; 150 is 150 and 150% is 1.5), "left", "top", "width", "height" (real, UNIT_PT; a
    /// plain number counts as points). A later parameter overrides an earlier one; keys and views that are not listed
    /// are ignored, and so is a "nameddest" that is neither a word nor text, such as a number. An unreadable coordinate
    /// of "view" and an unreadable or missing one of "viewrect" is 0; one of "zoom" is not set.
    /// @param flag  ignored: every value gives the same result.
    /// @param text  the part after the "#" of a link.
    /// @param value  what the items are added to.
    static LumValue parseView(const UnicodeString& text, LumValue value, int flag);
    /// The type of a destination, "[keyword] [zoom] [coordinates]": a name (UNIT_IDENT), which with items is the
    /// unnamed item of a compound. "zoom" is a real number (here 150% is 150, as 150 is); "left", "top", "bottom" and
    /// "right" keep the unit they have, which must be cm, mm, in, pt, pc, jpt, q or twip. Numbers have no sign. Any
    /// other text is "xyz-top".
    static LumValue parseDestinationType(const UnicodeString& text);
    /// An XLink reference: "uri" (the part before the first "#", unless empty) and either "nameddest" (the name that
    /// the fragment begins with, or the null name if it begins with none) or, for a fragment of the form "key=...", the
    /// items of parseView(). Defaults as in parsePDFOpenParameters(). An empty text gives the null value.
    static LumValue parseXlinkHref(const UnicodeString& text);
    /// A destination in the same document: "nameddest" or "page", and the items of parseView() for the parameters after
    /// a "#". A page is any integer, 0 included. The unnamed item is the name or number that the text begins with; any
    /// other text is a "nameddest" as a whole, or only parameters if it begins with "#".
    /// @param flag  passed to parseView() for a text that begins with "#".
    /// @param text  of a property that names a destination.
    static LumValue parseInternalDestination(const UnicodeString& text, int flag);
    /// The parameters "sheet" and "chart" (integers from 0) after the first "#" of a link to a spreadsheet, up to the
    /// first empty parameter; NULL_VALUE if there are none. A value that is not a number counts as 0.
    static LumValue parseExcelOpenParameters(const UnicodeString& link);
    /// The part before the first "#" as a string (null when empty), or the whole text without "#". The parameters
    /// "key=value" after it, separated by "&" up to the first empty one, become string items; the string is then the
    /// unnamed item. Keys and values are percent-decoded (LumUri::unescape) and trimmed; of equal keys the last one
    /// counts, and empty keys are ignored. Every key becomes a shared name.
    /// @param lowerKeys  whether keys are converted to lower case.
    /// @param text  of a link.
    static LumValue parseUriFragmentParameters(const UnicodeString& text, bool lowerKeys);

    /// The number with the other sign, in its unit; NULL_VALUE for what is no number. The least int stays as it is.
    LumValue operator-() const;
    /// The number without its sign, in its unit; NULL_VALUE for what is no number. The least int stays as it is.
    [[nodiscard]] LumValue abs() const;
    /// Only for numbers without unit; integers stay as they are, reals stay reals; otherwise NULL_VALUE.
    [[nodiscard]] LumValue floor() const;
    /// The least whole number not below; see floor().
    [[nodiscard]] LumValue ceiling() const;
    /// The nearest whole number, halves up; see floor().
    [[nodiscard]] LumValue round() const;
    /// Lengths, angles, times and frequencies are converted to their normal unit first; operands that do not fit
    /// together give NULL_VALUE, and so does an integer remainder by 0.
    LumValue& operator+=(const LumValue& right);
    /// Subtracts by the rules of operator+=().
    LumValue& operator-=(const LumValue& right);
    /// Multiplies by the rules of operator+=().
    LumValue& operator*=(const LumValue& right);
    /// Divides by the rules of operator+=().
    LumValue& operator/=(const LumValue& right);
    /// The remainder, by the rules of operator+=().
    LumValue& operator%=(const LumValue& right);
    /// As operator+=(), of a copy.
    friend LumValue operator+(const LumValue& a, const LumValue& b) { return LumValue(a) += b; }
    /// As operator-=(), of a copy.
    friend LumValue operator-(const LumValue& a, const LumValue& b) { return LumValue(a) -= b; }
    /// As operator*=(), of a copy.
    friend LumValue operator*(const LumValue& a, const LumValue& b) { return LumValue(a) *= b; }
    /// As operator/=(), of a copy.
    friend LumValue operator/(const LumValue& a, const LumValue& b) { return LumValue(a) /= b; }
    /// As operator%=(), of a copy.
    friend LumValue operator%(const LumValue& a, const LumValue& b) { return LumValue(a) %= b; }
    /// Converts a number to the normal unit of its dimension: pt, deg, ms or Hz.
    void normalizeUnit() noexcept;

    /// Whether kind, unit and content are equal; the name bits do not matter. Numbers that differ in kind or unit are
    /// compared in their normal units, a string with a name by their texts. Objects and compounds are equal only if
    /// they are the same one, except that compounds that are colours are compared as colours.
    friend LUM_API bool operator==(const LumValue& a, const LumValue& b);
    /// Orders values by the same rules, objects and compounds by address. Values that cannot be compared are ordered by
    /// kind and then by unit, but numbers by unit alone. A NaN is neither below nor above a number of its unit.
    friend LUM_API bool operator<(const LumValue& a, const LumValue& b);
    /// The order of operator<, reversed.
    friend bool operator>(const LumValue& a, const LumValue& b) { return b < a; }
    /// Not above, in the order of operator<; so NaN is "not above" every number of its unit.
    friend bool operator<=(const LumValue& a, const LumValue& b) { return !(b < a); }
    /// Not below, in the order of operator<; so NaN is "not below" every number of its unit.
    friend bool operator>=(const LumValue& a, const LumValue& b) { return !(a < b); }

private:
    union Payload {
        std::int32_t integer;
        float real;
        LumNameEnum name;
        detail::ValueText* text;
        LumRCObject* object;
        void* pointer;
    };

    friend class LumNamedValueMap;  // takes nested maps out of dying ones
    friend class detail::ValueText;

    struct Adopted {};
    LumValue(detail::ValueText* counted, Adopted) noexcept : payload_{.text = counted}, typeWord_(KIND_STRING) {}

    /// What +=, -= and %= have in common: operands of one unit and the choice between integers and reals.
    template <class OnIntegers, class OnReals>
    LumValue& combine(const LumValue& right, OnIntegers onIntegers, OnReals onReals);
    /// Becomes that real number, or null if there is no unit.
    LumValue& setQuantity(float value, std::optional<LumValueUnitType> unit) noexcept;

    void share();
    void release() noexcept;
    /// Hands over the map that the value holds, with its reference, and leaves the value null; null if it holds none.
    LumNamedValueMap* detachMap() noexcept;

    Payload payload_;
    std::uint32_t typeWord_ = 0;
};

static_assert(sizeof(LumValue) == 2 * sizeof(void*));

}  // namespace LumCommon
