#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace LumTest {

/// How a compound file is written.
struct OleLayout {
    bool littleEndian = true;
    unsigned sectorShift = 9;
    unsigned miniSectorShift = 6;
    unsigned version = 3;
    std::uint32_t cutoff = 4096;
    std::uint32_t leadingSectors = 0;   // free ones, to make the tables longer
    std::uint32_t trailingSectors = 0;  // behind the directory
};

struct OleNode {
    std::u16string name;
    std::string data = {};
    std::vector<OleNode> children = {};
    unsigned type = 2;
};

/// A compound file as bytes, and where its tables lie, so that a test can tell lies in it.
class OleImage {
public:
    static constexpr std::uint32_t END = 0xFFFFFFFE, FREE = 0xFFFFFFFF, FAT_SECTOR = 0xFFFFFFFD,
                                   DIFAT_SECTOR = 0xFFFFFFFC;

    std::string bytes;

    OleImage(const std::vector<OleNode>& children, const OleLayout& layout = {}) : layout_(layout) {
        entries_.push_back({.name = u"Root Entry", .type = 5});
        addChildren(children, 0);
        placeFree(layout.leadingSectors);
        placeStreams();
        if (!miniStream_.empty()) entries_[0].start = place(miniStream_);
        entries_[0].size = static_cast<std::uint32_t>(miniStream_.size());
        miniFatSectors = static_cast<std::uint32_t>((miniFat_.size() * 4 + sectorBytes() - 1) / sectorBytes());
        if (miniFatSectors != 0) firstMiniFat = place(table(miniFat_));
        firstDirectory = place(directory());
        firstTrailing = placeFree(layout.trailingSectors);
        write();
    }

    std::uint32_t firstFat = 0, fatSectors = 0, firstDirectory = 0, firstMiniFat = END, miniFatSectors = 0;
    std::uint32_t firstDifat = END, difatSectors = 0, firstTrailing = 0;

    std::size_t sectorBytes() const { return std::size_t{1} << layout_.sectorShift; }
    std::size_t sectorOffset(std::uint32_t sector) const {
        return std::size_t{sector} * sectorBytes() +
               (layout_.version == 4 ? std::max<std::size_t>(sectorBytes(), 512) : 512);
    }
    /// Tables and the directory are written in one run each.
    std::size_t fatOffset(std::uint32_t sector) const { return sectorOffset(firstFat) + 4 * std::size_t{sector}; }
    std::size_t miniFatOffset(std::uint32_t sector) const {
        return sectorOffset(firstMiniFat) + 4 * std::size_t{sector};
    }
    std::size_t entryOffset(std::uint32_t index) const {
        return sectorOffset(firstDirectory) + 128 * std::size_t{index};
    }

    std::string number(std::uint64_t value, unsigned width) const {
        std::string field;
        for (unsigned i = 0; i < width; ++i) field += static_cast<char>(value >> (8 * i) & 0xFF);
        if (!layout_.littleEndian) std::reverse(field.begin(), field.end());
        return field;
    }
    OleImage& set(std::size_t offset, std::uint64_t value, unsigned width = 4) {
        bytes.replace(offset, width, number(value, width));
        return *this;
    }
    std::uint32_t startOf(std::size_t index) const { return index < entries_.size() ? entries_[index].start : END; }

private:
    struct Entry {
        std::u16string name = {};
        unsigned type = 0;
        std::string data = {};
        std::uint32_t left = FREE, right = FREE, child = FREE, start = END, size = 0;
    };

    /// Gives the children consecutive entries and makes a tree of them.
    void addChildren(const std::vector<OleNode>& children, std::size_t parent) {
        const std::size_t first = entries_.size();
        for (const OleNode& node : children) entries_.push_back({node.name, node.type, node.data});
        entries_[parent].child = link(first, entries_.size());
        for (std::size_t i = 0; i < children.size(); ++i) addChildren(children[i].children, first + i);
    }
    std::uint32_t link(std::size_t first, std::size_t end) {
        if (first == end) return FREE;
        const std::size_t middle = first + (end - first) / 2;
        entries_[middle].left = link(first, middle);
        entries_[middle].right = link(middle + 1, end);
        return static_cast<std::uint32_t>(middle);
    }

