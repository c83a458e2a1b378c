#include <lumcommon/containers/office/detail/CodePageText.h>
#include <lumcommon/containers/office/detail/PropertyValueReader.h>
#include <lumcommon/core/detail/CheckedText.h>

#include <algorithm>
#include <bit>
#include <string_view>
#include <type_traits>

namespace LumCommon::detail {
namespace {

using Value = OlePropertyValue;
using Content = OlePropertyValue::Content;
using Run = std::span<const unsigned char>;

constexpr std::size_t maxElements = std::size_t{1} << 20;
constexpr unsigned wideCodePage = 1200;
constexpr std::uint32_t maxDimensions = 31;  // [MS-OLEPS] 2.14.3

bool isString(std::uint32_t type) {
    return type == Value::STRING || type == Value::BASIC_STRING || type == Value::WIDE_STRING;
}

/// Whether elements of a vector are padded to four bytes. Numbers are packed.
bool isPadded(std::uint32_t type) {
    switch (type) {
        case Value::VARIANT:
        case Value::BLOB:
        case Value::BLOB_OBJECT:
        case Value::CLIPBOARD:
        case Value::STREAM:
        case Value::STORAGE:
        case Value::STREAMED_OBJECT:
        case Value::STORED_OBJECT:
        case Value::VERSIONED_STREAM:
            return true;
        default:
            return isString(type);
    }
}

/// The decimal digits of a 96-bit number.
std::string digitsOf(std::uint32_t high, std::uint64_t low) {
    std::uint32_t words[] = {high, static_cast<std::uint32_t>(low >> 32), static_cast<std::uint32_t>(low)};
    std::string digits;
    do {
        std::uint64_t remainder = 0;
        for (std::uint32_t& word : words) {
            remainder = remainder << 32 | word;
            word = static_cast<std::uint32_t>(remainder / 10);
            remainder %= 10;
        }
        digits += static_cast<char>('0' + remainder);
    } while (words[0] != 0 || words[1] != 0 || words[2] != 0);
    std::ranges::reverse(digits);
    return digits;
}

}  // namespace

PropertyValueReader::PropertyValueReader(Run set, bool isSwapped) noexcept
    : set_(set),
      littleEndian_((std::endian::native == std::endian::little) != isSwapped),
      budgetBytes_(4 * std::uint64_t{set.size()}),
      elementsLeft_(maxElements) {}

void PropertyValueReader::setCodePage(unsigned codePage) {
    codePage_ = codePage;
    charset_ = charsetOfCodePage(codePage);
}

bool PropertyValueReader::isWide() const noexcept { return codePage_ == wideCodePage; }

bool PropertyValueReader::take(std::uint64_t bytes, Run& run) noexcept {
    if (position_ > set_.size() || bytes > set_.size() - position_ || bytes > budgetBytes_) return false;
    run = set_.subspan(static_cast<std::size_t>(position_), static_cast<std::size_t>(bytes));
    position_ += bytes;
    budgetBytes_ -= bytes;
    return true;
}

template <class Number>
bool PropertyValueReader::takeNumber(Number& number) noexcept {
    Run run;
    if (!take(sizeof number, run)) return false;
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < run.size(); ++i) {
        bits = bits << 8 | run[littleEndian_ ? run.size() - 1 - i : i];
    }
    number = static_cast<Number>(bits);
    return true;
}

/// @tparam Stored  an integer, or the floating-point type whose bits are stored.
template <class Stored, class Held>
bool PropertyValueReader::readNumber(Content& content) noexcept {
    using Bits =
        std::conditional_t<std::is_integral_v<Stored>, Stored,
                           std::conditional_t<sizeof(Stored) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>>;
    Bits bits{};
    if (!takeNumber(bits)) return false;
    content.emplace<Held>(std::bit_cast<Stored>(bits));
    return true;
}

UnicodeString PropertyValueReader::decodeWide(Run bytes) const {
    UnicodeString text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const unsigned unit = littleEndian_ ? bytes[i] | bytes[i + 1] << 8 : bytes[i] << 8 | bytes[i + 1];
        if (unit == 0) break;
        append(text, static_cast<char16_t>(unit));
    }
    return text;
}

