#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace LumTest {

/// Writes property sets in either byte order. A value is the bytes from its type on.
struct PropertyWriter {
    bool littleEndian = true;

    std::string number(std::uint64_t value, unsigned width = 4) const {
        std::string field;
        for (unsigned i = 0; i < width; ++i) field += static_cast<char>(value >> (8 * i) & 0xFF);
        if (!littleEndian) std::reverse(field.begin(), field.end());
        return field;
    }
    std::string integer(std::uint32_t value, std::uint32_t type = 3) const { return number(type) + number(value); }
    std::string text(const std::string& bytes, std::uint32_t type = 30) const {
        return number(type) + number(bytes.size() + 1) + bytes + '\0';
    }
    std::string wideText(const std::u16string& text, std::uint32_t claimedUnits = 0) const {
        std::string result = number(31) + number(claimedUnits != 0 ? claimedUnits : text.size() + 1);
        for (const char16_t unit : text) result += number(unit, 2);
        return result + std::string(text.size() % 2 == 0 ? 4 : 2, '\0');
    }
    /// A block of `count` elements; the count need not be true.
    std::string block(std::uint32_t count, const std::string& elements) const {
        return number(65) + number(4 + elements.size()) + number(count) + elements;
    }
    std::string dictionary(const std::vector<std::pair<std::uint32_t, std::string>>& names) const {
        std::string result = number(names.size());
        for (const auto& [id, name] : names) result += number(id) + number(name.size()) + name;
        return result;
    }

    using Properties = std::vector<std::pair<std::uint32_t, std::string>>;
    std::string section(const Properties& properties) const {
        std::string rows, values;
        for (const auto& [id, value] : properties) {
            rows += number(id) + number(8 + 8 * properties.size() + values.size());
            values += value;
        }
        return number(8 + rows.size() + values.size()) + number(properties.size()) + rows + values;
    }
    /// The whole stream; the sections follow one another.
    std::string set(const std::vector<std::string>& sections) const {
        std::string result = number(0xFFFE, 2) + number(1, 2) + number(0x20006) + classId(1) + number(sections.size());
        std::size_t at = result.size() + 20 * sections.size();
        for (const std::string& bytes : sections) {
            result += classId(2) + number(at);
            at += bytes.size();
        }
        for (const std::string& bytes : sections) result += bytes;
        return result;
    }
    std::string classId(unsigned seed) const {
        return number(0xF29F85E0 + seed) + number(0x4FF9, 2) + number(0x1068, 2) + "8 bytes.";
    }
};

}  // namespace LumTest