    static std::uint32_t append(std::string& to, std::vector<std::uint32_t>& table, const std::string& data,
                                std::size_t unit) {
        const auto first = static_cast<std::uint32_t>(table.size());
        to += data;
        to.resize((to.size() + unit - 1) / unit * unit);
        while (table.size() < to.size() / unit) table.push_back(static_cast<std::uint32_t>(table.size() + 1));
        table.back() = END;
        return first;
    }
    std::uint32_t place(const std::string& data) { return append(sectors_, fat_, data, sectorBytes()); }

    std::uint32_t placeFree(std::uint32_t count) {
        const auto first = static_cast<std::uint32_t>(fat_.size());
        sectors_.resize(sectors_.size() + std::size_t{count} * sectorBytes());
        fat_.resize(fat_.size() + count, FREE);
        return first;
    }

    void placeStreams() {
        for (Entry& entry : entries_) {
            entry.size = static_cast<std::uint32_t>(entry.data.size());
            if (entry.type != 2 || entry.size == 0) continue;
            entry.start = entry.size < layout_.cutoff
                              ? append(miniStream_, miniFat_, entry.data, std::size_t{1} << layout_.miniSectorShift)
                              : place(entry.data);
        }
    }
    std::string table(const std::vector<std::uint32_t>& numbers) const {
        std::string result;
        for (const std::uint32_t n : numbers) result += number(n, 4);
        while (result.size() % sectorBytes() != 0) result += '\xFF';
        return result;
    }
    std::string directory() const {
        std::string result;
        for (const Entry& entry : entries_) {
            std::string name;
            for (const char16_t unit : entry.name) name += number(unit, 2);
            name.resize(64);
            result += name + number(2 * entry.name.size() + 2, 2) + static_cast<char>(entry.type) + '\1' +
                      number(entry.left, 4) + number(entry.right, 4) + number(entry.child, 4) + "class id of 16 b" +
                      number(7, 4) + number(0x0102030405060708, 8) + number(9, 8) + number(entry.start, 4) +
                      number(entry.size, 4) + number(0, 4);
        }
        const std::size_t used = result.size();
        result.resize((used + sectorBytes() - 1) / sectorBytes() * sectorBytes());
        return result;
    }

    void write() {
        const auto perSector = static_cast<std::uint32_t>(sectorBytes() / 4);
        const auto data = static_cast<std::uint32_t>(fat_.size());
        do {  // the tables have entries for their own sectors too
            ++fatSectors;
            difatSectors = fatSectors > 109 ? (fatSectors - 109 + perSector - 2) / (perSector - 1) : 0;
        } while (data + fatSectors + difatSectors > fatSectors * perSector);
        if (difatSectors != 0) firstDifat = data;
        firstFat = data + difatSectors;
        fat_.resize(data + difatSectors, DIFAT_SECTOR);
        fat_.resize(fat_.size() + fatSectors, FAT_SECTOR);
        std::string header = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(16, '\0') + number(0x3E, 2) +
                             number(layout_.version, 2) + number(0xFFFE, 2) + number(layout_.sectorShift, 2) +
                             number(layout_.miniSectorShift, 2) + std::string(10, '\0') + number(fatSectors, 4) +
                             number(firstDirectory, 4) + number(0, 4) + number(layout_.cutoff, 4) +
                             number(firstMiniFat, 4) + number(miniFatSectors, 4) + number(firstDifat, 4) +
                             number(difatSectors, 4);
        std::vector<std::uint32_t> difat;
        for (std::uint32_t i = 0; i < std::max(fatSectors, 109u); ++i) {
            if (i < 109) header += number(i < fatSectors ? firstFat + i : FREE, 4);
            const auto next = static_cast<std::uint32_t>(firstDifat + 1 + difat.size() / perSector);
            if (difat.size() % perSector == perSector - 1) difat.push_back(next);  // the next sector of the chain
            if (i >= 109) difat.push_back(firstFat + i);
        }
        difat.resize(difatSectors * perSector, FREE);
        if (difatSectors != 0) difat.back() = END;
        header.resize(sectorOffset(0));
        bytes = header + sectors_ + table(difat) + table(fat_);
    }

    OleLayout layout_;
    std::vector<Entry> entries_;
    std::string sectors_, miniStream_;
    std::vector<std::uint32_t> fat_, miniFat_;
};

/// Bytes that differ from place to place, so that a sector taken for another shows.
inline std::string patternBytes(std::size_t count, unsigned seed = 1) {
    std::string result(count, '\0');
    std::uint32_t state = seed * 2654435761u + 1;
    for (char& byte : result) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    return result;
}

}  // namespace LumTest