UnicodeString PropertyValueReader::decode(Run bytes) const {
    if (bytes.empty()) return {};
    if (isWide()) return decodeWide(bytes);
    return fromCodePage({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, charset_);
}

bool PropertyValueReader::readString(Content& content) {
    std::uint32_t size = 0;
    Run run;
    if (!takeNumber(size) || !take(size, run)) return false;
    content = decode(run);
    return true;
}

bool PropertyValueReader::readWideString(Content& content) {
    std::uint32_t units = 0;
    Run run;
    if (!takeNumber(units) || !take(std::uint64_t{2} * units, run)) return false;
    content = decodeWide(run);
    return true;
}

bool PropertyValueReader::readBytes(Content& content) {
    std::uint32_t size = 0;
    Run run;
    if (!takeNumber(size) || !take(size, run)) return false;
    content.emplace<OlePropertyBytes>(run.begin(), run.end());
    return true;
}

bool PropertyValueReader::readClassId(Content& content) noexcept {
    OLE_CLSID id;
    Run run;
    if (!takeNumber(id.data1) || !takeNumber(id.data2) || !takeNumber(id.data3) || !take(sizeof id.data4, run)) {
        return false;
    }
    std::ranges::copy(run, id.data4);
    content = id;
    return true;
}

bool PropertyValueReader::readDecimal(Content& content) {
    constexpr std::uint8_t maxScale = 28, negative = 0x80;
    std::uint16_t reserved = 0;
    std::uint8_t scale = 0, sign = 0;
    std::uint32_t high = 0;
    std::uint64_t low = 0;
    if (!takeNumber(reserved) || !takeNumber(scale) || !takeNumber(sign) || !takeNumber(high) || !takeNumber(low) ||
        scale > maxScale) {
        return false;
    }
    std::string digits = digitsOf(high, low);
    if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
    if (scale != 0) digits.insert(digits.size() - scale, 1, '.');
    if ((sign & negative) != 0) digits.insert(0, 1, '-');
    content = fromUtf8(digits);
    return true;
}

bool PropertyValueReader::readScalar(std::uint32_t type, Content& content) {
    std::uint16_t word = 0;
    Run run;
    switch (type) {
        case Value::EMPTY:
        case Value::NULL_VALUE:
            return true;
        case Value::INT8:
            return readNumber<std::int8_t, std::int64_t>(content);
        case Value::INT16:
            return readNumber<std::int16_t, std::int64_t>(content);
        case Value::INT32:
        case Value::INT:
            return readNumber<std::int32_t, std::int64_t>(content);
        case Value::INT64:
        case Value::CURRENCY:
            return readNumber<std::int64_t, std::int64_t>(content);
        case Value::UINT8:
            return readNumber<std::uint8_t, std::uint64_t>(content);
        case Value::UINT16:
            return readNumber<std::uint16_t, std::uint64_t>(content);
        case Value::UINT32:
        case Value::UINT:
        case Value::ERROR_CODE:
            return readNumber<std::uint32_t, std::uint64_t>(content);
        case Value::UINT64:
            return readNumber<std::uint64_t, std::uint64_t>(content);
        case Value::FILE_TIME: {  // two words, the lower one first in either byte order
            std::uint32_t low = 0, high = 0;
            if (!takeNumber(low) || !takeNumber(high)) return false;
            content = std::uint64_t{high} << 32 | low;
            return true;
        }
        case Value::FLOAT:
            return readNumber<float, double>(content);
        case Value::DOUBLE:
        case Value::DATE:
            return readNumber<double, double>(content);
        case Value::BOOLEAN:
            if (!takeNumber(word)) return false;
            content = word != 0;
            return true;
        case Value::DECIMAL:
            return readDecimal(content);
        case Value::WIDE_STRING:
            return readWideString(content);
        case Value::VERSIONED_STREAM:
            return take(sizeof(OLE_CLSID), run) && readString(content);
        case Value::STRING:
        case Value::BASIC_STRING:
        case Value::STREAM:
        case Value::STORAGE:
        case Value::STREAMED_OBJECT:
        case Value::STORED_OBJECT:
            return readString(content);
        case Value::BLOB:
        case Value::BLOB_OBJECT:
        case Value::CLIPBOARD:
            return readBytes(content);
        case Value::CLASS_ID:
            return readClassId(content);
        default:
            return false;
    }
}

bool PropertyValueReader::skipPadding(std::uint64_t start, Padding padding) noexcept {
    const std::uint64_t wanted = (0 - (position_ - start)) % 4;
    Run run;
    if (padding == Padding::NONE) return true;
    // The last padding of a set may be missing.
    if (!take(std::min<std::uint64_t>(wanted, set_.size() - position_), run)) return false;
    return padding == Padding::ANY || std::ranges::all_of(run, [](unsigned char byte) { return byte == 0; });
}

bool PropertyValueReader::readRun(std::uint32_t type, std::size_t count, Padding padding, std::vector<Value>& values) {
    values.clear();
    for (std::size_t i = 0; i < count; ++i) {
        Value& value = values.emplace_back();
        value.type = type;
        const std::uint64_t start = position_;
        if (type == Value::VARIANT && !takeNumber(value.type)) return false;
        if (!readScalar(value.type, value.content)) return false;
        if (isPadded(type) && !skipPadding(start, isString(value.type) ? padding : Padding::ANY)) return false;
    }
    return true;
}

bool PropertyValueReader::readElements(std::uint32_t type, Content& content) {
    OlePropertyElements elements;
    std::uint64_t count = 1;
    std::uint32_t elementType = type & ~std::uint32_t{Value::VECTOR | Value::ARRAY};
    const bool isArray = (type & Value::ARRAY) != 0;
    if (isArray) {
        std::uint32_t storedType = 0, dimensions = 0;
        if ((type & Value::VECTOR) != 0 || !takeNumber(storedType) || storedType != elementType ||
            !takeNumber(dimensions) || dimensions == 0 || dimensions > maxDimensions) {
            return false;
        }
        for (std::uint32_t i = 0; i < dimensions; ++i) {
            OlePropertyElements::Dimension dimension;
            if (!takeNumber(dimension.size) || !takeNumber(dimension.lowestIndex)) return false;
            elements.dimensions.push_back(dimension);
            count *= dimension.size;
            if (count > maxElements) return false;
        }
    } else {
        std::uint32_t stored = 0;
        if (!takeNumber(stored)) return false;
        count = stored;
        if (elementType == Value::INT8 || elementType == Value::UINT8) {
            Run run;
            if (!take(count, run)) return false;
            content.emplace<OlePropertyBytes>(run.begin(), run.end());
            return true;
        }
    }
    // There could be any number of elements that take no bytes.
    if (elementType <= Value::NULL_VALUE || count > elementsLeft_) return false;
    const std::uint64_t start = position_;
    for (const Padding padding : {Padding::ZEROS, Padding::NONE, Padding::ANY}) {
        position_ = start;
        if (!readRun(elementType, static_cast<std::size_t>(count), padding, elements.values)) continue;
        elementsLeft_ -= elements.values.size();
        content = std::move(elements);
        return true;
    }
    return false;
}

OlePropertyValue PropertyValueReader::readValue(std::uint32_t type, std::uint64_t position) {
    Value value;
    value.type = type;
    position_ = position;
    const bool hasElements = (type & (Value::VECTOR | Value::ARRAY)) != 0;
    value.isDamaged = hasElements ? !readElements(type, value.content) : !readScalar(type, value.content);
    if (value.isDamaged) value.content = std::monostate();
    return value;
}

std::vector<std::pair<std::uint32_t, UnicodeString>> PropertyValueReader::readWideNames(std::uint32_t count,
                                                                                        std::uint64_t position) {
    std::vector<std::pair<std::uint32_t, UnicodeString>> names;
    position_ = position;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t id = 0, units = 0;
        Run run;
        const std::uint64_t start = position_;
        if (!takeNumber(id) || !takeNumber(units) || !take(std::uint64_t{2} * units, run)) break;
        names.emplace_back(id, decodeWide(run));
        if (!skipPadding(start, Padding::ANY)) break;
    }
    return names;
}

}  // namespace LumCommon::detail
